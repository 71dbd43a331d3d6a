#include "outlook/contacts/PictureJournal.h"

#include "outlook/contacts/JournalLines.h"
#include "platform/UniqueHandle.h"
#include "support/ScratchDirectory.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
// An hour in units of 100 ns.
constexpr std::uint64_t kHour = 36'000'000'000;
// 2024-01-01 00:00 UTC.
constexpr std::uint64_t kDay = (45292ull + 109205) * 24 * kHour;

FILETIME TimeOf(std::uint64_t units)
{
    return {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
}

class PictureJournalTest : public testing::Test
{
  protected:
    std::wstring MakeFile(const std::wstring& name, std::uint64_t written)
    {
        std::filesystem::create_directories(files);
        const std::wstring made = files + name;
        const UniqueFile file(CreateFileW(made.c_str(),
                                          GENERIC_WRITE,
                                          0,
                                          nullptr,
                                          CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL,
                                          nullptr));
        const FILETIME time = TimeOf(written);
        EXPECT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &time));
        return made;
    }
    std::vector<std::wstring> Lines() const { return JournalLines(path); }
    static bool Exists(const std::wstring& file) { return std::filesystem::exists(file); }

    ScratchDirectory scratch;
    const std::wstring files = scratch.File(L"temp") + L"\\";
    const std::wstring path = scratch.File(L"data") + L"\\pictures.txt";
    const PictureJournal journal{path, files};
};
} // namespace

TEST_F(PictureJournalTest, RemembersOneFilePerLine)
{
    journal.Remember({L"C:\\a", L"C:\\\u5C71"});
    journal.Remember({L"C:\\b"});
    EXPECT_THAT(Lines(), ElementsAre(L"C:\\a", L"C:\\\u5C71", L"C:\\b"));
}

TEST_F(PictureJournalTest, AFileGoesWhenItIsADayOld)
{
    const std::wstring old = MakeFile(L"old.tmp", kDay - 24 * kHour);
    const std::wstring older = MakeFile(L"older.tmp.jpg", kDay - 100 * kHour);
    const std::wstring young = MakeFile(L"young.tmp", kDay - 24 * kHour + 10'000'000);
    const std::wstring future = MakeFile(L"future.tmp", kDay + kHour);
    journal.Remember({old, young, older, future});
    journal.RemoveOld(TimeOf(kDay));
    EXPECT_FALSE(Exists(old));
    EXPECT_FALSE(Exists(older));
    EXPECT_TRUE(Exists(young));
    EXPECT_TRUE(Exists(future));
    EXPECT_THAT(Lines(), ElementsAre(young, future));
    journal.RemoveOld(TimeOf(kDay + 48 * kHour));
    EXPECT_THAT(Lines(), IsEmpty());
    EXPECT_FALSE(Exists(future));
}

TEST_F(PictureJournalTest, WhatIsNotInItStays)
{
    const std::wstring other = MakeFile(L"other.tmp", kDay - 100 * kHour);
    journal.Remember({files + L"gone.tmp"});
    journal.RemoveOld(TimeOf(kDay));
    EXPECT_TRUE(Exists(other));
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(PictureJournalTest, OnlyFilesOfTheTemporaryFolderAreRemoved)
{
    std::filesystem::create_directories(files + L"below");
    const std::wstring below = MakeFile(L"below\\a.tmp", kDay - 100 * kHour);
    const std::wstring beside = MakeFile(L"..\\beside.tmp", kDay - 100 * kHour);
    journal.Remember({below, beside, files + L"..\\beside.tmp", files, L"", L"NUL"});
    journal.RemoveOld(TimeOf(kDay));
    EXPECT_TRUE(Exists(below));
    EXPECT_TRUE(Exists(beside));
    EXPECT_TRUE(Exists(files));
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(PictureJournalTest, AFileInUseIsRememberedOn)
{
    const std::wstring used = MakeFile(L"used.tmp", kDay - 100 * kHour);
    journal.Remember({used});
    {
        const UniqueFile user(CreateFileW(used.c_str(),
                                          GENERIC_READ,
                                          FILE_SHARE_READ,
                                          nullptr,
                                          OPEN_EXISTING,
                                          FILE_ATTRIBUTE_NORMAL,
                                          nullptr));
        journal.RemoveOld(TimeOf(kDay));
        EXPECT_THAT(Lines(), ElementsAre(used));
    }
    journal.RemoveOld(TimeOf(kDay));
    EXPECT_FALSE(Exists(used));
}

TEST_F(PictureJournalTest, ADamagedJournalDoesNoHarm)
{
    journal.RemoveOld(TimeOf(kDay)); // without one
    const std::wstring old = MakeFile(L"old.tmp", kDay - 100 * kHour);
    journal.Remember({old});
    {
        std::ofstream output(std::filesystem::path(path), std::ios::binary | std::ios::app);
        output.write("\0\0\n\0x\0y", 8); // a zero, then a line without an end
        output.write("z", 1);            // half a unit
    }
    journal.RemoveOld(TimeOf(kDay));
    EXPECT_FALSE(Exists(old));
    EXPECT_THAT(Lines(), IsEmpty());
}

TEST_F(PictureJournalTest, WhileAnotherProcessHasItNothingHappens)
{
    const std::wstring old = MakeFile(L"old.tmp", kDay - 100 * kHour);
    journal.Remember({old});
    const UniqueFile other(CreateFileW(path.c_str(),
                                       GENERIC_READ | GENERIC_WRITE,
                                       0,
                                       nullptr,
                                       OPEN_EXISTING,
                                       FILE_ATTRIBUTE_NORMAL,
                                       nullptr));
    journal.Remember({L"lost"});
    journal.RemoveOld(TimeOf(kDay));
    EXPECT_TRUE(Exists(old));
}
