// Every call that loading, reading, adding, updating and deleting of groups make, going wrong in
// each way in which a store may.
#include "outlook/contacts/ContactStoreFixture.h"
#include "outlook/contacts/OutlookAddressGroupTable.h"
#include "tests/automation/CollectionFixture.h"
#include "tests/outlook/store/FaultSession.h"
#include "tests/recordingstore/FaultHarness.h"

using Microsoft::WRL::ComPtr;

namespace
{
// The harness has stores of its own, one at a time. They hold one list, "friends".
class GroupFaultTest : public testing::Test
{
  protected:
    void Fill(RecordingStore& store)
    {
        store.AddUsualFolders();
        store.NameProperty(kAddressNames, 0x8053);
        store.NameProperty(kAddressNames, 0x8055);
        store.NameProperty(kCommonNames, 0x85BD);
        std::vector<BYTE> member(0x5B, 0x11);
        member[0x14] = 0xC3;
        store.AddMessage("friends",
                         "contacts",
                         StoreProps()
                             .Text(PR_MESSAGE_CLASS_W, L"IPM.DistList")
                             .Text(0x8000001F, L"Friends")
                             .Binaries(0x80011102, {member})
                             .Bytes(0x80020102, {0x01}));
        store.AddMessage(
            "letter",
            "contacts",
            StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.Note").Text(PR_BODY_W, L"kept"));
        folderID = store.EntryIdOf("contacts");
        listID = HexOf(store.EntryIdOf("friends"));
    }

    // A session with a table, and what to do with it; without a failure that gives what the check
    // expects. No failure changes the members.
    void Run(const char* name,
             const std::function<void(COutlookAddressGroupTable&)>& work,
             const std::function<void(RecordingStore&)>& checkSuccess)
    {
        const FaultScenario scenario = {
            .name = name,
            .setUp = [this](RecordingStore& store) { Fill(store); },
            .action =
                [&] {
                    const FaultSession session;
                    const auto folder = session.Open<IMAPIFolder>(folderID, MAPI_FOLDER);
                    if (!folder)
                        return; // the failing call was the session's own
                    COutlookAddressGroupTable table(folder.Get(), session.Helper());
                    work(table);
                },
            .check =
                [&](const FaultRun& run, RecordingStore& store) {
                    // The type that the store tells for a name does not count.
                    if (run.fault == StoreFault::None || run.fault == StoreFault::ListedNames)
                        checkSuccess(store);
                    if (store.Exists("friends"))
                    {
                        EXPECT_THAT(store.PropsOf("friends"),
                                    testing::Contains(testing::StartsWith("80011102 [<11111111")));
                    }
                },
            .bystanders = {"letter", "contacts", "inbox", "calendar", "subtree"}};
        EXPECT_GT(RunFaults(scenario, kAllStoreFaults).runs, 30u);
        RunHostileAnswers(scenario);
    }
    static ComPtr<INEntityItem> Group(const std::wstring& id = {})
    {
        const auto group = CreateObject<INContactGroup>(CLSID_NContactGroup);
        group->put_Name(Bstr(L"Foes").Get());
        const auto item = QueryItem<INEntityItem>(group.Get());
        item->put_EntityID(Bstr(id).Get());
        return item;
    }

    std::vector<BYTE> folderID;
    std::wstring listID;
};
} // namespace

TEST_F(GroupFaultTest, LoadingAndReading)
{
    int read = 0;
    Run(
        "load and read",
        [&](COutlookAddressGroupTable& table) {
            table.GetItemIDs();
            table.ResetItem();
            table.GetNextItem();
            read = CurrentItem(table) ? 1 : 0;
            ExpectEnd(table);
        },
        [&](RecordingStore&) { EXPECT_EQ(1, read); });
}

TEST_F(GroupFaultTest, Adding)
{
    Run(
        "add",
        [](COutlookAddressGroupTable& table) {
            std::wstring folder;
            table.AddItem(Group().Get(), folder);
            EXPECT_EQ(L"", folder);
        },
        [](RecordingStore& store) {
            EXPECT_THAT(store.PropsOf("new 1"), testing::Contains("8000001F \"Foes\""));
        });
}

TEST_F(GroupFaultTest, Updating)
{
    Run(
        "update",
        [this](COutlookAddressGroupTable& table) {
            table.GetItemIDs();
            table.ResetItem();
            table.UpdateItem(Group(listID).Get());
        },
        [](RecordingStore& store) {
            EXPECT_THAT(store.PropsOf("friends"), testing::Contains("8000001F \"Foes\""));
        });
}

TEST_F(GroupFaultTest, Deleting)
{
    Run(
        "delete",
        [this](COutlookAddressGroupTable& table) {
            table.GetItemIDs();
            table.DeleteItem(listID);
        },
        [](RecordingStore& store) { EXPECT_FALSE(store.Exists("friends")); });
}
