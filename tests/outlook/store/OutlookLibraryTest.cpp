#include "outlook/store/OutlookLibrary.h"

#include "support/DebugOutputCapture.h"
#include "support/ScopedRegistryValue.h"
#include "support/ScratchDirectory.h"
#include "tests/outlook/FakeMapi.h"
#include "tests/outlook/FakeMapiStub.h"
#include "tests/outlook/OutlookInstallation.h"

#include <gtest/gtest.h>

#include <map>

namespace
{
using Calls = std::vector<std::string>;
using Texts = std::vector<std::wstring>;

constexpr wchar_t kComponent[] = L"{6DB1921F-8B40-4406-A18B-E906DBEEF0C9}";
constexpr wchar_t kProgramFiles[] = L"C:\\Program Files";

// What Outlook registers, and the folder that stands for the system's.
class OutlookLibraryTest : public testing::Test
{
  protected:
    OutlookLibraryTest()
    {
        component.Set(kComponent);
        application.Remove();
        office.Remove();
    }

    void SetApplication(const Texts& texts) { application.Set(MultiString(texts), REG_MULTI_SZ); }
    void SetOffice(const Texts& texts) { office.Set(MultiString(texts), REG_MULTI_SZ); }

    // Puts a library into the system's folder.
    void AddLibrary(const std::wstring& name, const std::wstring& source = FakeMapiStub::Path())
    {
        ASSERT_TRUE(CopyFileW(source.c_str(), systemFolder.File(name).c_str(), TRUE));
    }
    OutlookLibrary Find() { return FindOutlookLibraryWith(systemFolder.Path().wstring()); }

    ScopedRegistryValue component{HKEY_LOCAL_MACHINE, kOutlookKey, L"MSIComponentID"};
    ScopedRegistryValue application{HKEY_LOCAL_MACHINE, kOutlookKey, L"MSIApplicationLCID"};
    ScopedRegistryValue office{HKEY_LOCAL_MACHINE, kOutlookKey, L"MSIOfficeLCID"};
    ScratchDirectory systemFolder{L"system"};
    FakeMapiStub stub;
};

// The language number that the user chose, by key and value as the tests name them.
constexpr wchar_t kLanguageList[] = L"PimStoreBridge.Tests\\Office\\11.0\\Common\\Languages";
constexpr wchar_t kLanguageKey[] =
    L"Software\\PimStoreBridge.Tests\\Office\\11.0\\Common\\Languages";
} // namespace

TEST_F(OutlookLibraryTest, AsksWithoutAQualifierFirst)
{
    AddLibrary(L"mapi32.dll");
    SetApplication({L"app"});
    SetOffice({L"office"});
    stub.answers = {"C:\\Office\\msmapi32.dll"};
    EXPECT_EQ(L"C:\\Office\\msmapi32.dll", Find().path);
    EXPECT_EQ((Calls{"mapi32.dll FGetComponentPath({6DB1921F-8B40-4406-A18B-E906DBEEF0C9}, null, "
                     "260, 1)",
                     "mapi32.dll unload"}),
              stub.Calls());
}

TEST_F(OutlookLibraryTest, AsksWithTheLanguagesOfTheApplicationThenOfOffice)
{
    AddLibrary(L"mapi32.dll");
    SetApplication({L"Microsoft\\Office\\11.0\\Outlook", L"1033", L"1031"});
    SetOffice({L"Microsoft\\Office\\11.0\\Common", L"1036"});
    stub.answers = {"", "", "D:\\third.dll"};
    EXPECT_EQ(L"D:\\third.dll", Find().path);
    EXPECT_EQ((Calls{"mapi32.dll FGetComponentPath({6DB1921F-8B40-4406-A18B-E906DBEEF0C9}, null, "
                     "260, 1)",
                     "mapi32.dll FGetComponentPath({6DB1921F-8B40-4406-A18B-E906DBEEF0C9}, "
                     "Microsoft\\Office\\11.0\\Outlook 1033 1031, 260, 1)",
                     "mapi32.dll FGetComponentPath({6DB1921F-8B40-4406-A18B-E906DBEEF0C9}, "
                     "Microsoft\\Office\\11.0\\Common 1036, 260, 1)",
                     "mapi32.dll unload"}),
              stub.Calls());
}

TEST_F(OutlookLibraryTest, APathForTheApplicationEndsTheLookup)
{
    AddLibrary(L"mapi32.dll");
    SetApplication({L"app"});
    SetOffice({L"office"});
    stub.answers = {"", "D:\\second.dll", "D:\\third.dll"};
    EXPECT_EQ(L"D:\\second.dll", Find().path);
    EXPECT_EQ(3u, stub.Calls().size()); // two lookups and the unloading
}

TEST_F(OutlookLibraryTest, AListThatIsNotThereIsNotAskedFor)
{
    AddLibrary(L"mapi32.dll");
    SetOffice({L"office"});
    stub.answers = {"", "D:\\office.dll"};
    EXPECT_EQ(L"D:\\office.dll", Find().path);
    EXPECT_EQ((Calls{"mapi32.dll FGetComponentPath({6DB1921F-8B40-4406-A18B-E906DBEEF0C9}, null, "
                     "260, 1)",
                     "mapi32.dll FGetComponentPath({6DB1921F-8B40-4406-A18B-E906DBEEF0C9}, office, "
                     "260, 1)",
                     "mapi32.dll unload"}),
              stub.Calls());

    stub.Calls().clear();
    office.Remove();
    EXPECT_EQ(L"", Find().path);
    EXPECT_EQ(2u, stub.Calls().size());
}

TEST_F(OutlookLibraryTest, TakesTheOtherStubWhereTheFirstDoesNotLoad)
{
    AddLibrary(L"mapistub.dll");
    stub.answers = {"C:\\of the stub.dll"};
    EXPECT_EQ(L"C:\\of the stub.dll", Find().path);
    EXPECT_EQ((Calls{"mapistub.dll FGetComponentPath({6DB1921F-8B40-4406-A18B-E906DBEEF0C9}, null, "
                     "260, 1)",
                     "mapistub.dll unload"}),
              stub.Calls());
}

TEST_F(OutlookLibraryTest, PrefersTheFirstStub)
{
    AddLibrary(L"mapi32.dll");
    AddLibrary(L"mapistub.dll");
    Find();
    EXPECT_EQ("mapi32.dll unload", stub.Calls().back());
}

TEST_F(OutlookLibraryTest, FindsNothingWithoutAStub)
{
    SetApplication({kLanguageList, L"InstallLanguage"});
    EXPECT_EQ(L"", Find().path);
}

TEST_F(OutlookLibraryTest, FindsNothingWithoutASystemFolder)
{
    SetApplication({L"Microsoft\\Office\\14.0\\Outlook", L"InstallLanguage"});
    const OutlookLibrary library = FindOutlookLibraryWith(L"");
    EXPECT_EQ(L"", library.path);
    EXPECT_EQ(2010, library.version);
}

TEST_F(OutlookLibraryTest, FindsNothingWithoutAComponent)
{
    AddLibrary(L"mapi32.dll");
    SetApplication({L"Microsoft\\Office\\11.0\\Outlook", L"InstallLanguage"});
    stub.answers = {"C:\\never asked.dll"};
    for (const bool isThere : {true, false})
    {
        component.Set(L"");
        if (!isThere)
            component.Remove();
        const OutlookLibrary library = Find();
        EXPECT_EQ(L"", library.path);
        EXPECT_EQ(0, library.version);
    }
    EXPECT_EQ(Calls{}, stub.Calls());
}

TEST_F(OutlookLibraryTest, AStubWithoutTheLookupLeavesTheFolderByLanguage)
{
    FakeMapi unloads; // takes the report of the unloading
    AddLibrary(L"mapi32.dll", FakeMapi::BarePath());
    SetApplication({kLanguageList, L"InstallLanguage"});
    EXPECT_EQ(std::wstring(kProgramFiles) + L"\\Common Files\\System\\MSMAPI\\0\\MSMAPI32.DLL",
              Find().path);
}

TEST_F(OutlookLibraryTest, TheFirstStringTellsTheVersion)
{
    AddLibrary(L"mapi32.dll");
    const std::map<std::wstring, int> versions = {
        {L"Microsoft\\Office\\11.0\\Outlook", 2003},
        {L"Microsoft\\Office\\14.0\\Outlook", 2010},
        {L"Microsoft\\Office\\12.0\\Outlook", 0},
        {L"Microsoft\\Office\\15.0\\Outlook", 0},
        {L"Microsoft\\Office\\11.0\\Outlook\\", 0},
        {L"Microsoft\\Office\\11.0", 0},
    };
    for (const auto& [text, version] : versions)
    {
        SetApplication({text, L"Microsoft\\Office\\11.0\\Outlook"});
        EXPECT_EQ(version, Find().version);
    }
    SetApplication({L"first", L"Microsoft\\Office\\14.0\\Outlook"});
    EXPECT_EQ(0, Find().version);
    application.Remove();
    SetOffice({L"Microsoft\\Office\\14.0\\Outlook"});
    EXPECT_EQ(0, Find().version);
}

TEST_F(OutlookLibraryTest, TheVersionIsKnownAlsoWhereALookupGivesThePath)
{
    AddLibrary(L"mapi32.dll");
    SetApplication({L"Microsoft\\Office\\14.0\\Outlook"});
    stub.answers = {"C:\\found.dll"};
    const OutlookLibrary library = Find();
    EXPECT_EQ(L"C:\\found.dll", library.path);
    EXPECT_EQ(2010, library.version);
}

TEST_F(OutlookLibraryTest, PutsThePathTogetherFromTheLanguageOfTheUser)
{
    AddLibrary(L"mapi32.dll");
    SetApplication({kLanguageList, L"InstallLanguage"});
    ScopedRegistryValue language(HKEY_CURRENT_USER, kLanguageKey, L"InstallLanguage");
    const DWORD german = 1031;
    RegSetKeyValueW(
        HKEY_CURRENT_USER, kLanguageKey, L"InstallLanguage", REG_DWORD, &german, sizeof german);
    EXPECT_EQ(std::wstring(kProgramFiles) + L"\\Common Files\\System\\MSMAPI\\1031\\MSMAPI32.DLL",
              Find().path);
    EXPECT_EQ(3u, stub.Calls().size()); // without a qualifier, with the application's, unloading
}

TEST_F(OutlookLibraryTest, ALanguageThatIsNoNumberCountsAsZero)
{
    AddLibrary(L"mapi32.dll");
    SetApplication({kLanguageList, L"InstallLanguage"});
    ScopedRegistryValue language(HKEY_CURRENT_USER, kLanguageKey, L"InstallLanguage");
    language.Set(L"a text that does not fit a number");
    EXPECT_EQ(std::wstring(kProgramFiles) + L"\\Common Files\\System\\MSMAPI\\0\\MSMAPI32.DLL",
              Find().path);
}

// The number is written as a signed one.
TEST_F(OutlookLibraryTest, ALanguageBeyond31BitsIsNegative)
{
    AddLibrary(L"mapi32.dll");
    SetApplication({kLanguageList, L"InstallLanguage"});
    ScopedRegistryValue language(HKEY_CURRENT_USER, kLanguageKey, L"InstallLanguage");
    const DWORD highest = 0xFFFFFFFF;
    RegSetKeyValueW(
        HKEY_CURRENT_USER, kLanguageKey, L"InstallLanguage", REG_DWORD, &highest, sizeof highest);
    EXPECT_EQ(std::wstring(kProgramFiles) + L"\\Common Files\\System\\MSMAPI\\-1\\MSMAPI32.DLL",
              Find().path);
}

// What the stub returns says nothing; only the path does.
TEST_F(OutlookLibraryTest, ALookupThatClaimsAPathAndGivesNoneIsFollowedByTheNext)
{
    AddLibrary(L"mapi32.dll");
    SetApplication({L"app"});
    SetOffice({L"office"});
    stub.result = TRUE;
    stub.answers = {"", "", "D:\\third.dll"};
    EXPECT_EQ(L"D:\\third.dll", Find().path);
    EXPECT_EQ(4u, stub.Calls().size()); // three lookups and the unloading
}

// Three lookups at most, whatever else is registered; then the folder by language.
TEST_F(OutlookLibraryTest, WithoutAnyAnswerThePathIsPutTogether)
{
    AddLibrary(L"mapi32.dll");
    SetApplication({kLanguageList, L"InstallLanguage", L"more"});
    SetOffice({L"office", L"other"});
    EXPECT_EQ(std::wstring(kProgramFiles) + L"\\Common Files\\System\\MSMAPI\\0\\MSMAPI32.DLL",
              Find().path);
    EXPECT_EQ(4u, stub.Calls().size());
}

TEST_F(OutlookLibraryTest, LeavesNoLineInTheLog)
{
    AddLibrary(L"mapi32.dll");
    SetApplication({kLanguageList, L"InstallLanguage"});
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    Find();
    component.Remove();
    Find();
    FindOutlookLibrary();
    EXPECT_EQ(Calls{}, capture.TakeLogMessages());
}

TEST_F(OutlookLibraryTest, ThePathNeedsTwoStringsOfTheApplication)
{
    AddLibrary(L"mapi32.dll");
    SetApplication({kLanguageList});
    SetOffice({kLanguageList, L"InstallLanguage"});
    EXPECT_EQ(L"", Find().path);
}

TEST_F(OutlookLibraryTest, APathThatFillsTheBufferIsCut)
{
    AddLibrary(L"mapi32.dll");
    stub.answers = {"C:\\" + std::string(400, 'x')};
    EXPECT_EQ(L"C:\\" + std::wstring(256, L'x'), Find().path); // 260 with the terminator
}

TEST_F(OutlookLibraryTest, ReadsThePathInTheCodePageOfTheSystem)
{
    AddLibrary(L"mapi32.dll");
    stub.answers = {"C:\\M\xE4rz.dll"};
    wchar_t expected[32] = {};
    MultiByteToWideChar(CP_ACP, 0, "C:\\M\xE4rz.dll", -1, expected, 31);
    EXPECT_EQ(expected, Find().path);
}

TEST_F(OutlookLibraryTest, HostileValuesDoNoHarm)
{
    AddLibrary(L"mapi32.dll");
    component.Set(std::wstring(70000, L'{'));
    SetApplication({std::wstring(70000, L'a'), std::wstring(70000, L'b')});
    EXPECT_EQ(std::wstring(kProgramFiles) + L"\\Common Files\\System\\MSMAPI\\0\\MSMAPI32.DLL",
              Find().path);
    component.Set(kComponent, REG_DWORD); // another type than a text
    EXPECT_EQ(L"", Find().path);
}

// --- The system's own stub -----------------------------------------------------------------------

TEST_F(OutlookLibraryTest, TheStubOfTheSystemKnowsNoSuchComponent)
{
    SetApplication({L"Microsoft\\Office\\11.0\\Outlook", L"InstallLanguage"});
    const OutlookLibrary library = FindOutlookLibrary();
    EXPECT_EQ(std::wstring(kProgramFiles) + L"\\Common Files\\System\\MSMAPI\\0\\MSMAPI32.DLL",
              library.path);
    EXPECT_EQ(2003, library.version);
    EXPECT_EQ(Calls{}, stub.Calls());
}

TEST_F(OutlookLibraryTest, TheStubOfTheSystemFindsWhatTheInstallerKnows)
{
    const std::wstring path = systemFolder.File(L"msmapi32.dll");
    AddLibrary(L"msmapi32.dll");
    const PublishedComponent published(kComponent, L"1033 1031", path);

    SetApplication({L"1033", L"1031"});
    EXPECT_EQ(path, FindOutlookLibrary().path);
    SetApplication({L"1033", L"1036"});
    SetOffice({L"1033", L"1031"});
    EXPECT_EQ(path, FindOutlookLibrary().path);
}
