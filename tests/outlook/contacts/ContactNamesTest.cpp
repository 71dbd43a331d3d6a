// Expected names were worked out by hand from the rules of the header.
#include "outlook/contacts/ContactNames.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <string_view>

namespace
{
// "first|middle|last|suffix|company".
ContactNames Names(std::wstring_view text)
{
    ContactNames names;
    std::wstring* const fields[] = {
        &names.first, &names.middle, &names.last, &names.suffix, &names.company};
    for (std::wstring* const field : fields)
    {
        const std::size_t end = text.find(L'|');
        *field = text.substr(0, end);
        text.remove_prefix(end == std::wstring_view::npos ? text.size() : end + 1);
    }
    return names;
}

struct DisplayCase
{
    const wchar_t* names;
    const wchar_t* style;
    const wchar_t* expected;
};

struct FileAsCase
{
    const wchar_t* names;
    std::uint32_t order;
    std::int32_t code;
    const wchar_t* text;
};

constexpr wchar_t kAll[] = L"John|Q|Public|Jr.|Acme";
} // namespace

// gtest cannot show wide text of every kind; the position tells the case.
TEST(ContactNamesTest, TheStyleOrdersWesternNames)
{
    constexpr DisplayCase kCases[] = {
        {kAll, L"H", L"Public John Q"},
        {kAll, L"E", L"John Q Public"},
        {kAll, L"S", L"John Q Public"},
        // Anything else is like "H", letter case included.
        {kAll, L"", L"Public John Q"},
        {kAll, L"e", L"Public John Q"},
        {kAll, L"s", L"Public John Q"},
        {kAll, L"EE", L"Public John Q"},
        {kAll, L"X", L"Public John Q"},
        // Parts that are missing leave no second blank.
        {L"John||Public", L"H", L"Public John"},
        {L"John||Public", L"E", L"John Public"},
        {L"John|Q|", L"H", L"John Q"},
        {L"John|Q|", L"E", L"John Q"},
        {L"|Q|Public", L"H", L"Public Q"},
        {L"|Q|Public", L"S", L"Q Public"},
        {L"John||", L"H", L"John"},
        {L"|Q|", L"E", L"Q"},
        {L"||Public", L"H", L"Public"},
        {L"||", L"H", L""},
        {L"||", L"E", L""},
        // Neither suffix nor company stands in for a name.
        {L"|||Jr.|Acme", L"H", L""},
        {L"||Public|Jr.", L"E", L"Public"},
        // Blanks inside a part stay.
        {L"Mary Ann||van Dyke", L"E", L"Mary Ann van Dyke"},
    };
    for (std::size_t i = 0; i < std::size(kCases); ++i)
        EXPECT_EQ(kCases[i].expected, DisplayNameOf(Names(kCases[i].names), {0, kCases[i].style}))
            << i;
}

TEST(ContactNamesTest, EastAsianNamesStandWithoutBlanks)
{
    constexpr DisplayCase kCases[] = {
        {L"\u592A\u90CE||\u5C71\u7530", L"E", L"\u5C71\u7530\u592A\u90CE"},
        // Blanks inside go.
        {L"\u592A \u90CE|| \u5C71 \u7530 ", L"H", L"\u5C71\u7530\u592A\u90CE"},
        // A middle name and a suffix of the same kind join, and lose their blanks too.
        {L"\u592A\u90CE|\u4E2D \u9593|\u5C71\u7530|\u5148\u751F",
         L"H",
         L"\u5C71\u7530\u4E2D\u9593\u592A\u90CE\u5148\u751F"},
        // Others stand behind a blank and keep theirs.
        {L"\u592A\u90CE|van Q|\u5C71\u7530|Jr. 2", L"H", L"\u5C71\u7530 van Q\u592A\u90CE Jr. 2"},
        {L"\u592A\u90CE||\u5C71\u7530|Jr.", L"S", L"\u5C71\u7530\u592A\u90CE Jr."},
        // Kana and hangul.
        {L"\u3072\u308D||\u30BF\u30CA\u30AB", L"E", L"\u30BF\u30CA\u30AB\u3072\u308D"},
        {L"\uAE38\uB3D9||\uD64D", L"E", L"\uD64D\uAE38\uB3D9"},
        // One name of another kind, or one that is missing, makes all of it Western.
        {L"Taro||\u5C71\u7530", L"E", L"Taro \u5C71\u7530"},
        {L"\u592A\u90CE||Yamada", L"H", L"Yamada \u592A\u90CE"},
        {L"\u592A\u90CE||", L"H", L"\u592A\u90CE"},
        {L"||\u5C71 \u7530|\u5148\u751F", L"H", L"\u5C71 \u7530"},
        // Names of blanks alone are of this kind, and nothing is left of them.
        {L" || ", L"E", L""},
    };
    for (std::size_t i = 0; i < std::size(kCases); ++i)
        EXPECT_EQ(kCases[i].expected, DisplayNameOf(Names(kCases[i].names), {0, kCases[i].style}))
            << i;
}

TEST(ContactNamesTest, TheOrderChoosesWhatToFileUnder)
{
    static constexpr wchar_t kLastFirst[] = L"Public, John Q";
    static constexpr wchar_t kFirstLast[] = L"John Q Public";
    constexpr FileAsCase kCases[] = {
        {kAll, 0x3A16, 0x3A16, L"Acme"},
        {kAll, 0x3A11, 0x8017, kLastFirst},
        {kAll, 0x8017, 0x8017, kLastFirst},
        {kAll, 0x8018, 0x8017, kLastFirst},
        {kAll, 0x8019, 0x8017, kLastFirst},
        {kAll, 0x8030, 0x8017, kLastFirst},
        {kAll, 0x8031, 0x8017, kLastFirst},
        {kAll, 0x8032, 0x8017, kLastFirst},
        {kAll, 0x8033, 0x8017, kLastFirst},
        {kAll, 0x8034, 0x8017, kLastFirst},
        {kAll, 0x8035, 0x8017, kLastFirst},
        {kAll, 0x8036, 0x8017, kLastFirst},
        {kAll, 0x8038, 0x8017, kLastFirst},
        {kAll, 0x3A06, 0x8037, kFirstLast},
        {kAll, 0x8037, 0x8037, kFirstLast},
        {kAll, 0, 0x8037, kFirstLast},
        // The neighbours of what is known.
        {kAll, 0x3A10, 0x8037, kFirstLast},
        {kAll, 0x3A12, 0x8037, kFirstLast},
        {kAll, 0x3A15, 0x8037, kFirstLast},
        {kAll, 0x3A17, 0x8037, kFirstLast},
        {kAll, 0x8016, 0x8037, kFirstLast},
        {kAll, 0x801A, 0x8037, kFirstLast},
        {kAll, 0x802F, 0x8037, kFirstLast},
        {kAll, 0x8039, 0x8037, kFirstLast},
        {kAll, 0xFFFFFFFF, 0x8037, kFirstLast},
        // Without a company its order is like none.
        {L"John|Q|Public|Jr.|", 0x3A16, 0x8037, kFirstLast},
    };
    for (const FileAsCase& one : kCases)
    {
        const FileAs fileAs = FileAsOf(Names(one.names), {one.order, L"E"});
        EXPECT_EQ(one.code, fileAs.code) << std::hex << one.order;
        EXPECT_EQ(one.text, fileAs.text) << std::hex << one.order;
    }
}

TEST(ContactNamesTest, PartsThatAreMissingLeaveNoTrace)
{
    constexpr FileAsCase kCases[] = {
        {L"John||Public", 0x8017, 0x8017, L"Public, John"},
        {L"|Q|Public", 0x8017, 0x8017, L"Public, Q"},
        {L"||Public", 0x8017, 0x8017, L"Public"},
        {L"John|Q|", 0x8017, 0x8017, L"John Q"},
        {L"John||", 0x8017, 0x8017, L"John"},
        {L"|Q|", 0x8017, 0x8017, L"Q"},
        {L"John||Public", 0x8037, 0x8037, L"John Public"},
        {L"|Q|Public", 0x8037, 0x8037, L"Q Public"},
        {L"John|Q|", 0, 0x8037, L"John Q"},
        {L"||Public", 0, 0x8037, L"Public"},
        {L"|Q|", 0x3A06, 0x8037, L"Q"},
        // A company may come first although there are names.
        {L"||Public||Acme", 0x3A16, 0x3A16, L"Acme"},
    };
    for (std::size_t i = 0; i < std::size(kCases); ++i)
    {
        const FileAs fileAs = FileAsOf(Names(kCases[i].names), {kCases[i].order, L"H"});
        EXPECT_EQ(kCases[i].code, fileAs.code) << i;
        EXPECT_EQ(kCases[i].text, fileAs.text) << i;
    }
}

TEST(ContactNamesTest, WithoutNamesTheCompanyStandsForThemOrNothing)
{
    for (const std::uint32_t order : {0u, 0x8037u, 0x8017u, 0x3A16u, 0x3A06u})
    {
        const FileAs company = FileAsOf(Names(L"|||Jr.|Acme"), {order, L""});
        EXPECT_EQ(0x3A16, company.code);
        EXPECT_EQ(L"Acme", company.text);
        const FileAs nothing = FileAsOf(Names(L"|||Jr.|"), {order, L""});
        EXPECT_EQ(0, nothing.code);
        EXPECT_EQ(L"", nothing.text);
    }
}

TEST(ContactNamesTest, EastAsianNamesAreFiledInTheirOwnOrder)
{
    for (const std::uint32_t order : {0u, 0x8037u, 0x8017u, 0x3A16u})
    {
        const FileAs two = FileAsOf(Names(L"\u592A \u90CE||\u5C71 \u7530||Acme"), {order, L"E"});
        EXPECT_EQ(0x8030, two.code);
        // Blanks inside stay, other than in the name to show.
        EXPECT_EQ(L"\u5C71 \u7530\u592A \u90CE", two.text);
        const FileAs three =
            FileAsOf(Names(L"\u592A\u90CE|\u4E2D|\u5C71\u7530|\u5148\u751F|"), {order, L"H"});
        EXPECT_EQ(0x8030, three.code);
        EXPECT_EQ(L"\u5C71\u7530\u592A\u90CE \u4E2D", three.text);
    }
    EXPECT_EQ(0x8037, FileAsOf(Names(L"Taro||\u5C71\u7530"), {}).code);
    EXPECT_EQ(L"Taro \u5C71\u7530", FileAsOf(Names(L"Taro||\u5C71\u7530"), {}).text);
}

TEST(ContactNamesTest, TheRangesOfEastAsianCharactersAreExact)
{
    const struct
    {
        unsigned first;
        unsigned last;
    } ranges[] = {{0x4E00, 0x9FA5},
                  {0x3040, 0x30FF}, // two that touch
                  {0x31F0, 0x31FF},
                  {0xAC00, 0xD7AF},
                  {0x1100, 0x11FF},
                  {0x3130, 0x318F},
                  {0x20, 0x20}};
    for (const auto& range : ranges)
    {
        EXPECT_TRUE(IsEastAsian(std::wstring(1, static_cast<wchar_t>(range.first))));
        EXPECT_TRUE(IsEastAsian(std::wstring(1, static_cast<wchar_t>(range.last))));
        EXPECT_FALSE(IsEastAsian(std::wstring(1, static_cast<wchar_t>(range.first - 1))));
        EXPECT_FALSE(IsEastAsian(std::wstring(1, static_cast<wchar_t>(range.last + 1))));
    }
    EXPECT_TRUE(IsEastAsian(L"\u309F\u30A0"));
    EXPECT_FALSE(IsEastAsian(L"\u3000")); // the wide blank is none of them
    EXPECT_FALSE(IsEastAsian(L"\u00A0"));
    EXPECT_FALSE(IsEastAsian(L"\t"));
    EXPECT_FALSE(IsEastAsian(L"\u5C71a"));
    EXPECT_FALSE(IsEastAsian(L"a\u5C71"));
    EXPECT_TRUE(IsEastAsian(L""));
}
