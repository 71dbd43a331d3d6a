#include "client/InputFile.h"

#include "client/Failure.h"
#include "client/core/CommandLine.h"
#include "client/core/Unicode.h"

namespace pim
{
namespace
{
constexpr std::size_t kMostBytes = 64u << 20;

std::string ReadAll(HANDLE file, const std::wstring& path)
{
    std::string bytes;
    for (;;)
    {
        char part[65536];
        DWORD count = 0;
        if (!ReadFile(file, part, sizeof part, &count, nullptr) &&
            GetLastError() != ERROR_BROKEN_PIPE)
            throw Failure{kExitFailed, L"\"" + OneLine(path) + L"\" cannot be read."};
        if (count == 0)
            return bytes;
        bytes.append(part, count);
        if (bytes.size() > kMostBytes)
            throw Failure{kExitFailed, L"\"" + OneLine(path) + L"\" is larger than 64 MiB."};
    }
}
} // namespace

UniqueFile OpenForReading(const std::wstring& path)
{
    return UniqueFile(CreateFileW(path.c_str(),
                                  GENERIC_READ,
                                  FILE_SHARE_READ,
                                  nullptr,
                                  OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL,
                                  nullptr));
}

std::string ReadInput(const std::wstring& path)
{
    if (path == L"-")
        return ReadAll(GetStdHandle(STD_INPUT_HANDLE), path);
    const UniqueFile file = OpenForReading(path);
    if (!file)
        throw Failure{kExitFailed,
                      L"\"" + OneLine(path) + L"\" cannot be opened (error " +
                          std::to_wstring(GetLastError()) + L")."};
    return ReadAll(file.Get(), path);
}
} // namespace pim
