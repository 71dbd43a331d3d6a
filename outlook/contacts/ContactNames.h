// How the parts of a contact's name become the name that is shown and the text that it is filed
// under. Portable.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

struct ContactNames
{
    std::wstring first;
    std::wstring middle;
    std::wstring last;
    std::wstring suffix;
    std::wstring company;
};

// How a store user wants names to be put together.
struct NameSettings
{
    std::uint32_t fileAsOrder = 0; // a property's ID; 0 where nothing was chosen
    std::wstring parserStyle;      // "E", "H" or "S"; anything else counts as "H"
};

struct FileAs
{
    std::int32_t code = 0; // what the text is made of; 0 for nothing
    std::wstring text;
};

// Whether every character of the text, if there is any, is a Han character, kana, hangul or a
// blank.
bool IsEastAsian(std::wstring_view text);

// The name to show. A suffix is part of East Asian names alone.
std::wstring DisplayNameOf(const ContactNames& names, const NameSettings& settings);

// What the contact is filed under.
FileAs FileAsOf(const ContactNames& names, const NameSettings& settings);
