// What additions and deletions of many items tell where one of their steps fails.
#include "client/ManyItems.h"

#include "client/core/RecordedOutput.h"

#include <gmock/gmock.h>

using pim::Failure;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{
// Standard output that keeps what is written.
class RecordedStream final : public pim::OutputStream
{
  public:
    RecordedStream() : OutputStream(STD_OUTPUT_HANDLE) {}
    bool Write(std::wstring_view text) const override
    {
        m_text += text;
        return true;
    }
    std::wstring TakeText() { return std::exchange(m_text, {}); }
    nlohmann::json TakeJson()
    {
        const std::wstring text = TakeText();
        return nlohmann::json::parse(std::string(text.begin(), text.end()));
    }

  private:
    mutable std::wstring m_text;
};

bool Never()
{
    return false;
}

// True from the third question on.
int g_questions = 0;
bool AfterTwo()
{
    return ++g_questions > 2;
}

[[noreturn]] void Break()
{
    throw Failure{pim::kExitNoServer, L"gone"};
}

class ManyItemsTest : public testing::Test
{
  protected:
    ManyItemsTest() { g_questions = 0; }

    // Three items "id0" to "id2"; the store keeps another name of the last one.
    pim::AdditionSteps Steps()
    {
        return {3,
                [](std::size_t i) { return L"id" + std::to_wstring(i); },
                [] {},
                [](std::size_t i, const std::wstring& id) {
                    std::vector<std::wstring> notKept;
                    if (i == 2)
                        notKept.push_back(L"name");
                    return pim::WriteResult{id, notKept};
                }};
    }
    int Add(const pim::AdditionSteps& steps, pim::CancelQuery isCancelled = Never)
    {
        return pim::AddItems(context, L"Adding", steps, isCancelled);
    }
    // The sentence and code of the failure that ends the work.
    template <typename Work> Failure FailureOf(Work work)
    {
        try
        {
            work();
        }
        catch (const Failure& failure)
        {
            return failure;
        }
        return {pim::kExitOk, L"none"};
    }

    pim::Command command;
    RecordedStream output;
    const RecordedOutput errors{false};
    const pim::Context context{command, output, errors, {}};
};
} // namespace

TEST_F(ManyItemsTest, PrintsWhatWasAddedAndWhatWasNotKept)
{
    EXPECT_EQ(pim::kExitNotKept, Add(Steps()));
    EXPECT_EQ(L"Added id0\nAdded id1\nAdded id2\n", output.TakeText());
    EXPECT_THAT(errors.Texts(), ElementsAre(HasSubstr(L"name")));
    command.asJson = true;
    EXPECT_EQ(pim::kExitNotKept, Add(Steps()));
    EXPECT_EQ(nlohmann::json::parse(R"({"added": [{"id": "id0", "notKept": []},
                                                  {"id": "id1", "notKept": []},
                                                  {"id": "id2", "notKept": ["name"]}]})"),
              output.TakeJson());
}

TEST_F(ManyItemsTest, PrintsWhatWasAddedBeforeTheServerWentAway)
{
    pim::AdditionSteps steps = Steps();
    steps.add = [](std::size_t i) {
        if (i == 2)
            Break();
        return L"id" + std::to_wstring(i);
    };
    steps.reload = Break;
    EXPECT_EQ(L"gone", FailureOf([&] { Add(steps); }).text);
    EXPECT_EQ(L"Added id0\nAdded id1\n", output.TakeText());
    command.asJson = true;
    EXPECT_EQ(pim::kExitNoServer, FailureOf([&] { Add(steps); }).exitCode);
    EXPECT_EQ(nlohmann::json::parse(R"({"added": [{"id": "id0"}, {"id": "id1"}]})"),
              output.TakeJson());
}

TEST_F(ManyItemsTest, ChecksWhatWasAddedBeforeAStoreRefused)
{
    pim::AdditionSteps steps = Steps();
    steps.count = 4;
    steps.add = [](std::size_t i) {
        if (i == 3)
            throw Failure{pim::kExitFailed, L"full"};
        return L"id" + std::to_wstring(i);
    };
    EXPECT_EQ(L"full", FailureOf([&] { Add(steps); }).text);
    EXPECT_EQ(L"Added id0\nAdded id1\nAdded id2\n", output.TakeText());
    EXPECT_THAT(errors.Texts(), ElementsAre(HasSubstr(L"name")));
}

TEST_F(ManyItemsTest, PrintsWhatWasAddedBeforeAFailingCheck)
{
    pim::AdditionSteps steps = Steps();
    steps.check = [](std::size_t i, const std::wstring& id) {
        if (i == 1)
            Break();
        return pim::WriteResult{id, {}};
    };
    command.asJson = true;
    EXPECT_EQ(L"gone", FailureOf([&] { Add(steps); }).text);
    EXPECT_EQ(nlohmann::json::parse(
                  R"({"added": [{"id": "id0", "notKept": []}, {"id": "id1"}, {"id": "id2"}]})"),
              output.TakeJson());
}

TEST_F(ManyItemsTest, EndsAnAdditionThatTheUserCancels)
{
    EXPECT_EQ(L"Cancelled.", FailureOf([&] { Add(Steps(), AfterTwo); }).text);
    EXPECT_EQ(L"Added id0\nAdded id1\n", output.TakeText());
    EXPECT_THAT(errors.Texts(), IsEmpty());
}

TEST_F(ManyItemsTest, PrintsWhatWasDeletedBeforeTheServerWentAway)
{
    command.ids = {L"a", L"nothing", L"b", L"c"};
    command.asJson = true;
    const auto deleteItem = [](const std::wstring& typed) {
        if (typed == L"nothing")
            throw Failure{pim::kExitNotFound, L"none"};
        if (typed == L"b")
            Break();
        return typed + L"-whole";
    };
    EXPECT_EQ(L"gone", FailureOf([&] { pim::DeleteEach(context, deleteItem, Never); }).text);
    EXPECT_EQ(nlohmann::json::parse(R"({"deleted": ["a-whole"], "notFound": ["nothing"]})"),
              output.TakeJson());
    EXPECT_THAT(errors.Texts(), ElementsAre(L"pim: none\n"));
}

TEST_F(ManyItemsTest, EndsADeletionThatTheUserCancels)
{
    command.ids = {L"a", L"b", L"c"};
    const auto deleteItem = [](const std::wstring& typed) { return typed; };
    EXPECT_EQ(L"Cancelled.",
              FailureOf([&] { pim::DeleteEach(context, deleteItem, AfterTwo); }).text);
    EXPECT_EQ(L"Deleted a\nDeleted b\n", output.TakeText());
    EXPECT_EQ(pim::kExitOk, pim::DeleteEach(context, deleteItem, Never));
}
