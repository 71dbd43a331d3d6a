// Registration by the real server, compared with the whole list of its keys and values.
#include "endtoend/RegistryDump.h"
#include "endtoend/ServerFixture.h"
#include "platform/Bstr.h"
#include "support/ScratchDirectory.h"
#include "support/TestPaths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

using Microsoft::WRL::ComPtr;

namespace
{
std::string Narrow(const std::wstring& text)
{
    std::string narrow;
    for (const wchar_t character : text)
        narrow += character < 0x80 ? static_cast<char>(character) : '?';
    return narrow;
}

std::wstring DirectoryOf(const std::wstring& path)
{
    return path.substr(0, path.find_last_of(L'\\') + 1);
}

void ReplaceToken(std::wstring& line, const std::wstring& token, const std::wstring& text)
{
    if (const size_t at = line.find(token); at != std::wstring::npos)
        line.replace(at, token.size(), text);
}

struct ExpectedLine
{
    std::wstring text;
    bool optional;
    bool anyValue; // the text is a prefix
};

// The list of keys for a server at that path. The file is ASCII.
std::vector<ExpectedLine> ReadExpected(const std::wstring& serverPath)
{
    std::vector<ExpectedLine> lines;
    std::ifstream file(TestData() / "registration" / "keys.txt");
    for (std::string raw; std::getline(file, raw);)
    {
        if (!raw.empty() && raw.back() == '\r')
            raw.pop_back();
        if (raw.empty() || raw.front() == '#')
            continue;
        ExpectedLine line{std::wstring(raw.begin(), raw.end()), raw.front() == '?', false};
        if (line.optional)
            line.text.erase(0, 1);
        if (line.text.ends_with(L"| *"))
        {
            line.anyValue = true;
            line.text.pop_back();
        }
        ReplaceToken(line.text, L"{EXE}", serverPath);
        ReplaceToken(line.text, L"{DIR}", DirectoryOf(serverPath));
        lines.push_back(line);
    }
    return lines;
}

void ExpectRegistered(std::set<std::wstring> added, const std::wstring& serverPath)
{
    const auto expected = ReadExpected(serverPath);
    // Application, ten classes, type library, eleven interfaces: the whole file was read.
    EXPECT_EQ(4u + 10 * 23 + 10 + 11 * 9, expected.size());
    for (const ExpectedLine& line : expected)
    {
        const auto found = std::find_if(added.begin(), added.end(), [&](const auto& one) {
            return line.anyValue ? one.starts_with(line.text) : one == line.text;
        });
        if (found != added.end())
            added.erase(found);
        else
            EXPECT_TRUE(line.optional) << "missing: " << Narrow(line.text);
    }
    for (const std::wstring& line : added)
        ADD_FAILURE() << "not expected: " << Narrow(line);
}

std::set<std::wstring> Difference(const std::set<std::wstring>& left,
                                  const std::set<std::wstring>& right)
{
    std::set<std::wstring> difference;
    std::set_difference(left.begin(),
                        left.end(),
                        right.begin(),
                        right.end(),
                        std::inserter(difference, difference.end()));
    return difference;
}

// Without the server's registration at the start; with it again at the end.
class RegistrationTest : public testing::Test
{
  protected:
    void SetUp() override
    {
        EndServers();
        ASSERT_EQ(0u, UnregisterServerAt(ServerPath()));
        m_clean = DumpClasses();
    }
    void TearDown() override { EXPECT_EQ(0u, RegisterServerAt(ServerPath())); }

    std::set<std::wstring> m_clean;
};

constexpr DWORD kTimeoutMilliseconds = 60000;
} // namespace

TEST_F(RegistrationTest, WritesExactlyTheStatedKeysAndTakesThemOut)
{
    const std::wstring quoted = L'"' + ServerPath() + L'"';
    const wchar_t* const rounds[][2] = {{L" -RegServer", L" -UnregServer"},
                                        {L" /regserver", L" /UNREGSERVER"}};
    for (const auto& switches : rounds)
    {
        EXPECT_EQ(0u, RunProgram(quoted + switches[0], kTimeoutMilliseconds));
        const auto registered = DumpClasses();
        ExpectRegistered(Difference(registered, m_clean), ServerPath());
        EXPECT_TRUE(Difference(m_clean, registered).empty());
        EXPECT_EQ(0u, RunProgram(quoted + switches[1], kTimeoutMilliseconds));
        EXPECT_EQ(m_clean, DumpClasses());
    }
    // The parents stand.
    EXPECT_TRUE(m_clean.contains(L"AppID"));
    EXPECT_TRUE(m_clean.contains(L"CLSID"));
}

TEST_F(RegistrationTest, ASecondRegistrationReplacesTheFirst)
{
    const std::wstring clsid = L"CLSID\\{41948936-1A00-4634-BFAB-2413A2E278F5}";
    const std::wstring quoted = L'"' + ServerPath() + L'"';
    EXPECT_EQ(0u, RunProgram(quoted + L" -RegServer", kTimeoutMilliseconds));
    // What an earlier version left below the class goes, since the key is made anew.
    RegSetKeyValueW(HKEY_CLASSES_ROOT, (clsid + L"\\InprocServer32").c_str(), L"", REG_SZ, L"x", 4);
    EXPECT_EQ(0u, RunProgram(quoted + L" -RegServer", kTimeoutMilliseconds));
    ExpectRegistered(Difference(DumpClasses(), m_clean), ServerPath());
    EXPECT_EQ(0u, RunProgram(quoted + L" -UnregServer", kTimeoutMilliseconds));
    EXPECT_EQ(m_clean, DumpClasses());
}

TEST_F(RegistrationTest, WorksFromUnusualFolders)
{
    const wchar_t* const suffixes[] = {
        L" with blanks",
        L" o'neil''s",
        L" 100% %APPID% %",
        L"-a-reg-b",
        L" \u00dcn\u00efcode \u65e5\u672c \u0416",
    };
    for (const wchar_t* suffix : suffixes)
    {
        SCOPED_TRACE(Narrow(suffix));
        const ScratchDirectory folder(suffix);
        const std::wstring path = folder.File(L"PimStoreBridge.exe");
        ASSERT_TRUE(CopyFileW(ServerPath().c_str(), path.c_str(), TRUE));
        const std::wstring quoted = L'"' + path + L'"';
        EXPECT_EQ(0u, RunProgram(quoted + L" -RegServer", kTimeoutMilliseconds));
        ExpectRegistered(Difference(DumpClasses(), m_clean), path);
        EXPECT_EQ(0u, RunProgram(quoted + L" -UnregServer", kTimeoutMilliseconds));
        EXPECT_EQ(m_clean, DumpClasses());
    }
}

TEST_F(RegistrationTest, AServerInAnUnusualFolderIsStartedFromThere)
{
    const ScratchDirectory folder(L" it's 5% of-a \u00dc");
    const std::wstring path = folder.File(L"PimStoreBridge.exe");
    ASSERT_TRUE(CopyFileW(ServerPath().c_str(), path.c_str(), TRUE));
    ASSERT_EQ(0u, RegisterServerAt(path));
    {
        const auto appointment = MakeInServer<INAppointment>(CLSID_NAppointment);
        EXPECT_EQ(1u, RunningServers(path).size());
        EXPECT_TRUE(RunningServers(ServerPath()).empty());
    }
    EndServers(path);
    EXPECT_EQ(0u, UnregisterServerAt(path));
    EXPECT_EQ(m_clean, DumpClasses());
}

TEST_F(RegistrationTest, RemovingWhatIsNotRegisteredFailsAtTheLibrary)
{
    // The classes' scripts find nothing to delete, then the system knows no such library.
    const auto exitCode =
        RunProgram(L'"' + ServerPath() + L"\" -UnregServer", kTimeoutMilliseconds);
    ASSERT_TRUE(exitCode);
    EXPECT_TRUE(FAILED(static_cast<HRESULT>(*exitCode)));
    EXPECT_EQ(m_clean, DumpClasses());
}

TEST_F(RegistrationTest, AnotherWordIsNoSwitchAndTheServerServes)
{
    for (const wchar_t* word : {L" -RegServerX", L" RegServer", L" \"RegServer\""})
    {
        const StartedProgram server = StartProgram(L'"' + ServerPath() + L'"' + word);
        ASSERT_TRUE(server.process);
        EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(server.process.Get(), 1000));
        EndServers();
        // As a server it ends with the result of revoking its class objects.
        DWORD exitCode = 1;
        GetExitCodeProcess(server.process.Get(), &exitCode);
        EXPECT_EQ(0u, exitCode);
        EXPECT_EQ(m_clean, DumpClasses());
    }
}

namespace
{
// The system's own keys among the user's classes, there while a test runs: a registration leaves
// them behind, whoever made them.
class UserClassesTest : public RegistrationTest
{
  protected:
    static constexpr const wchar_t* kSystemKeys[] = {L"AppID", L"CLSID", L"Interface", L"TypeLib"};

    void SetUp() override
    {
        RegistrationTest::SetUp();
        ASSERT_EQ(ERROR_SUCCESS,
                  RegCreateKeyW(HKEY_CURRENT_USER, L"Software\\Classes", m_classes.Put()));
        for (const wchar_t* name : kSystemKeys)
        {
            UniqueRegistryKey key;
            DWORD made = 0;
            ASSERT_EQ(
                ERROR_SUCCESS,
                RegCreateKeyExW(
                    m_classes.Get(), name, 0, nullptr, 0, KEY_READ, nullptr, key.Put(), &made));
            if (made == REG_CREATED_NEW_KEY)
                m_made.push_back(name);
        }
        m_userClean = DumpUserClasses();
        m_allClean = DumpClasses();
    }
    void TearDown() override
    {
        for (const wchar_t* name : m_made)
            EXPECT_EQ(ERROR_SUCCESS, RegDeleteKeyW(m_classes.Get(), name));
        RegistrationTest::TearDown();
    }
    static std::wstring Pim(const wchar_t* arguments)
    {
        return L'"' + DirectoryOf(ServerPath()) + L"pim.exe\" " + arguments;
    }

    UniqueRegistryKey m_classes;
    std::vector<const wchar_t*> m_made;
    std::set<std::wstring> m_userClean;
    std::set<std::wstring> m_allClean;
};
} // namespace

// That a client is then served is the system's business, which shows the user's classes among all
// classes; the runtime of these tests does not do so.
TEST_F(UserClassesTest, PimWritesTheSameKeysForTheUserAloneAndTakesThemOut)
{
    EXPECT_EQ(0u, RunProgram(Pim(L"register --user"), kTimeoutMilliseconds));
    ExpectRegistered(Difference(DumpUserClasses(), m_userClean), ServerPath());
    // Nothing stands among the machine's classes.
    ExpectRegistered(Difference(DumpClasses(), m_allClean), ServerPath());
    // Taking back the machine's registration, which there is none of, leaves the user's alone.
    EXPECT_NE(0u, RunProgram(Pim(L"unregister"), kTimeoutMilliseconds));
    ExpectRegistered(Difference(DumpUserClasses(), m_userClean), ServerPath());

    EXPECT_EQ(0u, RunProgram(Pim(L"unregister --user"), kTimeoutMilliseconds));
    EXPECT_EQ(m_userClean, DumpUserClasses());
    EXPECT_EQ(m_allClean, DumpClasses());
}

TEST_F(UserClassesTest, TheUsersRegistrationLeavesTheMachinesAlone)
{
    ASSERT_EQ(0u, RegisterServerAt(ServerPath()));
    const auto registered = DumpClasses();
    EXPECT_EQ(0u, RunProgram(Pim(L"register --user"), kTimeoutMilliseconds));
    EXPECT_EQ(0u, RunProgram(Pim(L"unregister --user"), kTimeoutMilliseconds));
    EXPECT_EQ(registered, DumpClasses());
    EXPECT_EQ(0u, UnregisterServerAt(ServerPath()));
}
