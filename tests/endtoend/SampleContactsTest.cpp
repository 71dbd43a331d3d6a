// The script clients for contacts under samples/ against the running server and the message store.
#include "endtoend/ChildProgram.h"
#include "endtoend/MessageStore.h"
#include "support/ScratchDirectory.h"
#include "support/TestPaths.h"

#include <gmock/gmock.h>

#include <fstream>
#include <memory>

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{
const std::string kIds = "0000000050530501E00000000000000000000000000000";

// Two contacts in two folders, in letters that every console's code page has.
std::string StoreText()
{
    return R"({"format": "PimStoreBridge store", "version": 1, "identity": {}, "root": {
        "folders": [{"name": "Top", "roles": ["subtree"], "folders": [
         {"name": "Calendar", "class": "IPF.Appointment", "roles": ["calendar"]},
         {"name": "Contacts", "class": "IPF.Contact", "roles": ["contacts"],
          "entryId": "0000000050530301E00000000000000000000000000000F1",
          "messages": [{"entryId": ")" +
           kIds + R"(A1", "properties": [
            {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.Contact"},
            {"tag": "PR_DISPLAY_NAME_W", "value": "Oda Bakken"},
            {"tag": "PR_COMPANY_NAME_W", "value": "Fjordlab"},
            {"tag": "PR_MOBILE_TELEPHONE_NUMBER_W", "value": "+47 1"}]}],
          "folders": [{"name": "Family", "class": "IPF.Contact",
            "entryId": "0000000050530301E00000000000000000000000000000F2",
            "messages": [{"entryId": ")" +
           kIds + R"(A2", "properties": [
              {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.Contact"},
              {"tag": "PR_DISPLAY_NAME_W", "value": "Ravi Menon"}]}]}]}]}]}})";
}

class SampleContactsTest : public testing::Test
{
  protected:
    static void SetUpTestSuite()
    {
        s_store = std::make_unique<MessageStore>(RecordArrays::LeftToTheRuntime);
    }
    static void TearDownTestSuite() { s_store.reset(); }
    void SetUp() override { s_store->Load(StoreText()); }

    static ProgramResult Run(const wchar_t* script, const std::wstring& arguments = {})
    {
        const auto path = std::filesystem::absolute(Samples()) / script;
        ProgramResult result =
            RunAndRead(L"cscript.exe //nologo \"" + path.wstring() + L"\" " + arguments);
        std::erase(result.output, '\r');
        return result;
    }
    static std::string Done(const std::wstring& arguments)
    {
        const ProgramResult result = Run(L"contacts.vbs", L"\"Microsoft Outlook\" " + arguments);
        EXPECT_EQ(result.exitCode, 0u) << result.output << result.errors;
        return result.output;
    }

    static inline std::unique_ptr<MessageStore> s_store;
};
} // namespace

TEST_F(SampleContactsTest, ScriptsWalkTheContactsOfAllFolders)
{
    const ProgramResult basic = Run(L"contacts.vbs");
    EXPECT_EQ(basic.exitCode, 0u) << basic.errors;
    EXPECT_EQ(basic.output, "Oda Bakken  Fjordlab  " + kIds + "A1\nRavi Menon    " + kIds + "A2\n");
    const ProgramResult java = Run(L"contacts.js");
    EXPECT_EQ(java.exitCode, 0u) << java.errors;
    EXPECT_EQ(java.output, "Oda Bakken  +47 1  " + kIds + "A1\nRavi Menon    " + kIds + "A2\n");
}

TEST_F(SampleContactsTest, VisualBasicScriptAddsShowsUpdatesAndDeletes)
{
    const ScratchDirectory files;
    const std::string picture(3000, '\x5A');
    std::ofstream(files.Path() / "zoe.jpg", std::ios::binary) << picture;
    const std::string added = Done(L"add Zoe Quist \"+46 2\" \"" + files.File(L"zoe.jpg") + L"\"");
    ASSERT_THAT(added, StartsWith("Added "));
    const std::wstring id(added.begin() + 6, added.end() - 1);
    EXPECT_EQ(id.size(), 48u);
    const std::string shown = Done(L"show " + id);
    EXPECT_THAT(shown, StartsWith("First name: Zoe\nLast name: Quist\nPhone 1: +46 2\nPicture: "));
    EXPECT_THAT(shown, HasSubstr("\nFolder: 0000000050530301E00000000000000000000000000000F1\n"));
    const std::size_t path = shown.find("Picture: ") + 9;
    EXPECT_EQ(std::filesystem::file_size(shown.substr(path, shown.find('\n', path) - path)), 3000u);

    EXPECT_EQ(Done(L"update " + id + L" Acme"), "Updated " + added.substr(6));
    EXPECT_THAT(Done(L"show " + id), HasSubstr("Company: Acme\n"));
    EXPECT_EQ(Done(L"delete " + id), "Deleted " + added.substr(6));
    EXPECT_THAT(Done(L"list"), Not(HasSubstr("Zoe")));
    EXPECT_EQ(Run(L"contacts.vbs", L"\"Microsoft Outlook\" delete " + id).exitCode, 1u);
}

TEST_F(SampleContactsTest, ScriptsReportWhatTheyCannotDo)
{
    EXPECT_EQ(Run(L"contacts.vbs", L"\"Microsoft Outlook\" fly").exitCode, 2u);
    for (const wchar_t* script : {L"contacts.vbs", L"contacts.js"})
    {
        const ProgramResult refused = Run(script, L"Nobody");
        EXPECT_EQ(refused.exitCode, 1u);
        EXPECT_THAT(refused.output, StartsWith("This mail client could not be started: Nobody"));
    }
}
