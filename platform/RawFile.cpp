#include "platform/RawFile.h"

#include "platform/UniqueHandle.h"

#include <algorithm>
#include <array>

namespace
{
struct OpenMode
{
    DWORD access, share, disposition;
};

// In the order of RawFile::Mode.
constexpr OpenMode kOpenModes[] = {
    {GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, OPEN_EXISTING},
    {GENERIC_READ | GENERIC_WRITE, FILE_SHARE_WRITE, OPEN_EXISTING},
    {GENERIC_READ | GENERIC_WRITE, FILE_SHARE_WRITE, OPEN_ALWAYS},
    {GENERIC_WRITE, 0, CREATE_ALWAYS},
};

// What the system lets nobody make anew.
constexpr DWORD kProtected =
    FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;

// A system error that the toolchain's headers lack.
constexpr DWORD kDiskQuotaExceeded = 1295;

constexpr std::size_t kMostBytesAtOnce = std::size_t{1} << 30;

HANDLE Handle(std::intptr_t file)
{
    return reinterpret_cast<HANDLE>(file);
}

OVERLAPPED At(std::uint64_t offset)
{
    OVERLAPPED position{};
    position.Offset = static_cast<DWORD>(offset);
    position.OffsetHigh = static_cast<DWORD>(offset >> 32);
    return position;
}
} // namespace

bool RawFile::Open(const std::wstring& path, Mode mode)
{
    Close();
    m_missing = false;
    m_isLink = false;
    const OpenMode& how = kOpenModes[static_cast<std::size_t>(mode)];
    UniqueFile file(CreateFileW(path.c_str(),
                                how.access,
                                how.share,
                                nullptr,
                                how.disposition,
                                FILE_ATTRIBUTE_NORMAL,
                                nullptr));
    if (!file)
    {
        m_missing = GetLastError() == ERROR_FILE_NOT_FOUND;
        return false;
    }
    if (GetFileType(file.Get()) != FILE_TYPE_DISK)
        return false;
    // A folder does not open this way at all, so a reader need not ask, of each of many files.
    if (mode != Mode::Read)
    {
        BY_HANDLE_FILE_INFORMATION information{};
        if (!GetFileInformationByHandle(file.Get(), &information) ||
            (information.dwFileAttributes & (FILE_ATTRIBUTE_DIRECTORY | kProtected)))
            return false;
        // The handle shows what a link leads to; the name shows the link.
        const DWORD attributes = GetFileAttributesW(path.c_str());
        m_isLink =
            attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_REPARSE_POINT);
    }
    m_file = reinterpret_cast<std::intptr_t>(file.Detach());
    return true;
}

void RawFile::Close() noexcept
{
    if (m_file != -1)
        CloseHandle(Handle(m_file));
    m_file = -1;
}

std::uint64_t RawFile::Size() const noexcept
{
    LARGE_INTEGER size{};
    return GetFileSizeEx(Handle(m_file), &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

bool RawFile::HasOneName() const noexcept
{
    BY_HANDLE_FILE_INFORMATION information{};
    return !m_isLink && GetFileInformationByHandle(Handle(m_file), &information) &&
           information.nNumberOfLinks <= 1;
}

bool RawFile::ReadAll(std::string& bytes)
{
    const std::uint64_t size = Size();
    if (size > kLargestFile)
        return false;
    bytes.reserve(bytes.size() + static_cast<std::size_t>(size));
    // From the position of the file itself: a read with one of its own is an overlapped one, whose
    // end the system reports, which costs more than reading a small file.
    if (!SetFilePointerEx(Handle(m_file), LARGE_INTEGER{}, nullptr, FILE_BEGIN))
        return false;
    std::array<char, 65536> block;
    for (std::uint64_t offset = 0;;)
    {
        DWORD count = 0;
        if (!ReadFile(Handle(m_file), block.data(), block.size(), &count, nullptr))
            return false;
        if (count == 0)
            return true;
        // It may grow while it is read.
        if (offset + count > kLargestFile)
            return false;
        bytes.append(block.data(), count);
        offset += count;
        // A file gives less than was asked for at its end alone.
        if (count < block.size())
            return true;
    }
}

bool RawFile::WriteAt(std::uint64_t offset, std::string_view bytes) noexcept
{
    while (!bytes.empty())
    {
        OVERLAPPED position = At(offset);
        DWORD count = 0;
        const auto wanted = static_cast<DWORD>(std::min(bytes.size(), kMostBytesAtOnce));
        if (!WriteFile(Handle(m_file), bytes.data(), wanted, &count, &position) || count == 0)
            return false;
        bytes.remove_prefix(count);
        offset += count;
    }
    return true;
}

bool RawFile::Reserve(std::uint64_t size) noexcept
{
    if (size <= Size())
        return true;
    FILE_ALLOCATION_INFO information{};
    information.AllocationSize.QuadPart = static_cast<LONGLONG>(size);
    if (SetFileInformationByHandle(
            Handle(m_file), FileAllocationInfo, &information, sizeof(information)))
        return true;
    const DWORD error = GetLastError();
    return error != ERROR_DISK_FULL && error != ERROR_HANDLE_DISK_FULL &&
           error != kDiskQuotaExceeded;
}

bool RawFile::Cut(std::uint64_t size) noexcept
{
    LARGE_INTEGER position{};
    position.QuadPart = static_cast<LONGLONG>(size);
    return SetFilePointerEx(Handle(m_file), position, nullptr, FILE_BEGIN) &&
           SetEndOfFile(Handle(m_file));
}

bool RawFile::Flush() noexcept
{
    return FlushFileBuffers(Handle(m_file));
}

bool ReplaceByRename(const std::wstring& from, const std::wstring& to) noexcept
{
    return MoveFileExW(
        from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
}

void RemoveFile(const std::wstring& path) noexcept
{
    DeleteFileW(path.c_str());
}
