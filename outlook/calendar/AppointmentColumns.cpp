#include "outlook/calendar/AppointmentColumns.h"

#include "outlook/calendar/AppointmentNames.h"
#include "outlook/store/NamedTags.h"

#include <iterator>

namespace
{
struct ColumnRow
{
    AppointmentColumn column;
    const GUID* set; // null: the number is the tag
    ULONG number;
};

// clang-format off
constexpr ColumnRow kColumns[] = {
    {kColumnLastModified,    nullptr,          PR_LAST_MODIFICATION_TIME},
    {kColumnSubject,         nullptr,          PR_SUBJECT_W},
    {kColumnReminderSet,     &kCommonNames,    0x8503},
    {kColumnReminderMinutes, &kCommonNames,    0x8501},
    {kColumnPlace,           &kAppointmentSet, 0x8208},
    {kColumnIsRecurring,     &kAppointmentSet, 0x8223},
    {kColumnRecurrence,      &kAppointmentSet, 0x8216},
    {kColumnZoneDescription, &kAppointmentSet, 0x8234},
    {kColumnStart,           &kAppointmentSet, 0x820D},
    {kColumnEnd,             &kAppointmentSet, 0x820E},
    {kColumnIsAllDay,        &kAppointmentSet, 0x8215},
    {kColumnBusyStatus,      &kAppointmentSet, 0x8205},
    {kColumnBody,            nullptr,          PR_BODY_W},
    {kColumnZoneStructure,   &kAppointmentSet, 0x8233},
    {kColumnStartZone,       &kAppointmentSet, 0x825E},
    {kColumnEndZone,         &kAppointmentSet, 0x825F},
};
// clang-format on
static_assert(std::size(kColumns) == kAppointmentColumns);

constexpr bool StandInOrder()
{
    for (std::size_t i = 0; i < std::size(kColumns); ++i)
        if (kColumns[i].column != i)
            return false;
    return true;
}
static_assert(StandInOrder());

// The names are looked up set by set, each set's in the order of the columns.
constexpr const GUID* kSets[] = {&kCommonNames, &kAppointmentSet};
} // namespace

AppointmentTags FindAppointmentTags(IMAPIProp& folder, CNProxcy& proxy)
{
    AppointmentTags result;
    for (const ColumnRow& row : kColumns)
        result.tags.push_back(row.number);
    for (const GUID* const set : kSets)
    {
        std::vector<LONG> numbers;
        for (const ColumnRow& row : kColumns)
            if (row.set == set)
                numbers.push_back(static_cast<LONG>(row.number));
        const std::vector<ULONG> found = FindNamedTags(folder, proxy, *set, numbers);
        auto tag = found.begin();
        for (const ColumnRow& row : kColumns)
            if (row.set == set)
                result.tags[row.column] = *tag++;
    }
    result.hasZoneDefinition =
        IsNamedTag(result.tags[kColumnStartZone]) && IsNamedTag(result.tags[kColumnEndZone]);
    if (!result.hasZoneDefinition)
        result.tags.resize(kColumnStartZone);
    return result;
}
