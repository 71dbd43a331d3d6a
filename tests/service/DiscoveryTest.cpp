#include "service/Discovery.h"

#include "support/RegistrySandbox.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <fstream>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace
{
const std::wstring kMail = L"Software\\Clients\\Mail";

// A variable of this process's environment while it lives.
class ScopedVariable
{
  public:
    ScopedVariable(const wchar_t* name, const std::wstring& value) : m_name(name)
    {
        SetEnvironmentVariableW(name, value.c_str());
    }
    ~ScopedVariable() { SetEnvironmentVariableW(m_name, nullptr); }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;

  private:
    const wchar_t* m_name;
};

class DiscoveryTest : public testing::Test
{
  protected:
    DiscoveryTest()
        : m_folder("Discovery"), m_program(m_folder / L"Mail Program\\mail.exe"),
          m_sandbox(HKEY_LOCAL_MACHINE)
    {
        std::filesystem::create_directory(m_folder.Path() / "Mail Program");
        std::ofstream(std::filesystem::path(m_program)) << "program";
    }

    void AddClient(const std::wstring& name, const std::wstring& command, DWORD type = REG_SZ)
    {
        m_sandbox.SetText(kMail + L"\\" + name + L"\\shell\\open\\command", L"", command, type);
    }
    static bool Usable(const std::wstring& commandLine)
    {
        return IsFileUsable(commandLine.c_str());
    }
    static std::vector<std::wstring> Providers()
    {
        std::vector<std::wstring> names{L"before"};
        DiscoverProviders(names);
        return names;
    }

    TempFolder m_folder;
    std::wstring m_program;
    RegistrySandbox m_sandbox;
};
} // namespace

TEST_F(DiscoveryTest, TellsTheDefaultClientAsItStands)
{
    m_sandbox.SetText(kMail, L"", L"Microsoft Outlook");
    EXPECT_EQ(L"Microsoft Outlook", DiscoverDefaultProvider());
    m_sandbox.SetText(kMail, L"", L"No Such Client");
    EXPECT_EQ(L"No Such Client", DiscoverDefaultProvider());
}

TEST_F(DiscoveryTest, TellsADefaultWhoseProgramIsMissing)
{
    m_sandbox.SetText(kMail, L"", L"Gone");
    AddClient(L"Gone", m_folder / L"gone.exe");
    EXPECT_EQ(L"Gone", DiscoverDefaultProvider());
    EXPECT_THAT(Providers(), IsEmpty());
}

TEST_F(DiscoveryTest, FindsNothingOnAMachineWithoutMailClients)
{
    EXPECT_EQ(L"", DiscoverDefaultProvider());
    EXPECT_THAT(Providers(), IsEmpty());
}

TEST_F(DiscoveryTest, FindsNothingBelowAKeyWithoutClients)
{
    m_sandbox.AddKey(kMail);
    EXPECT_EQ(L"", DiscoverDefaultProvider());
    EXPECT_THAT(Providers(), IsEmpty());
}

TEST_F(DiscoveryTest, ListsTheClientsWhoseProgramExists)
{
    AddClient(L"Microsoft Outlook", L"\"" + m_program + L"\" /recycle");
    AddClient(L"Another Program", m_program + L" /mailurl:%1");
    AddClient(L"Expanded", m_program, REG_EXPAND_SZ);
    m_sandbox.AddKey(kMail + L"\\No Command");
    m_sandbox.AddKey(kMail + L"\\No Value\\shell\\open\\command");
    AddClient(L"Empty Command", L"");
    AddClient(L"Missing Program", m_folder / L"missing.exe");
    AddClient(L"Folder", m_folder.Path().wstring());
    AddClient(L"Too Long", m_program + L" /" + std::wstring(300, L'x'));
    EXPECT_THAT(Providers(),
                UnorderedElementsAre(L"Microsoft Outlook", L"Another Program", L"Expanded"));
}

TEST_F(DiscoveryTest, KeepsTheOrderOfTheRegistry)
{
    for (const wchar_t* name : {L"c", L"a", L"b"})
        AddClient(name, m_program);
    std::vector<std::wstring> expected;
    wchar_t name[64];
    HKEY key = nullptr;
    ASSERT_EQ(ERROR_SUCCESS, RegOpenKeyExW(m_sandbox.Root(), kMail.c_str(), 0, KEY_READ, &key));
    const UniqueRegistryKey opened(key);
    for (DWORD index = 0; RegEnumKeyW(opened.Get(), index, name, 64) == ERROR_SUCCESS; ++index)
        expected.push_back(name);
    ASSERT_EQ(3u, expected.size());
    EXPECT_EQ(expected, Providers());
}

TEST_F(DiscoveryTest, NeedsAFileThatExists)
{
    EXPECT_TRUE(Usable(m_program));
    EXPECT_FALSE(Usable(m_folder / L"missing.exe"));
    EXPECT_FALSE(Usable(L""));
    EXPECT_FALSE(IsFileUsable(nullptr));
}

TEST_F(DiscoveryTest, RefusesFoldersAndSystemFiles)
{
    EXPECT_FALSE(Usable(m_folder.Path().wstring()));
    ASSERT_TRUE(SetFileAttributesW(m_program.c_str(), FILE_ATTRIBUTE_SYSTEM));
    EXPECT_FALSE(Usable(m_program));
    ASSERT_TRUE(SetFileAttributesW(m_program.c_str(), FILE_ATTRIBUTE_HIDDEN));
    EXPECT_TRUE(Usable(m_program));
    ASSERT_TRUE(SetFileAttributesW(m_program.c_str(), FILE_ATTRIBUTE_NORMAL));
}

TEST_F(DiscoveryTest, CutsSwitchesOff)
{
    EXPECT_TRUE(Usable(m_program + L" /mailurl:%1"));
    EXPECT_TRUE(Usable(m_program + L" /a /b"));
    EXPECT_TRUE(Usable(L"\"" + m_program + L"\" /a"));
    EXPECT_TRUE(Usable(m_program + L" /" + std::wstring(2000, L'x')));
    // Only a blank and a slash together are a switch.
    EXPECT_FALSE(Usable(m_program + L" -x"));
    EXPECT_FALSE(Usable(m_program + L"/x"));
    // The pair within the quotes is cut as well, which leaves no closing quote.
    EXPECT_FALSE(Usable(L"\"" + m_program + L" /a\""));
}

TEST_F(DiscoveryTest, TakesAQuotedPathOutOfItsQuotes)
{
    EXPECT_TRUE(Usable(L"\"" + m_program + L"\""));
    EXPECT_TRUE(Usable(L"\"" + m_program + L"\" -x \"y\""));
    EXPECT_FALSE(Usable(L"\"" + m_program));
    EXPECT_FALSE(Usable(L" \"" + m_program + L"\""));
    EXPECT_FALSE(Usable(L"\"\"" + m_program));
}

TEST_F(DiscoveryTest, ExpandsAVariableAtTheStart)
{
    const ScopedVariable variable(L"PimTestFolder", m_folder.Path().wstring());
    EXPECT_TRUE(Usable(L"%PimTestFolder%\\Mail Program\\mail.exe"));
    EXPECT_TRUE(Usable(L"%pimtestfolder%\\Mail Program\\mail.exe /x"));
    EXPECT_TRUE(Usable(L"\"%PimTestFolder%\\Mail Program\\mail.exe\" -x"));
    EXPECT_FALSE(Usable(L"%PimTestFolder\\Mail Program\\mail.exe"));
    EXPECT_FALSE(Usable(L"%PimTestMissing%" + m_program));
    EXPECT_FALSE(Usable(L"%%" + m_program));
}

TEST_F(DiscoveryTest, ExpandsNoVariableElsewhere)
{
    const ScopedVariable name(L"PimTestName", L"mail.exe");
    EXPECT_FALSE(Usable(m_folder / L"Mail Program\\%PimTestName%"));
    // The first one is expanded, a second one is not.
    const ScopedVariable folder(L"PimTestFolder", m_folder.Path().wstring());
    EXPECT_FALSE(Usable(L"%PimTestFolder%\\Mail Program\\%PimTestName%"));
    const ScopedVariable chained(L"PimTestChain", L"%PimTestFolder%");
    EXPECT_FALSE(Usable(L"%PimTestChain%\\Mail Program\\mail.exe"));
}

TEST_F(DiscoveryTest, LeavesAVariableThatDoesNotFit)
{
    const ScopedVariable variable(L"PimTestLong", std::wstring(300, L'x'));
    EXPECT_FALSE(Usable(L"%PimTestLong%\\mail.exe"));
}
