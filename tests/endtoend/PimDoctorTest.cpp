// pim doctor against the real server and registry: what stands in the way is put there by the test.
#include "endtoend/CalendarClient.h"
#include "endtoend/CalendarFolder.h"
#include "endtoend/ChildProgram.h"
#include "endtoend/MessageStore.h"
#include "endtoend/StoreClient.h"
#include "support/ScopedRegistryValue.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <memory>

using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{
constexpr wchar_t kServiceProgram[] =
    L"Software\\Classes\\CLSID\\{412CD822-6DF9-4BF2-A642-CEDFAE8FF4B6}\\LocalServer32";

class PimDoctorTest : public testing::Test
{
  protected:
    static void SetUpTestSuite()
    {
        s_folder = std::make_unique<CalendarFolder>();
        s_store = std::make_unique<MessageStore>();
    }
    static void TearDownTestSuite()
    {
        s_store.reset();
        s_folder.reset();
    }

    static ProgramResult Doctor(const wchar_t* options = L"")
    {
        return RunAndRead(ProgramBeside(L"pim.exe") + L" doctor" + options);
    }

    static inline std::unique_ptr<CalendarFolder> s_folder;
    static inline std::unique_ptr<MessageStore> s_store;
};

// Another file in the place of the store's library.
class OtherLibrary
{
  public:
    explicit OtherLibrary(const std::string& content)
    {
        std::filesystem::rename(m_path, m_kept);
        if (!content.empty())
            std::ofstream(m_path, std::ios::binary) << content;
    }
    ~OtherLibrary()
    {
        std::filesystem::remove(m_path);
        std::filesystem::rename(m_kept, m_path);
    }
    OtherLibrary(const OtherLibrary&) = delete;
    OtherLibrary& operator=(const OtherLibrary&) = delete;

  private:
    const std::filesystem::path m_path = InstalledStoreLibrary();
    const std::filesystem::path m_kept = m_path.wstring() + L".kept";
};

// The beginning of a 32-bit library: the headers that tell the machine 0x014C.
std::string HeaderFor32Bits()
{
    std::string bytes(0x200, '\0');
    bytes.replace(0, 2, "MZ");
    bytes[0x3C] = '\x80';
    bytes.replace(0x80, 2, "PE");
    bytes.replace(0x84, 2, "\x4C\x01", 2);
    return bytes;
}

int SleepForAMinute(const std::vector<std::wstring>&)
{
    Sleep(60'000);
    return 0;
}
const RegisterRole role(L"sleeper", &SleepForAMinute);
} // namespace

TEST_F(PimDoctorTest, TellsThatAllIsWell)
{
    const ProgramResult result = Doctor();
    EXPECT_EQ(result.exitCode, 0u) << result.errors;
    EXPECT_THAT(result.output, StartsWith("ok     Server: It answers: "));
    EXPECT_THAT(result.output, HasSubstr("ok     Microsoft Outlook: It starts.\n"));
    EXPECT_THAT(result.output, HasSubstr("ok     Windows Mail: It starts.\n"));
    EXPECT_THAT(result.output, HasSubstr("ok     Outlook Express: "));
}

TEST_F(PimDoctorTest, GivesProgramsTheSame)
{
    const ProgramResult result = Doctor(L" --json");
    EXPECT_EQ(result.exitCode, 0u);
    EXPECT_THAT(result.output, HasSubstr(R"("subject": "Microsoft Outlook",
      "fault": false,
      "text": "It starts.")"));
}

TEST_F(PimDoctorTest, TellsThatTheServerIsNotRegistered)
{
    EndServers();
    ASSERT_EQ(0u, UnregisterServerAt(ServerPath()));
    const ProgramResult result = Doctor();
    EXPECT_EQ(0u, RegisterServerAt(ServerPath()));
    EXPECT_EQ(result.exitCode, 1u);
    EXPECT_THAT(result.output,
                StartsWith("FAULT  Server: It is not registered on this PC. Run: pim register"));
    EXPECT_THAT(result.output, Not(HasSubstr("It starts.")));
}

TEST_F(PimDoctorTest, TellsThatTheProgramWasMoved)
{
    EndServers();
    ScopedRegistryValue moved{HKEY_LOCAL_MACHINE, kServiceProgram, L""};
    moved.Set(L"\"C:\\elsewhere\\PimStoreBridge.exe\"");
    const ProgramResult result = Doctor();
    EXPECT_EQ(result.exitCode, 1u);
    EXPECT_THAT(result.output,
                StartsWith("FAULT  Server: Its program is not where it was registered: "
                           "C:\\elsewhere\\PimStoreBridge.exe."));
}

TEST_F(PimDoctorTest, TellsThatALibraryIsNotThere)
{
    EndServers();
    const OtherLibrary none("");
    const ProgramResult result = Doctor();
    EXPECT_EQ(result.exitCode, 1u);
    EXPECT_THAT(result.output, HasSubstr("FAULT  Microsoft Outlook: Its library "));
    EXPECT_THAT(result.output, HasSubstr("ok     Windows Mail: It starts.\n"));
    EndServers();
}

TEST_F(PimDoctorTest, TellsThatALibraryIsMadeFor32Bits)
{
    EndServers();
    const OtherLibrary other(HeaderFor32Bits());
    const ProgramResult result = Doctor();
    EXPECT_EQ(result.exitCode, 1u);
    EXPECT_THAT(result.output,
                HasSubstr("FAULT  Microsoft Outlook: Its library is made for 32 bits: "));
    EXPECT_THAT(result.output, HasSubstr("FAULT  Microsoft Outlook: It does not start (0x"));
    EndServers();
}

TEST_F(PimDoctorTest, TellsThatTheServerDoesNotAnswer)
{
    EndServers();
    ScopedRegistryValue other{HKEY_LOCAL_MACHINE, kServiceProgram, L""};
    other.Set(RoleCommandLine(L"sleeper"));
    const ProgramResult result = Doctor();
    EXPECT_EQ(result.exitCode, 1u);
    EXPECT_THAT(result.output, HasSubstr("FAULT  Server: It did not answer within 10 seconds."));
    EXPECT_THAT(result.output, Not(HasSubstr("It starts.")));
}

TEST_F(PimDoctorTest, LeavesAServiceAloneThatAnotherProgramUses)
{
    const Signal ready(L"ready");
    const Signal go(L"go");
    ChildProgram client(
        StoreClientCommandLine(L"start \"Microsoft Outlook\" set ready wait go user stop"));
    ASSERT_TRUE(ready.Wait());
    const ProgramResult result = Doctor();
    EXPECT_EQ(result.exitCode, 0u) << result.output;
    EXPECT_THAT(result.output, HasSubstr("ok     Server: Another program uses it now"));
    EXPECT_THAT(result.output, Not(HasSubstr("It starts.")));
    go.Set();
    EXPECT_EQ(client.Wait(60'000).exitCode, 0u);
}
