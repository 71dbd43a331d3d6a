#include "outlook/contacts/PictureJournal.h"

#include "outlook/contacts/PictureFile.h"
#include "platform/UniqueHandle.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace
{
constexpr wchar_t kLineEnd = L'\n';
constexpr LONGLONG kLongestJournalBytes = 64 << 20; // of no journal that was kept in order

// Everything in the file, or nothing where it cannot be read.
std::optional<std::wstring> ReadText(HANDLE file)
{
    LARGE_INTEGER bytes = {};
    if (!GetFileSizeEx(file, &bytes) || bytes.QuadPart > kLongestJournalBytes)
        return std::nullopt;
    std::wstring text(static_cast<std::size_t>(bytes.QuadPart) / sizeof(wchar_t), L'\0');
    const auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    DWORD read = 0;
    if (!ReadFile(file, text.data(), size, &read, nullptr) || read != size)
        return std::nullopt;
    return text;
}

void WriteText(HANDLE file, const std::wstring& text)
{
    DWORD written = 0;
    WriteFile(
        file, text.data(), static_cast<DWORD>(text.size() * sizeof(wchar_t)), &written, nullptr);
}

std::uint64_t UnitsOf(FILETIME time)
{
    return std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
}

std::wstring TemporaryFolder()
{
    wchar_t folder[MAX_PATH] = {};
    const DWORD length = GetTempPathW(MAX_PATH, folder);
    return length < MAX_PATH ? folder : L"";
}

std::optional<PictureJournal> JournalOfUser()
{
    wchar_t folder[MAX_PATH] = {};
    if (FAILED(SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder)))
        return std::nullopt;
    return PictureJournal(std::wstring(folder) + L"\\PimStoreBridge\\pictures.txt",
                          TemporaryFolder());
}
} // namespace

PictureJournal::PictureJournal(std::wstring path, std::wstring folder)
    : m_path(std::move(path)), m_folder(std::move(folder))
{
}

void PictureJournal::Remember(const std::vector<std::wstring>& paths) const
{
    CreateDirectoryW(m_path.substr(0, m_path.rfind(L'\\')).c_str(), nullptr);
    // Each write goes behind what there is, whoever wrote that.
    const UniqueFile file(CreateFileW(m_path.c_str(),
                                      FILE_APPEND_DATA,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr,
                                      OPEN_ALWAYS,
                                      FILE_ATTRIBUTE_NORMAL,
                                      nullptr));
    if (!file)
        return;
    std::wstring lines;
    for (const std::wstring& path : paths)
        lines += path + kLineEnd;
    WriteText(file.Get(), lines);
}

bool PictureJournal::IsDone(const std::wstring& path, FILETIME utcNow) const
{
    if (!IsFileOfFolder(m_folder, path))
        return true;
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data))
        return GetLastError() == ERROR_FILE_NOT_FOUND || GetLastError() == ERROR_PATH_NOT_FOUND;
    const std::uint64_t written = UnitsOf(data.ftLastWriteTime);
    const std::uint64_t now = UnitsOf(utcNow);
    const bool isOld = now > written && now - written >= kKeptUnits;
    return isOld && DeleteFileW(path.c_str());
}

void PictureJournal::RemoveOld(FILETIME utcNow) const
{
    // Alone with it, so that no line is lost between reading and writing.
    constexpr DWORD kNoSharing = 0;
    const UniqueFile file(CreateFileW(m_path.c_str(),
                                      GENERIC_READ | GENERIC_WRITE,
                                      kNoSharing,
                                      nullptr,
                                      OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL,
                                      nullptr));
    if (!file)
        return;
    const std::optional<std::wstring> text = ReadText(file.Get());
    if (!text)
        return;
    std::wstring kept;
    for (std::size_t start = 0; start < text->size();)
    {
        const std::size_t end = std::min(text->find(kLineEnd, start), text->size());
        const std::wstring path = text->substr(start, end - start);
        if (!IsDone(path, utcNow))
            kept += path + kLineEnd;
        start = end + 1;
    }
    if (kept == *text)
        return;
    SetFilePointer(file.Get(), 0, nullptr, FILE_BEGIN);
    WriteText(file.Get(), kept);
    SetEndOfFile(file.Get());
}

void RememberPictureFiles(const std::vector<std::wstring>& paths)
{
    if (const auto journal = JournalOfUser())
        journal->Remember(paths);
}

void RemoveOldPictureFiles()
{
    FILETIME utcNow = {};
    GetSystemTimeAsFileTime(&utcNow);
    if (const auto journal = JournalOfUser())
        journal->RemoveOld(utcNow);
}
