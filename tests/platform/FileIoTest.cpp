#include "platform/FileIo.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

#ifdef _WIN32
#include "platform/UniqueHandle.h"
#else
#include <sys/stat.h>
#endif

namespace
{
namespace fs = std::filesystem;

const std::string kOld = "BEGIN:OLD\r\nEND:OLD\r\n";
const std::string kLonger = "BEGIN:NEW\r\nSUMMARY:somewhat longer\r\nEND:NEW\r\n";
const std::string kShorter = "NEW\r\n";

// Everything but the functions under test writes and reads through the standard streams.
void Put(const fs::path& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), std::ssize(bytes));
}

std::string Get(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The steps that a hook saw, and the ones it refuses or dies at. Hooks are plain functions, so this
// is state of the file; each test sets it anew.
std::vector<SaveStep> g_seen;
std::set<SaveStep> g_refused;

bool Record(SaveStep step)
{
    g_seen.push_back(step);
    return !g_refused.contains(step);
}

constexpr int kKilled = 7;

[[noreturn]] void Die()
{
    // No clean-up of any kind, as when the process is killed.
#ifdef _WIN32
    TerminateProcess(GetCurrentProcess(), kKilled);
#endif
    std::_Exit(kKilled);
}

bool g_killAtInPlace = false;
SaveStep g_killStep = SaveStep::OpenTarget;

bool Kill(SaveStep step)
{
    if (step == g_killStep)
        Die();
    // The road in place is taken where the replacement fails.
    return !(g_killAtInPlace && step == SaveStep::Replace);
}

class FileIoTest : public testing::Test
{
  protected:
    FileIoTest() : m_folder(testing::UnitTest::GetInstance()->current_test_info()->name())
    {
        g_seen.clear();
        g_refused.clear();
        g_killAtInPlace = false;
    }

    bool SaveRefusing(std::set<SaveStep> steps, const std::string& bytes)
    {
        g_seen.clear();
        g_refused = std::move(steps);
        ScopedSaveHook hook(Record);
        return SaveWholeFile(Target(), bytes);
    }

    std::wstring Target() const { return m_folder / L"Work.ics"; }
    fs::path TargetPath() const { return Target(); }
    fs::path Temporary() const { return m_folder / L"Work.ics.tmp"; }

    TempFolder m_folder;
};
} // namespace

TEST_F(FileIoTest, ReadsTheBytesOfAFile)
{
    std::string every;
    for (int value = 0; value < 256; ++value)
        every += static_cast<char>(value);
    Put(TargetPath(), every);
    std::string bytes = "before";
    EXPECT_TRUE(ReadWholeFile(Target(), bytes));
    EXPECT_EQ(every, bytes);

    Put(TargetPath(), "");
    EXPECT_TRUE(ReadWholeFile(Target(), bytes));
    EXPECT_EQ("", bytes);
}

TEST_F(FileIoTest, ReadsAFileLargerThanItsBlocks)
{
    std::string large;
    while (large.size() < 1'000'000)
        large += std::to_string(large.size()) + "\n";
    Put(TargetPath(), large);
    std::string bytes;
    EXPECT_TRUE(ReadWholeFile(Target(), bytes));
    EXPECT_TRUE(large == bytes);
}

TEST_F(FileIoTest, LeavesTheOutputWhereAFileDoesNotOpen)
{
    std::string bytes = "before";
    EXPECT_FALSE(ReadWholeFile(Target(), bytes));
    EXPECT_FALSE(ReadWholeFile(L"", bytes));
    EXPECT_FALSE(ReadWholeFile(m_folder / L"missing/Work.ics", bytes));
    fs::create_directory(TargetPath());
    EXPECT_FALSE(ReadWholeFile(Target(), bytes));
    EXPECT_EQ("before", bytes);
}

TEST_F(FileIoTest, ReadsNoFileBeyondOneGibibyte)
{
    Put(TargetPath(), "x");
    fs::resize_file(TargetPath(), (std::uintmax_t{1} << 30) + 1);
    std::string bytes = "before";
    EXPECT_FALSE(ReadWholeFile(Target(), bytes));
    EXPECT_EQ("before", bytes);
}

TEST_F(FileIoTest, MakesAFileThatIsMissing)
{
    EXPECT_TRUE(SaveWholeFile(Target(), kLonger));
    EXPECT_EQ(kLonger, Get(TargetPath()));
    EXPECT_FALSE(fs::exists(Temporary()));
}

TEST_F(FileIoTest, ReplacesTheWholeContent)
{
    for (const std::string& bytes : {kLonger, kShorter, std::string(), std::string(300'000, 'x')})
    {
        Put(TargetPath(), kOld);
        EXPECT_TRUE(SaveWholeFile(Target(), bytes));
        EXPECT_EQ(bytes, Get(TargetPath()));
        EXPECT_FALSE(fs::exists(Temporary()));
    }
}

TEST_F(FileIoTest, SavesThroughASiblingFile)
{
    Put(TargetPath(), kOld);
    EXPECT_TRUE(SaveRefusing({}, kLonger));
    EXPECT_EQ((std::vector{SaveStep::OpenTarget,
                           SaveStep::CreateTemporary,
                           SaveStep::WriteTemporary,
                           SaveStep::FlushTemporary,
                           SaveStep::Replace}),
              g_seen);
    EXPECT_EQ(kLonger, Get(TargetPath()));
}

TEST_F(FileIoTest, FailsWhereTheFileCannotBeOpenedOrMade)
{
    EXPECT_FALSE(SaveWholeFile(L"", kLonger));
    EXPECT_FALSE(SaveWholeFile(m_folder / L"missing/Work.ics", kLonger));
    EXPECT_FALSE(fs::exists(m_folder.Path() / "missing"));
    fs::create_directory(TargetPath());
    EXPECT_FALSE(SaveWholeFile(Target(), kLonger));
    EXPECT_TRUE(fs::is_directory(TargetPath()));
    EXPECT_FALSE(fs::exists(Temporary()));
}

TEST_F(FileIoTest, LeavesAReadOnlyFile)
{
    Put(TargetPath(), kOld);
    fs::permissions(TargetPath(), fs::perms::owner_read | fs::perms::group_read);
    EXPECT_FALSE(SaveWholeFile(Target(), kLonger));
    EXPECT_EQ(kOld, Get(TargetPath()));
    EXPECT_FALSE(fs::exists(Temporary()));
    fs::permissions(TargetPath(), fs::perms::owner_all);
}

TEST_F(FileIoTest, DoesNothingWhereTheTargetDoesNotOpen)
{
    Put(TargetPath(), kOld);
    EXPECT_FALSE(SaveRefusing({SaveStep::OpenTarget}, kLonger));
    EXPECT_EQ(std::vector{SaveStep::OpenTarget}, g_seen);
    EXPECT_EQ(kOld, Get(TargetPath()));
}

TEST_F(FileIoTest, OverwritesWhatAKilledSaveLeftBehind)
{
    Put(TargetPath(), kOld);
    Put(Temporary(), std::string(5000, 'x'));
    EXPECT_TRUE(SaveWholeFile(Target(), kShorter));
    EXPECT_EQ(kShorter, Get(TargetPath()));
    EXPECT_FALSE(fs::exists(Temporary()));
}

TEST_F(FileIoTest, WritesInPlaceWhereAStepBesideTheTargetFails)
{
    for (const SaveStep step : {SaveStep::CreateTemporary,
                                SaveStep::WriteTemporary,
                                SaveStep::FlushTemporary,
                                SaveStep::Replace})
    {
        for (const std::string& bytes : {kLonger, kShorter, std::string()})
        {
            Put(TargetPath(), kOld);
            EXPECT_TRUE(SaveRefusing({step}, bytes));
            EXPECT_EQ(bytes, Get(TargetPath()));
            EXPECT_FALSE(fs::exists(Temporary()));
            EXPECT_EQ(1, std::ranges::count(g_seen, SaveStep::WriteInPlace));
        }
    }
}

TEST_F(FileIoTest, WritesInPlaceWhereAFolderHasTheSiblingsName)
{
    fs::create_directory(Temporary());
    Put(TargetPath(), kOld);
    EXPECT_TRUE(SaveWholeFile(Target(), kShorter));
    EXPECT_EQ(kShorter, Get(TargetPath()));
}

TEST_F(FileIoTest, WritesInPlaceWhereTheFileHasTwoNames)
{
    Put(TargetPath(), kOld);
    const fs::path other = m_folder.Path() / "other.ics";
    fs::create_hard_link(TargetPath(), other);
    EXPECT_TRUE(SaveWholeFile(Target(), kShorter));
    EXPECT_EQ(kShorter, Get(other));
}

TEST_F(FileIoTest, KeepsTheOldBytesWhereEveryWriteFails)
{
    // A full disk: neither the sibling nor the target takes the bytes.
    for (const SaveStep step : {SaveStep::ReserveInPlace, SaveStep::WriteInPlace})
    {
        for (const std::string& bytes : {kLonger, kShorter})
        {
            Put(TargetPath(), kOld);
            EXPECT_TRUE(SaveRefusing({SaveStep::WriteTemporary, step}, bytes));
            EXPECT_EQ(kOld, Get(TargetPath()));
            EXPECT_FALSE(fs::exists(Temporary()));
        }
    }
}

TEST_F(FileIoTest, FailsWhereTheTargetNoLongerOpensInPlace)
{
    Put(TargetPath(), kOld);
    EXPECT_FALSE(SaveRefusing({SaveStep::Replace, SaveStep::OpenInPlace}, kLonger));
    EXPECT_EQ(kOld, Get(TargetPath()));
    EXPECT_FALSE(fs::exists(Temporary()));
}

TEST_F(FileIoTest, LeavesLineBreaksBehindAShorterTextThatIsNotCut)
{
    Put(TargetPath(), kOld);
    EXPECT_TRUE(SaveRefusing({SaveStep::Replace, SaveStep::CutInPlace}, kShorter));
    EXPECT_EQ(kShorter + std::string(kOld.size() - kShorter.size(), '\n'), Get(TargetPath()));
}

using FileIoDeathTest = FileIoTest;

TEST_F(FileIoDeathTest, LeavesTheOldBytesWhereASaveIsKilledBeforeItsEnd)
{
    for (const SaveStep step : {SaveStep::OpenTarget,
                                SaveStep::CreateTemporary,
                                SaveStep::WriteTemporary,
                                SaveStep::FlushTemporary,
                                SaveStep::Replace})
    {
        g_killStep = step;
        Put(TargetPath(), kOld);
        EXPECT_EXIT(
            {
                ScopedSaveHook hook(Kill);
                SaveWholeFile(Target(), kLonger);
            },
            testing::ExitedWithCode(kKilled),
            "");
        EXPECT_EQ(kOld, Get(TargetPath()));
        // The next save is not hindered by what is left.
        EXPECT_TRUE(SaveWholeFile(Target(), kShorter));
        EXPECT_EQ(kShorter, Get(TargetPath()));
        EXPECT_FALSE(fs::exists(Temporary()));
    }
}

TEST_F(FileIoDeathTest, LeavesNoFileWhereTheFirstSaveIsKilledBeforeItsEnd)
{
    for (const SaveStep step : {SaveStep::OpenTarget,
                                SaveStep::CreateTemporary,
                                SaveStep::WriteTemporary,
                                SaveStep::FlushTemporary,
                                SaveStep::Replace})
    {
        g_killStep = step;
        fs::remove(TargetPath());
        EXPECT_EXIT(
            {
                ScopedSaveHook hook(Kill);
                SaveWholeFile(Target(), kLonger);
            },
            testing::ExitedWithCode(kKilled),
            "");
        EXPECT_FALSE(fs::exists(TargetPath()));
    }
}

TEST_F(FileIoDeathTest, LeavesOldOrNewBytesWhereverASaveInPlaceIsKilled)
{
    const std::string padded = kShorter + std::string(kOld.size() - kShorter.size(), '\n');
    struct
    {
        SaveStep step;
        std::string shorter, longer;
    } const cases[] = {
        {SaveStep::OpenInPlace, kOld, kOld},
        {SaveStep::ReserveInPlace, kOld, kOld},
        {SaveStep::WriteInPlace, kOld, kOld},
        {SaveStep::CutInPlace, padded, kLonger},
        {SaveStep::RemoveTemporary, kShorter, kLonger},
    };
    for (const auto& row : cases)
    {
        for (const bool isLonger : {false, true})
        {
            g_killAtInPlace = true;
            g_killStep = row.step;
            Put(TargetPath(), kOld);
            EXPECT_EXIT(
                {
                    ScopedSaveHook hook(Kill);
                    SaveWholeFile(Target(), isLonger ? kLonger : kShorter);
                },
                testing::ExitedWithCode(kKilled),
                "");
            EXPECT_EQ(isLonger ? row.longer : row.shorter, Get(TargetPath()));
            EXPECT_TRUE(SaveWholeFile(Target(), kShorter));
            EXPECT_EQ(kShorter, Get(TargetPath()));
            EXPECT_FALSE(fs::exists(Temporary()));
        }
    }
}

#ifdef _WIN32

namespace
{
UniqueFile OpenElsewhere(const std::wstring& path, DWORD access, DWORD share)
{
    return UniqueFile(CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr));
}

// The names that a walk of a calendar folder finds.
std::set<std::wstring> Find(const std::wstring& pattern)
{
    std::set<std::wstring> names;
    WIN32_FIND_DATAW data{};
    UniqueFind find(FindFirstFileW(pattern.c_str(), &data));
    for (bool more = static_cast<bool>(find); more; more = FindNextFileW(find.Get(), &data))
        names.insert(data.cFileName);
    return names;
}
} // namespace

TEST_F(FileIoTest, LeavesFilesThatAreHiddenOrOfTheSystem)
{
    for (const DWORD attribute : {DWORD{FILE_ATTRIBUTE_READONLY},
                                  DWORD{FILE_ATTRIBUTE_HIDDEN},
                                  DWORD{FILE_ATTRIBUTE_SYSTEM}})
    {
        Put(TargetPath(), kOld);
        ASSERT_TRUE(SetFileAttributesW(Target().c_str(), attribute));
        EXPECT_FALSE(SaveWholeFile(Target(), kLonger));
        EXPECT_EQ(kOld, Get(TargetPath()));
        EXPECT_FALSE(fs::exists(Temporary()));
        std::string bytes;
        EXPECT_TRUE(ReadWholeFile(Target(), bytes));
        EXPECT_EQ(kOld, bytes);
        ASSERT_TRUE(SetFileAttributesW(Target().c_str(), FILE_ATTRIBUTE_NORMAL));
    }
}

TEST_F(FileIoTest, FailsWhereAnotherProgramDoesNotShareTheTarget)
{
    Put(TargetPath(), kOld);
    {
        const UniqueFile alone = OpenElsewhere(Target(), GENERIC_READ, 0);
        ASSERT_TRUE(alone);
        EXPECT_FALSE(SaveWholeFile(Target(), kLonger));
        std::string bytes;
        EXPECT_FALSE(ReadWholeFile(Target(), bytes));
    }
    {
        // The target is opened for writing without sharing it for reading.
        const UniqueFile reader =
            OpenElsewhere(Target(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE);
        ASSERT_TRUE(reader);
        EXPECT_FALSE(SaveWholeFile(Target(), kLonger));
        std::string bytes;
        EXPECT_TRUE(ReadWholeFile(Target(), bytes));
        EXPECT_EQ(kOld, bytes);
    }
    EXPECT_EQ(kOld, Get(TargetPath()));
    EXPECT_FALSE(fs::exists(Temporary()));
}

TEST_F(FileIoTest, WritesInPlaceWhereAWriterKeepsTheTargetOpen)
{
    for (const std::string& bytes : {kLonger, kShorter})
    {
        Put(TargetPath(), kOld);
        UniqueFile writer =
            OpenElsewhere(Target(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE);
        ASSERT_TRUE(writer);
        EXPECT_TRUE(SaveRefusing({}, bytes));
        EXPECT_EQ(1, std::ranges::count(g_seen, SaveStep::WriteInPlace));
        writer.Reset(INVALID_HANDLE_VALUE);
        EXPECT_EQ(bytes, Get(TargetPath()));
        EXPECT_FALSE(fs::exists(Temporary()));
    }
}

TEST_F(FileIoTest, HidesTheSiblingFromAWalkOfTheFolder)
{
    Put(TargetPath(), kOld);
    Put(Temporary(), kLonger);
    EXPECT_EQ(std::set<std::wstring>{L"Work.ics"}, Find(m_folder / L"*.ics"));
}

#else

TEST_F(FileIoTest, ReadsNoPipe)
{
    ASSERT_EQ(0, mkfifo(TargetPath().c_str(), 0600));
    std::string bytes = "before";
    EXPECT_FALSE(ReadWholeFile(Target(), bytes));
    EXPECT_EQ("before", bytes);
    EXPECT_FALSE(SaveWholeFile(Target(), kLonger));
}

TEST_F(FileIoTest, WritesThroughALink)
{
    const fs::path real = m_folder.Path() / "real.ics";
    Put(real, kOld);
    fs::create_symlink(real, TargetPath());
    EXPECT_TRUE(SaveWholeFile(Target(), kLonger));
    EXPECT_TRUE(fs::is_symlink(TargetPath()));
    EXPECT_EQ(kLonger, Get(real));
}

#endif
