#include "client/Console.h"
#include "client/core/Progress.h"

#include "platform/UniqueHandle.h"
#include "support/ScratchDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace
{
// Standard error goes into a file as long as it lives.
class ErrorsInFile
{
  public:
    explicit ErrorsInFile(const std::wstring& path)
        : m_file(CreateFileW(path.c_str(),
                             GENERIC_WRITE,
                             FILE_SHARE_READ,
                             nullptr,
                             CREATE_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL,
                             nullptr))
    {
        SetStdHandle(STD_ERROR_HANDLE, m_file.Get());
    }
    ~ErrorsInFile() { SetStdHandle(STD_ERROR_HANDLE, m_previous); }
    ErrorsInFile(const ErrorsInFile&) = delete;
    ErrorsInFile& operator=(const ErrorsInFile&) = delete;

  private:
    const HANDLE m_previous = GetStdHandle(STD_ERROR_HANDLE);
    UniqueFile m_file;
};
} // namespace

// What a script reads there holds messages alone, however long the walk takes. The count shows from
// 300 ms on where it does.
TEST(ProgressTest, IsSilentWhereErrorsGoToAFile)
{
    const ScratchDirectory files;
    const std::wstring path = files.File(L"errors.txt");
    {
        const ErrorsInFile errors(path);
        const pim::OutputStream stream(STD_ERROR_HANDLE);
        EXPECT_FALSE(stream.IsTerminal());
        EXPECT_EQ(0, stream.Columns());
        pim::Progress progress(stream, L"contacts");
        progress.Step();
        Sleep(400);
        progress.Step();
        progress.Step();
    }
    EXPECT_EQ(0u, std::filesystem::file_size(path));
    {
        // Messages do arrive there.
        const ErrorsInFile errors(path);
        EXPECT_TRUE(pim::OutputStream(STD_ERROR_HANDLE).Write(L"gr\u00fc\u00df"));
    }
    EXPECT_EQ(6u, std::filesystem::file_size(path)); // in UTF-8
}
