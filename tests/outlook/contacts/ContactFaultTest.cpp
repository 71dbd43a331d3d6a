// Every call that loading, reading, adding, updating and deleting of contacts make, going wrong in
// each way in which a store may.
#include "outlook/contacts/ContactTableFixture.h"
#include "tests/outlook/store/FaultSession.h"
#include "tests/recordingstore/FaultHarness.h"

#include <gmock/gmock.h>

#include <fstream>

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::ElementsAre;

namespace
{
// The harness has stores of its own, one at a time.
class ContactFaultTest : public testing::Test
{
  protected:
    static void Fill(RecordingStore& store)
    {
        store.AddUsualFolders();
        NameContactProperties(store);
        store.AddMessage("ann",
                         "contacts",
                         StoreProps()
                             .Text(PR_MESSAGE_CLASS_W, L"IPM.Contact")
                             .Text(0x3A06001F, L"Ann")
                             .Text(0x8083001F, L"a@b")
                             .Texts(0x80E2101F, {L"Friends"})
                             .Time(0x80DE0040, 0x01BB000000000000)
                             .Text(0x8046001F, L"Bonn")
                             .Text(PR_BODY_W, L"note")
                             .Bytes(0x10090102, {0}));
        store.AddAttachment("ann",
                            StoreProps()
                                .Text(0x3704001F, L"Pic.jpg")
                                .Text(0x3703001F, L".jpg")
                                .Number(0x7FFF000B, 1)
                                .Bytes(0x37010102, {1, 2, 3}));
    }

    // A session with a table, and what to do with it; without a failure that gives what the check
    // expects.
    void Run(const char* name,
             const std::function<void(COutlookAddressTable&)>& work,
             const std::function<void(RecordingStore&)>& checkSuccess)
    {
        const FaultTotals totals =
            RunFaults({.name = name,
                       .setUp =
                           [this](RecordingStore& store) {
                               Fill(store);
                               contactsID = store.EntryIdOf("contacts");
                               annID = HexOf(store.EntryIdOf("ann"));
                           },
                       .action =
                           [&] {
                               const FaultSession session;
                               const auto folder =
                                   session.Open<IMAPIFolder>(contactsID, MAPI_FOLDER);
                               if (!folder)
                                   return; // the failing call was the session's own
                               COutlookAddressTable table(
                                   folder.Get(),
                                   session.Helper(),
                                   {{folder, true, 1, HexOf(contactsID), L"Contacts"}});
                               work(table);
                           },
                       .check =
                           [&](const FaultRun& run, RecordingStore& store) {
                               if (run.fault == StoreFault::None)
                                   checkSuccess(store);
                           }},
                      kAllStoreFaults);
        EXPECT_GT(totals.runs, 30u);
    }

    ComPtr<INContactItem> Ann(const std::wstring& picture)
    {
        auto contact = ContactOf(LinesOf(R"(
            FirstName "Ann"
            Email "a@b"
            Business.City "Bonn"
            Birthday 25569
            Category "Friends"
            Picture )" + QuotedText(picture)));
        contact->put_PersistentID(Bstr(std::wstring_view(annID)).Get());
        return contact;
    }

    ScopedTemporaryFolder temporary;
    ScratchDirectory files;
    std::vector<BYTE> contactsID;
    std::wstring annID;
};
} // namespace

TEST_F(ContactFaultTest, LoadingAndReading)
{
    TextLines read;
    Run(
        "load and read",
        [&](COutlookAddressTable& table) {
            table.GetItemIDs();
            table.ResetItem();
            table.GetNextItem();
            const auto contact = QueryItem<INContactItem>(CurrentItem(table).Get());
            read = contact ? TextOfContact(contact.Get()) : TextLines();
            table.GetNextItem();
            EXPECT_FALSE(CurrentItem(table));
        },
        [&](RecordingStore&) {
            std::erase_if(read,
                          [](const std::string& line) { return line.starts_with("Picture"); });
            EXPECT_THAT(read,
                        ElementsAre("FirstName \"Ann\"",
                                    "Notes \"note\"",
                                    "Email \"a@b\"",
                                    "Business.City \"Bonn\"",
                                    testing::StartsWith("Birthday "),
                                    "Category \"Friends\""));
        });
}

TEST_F(ContactFaultTest, Adding)
{
    const std::wstring picture = files.File(L"a.jpg");
    std::ofstream(std::filesystem::path(picture), std::ios::binary) << "abc";
    Run(
        "add",
        [&](COutlookAddressTable& table) {
            std::wstring folderID;
            const auto contact = Ann(picture);
            table.AddItem(QueryItem<INEntityItem>(contact.Get()).Get(), folderID);
            EXPECT_EQ(L"", folderID);
        },
        [](RecordingStore& store) {
            EXPECT_THAT(store.PropsOf("new 1"), Contains("3A06001F \"Ann\""));
            EXPECT_THAT(store.PropsOf("new 1#0"), Contains("37010102 <616263>"));
        });
}

TEST_F(ContactFaultTest, Updating)
{
    const std::wstring picture = files.File(L"a.jpg");
    std::ofstream(std::filesystem::path(picture), std::ios::binary) << "abc";
    Run(
        "update",
        [&](COutlookAddressTable& table) {
            table.GetItemIDs();
            table.ResetItem();
            const auto contact = Ann(picture);
            table.UpdateItem(QueryItem<INEntityItem>(contact.Get()).Get());
        },
        [](RecordingStore& store) {
            EXPECT_THAT(store.PropsOf("ann"), Contains("8083001F \"a@b\""));
            EXPECT_THAT(store.ChildrenOf("ann"), testing::SizeIs(1));
        });
}

TEST_F(ContactFaultTest, Deleting)
{
    Run(
        "delete",
        [this](COutlookAddressTable& table) {
            table.GetItemIDs();
            table.DeleteItem(annID);
        },
        [](RecordingStore& store) { EXPECT_FALSE(store.Exists("ann")); });
}
