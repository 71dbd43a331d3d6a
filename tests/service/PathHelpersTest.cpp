#include "service/PathHelpers.h"

#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace
{
struct Split
{
    std::wstring directory = L"d", fileName = L"f", extension = L"e";
};

Split SplitOf(const std::wstring& path)
{
    Split split;
    SplitPath(path, &split.directory, &split.fileName, &split.extension);
    return split;
}
} // namespace

TEST(PathHelpersTest, SplitsAPath)
{
    struct
    {
        const wchar_t *path, *directory, *fileName, *extension;
    } const cases[] = {
        {L"C:\\Folder\\file.txt", L"C:\\Folder\\", L"file.txt", L".txt"},
        {L"C:\\Folder\\archive.tar.gz", L"C:\\Folder\\", L"archive.tar.gz", L".gz"},
        {L"C:\\Folder\\file", L"C:\\Folder\\", L"file", L""},
        {L"C:\\Fol.der\\file", L"C:\\Fol.der\\", L"file", L""},
        {L"C:\\Folder\\file.", L"C:\\Folder\\", L"file.", L"."},
        {L"C:\\Folder\\.file", L"C:\\Folder\\", L".file", L".file"},
        {L"C:\\Folder\\", L"C:\\Folder\\", L"", L""},
        {L"\\file.txt", L"\\", L"file.txt", L".txt"},
        {L"file.txt", L"", L"file.txt", L".txt"},
        {L"file", L"", L"file", L""},
        {L"C:/Folder/file.txt", L"", L"C:/Folder/file.txt", L".txt"},
        {L"", L"", L"", L""},
    };
    for (const auto& row : cases)
    {
        const Split split = SplitOf(row.path);
        EXPECT_EQ(row.directory, split.directory);
        EXPECT_EQ(row.fileName, split.fileName);
        EXPECT_EQ(row.extension, split.extension);
    }
}

TEST(PathHelpersTest, CutsALongPathBeforeItSplitsIt)
{
    // 3 + 250 + 7 characters are 260, so the extension loses its end.
    const Split split = SplitOf(L"C:\\" + std::wstring(250, L'n') + L".extension");
    EXPECT_EQ(L"C:\\", split.directory);
    EXPECT_EQ(std::wstring(250, L'n') + L".extens", split.fileName);
    EXPECT_EQ(L".extens", split.extension);
    // A backslash behind the cut is not seen.
    EXPECT_EQ(L"", SplitOf(std::wstring(260, L'n') + L"\\file").directory);
}

TEST(PathHelpersTest, LeavesOutWhatIsNotAskedFor)
{
    std::wstring text;
    SplitPath(L"C:\\a\\b.c", &text, nullptr, nullptr);
    EXPECT_EQ(L"C:\\a\\", text);
    SplitPath(L"C:\\a\\b.c", nullptr, &text, nullptr);
    EXPECT_EQ(L"b.c", text);
    SplitPath(L"C:\\a\\b.c", nullptr, nullptr, &text);
    EXPECT_EQ(L".c", text);
    SplitPath(L"C:\\a\\b.c", nullptr, nullptr, nullptr);
}

TEST(PathHelpersTest, SplitsAPathThatIsItsOwnOutput)
{
    std::wstring path = L"C:\\a\\b.c", extension;
    SplitPath(path, &path, nullptr, &extension);
    EXPECT_EQ(L"C:\\a\\", path);
    EXPECT_EQ(L".c", extension);
}

TEST(PathHelpersTest, TellsTheFolderOfTheProgram)
{
    wchar_t program[1000] = {};
    ASSERT_GT(GetModuleFileNameW(nullptr, program, 1000), 0u);
    const std::wstring expected = fs::path(program).parent_path().wstring() + L"\\";

    wchar_t buffer[1000] = {};
    EXPECT_TRUE(GetModuleDirectory(buffer, 1000));
    EXPECT_EQ(expected, buffer);
    ASSERT_LT(expected.size(), 260u);
    EXPECT_EQ(expected, GetExecutableDirectory());
}

TEST(PathHelpersTest, NeedsABufferThatHoldsThePathOfTheProgram)
{
    std::array<wchar_t, 10> buffer;
    buffer.fill(L'x');
    EXPECT_FALSE(GetModuleDirectory(buffer.data(), 9));
    EXPECT_EQ(L'\0', buffer[0]);
    EXPECT_EQ(L'x', buffer[9]);
    EXPECT_FALSE(GetModuleDirectory(buffer.data(), 0));
    EXPECT_FALSE(GetModuleDirectory(nullptr, 10));
}

TEST(PathHelpersTest, CreatesAFolderWithItsParents)
{
    const TempFolder folder("CreateDirectoryPath");
    for (const bool withSecurity : {false, true})
    {
        const std::wstring top = folder / (withSecurity ? L"open" : L"plain");
        EXPECT_TRUE(CreateDirectoryPath(top + L"\\a\\b\\c", withSecurity));
        EXPECT_TRUE(fs::is_directory(top + L"\\a\\b\\c"));
        // It exists already, as do its parents.
        EXPECT_FALSE(CreateDirectoryPath(top + L"\\a\\b\\c", withSecurity));
        EXPECT_FALSE(CreateDirectoryPath(top, withSecurity));
        EXPECT_TRUE(CreateDirectoryPath(top + L"\\a\\d\\", withSecurity));
        EXPECT_TRUE(fs::is_directory(top + L"\\a\\d"));
        EXPECT_FALSE(CreateDirectoryPath(top + L"\\a\\d\\", withSecurity));
    }
}

TEST(PathHelpersTest, CreatesNoFolderBelowAFile)
{
    const TempFolder folder("CreateBelowFile");
    std::ofstream(fs::path(folder / L"file")) << "x";
    EXPECT_FALSE(CreateDirectoryPath(folder / L"file\\a", false));
    EXPECT_FALSE(CreateDirectoryPath(folder / L"file", false));
    EXPECT_FALSE(CreateDirectoryPath(L"", false));
    EXPECT_FALSE(CreateDirectoryPath(L"\\", false));
    EXPECT_FALSE(CreateOpenDirectory(folder / L"missing\\a"));
    EXPECT_FALSE(fs::exists(folder / L"missing"));
}

TEST(PathHelpersTest, CreatesOneFolderUnderAnExistingOne)
{
    const TempFolder folder("CreateOpenDirectory");
    const std::wstring path = folder / L"open";
    EXPECT_TRUE(CreateOpenDirectory(path));
    EXPECT_TRUE(fs::is_directory(path));
    EXPECT_FALSE(CreateOpenDirectory(path));
}
