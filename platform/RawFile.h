// An open file, as far as reading and saving whole files needs it. Windows and native hosts each
// have their implementation. No operation throws except as told.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

class RawFile
{
  public:
    enum class Mode
    {
        Read,      // beside readers, writers and deleters
        Existing,  // to read and write, beside writers
        Always,    // as Existing; made where it is missing
        Truncated, // made anew to write, alone
    };

    // What one text can hold; larger ones are not read, so that none exhausts the memory.
    static constexpr std::uint64_t kLargestFile = std::uint64_t{1} << 30;

    RawFile() noexcept = default;
    RawFile(const RawFile&) = delete;
    RawFile& operator=(const RawFile&) = delete;
    ~RawFile() { Close(); }

    // Opens a file proper: no folder, device or pipe, and for writing none that is read-only,
    // hidden or a system file.
    bool Open(const std::wstring& path, Mode mode);
    // Whether the last Open failed for lack of such a file.
    bool WasMissing() const noexcept { return m_missing; }
    void Close() noexcept;

    // In bytes; 0 where that cannot be told.
    std::uint64_t Size() const noexcept;
    // Whether a replacement under the same name reaches all who know the file: it has one name,
    // and that is no link.
    bool HasOneName() const noexcept;
    // Appends from the start to the end of the file. False where that fails or the file is larger
    // than kLargestFile. Throws std::bad_alloc.
    bool ReadAll(std::string& bytes);
    bool WriteAt(std::uint64_t offset, std::string_view bytes) noexcept;
    // Takes the disk space for that many bytes without a change of the content. True also where
    // the file system cannot.
    bool Reserve(std::uint64_t size) noexcept;
    bool Cut(std::uint64_t size) noexcept;
    bool Flush() noexcept;

  private:
    std::intptr_t m_file = -1;
    bool m_missing = false;
    bool m_isLink = false;
};

// Renames a file over another in one step.
bool ReplaceByRename(const std::wstring& from, const std::wstring& to) noexcept;
void RemoveFile(const std::wstring& path) noexcept;
