// pim.exe on the groups of the message store. A member is a wrapped ID: flags and the wrapping
// provider in 20 bytes, a type byte, and the 70 bytes of the ID; 0xB3 wraps a contact, 0xB4 a
// group.
#include "endtoend/CalendarFolder.h"
#include "endtoend/MessageStore.h"
#include "endtoend/PimProgram.h"
#include "endtoend/StoreClient.h"

#include <gmock/gmock.h>

#include <memory>

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{
const std::string kBoard = "0000000050530501E00000000000000000000000000000B1";
const std::string kChoir = "0000000050530501E00000000000000000000000000000B2";

std::string Bytes(std::size_t count, const char* byte)
{
    std::string hex;
    for (std::size_t i = 0; i < count; ++i)
        hex += byte;
    return hex;
}

const std::string kContact = Bytes(70, "A1");
const std::string kSubgroup = Bytes(70, "A2");

std::string Member(const char* type, const std::string& id)
{
    return R"({"hex": ")" + Bytes(20, "00") + type + id + R"("})";
}

std::string Group(const std::string& id, const std::string& name, const std::string& members)
{
    return R"({"entryId": ")" + id + R"(", "modified": "2026-01-03T10:00:00Z", "properties": [
        {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.DistList"},
        {"set": "PSETID_Common", "id": "0x85BD", "type": "PT_BINARY", "value": {"hex": "0102"}},
        {"set": "PSETID_Address", "id": "0x8055", "type": "PT_MV_BINARY", "value": [)" +
           members + R"(]},
        {"set": "PSETID_Address", "id": "0x8053", "type": "PT_UNICODE", "value": ")" +
           name + R"("}]})";
}

std::string StoreText()
{
    return R"({"format": "PimStoreBridge store", "version": 1, "identity": {}, "root": {"folders": [
        {"name": "Top", "roles": ["subtree"], "folders": [
          {"name": "Calendar", "class": "IPF.Appointment", "roles": ["calendar"]},
          {"name": "Contacts", "class": "IPF.Contact", "roles": ["contacts"], "messages": [)" +
           Group(kChoir, "choir", "") + ", " +
           Group(kBoard, "Board", Member("B3", kContact) + ", " + Member("B4", kSubgroup)) +
           "]}]}]}}";
}

class PimGroupsTest : public testing::Test
{
  protected:
    static void SetUpTestSuite()
    {
        // The other back ends are there too.
        s_folder = std::make_unique<CalendarFolder>();
        s_store = std::make_unique<MessageStore>();
    }
    static void TearDownTestSuite()
    {
        s_store.reset();
        s_folder.reset();
    }
    void SetUp() override { s_store->Load(StoreText()); }

    static inline std::unique_ptr<CalendarFolder> s_folder;
    static inline std::unique_ptr<MessageStore> s_store;
    const ServerKeeper keeper;
};
} // namespace

TEST_F(PimGroupsTest, ListsGroupsByNameWithTheNumberOfTheirMembers)
{
    EXPECT_EQ(PimDone(L"groups list"),
              "NAME   MEMBERS  SUBGROUPS  ID\n"
              "Board  1        1          " +
                  kBoard +
                  "\n"
                  "choir  0        0          " +
                  kChoir + "\n");
}

TEST_F(PimGroupsTest, ShowsTheMembersOfOneGroup)
{
    // Members that the store does not have are shown by their IDs.
    EXPECT_EQ(PimDone(L"groups show board"),
              "Name:       Board\n"
              "Member:     " +
                  kContact +
                  "\n"
                  "Subgroup:   " +
                  kSubgroup +
                  "\n"
                  "Changed:    2026-01-03 11:00 (2026-01-03 10:00 UTC)\n"
                  "Group ID:   0102\n"
                  "ID:         " +
                  kBoard + "\n");
    EXPECT_EQ(PimDone(L"--json groups show " + std::wstring(kChoir.begin(), kChoir.end())),
              "{\n  \"id\": \"" + kChoir +
                  "\",\n  \"name\": \"choir\",\n  \"groupId\": \"0102\",\n  \"folderId\": \"\",\n"
                  "  \"modifiedUtc\": \"2026-01-03T10:00:00Z\",\n  \"members\": [],\n"
                  "  \"subgroups\": [],\n  \"categories\": []\n}\n");
}

// The server stores what it writes under the class of an appointment, so that it lists it no
// longer.
TEST_F(PimGroupsTest, SaysThatTheStoreListsAWrittenGroupNoLonger)
{
    const std::string warning =
        "pim: The store kept another value than the one asked for: group.\n";
    const ProgramResult added = RunPim(L"groups add Friends");
    EXPECT_EQ(added.exitCode, 5u);
    EXPECT_THAT(added.output, StartsWith("Added "));
    EXPECT_EQ(added.errors, warning);
    EXPECT_THAT(s_store->Dump(), HasSubstr("\"Friends\""));

    const ProgramResult renamed = RunPim(L"groups rename Choir Singers");
    EXPECT_EQ(renamed.exitCode, 5u);
    EXPECT_EQ(renamed.output, "Renamed " + kChoir + "\n");
    EXPECT_EQ(renamed.errors, warning);
    EXPECT_THAT(s_store->Dump(), AllOf(HasSubstr("\"Singers\""), Not(HasSubstr("\"choir\""))));
    EXPECT_THAT(PimDone(L"groups list"),
                AllOf(HasSubstr("Board"), Not(HasSubstr("Singers")), Not(HasSubstr("Friends"))));
}

TEST_F(PimGroupsTest, DeletesGroupsByTheirNames)
{
    const ProgramResult result = RunPim(L"groups delete Board nobody CHOIR");
    EXPECT_EQ(result.exitCode, 4u);
    EXPECT_EQ(result.output, "Deleted " + kBoard + "\nDeleted " + kChoir + "\n");
    EXPECT_EQ(result.errors,
              "pim: There is no group with the ID or name \"nobody\". pim groups list shows the "
              "IDs.\n");
    EXPECT_EQ(PimDone(L"groups list"), "No groups in Microsoft Outlook.\n");
}

TEST_F(PimGroupsTest, SaysWhichStoreHasNoGroups)
{
    const ProgramResult none = RunPim(L"--provider \"Outlook Express\" groups list");
    EXPECT_EQ(none.exitCode, 1u);
    EXPECT_EQ(none.output, "");
    EXPECT_EQ(none.errors,
              "pim: The store of \"Outlook Express\" has no groups. pim providers lists the mail "
              "clients that are there.\n");
}

TEST_F(PimGroupsTest, LeavesAServiceWithoutGroupsToTheClientThatStartedIt)
{
    const Signal ready(L"ready");
    const Signal go(L"go");
    ChildProgram other(
        StoreClientCommandLine(L"start \"Windows Mail\" set ready wait go user stop"));
    EXPECT_TRUE(ready.Wait());
    const ProgramResult refused = RunPim(L"groups list");
    EXPECT_EQ(refused.exitCode, 1u);
    EXPECT_EQ(refused.errors,
              "pim: Another program uses the server with a mail client whose store has no groups. "
              "End that program and run the command again.\n");
    // It runs on: pim starts none of its own, whose name it would tell.
    EXPECT_EQ(PimDone(L"calendar list"), "No appointments.\n");
    go.Set();
    EXPECT_EQ(other.Wait(60000).output, "start 00000000\nuser 00000000 none\nstop 00000000\n");
}
