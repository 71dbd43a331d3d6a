// A name to show, or to file under, says the parts of the contact's name, whole and in one of the
// orders that there are, and adds nothing but blanks and a comma.
#include "FuzzInput.h"
#include "Require.h"

#include "outlook/contacts/ContactNames.h"
#include "service/TextConversions.h"

#include <algorithm>
#include <string>

namespace
{
// The text without what may stand between parts.
std::wstring Bare(std::wstring text)
{
    std::erase_if(text, [](wchar_t unit) { return unit == L' ' || unit == L','; });
    return text;
}

void CheckDisplayName(const ContactNames& names, const NameSettings& settings)
{
    const std::wstring shown = DisplayNameOf(names, settings);
    const std::wstring text = Bare(shown);
    const bool eastAsian =
        !names.first.empty() && !names.last.empty() && IsEastAsian(names.first + names.last);
    if (eastAsian)
        Require(text == Bare(names.last + names.middle + names.first + names.suffix));
    else if (settings.parserStyle == L"E" || settings.parserStyle == L"S")
        Require(text == Bare(names.first + names.middle + names.last));
    else
        Require(text == Bare(names.last + names.first + names.middle));
}

void CheckFileAs(const ContactNames& names, const NameSettings& settings)
{
    const FileAs fileAs = FileAsOf(names, settings);
    const std::wstring text = Bare(fileAs.text);
    switch (fileAs.code)
    {
    case 0:
        Require(fileAs.text.empty() && (names.first + names.middle + names.last).empty());
        break;
    case 0x3A16:
        Require(fileAs.text == names.company && !names.company.empty());
        break;
    case 0x8037:
        Require(text == Bare(names.first + names.middle + names.last));
        break;
    case 0x8017:
        Require(text == Bare(names.last + names.first + names.middle));
        break;
    case 0x8030:
        Require(IsEastAsian(names.first) && IsEastAsian(names.last));
        Require(text == Bare(names.last + names.first + names.middle));
        break;
    default:
        Require(false);
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr const wchar_t* kStyles[] = {L"E", L"H", L"S", L""};
    // Each order that a user can choose, and one that nobody can.
    constexpr std::uint32_t kOrders[] = {0, 0x3A16, 0x3A11, 0x8017, 0x8030, 0x8037, 0x8038, 0x1234};
    FuzzInput input(data, size);
    const auto choice = input.Take<std::uint8_t>();
    const NameSettings settings{kOrders[choice % 8], kStyles[choice / 8 % 4]};
    ContactNames names;
    for (std::wstring* part : {&names.first, &names.middle, &names.last, &names.suffix})
        *part = WideFromUtf8(input.TakeText(input.Take<std::uint8_t>() % 32));
    names.company = WideFromUtf8(input.TakeRest());
    CheckDisplayName(names, settings);
    CheckFileAs(names, settings);
    return 0;
}
