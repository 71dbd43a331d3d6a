// pim.exe on the message store: whole outputs, exit codes, and the way of clients that meet. What
// the store holds stands in tests/data/outlook/office.json.
#include "endtoend/CalendarClient.h"
#include "endtoend/CalendarFolder.h"
#include "endtoend/MessageStore.h"
#include "endtoend/PimProgram.h"
#include "endtoend/StoreClient.h"
#include "support/TestPaths.h"

#include <gmock/gmock.h>

#include <memory>

namespace
{
class PimMessageStoreTest : public testing::Test
{
  protected:
    static void SetUpTestSuite()
    {
        // The other back ends are there too.
        s_folder = std::make_unique<CalendarFolder>();
        s_store = std::make_unique<MessageStore>();
        s_store->LoadFile(TestData() / "outlook" / "office.json");
    }
    static void TearDownTestSuite()
    {
        s_store.reset();
        s_folder.reset();
    }

    // Runs a command that must fail, and gives what it says.
    static std::string Failed(const std::wstring& arguments)
    {
        const ProgramResult result = RunPim(arguments);
        EXPECT_EQ(result.exitCode, 1u);
        EXPECT_EQ(result.output, "");
        return result.errors;
    }

    static inline std::unique_ptr<CalendarFolder> s_folder;
    static inline std::unique_ptr<MessageStore> s_store;
    const ServerKeeper keeper;
};

// Another client, which starts a back end and stays until it is told to go.
class OtherClient
{
  public:
    explicit OtherClient(const std::wstring& backEnd)
        : m_program(
              StoreClientCommandLine(L"start \"" + backEnd + L"\" set ready wait go user stop"))
    {
        EXPECT_TRUE(Signal(L"ready").Wait());
    }
    // What it printed: its start, whether it found a user in the end, and its stop.
    std::string Leave()
    {
        m_go.Set();
        return m_program.Wait(60000).output;
    }

  private:
    // Before the program, so that the signal is there when it is set.
    const Signal m_ready{L"ready"};
    const Signal m_go{L"go"};
    ChildProgram m_program;
};
} // namespace

TEST_F(PimMessageStoreTest, TellsWhoTheMailUserIs)
{
    // A text of several lines takes one in a table.
    EXPECT_EQ(PimDone(L"whoami"),
              "Account              ana\n"
              "Address type         EX\n"
              "Name                 Ana Mar\xC3\xAD"
              "a \xC3\x98sterg\xC3\xA5rd\n"
              "Company              Harbour & \"S\xC3\xB8n\" \xE6\xB8\xAF\n"
              "E-mail address       /o=Harbour/ou=Nord/cn=Recipients/cn=ana\n"
              "First name           Ana Mar\xC3\xAD"
              "a\n"
              "Last name            \xC3\x98sterg\xC3\xA5rd\n"
              "Office               3rd floor, north wing\n"
              "SMTP address         ana@harbour.example\n"
              "Name as transmitted  \xC3\x98sterg\xC3\xA5rd, Ana (Harbour) \xF0\x9F\x98\x80\n");
    EXPECT_EQ(PimDone(L"whoami --json"),
              "{\n"
              "  \"account\": \"ana\",\n"
              "  \"addressType\": \"EX\",\n"
              "  \"displayName\": \"Ana Mar\xC3\xAD"
              "a \xC3\x98sterg\xC3\xA5rd\",\n"
              "  \"company\": \"Harbour & \\\"S\xC3\xB8n\\\" \xE6\xB8\xAF\",\n"
              "  \"emailAddress\": \"/o=Harbour/ou=Nord/cn=Recipients/cn=ana\",\n"
              "  \"firstName\": \"Ana Mar\xC3\xAD"
              "a\",\n"
              "  \"lastName\": \"\xC3\x98sterg\xC3\xA5rd\",\n"
              "  \"officeLocation\": \"3rd floor,\\r\\nnorth wing\",\n"
              "  \"smtpAddress\": \"ana@harbour.example\",\n"
              "  \"transmitableDisplayName\": \"\xC3\x98sterg\xC3\xA5rd, Ana (Harbour) "
              "\xF0\x9F\x98\x80\"\n"
              "}\n");
}

TEST_F(PimMessageStoreTest, ListsTheContactFolders)
{
    // East Asian letters and the face take two columns each.
    EXPECT_EQ(PimDone(L"folders"),
              "FOLDER               ITEMS           ID\n"
              "Senders              0               "
              "0000000050530301F0000000000000000000000000000005\n"
              "Contacts             2      default  "
              "0000000050530301F0000000000000000000000000000009\n"
              "Kunden Gr\xC3\xBCn \xE6\x9D\xB1\xE4\xBA\xAC \xF0\x9F\x98\x80  0               "
              "0000000050530301F000000000000000000000000000000A\n"
              "                     1               "
              "0000000050530301F000000000000000000000000000000C\n");
    EXPECT_EQ(PimDone(L"--json folders"),
              "{\n"
              "  \"folders\": [\n"
              "    {\n"
              "      \"id\": \"0000000050530301F0000000000000000000000000000005\",\n"
              "      \"name\": \"Senders\",\n"
              "      \"items\": 0,\n"
              "      \"default\": false\n"
              "    },\n"
              "    {\n"
              "      \"id\": \"0000000050530301F0000000000000000000000000000009\",\n"
              "      \"name\": \"Contacts\",\n"
              "      \"items\": 2,\n"
              "      \"default\": true\n"
              "    },\n"
              "    {\n"
              "      \"id\": \"0000000050530301F000000000000000000000000000000A\",\n"
              "      \"name\": \"Kunden Gr\xC3\xBCn \xE6\x9D\xB1\xE4\xBA\xAC "
              "\xF0\x9F\x98\x80\",\n"
              "      \"items\": 0,\n"
              "      \"default\": false\n"
              "    },\n"
              "    {\n"
              "      \"id\": \"0000000050530301F000000000000000000000000000000C\",\n"
              "      \"name\": \"\",\n"
              "      \"items\": 1,\n"
              "      \"default\": false\n"
              "    }\n"
              "  ]\n"
              "}\n");
    // The other back ends have contacts, but no folders of them.
    EXPECT_EQ(PimDone(L"--provider \"Windows Mail\" folders"), "No contact folders.\n");
    EXPECT_EQ(PimDone(L"--provider \"outlook express\" folders --json"),
              "{\n  \"folders\": []\n}\n");
}

TEST_F(PimMessageStoreTest, ListsTheMailClientsAndTheDefaultAmongThem)
{
    // In the order of the registry's keys.
    EXPECT_EQ(PimDone(L"providers"), "Microsoft Outlook  default\nOutlook Express\nWindows Mail\n");
    EXPECT_EQ(PimDone(L"providers --json"),
              "{\n"
              "  \"default\": \"Microsoft Outlook\",\n"
              "  \"providers\": [\n"
              "    {\n"
              "      \"name\": \"Microsoft Outlook\",\n"
              "      \"default\": true,\n"
              "      \"supported\": true\n"
              "    },\n"
              "    {\n"
              "      \"name\": \"Outlook Express\",\n"
              "      \"default\": false,\n"
              "      \"supported\": true\n"
              "    },\n"
              "    {\n"
              "      \"name\": \"Windows Mail\",\n"
              "      \"default\": false,\n"
              "      \"supported\": true\n"
              "    }\n"
              "  ]\n"
              "}\n");

    ScopedRegistryValue defaultClient(HKEY_LOCAL_MACHINE, L"Software\\Clients\\Mail", L"");
    defaultClient.Set(L"Gone Mail");
    EXPECT_EQ(PimDone(L"providers"),
              "Microsoft Outlook\nOutlook Express\nWindows Mail\n"
              "The default, Gone Mail, is not installed.\n");
    // Another mail program, which is there and which the server cannot start.
    const std::wstring otherKey = L"Software\\Clients\\Mail\\Other\\shell\\open\\command";
    ScopedRegistryValue other(HKEY_LOCAL_MACHINE, otherKey, L"");
    other.Set(ProgramBeside(L"pimstore.exe"));
    defaultClient.Set(L"other");
    EXPECT_EQ(PimDone(L"providers"),
              "Microsoft Outlook\nOther              default, not supported\nOutlook Express\n"
              "Windows Mail\n");
    defaultClient.Remove();
    EXPECT_EQ(PimDone(L"providers"),
              "Microsoft Outlook\nOther              not supported\nOutlook Express\n"
              "Windows Mail\n");
}

TEST_F(PimMessageStoreTest, SaysWhereNobodyKnowsAUser)
{
    const std::string noUser =
        "pim: This mail client does not know a user: only Microsoft Outlook does. Where another "
        "program uses the server with another mail client, end that program first.\n";
    EXPECT_EQ(Failed(L"--provider \"Windows Mail\" whoami"), noUser);
    EXPECT_EQ(Failed(L"--provider Nobody whoami"),
              "pim: The server could not start \"Nobody\" (0x80004005). Where no Outlook is "
              "installed, pimstore install --store sets up a store of our own.\n");
    OtherClient other(L"Windows Mail");
    EXPECT_EQ(Failed(L"whoami"), noUser);
    EXPECT_EQ(Failed(L"--provider \"Microsoft Outlook\" folders"),
              "pim: Another program uses the server with another mail client than \"Microsoft "
              "Outlook\". End that program and run the command again.\n");
    EXPECT_EQ(other.Leave(), "start 00000000\nuser 00000000 none\nstop 00000000\n");
}

TEST_F(PimMessageStoreTest, SaysThatThereIsNoOutlook)
{
    ScopedRegistryValue component(
        HKEY_LOCAL_MACHINE, L"Software\\Clients\\Mail\\Microsoft Outlook", L"MSIComponentID");
    component.Remove();
    const std::string failure =
        "pim: The server could not start \"Microsoft Outlook\" (0x80004005). Where no Outlook is "
        "installed, pimstore install --store sets up a store of our own.\n";
    EXPECT_EQ(Failed(L"whoami"), failure);
    EXPECT_EQ(Failed(L"folders --json"), failure);
}

TEST_F(PimMessageStoreTest, LeavesTheServiceOfAnotherClientRunning)
{
    OtherClient other(L"microsoft outlook");
    EXPECT_THAT(PimDone(L"whoami"), testing::StartsWith("Account              ana\n"));
    EXPECT_THAT(PimDone(L"--provider \"MICROSOFT OUTLOOK\" folders"),
                testing::HasSubstr("Contacts"));
    EXPECT_EQ(Failed(L"--provider \"Windows Mail\" whoami"),
              "pim: Another program uses the server with another mail client than \"Windows "
              "Mail\". End that program and run the command again.\n");
    EXPECT_EQ(other.Leave(), "start 00000000\nuser 00000000 object\nstop 00000000\n");
}

TEST_F(PimMessageStoreTest, StopsTheServiceThatItStarted)
{
    PimDone(L"whoami");
    EXPECT_EQ(TakeSteps(L"user"), "user 00000000 none\n");
    Failed(L"--provider \"Windows Mail\" whoami");
    EXPECT_EQ(PimDone(L"whoami --provider \"Microsoft Outlook\"").substr(0, 25),
              "Account              ana\n");
}
