#include "outlook/calendar/AppointmentWriting.h"

#include "outlook/calendar/AppointmentNames.h"
#include "outlook/calendar/AppointmentZone.h"
#include "outlook/calendar/RecurrenceBlob.h"
#include "outlook/store/MAPIHelper.h"
#include "outlook/store/NamedTags.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "service/Log.h"
#include "service/TimeConversions.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr ULONG kIconIndex = 0x10800003; // PR_ICON_INDEX
constexpr USHORT kTrue = 0xFFFF;         // what stores keep for true; a few properties have 1

// The names of each set, in the order in which they are looked up.
constexpr LONG kAppointmentNumbers[] = {0x8205,  // busy status
                                        0x8208,  // location
                                        0x8216,  // recurrence
                                        0x8223,  // whether it recurs
                                        0x8231,  // type of the recurrence
                                        0x8233,  // zone structure
                                        0x8215,  // whether it is all-day
                                        0x820D,  // start
                                        0x8235,  // clip start
                                        0x820E,  // end
                                        0x8236,  // clip end
                                        0x8213,  // duration
                                        0x8234}; // zone description
constexpr LONG kCommonNumbers[] = {0x8516,       // common start
                                   0x8517,       // common end
                                   0x8510,       // side effects
                                   0x8503,       // whether there is a reminder
                                   0x8501,       // its minutes
                                   0x8502,       // its time
                                   0x851C,       // its override
                                   0x851E,       // whether it plays a sound
                                   0x851F};      // its sound

struct NamedSet
{
    const GUID* set;
    std::span<const LONG> numbers;
};

constexpr NamedSet kSets[] = {{&kAppointmentSet, kAppointmentNumbers},
                              {&kCommonNames, kCommonNumbers}};

// A text of the item; nothing where it cannot be read or is null.
using TextGetter = HRESULT (STDMETHODCALLTYPE INAppointment::*)(BSTR*);
std::optional<std::wstring> ReadText(INAppointment& appointment, TextGetter get)
{
    Bstr text;
    if (FAILED((appointment.*get)(text.Put())) || !text)
        return std::nullopt;
    return TextOf(text.Get());
}

template <typename T>
std::optional<T> ReadNumber(INAppointment& appointment,
                            HRESULT (STDMETHODCALLTYPE INAppointment::*get)(T*))
{
    T number{};
    if (FAILED((appointment.*get)(&number)))
        return std::nullopt;
    return number;
}

struct Recurrence
{
    std::vector<std::byte> blob; // empty for a single appointment
    std::uint32_t type = 0;
};

// One write: the item's properties, read where the first row needs them, and the values so far.
class Writer
{
  public:
    Writer(INAppointment& item, IMAPIProp& folder, CNProxcy& proxy, const IZoneSource& source)
        : appointment(item), zones(source)
    {
        for (std::size_t i = 0; i < std::size(kSets); ++i)
            m_tags[i] = FindNamedTags(folder, proxy, *kSets[i].set, kSets[i].numbers);
    }

    INAppointment& appointment;
    const IZoneSource& zones;
    PropertyArray values;

    // The tag that the store has for a name.
    ULONG TagOf(const GUID& set, LONG number) const
    {
        for (std::size_t i = 0; i < std::size(kSets); ++i)
        {
            const std::span<const LONG> numbers = kSets[i].numbers;
            const auto found = std::ranges::find(numbers, number);
            if (kSets[i].set == &set && found != numbers.end())
                return m_tags[i][static_cast<std::size_t>(found - numbers.begin())];
        }
        return kUnknownNameTag;
    }
    bool HasRecurrenceNames() const
    {
        return IsNamedTag(TagOf(kAppointmentSet, 0x8216)) &&
               IsNamedTag(TagOf(kAppointmentSet, 0x8231));
    }

    const Recurrence& GetRecurrence()
    {
        if (!m_recurrence)
        {
            m_recurrence.emplace();
            BuildRecurrenceBlob(appointment, zones, m_recurrence->blob, m_recurrence->type);
        }
        return *m_recurrence;
    }
    bool IsRecurring() { return !GetRecurrence().blob.empty(); }

    struct Times
    {
        std::optional<VARIANT_BOOL> isAllDay;
        std::optional<DATE> start; // UTC; local for an all-day appointment
        std::optional<DATE> end;
        FILETIME utcStart = {};
        FILETIME utcEnd = {};
    };
    const Times& GetTimes()
    {
        if (!m_times)
            m_times = ReadTimes();
        return *m_times;
    }

    // Minutes before the start; nothing where there is no reminder.
    std::optional<ULONG> GetReminder()
    {
        if (!m_isReminderRead)
            m_reminder = ReadNumber(appointment, &INAppointment::get_Reminder);
        m_isReminderRead = true;
        return m_reminder == kNoReminder ? std::nullopt : m_reminder;
    }

  private:
    Times ReadTimes()
    {
        Times times;
        times.isAllDay = ReadNumber(appointment, &INAppointment::get_AllDay);
        times.start = ReadNumber(appointment, &INAppointment::get_StartTime);
        times.end = ReadNumber(appointment, &INAppointment::get_EndTime);
        const bool isLocal = times.isAllDay.value_or(0) != 0;
        const TIME_ZONE_INFORMATION machine = isLocal ? zones.Machine() : TIME_ZONE_INFORMATION{};
        const auto utcOf = [&](DATE date) {
            // Kept as it is: the machine's zone, not the one that the appointment names. Pinned by
            // AppointmentWritingTest.
            return isLocal ? CMAPIHelper::LocalDateToUtcFileTime(date, &machine)
                           : CMAPIHelper::DateToFileTime(date);
        };
        times.utcStart = utcOf(times.start.value_or(0.0));
        times.utcEnd = utcOf(times.end.value_or(0.0));
        return times;
    }

    std::vector<ULONG> m_tags[std::size(kSets)];
    std::optional<Recurrence> m_recurrence;
    std::optional<Times> m_times;
    std::optional<ULONG> m_reminder;
    bool m_isReminderRead = false;
};

// --- What each row adds -------------------------------------------------------------------------

template <LONG Number> void AddFixedLong(Writer& writer, ULONG tag)
{
    writer.values.AddLong(tag, Number);
}

template <USHORT Truth> void AddFixedBool(Writer& writer, ULONG tag)
{
    writer.values.AddBool(tag, Truth);
}

void AddClass(Writer& writer, ULONG tag)
{
    writer.values.AddText(tag, kAppointmentClass);
}

void AddSubject(Writer& writer, ULONG tag)
{
    writer.values.AddText(
        tag, ReadText(writer.appointment, &INAppointment::get_Subject).value_or(std::wstring()));
}

void AddBody(Writer& writer, ULONG tag)
{
    if (const auto text = ReadText(writer.appointment, &INAppointment::get_Description))
        writer.values.AddText(tag, *text);
}

void AddBusyStatus(Writer& writer, ULONG tag)
{
    const auto isBusy = ReadNumber(writer.appointment, &INAppointment::get_IsBusy);
    writer.values.AddLong(tag, isBusy.value_or(0) != 0 ? 2 : 0);
}

void AddPlace(Writer& writer, ULONG tag)
{
    const std::optional<std::wstring> text =
        ReadText(writer.appointment, &INAppointment::get_Place);
    writer.values.AddText(tag, IsNamedTag(tag) && text ? *text : std::wstring());
}

void AddRecurrence(Writer& writer, ULONG tag)
{
    const std::vector<std::byte>& blob = writer.GetRecurrence().blob;
    if (writer.HasRecurrenceNames() && !blob.empty())
        writer.values.AddBinary(tag,
                                {reinterpret_cast<const std::uint8_t*>(blob.data()), blob.size()});
}

void AddRecurrenceType(Writer& writer, ULONG tag)
{
    if (writer.HasRecurrenceNames())
        writer.values.AddLong(tag, static_cast<LONG>(writer.GetRecurrence().type));
}

// Kept as it is: these two tell a recurrence also where the store has no name for it. Pinned by
// AppointmentWritingTest.
void AddIsRecurring(Writer& writer, ULONG tag)
{
    writer.values.AddBool(tag, writer.IsRecurring() ? kTrue : 0);
}

void AddIcon(Writer& writer, ULONG tag)
{
    writer.values.AddLong(tag, writer.IsRecurring() ? 0x401 : 0x400);
}

void AddZoneStructure(Writer& writer, ULONG tag)
{
    const std::vector<std::byte> bytes = ZoneStructureBytes(
        ReadText(writer.appointment, &INAppointment::get_TimeZone), writer.zones);
    writer.values.AddBinary(tag,
                            {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
}

void AddIsAllDay(Writer& writer, ULONG tag)
{
    if (const auto isAllDay = writer.GetTimes().isAllDay)
        writer.values.AddBool(tag, *isAllDay != 0 ? 1 : 0);
}

void AddStart(Writer& writer, ULONG tag)
{
    if (writer.GetTimes().start)
        writer.values.AddTime(tag, writer.GetTimes().utcStart);
}

void AddEnd(Writer& writer, ULONG tag)
{
    if (writer.GetTimes().end)
        writer.values.AddTime(tag, writer.GetTimes().utcEnd);
}

void AddDuration(Writer& writer, ULONG tag)
{
    const Writer::Times& times = writer.GetTimes();
    writer.values.AddLong(tag, DateDiffMinutes(times.start.value_or(0.0), times.end.value_or(0.0)));
}

// What people call the zone, else its name.
void AddZoneDescription(Writer& writer, ULONG tag)
{
    std::wstring text;
    if (IsNamedTag(tag))
    {
        const auto name = ReadText(writer.appointment, &INAppointment::get_TimeZone);
        text = name ? writer.zones.Display(*name) : std::wstring();
        if (name && text.empty())
            text = *name;
    }
    writer.values.AddText(tag, text);
}

void AddReminderSet(Writer& writer, ULONG tag)
{
    writer.values.AddBool(tag, writer.GetReminder() ? 1 : 0);
}

void AddReminderMinutes(Writer& writer, ULONG tag)
{
    writer.values.AddLong(tag, static_cast<LONG>(writer.GetReminder().value_or(0)));
}

// Kept as it is: the start as it stands, also of an all-day appointment, where it is local. Pinned
// by AppointmentWritingTest.
void AddReminderTime(Writer& writer, ULONG tag)
{
    if (!writer.GetReminder())
        writer.values.AddTime(tag, {});
    else if (const auto start = ReadNumber(writer.appointment, &INAppointment::get_StartTime))
        writer.values.AddTime(tag, CMAPIHelper::DateToFileTime(*start));
}

void AddReminderSound(Writer& writer, ULONG tag)
{
    writer.values.AddText(tag, L"Reminder.wav");
}

// --- The rows -----------------------------------------------------------------------------------

enum class Where
{
    Always, // also where the store does not know the name; the ID is 0 then
    Known
};

struct Row
{
    const GUID* set; // null: the number is the tag
    ULONG number;
    ULONG type;
    Where where;
    void (*add)(Writer&, ULONG tag);
};

// clang-format off
constexpr Row kRows[] = {
    {nullptr,          PR_MESSAGE_CLASS_W,       PT_UNICODE, Where::Always, AddClass},
    {nullptr,          PR_SUBJECT_W,             PT_UNICODE, Where::Always, AddSubject},
    {nullptr,          PR_BODY_W,                PT_UNICODE, Where::Always, AddBody},
    {nullptr,          PR_IMPORTANCE,            PT_LONG,    Where::Always, AddFixedLong<1>},
    {nullptr,          PR_PRIORITY,              PT_LONG,    Where::Always, AddFixedLong<0>},
    {nullptr,          PR_SENSITIVITY,           PT_LONG,    Where::Always, AddFixedLong<0>},
    {nullptr,          PR_RESPONSE_REQUESTED,    PT_BOOLEAN, Where::Always, AddFixedBool<kTrue>},
    {nullptr,          PR_DELETE_AFTER_SUBMIT,   PT_BOOLEAN, Where::Always, AddFixedBool<0>},
    {&kAppointmentSet, 0x8205,                   PT_LONG,    Where::Known,  AddBusyStatus},
    {&kAppointmentSet, 0x8208,                   PT_UNICODE, Where::Always, AddPlace},
    {&kAppointmentSet, 0x8216,                   PT_BINARY,  Where::Known,  AddRecurrence},
    {&kAppointmentSet, 0x8231,                   PT_LONG,    Where::Known,  AddRecurrenceType},
    {&kAppointmentSet, 0x8223,                   PT_BOOLEAN, Where::Known,  AddIsRecurring},
    {nullptr,          kIconIndex,               PT_LONG,    Where::Always, AddIcon},
    {&kAppointmentSet, 0x8233,                   PT_BINARY,  Where::Known,  AddZoneStructure},
    {&kAppointmentSet, 0x8215,                   PT_BOOLEAN, Where::Known,  AddIsAllDay},
    {&kCommonNames,    0x8516,                   PT_SYSTIME, Where::Known,  AddStart},
    {&kAppointmentSet, 0x820D,                   PT_SYSTIME, Where::Known,  AddStart},
    {&kAppointmentSet, 0x8235,                   PT_SYSTIME, Where::Known,  AddStart},
    {&kCommonNames,    0x8517,                   PT_SYSTIME, Where::Known,  AddEnd},
    {&kAppointmentSet, 0x820E,                   PT_SYSTIME, Where::Known,  AddEnd},
    {&kAppointmentSet, 0x8236,                   PT_SYSTIME, Where::Known,  AddEnd},
    {&kAppointmentSet, 0x8213,                   PT_LONG,    Where::Known,  AddDuration},
    {&kAppointmentSet, 0x8234,                   PT_UNICODE, Where::Always, AddZoneDescription},
    {&kCommonNames,    0x8510,                   PT_LONG,    Where::Known,  AddFixedLong<0x171>},
    {&kCommonNames,    0x8503,                   PT_BOOLEAN, Where::Known,  AddReminderSet},
    {&kCommonNames,    0x8501,                   PT_LONG,    Where::Known,  AddReminderMinutes},
    {&kCommonNames,    0x8502,                   PT_SYSTIME, Where::Known,  AddReminderTime},
    {&kCommonNames,    0x851C,                   PT_BOOLEAN, Where::Known,  AddFixedBool<kTrue>},
    {&kCommonNames,    0x851E,                   PT_BOOLEAN, Where::Known,  AddFixedBool<kTrue>},
    {&kCommonNames,    0x851F,                   PT_UNICODE, Where::Known,  AddReminderSound},
};
// clang-format on
static_assert(std::size(kRows) == 31);

void AddRow(Writer& writer, const Row& row)
{
    const ULONG tag = row.set ? writer.TagOf(*row.set, static_cast<LONG>(row.number)) : row.number;
    const bool isKnown = !row.set || IsNamedTag(tag);
    if (isKnown)
        row.add(writer, CHANGE_PROP_TYPE(tag, row.type));
    else if (row.where == Where::Always)
        row.add(writer, PROP_TAG(row.type, 0));
}
} // namespace

PropertyArray ReadAppointment(INEntityItem& item,
                              IMAPIProp& folder,
                              CNProxcy& proxy,
                              const IZoneSource& zones)
{
    const ComPtr<INAppointment> appointment = QueryItem<INAppointment>(&item);
    if (!appointment)
        return {};
    Writer writer(*appointment.Get(), folder, proxy, zones);
    for (const Row& row : kRows)
        AddRow(writer, row);
    LogPrintf(L"========COutlookCalendarTable::ReadItem return PropertyValues [%d]\r\n",
              static_cast<int>(writer.values.Count()));
    return std::move(writer.values);
}
