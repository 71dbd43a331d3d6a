#include "platform/RawFile.h"

#include "platform/Utf8.h"

#include <array>
#include <cerrno>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{
// In the order of RawFile::Mode. A pipe must not block.
constexpr int kOpenFlags[] = {
    O_RDONLY | O_NONBLOCK | O_CLOEXEC,
    O_RDWR | O_NONBLOCK | O_CLOEXEC,
    O_RDWR | O_CREAT | O_NONBLOCK | O_CLOEXEC,
    O_WRONLY | O_CREAT | O_TRUNC | O_NONBLOCK | O_CLOEXEC,
};

int Descriptor(std::intptr_t file)
{
    return static_cast<int>(file);
}

// Restarts a call that a signal ended.
template <typename Call> auto Retry(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}
} // namespace

bool RawFile::Open(const std::wstring& path, Mode mode)
{
    Close();
    m_missing = false;
    const std::string name = EncodeUtf8(path);
    const int file =
        Retry([&] { return open(name.c_str(), kOpenFlags[static_cast<std::size_t>(mode)], 0666); });
    if (file < 0)
    {
        struct stat folder = {};
        const std::string parent = name.substr(0, name.rfind('/') + 1);
        // A file in a folder that is missing itself cannot be made.
        m_missing = errno == ENOENT && !name.empty() &&
                    (parent.empty() || stat(parent.c_str(), &folder) == 0);
        return false;
    }
    struct stat information = {};
    struct stat named = {};
    if (fstat(file, &information) != 0 || !S_ISREG(information.st_mode) ||
        (mode != Mode::Read && !(information.st_mode & S_IWUSR)))
    {
        close(file);
        return false;
    }
    m_isLink = lstat(name.c_str(), &named) == 0 && S_ISLNK(named.st_mode);
    m_file = file;
    return true;
}

void RawFile::Close() noexcept
{
    if (m_file != -1)
        close(Descriptor(m_file));
    m_file = -1;
}

std::uint64_t RawFile::Size() const noexcept
{
    struct stat information = {};
    return fstat(Descriptor(m_file), &information) == 0
               ? static_cast<std::uint64_t>(information.st_size)
               : 0;
}

bool RawFile::HasOneName() const noexcept
{
    struct stat information = {};
    return !m_isLink && fstat(Descriptor(m_file), &information) == 0 && information.st_nlink <= 1;
}

bool RawFile::ReadAll(std::string& bytes)
{
    const std::uint64_t size = Size();
    if (size > kLargestFile)
        return false;
    bytes.reserve(bytes.size() + static_cast<std::size_t>(size));
    std::array<char, 65536> block;
    for (off_t offset = 0;;)
    {
        const ssize_t count =
            Retry([&] { return pread(Descriptor(m_file), block.data(), block.size(), offset); });
        if (count <= 0)
            return count == 0;
        // It may grow while it is read.
        if (static_cast<std::uint64_t>(offset + count) > kLargestFile)
            return false;
        bytes.append(block.data(), static_cast<std::size_t>(count));
        offset += count;
    }
}

bool RawFile::WriteAt(std::uint64_t offset, std::string_view bytes) noexcept
{
    while (!bytes.empty())
    {
        const ssize_t count = Retry([&] {
            return pwrite(
                Descriptor(m_file), bytes.data(), bytes.size(), static_cast<off_t>(offset));
        });
        if (count <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
        offset += static_cast<std::uint64_t>(count);
    }
    return true;
}

bool RawFile::Reserve(std::uint64_t size) noexcept
{
    if (size <= Size())
        return true;
    const int error =
        fallocate(Descriptor(m_file), FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(size)) == 0
            ? 0
            : errno;
    return error != ENOSPC && error != EDQUOT && error != EFBIG;
}

bool RawFile::Cut(std::uint64_t size) noexcept
{
    return ftruncate(Descriptor(m_file), static_cast<off_t>(size)) == 0;
}

bool RawFile::Flush() noexcept
{
    return fsync(Descriptor(m_file)) == 0;
}

bool ReplaceByRename(const std::wstring& from, const std::wstring& to) noexcept
{
    return rename(EncodeUtf8(from).c_str(), EncodeUtf8(to).c_str()) == 0;
}

void RemoveFile(const std::wstring& path) noexcept
{
    unlink(EncodeUtf8(path).c_str());
}
