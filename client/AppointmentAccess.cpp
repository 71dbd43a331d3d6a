#include "client/AppointmentAccess.h"

#include "client/PropertyAccess.h"
#include "client/SystemZone.h"

#include <memory>

namespace pim
{
namespace
{
std::optional<bool> GetFlag(INAppointment* item,
                            HRESULT (STDMETHODCALLTYPE INAppointment::*get)(VARIANT_BOOL*))
{
    const auto flag = GetValue(item, get);
    return flag ? std::optional(*flag != 0) : std::nullopt;
}

std::optional<Recurrence> GetRecurrence(INAppointment* item)
{
    // The record is too large for the stack of a deep call.
    const auto record = std::make_unique<_tagRecurringInfo>();
    const HRESULT result = item->get_RecurringInfo(record.get());
    CheckServerIsThere(result);
    if (FAILED(result))
        return std::nullopt;
    return ReadRecurrence(*record);
}

using PutText = HRESULT (STDMETHODCALLTYPE INAppointment::*)(BSTR);

void PutTextChange(INAppointment* item,
                   PutText put,
                   const wchar_t* field,
                   const std::optional<std::wstring>& before,
                   const std::optional<std::wstring>& wanted)
{
    if (wanted == before || !wanted)
        return;
    const Bstr text(*wanted);
    CheckPut((item->*put)(text.Get()), field);
}
} // namespace

Appointment ReadAppointment(INAppointment* item, ReadFields fields)
{
    Appointment values;
    const auto entity = EntityOf(item);
    if (entity)
        values.id = GetText(entity.Get(), &INEntityItem::get_EntityID);
    values.subject = GetText(item, &INAppointment::get_Subject);
    values.place = GetText(item, &INAppointment::get_Place);
    values.start = GetValue(item, &INAppointment::get_StartTime);
    values.end = GetValue(item, &INAppointment::get_EndTime);
    values.allDay = GetFlag(item, &INAppointment::get_AllDay);
    values.recurrence = GetRecurrence(item);
    if (values.recurrence && values.start)
        TakeMonthFromStart(*values.recurrence, *values.start);
    if (fields == ReadFields::ForTable)
        return values;

    values.description = GetText(item, &INAppointment::get_Description);
    values.timeZone = GetText(item, &INAppointment::get_TimeZone);
    if (values.timeZone)
        values.timeZoneDisplay = ZoneDisplay(*values.timeZone);
    values.persistId = GetText(item, &INAppointment::get_PersistID);
    values.busy = GetFlag(item, &INAppointment::get_IsBusy);
    if (const auto minutes = GetValue(item, &INAppointment::get_Reminder))
        values.reminderMinutes = static_cast<std::uint32_t>(*minutes);
    if (entity)
    {
        values.folderId = GetText(entity.Get(), &INEntityItem::get_FolderID);
        values.modifiedUtc = GetValue(entity.Get(), &INEntityItem::get_LastModificationTime);
    }
    return values;
}

void PutChanges(INAppointment* item, const Appointment& before, const Appointment& wanted)
{
    PutTextChange(item, &INAppointment::put_Subject, L"subject", before.subject, wanted.subject);
    PutTextChange(item, &INAppointment::put_Place, L"place", before.place, wanted.place);
    PutTextChange(item,
                  &INAppointment::put_Description,
                  L"description",
                  before.description,
                  wanted.description);
    if (wanted.start && wanted.start != before.start)
        CheckPut(item->put_StartTime(*wanted.start), L"start");
    if (wanted.end && wanted.end != before.end)
        CheckPut(item->put_EndTime(*wanted.end), L"end");
    if (wanted.allDay && wanted.allDay != before.allDay)
        CheckPut(item->put_AllDay(*wanted.allDay ? VARIANT_TRUE : VARIANT_FALSE), L"all-day mark");
    if (wanted.reminderMinutes && wanted.reminderMinutes != before.reminderMinutes)
        CheckPut(item->put_Reminder(*wanted.reminderMinutes), L"reminder");
    if (wanted.recurrence && wanted.recurrence != before.recurrence)
    {
        const auto record = std::make_unique<_tagRecurringInfo>();
        WriteRecurrence(*wanted.recurrence, *record);
        CheckPut(item->put_RecurringInfo(record.get()), L"recurrence");
    }
}
} // namespace pim
