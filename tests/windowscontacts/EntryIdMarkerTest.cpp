// The identity in entry IDs of Windows contacts. Bytes are written by hand as UTF-16LE.
#include "windowscontacts/EntryIdMarker.h"

#include <gtest/gtest.h>

#include <string_view>
#include <vector>

namespace
{
std::vector<std::uint8_t> BytesOf(std::wstring_view text)
{
    std::vector<std::uint8_t> bytes;
    for (const wchar_t unit : text)
    {
        bytes.push_back(static_cast<std::uint8_t>(unit & 0xFF));
        bytes.push_back(static_cast<std::uint8_t>(unit >> 8 & 0xFF));
    }
    return bytes;
}

std::wstring IdentityIn(std::wstring_view text)
{
    return MarkedIdentity(BytesOf(text));
}
} // namespace

TEST(EntryIdMarkerTest, ReadsLittleEndianUnits)
{
    const std::vector<std::uint8_t> bytes = {'/', 0, 'G', 0, 'U', 0, 'I',  0,    'D', 0,
                                             ':', 0, '"', 0, 'a', 0, 0x42, 0x30, '"', 0};
    EXPECT_EQ(L"a\x3042", MarkedIdentity(bytes));
}

TEST(EntryIdMarkerTest, GivesTheTextUpToTheNextQuotationMark)
{
    EXPECT_EQ(L"{1234}", IdentityIn(L"/GUID:\"{1234}\""));
    EXPECT_EQ(L"{1234}", IdentityIn(L"/PATH:\"C:\\Oda.contact\" /GUID:\"{1234}\" /END:\"x\""));
    EXPECT_EQ(L" a /b ", IdentityIn(L"/GUID:\" a /b \""));
}

TEST(EntryIdMarkerTest, ATextWithoutAQuotationMarkEndsWithTheId)
{
    EXPECT_EQ(L"{1234}", IdentityIn(L"/GUID:\"{1234}"));
    EXPECT_EQ(L"x", IdentityIn(L"/GUID:\"x"));
}

TEST(EntryIdMarkerTest, AZeroEndsTheText)
{
    using namespace std::string_view_literals;
    EXPECT_EQ(L"{12", IdentityIn(L"/GUID:\"{12\0{34}\""sv));
    EXPECT_EQ(L"", IdentityIn(L"/GUID:\"\0{34}\""sv));
    // What stands in front of the marker does not matter.
    EXPECT_EQ(L"{34}", IdentityIn(L"\0\0ab\0/GUID:\"{34}\""sv));
}

TEST(EntryIdMarkerTest, NothingWithoutAMarkerOrATextBehindIt)
{
    EXPECT_EQ(L"", IdentityIn(L""));
    EXPECT_EQ(L"", IdentityIn(L"{1234}"));
    EXPECT_EQ(L"", IdentityIn(L"/GUID:{1234}"));
    EXPECT_EQ(L"", IdentityIn(L"/guid:\"{1234}\""));
    EXPECT_EQ(L"", IdentityIn(L"/GUID:\"\""));
    EXPECT_EQ(L"", IdentityIn(L"/GUID:\""));
    EXPECT_EQ(L"", IdentityIn(L"/GUID:"));
}

TEST(EntryIdMarkerTest, TheFirstMarkerCounts)
{
    EXPECT_EQ(L"1", IdentityIn(L"/GUID:\"1\"/GUID:\"2\""));
    EXPECT_EQ(L"", IdentityIn(L"/GUID:\"\"/GUID:\"2\"")) << "also where nothing stands behind it";
    EXPECT_EQ(L"2", IdentityIn(L"/GUID:/GUID:\"2\""));
}

TEST(EntryIdMarkerTest, AnOddLastByteIsLeftOut)
{
    std::vector<std::uint8_t> bytes = BytesOf(L"/GUID:\"12");
    bytes.push_back('3');
    EXPECT_EQ(L"12", MarkedIdentity(bytes));
    EXPECT_EQ(L"", MarkedIdentity(std::vector<std::uint8_t>{'/'}));
    // Units that do not begin at an even byte are others.
    bytes = BytesOf(L"/GUID:\"12\"");
    bytes.insert(bytes.begin(), 0);
    EXPECT_EQ(L"", MarkedIdentity(bytes));
}

// The buffer that it went through held 256 characters with the terminator.
TEST(EntryIdMarkerTest, ALongTextIsCut)
{
    const std::wstring marker = L"/GUID:\"";
    EXPECT_EQ(std::wstring(255, L'x'), IdentityIn(marker + std::wstring(255, L'x') + L"\""));
    EXPECT_EQ(std::wstring(255, L'x'), IdentityIn(marker + std::wstring(256, L'x') + L"\""));
    EXPECT_EQ(std::wstring(255, L'x'), IdentityIn(marker + std::wstring(100'000, L'x')));
    EXPECT_EQ(std::wstring(254, L'x'), IdentityIn(marker + std::wstring(254, L'x') + L"\""));
}

TEST(EntryIdMarkerTest, EveryBeginningOfAnIdIsRead)
{
    const std::vector<std::uint8_t> whole = BytesOf(L"ab/GUID:\"12\"");
    for (std::size_t size = 0; size <= whole.size(); ++size)
    {
        // 9 units of marker and blanks before it, then the text's.
        const std::size_t units = size / 2;
        const std::wstring wanted = units <= 9 ? L"" : units == 10 ? L"1" : L"12";
        EXPECT_EQ(wanted, MarkedIdentity(std::span(whole.data(), size))) << size;
    }
}
