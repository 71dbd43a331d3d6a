// The recurrence of an appointment as mail stores keep it: the blob that [MS-OXOCAL] publishes as
// AppointmentRecurrencePattern, and the contract's record. Portable.
//
// The two functions are not inverses. The reader takes what the record can hold and skips the rest;
// the writer makes one restricted shape of the format. Where they disagree, and the format itself,
// stand in docs/formats/recurrence_blob.md.
// Assumes: times in a blob are minutes since 1601-01-01 00:00 in the appointment's own zone. Code
// pages are ANSI code pages, whose lower half is ASCII.
#pragma once

#include "platform/CodecStatus.h"
#include "platform/ContractRecords.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <vector>

// What an exception takes over that overrides neither.
struct AppointmentTexts
{
    std::wstring_view subject;
    std::wstring_view place;
};

struct RecurrenceRead
{
    CodecStatus status = CodecStatus::Ok;
    // Bytes read; where the blob was refused, where it ended too early.
    std::size_t offset = 0;
    // Exception records that were there whole.
    std::size_t exceptions = 0;
};

// Fills the record, padding included. Neither versions nor reserved fields are looked at, and bytes
// behind the last exception record are left alone.
// Limits:  dates beyond the record's 64 and 32 are dropped, texts are cut at 259 units.
// Returns: Truncated, and a record of zeros, for a blob that ends before the end of its EndDate.
//          Exception records that run past the end, as they do behind an override that the reader
//          does not know, end the exceptions: that one and those behind it keep their date alone.
// Throws std::bad_alloc.
[[nodiscard]] RecurrenceRead DecodeRecurrencePattern(std::span<const std::byte> blob,
                                                     const AppointmentTexts& texts,
                                                     unsigned codePage,
                                                     _tagRecurringInfo& record);

// The first instance of a recurring appointment.
struct FirstInstance
{
    DATE localStart = 0.0;
    int durationMinutes = 0;
};

// Replaces the blob.
// Limits:  as many exceptions as the record holds, with texts of up to 259 units; some 50 KiB.
// Returns: Unsupported for a record of no known kind; Inconsistent for an interval of 0, also after
//          the minutes of it are cut to 32 bits, and for a weekly rule that ends by a count and has
//          no weekday. The blob is empty then. A yearly rule may have an interval of 0.
// Throws std::bad_alloc.
[[nodiscard]] CodecStatus EncodeRecurrencePattern(const _tagRecurringInfo& record,
                                                  const FirstInstance& first,
                                                  unsigned codePage,
                                                  std::vector<std::byte>& blob);
