#include "outlook/calendar/RecurrenceBlob.h"

#include "outlook/calendar/AppointmentZone.h"
#include "outlook/calendar/RecurrencePattern.h"
#include "platform/Bstr.h"
#include "service/TimeConversions.h"
#include "service/ZoneConversions.h"

namespace
{
// The text of a getter's result up to its first zero; empty where it is not exactly S_OK.
std::wstring_view TextWhere(HRESULT result, const Bstr& text)
{
    return result == S_OK && text ? std::wstring_view(text.Get()) : std::wstring_view();
}

std::optional<std::wstring> ZoneNameOf(INAppointment& appointment)
{
    Bstr name;
    if (FAILED(appointment.get_TimeZone(name.Put())) || !name)
        return std::nullopt;
    return TextOf(name.Get());
}
} // namespace

void ParseRecurrenceBlob(INAppointment& appointment, std::span<const std::byte> blob)
{
    Bstr subject;
    Bstr place;
    const HRESULT subjectResult = appointment.get_Subject(subject.Put());
    const HRESULT placeResult = appointment.get_Place(place.Put());
    _tagRecurringInfo record; // large, and all of it is written below
    const RecurrenceRead read = DecodeRecurrencePattern(
        blob, {TextWhere(subjectResult, subject), TextWhere(placeResult, place)}, GetACP(), record);
    if (read.status == CodecStatus::Ok)
        appointment.put_RecurringInfo(&record);
}

std::size_t BuildRecurrenceBlob(INAppointment& appointment,
                                const IZoneSource& zones,
                                std::vector<std::byte>& blob,
                                std::uint32_t& recurrenceType)
{
    blob.clear();
    recurrenceType = 0;
    _tagRecurringInfo record{};
    if (FAILED(appointment.get_RecurringInfo(&record)) || record.eRecurType == None)
        return 0;
    DATE startTime = 0.0;
    DATE endTime = 0.0;
    VARIANT_BOOL isAllDay = VARIANT_FALSE;
    if (FAILED(appointment.get_StartTime(&startTime)) ||
        FAILED(appointment.get_EndTime(&endTime)) || !(endTime > startTime) ||
        FAILED(appointment.get_AllDay(&isAllDay)))
        return 0;
    const TIME_ZONE_INFORMATION zone = ZoneOfRecurrence(ZoneNameOf(appointment), zones);
    const FirstInstance first{isAllDay ? startTime : UtcDateToLocalDate(startTime, &zone),
                              DateDiffMinutes(startTime, endTime)};
    if (EncodeRecurrencePattern(record, first, GetACP(), blob) != CodecStatus::Ok)
        return 0;
    recurrenceType = static_cast<std::uint32_t>(record.eRecurType);
    return blob.size();
}
