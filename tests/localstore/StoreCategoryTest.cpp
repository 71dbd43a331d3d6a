// The category list in the embedded store, read and written by the server.
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "support/SharedData.h"
#include "tests/localstore/SampleMessages.h"
#include "tests/localstore/StoreProviderFixture.h"
#include "tests/outlook/categories/CategoryItems.h"

#include <gmock/gmock.h>

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{
class StoreCategoryTest : public StoreProviderTest
{
  protected:
    std::vector<std::wstring> Names() { return Walk(*LoadTable(ContactCategory).get()); }
    // The bytes of the list, as a client of the store finds them.
    std::string StoredText()
    {
        ComPtr<IMAPITable> table;
        EXPECT_EQ(S_OK,
                  OpenFolder(Binary(RootFolder().Get(), kCalendarFolder))
                      ->GetContentsTable(MAPI_UNICODE | MAPI_ASSOCIATED, table.GetAddressOf()));
        Tags columns({PR_ENTRYID});
        LPSRowSet rows = nullptr;
        EXPECT_EQ(S_OK, m_library.QueryAllRows(table.Get(), columns, nullptr, nullptr, 0, &rows));
        EXPECT_EQ(1u, rows->cRows);
        const SBinary& id = rows->aRow[0].lpProps[0].Value.bin;
        const ComPtr<IMessage> message = OpenMessage({id.lpb, id.lpb + id.cb});
        m_library.FreeProws(rows);
        const EntryBytes bytes = Binary(message.Get(), 0x7C080102);
        return {bytes.begin(), bytes.end()};
    }
};

std::vector<std::wstring> IDs(IEnumerator& list)
{
    std::vector<std::wstring> ids;
    list.ResetItem();
    for (list.GetNextItem(); CurrentItem(list); list.GetNextItem())
        ids.push_back(EntityIDOf(CurrentItem(list).Get()));
    return ids;
}

// The first such text from there on becomes the other.
void Replace(std::string& text, std::size_t from, std::string_view old, const std::string& other)
{
    const std::size_t at = text.find(old, from);
    ASSERT_NE(std::string::npos, at) << old;
    text.replace(at, old.size(), other);
}

// A document of one line, with a mark of the byte order in front, as it is printed again: no mark,
// one node a line, a blank before the end of the declaration.
std::string OneNodeALine(std::string text)
{
    constexpr std::string_view kMark = "\xEF\xBB\xBF";
    EXPECT_TRUE(text.starts_with(kMark));
    text.erase(0, kMark.size());
    Replace(text, 0, "?><categories", " ?>\n<categories");
    for (std::size_t at = text.find("><category "); at != std::string::npos;
         at = text.find("><category ", at))
        text.insert(at + 1, "\n    ");
    Replace(text, 0, "</categories>", "\n</categories>\n");
    return text;
}

// The time of the item as the document has it, by the system's own conversion.
std::string TimeTextOf(INEntityItem& item)
{
    DATE time = 0.0;
    item.get_LastModificationTime(&time);
    SYSTEMTIME parts = {};
    EXPECT_TRUE(VariantTimeToSystemTime(time, &parts));
    char text[32];
    std::snprintf(text,
                  sizeof text,
                  "%04d-%02d-%02dT%02d:%02d:%02d.000",
                  parts.wYear,
                  parts.wMonth,
                  parts.wDay,
                  parts.wHour,
                  parts.wMinute,
                  parts.wSecond);
    return text;
}
} // namespace

TEST_F(StoreCategoryTest, AStoreWithoutCategoriesGetsAnEmptyDocument)
{
    ASSERT_NO_FATAL_FAILURE(LogOnProvider());
    EXPECT_EQ("", StoredText());
    EXPECT_THAT(Names(), IsEmpty());
    EXPECT_EQ("<?xml version=\"1.0\" ?>\n<categories default=\"\" lastSavedSession=\"0\" "
              "lastSavedTime=\"1601-01-01T00:00:00.000\" xmlns=\"CategoryList.xsd\" />\n",
              StoredText());
}

TEST_F(StoreCategoryTest, AddsRenamesAndDeletes)
{
    ASSERT_NO_FATAL_FAILURE(LogOnProvider());
    const auto list = LoadTable(ContactCategory);
    std::wstring folderID;
    const std::wstring work = list->AddItem(CategoryOf(L"Work", nullptr, 7).Get(), folderID);
    const std::wstring home = list->AddItem(CategoryOf(L"Home", nullptr, 2).Get(), folderID);
    EXPECT_EQ(38u, work.size()); // a GUID in braces
    EXPECT_NE(work, home);
    EXPECT_THAT(Names(), ElementsAre(L"Work", L"Home"));

    list->ResetItem();
    list->GetItemByID(work);
    const auto item = CurrentItem(*list.get());
    QueryItem<INContactCategory>(item.Get())->put_Name(Bstr(L"Labour").Get());
    QueryItem<INContactCategory>(item.Get())->put_Color(9);
    EXPECT_EQ(TRUE, list->UpdateItem(item.Get()));
    EXPECT_THAT(Names(), ElementsAre(L"Labour", L"Home"));
    EXPECT_THAT(StoredText(), HasSubstr("name=\"Labour\" color=\"7\""));

    EXPECT_EQ(TRUE, list->DeleteItem(work));
    EXPECT_THAT(Names(), ElementsAre(L"Home"));
    EXPECT_THAT(IDs(*LoadTable(ContactCategory).get()), ElementsAre(home));
    // Another logon finds the same.
    ASSERT_NO_FATAL_FAILURE(LogOnProvider());
    EXPECT_THAT(Names(), ElementsAre(L"Home"));
}

// The expected values are those that the real document has, read by eye. Nothing of it is kept here
// but these.
TEST_F(StoreCategoryTest, TheListOfAMailClientIsReadAndKept)
{
    const auto samples = SharedSamples("categories", ".jsonl");
    if (samples.empty())
        return;
    ASSERT_EQ(1u, samples.size());
    LoadFolders(m_path,
                json::array({SampleFolder(
                    "calendar", "associated", {{ReadSampleMessage(samples.front())}})}));
    ASSERT_NO_FATAL_FAILURE(LogOnProvider());
    const auto list = LoadTable(ContactCategory);
    EXPECT_THAT(Walk(*list.get()),
                ElementsAre(L"Red Category",
                            L"Orange Category",
                            L"Yellow Category",
                            L"Green Category",
                            L"Blue Category",
                            L"Purple Category"));
    EXPECT_THAT(IDs(*list.get()),
                ElementsAre(L"{dc8c8b3c-4562-455b-9174-037c20214992}",
                            L"{8d375578-d8f9-4557-a7c6-9669d79c535d}",
                            L"{57c9852e-3435-446f-a389-4af691b57171}",
                            L"{91203a5e-a8e7-4784-a36c-0915630ab517}",
                            L"{4078248c-e4b5-4b9c-abfa-fafd2e735213}",
                            L"{19daf893-c603-4373-9d8a-658815206904}"));
    std::vector<LONG> colors;
    list->ResetItem();
    for (list->GetNextItem(); CurrentItem(*list.get()); list->GetNextItem())
    {
        const auto item = CurrentItem(*list.get());
        colors.push_back(ColorOf(item.Get()));
        DATE time = 0.0;
        EXPECT_EQ(S_OK, item->get_LastModificationTime(&time));
        // 2011-03-19 11:19:09 UTC
        EXPECT_DOUBLE_EQ(40621.0 + 40749.0 / 86400.0, time);
    }
    EXPECT_THAT(colors, ElementsAre(0, 1, 3, 4, 7, 9));

    // Each change shows in its own element; all else of the document stays as the mail client wrote
    // it.
    std::string expected = OneNodeALine(StoredText());
    EXPECT_EQ(TRUE, list->DeleteItem(L"{57c9852e-3435-446f-a389-4af691b57171}"));
    const std::size_t yellow =
        expected.find("    <category renameOnFirstUse=\"1\" name=\"Yellow Category\"");
    ASSERT_NE(std::string::npos, yellow);
    expected.erase(yellow, expected.find('\n', yellow) + 1 - yellow);
    EXPECT_EQ(expected, StoredText());
    EXPECT_EQ(5u, Names().size());

    list->ResetItem();
    list->GetItemByID(L"{91203a5e-a8e7-4784-a36c-0915630ab517}");
    const auto green = CurrentItem(*list.get());
    ASSERT_TRUE(green);
    QueryItem<INContactCategory>(green.Get())->put_Name(Bstr(L"Gr\x00FCn & Co").Get());
    QueryItem<INContactCategory>(green.Get())->put_Color(12);
    EXPECT_EQ(TRUE, list->UpdateItem(green.Get()));
    Replace(expected, 0, "Green Category", "Gr\xC3\xBCn &amp; Co");
    Replace(expected,
            expected.find("&amp; Co"),
            " lastTimeUsed=\"2011-03-19T11:19:09.564Z\"",
            " lastTimeUsed=\"" + TimeTextOf(*green.Get()) + '"');
    EXPECT_EQ(expected, StoredText());

    const auto added = CategoryOf(L"Added", nullptr, 24);
    std::wstring folderID;
    const std::wstring id = list->AddItem(added.Get(), folderID);
    Replace(expected,
            0,
            "</categories>",
            "    <category xmlns=\"\" name=\"Added\" color=\"24\" keyboardShortcut=\"0\" "
            "usageCount=\"0\" lastTimeUsedNotes=\"1601-01-01T00:00:00.000\" "
            "lastTimeUsedJournal=\"1601-01-01T00:00:00.000\" "
            "lastTimeUsedContacts=\"1601-01-01T00:00:00.000\" "
            "lastTimeUsedTasks=\"1601-01-01T00:00:00.000\" "
            "lastTimeUsedCalendar=\"1601-01-01T00:00:00.000\" "
            "lastTimeUsedMail=\"1601-01-01T00:00:00.000\" lastTimeUsed=\"" +
                TimeTextOf(*added.Get()) +
                "\" lastSessionUsed=\"1601-01-01T00:00:00.000\" guid=\"" +
                std::string(id.begin(), id.end()) + "\" />\n</categories>");
    EXPECT_EQ(expected, StoredText());
}
