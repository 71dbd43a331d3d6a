// What a second load and save may change of a saved file, and what it may not. Shared by tests and
// fuzz targets.
#pragma once

#include "icalendar/CalendarFile.h"
#include "platform/GuidSource.h"

#include <string>
#include <string_view>
#include <vector>

// The bytes after a load and a save; alarms get a fixed ID.
inline std::string SavedTextOf(std::string_view bytes)
{
    const ScopedGuidSource guid([] { return L"{00000000-0000-0000-0000-000000000001}"; });
    CCalendarFile file(L"", 0);
    file.LoadFromText(bytes);
    return file.SaveToText();
}

// The saved text with its lines unfolded and the quotes of an empty TZID, which grow with every
// save, brought down to two.
inline std::string WithoutGrowingQuotes(std::string_view text)
{
    const std::string_view fold = "\r\n ";
    std::string unfolded;
    for (std::size_t at = 0; at < text.size();)
    {
        const std::size_t end = text.find(fold, at);
        unfolded += text.substr(at, end - at);
        at = end == std::string_view::npos ? text.size() : end + fold.size();
    }
    const std::string_view parameter = ";TZID=\"\"";
    std::string result;
    for (std::size_t at = 0; at < unfolded.size();)
    {
        std::size_t end = unfolded.find(parameter, at);
        if (end == std::string::npos)
            end = unfolded.size();
        else
            end += parameter.size();
        result += unfolded.substr(at, end - at);
        at = end;
        while (at < unfolded.size() && unfolded[at] == '"')
            ++at;
    }
    return result;
}

// Whether a date is written in the digits that it is read from.
inline bool HasItsDigits(const SYSTEMTIME& time)
{
    return time.wYear <= 9999 && time.wYear != 100 && time.wMonth <= 99 && time.wDay <= 99 &&
           time.wHour <= 99 && time.wMinute <= 99 && time.wSecond <= 99;
}

// Whether the TZID comes back from between the quotes that it is written in.
inline bool FitsItsQuotes(std::wstring_view tzid)
{
    return tzid.find(L'"') == std::wstring::npos ||
           (tzid.find_first_not_of(L'"') == std::wstring::npos && tzid.size() % 2 == 0);
}

// Whether a save of the tree can be read back as it stands. Dates that are no dates may not, nor a
// TZID with quotes inside, nor an interval of 0, which is not written and comes back as 1.
inline bool SurvivesASave(const CVObject& root)
{
    std::vector<const CVObject*> nodes{&root};
    while (!nodes.empty())
    {
        const CVObject* node = nodes.back();
        nodes.pop_back();
        if (const auto* event = dynamic_cast<const CVEvent*>(node))
        {
            const EventView fields = event->Fields();
            if (!FitsItsQuotes(fields.tzid) || (fields.frequency != 0 && fields.interval == 0))
                return false;
            for (const SYSTEMTIME& time : {fields.stamp, fields.start, fields.end, fields.until})
            {
                if (!HasItsDigits(time))
                    return false;
            }
        }
        for (const CVObject* child = node->FirstChild(); child; child = child->NextSibling())
            nodes.push_back(child);
    }
    return true;
}
