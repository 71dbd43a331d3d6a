// The lists of items that the automation contract has, for ItemCollection.
#pragma once

#include "client/ItemCollection.h"

namespace pim
{
struct AppointmentKind
{
    using Collection = INCalendar;
    using Item = INAppointment;
    static constexpr ItemWords kWords = {
        L"appointment", L"an appointment", L"appointments", L"calendar"};
    static constexpr const wchar_t* kCommand = L"calendar";
    static constexpr auto kReset = &INCalendar::Reset;
    static constexpr auto kNext = &INCalendar::GetNextAppointment;
    static constexpr auto kById = &INCalendar::GetAppointmentByID;
    static constexpr auto kAdd = &INCalendar::AddAppointment;
    static constexpr auto kUpdate = &INCalendar::UpdateAppointment;
    static constexpr auto kDelete = &INCalendar::DeleteAppointment;
    static const CLSID& ItemClass() { return CLSID_NAppointment; }
    // Of the running service: null where its provider has none.
    static HRESULT Open(INPersonalInformationService* service, Collection** items)
    {
        return service->GetCalendar(items);
    }
};

struct ContactKind
{
    using Collection = INAddressBook;
    using Item = INContactItem;
    static constexpr ItemWords kWords = {L"contact", L"a contact", L"contacts", L"contacts"};
    static constexpr const wchar_t* kCommand = L"contacts";
    static constexpr auto kReset = &INAddressBook::ResetItem;
    static constexpr auto kNext = &INAddressBook::GetNextItem;
    static constexpr auto kById = &INAddressBook::GetItemByID;
    static constexpr auto kAdd = &INAddressBook::AddItem;
    static constexpr auto kUpdate = &INAddressBook::UpdateItem;
    static constexpr auto kDelete = &INAddressBook::DeleteItem;
    static const CLSID& ItemClass() { return CLSID_NContactItem; }
    // Of the running service: null where its provider has none.
    static HRESULT Open(INPersonalInformationService* service, Collection** items)
    {
        return service->GetAddressBook(items);
    }
};

// What the lists behind an enumerator share.
struct EnumeratedKind
{
    using Collection = INEnumerator;
    using Item = INEntityItem;
    static constexpr auto kReset = &INEnumerator::ResetItem;
    static constexpr auto kNext = &INEnumerator::GetNextItem;
    static constexpr auto kById = &INEnumerator::GetItemByID;
    static constexpr auto kAdd = &INEnumerator::AddItem;
    static constexpr auto kUpdate = &INEnumerator::UpdateItem;
    static constexpr auto kDelete = &INEnumerator::DeleteItem;
};

struct GroupKind : EnumeratedKind
{
    static constexpr ItemWords kWords = {L"group", L"a group", L"groups", L"groups"};
    static constexpr const wchar_t* kCommand = L"groups";
    static const CLSID& ItemClass() { return CLSID_NContactGroup; }
    // Of the running service: null where its provider has none.
    static HRESULT Open(INPersonalInformationService* service, Collection** items)
    {
        return service->GetEnumerator(ContactGroup, items);
    }
};

struct CategoryKind : EnumeratedKind
{
    static constexpr ItemWords kWords = {L"category", L"a category", L"categories", L"categories"};
    static constexpr const wchar_t* kCommand = L"categories";
    static const CLSID& ItemClass() { return CLSID_NContactCategory; }
    // Of the running service: null where its provider has none.
    static HRESULT Open(INPersonalInformationService* service, Collection** items)
    {
        return service->GetEnumerator(ContactCategory, items);
    }
};
} // namespace pim
