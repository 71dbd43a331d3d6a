// The categories in the hidden message of the calendar folder. The sequences of calls and the bytes
// were written down from the order of the steps, by hand.
#include "outlook/categories/Outlook2007CategoryList.h"

#include "outlook/store/MapiMemory.h"
#include "outlook/store/TagArray.h"
#include "platform/GuidSource.h"
#include "tests/outlook/categories/CategoryItems.h"
#include "tests/outlook/store/FaultSession.h"
#include "tests/outlook/store/TableFixture.h"
#include "tests/recordingstore/FaultHarness.h"
#include "tests/recordingstore/StoreInterruption.h"

#include <gmock/gmock.h>

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace
{
constexpr ULONG kStreamTag = 0x7C080102;
constexpr DATE kNow = 40621.75; // 2011-03-19 18:00 UTC

constexpr char kEmptyList[] =
    R"(<?xml version="1.0" ?>
<categories default="" lastSavedSession="0" lastSavedTime="1601-01-01T00:00:00.000" xmlns="CategoryList.xsd" />
)";

// Two categories with something of another program.
constexpr char kTwo[] =
    R"(<?xml version="1.0" ?>
<categories default="A" lastSavedTime="2011-03-19T11:19:09.564">
    <category name="Work" color="3" keyboardShortcut="5" guid="{A}" lastTimeUsed="2011-03-19T12:00:00.000" />
    <!-- kept -->
    <category name="Home" color="-1" guid="{B}">
        <kept />
    </category>
</categories>
)";

// The attributes that stand between colour and last use in a new element.
constexpr char kUnused[] =
    R"(keyboardShortcut="0" usageCount="0" lastTimeUsedNotes="1601-01-01T00:00:00.000" )"
    R"(lastTimeUsedJournal="1601-01-01T00:00:00.000" )"
    R"(lastTimeUsedContacts="1601-01-01T00:00:00.000" )"
    R"(lastTimeUsedTasks="1601-01-01T00:00:00.000" )"
    R"(lastTimeUsedCalendar="1601-01-01T00:00:00.000" )"
    R"(lastTimeUsedMail="1601-01-01T00:00:00.000" )";

std::vector<BYTE> BytesOf(std::string_view text)
{
    return {text.begin(), text.end()};
}

// The clock stands still.
class StoppedList : public COutlook2007CategoryList
{
  public:
    using COutlook2007CategoryList::COutlook2007CategoryList;

    using COutlook2007CategoryList::Append;

    DATE RealUtcNow() const { return COutlook2007CategoryList::UtcNow(); }

  protected:
    DATE UtcNow() const override { return kNow; }
};

const std::string kRead = "IMessage(categories).GetProps([7C080102], 80000000)";
const std::string kSave = "IMessage(categories).SaveChanges(00000004)";

// How the record shows a write: the first 64 bytes and the length.
std::string SetLine(std::string_view text)
{
    std::string digits;
    for (const char c : text.substr(0, 64))
    {
        char two[3];
        std::snprintf(two, sizeof two, "%02X", static_cast<unsigned char>(c));
        digits += two;
    }
    const std::string rest =
        text.size() > 64 ? "... " + std::to_string(text.size()) + " bytes" : std::string();
    return "IMessage(categories).SetProps({7C080102 <" + digits + rest + ">}, problems)";
}

// New IDs are "{1}", "{2}", ...
class Outlook2007CategoryListTest : public testing::Test
{
  protected:
    Outlook2007CategoryListTest()
    {
        store.AddUsualFolders();
        store.AddMessage("categories",
                         "calendar",
                         StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.Configuration.CategoryList"),
                         true);
    }
    ~Outlook2007CategoryListTest() override
    {
        Close();
        EXPECT_TRUE(store.IsClean()) << store.Complaints();
    }

    void Open()
    {
        session = std::make_unique<StoreSession>();
        message = session->OpenMessage(store.EntryIdOf("categories"));
        list = std::make_unique<StoppedList>(message.Get(), session->Helper());
        store.ClearRecord();
    }
    void Close()
    {
        list.reset();
        message.Reset();
        session.reset();
    }
    // Loads the text and goes before the first category; begins the record anew.
    void Load(std::string_view text)
    {
        if (!text.empty())
            store.SetProps("categories", StoreProps().Bytes(kStreamTag, BytesOf(text)));
        Open();
        list->GetItemIDs();
        list->ResetItem();
        store.ClearRecord();
    }
    // The bytes that the message holds now.
    std::string Stored()
    {
        TagArray tags({&kStreamTag, 1});
        ULONG count = 0;
        SPropValue* values = nullptr;
        message->GetProps(tags.Get(), 0, &count, &values);
        const auto owned = AdoptMapiBuffer(values, session->Helper()->Proxy());
        if (!owned || PROP_TYPE(owned->ulPropTag) != PT_BINARY)
            return "(none)";
        return {reinterpret_cast<const char*>(owned->Value.bin.lpb), owned->Value.bin.cb};
    }
    std::wstring Add(INEntityItem* item)
    {
        std::wstring folderID = L"untouched";
        const std::wstring id = list->AddItem(item, folderID);
        EXPECT_EQ(L"untouched", folderID);
        return id;
    }
    ComPtr<INEntityItem> Find(const wchar_t* id)
    {
        list->ResetItem();
        list->GetItemByID(id);
        return CurrentItem(*list);
    }

    RecordingStore store;
    int guids = 0;
    ScopedGuidSource source{[this] { return L"{" + std::to_wstring(++guids) + L"}"; }};
    std::unique_ptr<StoreSession> session;
    ComPtr<IMessage> message;
    std::unique_ptr<StoppedList> list;
};
} // namespace

// --- Loading -----------------------------------------------------------------------------------

TEST_F(Outlook2007CategoryListTest, ReadsTheStreamWithOneCall)
{
    store.SetProps("categories", StoreProps().Bytes(kStreamTag, BytesOf(kTwo)));
    Open();
    list->GetItemIDs();
    EXPECT_THAT(store.Calls(), ElementsAre(kRead));
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home"));
    const auto work = Find(L"{A}");
    EXPECT_EQ(L"Work", NameOf(work.Get()));
    EXPECT_EQ(3, ColorOf(work.Get()));
    EXPECT_EQ(40621.5, LastModifiedOf(work.Get()));
    EXPECT_EQ(L"null", FolderIDOf(work.Get()));
    const auto home = Find(L"{B}");
    EXPECT_EQ(-1, ColorOf(home.Get()));
    EXPECT_EQ(0.0, LastModifiedOf(home.Get()));
}

TEST_F(Outlook2007CategoryListTest, AMessageWithoutAStreamGetsAnEmptyDocument)
{
    Open();
    list->GetItemIDs();
    EXPECT_THAT(store.Calls(), ElementsAre(kRead, SetLine(kEmptyList), kSave, kRead));
    EXPECT_EQ(kEmptyList, Stored());
    EXPECT_THAT(Walk(*list), IsEmpty());
    // It is a list from then on.
    EXPECT_EQ(L"{1}", Add(CategoryOf(L"Work").Get()));
    list->GetItemIDs();
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work"));
}

TEST_F(Outlook2007CategoryListTest, AnEmptyStreamGetsAnEmptyDocument)
{
    store.SetProps("categories", StoreProps().Bytes(kStreamTag, {}));
    Open();
    list->GetItemIDs();
    EXPECT_THAT(store.Calls(), ElementsAre(kRead, SetLine(kEmptyList), kSave, kRead));
    EXPECT_EQ(kEmptyList, Stored());
}

TEST_F(Outlook2007CategoryListTest, AnEmptyDocumentThatCannotBeSetIsNotSaved)
{
    Open();
    store.FailNext("IMessage(categories).SetProps", StoreFault::CallFailed);
    list->GetItemIDs();
    EXPECT_THAT(store.Calls(), ElementsAre(kRead, SetLine(kEmptyList), kRead));
    EXPECT_THAT(Walk(*list), IsEmpty());
    EXPECT_EQ(L"", Add(CategoryOf(L"Work").Get()));
}

// A store refuses to hand a large value over in this way; it is there all the same.
TEST_F(Outlook2007CategoryListTest, AStreamThatIsTooLargeToBeHandedOverIsNotReplaced)
{
    store.SetProps("categories", StoreProps().Failing(kStreamTag, MAPI_E_NOT_ENOUGH_MEMORY));
    Open();
    list->GetItemIDs();
    const std::vector<std::string> reading = {
        kRead, "IMessage(categories).OpenProperty(7C080102, IStream, 0, 00000000)"};
    EXPECT_EQ(reading, store.Calls());
    EXPECT_THAT(Walk(*list), IsEmpty());
    EXPECT_EQ(L"", Add(CategoryOf(L"Work").Get()));
    EXPECT_EQ(reading, store.Calls());
}

TEST_F(Outlook2007CategoryListTest, AnyOtherErrorOfTheValueCountsAsMissing)
{
    store.SetProps("categories", StoreProps().Failing(kStreamTag, MAPI_E_NO_ACCESS));
    Open();
    list->GetItemIDs();
    EXPECT_EQ(SetLine(kEmptyList), store.Calls()[1]);
}

TEST_F(Outlook2007CategoryListTest, AReadThatFailsReplacesNothing)
{
    store.SetProps("categories", StoreProps().Bytes(kStreamTag, BytesOf(kTwo)));
    for (const StoreFault fault : {StoreFault::OutOfMemory,
                                   StoreFault::CallFailed,
                                   StoreFault::NullOutput,
                                   StoreFault::FewerValues,
                                   StoreFault::WrongTypes,
                                   StoreFault::ShortRows})
    {
        SCOPED_TRACE(NameOf(fault));
        Open();
        store.FailNext(kRead, fault);
        list->GetItemIDs();
        EXPECT_THAT(store.Calls(), ElementsAre(kRead));
        EXPECT_THAT(Walk(*list), IsEmpty());
        EXPECT_EQ(L"", Add(CategoryOf(L"New").Get()));
        EXPECT_EQ(FALSE, list->DeleteItem(L"{A}"));
        EXPECT_EQ(kTwo, Stored());
        // It can be read later.
        list->GetItemIDs();
        EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home"));
        Close();
    }
}

TEST_F(Outlook2007CategoryListTest, ADamagedStreamIsAnEmptyListAndStaysAsItIs)
{
    std::string deep;
    for (int i = 0; i < 100; ++i)
        deep = "<e>" + deep + "</e>";
    const std::string damaged[] = {
        "no document",
        "<categories><category name=\"A\"",
        "<?xml version=\"1.0\"?>",
        "<categories><category name=\"\xFF\"/></categories>",
        R"(<!DOCTYPE c [<!ENTITY a "aaaa"><!ENTITY b "&a;&a;">]><c><e name="&b;"/></c>)",
        deep,
    };
    for (const std::string& text : damaged)
    {
        SCOPED_TRACE(text.substr(0, 60));
        Load(text);
        EXPECT_THAT(Walk(*list), IsEmpty());
        const auto item = CategoryOf(L"New");
        EXPECT_EQ(L"", Add(item.Get()));
        EXPECT_EQ(L"", EntityIDOf(item.Get())); // the item can be added later
        EXPECT_EQ(FALSE, list->UpdateItem(CategoryOf(L"New", L"{A}").Get()));
        EXPECT_EQ(FALSE, list->DeleteItem(L"{A}"));
        EXPECT_THAT(store.Calls(), IsEmpty());
        EXPECT_EQ(text, Stored());
        Close();
    }
}

// As bytes or as nodes: what the parser is kept from is an empty list and stays as it is.
TEST_F(Outlook2007CategoryListTest, AStreamThatIsTooLargeToBeParsedIsAnEmptyListAndStaysAsItIs)
{
    std::string nodes = "<categories>";
    for (int i = 0; i <= 512 * 1024; ++i)
        nodes += "<c/>";
    nodes += "</categories>";
    const std::string bytes = kTwo + std::string(16 * 1024 * 1024 - sizeof kTwo + 2, ' ');
    ASSERT_EQ(16u * 1024 * 1024 + 1, bytes.size());
    for (const std::string& text : {nodes, bytes})
    {
        Load(text);
        EXPECT_THAT(Walk(*list), IsEmpty());
        EXPECT_EQ(L"", Add(CategoryOf(L"New").Get()));
        EXPECT_EQ(FALSE, list->UpdateItem(CategoryOf(L"New", L"{A}").Get()));
        EXPECT_EQ(FALSE, list->DeleteItem(L"{A}"));
        EXPECT_THAT(store.Calls(), IsEmpty());
        EXPECT_TRUE(Stored() == text);
        Close();
    }
    // One byte less is a list.
    Load(bytes.substr(0, bytes.size() - 1));
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home"));
}

TEST_F(Outlook2007CategoryListTest, AByteOrderMarkInFrontIsAccepted)
{
    Load(std::string("\xEF\xBB\xBF") + kTwo);
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home"));
    // It is not printed again.
    EXPECT_EQ(TRUE, list->UpdateItem(CategoryOf(nullptr, L"{A}").Get()));
    EXPECT_EQ(kTwo, Stored());
}

TEST_F(Outlook2007CategoryListTest, EveryLoadStartsFromAnEmptyList)
{
    Load(kTwo);
    list->GetNextItem();
    list->GetItemIDs();
    EXPECT_EQ(L"Work", CurrentName(*list)); // the current item stays
    EXPECT_THAT(Rest(*list), IsEmpty());    // there is no place until a reset
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home"));
    store.SetProps("categories", StoreProps().Bytes(kStreamTag, BytesOf("damaged")));
    Close();
    Open();
    list->GetItemIDs();
    EXPECT_THAT(Walk(*list), IsEmpty());
}

TEST_F(Outlook2007CategoryListTest, BeforeALoadNothingIsWritten)
{
    store.SetProps("categories", StoreProps().Bytes(kStreamTag, BytesOf(kTwo)));
    Open();
    EXPECT_EQ(L"", Add(CategoryOf(L"New").Get()));
    EXPECT_EQ(FALSE, list->UpdateItem(CategoryOf(L"New", L"{A}").Get()));
    EXPECT_EQ(FALSE, list->DeleteItem(L"{A}"));
    EXPECT_THAT(store.Calls(), IsEmpty());
}

// --- Adding ------------------------------------------------------------------------------------

TEST_F(Outlook2007CategoryListTest, AddsAnElementWithAllAttributes)
{
    Load(kTwo);
    const auto item = CategoryOf(L"Fun & \u65e5", nullptr, 24);
    EXPECT_EQ(L"{1}", Add(item.Get()));
    const std::string expected = std::string(kTwo, sizeof kTwo - 1 - 14) +
                                 "    <category xmlns=\"\" name=\"Fun &amp; \xE6\x97\xA5\" "
                                 "color=\"24\" " +
                                 kUnused +
                                 "lastTimeUsed=\"2011-03-19T18:00:00.000\" "
                                 "lastSessionUsed=\"1601-01-01T00:00:00.000\" guid=\"{1}\" />\n"
                                 "</categories>\n";
    EXPECT_THAT(store.Calls(), ElementsAre(SetLine(expected), kSave));
    EXPECT_EQ(expected, Stored());
    EXPECT_EQ(L"{1}", EntityIDOf(item.Get()));
    EXPECT_EQ(kNow, LastModifiedOf(item.Get()));
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home", L"Fun & \u65e5"));
    EXPECT_EQ(item.Get(), Find(L"{1}").Get());
    // A load gives the same.
    list->GetItemIDs();
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home", L"Fun & \u65e5"));
    EXPECT_EQ(24, ColorOf(Find(L"{1}").Get()));
    EXPECT_EQ(kNow, LastModifiedOf(Find(L"{1}").Get()));
}

// Kept as it is: the ID makes the item count as added.
TEST_F(Outlook2007CategoryListTest, AnItemWithAnIDIsNotAddedAndGivesItsName)
{
    Load(kTwo);
    const auto item = CategoryOf(L"New", L"{Z}");
    EXPECT_EQ(L"New", Add(item.Get()));
    EXPECT_EQ(0.0, LastModifiedOf(item.Get()));
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home"));
}

TEST_F(Outlook2007CategoryListTest, TheSameNameIsAddedAgain)
{
    Load(kTwo);
    EXPECT_EQ(L"{1}", Add(CategoryOf(L"Work").Get()));
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home", L"Work"));
}

TEST_F(Outlook2007CategoryListTest, TakesNoItemWithoutAName)
{
    Load(kTwo);
    EXPECT_EQ(L"", Add(nullptr));
    EXPECT_EQ(L"", Add(CategoryOf(nullptr).Get()));
    EXPECT_EQ(L"", Add(CategoryOf(L"").Get()));
    EXPECT_EQ(L"", Add(CategoryOf(L"", L"{A}").Get()));
    EXPECT_EQ(L"", Add(FakeItem::Make(IID_NULL).Get()));
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_EQ(0, guids);
}

TEST_F(Outlook2007CategoryListTest, AnAddThatCannotBeStoredChangesNothing)
{
    Load(kTwo);
    store.FailNext("IMessage(categories).SetProps", StoreFault::CallFailed);
    EXPECT_EQ(L"", Add(CategoryOf(L"One").Get()));
    EXPECT_EQ(1u, store.Calls().size()); // without a save
    store.FailNext(kSave, StoreFault::CallFailed);
    EXPECT_EQ(L"", Add(CategoryOf(L"Two").Get()));
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home"));
    // The document is the old one too.
    EXPECT_EQ(L"{3}", Add(CategoryOf(L"Three").Get()));
    EXPECT_THAT(Stored(), Not(HasSubstr("name=\"One\"")));
    EXPECT_THAT(Stored(), Not(HasSubstr("name=\"Two\"")));
    EXPECT_THAT(Stored(), HasSubstr("name=\"Three\""));
}

// With an ID of its own the item would count as added.
TEST_F(Outlook2007CategoryListTest, ACategoryThatCouldNotBeStoredCanBeAddedAgain)
{
    Load(kTwo);
    const auto item = CategoryOf(L"New");
    for (const char* const call : {"IMessage(categories).SetProps", kSave.c_str()})
    {
        store.FailNext(call, StoreFault::CallFailed);
        EXPECT_EQ(L"", Add(item.Get()));
        EXPECT_EQ(L"", EntityIDOf(item.Get()));
    }
    EXPECT_EQ(L"{3}", Add(item.Get()));
    EXPECT_EQ(L"{3}", EntityIDOf(item.Get()));
    EXPECT_THAT(Stored(), HasSubstr("guid=\"{3}\""));
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home", L"New"));
}

// The call succeeds and tells a problem: nothing was set, and there is nothing to save.
TEST_F(Outlook2007CategoryListTest, AValueThatTheStoreDidNotTakeIsNotSaved)
{
    Load(kTwo);
    store.FailNext("IMessage(categories).SetProps", StoreFault::FewerValues);
    EXPECT_EQ(L"", Add(CategoryOf(L"One").Get()));
    EXPECT_EQ(1u, store.Calls().size());
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home"));
    EXPECT_EQ(kTwo, Stored());
}

TEST_F(Outlook2007CategoryListTest, WhatCouldNotBeReadAgainIsNotWritten)
{
    Load(kTwo);
    const std::wstring huge(16 * 1024 * 1024, L'x');
    EXPECT_EQ(L"", Add(CategoryOf(huge.c_str()).Get()));
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_EQ(kTwo, Stored());
}

// The declaration of this one would be printed with an end of its own inside.
TEST_F(Outlook2007CategoryListTest, ADocumentThatWouldNotComeBackIsLeftAsItIs)
{
    constexpr char kOdd[] =
        "<?xml version=\"1&quot;&gt;x\"?><r><c name=\"Work\" guid=\"{A}\"/></r>";
    Load(kOdd);
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work"));
    EXPECT_EQ(L"", Add(CategoryOf(L"One").Get()));
    EXPECT_EQ(FALSE, list->UpdateItem(CategoryOf(L"One", L"{A}").Get()));
    EXPECT_EQ(FALSE, list->DeleteItem(L"{A}"));
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_EQ(kOdd, Stored());
}

// --- Updating ----------------------------------------------------------------------------------

TEST_F(Outlook2007CategoryListTest, WritesNameAndTimeButNoColour)
{
    Load(kTwo);
    const auto item = Find(L"{A}");
    const auto category = QueryItem<INContactCategory>(item.Get());
    category->put_Name(Bstr(L"Labour").Get());
    category->put_Color(20);
    EXPECT_EQ(TRUE, list->UpdateItem(item.Get()));
    std::string expected = kTwo;
    expected.replace(expected.find("Work"), 4, "Labour");
    expected.replace(expected.find("T12:00"), 6, "T18:00");
    EXPECT_THAT(store.Calls(), ElementsAre(SetLine(expected), kSave));
    EXPECT_EQ(expected, Stored());
    EXPECT_EQ(kNow, LastModifiedOf(item.Get()));
    list->GetItemIDs();
    EXPECT_THAT(Walk(*list), ElementsAre(L"Labour", L"Home"));
    EXPECT_EQ(3, ColorOf(Find(L"{A}").Get()));
}

TEST_F(Outlook2007CategoryListTest, WithoutANameTheDocumentIsWrittenAsItWas)
{
    Load(kTwo);
    for (const wchar_t* name : {static_cast<const wchar_t*>(nullptr), L""})
    {
        store.ClearRecord();
        EXPECT_EQ(TRUE, list->UpdateItem(CategoryOf(name, L"{B}").Get()));
        EXPECT_THAT(store.Calls(), ElementsAre(SetLine(kTwo), kSave));
        EXPECT_EQ(kTwo, Stored());
    }
}

TEST_F(Outlook2007CategoryListTest, AnUnknownIDIsNotWrittenButTheItemGetsTheTime)
{
    Load(kTwo);
    for (const wchar_t* id : {static_cast<const wchar_t*>(nullptr), L"", L"{a}", L"{C}"})
    {
        const auto item = CategoryOf(L"New", id);
        EXPECT_EQ(FALSE, list->UpdateItem(item.Get()));
        EXPECT_EQ(kNow, LastModifiedOf(item.Get()));
    }
    EXPECT_THAT(store.Calls(), IsEmpty());
}

TEST_F(Outlook2007CategoryListTest, UpdatesNoItemOfAnotherKind)
{
    Load(kTwo);
    EXPECT_EQ(FALSE, list->UpdateItem(nullptr));
    EXPECT_EQ(FALSE, list->UpdateItem(FakeItem::Make(IID_NULL, L"{A}").Get()));
    EXPECT_THAT(store.Calls(), IsEmpty());
}

TEST_F(Outlook2007CategoryListTest, AnUpdateThatCannotBeStoredChangesNothing)
{
    Load(kTwo);
    store.FailNext(kSave, StoreFault::CallFailed);
    EXPECT_EQ(FALSE, list->UpdateItem(CategoryOf(L"New", L"{A}").Get()));
    EXPECT_EQ(TRUE, list->UpdateItem(CategoryOf(nullptr, L"{B}").Get()));
    EXPECT_EQ(kTwo, Stored());
}

// --- Deleting ----------------------------------------------------------------------------------

TEST_F(Outlook2007CategoryListTest, TakesTheElementOutOfDocumentAndList)
{
    Load(kTwo);
    EXPECT_EQ(TRUE, list->DeleteItem(L"{A}"));
    const std::string expected =
        R"(<?xml version="1.0" ?>
<categories default="A" lastSavedTime="2011-03-19T11:19:09.564">
    <!-- kept -->
    <category name="Home" color="-1" guid="{B}">
        <kept />
    </category>
</categories>
)";
    EXPECT_THAT(store.Calls(), ElementsAre(SetLine(expected), kSave));
    EXPECT_EQ(expected, Stored());
    // The deleted one was found on the way and is current; the cursor is before the next.
    EXPECT_EQ(L"Work", CurrentName(*list));
    EXPECT_THAT(Rest(*list), ElementsAre(L"Home"));
    EXPECT_THAT(Walk(*list), ElementsAre(L"Home"));
    EXPECT_EQ(FALSE, list->DeleteItem(L"{A}"));
}

TEST_F(Outlook2007CategoryListTest, DeletesWhereverTheCursorStands)
{
    Load(kTwo);
    EXPECT_THAT(Rest(*list), ElementsAre(L"Work", L"Home")); // at the end, nothing current
    EXPECT_EQ(TRUE, list->DeleteItem(L"{A}"));
    EXPECT_THAT(Walk(*list), ElementsAre(L"Home"));
    list->ResetItem();
    list->GetNextItem(); // behind it, and it is current
    EXPECT_EQ(TRUE, list->DeleteItem(L"{B}"));
    EXPECT_THAT(Walk(*list), IsEmpty());
    EXPECT_THAT(Stored(), HasSubstr("<!-- kept -->\n</categories>"));
}

TEST_F(Outlook2007CategoryListTest, TheItemBesideTheDeletedOneIsNotLost)
{
    Load(kTwo);
    list->GetNextItem(); // the cursor is before Home
    EXPECT_EQ(TRUE, list->DeleteItem(L"{A}"));
    EXPECT_THAT(Walk(*list), ElementsAre(L"Home"));
}

TEST_F(Outlook2007CategoryListTest, AnUnknownIDIsNotDeleted)
{
    Load(kTwo);
    for (const wchar_t* id : {L"", L"{a}", L"Work", L"{C}"})
        EXPECT_EQ(FALSE, list->DeleteItem(id)) << id;
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home"));
}

TEST_F(Outlook2007CategoryListTest, ADeletionThatCannotBeStoredChangesNothing)
{
    Load(kTwo);
    store.FailNext(kSave, StoreFault::CallFailed);
    EXPECT_EQ(FALSE, list->DeleteItem(L"{A}"));
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home"));
    EXPECT_EQ(TRUE, list->UpdateItem(CategoryOf(nullptr, L"{B}").Get()));
    EXPECT_EQ(kTwo, Stored());
}

// --- Time and life -----------------------------------------------------------------------------

TEST_F(Outlook2007CategoryListTest, TheClockIsUtcInWholeSeconds)
{
    Load(kTwo);
    SYSTEMTIME before{};
    SYSTEMTIME after{};
    GetSystemTime(&before);
    const DATE now = list->RealUtcNow();
    GetSystemTime(&after);
    DATE first = 0.0;
    DATE last = 0.0;
    before.wMilliseconds = after.wMilliseconds = 0;
    ASSERT_TRUE(SystemTimeToVariantTime(&before, &first));
    ASSERT_TRUE(SystemTimeToVariantTime(&after, &last));
    EXPECT_LE(first, now);
    EXPECT_GE(last, now);
}

// A client's category may hold the last reference to what owns the list.
TEST_F(Outlook2007CategoryListTest, ADetachedListMayEndWithOneOfItsItems)
{
    Load(kTwo);
    list->GetNextItem();
    auto item = FakeItem::Make(IID_NULL);
    item->onEnd = [this] {
        EXPECT_EQ(nullptr, CurrentItem(*list).Get()) << "the list had still something to release";
        list.reset();
    };
    list->Append(item.Get());
    item.Reset();
    session->Helper()->Live().DetachAll();
    EXPECT_FALSE(list);
}

TEST_F(Outlook2007CategoryListTest, ADetachedListAnswersWithFailures)
{
    Load(kTwo);
    list->GetNextItem();
    const auto item = CurrentItem(*list);
    session->Helper()->Live().DetachAll();
    store.ClearRecord();
    list->GetItemIDs();
    EXPECT_THAT(Walk(*list), IsEmpty());
    list->GetItemByID(L"{A}");
    EXPECT_EQ(L"(none)", CurrentName(*list));
    EXPECT_EQ(FALSE, list->UpdateItem(item.Get()));
    EXPECT_EQ(40621.5, LastModifiedOf(item.Get()));
    EXPECT_EQ(L"", Add(CategoryOf(L"New").Get()));
    EXPECT_EQ(FALSE, list->DeleteItem(L"{A}"));
    EXPECT_THAT(store.Calls(), IsEmpty());
}

TEST_F(Outlook2007CategoryListTest, WithoutAMessageOrAHelperItIsDead)
{
    store.SetProps("categories", StoreProps().Bytes(kStreamTag, BytesOf(kTwo)));
    Open();
    for (const bool withMessage : {true, false})
    {
        COutlook2007CategoryList dead(withMessage ? message.Get() : nullptr,
                                      withMessage ? nullptr : session->Helper());
        dead.GetItemIDs();
        EXPECT_THAT(Walk(dead), IsEmpty());
        std::wstring folderID;
        EXPECT_EQ(L"", dead.AddItem(CategoryOf(L"New").Get(), folderID));
        EXPECT_EQ(FALSE, dead.UpdateItem(CategoryOf(L"New", L"{A}").Get()));
        EXPECT_EQ(FALSE, dead.DeleteItem(L"{A}"));
    }
    EXPECT_THAT(store.Calls(), IsEmpty());
}

TEST_F(Outlook2007CategoryListTest, WhileAStoreCallRunsNothingElseChangesTheList)
{
    Load(kTwo);
    const StoreInterruption dialog(store, "IMessage(categories).SetProps", [&] {
        list->GetItemIDs();
        EXPECT_EQ(FALSE, list->UpdateItem(CategoryOf(L"Other", L"{A}").Get()));
        EXPECT_EQ(FALSE, list->DeleteItem(L"{A}"));
        std::wstring folderID;
        EXPECT_EQ(L"", list->AddItem(CategoryOf(L"Other").Get(), folderID));
        EXPECT_THAT(Walk(*list), ElementsAre(L"Work", L"Home"));
    });
    EXPECT_EQ(TRUE, list->DeleteItem(L"{B}"));
    EXPECT_TRUE(dialog.HasCome());
    EXPECT_THAT(Walk(*list), ElementsAre(L"Work"));
}

// --- Every call that may fail ------------------------------------------------------------------

// The harness has stores of its own, one at a time.
TEST(Outlook2007CategoryListFaultTest, NoFailureLosesAStoredCategory)
{
    constexpr char kWork[] = "    <category name=\"Work\" color=\"3\" keyboardShortcut=\"5\" "
                             "guid=\"{A}\" lastTimeUsed=\"2011-03-19T12:00:00.000\" />\n";
    const std::string addedElement =
        std::string("    <category xmlns=\"\" name=\"Fun\" color=\"0\" ") + kUnused +
        "lastTimeUsed=\"2011-03-19T18:00:00.000\" "
        "lastSessionUsed=\"1601-01-01T00:00:00.000\" guid=\"{1}\" />\n";
    const ScopedGuidSource source([] { return std::wstring(L"{1}"); });
    std::vector<BYTE> id;
    std::wstring added;
    bool hasUpdated = false;
    bool hasDeleted = false;
    const FaultTotals totals = RunFaults(
        {.name = "categories",
         .setUp =
             [&](RecordingStore& store) {
                 store.AddUsualFolders();
                 store.AddMessage(
                     "categories", "calendar", StoreProps().Bytes(kStreamTag, BytesOf(kTwo)), true);
                 id = store.EntryIdOf("categories");
             },
         .action =
             [&] {
                 added.clear();
                 hasUpdated = hasDeleted = false;
                 const FaultSession session;
                 const auto message = session.Open<IMessage>(id, MAPI_MESSAGE);
                 if (!message)
                     return; // the failing call was the session's own
                 StoppedList list(message.Get(), session.Helper());
                 list.GetItemIDs();
                 list.ResetItem();
                 list.GetNextItem();
                 std::wstring folderID;
                 added = list.AddItem(CategoryOf(L"Fun").Get(), folderID);
                 hasUpdated = list.UpdateItem(CategoryOf(L"Heim", L"{B}").Get());
                 hasDeleted = list.DeleteItem(L"{A}");
             },
         .check =
             [&](const FaultRun& run, RecordingStore& store) {
                 if (run.fault == StoreFault::None)
                 {
                     EXPECT_TRUE(!added.empty() && hasUpdated && hasDeleted);
                 }
                 // A store that says it saved and did not is beyond help.
                 if (run.fault == StoreFault::NullOutput)
                     return;
                 // What is stored is what the results tell, here by its size.
                 std::size_t size = sizeof kTwo - 1;
                 if (!added.empty())
                     size += addedElement.size();
                 if (hasUpdated)
                     size += std::string_view(" lastTimeUsed=\"2011-03-19T18:00:00.000\"").size();
                 if (hasDeleted)
                     size -= sizeof kWork - 1;
                 EXPECT_THAT(store.PropsOf("categories"),
                             testing::Contains(testing::AllOf(
                                 testing::StartsWith("7C080102 <3C3F786D6C"),
                                 testing::EndsWith("... " + std::to_string(size) + " bytes>"))))
                     << run.line;
             }},
        kAllStoreFaults);
    EXPECT_GT(totals.runs, 30u);
}

TEST(Outlook2007CategoryListFaultTest, NoFailureOfTheFirstWriteGivesAListThatIsNotStored)
{
    std::vector<BYTE> id;
    std::wstring added;
    std::vector<std::wstring> walked;
    const ScopedGuidSource source([] { return std::wstring(L"{1}"); });
    const FaultTotals totals =
        RunFaults({.name = "first write of categories",
                   .setUp =
                       [&](RecordingStore& store) {
                           store.AddUsualFolders();
                           store.AddMessage("categories", "calendar", StoreProps(), true);
                           id = store.EntryIdOf("categories");
                       },
                   .action =
                       [&] {
                           added.clear();
                           walked.clear();
                           const FaultSession session;
                           const auto message = session.Open<IMessage>(id, MAPI_MESSAGE);
                           if (!message)
                               return; // the failing call was the session's own
                           StoppedList list(message.Get(), session.Helper());
                           list.GetItemIDs();
                           walked = Walk(list);
                           std::wstring folderID;
                           added = list.AddItem(CategoryOf(L"Fun").Get(), folderID);
                       },
                   .check =
                       [&](const FaultRun& run, RecordingStore& store) {
                           SCOPED_TRACE(run.line + ' ' + NameOf(run.fault));
                           EXPECT_THAT(walked, IsEmpty());
                           EXPECT_TRUE(added.empty() || added == L"{1}");
                           if (run.fault == StoreFault::None)
                           {
                               EXPECT_EQ(L"{1}", added);
                           }
                           // A store that says it saved and did not is beyond help.
                           if (run.fault == StoreFault::NullOutput)
                               return;
                           const auto props = store.PropsOf("categories");
                           const auto stream = testing::Contains(testing::StartsWith("7C080102"));
                           const auto emptyList = testing::Contains(testing::AllOf(
                               testing::StartsWith("7C080102 <3C3F786D6C"),
                               testing::EndsWith("... " + std::to_string(sizeof kEmptyList - 1) +
                                                 " bytes>")));
                           if (!added.empty())
                           {
                               EXPECT_THAT(props, AllOf(stream, Not(emptyList)));
                           }
                           else
                           {
                               EXPECT_THAT(props, AnyOf(Not(stream), emptyList));
                           }
                       }},
                  kAllStoreFaults);
    EXPECT_GT(totals.runs, 30u);
}

// The empty document is written but not saved, or saved but not read again.
TEST_F(Outlook2007CategoryListTest, AFirstWriteThatFailsLeavesNoListToAddTo)
{
    Open();
    store.FailNext("IMessage(categories).SaveChanges", StoreFault::CallFailed);
    list->GetItemIDs();
    EXPECT_THAT(store.Calls(), ElementsAre(kRead, SetLine(kEmptyList), kSave, kRead));
    EXPECT_THAT(Walk(*list), IsEmpty());

    Close();
    store.RemoveProp("categories", kStreamTag);
    Open();
    const StoreInterruption between(store, "IMessage(categories).SaveChanges", [&] {
        store.FailNext(kRead, StoreFault::CallFailed);
    });
    list->GetItemIDs();
    EXPECT_TRUE(between.HasCome());
    EXPECT_THAT(store.Calls(), ElementsAre(kRead, SetLine(kEmptyList), kSave, kRead));
    EXPECT_THAT(Walk(*list), IsEmpty());
    EXPECT_EQ(L"", Add(CategoryOf(L"Work").Get()));
    EXPECT_EQ(kEmptyList, Stored());
}
