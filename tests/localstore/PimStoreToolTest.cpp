// Runs the built pimstore.exe against the registry of the prefix that the tests have to themselves,
// and asks the server's own discovery and library proxy what they see.
#include "localstore/BookComponent.h"
#include "outlook/store/WAPProxcy.h"
#include "platform/UniqueHandle.h"
#include "service/Discovery.h"
#include "service/Registry.h"
#include "tests/localstore/LocalStoreSupport.h"

#include <gmock/gmock.h>

#include <sddl.h>

#include <algorithm>
#include <filesystem>
#include <thread>

using testing::HasSubstr;

namespace
{

struct ToolResult
{
    int code;
    std::string output;
};

ToolResult RunTool(const std::wstring& arguments,
                   const std::wstring& program = ProgramFolder() + L"pimstore.exe")
{
    ChildProcess tool(L"\"" + program + L"\" " + arguments);
    std::string output = tool.ReadAll();
    return {tool.Wait(), std::move(output)};
}

std::wstring MachineDefault(const std::wstring& key)
{
    return ReadRegistryString(HKEY_LOCAL_MACHINE, key, L"");
}

bool IsListed(const wchar_t* name)
{
    std::vector<std::wstring> names;
    DiscoverProviders(names);
    return std::find(names.begin(), names.end(), name) != names.end();
}

class PimStoreToolTest : public testing::Test
{
  protected:
    void SetUp() override
    {
        ASSERT_EQ(L"", MachineDefault(kBookLibraryKey))
            << "these tests need a machine without an address book library";
    }
    void TearDown() override
    {
        RunTool(L"remove --book");
        RegDeleteTreeW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\WAB\\DLLPath");
    }
};

} // namespace

TEST_F(PimStoreToolTest, InstallsSoThatTheServerFindsEverythingAndRemovesItAgain)
{
    const TempFolder folder;
    const StoreSetting store(folder.File(L"store.db"));
    const std::wstring defaultBefore = MachineDefault(kMailClients);
    EXPECT_FALSE(IsListed(kWindowsMail));

    const ToolResult installed = RunTool(L"install --book");
    ASSERT_EQ(0, installed.code) << installed.output;
    EXPECT_TRUE(IsListed(kWindowsMail));
    EXPECT_TRUE(IsListed(kOutlookExpress));
    if (defaultBefore.empty())
        EXPECT_EQ(kWindowsMail, DiscoverDefaultProvider());
    else
        EXPECT_EQ(defaultBefore, DiscoverDefaultProvider());

    // The road of the server's provider: the path from the registry, the proxy, the export.
    CWAPProxcy proxy;
    ASSERT_TRUE(proxy.Load(MachineDefault(kBookLibraryKey), nullptr));
    const auto open =
        reinterpret_cast<LPWABOPEN>(reinterpret_cast<void*>(proxy.FindEntry("WABOpen")));
    ASSERT_NE(nullptr, open);
    IAddrBook* book = nullptr;
    IWABObject* library = nullptr;
    ASSERT_EQ(S_OK, open(&book, &library, nullptr, 0));
    EXPECT_EQ(0u, book->Release());
    EXPECT_EQ(0u, library->Release());
    proxy.Unload();

    const ToolResult status = RunTool(L"status");
    EXPECT_EQ(0, status.code);
    EXPECT_THAT(status.output, HasSubstr("installed from"));
    EXPECT_THAT(status.output, HasSubstr("0 book entries"));

    const ToolResult again = RunTool(L"install --book");
    EXPECT_EQ(0, again.code);
    EXPECT_THAT(again.output, HasSubstr("already installed"));

    const ToolResult removed = RunTool(L"remove --book");
    EXPECT_EQ(0, removed.code) << removed.output;
    EXPECT_FALSE(IsListed(kWindowsMail));
    EXPECT_FALSE(IsListed(kOutlookExpress));
    EXPECT_EQ(L"", MachineDefault(kBookLibraryKey));
    EXPECT_EQ(defaultBefore, DiscoverDefaultProvider());
    const ToolResult none = RunTool(L"remove --book");
    EXPECT_EQ(0, none.code);
    EXPECT_THAT(none.output, HasSubstr("not installed"));
}

TEST_F(PimStoreToolTest, RefusesWithItsOwnCodeWhereAnotherProductIs)
{
    const wchar_t other[] = L"C:\\Other\\other.dll";
    ASSERT_EQ(
        ERROR_SUCCESS,
        RegSetKeyValueW(HKEY_LOCAL_MACHINE, kBookLibraryKey, nullptr, REG_SZ, other, sizeof other));
    const ToolResult refused = RunTool(L"install --book");
    EXPECT_EQ(3, refused.code);
    EXPECT_THAT(refused.output, HasSubstr("C:\\Other\\other.dll"));
    EXPECT_THAT(refused.output, HasSubstr("Nothing was changed"));
    EXPECT_EQ(other, MachineDefault(kBookLibraryKey));
    EXPECT_FALSE(IsListed(kWindowsMail));
}

TEST_F(PimStoreToolTest, ACopyInAFolderWithOddLettersWorks)
{
    const TempFolder folder;
    const std::wstring home = folder.File(L"M\u00FCller's 100% \u6F22 (x)\\");
    std::filesystem::create_directories(home);
    for (const wchar_t* file : {L"pimstore.exe", L"PimLocalBook.dll"})
        std::filesystem::copy_file(ProgramFolder() + file, home + file);
    const ToolResult installed = RunTool(L"install --book", home + L"pimstore.exe");
    ASSERT_EQ(0, installed.code) << installed.output;
    EXPECT_EQ(home + L"PimLocalBook.dll", MachineDefault(kBookLibraryKey));
    EXPECT_TRUE(IsListed(kWindowsMail));
    const ToolResult other = RunTool(L"install --book");
    EXPECT_EQ(4, other.code) << other.output;
    EXPECT_EQ(0, RunTool(L"remove --book").code);
    EXPECT_FALSE(IsListed(kWindowsMail));
}

// A key that this user may only read, as a standard user finds the machine's keys. The
// record was written before it, so there is something to take back.
TEST_F(PimStoreToolTest, ExitsWithFiveWithoutTheRightsAndChangesNothing)
{
    PSECURITY_DESCRIPTOR readOnly = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(
        L"D:P(A;OICI;KRRCWD;;;WD)", SDDL_REVISION_1, &readOnly, nullptr));
    UniqueRegistryKey key;
    ASSERT_EQ(ERROR_SUCCESS,
              RegCreateKeyExW(HKEY_LOCAL_MACHINE,
                              kBookLibraryKey,
                              0,
                              nullptr,
                              0,
                              KEY_READ | WRITE_DAC,
                              nullptr,
                              key.Put(),
                              nullptr));
    ASSERT_EQ(ERROR_SUCCESS, RegSetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, readOnly));
    LocalFree(readOnly);

    const ToolResult refused = RunTool(L"install --book");
    EXPECT_EQ(5, refused.code) << refused.output;
    EXPECT_THAT(refused.output, HasSubstr("administrator"));
    EXPECT_THAT(refused.output, HasSubstr("Nothing was changed"));
    EXPECT_EQ(L"", MachineDefault(kBookLibraryKey));
    EXPECT_FALSE(IsListed(kWindowsMail));
    UniqueRegistryKey ours;
    EXPECT_EQ(
        ERROR_FILE_NOT_FOUND,
        RegOpenKeyExW(
            HKEY_LOCAL_MACHINE, L"Software\\PimStoreBridge\\Installed", 0, KEY_READ, ours.Put()));

    PSECURITY_DESCRIPTOR all = nullptr;
    ASSERT_TRUE(ConvertStringSecurityDescriptorToSecurityDescriptorW(
        L"D:P(A;OICI;KA;;;WD)", SDDL_REVISION_1, &all, nullptr));
    EXPECT_EQ(ERROR_SUCCESS, RegSetKeySecurity(key.Get(), DACL_SECURITY_INFORMATION, all));
    LocalFree(all);
    key.Reset();
    EXPECT_EQ(ERROR_SUCCESS, RegDeleteKeyW(HKEY_LOCAL_MACHINE, kBookLibraryKey));
}

TEST_F(PimStoreToolTest, TellsItsUseAndRefusesWrongArguments)
{
    const ToolResult help = RunTool(L"--help");
    EXPECT_EQ(0, help.code);
    EXPECT_THAT(help.output, HasSubstr("Exit codes:"));
    EXPECT_THAT(help.output, HasSubstr("install"));
    const ToolResult installHelp = RunTool(L"install --help");
    EXPECT_EQ(0, installHelp.code);
    EXPECT_THAT(installHelp.output, HasSubstr("--book"));
    EXPECT_THAT(installHelp.output, HasSubstr("5  the rights do not suffice"));
    // What --replace empties is said before somebody loses it.
    EXPECT_THAT(RunTool(L"load --help").output, HasSubstr("address book"));
    for (const wchar_t* arguments : {L"", L"install", L"remove", L"install --other", L"nonsense"})
    {
        const ToolResult result = RunTool(arguments);
        EXPECT_EQ(2, result.code);
        EXPECT_NE("", result.output);
    }
    EXPECT_EQ(0, RunTool(L"--version").code);
}

TEST_F(PimStoreToolTest, StatusTellsWhyTheStoreDoesNotOpen)
{
    const TempFolder folder;
    const StoreSetting store(folder.File(L"store.db"));
    const ToolResult none = RunTool(L"status");
    EXPECT_EQ(0, none.code);
    EXPECT_THAT(none.output, HasSubstr("not made yet"));
    EXPECT_EQ(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(folder.File(L"store.db").c_str()));
    WriteWholeFile(folder.File(L"store.db"), std::string(4000, 'x'));
    const ToolResult broken = RunTool(L"status");
    EXPECT_EQ(1, broken.code);
    EXPECT_THAT(broken.output, HasSubstr("does not open"));
}
