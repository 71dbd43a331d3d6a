// What a hostile store answers to each call of loading and changing the categories: none that were
// stored are lost.
#include "outlook/categories/Outlook2007CategoryList.h"
#include "tests/outlook/categories/CategoryItems.h"
#include "tests/outlook/store/FaultSession.h"
#include "tests/recordingstore/FaultHarness.h"

#include <gmock/gmock.h>

namespace
{
constexpr ULONG kStreamTag = 0x7C080102;
constexpr char kStored[] = R"(<?xml version="1.0" ?>
<categories default="A" lastSavedTime="2011-03-19T11:19:09.564">
    <category name="Home" color="-1" guid="{B}" note="This one has to stay, whatever else is done." />
    <category name="Work" color="3" guid="{A}" />
    <category name="Play" color="4" guid="{C}" />
</categories>
)";
// An empty list has fewer bytes than this; the category that stays has more.
constexpr std::size_t kLeastBytes = 200;

// A store that says so is believed: an empty value and any error in place of one stand for a list
// that is not there yet.
bool SaysThatThereIsNothing(StoreFault answer)
{
    return answer == StoreFault::EmptyValues || answer == StoreFault::AllErrors;
}

// The number in "7C080102 <3C... N bytes>", as the store tells a long value; 0 without one.
std::size_t StoredBytes(const RecordingStore& store)
{
    for (const std::string& line : store.PropsOf("categories"))
        if (const auto dots = line.find("... "); line.starts_with("7C080102") && dots != line.npos)
            return std::stoul(line.substr(dots + 4));
    return 0;
}

void RunOverCategories(const char* name, const std::function<void(COutlook2007CategoryList&)>& work)
{
    std::vector<BYTE> id;
    RunHostileAnswers({
        .name = name,
        .setUp =
            [&](RecordingStore& store) {
                store.AddUsualFolders();
                store.AddMessage(
                    "categories",
                    "calendar",
                    StoreProps().Bytes(kStreamTag, {kStored, kStored + sizeof kStored - 1}),
                    true);
                id = store.EntryIdOf("categories");
            },
        .action =
            [&] {
                const FaultSession session;
                const auto message = session.Open<IMessage>(id, MAPI_MESSAGE);
                if (!message)
                    return; // the answer was to the session's own call
                COutlook2007CategoryList list(message.Get(), session.Helper());
                list.GetItemIDs();
                list.ResetItem();
                work(list);
            },
        .check =
            [](const FaultRun& run, RecordingStore& store) {
                if (!SaysThatThereIsNothing(run.fault))
                {
                    EXPECT_GT(StoredBytes(store), kLeastBytes);
                }
            },
        .bystanders = {"calendar", "contacts", "inbox", "subtree"},
    });
}
} // namespace

TEST(HostileCategoriesTest, Reading)
{
    RunOverCategories("read categories", [](COutlook2007CategoryList& list) { Walk(list); });
}

TEST(HostileCategoriesTest, Adding)
{
    RunOverCategories("add a category", [](COutlook2007CategoryList& list) {
        std::wstring folder;
        list.AddItem(CategoryOf(L"Fun").Get(), folder);
    });
}

TEST(HostileCategoriesTest, Updating)
{
    RunOverCategories("update a category", [](COutlook2007CategoryList& list) {
        list.UpdateItem(CategoryOf(L"Office", L"{A}").Get());
    });
}

TEST(HostileCategoriesTest, Deleting)
{
    RunOverCategories("delete a category",
                      [](COutlook2007CategoryList& list) { list.DeleteItem(L"{A}"); });
}
