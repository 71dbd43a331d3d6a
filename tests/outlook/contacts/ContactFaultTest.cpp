// Every call that loading, reading, adding, updating and deleting of contacts make, going wrong in
// each way in which a store may.
#include "outlook/contacts/ContactTableFixture.h"
#include "outlook/store/UserProperties.h"
#include "tests/outlook/store/FaultSession.h"
#include "tests/recordingstore/FaultHarness.h"
#include "tests/service/FakeBackEnds.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <utility>

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

namespace
{
// What a scenario expects of every run that a call went wrong in, too.
using CheckRun = std::function<void(const FaultRun&, RecordingStore&)>;

// A call that all runs make up to their failure.
constexpr char kColumnValues[] = "IMessage(ann).GetProps([30080040 ";

// The number of the first call that starts so; 0 where there is none.
unsigned NumberOf(const RecordingStore& store, const std::string& start)
{
    const auto record = store.Record();
    const auto call = std::ranges::find_if(
        record, [&](const RecordedStoreCall& one) { return one.text.starts_with(start); });
    return call == record.end() ? 0 : call->number;
}

// A back end of which only the identity is asked.
class IdentityProvider : public FakeProvider
{
  public:
    IdentityProvider(CallLog& log, ComPtr<IMAPIProp> identity, CMAPIHelper* helper)
        : FakeProvider(log), m_identity(std::move(identity)), m_helper(helper)
    {
    }
    std::unique_ptr<UserIdentity> GetUserProperties() override
    {
        return std::make_unique<CUserProperties>(m_identity.Get(), m_helper);
    }

  private:
    ComPtr<IMAPIProp> m_identity;
    CMAPIHelper* m_helper;
};

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
        store.AddMessage("letter",
                         "contacts",
                         StoreProps()
                             .Text(PR_MESSAGE_CLASS_W, L"IPM.Note")
                             .Text(PR_BODY_W, L"kept")
                             .Texts(0x80E2101F, {L"Friends"}));
    }

    // A session with a table, and what to do with it; without a failure that gives what the check
    // expects.
    void Run(const char* name,
             const std::function<void(COutlookAddressTable&)>& work,
             const std::function<void(RecordingStore&)>& checkSuccess,
             const CheckRun& checkFailure = {})
    {
        FaultScenario scenario = {
            .name = name,
            .setUp =
                [this](RecordingStore& store) {
                    Fill(store);
                    if (prepare)
                        prepare(store);
                    contactsID = store.EntryIdOf("contacts");
                    annID = HexOf(store.EntryIdOf("ann"));
                },
            .action =
                [&] {
                    const FaultSession session;
                    const auto folder = session.Open<IMAPIFolder>(contactsID, MAPI_FOLDER);
                    if (!folder)
                        return; // the failing call was the session's own
                    COutlookAddressTable table(folder.Get(),
                                               session.Helper(),
                                               {{folder, true, 1, HexOf(contactsID), L"Contacts"}});
                    if (identityID.empty())
                        return work(table);
                    backEnds.start = [&](std::unique_ptr<IProvider>& provider) {
                        provider = std::make_unique<IdentityProvider>(
                            backEnds.log,
                            session.Open<IMAPIProp>(identityID, MAPI_MAILUSER),
                            session.Helper());
                        return S_OK;
                    };
                    backEnds.manager.StartService(L"Microsoft Outlook");
                    work(table);
                    backEnds.manager.StopService();
                },
            .check =
                [&](const FaultRun& run, RecordingStore& store) {
                    if (run.fault == StoreFault::None)
                        checkSuccess(store);
                    else if (checkFailure)
                        checkFailure(run, store);
                },
            .bystanders = {"letter", "contacts", "inbox", "calendar", "subtree"}};
        EXPECT_GT(RunFaults(scenario, kAllStoreFaults).runs, 30u);
        // Of what a hostile store said, nothing holds but that the harness looks at.
        scenario.check = nullptr;
        RunHostileAnswers(scenario);
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

    // Walks the one contact into read.
    void LoadAndRead(COutlookAddressTable& table)
    {
        table.GetItemIDs();
        table.ResetItem();
        table.GetNextItem();
        const auto contact = QueryItem<INContactItem>(CurrentItem(table).Get());
        read = contact ? TextOfContact(contact.Get()) : TextLines();
        std::erase_if(read, [](const std::string& line) { return line.starts_with("Picture"); });
        ExpectEnd(table);
    }

    ScopedTemporaryFolder temporary;
    ScratchDirectory files;
    FakeBackEnds backEnds;
    std::function<void(RecordingStore&)> prepare; // what a scenario adds to the usual contents
    std::vector<BYTE> contactsID;
    std::vector<BYTE> identityID; // where a user is logged on
    std::wstring annID;
    TextLines read;
};
} // namespace

TEST_F(ContactFaultTest, LoadingAndReading)
{
    unsigned columnsCall = 0;
    unsigned bodyCall = 0;
    Run(
        "load and read",
        [this](COutlookAddressTable& table) { LoadAndRead(table); },
        [&](RecordingStore& store) {
            EXPECT_THAT(read,
                        ElementsAre("FirstName \"Ann\"",
                                    "Notes \"note\"",
                                    "Email \"a@b\"",
                                    "Business.City \"Bonn\"",
                                    StartsWith("Birthday "),
                                    "Category \"Friends\""));
            columnsCall = NumberOf(store, kColumnValues);
            bodyCall = NumberOf(store, "IMessage(ann).GetProps([1000001F]");
            EXPECT_LT(columnsCall, bodyCall);
        },
        // What fails behind the values of the columns takes none of them away, and only the body's
        // own failure the note.
        [&](const FaultRun& run, RecordingStore&) {
            if (run.call <= columnsCall)
                return;
            TextLines expected = {"FirstName \"Ann\"",
                                  "Email \"a@b\"",
                                  "Business.City \"Bonn\"",
                                  "Category \"Friends\""};
            if (run.call != bodyCall)
                expected.insert(expected.begin() + 1, "Notes \"note\"");
            std::erase_if(read,
                          [](const std::string& line) { return line.starts_with("Birthday"); });
            EXPECT_EQ(expected, read) << run.line << ' ' << NameOf(run.fault);
        });
}

// Without a body, the note comes out of the RTF.
TEST_F(ContactFaultTest, ReadingANoteOutOfRtf)
{
    prepare = [](RecordingStore& store) {
        store.RemoveProp("ann", PR_BODY_W);
        store.SetProps("ann", StoreProps().Bytes(0x10090102, RtfOfANote()));
    };
    unsigned rtfCall = 0;
    Run(
        "read RTF",
        [this](COutlookAddressTable& table) { LoadAndRead(table); },
        [&](RecordingStore& store) {
            EXPECT_THAT(read, Contains("Notes \"note\""));
            rtfCall = NumberOf(store, "IMessage(ann).OpenProperty(10090102");
            EXPECT_NE(0u, rtfCall);
        },
        // The other fields stay; a part of the note may be lost, and none is made up.
        [&](const FaultRun& run, RecordingStore&) {
            if (run.call < rtfCall)
                return;
            EXPECT_THAT(read,
                        testing::IsSupersetOf({"FirstName \"Ann\"",
                                               "Email \"a@b\"",
                                               "Business.City \"Bonn\"",
                                               "Category \"Friends\""}))
                << run.line;
            for (const std::string& line : read)
            {
                const std::string withoutQuote = line.substr(0, line.size() - 1);
                EXPECT_TRUE(!line.starts_with("Notes") ||
                            std::string("Notes \"note").starts_with(withoutQuote))
                    << line << " after " << run.line;
            }
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

TEST_F(ContactFaultTest, AddingWithTheIdentitysStamp)
{
    const std::wstring picture = files.File(L"a.jpg");
    std::ofstream(std::filesystem::path(picture), std::ios::binary) << "abc";
    prepare = [this](RecordingStore& store) {
        store.AddIdentity(StoreProps().Text(0x3003001F, L"/o=Acme").Text(0x39FE001F, L"me@acme"));
        identityID = store.EntryIdOf("identity");
    };
    Run(
        "add with stamp",
        [&](COutlookAddressTable& table) {
            std::wstring folderID;
            const auto contact = Ann(picture);
            table.AddItem(QueryItem<INEntityItem>(contact.Get()).Get(), folderID);
            EXPECT_EQ(L"", folderID);
        },
        [](RecordingStore& store) {
            EXPECT_THAT(store.PropsOf("new 1"),
                        testing::IsSupersetOf({"80E0001F \"/o=Acme\"", "80E1001F \"me@acme\""}));
        },
        // A stamp that cannot be had is all that its failure costs.
        [](const FaultRun& run, RecordingStore& store) {
            if (run.line.find("IMailUser(identity)") == std::string::npos &&
                run.line.find(kCommonSetText) == std::string::npos)
                return;
            EXPECT_THAT(store.PropsOf("new 1"),
                        testing::IsSupersetOf({"3A06001F \"Ann\"",
                                               "8083001F \"a@b\"",
                                               "8015000B 1",
                                               "10800003 512",
                                               "80E2101F [\"Friends\"]"}))
                << run.line << ' ' << NameOf(run.fault);
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
