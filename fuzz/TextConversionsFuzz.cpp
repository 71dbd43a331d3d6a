// UTF-8 and wide text survive the way there and back, and the string helpers keep their promises.
#include "FuzzInput.h"
#include "Require.h"

#include "service/StringHelpers.h"
#include "service/TextConversions.h"

#include <algorithm>
#include <climits>
#include <cwchar>

namespace
{
void CheckBytes(const std::string& bytes)
{
    const std::wstring wide = WideFromUtf8(bytes);
    Require(wide.size() <= bytes.size());
    Require(std::ranges::all_of(wide, [](wchar_t unit) { return unit >= 0 && unit <= 0xFFFF; }));
    // What came out is valid, so from here on nothing is lost.
    Require(WideFromUtf8(Utf8FromWide(wide)) == wide);

    std::string cut = bytes;
    TrimToCString(cut);
    const std::wstring shortText = Utf8ToWideShort(bytes);
    const std::wstring cutWide = WideFromUtf8(cut);
    Require(shortText == (cutWide.size() < 260 ? cutWide : std::wstring()));
}

// Text of real characters, made from any numbers.
void CheckCharacters(const std::string& bytes)
{
    std::wstring wide;
    for (std::size_t index = 0; index + 2 < bytes.size(); index += 3)
    {
        const auto at = [&](std::size_t offset) {
            return static_cast<std::uint32_t>(static_cast<std::uint8_t>(bytes[index + offset]));
        };
        std::uint32_t character = (at(0) << 16 | at(1) << 8 | at(2)) % 0x110000;
        if (character >= 0xD800 && character <= 0xDFFF)
            character -= 0x800;
        if (character >= 0x10000)
        {
            wide += static_cast<wchar_t>(0xD800 + ((character - 0x10000) >> 10));
            wide += static_cast<wchar_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
        }
        else
        {
            wide += static_cast<wchar_t>(character);
        }
    }
    const std::string utf8 = Utf8FromWide(wide);
    Require(WideFromUtf8(utf8) == wide);
    Require(Utf8FromWide(WideFromUtf8(utf8)) == utf8);
}

// Any code units, surrogates in any order among them.
void CheckUnits(const std::string& bytes)
{
    std::wstring wide;
    for (std::size_t index = 0; index + 1 < bytes.size(); index += 2)
        wide += static_cast<wchar_t>(static_cast<std::uint8_t>(bytes[index]) << 8 |
                                     static_cast<std::uint8_t>(bytes[index + 1]));
    const std::wstring again = WideFromUtf8(Utf8FromWide(wide));
    Require(again.size() == wide.size());
    for (std::size_t index = 0; index < wide.size(); ++index)
        Require(again[index] == wide[index] ||
                (again[index] == 0xFFFD && wide[index] >= 0xD800 && wide[index] <= 0xDFFF));
}

void CheckStrings(const std::wstring& text,
                  const std::wstring& search,
                  const std::wstring& replacement)
{
    const std::wstring replaced = ReplaceAll(text.c_str(), search.c_str(), replacement.c_str());
    // A replacement that is shorter than the search always settles.
    const std::wstring wanted = search.c_str();
    if (!wanted.empty() && std::wcslen(replacement.c_str()) < wanted.size())
        Require(replaced.find(wanted) == std::wstring::npos);

    for (const std::wstring& part : SplitStrings(text, search))
    {
        Require(!part.empty() && part.front() != L' ' && part.back() != L' ');
        Require(search.empty() || part.find(search) == std::wstring::npos);
    }

    std::wstring head, tail;
    SplitAtFirst(text, head, tail, L":");
    if (text.find(L':') != std::wstring::npos)
        Require(head + L":" + tail == text && head.find(L':') == std::wstring::npos);

    const std::wstring trimmed = TrimChar(text, L' ');
    Require(TrimChar(trimmed, L' ') == trimmed);

    const long long number = std::wcstoll(text.c_str(), nullptr, 10);
    Require(ParseInt(text.c_str()) == std::clamp<long long>(number, INT_MIN, INT_MAX));
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string bytes = FuzzInput(data, size).TakeRest();
    CheckBytes(bytes);
    CheckCharacters(bytes);
    CheckUnits(bytes);

    FuzzInput input(data, size);
    const std::wstring search = WideFromUtf8(input.TakeText(input.Take<std::uint8_t>() % 8));
    const std::wstring replacement = WideFromUtf8(input.TakeText(input.Take<std::uint8_t>() % 8));
    CheckStrings(WideFromUtf8(input.TakeRest()), search, replacement);
    return 0;
}
