#include "outlook/store/EntryIdText.h"

namespace
{
constexpr std::wstring_view kDigits = L"0123456789ABCDEF";

unsigned DigitValue(wchar_t character)
{
    if (character >= L'0' && character <= L'9')
        return static_cast<unsigned>(character - L'0');
    if (character >= L'A' && character <= L'F')
        return static_cast<unsigned>(character - L'A') + 10;
    if (character >= L'a' && character <= L'z')
        return static_cast<unsigned>(character - L'a') + 10;
    return static_cast<unsigned>(character);
}
} // namespace

std::wstring BytesToHex(std::span<const std::uint8_t> bytes)
{
    std::wstring text;
    text.reserve(bytes.size() * 2);
    for (const std::uint8_t byte : bytes)
    {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 0x0F];
    }
    return text;
}

std::vector<std::uint8_t> HexToBytes(std::wstring_view text)
{
    std::vector<std::uint8_t> bytes(text.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        const unsigned high = DigitValue(text[2 * i]);
        const unsigned low = DigitValue(text[2 * i + 1]);
        bytes[i] = static_cast<std::uint8_t>((high << 4) | low);
    }
    return bytes;
}
