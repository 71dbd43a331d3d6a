#include "icalendar/DateText.h"

#include "service/StringHelpers.h"

namespace
{

constexpr unsigned kFirstYearInFull = 101;

// The number in a few characters of the text, as a record's field takes it. Digits alone, as nearly
// always, are read without a call.
std::uint16_t FieldAt(std::wstring_view text, std::size_t position, std::size_t length)
{
    const std::wstring_view field = text.substr(position, length);
    unsigned number = 0;
    for (const wchar_t character : field)
    {
        if (character < L'0' || character > L'9')
            return static_cast<std::uint16_t>(ParseInt(field));
        number = number * 10 + static_cast<unsigned>(character - L'0');
    }
    return static_cast<std::uint16_t>(number);
}

// Decimal digits with leading zeros up to the width.
void AppendNumber(std::wstring& out, unsigned number, std::size_t width)
{
    wchar_t digits[10];
    std::size_t count = 0;
    do
    {
        digits[count++] = static_cast<wchar_t>(L'0' + number % 10);
        number /= 10;
    } while (number);
    for (std::size_t i = count; i < width; ++i)
        out += L'0';
    while (count)
        out += digits[--count];
}

void AppendDay(std::wstring& out, const SYSTEMTIME& time, bool shortYears)
{
    if (shortYears && time.wYear < kFirstYearInFull)
    {
        out += L"20";
        AppendNumber(out, time.wYear, 2);
    }
    else
    {
        AppendNumber(out, time.wYear, 4);
    }
    AppendNumber(out, time.wMonth, 2);
    AppendNumber(out, time.wDay, 2);
}

void AppendClock(std::wstring& out, const SYSTEMTIME& time)
{
    out += L'T';
    AppendNumber(out, time.wHour, 2);
    AppendNumber(out, time.wMinute, 2);
    AppendNumber(out, time.wSecond, 2);
}

} // namespace

void ParseDateTime(std::wstring_view text, SYSTEMTIME& time)
{
    if (text.size() >= 8)
    {
        time.wYear = FieldAt(text, 0, 4);
        time.wMonth = FieldAt(text, 4, 2);
        time.wDay = FieldAt(text, 6, 2);
    }
    if (text.size() >= 15)
    {
        time.wHour = FieldAt(text, 9, 2);
        time.wMinute = FieldAt(text, 11, 2);
        time.wSecond = FieldAt(text, 13, 2);
    }
    time.wMilliseconds = 0;
}

std::wstring FormatDateTime(const SYSTEMTIME& time)
{
    std::wstring text;
    AppendDay(text, time, true);
    AppendClock(text, time);
    return text;
}

std::wstring FormatDate(const SYSTEMTIME& time)
{
    std::wstring text;
    AppendDay(text, time, true);
    return text;
}

std::wstring FormatUntil(const SYSTEMTIME& time)
{
    std::wstring text;
    AppendDay(text, time, false);
    AppendClock(text, time);
    text += L'Z';
    return text;
}
