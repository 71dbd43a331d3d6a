#include "outlook/calendar/AppointmentReading.h"

#include "outlook/calendar/AppointmentColumns.h"
#include "outlook/calendar/AppointmentNames.h"
#include "outlook/calendar/AppointmentZone.h"
#include "outlook/calendar/RecurrenceBlob.h"
#include "outlook/store/MAPIHelper.h"
#include "outlook/store/MessageBody.h"
#include "outlook/store/ReadValues.h"
#include "outlook/store/StoreObjects.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "service/Log.h"

#include <optional>
#include <span>

using Microsoft::WRL::ComPtr;

namespace
{
// As the property counts; out of office is 3.
constexpr LONG kBusy = 2;
constexpr LONG kOutOfOffice = 3;

struct Target
{
    INEntityItem& item;
    INAppointment& appointment;
    const PropertyView& values;
    const AppointmentReading& reading;
    TIME_ZONE_INFORMATION zone;
};

std::optional<std::span<const std::byte>> BytesOf(const PropertyView& values, ULONG column)
{
    const SBinary* const value = values.Binary(column);
    if (!value)
        return std::nullopt;
    return std::as_bytes(std::span(value->lpb, value->cb));
}

TIME_ZONE_INFORMATION ZoneOf(const PropertyView& values, const AppointmentReading& reading)
{
    MessageZone zone;
    zone.structure = BytesOf(values, kColumnZoneStructure);
    if (reading.hasZoneDefinition)
        zone.definition = BytesOf(values, kColumnStartZone);
    return ZoneOfMessage(zone, reading.zoneTable, reading.zones);
}

// The message's own entry ID as text; empty where it cannot be read whole.
std::wstring PersistIdOf(IMAPIProp* object, CNProxcy& proxy)
{
    const auto message = QueryStore<IMessage>(object, IID_IMessage);
    if (!message)
        return {};
    constexpr ULONG kTags[] = {PR_ENTRYID, PR_MESSAGE_CLASS_W};
    const ReadValues values(*message.Get(), kTags, proxy);
    const SBinary* const entryID = values.View().Binary(0);
    // A warning counts as a failure here.
    if (values.Result() != S_OK || !entryID || !values.View().Find(1))
        return {};
    return CMAPIHelper::BinaryToHex(*entryID);
}

void PutText(Target& target, ULONG column, HRESULT (STDMETHODCALLTYPE INAppointment::*put)(BSTR))
{
    if (const wchar_t* const text = target.values.Text(column))
        (target.appointment.*put)(Bstr(text).Get());
}

void PutPersistId(Target& target)
{
    const std::wstring id = PersistIdOf(target.reading.message, target.reading.proxy);
    if (!id.empty())
        target.appointment.put_PersistID(Bstr(id).Get());
}

void PutLastModified(Target& target)
{
    if (const FILETIME* const time = target.values.Time(kColumnLastModified))
        target.item.put_LastModificationTime(CMAPIHelper::FileTimeToDate(*time));
}

void PutSubject(Target& target)
{
    PutText(target, kColumnSubject, &INAppointment::put_Subject);
}

void PutReminder(Target& target)
{
    const std::optional<LONG> minutes = target.values.Long(kColumnReminderMinutes);
    const bool isSet = target.values.Bool(kColumnReminderSet).value_or(0) != 0;
    target.appointment.put_Reminder(isSet && minutes ? static_cast<ULONG>(*minutes) : kNoReminder);
}

void PutPlace(Target& target)
{
    PutText(target, kColumnPlace, &INAppointment::put_Place);
}

// Exceptions take Subject and Place over, so those stand before this.
void PutRecurrence(Target& target)
{
    const auto blob = BytesOf(target.values, kColumnRecurrence);
    if (target.values.Bool(kColumnIsRecurring).value_or(0) != 0 && blob)
        ParseRecurrenceBlob(target.appointment, *blob);
}

void PutTimeZone(Target& target)
{
    const wchar_t* const description = target.values.Text(kColumnZoneDescription);
    target.appointment.put_TimeZone(Bstr(target.zone.StandardName).Get());
    LogPrintf(L"-------------------- pAppoinment->put_TimeZone(%s) dispidTimeZoneDesc:<%s>\r\n",
              target.zone.StandardName,
              description ? description : L"");
}

void PutTimes(Target& target)
{
    const std::optional<USHORT> isAllDay = target.values.Bool(kColumnIsAllDay);
    if (isAllDay)
        target.appointment.put_AllDay(static_cast<VARIANT_BOOL>(*isAllDay));
    const auto dateOf = [&](FILETIME utcTime) {
        return isAllDay.value_or(0) != 0
                   ? CMAPIHelper::UtcFileTimeToLocalDate(utcTime, &target.zone)
                   : CMAPIHelper::FileTimeToDate(utcTime);
    };
    if (const FILETIME* const start = target.values.Time(kColumnStart))
        target.appointment.put_StartTime(dateOf(*start));
    if (const FILETIME* const end = target.values.Time(kColumnEnd))
        target.appointment.put_EndTime(dateOf(*end));
}

// Kept as it is: a tentative appointment is not busy. Pinned by AppointmentReadingTest.
void PutIsBusy(Target& target)
{
    if (const std::optional<LONG> status = target.values.Long(kColumnBusyStatus))
        target.appointment.put_IsBusy(*status == kBusy || *status == kOutOfOffice ? -1 : 0);
}

void PutDescription(Target& target)
{
    if (target.values.Text(kColumnBody))
    {
        PutText(target, kColumnBody, &INAppointment::put_Description);
        return;
    }
    LogPrintf(L"Get Description(PR_BODY) Failed, Get from PR_RTF_COMPRESSED agian");
    const AppointmentReading& reading = target.reading;
    if (!reading.message)
        return;
    const std::wstring text = ReadRtfBody(reading.message, reading.proxy, reading.converter);
    if (!text.empty())
        target.appointment.put_Description(Bstr(text).Get());
}

// In this order.
constexpr void (*kPuts[])(Target&) = {PutPersistId,
                                      PutLastModified,
                                      PutSubject,
                                      PutReminder,
                                      PutPlace,
                                      PutRecurrence,
                                      PutTimeZone,
                                      PutTimes,
                                      PutIsBusy,
                                      PutDescription};
} // namespace

void FillAppointment(INEntityItem& item,
                     const PropertyView& values,
                     const AppointmentReading& reading)
{
    const ComPtr<INAppointment> appointment = QueryItem<INAppointment>(&item);
    if (!appointment)
        return;
    Target target{item, *appointment.Get(), values, reading, ZoneOf(values, reading)};
    for (const auto put : kPuts)
        put(target);
}
