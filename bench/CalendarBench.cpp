// Reading and writing .ics files beside libical on the same bytes, in one run. Prints ratios; the
// first has a target: a file of 10,000 events to component tree and appointment values beside
// libical's parse of the same text.
#include "bench/Measure.h"
#include "bench/Results.h"
#include "icalendar/AppointmentMapping.h"
#include "icalendar/CalendarFile.h"
#include "platform/FileIo.h"
#include "platform/GuidSource.h"

#include <libical/ical.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace
{

constexpr int kEvents = 10'000;

constexpr const char* kHead = "BEGIN:VCALENDAR\r\n"
                              "VERSION:2.0\r\n"
                              "PRODID:-//Example Corp.//Bench//EN\r\n"
                              "CALSCALE:GREGORIAN\r\n"
                              "METHOD:PUBLISH\r\n"
                              "BEGIN:VTIMEZONE\r\n"
                              "TZID:W. Europe Standard Time\r\n"
                              "BEGIN:STANDARD\r\n"
                              "DTSTART:20000101T000000\r\n"
                              "TZNAME:W. Europe Standard Time\r\n"
                              "TZOFFSETFROM:+0200\r\n"
                              "TZOFFSETTO:+0100\r\n"
                              "END:STANDARD\r\n"
                              "END:VTIMEZONE\r\n";

std::string EventText(int number)
{
    char id[32];
    std::snprintf(id, sizeof(id), "%012d", number);
    std::string text = "BEGIN:VEVENT\r\n"
                       "DESCRIPTION:A text that is folded once, as texts of some length are in "
                       "f\r\n iles from any writer\\, with an escape\r\n"
                       "DTSTAMP:20060501T120000Z\r\n"
                       "DTSTART;TZID=\"W. Europe Standard Time\":20060508T101500\r\n"
                       "DTEND;TZID=\"W. Europe Standard Time\":20060508T111500\r\n"
                       "SUMMARY:Caf\xC3\xA9 with number ";
    text += id;
    text += "\r\nLOCATION:Room 5\r\nUID:{A6B1C4F0-0000-4000-8000-";
    text += id;
    text += "}\r\n";
    if (number % 4 == 0)
        text += "RRULE:FREQ=WEEKLY;BYDAY=MO,WE;INTERVAL=1;COUNT=10\r\n";
    if (number % 2 == 0)
        text += "BEGIN:VALARM\r\nACTION:DISPLAY\r\nDESCRIPTION:Reminder\r\nTRIGGER:-PT15M\r\n"
                "END:VALARM\r\n";
    return text + "END:VEVENT\r\n";
}

// The peer's own work may not be optimised away, nor a failure of either side go unseen.
void Require(bool condition, const char* what)
{
    if (condition)
        return;
    std::fprintf(stderr, "bench: %s\n", what);
    std::exit(1);
}

void ReadHere(const std::string& text, int events)
{
    CCalendarFile file(L"", 0);
    file.LoadFromText(text);
    std::vector<CVEvent*> list;
    file.Events().Snapshot(list);
    Require(list.size() == static_cast<std::size_t>(events), "events were lost here");
    // One after the other, as the calendar takes them.
    DATE latest = 0.0;
    for (const CVEvent* event : list)
        latest = std::max(latest, AppointmentFromEvent(file, *event).startTime.value_or(0.0));
    Require(latest > 38845.0, "the starts were lost here");
}

void ReadThere(const std::string& text, int events)
{
    icalcomponent* calendar = icalparser_parse_string(text.c_str());
    Require(calendar && icalcomponent_count_components(calendar, ICAL_VEVENT_COMPONENT) == events,
            "events were lost in libical");
    icalcomponent_free(calendar);
}

void BenchTexts(const std::string& text)
{
    const Timings reading =
        MeasureBeside([&] { ReadHere(text, kEvents); }, [&] { ReadThere(text, kEvents); });
    PrintBeside("read 10,000 events, one text", "libical, parse only", reading);
    PrintTarget(
        "reading a calendar text of 10,000 events into appointment values, times as fast as "
        "libical parses it",
        reading.TimesAsFast(),
        "x",
        {Bound::AtLeast, 5.0});

    CCalendarFile file(L"", 0);
    file.LoadFromText(text);
    icalcomponent* calendar = icalparser_parse_string(text.c_str());
    PrintBeside("write 10,000 events, one text",
                "libical",
                MeasureBeside([&] { Require(!file.SaveToText().empty(), "nothing was saved"); },
                              [&] {
                                  char* written = icalcomponent_as_ical_string_r(calendar);
                                  Require(written, "libical wrote nothing");
                                  icalmemory_free_buffer(written);
                              }));
    icalcomponent_free(calendar);
}

void BenchFiles(const std::string& oneText)
{
    namespace fs = std::filesystem;
    const fs::path folder = fs::temp_directory_path() / NewGuidText();
    fs::create_directory(folder);
    std::vector<std::wstring> paths;
    std::vector<std::string> texts;
    for (int i = 0; i < kEvents; ++i)
    {
        paths.push_back((folder / (std::to_string(i) + ".ics")).wstring());
        texts.push_back(kHead + EventText(i) + "END:VCALENDAR\r\n");
        Require(SaveWholeFile(paths.back(), texts.back()), "a file was not written");
    }

    PrintBeside("read 10,000 texts of one event",
                "libical, parse only",
                MeasureBeside(
                    [&] {
                        for (const std::string& text : texts)
                            ReadHere(text, 1);
                    },
                    [&] {
                        for (const std::string& text : texts)
                            ReadThere(text, 1);
                    }));
    PrintBeside("load 10,000 files of one event",
                "bytes of those files",
                MeasureBeside(
                    [&] {
                        for (const std::wstring& path : paths)
                        {
                            CCalendarFile file(path, 0);
                            Require(file.Load() == 1, "a file was not loaded");
                        }
                    },
                    [&] {
                        for (const std::wstring& path : paths)
                        {
                            std::string bytes;
                            Require(ReadWholeFile(path, bytes), "a file was not read");
                        }
                    }));

    const std::wstring large = (folder / "large.ics").wstring();
    CCalendarFile file(large, 0);
    file.LoadFromText(oneText);
    const std::string bytes = file.SaveToText();
    PrintBeside(
        "save a file of 10,000 events",
        "bytes of that file",
        MeasureBeside([&] { Require(file.Save() == 1, "the file was not saved"); },
                      [&] { Require(SaveWholeFile(large, bytes), "the bytes were not saved"); }));
    fs::remove_all(folder);
}

} // namespace

int main()
{
    std::string text = kHead;
    for (int i = 0; i < kEvents; ++i)
        text += EventText(i);
    text += "END:VCALENDAR\r\n";
    std::printf("one text: %.1f MB\n", static_cast<double>(text.size()) / 1e6);
    BenchTexts(text);
    BenchFiles(text);
}
