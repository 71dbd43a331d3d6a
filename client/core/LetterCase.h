// Comparing names that people type: the letters A to Z count in either case. Portable.
#pragma once

#include <string>
#include <string_view>

namespace pim
{
constexpr wchar_t FoldCase(wchar_t letter)
{
    return letter >= L'A' && letter <= L'Z' ? wchar_t(letter - L'A' + L'a') : letter;
}

std::wstring Folded(std::wstring_view text);
bool IsSameIgnoringCase(std::wstring_view left, std::wstring_view right);
bool BeginsWithIgnoringCase(std::wstring_view text, std::wstring_view beginning);
} // namespace pim
