// The recurrence of an event as the contract's record tells it, and back. Portable.
//
// An event knows no exceptions, so the record's arrays stay empty in both directions. The record
// has 34,944 bytes, nearly all of them in those arrays; what is kept per item is its head.
#pragma once

#include "icalendar/VEvent.h"
#include "platform/ContractRecords.h"

#include <cstddef>
#include <type_traits>

// The fields of _tagRecurringInfo before its arrays, of the same layout.
struct RecurrenceHead
{
    _tagNAppointmentRecurringType eRecurType;
    _tagDailyInfo tDaily;
    _tagWeeklyInfo tWeekly;
    _tagMonthlyInfo tMonthly;
    _tagYearlyInfo tYearly;
    _tagEndInfo tEndInfo;
};
static_assert(std::is_trivially_copyable_v<RecurrenceHead>);
static_assert(offsetof(RecurrenceHead, tMonthly) == offsetof(_tagRecurringInfo, tMonthly));
static_assert(offsetof(RecurrenceHead, tEndInfo) == offsetof(_tagRecurringInfo, tEndInfo));
static_assert(sizeof(RecurrenceHead) == offsetof(_tagRecurringInfo, arrDeletedInstance));

// Replaces the head of a record; its arrays stay as they are.
void PutHead(const RecurrenceHead& head, _tagRecurringInfo& record);
RecurrenceHead HeadOf(const _tagRecurringInfo& record);

// All zero for an event without a frequency. Kept as it is: a weekly rule without weekdays gives no
// interval, and a yearly one loses its weekdays. Pinned by RecurrenceMappingTest.
RecurrenceHead RecurrenceFromEvent(const EventNumbers& event);

// Sets the fields that the record's kind and end name and leaves the others; an interval, month,
// day or ordinal of 0 leaves its field too. Nothing happens for a record of kind None.
void RecurrenceToEvent(const RecurrenceHead& head, EventNumbers& event);
