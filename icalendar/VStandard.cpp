#include "icalendar/VStandard.h"

#include "icalendar/LineText.h"
#include "service/StringHelpers.h"

namespace
{

struct StandardRow
{
    std::wstring_view property;
    std::wstring CVStandard::*field;
};

// In the order of writing.
// clang-format off
constexpr StandardRow kRows[] = {
    {L"DTSTART",      &CVStandard::start},
    {L"TZNAME",       &CVStandard::name},
    {L"TZOFFSETFROM", &CVStandard::offsetFrom},
    {L"TZOFFSETTO",   &CVStandard::offsetTo},
};
// clang-format on

} // namespace

int CVStandard::SetProperty(std::wstring_view property, std::wstring_view value)
{
    for (const StandardRow& row : kRows)
    {
        if (property == row.property)
            this->*row.field = value;
    }
    return 1;
}

std::wstring CVStandard::GetProperties() const
{
    std::wstring lines;
    for (const StandardRow& row : kRows)
    {
        if (!(this->*row.field).empty())
            AppendLine(lines, row.property, this->*row.field);
    }
    return lines;
}

std::int32_t CVStandard::GetOffsetMinutes() const
{
    const std::wstring_view text = offsetTo;
    if (text.size() < 5)
        return 0;
    const std::int32_t minutes = ParseInt(text.substr(1, 2)) * 60 + ParseInt(text.substr(3, 2));
    return text.front() == L'-' ? -minutes : minutes;
}
