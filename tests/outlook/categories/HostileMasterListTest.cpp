// What a hostile registry answers to the readings of the 2003 category list, and values that are no
// list: nothing falls, runs out of memory or goes on for ever, and no stored name is lost. The list
// makes no call to a message store.
#include "outlook/categories/Outlook2003CategoryList.h"

#include "support/LargeNewFails.h"
#include "tests/outlook/categories/CategoryItems.h"
#include "tests/outlook/categories/RecordedRegistry.h"

#include <gmock/gmock.h>

#include <functional>

using testing::HasSubstr;

namespace
{
// No list of people has as many bytes.
constexpr std::size_t kMuch = 48u << 20;

// What a query gives beside the value's bytes.
struct Answer
{
    const char* name;
    std::function<void(DWORD& size, LSTATUS& result)> spoil;
};

const Answer kAnswers[] = {
    {"one byte fewer", [](DWORD& size, LSTATUS&) { --size; }},
    {"a few bytes more", [](DWORD& size, LSTATUS&) { size += 100; }},
    {"as many bytes as can be told", [](DWORD& size, LSTATUS&) { size = 0xFFFFFFFF; }},
    {"the same, and that there is more",
     [](DWORD& size, LSTATUS& result) {
         size = 0xFFFFFFFF;
         result = ERROR_MORE_DATA;
     }},
    {"no bytes, and that there is more",
     [](DWORD& size, LSTATUS& result) {
         size = 0;
         result = ERROR_MORE_DATA;
     }},
};

struct Work
{
    const char* name;
    std::function<void(COutlook2003CategoryList&)> run;
};

const Work kWorks[] = {
    {"read", [](COutlook2003CategoryList& list) { Walk(list); }},
    {"add",
     [](COutlook2003CategoryList& list) {
         std::wstring folderID;
         list.AddItem(CategoryOf(L"New").Get(), folderID);
     }},
    {"update",
     [](COutlook2003CategoryList& list) {
         list.ResetItem();
         list.GetNextItem();
         if (const auto item = CurrentItem(list))
             QueryItem<INContactCategory>(item.Get())->put_Name(Bstr(L"Uno").Get());
         list.UpdateItem(CurrentItem(list).Get());
     }},
    {"delete", [](COutlook2003CategoryList& list) { list.DeleteItem(L"One"); }},
};

class HostileMasterListTest : public testing::Test
{
  protected:
    std::string Stored() const
    {
        const std::vector<BYTE>& bytes = registry.keys.at(kCategoriesKey)->bytes;
        const std::wstring text(reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / 2);
        return Utf8FromWide(text);
    }

    RecordedRegistry registry;
};
} // namespace

// The load opens the key, asks for the size and then for the bytes. "Stays" is in no piece of work.
TEST_F(HostileMasterListTest, NoAnswerToAReadingLosesAStoredName)
{
    for (const Work& work : kWorks)
        for (const Answer& answer : kAnswers)
            for (const int first : {2, 3})
                for (const bool goesOn : {false, true})
                {
                    SCOPED_TRACE(std::string(work.name) + ", query " + std::to_string(first) +
                                 (goesOn ? " and all others: " : ": ") + answer.name);
                    registry.SetText(kCategoriesKey, L"One;Stays;");
                    registry.ClearLines();
                    registry.spoilQuery = [&](int call, DWORD& size, LSTATUS& result) {
                        if (call == first || (goesOn && call > first))
                            answer.spoil(size, result);
                    };
                    COutlook2003CategoryList list(registry);
                    const LargeNewFails sparing(kMuch);
                    EXPECT_NO_THROW({
                        list.GetItemIDs();
                        work.run(list);
                    });
                    EXPECT_THAT(Stored(), HasSubstr("Stays"));
                    EXPECT_LE(registry.Calls(), 20);
                    EXPECT_EQ(0u, registry.OpenKeys());
                }
}

TEST_F(HostileMasterListTest, AValueBeyondTheLimitIsNotReadAndKept)
{
    // With its terminator 16 MiB, and two bytes more.
    const std::wstring atLimit((16u << 20) / sizeof(wchar_t) - 1, L'a');
    for (const auto& [text, isRead] : {std::pair(atLimit, true), std::pair(atLimit + L'a', false)})
    {
        registry.SetText(kCategoriesKey, text);
        COutlook2003CategoryList list(registry);
        list.GetItemIDs();
        EXPECT_EQ(isRead, !Walk(list).empty());
        std::wstring folderID;
        list.AddItem(CategoryOf(L"New").Get(), folderID);
        const std::size_t added = isRead ? std::wstring_view(L";New;").size() : 0;
        EXPECT_EQ((text.size() + added + 1) * sizeof(wchar_t),
                  registry.keys.at(kCategoriesKey)->bytes.size());
    }
}

TEST_F(HostileMasterListTest, AValueThatIsNoListDoesNoHarm)
{
    const std::wstring odd = {0xDC00, L';', 1, L';', 0xFFFF, 0xD800, L';'};
    for (const std::wstring& text :
         {odd, std::wstring(1000, L';'), std::wstring(1 << 20, L'x'), std::wstring()})
        for (const Work& work : kWorks)
        {
            SCOPED_TRACE(work.name);
            registry.SetText(kCategoriesKey, L"One;" + text + L";Stays;");
            COutlook2003CategoryList list(registry);
            list.GetItemIDs();
            EXPECT_NO_THROW(work.run(list));
            EXPECT_THAT(Stored(), HasSubstr("Stays;"));
            EXPECT_EQ(0u, registry.OpenKeys());
        }
}
