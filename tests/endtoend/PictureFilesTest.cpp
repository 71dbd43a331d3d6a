// What the server process does at its start and at its end about the temporary files of contact
// pictures that it remembers.
#include "endtoend/ServerFixture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr std::uint64_t kTwoDays = 2ull * 24 * 3600 * 10'000'000; // of 100 ns

// A remembered file of the user's temporary folder, until the end.
class PictureFile
{
  public:
    explicit PictureFile(const std::wstring& name)
    {
        wchar_t folder[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, folder);
        m_path = folder + name + std::to_wstring(GetCurrentProcessId()) + L".tmp";
        std::ofstream(std::filesystem::path(m_path)) << "picture";
    }
    ~PictureFile() { DeleteFileW(m_path.c_str()); }
    PictureFile(const PictureFile&) = delete;
    PictureFile& operator=(const PictureFile&) = delete;

    bool Exists() const { return std::filesystem::exists(m_path); }

    // Two days older than it is.
    void Age() const
    {
        const UniqueFile file(CreateFileW(m_path.c_str(),
                                          FILE_WRITE_ATTRIBUTES,
                                          0,
                                          nullptr,
                                          OPEN_EXISTING,
                                          FILE_ATTRIBUTE_NORMAL,
                                          nullptr));
        FILETIME time = {};
        ASSERT_TRUE(GetFileTime(file.Get(), nullptr, nullptr, &time));
        const std::uint64_t units =
            (std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime) - kTwoDays;
        time = {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
        ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &time));
    }

    // A line of the user's journal: the path in UTF-16 and a line end.
    void Remember() const
    {
        wchar_t folder[MAX_PATH] = {};
        SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder);
        const std::filesystem::path journal =
            std::filesystem::path(folder) / L"PimStoreBridge" / L"pictures.txt";
        std::filesystem::create_directories(journal.parent_path());
        const std::wstring line = m_path + L'\n';
        std::ofstream(journal, std::ios::binary | std::ios::app)
            .write(reinterpret_cast<const char*>(line.data()),
                   static_cast<std::streamsize>(line.size() * sizeof(wchar_t)));
    }

  private:
    std::wstring m_path;
};
} // namespace

TEST(PictureFilesTest, OldOnesGoWhenTheServerStartsAndWhenItEnds)
{
    EndServers();
    const PictureFile old(L"old");
    const PictureFile aging(L"aging");
    const PictureFile young(L"young");
    for (const PictureFile* const file : {&old, &aging, &young})
        file->Remember();
    old.Age();
    auto appointment = MakeInServer<INAppointment>(CLSID_NAppointment);
    ASSERT_TRUE(appointment);
    EXPECT_FALSE(old.Exists());
    EXPECT_TRUE(aging.Exists());

    aging.Age();
    appointment.Reset();
    EndServers();
    EXPECT_FALSE(aging.Exists());
    EXPECT_TRUE(young.Exists());
}
