#include "automation/Appointment.h"

#include "automation/PropertyForms.h"

#include <cstdint>
#include <cstring>

namespace
{
// The length of the record without the zeros at its end, in whole blocks.
std::size_t UsedBytes(const _tagRecurringInfo& record) noexcept
{
    constexpr std::size_t kBlockBytes = 64;
    static_assert(sizeof(record) % kBlockBytes == 0);
    const auto* bytes = reinterpret_cast<const unsigned char*>(&record);
    std::size_t used = sizeof(record);
    while (used > 0)
    {
        // Without a branch per word, since this runs over the whole record for every appointment.
        std::uint64_t any = 0;
        for (std::size_t at = used - kBlockBytes; at < used; at += sizeof(any))
        {
            std::uint64_t word = 0;
            std::memcpy(&word, bytes + at, sizeof(word));
            any |= word;
        }
        if (any)
            break;
        used -= kBlockBytes;
    }
    return used;
}
} // namespace

STDMETHODIMP CNAppointment::get_Subject(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_subject, pVal); });
}

STDMETHODIMP CNAppointment::put_Subject(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_subject, newVal); });
}

STDMETHODIMP CNAppointment::get_Place(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_place, pVal); });
}

STDMETHODIMP CNAppointment::put_Place(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_place, newVal); });
}

STDMETHODIMP CNAppointment::get_TimeZone(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_timeZone, pVal); });
}

STDMETHODIMP CNAppointment::put_TimeZone(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_timeZone, newVal); });
}

STDMETHODIMP CNAppointment::get_StartTime(DATE* pVal)
{
    return Guard(this, [&] { return GetValue(m_startTime, pVal); });
}

STDMETHODIMP CNAppointment::put_StartTime(DATE newVal)
{
    return Guard(this, [&] { return PutValue(m_startTime, newVal); });
}

STDMETHODIMP CNAppointment::get_EndTime(DATE* pVal)
{
    return Guard(this, [&] { return GetValue(m_endTime, pVal); });
}

STDMETHODIMP CNAppointment::put_EndTime(DATE newVal)
{
    return Guard(this, [&] { return PutValue(m_endTime, newVal); });
}

STDMETHODIMP CNAppointment::get_Reminder(ULONG* pVal)
{
    return Guard(this, [&] { return GetValue(m_reminder, pVal); });
}

STDMETHODIMP CNAppointment::put_Reminder(ULONG newVal)
{
    return Guard(this, [&] { return PutValue(m_reminder, newVal); });
}

STDMETHODIMP CNAppointment::get_Description(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_description, pVal); });
}

STDMETHODIMP CNAppointment::put_Description(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_description, newVal); });
}

STDMETHODIMP CNAppointment::get_PersistID(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_persistID, pVal); });
}

STDMETHODIMP CNAppointment::put_PersistID(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_persistID, newVal); });
}

STDMETHODIMP CNAppointment::get_AllDay(VARIANT_BOOL* pbVal)
{
    return Guard(this, [&] { return GetValue(m_allDay, pbVal); });
}

STDMETHODIMP CNAppointment::put_AllDay(VARIANT_BOOL newVal)
{
    return Guard(this, [&] { return PutValue(m_allDay, newVal); });
}

STDMETHODIMP CNAppointment::get_IsBusy(VARIANT_BOOL* pbVal)
{
    return Guard(this, [&] { return GetValue(m_isBusy, pbVal); });
}

STDMETHODIMP CNAppointment::put_IsBusy(VARIANT_BOOL newVal)
{
    return Guard(this, [&] { return PutValue(m_isBusy, newVal); });
}

STDMETHODIMP CNAppointment::get_EntityID(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_entityID, pVal); });
}

STDMETHODIMP CNAppointment::put_EntityID(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_entityID, newVal); });
}

STDMETHODIMP CNAppointment::get_LastModificationTime(DATE* pVal)
{
    return Guard(this, [&] { return GetValue(m_lastModificationTime, pVal); });
}

STDMETHODIMP CNAppointment::put_LastModificationTime(DATE newVal)
{
    return Guard(this, [&] { return PutValue(m_lastModificationTime, newVal); });
}

STDMETHODIMP CNAppointment::get_FolderID(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_folderID, pVal); });
}

STDMETHODIMP CNAppointment::put_FolderID(BSTR newVal)
{
    return Guard(this, [&] { return PutOrClearText(m_folderID, newVal); });
}

STDMETHODIMP CNAppointment::get_RecurringInfo(_tagRecurringInfo* pVal)
{
    return Guard(this, [&] {
        if (!pVal)
            return E_POINTER;
        const std::size_t used = m_recurringInfo.size();
        auto* const bytes = reinterpret_cast<unsigned char*>(pVal);
        if (used > 0)
            std::memcpy(bytes, m_recurringInfo.data(), used);
        std::memset(bytes + used, 0, sizeof(*pVal) - used);
        return S_OK;
    });
}

STDMETHODIMP CNAppointment::put_RecurringInfo(_tagRecurringInfo* newVal)
{
    return Guard(this, [&] {
        if (!newVal)
            return E_POINTER;
        const auto* const bytes = reinterpret_cast<const unsigned char*>(newVal);
        m_recurringInfo = std::vector<unsigned char>(bytes, bytes + UsedBytes(*newVal));
        return S_OK;
    });
}
