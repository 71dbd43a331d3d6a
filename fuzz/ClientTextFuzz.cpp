// What the client prints is safe for a terminal and fits its column, and stays as it is when it is
// made fit again; a time that was typed reads back from each way of writing it; a picture's file
// name is one name; the machine of a program is read within its bytes.
#include "Require.h"

#include "client/core/CivilTime.h"
#include "client/core/PictureName.h"
#include "client/core/ProgramImage.h"
#include "client/core/Unicode.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace
{
bool IsControl(wchar_t unit)
{
    return unit < 0x20 || (unit >= 0x7F && unit < 0xA0);
}

void CheckShown(const std::wstring& text)
{
    const std::wstring line = pim::OneLine(text);
    Require(std::ranges::none_of(line, IsControl));
    Require(pim::OneLine(line) == line);
    const std::wstring lines = pim::ManyLines(text);
    Require(std::ranges::none_of(
        lines, [](wchar_t unit) { return IsControl(unit) && unit != L'\n' && unit != L'\t'; }));
    Require(pim::ManyLines(lines) == lines);
    for (const int columns : {1, 2, 7, 40})
    {
        const std::wstring cut = pim::CutToWidth(line, columns);
        Require(pim::DisplayWidth(cut) <= columns);
        Require(pim::DisplayWidth(line) > columns || cut == line);
    }
}

void CheckTime(const std::wstring& text)
{
    const auto typed = pim::ParseTypedTime(text);
    if (!typed)
        return;
    for (const std::wstring& written :
         {pim::FormatIso(typed->time), pim::FormatDayAndClock(typed->time)})
    {
        const auto again = pim::ParseTypedTime(written);
        Require(again && again->time == typed->time && again->hasClock && !again->isUtc);
    }
    // The DATE of 1899-12-30 without a time stands for none.
    const DATE date = pim::DateFromCivil(typed->time);
    Require(date == 0.0 || pim::CivilFromDate(date) == typed->time);
}

void CheckPictureName(const std::wstring& text)
{
    pim::Contact contact;
    contact.displayName = text;
    contact.picture = L"C:\\" + text;
    for (const unsigned number : {1u, 2u})
    {
        const std::wstring name = pim::PictureFileName(contact, number);
        Require(!name.empty() && name.size() < 256 && name.back() != L'.' && name.back() != L' ');
        Require(std::ranges::none_of(name, [](wchar_t unit) { return unit < 0x20; }));
        Require(name.find_first_of(L"\\/:*?\"<>|") == std::wstring::npos);
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::wstring text =
        pim::WideFromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    Require(pim::WideFromUtf8(pim::Utf8FromWide(text)) == text);
    CheckShown(text);
    CheckTime(text);
    CheckPictureName(text);

    // From memory of exactly that size.
    const auto* const bytes = reinterpret_cast<const std::byte*>(data);
    const std::vector<std::byte> image(bytes, bytes + size);
    const auto machine = pim::MachineOfProgram(image);
    Require(!machine || size >= 0x40);
    return 0;
}
