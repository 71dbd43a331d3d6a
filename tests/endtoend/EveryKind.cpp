#include "endtoend/EveryKind.h"

#include "endtoend/CalendarClient.h"

#include <cmath>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr int kMinutesOfADay = 24 * 60;

template <typename Interface> ComPtr<Interface> Typed(INEntityItem& item)
{
    ComPtr<Interface> typed;
    EXPECT_EQ(
        S_OK,
        item.QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(typed.GetAddressOf())));
    return typed;
}

ItemValues ReadCategory(INEntityItem& item)
{
    const auto category = Typed<INContactCategory>(item);
    Bstr name;
    ItemValues values;
    EXPECT_EQ(S_OK, category->get_Name(name.Put()));
    EXPECT_EQ(S_OK, category->get_Color(&values.number));
    values.name = TextOf(name.Get());
    return values;
}

void WriteCategory(INEntityItem& item, const ItemValues& values)
{
    const auto category = Typed<INContactCategory>(item);
    EXPECT_EQ(S_OK, category->put_Name(Bstr(values.name).Get()));
    EXPECT_EQ(S_OK, category->put_Color(values.number));
}

ItemValues ReadGroup(INEntityItem& item)
{
    Bstr name;
    EXPECT_EQ(S_OK, Typed<INContactGroup>(item)->get_Name(name.Put()));
    return {TextOf(name.Get())};
}

void WriteGroup(INEntityItem& item, const ItemValues& values)
{
    EXPECT_EQ(S_OK, Typed<INContactGroup>(item)->put_Name(Bstr(values.name).Get()));
}

ItemValues ReadContact(INEntityItem& item)
{
    const auto contact = Typed<INContactItem>(item);
    Bstr name;
    Bstr phone;
    EXPECT_EQ(S_OK, contact->get_FirstName(name.Put()));
    EXPECT_EQ(S_OK, contact->get_PhoneNumber(Mobile, phone.Put()));
    return {TextOf(name.Get()), std::wcstol(TextOf(phone.Get()).c_str(), nullptr, 10)};
}

void WriteContact(INEntityItem& item, const ItemValues& values)
{
    const auto contact = Typed<INContactItem>(item);
    EXPECT_EQ(S_OK, contact->put_FirstName(Bstr(values.name).Get()));
    EXPECT_EQ(S_OK, contact->put_PhoneNumber(Mobile, Bstr(std::to_wstring(values.number)).Get()));
}

ItemValues ReadAppointment(INEntityItem& item)
{
    const auto appointment = Typed<INAppointment>(item);
    Bstr name;
    DATE start = 0.0;
    EXPECT_EQ(S_OK, appointment->get_Subject(name.Put()));
    EXPECT_EQ(S_OK, appointment->get_StartTime(&start));
    return {TextOf(name.Get()), std::lround((start - kFirstStart) * kMinutesOfADay)};
}

void WriteAppointment(INEntityItem& item, const ItemValues& values)
{
    const auto appointment = Typed<INAppointment>(item);
    const DATE start = kFirstStart + static_cast<DATE>(values.number) / kMinutesOfADay;
    EXPECT_EQ(S_OK, appointment->put_Subject(Bstr(values.name).Get()));
    EXPECT_EQ(S_OK, appointment->put_StartTime(start));
    EXPECT_EQ(S_OK, appointment->put_EndTime(start + 1.0 / 24));
}

} // namespace

const ItemType kCategoryItem = {
    CLSID_NContactCategory, NumberIs::StoredOnce, &ReadCategory, &WriteCategory};
const ItemType kGroupItem = {CLSID_NContactGroup, NumberIs::NotStored, &ReadGroup, &WriteGroup};
const ItemType kContactItem = {CLSID_NContactItem, NumberIs::Stored, &ReadContact, &WriteContact};
const ItemType kAppointmentItem = {
    CLSID_NAppointment, NumberIs::Stored, &ReadAppointment, &WriteAppointment};

namespace
{
// clang-format off
const Kind kKinds[] = {
    {"OutlookCategories",   kOutlook,        ContactCategory, kCategoryItem,    L"Work",    true,  false},
    {"OutlookGroups",       kOutlook,        ContactGroup,    kGroupItem,       L"Friends", false, false},
    {"OutlookContacts",     kOutlook,        AddressBook,     kContactItem,     L"Ann",     true,  false},
    {"OutlookAppointments", kOutlook,        Calendar,        kAppointmentItem, L"Review",  true,  false},
    {"ExpressContacts",     kOutlookExpress, AddressBook,     kContactItem,     L"Bea",     true,  false},
    {"WindowsMailContacts", kWindowsMail,    AddressBook,     kContactItem,     L"Bea",     true,  false},
    {"WindowsMailCalendar", kWindowsMail,    Calendar,        kAppointmentItem, L"Task 1",  true,  true},
};
// clang-format on
} // namespace

std::ostream& operator<<(std::ostream& out, const ItemValues& values)
{
    return out << testing::PrintToString(values.name) << ' ' << values.number;
}

std::ostream& operator<<(std::ostream& out, const Kind& kind)
{
    return out << kind.name;
}

std::span<const Kind> EveryKind()
{
    return kKinds;
}

const char kOneItemOfEachKind[] =
    R"({"format": "PimStoreBridge store", "version": 1, "identity": {}, "book": [
        {"properties": [
            {"tag": "PR_DISPLAY_NAME_W", "value": "Bea"},
            {"tag": "0x3A06001F", "value": "Bea"},
            {"tag": "0x3A1C001F", "value": "1"}]}],
        "root": {"folders": [
        {"name": "Contacts", "class": "IPF.Contact", "roles": ["contacts"], "messages": [
            {"properties": [
                {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.Contact"},
                {"tag": "0x3A06001F", "value": "Ann"},
                {"tag": "0x3A1C001F", "value": "1"}]},
            {"properties": [
                {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.DistList"},
                {"set": "PSETID_Address", "id": "0x8053", "type": "PT_UNICODE",
                 "value": "Friends"}]}]},
        {"name": "Calendar", "class": "IPF.Appointment", "roles": ["calendar"],
         "messages": [
            {"properties": [
                {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.Appointment"},
                {"tag": "PR_SUBJECT_W", "value": "Review"}]}],
         "associated": [
            {"properties": [
                {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.Configuration.CategoryList"},
                {"tag": "0x7C080102", "value": {"hex": "3C723E0A202020203C63206E616D653D22576F726B2220677569643D227B417D22202F3E0A3C2F723E0A"}}]}]}]}})";
