// Any bytes are read as an .ics file without a crash, into a bounded text; what a load and a save
// keep is what a second load and save keep. The IDs of alarms and the quotes of an empty TZID
// aside, and dates that are no dates and quotes inside a TZID, which do not come back as they are
// written.
#include "icalendar/AppointmentMapping.h"
#include "tests/icalendar/SavedText.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The most that a byte can become: an empty line opens or closes a component.
    constexpr std::size_t kMostPerByte = 400;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);

    CCalendarFile file(L"", 0);
    file.LoadFromText(bytes);
    std::vector<CVEvent*> events;
    file.Events().Snapshot(events);
    for (CVEvent* event : events)
    {
        if (!file.Events().Find(event->Id()))
            std::abort();
        const AppointmentView values = AppointmentFromEvent(file, *event);
        if (values.entityId != event->Id())
            std::abort();
    }

    const std::string once = SavedTextOf(bytes);
    if (once.size() > kMostPerByte * (size + 1))
        std::abort();
    if (SurvivesASave(file) &&
        WithoutGrowingQuotes(SavedTextOf(once)) != WithoutGrowingQuotes(once))
        std::abort();
    return 0;
}
