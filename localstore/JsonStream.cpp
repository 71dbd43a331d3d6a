#include "localstore/JsonStream.h"

namespace
{
class FileSource final : public JsonSource
{
  public:
    explicit FileSource(HANDLE file) : m_file(file) {}

    bool Read(std::span<char> room, size_t& count) override
    {
        DWORD read = 0;
        const bool done =
            ReadFile(m_file, room.data(), static_cast<DWORD>(room.size()), &read, nullptr) != 0;
        count = read;
        return done;
    }

  private:
    HANDLE m_file;
};
} // namespace

bool JsonFile::Open(const std::wstring& path, DWORD& reason)
{
    m_file.Reset(CreateFileW(path.c_str(),
                             GENERIC_READ,
                             FILE_SHARE_READ,
                             nullptr,
                             OPEN_EXISTING,
                             FILE_FLAG_SEQUENTIAL_SCAN,
                             nullptr));
    reason = m_file ? ERROR_SUCCESS : ::GetLastError();
    return static_cast<bool>(m_file);
}

void ReadJson(const JsonFile& file, JsonListener& listener)
{
    LARGE_INTEGER start{};
    if (!SetFilePointerEx(file.Get(), start, nullptr, FILE_BEGIN))
        throw JsonProblem(0, "", "the file cannot be read");
    FileSource source(file.Get());
    ReadJson(source, listener);
}
