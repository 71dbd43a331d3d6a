#include "outlook/calendar/RecurrenceSupport.h"

#include "support/TestPaths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

namespace
{
constexpr long long kDaysTo1899 = 109205; // from 1601-01-01 to 1899-12-30

// Days since 1601-01-01, counted year by year and month by month.
long long DaysSince1601(int year, int month, int day)
{
    const auto isLeap = [](int y) { return (y % 4 == 0 && y % 100 != 0) || y % 400 == 0; };
    const int lengths[] = {31, isLeap(year) ? 29 : 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    long long days = day - 1;
    for (int y = 1601; y < year; ++y)
        days += isLeap(y) ? 366 : 365;
    for (int m = 1; m < month; ++m)
        days += lengths[m - 1];
    return days;
}

// "2024-03-05 09:30" of a DATE, to the nearest minute.
std::string DateText(DATE date)
{
    const double whole = std::trunc(date);
    const auto minutes = static_cast<long long>(std::llround(std::fabs(date - whole) * 1440.0));
    long long days = static_cast<long long>(whole) + kDaysTo1899 + minutes / 1440;
    int year = 1601;
    while (days >= DaysSince1601(year + 1, 1, 1))
        ++year;
    int month = 12;
    while (days < DaysSince1601(year, month, 1))
        --month;
    days -= DaysSince1601(year, month, 1);
    char text[40];
    std::snprintf(text,
                  sizeof(text),
                  "%04d-%02d-%02d %02d:%02d",
                  year,
                  month,
                  static_cast<int>(days) + 1,
                  static_cast<int>(minutes % 1440 / 60),
                  static_cast<int>(minutes % 60));
    return text;
}

std::string UnitText(const std::uint16_t (&text)[260])
{
    std::string result;
    for (std::size_t i = 0; i < 260 && text[i] != 0; ++i)
    {
        char unit[16];
        if (text[i] >= 0x20 && text[i] < 0x7F)
            std::snprintf(unit, sizeof(unit), "%c", static_cast<char>(text[i]));
        else
            std::snprintf(unit, sizeof(unit), "{%04X}", static_cast<unsigned>(text[i]));
        result += unit;
    }
    return result;
}

class Lines
{
  public:
    void Number(const std::string& name, long long value)
    {
        if (value != 0)
            Add(name, std::to_string(value));
    }
    void Date(const std::string& name, DATE date)
    {
        if (date != 0.0)
            Add(name, DateText(date));
    }
    void Units(const std::string& name, const std::uint16_t (&text)[260])
    {
        if (text[0] != 0)
            Add(name, UnitText(text));
    }
    void Weekdays(const std::string& name, const VARIANT_BOOL (&days)[7])
    {
        std::string text;
        bool any = false;
        for (int day = 0; day < 7; ++day)
        {
            text += days[day] == 0 ? '-' : days[day] == -1 ? "SMTWTFS"[day] : '?';
            any = any || days[day] != 0;
        }
        if (any)
            Add(name, text);
    }
    std::string Text() const { return m_text; }

  private:
    void Add(const std::string& name, const std::string& value)
    {
        m_text += name + " " + value + "\n";
    }
    std::string m_text;
};
} // namespace

DATE DateOf(int year, int month, int day, int hour, int minute)
{
    const auto whole = static_cast<double>(DaysSince1601(year, month, day) - kDaysTo1899);
    const double fraction = (hour * 60 + minute) / 1440.0;
    return whole < 0 ? whole - fraction : whole + fraction;
}

std::uint32_t MinutesAt(int year, int month, int day, int hour, int minute)
{
    return static_cast<std::uint32_t>(DaysSince1601(year, month, day) * 1440 + hour * 60 + minute);
}

std::vector<std::byte> HexFile(const std::string& name)
{
    std::ifstream file(TestData() / name);
    EXPECT_TRUE(file) << name;
    std::string digits;
    for (std::string line; std::getline(file, line);)
        for (const char digit : line.substr(0, line.find('#')))
            if (std::isxdigit(static_cast<unsigned char>(digit)))
                digits += digit;
    EXPECT_EQ(digits.size() % 2, 0u) << name;
    std::vector<std::byte> bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<std::byte>(std::stoi(digits.substr(i, 2), nullptr, 16)));
    return bytes;
}

std::vector<std::byte> BytesOf(std::string_view text)
{
    const auto* const bytes = reinterpret_cast<const std::byte*>(text.data());
    return {bytes, bytes + text.size()};
}

std::string HexOf(const std::vector<std::byte>& bytes)
{
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i)
    {
        char digits[4];
        std::snprintf(digits, sizeof(digits), "%02x", std::to_integer<unsigned>(bytes[i]));
        text += digits;
        text += i % 4 == 3 ? " " : "";
    }
    return text;
}

std::string TextOf(const _tagRecurringInfo& record)
{
    Lines lines;
    lines.Number("kind", record.eRecurType);
    lines.Number("daily.byDay", record.tDaily.bIsByDayMode);
    lines.Number("daily.byWeekday", record.tDaily.bIsByWeekdayMode);
    lines.Number("daily.interval", record.tDaily.ulIntervalDay);
    lines.Number("weekly.interval", record.tWeekly.ulIntervalWeek);
    lines.Weekdays("weekly.days", record.tWeekly.bValidWeekday);
    lines.Number("monthly.byMonthDay", record.tMonthly.bIsByMonthDayMode);
    lines.Number("monthly.byDay", record.tMonthly.bIsByDayMode);
    lines.Number("monthly.interval", record.tMonthly.ulIntervalMonth);
    lines.Number("monthly.day", record.tMonthly.lMonthDay);
    lines.Number("monthly.nth", record.tMonthly.lNth);
    lines.Weekdays("monthly.days", record.tMonthly.bValidWeekday);
    lines.Number("yearly.byMonthDay", record.tYearly.bIsByMonthDayMode);
    lines.Number("yearly.byDay", record.tYearly.bIsByDayMode);
    lines.Number("yearly.interval", record.tYearly.ulIntervalYear);
    lines.Number("yearly.month", record.tYearly.lMonth);
    lines.Number("yearly.day", record.tYearly.lDay);
    lines.Number("yearly.nth", record.tYearly.lNth);
    lines.Weekdays("yearly.days", record.tYearly.bValidWeekday);
    lines.Number("end.kind", record.tEndInfo.eEndType);
    lines.Date("end.date", record.tEndInfo.dtEndDateTime);
    lines.Number("end.times", record.tEndInfo.ulTimesAfter);
    for (std::size_t i = 0; i < std::size(record.arrDeletedInstance); ++i)
        lines.Date("deleted" + std::to_string(i), record.arrDeletedInstance[i]);
    for (std::size_t i = 0; i < std::size(record.arrModifiedInstance); ++i)
    {
        const _tagModifiedInstanceInfo& instance = record.arrModifiedInstance[i];
        const std::string name = "modified" + std::to_string(i);
        lines.Date(name, instance.dtModifiedDate);
        lines.Date(name + ".start", instance.dtStartDateTime);
        lines.Date(name + ".end", instance.dtEndDateTime);
        lines.Date(name + ".original", instance.dtOriginalDateTime);
        lines.Units(name + ".subject", instance.szSubject);
        lines.Units(name + ".location", instance.szLocation);
    }
    return lines.Text();
}

_tagRecurringInfo NoRecurrence()
{
    _tagRecurringInfo record;
    std::memset(&record, 0, sizeof(record));
    return record;
}

void SetWeekdays(VARIANT_BOOL (&weekdays)[7], std::initializer_list<int> days)
{
    for (const int day : days)
        weekdays[day] = -1;
}

void PutText(std::wstring_view text, std::uint16_t (&target)[260])
{
    std::ranges::fill(target, std::uint16_t{0});
    for (std::size_t i = 0; i < text.size() && i < 260; ++i)
        target[i] = static_cast<std::uint16_t>(text[i]);
}

BlobFields& BlobFields::Pattern(std::uint32_t frequency, std::uint32_t type, std::uint32_t period)
{
    return U16(0x3004).U16(0x3004).U16(frequency).U16(type).U16(0).U32(0).U32(period).U32(0);
}

BlobFields& BlobFields::Lists(std::uint32_t endType,
                              std::uint32_t occurrences,
                              const std::vector<std::uint32_t>& deleted,
                              const std::vector<std::uint32_t>& modified)
{
    U32(endType).U32(occurrences).U32(0);
    for (const auto* const list : {&deleted, &modified})
    {
        U32(static_cast<std::uint32_t>(list->size()));
        for (const std::uint32_t minutes : *list)
            U32(minutes);
    }
    return *this;
}

BlobFields& BlobFields::Span(std::uint32_t startMinutes,
                             std::uint32_t endMinutes,
                             std::uint32_t exceptions)
{
    return U32(startMinutes)
        .U32(endMinutes)
        .U32(0x3006)
        .U32(0x3009)
        .U32(570)
        .U32(630)
        .U16(exceptions);
}
