#include "localstore/Installer.h"

#include "localstore/BookComponent.h"
#include "localstore/StoreComponent.h"
#include "platform/UniqueHandle.h"
#include "service/TextConversions.h"
#include "tests/localstore/LocalStoreSupport.h"

#include <gmock/gmock.h>

#include <climits>
#include <filesystem>
#include <functional>

using testing::HasSubstr;
using testing::Not;

namespace
{

constexpr wchar_t kScratch[] = L"Software\\PimStoreBridgeTest";

// The real target, where the changes from one number on fail.
class FailingTarget : public SystemInstallTarget
{
  public:
    using SystemInstallTarget::SystemInstallTarget;

    // Changes count from 1. lastFailing: the last one that fails.
    int firstFailing = INT_MAX;
    int lastFailing = INT_MAX;
    LSTATUS failure = ERROR_ACCESS_DENIED;
    int changes = 0;

    LSTATUS CreateKey(const std::wstring& key) override
    {
        return Fails() ? failure : SystemInstallTarget::CreateKey(key);
    }
    LSTATUS WriteValue(const std::wstring& key,
                       const std::wstring& name,
                       const RegistryValue& value) override
    {
        return Fails() ? failure : SystemInstallTarget::WriteValue(key, name, value);
    }
    LSTATUS DeleteValue(const std::wstring& key, const std::wstring& name) override
    {
        return Fails() ? failure : SystemInstallTarget::DeleteValue(key, name);
    }
    LSTATUS DeleteEmptyKey(const std::wstring& key) override
    {
        return Fails() ? failure : SystemInstallTarget::DeleteEmptyKey(key);
    }
    LSTATUS CreateFolder(const std::wstring& path) override
    {
        return Fails() ? failure : SystemInstallTarget::CreateFolder(path);
    }
    LSTATUS RemoveEmptyFolder(const std::wstring& path) override
    {
        return Fails() ? failure : SystemInstallTarget::RemoveEmptyFolder(path);
    }
    LSTATUS WriteNewFile(const std::wstring& path, const std::vector<BYTE>& bytes) override
    {
        return Fails() ? failure : SystemInstallTarget::WriteNewFile(path, bytes);
    }
    LSTATUS RemoveFile(const std::wstring& path) override
    {
        return Fails() ? failure : SystemInstallTarget::RemoveFile(path);
    }

  private:
    bool Fails()
    {
        ++changes;
        return changes >= firstFailing && changes <= lastFailing;
    }
};

// A scratch key that stands in for the machine's root, and a folder for the user's data.
class InstallerTest : public testing::Test
{
  protected:
    InstallerTest()
    {
        RegDeleteTreeW(HKEY_CURRENT_USER, kScratch);
        RegCreateKeyExW(HKEY_CURRENT_USER,
                        kScratch,
                        0,
                        nullptr,
                        0,
                        KEY_ALL_ACCESS,
                        nullptr,
                        m_root.Put(),
                        nullptr);
        plan.component = L"book";
        plan.home = L"C:\\Product\\";
        plan.values = {
            {L"Software\\Microsoft\\WAB\\DLLPath", L"", L"C:\\Product\\a.dll", WhenTaken::Refuse},
            {L"Software\\Clients\\Mail\\One\\shell\\open\\command",
             L"",
             L"\"C:\\Product\\a.exe\"",
             WhenTaken::Refuse},
            {L"Software\\Clients\\Mail", L"", L"One", WhenTaken::Leave},
        };
        plan.folders = {m_folder.Path() + L"Vendor\\Calendars"};
        // The home of the files is outside of what a snapshot holds.
        WriteWholeFile(m_home.File(L"source.dll"), "the library");
        plan.values.push_back({L"Software\\Clients\\Mail\\One",
                               L"Strings",
                               L"",
                               WhenTaken::Refuse,
                               {L"first", L"second"}});
        plan.files = {
            {m_home.File(L"source.dll"), m_folder.Path() + L"Vendor\\Calendars\\LIBRARY.DLL"}};
    }
    ~InstallerTest() override
    {
        m_root.Reset();
        RegDeleteTreeW(HKEY_CURRENT_USER, kScratch);
    }

    HKEY Root() const { return m_root.Get(); }
    SystemInstallTarget Target() const { return SystemInstallTarget(m_root.Get()); }
    const TempFolder& Folder() const { return m_folder; }
    // The file that the plan installs, and where it comes from.
    const std::wstring& Installed() const { return plan.files[0].path; }
    const std::wstring& Source() const { return plan.files[0].source; }
    // The installed file, open as another program has it that lets others read it and no more.
    UniqueFile HoldInstalled(DWORD access) const
    {
        return UniqueFile(CreateFileW(
            Installed().c_str(), access, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    }

    void Set(const std::wstring& key, const std::wstring& text)
    {
        SystemInstallTarget target = Target();
        ASSERT_EQ(ERROR_SUCCESS, target.CreateKey(key));
        ASSERT_EQ(ERROR_SUCCESS, target.WriteValue(key, L"", TextValue(text)));
    }

    // Every key, value and folder, as one text.
    std::wstring Snapshot() const
    {
        std::wstring text;
        AddKey(m_root.Get(), L"", text);
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(std::filesystem::path(m_folder.Path())))
        {
            text += L"entry " + entry.path().wstring() + L"\n";
            if (entry.is_regular_file())
                text += WideFromUtf8(ReadWholeFile(entry.path().wstring())) + L"\n";
        }
        return text;
    }

    std::wstring Value(const std::wstring& key) const
    {
        RegistryValue value;
        return Target().ReadValue(key, L"", value) == ERROR_SUCCESS ? TextOfValue(value) : L"none";
    }

    ComponentPlan plan;

  private:
    static void AddKey(HKEY key, const std::wstring& path, std::wstring& text)
    {
        text += L"key " + path + L"\n";
        for (DWORD i = 0;; ++i)
        {
            wchar_t name[256] = {};
            DWORD units = 256;
            BYTE data[2048] = {};
            DWORD bytes = sizeof data;
            DWORD type = 0;
            if (RegEnumValueW(key, i, name, &units, nullptr, &type, data, &bytes) != ERROR_SUCCESS)
                break;
            text += L"value " + std::wstring(name) + L" " + std::to_wstring(type) + L" ";
            for (DWORD byte = 0; byte < bytes; ++byte)
                text += std::to_wstring(data[byte]) + L",";
            text += L"\n";
        }
        for (DWORD i = 0;; ++i)
        {
            wchar_t name[256] = {};
            DWORD units = 256;
            if (RegEnumKeyExW(key, i, name, &units, nullptr, nullptr, nullptr, nullptr) !=
                ERROR_SUCCESS)
                break;
            UniqueRegistryKey child;
            RegOpenKeyExW(key, name, 0, KEY_READ, child.Put());
            AddKey(child.Get(), path + L"\\" + name, text);
        }
    }

    TempFolder m_folder;
    TempFolder m_home;
    UniqueRegistryKey m_root;
};

std::wstring AllLines(const InstallReport& report)
{
    std::wstring text;
    for (const std::wstring& line : report.lines)
        text += line + L"\n";
    return text;
}

} // namespace

TEST_F(InstallerTest, WritesWhatIsPlannedAndTakesBackExactlyThat)
{
    Set(L"Software\\Unrelated", L"stays");
    const std::wstring before = Snapshot();
    SystemInstallTarget target = Target();

    const InstallReport installed = Install(target, plan);
    EXPECT_EQ(InstallOutcome::Done, installed.outcome) << AllLines(installed);
    EXPECT_EQ(L"C:\\Product\\a.dll", Value(L"Software\\Microsoft\\WAB\\DLLPath"));
    EXPECT_EQ(L"\"C:\\Product\\a.exe\"",
              Value(L"Software\\Clients\\Mail\\One\\shell\\open\\command"));
    EXPECT_EQ(L"One", Value(L"Software\\Clients\\Mail"));
    EXPECT_TRUE(target.FolderExists(Folder().Path() + L"Vendor\\Calendars"));
    EXPECT_EQ(L"C:\\Product\\", InstalledHome(target, L"book"));

    const InstallReport removed = Remove(target, L"book");
    EXPECT_EQ(InstallOutcome::Done, removed.outcome) << AllLines(removed);
    EXPECT_EQ(before, Snapshot());
    EXPECT_EQ(L"", InstalledHome(target, L"book"));
}

TEST_F(InstallerTest, ASecondInstallAndASecondRemoveChangeNothingAndSaySo)
{
    SystemInstallTarget target = Target();
    const std::wstring before = Snapshot();
    const InstallReport none = Remove(target, L"book");
    EXPECT_EQ(InstallOutcome::Unchanged, none.outcome);
    EXPECT_THAT(AllLines(none), HasSubstr(L"not installed"));
    EXPECT_EQ(before, Snapshot());

    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    const std::wstring installed = Snapshot();
    const InstallReport second = Install(target, plan);
    EXPECT_EQ(InstallOutcome::Unchanged, second.outcome);
    EXPECT_THAT(AllLines(second), HasSubstr(L"already installed"));
    EXPECT_EQ(installed, Snapshot());
}

TEST_F(InstallerTest, RefusesWhereAnotherProductHoldsAValue)
{
    for (size_t taken = 0; taken < 2; ++taken)
    {
        RegDeleteTreeW(Root(), nullptr);
        Set(plan.values[taken].key, L"C:\\Other\\product.dll");
        const std::wstring before = Snapshot();
        SystemInstallTarget target = Target();
        const InstallReport report = Install(target, plan);
        EXPECT_EQ(InstallOutcome::TakenByOther, report.outcome);
        EXPECT_THAT(AllLines(report), HasSubstr(L"C:\\Other\\product.dll"));
        EXPECT_THAT(AllLines(report), HasSubstr(L"Nothing was changed"));
        EXPECT_EQ(before, Snapshot());
    }
}

TEST_F(InstallerTest, AnEmptyValueAndOneOfAnotherTypeAreHeldToo)
{
    SystemInstallTarget target = Target();
    Set(plan.values[0].key, L"");
    EXPECT_EQ(InstallOutcome::TakenByOther, Install(target, plan).outcome);
    ASSERT_EQ(ERROR_SUCCESS, target.WriteValue(plan.values[0].key, L"", {REG_DWORD, {1, 0, 0, 0}}));
    const InstallReport report = Install(target, plan);
    EXPECT_EQ(InstallOutcome::TakenByOther, report.outcome);
    EXPECT_THAT(AllLines(report), HasSubstr(L"another type"));
}

TEST_F(InstallerTest, NeverChangesAnExistingDefault)
{
    Set(L"Software\\Clients\\Mail", L"Other Mail");
    const std::wstring before = Snapshot();
    SystemInstallTarget target = Target();
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    EXPECT_EQ(L"Other Mail", Value(L"Software\\Clients\\Mail"));
    ASSERT_EQ(InstallOutcome::Done, Remove(target, L"book").outcome);
    EXPECT_EQ(before, Snapshot());

    Set(L"Software\\Clients\\Mail", L"");
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    EXPECT_EQ(L"", Value(L"Software\\Clients\\Mail")) << "an empty default is one";
}

TEST_F(InstallerTest, LeavesAValueThatStoodThereAlreadyAsItWas)
{
    Set(plan.values[0].key, plan.values[0].text);
    const std::wstring before = Snapshot();
    SystemInstallTarget target = Target();
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    ASSERT_EQ(InstallOutcome::Done, Remove(target, L"book").outcome);
    EXPECT_EQ(before, Snapshot()) << "we did not write it, so we do not take it back";
}

TEST_F(InstallerTest, AValueThatAnotherProgramChangedStaysAndIsTold)
{
    SystemInstallTarget target = Target();
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    Set(L"Software\\Clients\\Mail", L"Newer Mail");
    ASSERT_EQ(ERROR_SUCCESS, target.DeleteValue(plan.values[1].key, L""));
    const InstallReport again = Install(target, plan);
    EXPECT_EQ(InstallOutcome::OtherInstall, again.outcome);
    EXPECT_THAT(AllLines(again), HasSubstr(L"pimstore remove --book"));

    const InstallReport report = Remove(target, L"book");
    EXPECT_EQ(InstallOutcome::Done, report.outcome);
    EXPECT_THAT(AllLines(report), HasSubstr(L"Newer Mail"));
    EXPECT_THAT(AllLines(report), HasSubstr(L"was gone already"));
    EXPECT_EQ(L"Newer Mail", Value(L"Software\\Clients\\Mail"));
    EXPECT_EQ(L"none", Value(plan.values[0].key));
    EXPECT_EQ(L"", InstalledHome(target, L"book"));
}

TEST_F(InstallerTest, KeysAndFoldersThatOthersUseStay)
{
    SystemInstallTarget target = Target();
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    Set(L"Software\\Microsoft\\WAB\\Theirs", L"x");
    WriteWholeFile(Folder().Path() + L"Vendor\\Calendars\\my.ics", "data");
    const InstallReport report = Remove(target, L"book");
    EXPECT_EQ(InstallOutcome::Done, report.outcome);
    EXPECT_THAT(AllLines(report), HasSubstr(L"not empty and stays"));
    EXPECT_EQ(L"x", Value(L"Software\\Microsoft\\WAB\\Theirs"));
    EXPECT_EQ("data", ReadWholeFile(Folder().Path() + L"Vendor\\Calendars\\my.ics"));
    EXPECT_FALSE(target.KeyExists(L"Software\\Microsoft\\WAB\\DLLPath"));
    EXPECT_FALSE(target.KeyExists(L"Software\\PimStoreBridge"));
}

TEST_F(InstallerTest, AnotherCopyOfTheProductIsToldAndStays)
{
    SystemInstallTarget target = Target();
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    const std::wstring before = Snapshot();
    plan.home = L"D:\\Elsewhere\\";
    plan.values[0].text = L"D:\\Elsewhere\\a.dll";
    const InstallReport report = Install(target, plan);
    EXPECT_EQ(InstallOutcome::OtherInstall, report.outcome);
    EXPECT_THAT(AllLines(report), HasSubstr(L"C:\\Product\\"));
    EXPECT_EQ(before, Snapshot());
}

// Each change in turn is denied, while installing and while removing.
TEST_F(InstallerTest, ADeniedChangeLeavesEverythingAsItWas)
{
    const std::wstring clean = Snapshot();
    int installRuns = 0;
    for (int failing = 1;; ++failing)
    {
        FailingTarget target(Root());
        target.firstFailing = target.lastFailing = failing;
        const InstallReport report = Install(target, plan);
        if (report.outcome == InstallOutcome::Done)
            break;
        ++installRuns;
        EXPECT_EQ(InstallOutcome::AccessDenied, report.outcome);
        EXPECT_THAT(AllLines(report), HasSubstr(L"administrator"));
        EXPECT_THAT(AllLines(report), HasSubstr(L"Nothing was changed"));
        ASSERT_EQ(clean, Snapshot()) << failing;
    }
    const std::wstring installed = Snapshot();
    ASSERT_NE(clean, installed);
    int removeRuns = 0;
    for (int failing = 1;; ++failing)
    {
        FailingTarget target(Root());
        target.firstFailing = target.lastFailing = failing;
        const InstallReport report = Remove(target, L"book");
        if (report.outcome == InstallOutcome::Done)
            break;
        ++removeRuns;
        EXPECT_EQ(InstallOutcome::AccessDenied, report.outcome) << AllLines(report);
        ASSERT_EQ(installed, Snapshot()) << failing;
    }
    EXPECT_EQ(clean, Snapshot());
    // Keys, record values, folders and values of the plan are each at least one change.
    EXPECT_GE(installRuns, 20);
    EXPECT_GE(removeRuns, 15);
    std::printf("%d denied changes while installing, %d while removing\n", installRuns, removeRuns);
}

// Nothing works any more after some change, not even taking back: a later removal finds its way.
TEST_F(InstallerTest, WhatCouldNotBeTakenBackIsRemovedLater)
{
    const std::wstring clean = Snapshot();
    for (int failing = 1;; ++failing)
    {
        FailingTarget broken(Root());
        broken.firstFailing = failing;
        const InstallReport report = Install(broken, plan);
        SystemInstallTarget target = Target();
        if (report.outcome == InstallOutcome::Done)
        {
            EXPECT_EQ(InstallOutcome::Done, Remove(target, L"book").outcome);
            EXPECT_EQ(clean, Snapshot());
            break;
        }
        EXPECT_EQ(InstallOutcome::AccessDenied, report.outcome);
        Remove(target, L"book");
        // Without the list of its keys the record cannot tell that its parents were made for it.
        for (const wchar_t* key :
             {L"Software\\PimStoreBridge\\Installed", L"Software\\PimStoreBridge", L"Software"})
            target.DeleteEmptyKey(key);
        ASSERT_EQ(clean, Snapshot()) << failing;
    }
}

TEST_F(InstallerTest, OtherFailuresAreToldWithTheSystemsWords)
{
    const std::wstring clean = Snapshot();
    FailingTarget target(Root());
    target.firstFailing = target.lastFailing = 5;
    target.failure = ERROR_DISK_FULL;
    const InstallReport report = Install(target, plan);
    EXPECT_EQ(InstallOutcome::Failed, report.outcome);
    EXPECT_FALSE(report.lines.empty());
    EXPECT_EQ(clean, Snapshot());
}

TEST_F(InstallerTest, ADamagedRecordDoesNoHarm)
{
    SystemInstallTarget target = Target();
    const std::wstring key = L"Software\\PimStoreBridge\\Installed\\book";
    Set(L"Software\\Precious", L"stays");
    ASSERT_EQ(ERROR_SUCCESS, target.CreateKey(key));
    ASSERT_EQ(ERROR_SUCCESS, target.WriteValue(key, L"Change0", TextValue(L"nonsense")));
    ASSERT_EQ(ERROR_SUCCESS, target.WriteValue(key, L"Change1", {REG_DWORD, {1, 2}}));
    ASSERT_EQ(ERROR_SUCCESS, target.WriteValue(key, L"CreatedKeys", {REG_MULTI_SZ, {'x', 0, 'y'}}));
    ASSERT_EQ(ERROR_SUCCESS, target.WriteValue(key, L"Home", {REG_BINARY, {}}));
    EXPECT_EQ(InstallOutcome::OtherInstall, Install(target, plan).outcome);
    EXPECT_EQ(InstallOutcome::Done, Remove(target, L"book").outcome);
    EXPECT_FALSE(target.KeyExists(key));
    EXPECT_EQ(L"stays", Value(L"Software\\Precious"));
}

TEST_F(InstallerTest, TheBooksPlanNamesWhatTheDiscoveryReads)
{
    WriteWholeFile(Folder().File(L"PimLocalBook.dll"), "x");
    WriteWholeFile(Folder().File(L"pimstore.exe"), "x");
    ComponentPlan book;
    std::wstring reason;
    ASSERT_TRUE(PlanBook(Folder().Path(), L"C:\\Local", book, reason)) << reason;
    ASSERT_EQ(4u, book.values.size());
    EXPECT_EQ(L"Software\\Microsoft\\WAB\\DLLPath", book.values[0].key);
    EXPECT_EQ(Folder().File(L"PimLocalBook.dll"), book.values[0].text);
    EXPECT_EQ(L"Software\\Clients\\Mail\\Windows Mail\\shell\\open\\command", book.values[1].key);
    EXPECT_EQ(L"\"" + Folder().File(L"pimstore.exe") + L"\"", book.values[1].text);
    EXPECT_EQ(L"Software\\Clients\\Mail\\Outlook Express\\shell\\open\\command",
              book.values[2].key);
    EXPECT_EQ(L"Software\\Clients\\Mail", book.values[3].key);
    EXPECT_EQ(L"Windows Mail", book.values[3].text);
    EXPECT_EQ(WhenTaken::Leave, book.values[3].whenTaken);
    ASSERT_EQ(1u, book.folders.size());
    EXPECT_EQ(L"C:\\Local\\Microsoft\\Windows Calendar\\Calendars", book.folders[0]);

    WriteWholeFile(Folder().File(L"pim.exe"), "x");
    ASSERT_TRUE(PlanBook(Folder().Path(), L"C:\\Local", book, reason));
    EXPECT_EQ(L"\"" + Folder().File(L"pim.exe") + L"\"", book.values[1].text)
        << "what a person would start";
}

TEST_F(InstallerTest, TheBookIsNotPlannedWhereItCouldNotBeFound)
{
    ComponentPlan book;
    std::wstring reason;
    EXPECT_FALSE(PlanBook(Folder().Path(), L"C:\\Local", book, reason));
    EXPECT_THAT(reason, HasSubstr(L"PimLocalBook.dll"));
    WriteWholeFile(Folder().File(L"PimLocalBook.dll"), "x");
    EXPECT_FALSE(PlanBook(Folder().Path(), L"C:\\Local", book, reason));
    EXPECT_THAT(reason, HasSubstr(L"pimstore.exe"));

    const std::wstring variable = Folder().Path() + L"100%SystemRoot%\\";
    std::filesystem::create_directories(variable);
    WriteWholeFile(variable + L"PimLocalBook.dll", "x");
    WriteWholeFile(variable + L"pimstore.exe", "x");
    EXPECT_FALSE(PlanBook(variable, L"C:\\Local", book, reason));
    EXPECT_THAT(reason, HasSubstr(L"variable"));
    const std::wstring percent = Folder().Path() + L"100% mine\\";
    std::filesystem::create_directories(percent);
    WriteWholeFile(percent + L"PimLocalBook.dll", "x");
    WriteWholeFile(percent + L"pimstore.exe", "x");
    EXPECT_TRUE(PlanBook(percent, L"C:\\Local", book, reason)) << reason;
}

TEST_F(InstallerTest, WritesListsAndFilesToo)
{
    SystemInstallTarget target = Target();
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    RegistryValue value;
    ASSERT_EQ(ERROR_SUCCESS, target.ReadValue(L"Software\\Clients\\Mail\\One", L"Strings", value));
    EXPECT_EQ(DWORD{REG_MULTI_SZ}, value.type);
    EXPECT_EQ((std::vector<std::wstring>{L"first", L"second"}), ListOfValue(value));
    EXPECT_EQ("the library", ReadWholeFile(Installed()));
}

TEST_F(InstallerTest, RefusesWhereAnotherProductHasTheFileOrTheList)
{
    SystemInstallTarget target = Target();
    std::filesystem::create_directories(Folder().Path() + L"Vendor\\Calendars");
    WriteWholeFile(Installed(), "theirs");
    std::wstring before = Snapshot();
    const InstallReport report = Install(target, plan);
    EXPECT_EQ(InstallOutcome::TakenByOther, report.outcome);
    EXPECT_THAT(AllLines(report), HasSubstr(Installed()));
    EXPECT_EQ(before, Snapshot());

    std::filesystem::remove(Installed());
    Set(L"Software\\Clients\\Mail\\One", L"");
    ASSERT_EQ(ERROR_SUCCESS,
              target.WriteValue(
                  L"Software\\Clients\\Mail\\One", L"Strings", ListValue({L"first", L"third"})));
    before = Snapshot();
    EXPECT_EQ(InstallOutcome::TakenByOther, Install(target, plan).outcome);
    EXPECT_EQ(before, Snapshot());
}

TEST_F(InstallerTest, AFileThatWasThereAlreadyStays)
{
    SystemInstallTarget target = Target();
    std::filesystem::create_directories(Folder().Path() + L"Vendor\\Calendars");
    WriteWholeFile(Installed(), "the library");
    const std::wstring before = Snapshot();
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    ASSERT_EQ(InstallOutcome::Done, Remove(target, L"book").outcome);
    EXPECT_EQ(before, Snapshot());
}

TEST_F(InstallerTest, AFileThatAnotherProgramChangedStaysAndIsTold)
{
    SystemInstallTarget target = Target();
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    WriteWholeFile(Installed(), "replaced by somebody");
    const InstallReport again = Install(target, plan);
    EXPECT_EQ(InstallOutcome::OtherInstall, again.outcome);
    EXPECT_THAT(AllLines(again), HasSubstr(Installed()));
    const InstallReport removed = Remove(target, L"book");
    EXPECT_EQ(InstallOutcome::Done, removed.outcome);
    EXPECT_THAT(AllLines(removed), HasSubstr(L"was changed by another program"));
    EXPECT_EQ("replaced by somebody", ReadWholeFile(Installed()));

    ASSERT_EQ(InstallOutcome::TakenByOther, Install(target, plan).outcome);
    std::filesystem::remove(Installed());
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    std::filesystem::remove(Installed());
    EXPECT_THAT(AllLines(Remove(target, L"book")), HasSubstr(L"was gone already"));
}

TEST_F(InstallerTest, ANewerFileOfTheProductTakesThePlaceOfTheOld)
{
    SystemInstallTarget target = Target();
    const std::wstring clean = Snapshot();
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    WriteWholeFile(Source(), "a newer library");
    const InstallReport report = Install(target, plan);
    EXPECT_EQ(InstallOutcome::Done, report.outcome) << AllLines(report);
    EXPECT_EQ("a newer library", ReadWholeFile(Installed()));
    EXPECT_EQ(InstallOutcome::Unchanged, Install(target, plan).outcome);
    ASSERT_EQ(InstallOutcome::Done, Remove(target, L"book").outcome);
    EXPECT_EQ(clean, Snapshot());
}

TEST_F(InstallerTest, AnUpgradeThatFailsSaysThatTheOldOneIsGone)
{
    SystemInstallTarget target = Target();
    const std::wstring clean = Snapshot();
    FailingTarget counting(Root());
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    ASSERT_EQ(InstallOutcome::Done, Remove(counting, L"book").outcome);
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    WriteWholeFile(Source(), "a newer library");
    // The first change behind the removal.
    FailingTarget failing(Root());
    failing.firstFailing = failing.lastFailing = counting.changes + 1;
    const InstallReport report = Install(failing, plan);
    EXPECT_EQ(InstallOutcome::AccessDenied, report.outcome);
    EXPECT_THAT(AllLines(report), HasSubstr(L"The older book was removed before that."));
    EXPECT_THAT(AllLines(report), Not(HasSubstr(L"Nothing was changed.")));
    EXPECT_EQ(clean, Snapshot());
    EXPECT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
}

TEST_F(InstallerTest, AFileThatCannotBeReadIsNotTakenForAChangedOne)
{
    SystemInstallTarget target = Target();
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    const std::wstring installed = Snapshot();
    {
        const UniqueFile held = HoldInstalled(GENERIC_WRITE);
        ASSERT_TRUE(held);
        const InstallReport report = Remove(target, L"book");
        EXPECT_EQ(InstallOutcome::Failed, report.outcome);
        EXPECT_THAT(AllLines(report), HasSubstr(L"Nothing was changed."));
    }
    EXPECT_EQ(installed, Snapshot());
    EXPECT_EQ(InstallOutcome::Done, Remove(target, L"book").outcome);
    EXPECT_FALSE(std::filesystem::exists(Installed()));
}

TEST_F(InstallerTest, AFileInUseIsToldAndEverythingStays)
{
    SystemInstallTarget target = Target();
    ASSERT_EQ(InstallOutcome::Done, Install(target, plan).outcome);
    const std::wstring installed = Snapshot();
    {
        // As the system holds a library that is loaded: it can be read, and not be deleted.
        const UniqueFile held = HoldInstalled(GENERIC_READ);
        ASSERT_TRUE(held);
        const InstallReport report = Remove(target, L"book");
        EXPECT_EQ(InstallOutcome::Failed, report.outcome);
        EXPECT_THAT(AllLines(report), HasSubstr(L"end that program"));
        EXPECT_EQ(installed, Snapshot());
    }
    EXPECT_EQ(InstallOutcome::Done, Remove(target, L"book").outcome);
}

TEST_F(InstallerTest, AMissingSourceInstallsNothing)
{
    const std::wstring clean = Snapshot();
    SystemInstallTarget target = Target();
    std::filesystem::remove(Source());
    const InstallReport report = Install(target, plan);
    EXPECT_EQ(InstallOutcome::Failed, report.outcome);
    EXPECT_THAT(AllLines(report), HasSubstr(Source()));
    EXPECT_EQ(clean, Snapshot());
}

TEST_F(InstallerTest, TheStoresPlanNamesWhatTheDiscoveryReads)
{
    ComponentPlan store;
    std::wstring reason;
    EXPECT_FALSE(PlanStore(Folder().Path(), L"C:\\Programs", store, reason));
    EXPECT_THAT(reason, HasSubstr(L"PimLocalStore.dll"));
    WriteWholeFile(Folder().File(L"PimLocalStore.dll"), "x");
    EXPECT_FALSE(PlanStore(Folder().Path(), L"C:\\Programs", store, reason));
    EXPECT_THAT(reason, HasSubstr(L"pimstore.exe"));
    WriteWholeFile(Folder().File(L"pimstore.exe"), "x");
    ASSERT_TRUE(PlanStore(Folder().Path(), L"C:\\Programs", store, reason)) << reason;
    EXPECT_EQ(L"store", store.component);
    ASSERT_EQ(4u, store.values.size());
    for (const size_t i : {0, 1})
        EXPECT_EQ(L"Software\\Clients\\Mail\\Microsoft Outlook", store.values[i].key);
    EXPECT_EQ(L"MSIComponentID", store.values[0].name);
    EXPECT_EQ(38u, store.values[0].text.size());
    EXPECT_EQ(L"MSIApplicationLCID", store.values[1].name);
    ASSERT_EQ(2u, store.values[1].list.size());
    EXPECT_EQ(L"Microsoft\\Office\\14.0\\Outlook", store.values[1].list[0]);
    EXPECT_EQ(L"Software\\Clients\\Mail\\Microsoft Outlook\\shell\\open\\command",
              store.values[2].key);
    EXPECT_EQ(L"\"" + Folder().File(L"pimstore.exe") + L"\"", store.values[2].text);
    EXPECT_EQ(WhenTaken::Leave, store.values[3].whenTaken);
    EXPECT_EQ(L"Microsoft Outlook", store.values[3].text);
    ASSERT_EQ(1u, store.files.size());
    EXPECT_EQ(Folder().File(L"PimLocalStore.dll"), store.files[0].source);
    EXPECT_EQ(L"C:\\Programs\\Common Files\\System\\MSMAPI\\0\\MSMAPI32.DLL", store.files[0].path);
    EXPECT_EQ((std::vector<std::wstring>{L"C:\\Programs\\Common Files\\System\\MSMAPI\\0"}),
              store.folders);

    EXPECT_FALSE(PlanStore(Folder().Path(), L"C:\\" + std::wstring(240, L'x'), store, reason));
    EXPECT_THAT(reason, HasSubstr(L"too long"));
}
