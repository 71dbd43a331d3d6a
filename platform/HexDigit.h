// Hexadecimal digits of text. Portable.
#pragma once

// The value of a digit of either case, 0 to 15; -1 for another character.
constexpr int HexDigit(char c) noexcept
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return -1;
}
