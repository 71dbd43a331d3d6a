#include "outlook/contacts/ContactNames.h"

#include <algorithm>
#include <initializer_list>

namespace
{
constexpr wchar_t kBlank = L' ';

struct Range
{
    std::uint32_t first;
    std::uint32_t last;
};

constexpr Range kEastAsian[] = {
    {0x4E00, 0x9FA5}, // Han characters
    {0x3040, 0x309F}, // hiragana
    {0x30A0, 0x30FF}, // katakana
    {0x31F0, 0x31FF}, // katakana for other languages
    {0xAC00, 0xD7AF}, // hangul
    {0x1100, 0x11FF}, // parts of hangul
    {0x3130, 0x318F}, // and those of older encodings
};

// What a text to file under is made of.
constexpr std::int32_t kNothing = 0;
constexpr std::int32_t kCompany = 0x3A16;
constexpr std::int32_t kLastFirstMiddle = 0x8017;
constexpr std::int32_t kLastThenFirst = 0x8030; // without anything between
constexpr std::int32_t kFirstMiddleLast = 0x8037;

struct OrderRow
{
    std::uint32_t first;
    std::uint32_t last;
    std::int32_t code;
};

// The orders that a user can choose; any other means first, middle, last.
constexpr OrderRow kOrders[] = {
    {0x3A16, 0x3A16, kCompany},
    {0x3A11, 0x3A11, kLastFirstMiddle},
    {0x8017, 0x8019, kLastFirstMiddle},
    {0x8030, 0x8036, kLastFirstMiddle},
    {0x8038, 0x8038, kLastFirstMiddle},
};

std::wstring WithoutBlanks(std::wstring text)
{
    std::erase(text, kBlank);
    return text;
}

// The parts that are not empty, a blank between each two.
std::wstring Joined(std::initializer_list<std::wstring_view> parts)
{
    std::wstring text;
    for (const std::wstring_view part : parts)
    {
        if (part.empty())
            continue;
        if (!text.empty())
            text += kBlank;
        text += part;
    }
    return text;
}

bool HasEastAsianNames(const ContactNames& names)
{
    return !names.first.empty() && !names.last.empty() && IsEastAsian(names.first) &&
           IsEastAsian(names.last);
}

// A part beside East Asian names: one of their kind joins them, another stands apart.
std::wstring Beside(const std::wstring& part)
{
    return IsEastAsian(part) ? WithoutBlanks(part) : kBlank + part;
}

std::int32_t CodeOf(const ContactNames& names, const NameSettings& settings)
{
    std::int32_t code = kFirstMiddleLast;
    for (const OrderRow& row : kOrders)
        if (settings.fileAsOrder >= row.first && settings.fileAsOrder <= row.last)
            code = row.code;
    return code == kCompany && names.company.empty() ? kFirstMiddleLast : code;
}
} // namespace

bool IsEastAsian(std::wstring_view text)
{
    return std::all_of(text.begin(), text.end(), [](wchar_t unit) {
        const auto code = static_cast<std::uint32_t>(unit);
        return unit == kBlank ||
               std::any_of(std::begin(kEastAsian), std::end(kEastAsian), [code](Range range) {
                   return code >= range.first && code <= range.last;
               });
    });
}

std::wstring DisplayNameOf(const ContactNames& names, const NameSettings& settings)
{
    if (HasEastAsianNames(names))
        return WithoutBlanks(names.last) + Beside(names.middle) + WithoutBlanks(names.first) +
               Beside(names.suffix);
    if (settings.parserStyle == L"E" || settings.parserStyle == L"S")
        return Joined({names.first, names.middle, names.last});
    return Joined({names.last, names.first, names.middle});
}

FileAs FileAsOf(const ContactNames& names, const NameSettings& settings)
{
    // Kept as it is: blanks inside these names stay here, where the name to show loses them. Pinned
    // by ContactNamesTest.
    if (HasEastAsianNames(names))
        return {kLastThenFirst,
                names.last + names.first +
                    (names.middle.empty() ? std::wstring() : kBlank + names.middle)};
    if (names.first.empty() && names.middle.empty() && names.last.empty())
        return {names.company.empty() ? kNothing : kCompany, names.company};

    const std::int32_t code = CodeOf(names, settings);
    if (code == kCompany)
        return {code, names.company};
    if (code == kFirstMiddleLast)
        return {code, Joined({names.first, names.middle, names.last})};
    const std::wstring given = Joined({names.first, names.middle});
    if (names.last.empty() || given.empty())
        return {code, names.last + given};
    return {code, names.last + L", " + given};
}
