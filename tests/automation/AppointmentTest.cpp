// The appointment object: every property in each of its forms, by vtable and late bound.
#include "automation/Appointment.h"
#include "automation/base/ServerModule.h"
#include "platform/Bstr.h"
#include "support/ComAssert.h"
#include "support/Dispatch.h"
#include "support/LargeNewFails.h"
#include "tests/automation/CollectionFixture.h"
#include "tests/automation/ItemProperties.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <vector>

using Microsoft::WRL::ComPtr;

namespace
{
ComPtr<INAppointment> MakeAppointment()
{
    ComPtr<INAppointment> appointment;
    EXPECT_EQ(S_OK,
              CoCreateInstance(CLSID_NAppointment,
                               nullptr,
                               kServerContext,
                               IID_INAppointment,
                               reinterpret_cast<void**>(appointment.GetAddressOf())));
    return appointment;
}

ComPtr<INEntityItem> EntityOf(const ComPtr<INAppointment>& appointment)
{
    ComPtr<INEntityItem> entity;
    EXPECT_EQ(S_OK, appointment.As(&entity));
    return entity;
}

const TextProperty<INAppointment> kTexts[] = {
    {"Subject", &INAppointment::get_Subject, &INAppointment::put_Subject},
    {"Place", &INAppointment::get_Place, &INAppointment::put_Place},
    {"TimeZone", &INAppointment::get_TimeZone, &INAppointment::put_TimeZone},
    {"Description", &INAppointment::get_Description, &INAppointment::put_Description},
    {"PersistID", &INAppointment::get_PersistID, &INAppointment::put_PersistID},
};
const TextProperty<INEntityItem> kEntityID = {
    "EntityID", &INEntityItem::get_EntityID, &INEntityItem::put_EntityID};
const TextProperty<INEntityItem> kFolderID = {
    "FolderID", &INEntityItem::get_FolderID, &INEntityItem::put_FolderID};

template <typename T> struct ValueProperty
{
    const char* name;
    HRESULT (STDMETHODCALLTYPE INAppointment::*get)(T*);
    HRESULT (STDMETHODCALLTYPE INAppointment::*put)(T);
};

template <typename T>
void ExpectValueForm(const ValueProperty<T>& property,
                     INAppointment* object,
                     const std::vector<T>& values)
{
    SCOPED_TRACE(property.name);
    T got = values.front();
    EXPECT_EQ(S_OK, (object->*property.get)(&got));
    EXPECT_EQ(T(0), got);
    EXPECT_EQ(E_POINTER, (object->*property.get)(nullptr));
    for (const T value : values)
    {
        EXPECT_EQ(S_OK, (object->*property.put)(value));
        got = T(0);
        EXPECT_EQ(S_OK, (object->*property.get)(&got));
        EXPECT_EQ(0, std::memcmp(&value, &got, sizeof(T)));
    }
}

// A record of which every byte differs from its neighbours and none from call to call.
void FillRecord(_tagRecurringInfo& record)
{
    auto* bytes = reinterpret_cast<unsigned char*>(&record);
    for (size_t i = 0; i < sizeof(record); ++i)
        bytes[i] = static_cast<unsigned char>(i % 251 + 1);
}

class AppointmentTest : public testing::Test
{
  protected:
    ComPtr<INAppointment> m_appointment = MakeAppointment();
    ComPtr<INEntityItem> m_entity = EntityOf(m_appointment);
};
} // namespace

TEST_F(AppointmentTest, AnswersForItsTwoInterfacesAndDispatch)
{
    ExpectInterfaces(m_appointment.Get(),
                     {IID_IUnknown, IID_IDispatch, IID_INAppointment, IID_INEntityItem});
    ComPtr<IDispatch> dispatch;
    ASSERT_EQ(S_OK, m_entity.As(&dispatch));
    EXPECT_EQ(static_cast<IDispatch*>(m_appointment.Get()), dispatch.Get());
}

TEST_F(AppointmentTest, EveryTextPropertyCopiesInAndOut)
{
    for (const auto& property : kTexts)
        ExpectTextForm(property, m_appointment.Get());
    ExpectTextForm(kEntityID, m_entity.Get());
    ExpectTextForm(kFolderID, m_entity.Get());
    // None of the puts touched another property's field.
    for (const auto& property : kTexts)
    {
        const Bstr own(L"only " + std::wstring(property.name, property.name + 4));
        EXPECT_EQ(S_OK, (m_appointment.Get()->*property.put)(own.Get()));
    }
    for (const auto& property : kTexts)
        EXPECT_EQ(L"only " + std::wstring(property.name, property.name + 4),
                  Get(property, m_appointment.Get()).View());
    EXPECT_EQ(L"R\u00e9union \u65e5\u672c", Get(kEntityID, m_entity.Get()).View());
    EXPECT_EQ(L"R\u00e9union \u65e5\u672c", Get(kFolderID, m_entity.Get()).View());
}

TEST_F(AppointmentTest, ANullTextPutIsRefusedAndTheOldValueStands)
{
    const Bstr old(L"old");
    for (const auto& property : kTexts)
    {
        EXPECT_EQ(E_POINTER, (m_appointment.Get()->*property.put)(nullptr)) << property.name;
        EXPECT_FALSE(Get(property, m_appointment.Get())) << property.name;
        EXPECT_EQ(S_OK, (m_appointment.Get()->*property.put)(old.Get()));
        EXPECT_EQ(E_POINTER, (m_appointment.Get()->*property.put)(nullptr)) << property.name;
        EXPECT_EQ(L"old", Get(property, m_appointment.Get()).View()) << property.name;
    }
    EXPECT_EQ(S_OK, m_entity->put_EntityID(old.Get()));
    EXPECT_EQ(E_POINTER, m_entity->put_EntityID(nullptr));
    EXPECT_EQ(L"old", Get(kEntityID, m_entity.Get()).View());
}

TEST_F(AppointmentTest, ATextThatFindsNoMemoryIsOutOfMemory)
{
    const Bstr text(LongTextsFail::Text());
    const Bstr held(LongTextsFail::Text() + L"y");
    EXPECT_EQ(S_OK, m_appointment->put_Subject(held.Get()));
    BSTR untouched = text.Get();
    {
        const LongTextsFail fail;
        EXPECT_EQ(E_OUTOFMEMORY, m_appointment->get_Subject(&untouched));
    }
    EXPECT_EQ(nullptr, untouched);
    {
        const LargeNewFails fail(text.View().size());
        EXPECT_EQ(E_OUTOFMEMORY, m_appointment->put_Place(text.Get()));
        EXPECT_EQ(E_OUTOFMEMORY, m_entity->put_FolderID(text.Get()));
        const Bstr small(L"small");
        EXPECT_EQ(E_OUTOFMEMORY, m_appointment->put_Place(small.Get())); // moves the others along
    }
    EXPECT_EQ(held.View(), Get(kTexts[0], m_appointment.Get()).View());
    EXPECT_FALSE(Get(kTexts[1], m_appointment.Get()));
    EXPECT_FALSE(Get(kFolderID, m_entity.Get()));
}

TEST_F(AppointmentTest, APropertyTakesItsOwnTextAndThoseOfOthers)
{
    const Bstr text(L"the same");
    for (const auto& property : kTexts)
        EXPECT_EQ(S_OK, (m_appointment.Get()->*property.put)(text.Get()));
    for (const auto& property : kTexts)
        EXPECT_EQ(S_OK, (m_appointment.Get()->*property.put)(text.Get()));
    const Bstr other(L"other");
    EXPECT_EQ(S_OK, m_appointment->put_Subject(other.Get()));
    EXPECT_EQ(L"other", Get(kTexts[0], m_appointment.Get()).View());
    for (std::size_t i = 1; i < std::size(kTexts); ++i)
        EXPECT_EQ(L"the same", Get(kTexts[i], m_appointment.Get()).View()) << kTexts[i].name;
}

TEST_F(AppointmentTest, ANullFolderIdClearsIt)
{
    const Bstr old(L"folder");
    EXPECT_EQ(S_OK, m_entity->put_FolderID(nullptr));
    EXPECT_EQ(S_OK, m_entity->put_FolderID(old.Get()));
    EXPECT_EQ(S_OK, m_entity->put_FolderID(nullptr));
    EXPECT_FALSE(Get(kFolderID, m_entity.Get()));
}

TEST_F(AppointmentTest, ValuePropertiesKeepEveryBit)
{
    const ValueProperty<DATE> start = {
        "StartTime", &INAppointment::get_StartTime, &INAppointment::put_StartTime};
    const ValueProperty<DATE> end = {
        "EndTime", &INAppointment::get_EndTime, &INAppointment::put_EndTime};
    const ValueProperty<ULONG> reminder = {
        "Reminder", &INAppointment::get_Reminder, &INAppointment::put_Reminder};
    const ValueProperty<VARIANT_BOOL> allDay = {
        "AllDay", &INAppointment::get_AllDay, &INAppointment::put_AllDay};
    const ValueProperty<VARIANT_BOOL> isBusy = {
        "IsBusy", &INAppointment::get_IsBusy, &INAppointment::put_IsBusy};
    ExpectValueForm<DATE>(start, m_appointment.Get(), {45000.25, -1.5, 1e300});
    ExpectValueForm<DATE>(end, m_appointment.Get(), {1.0, 45000.0}); // before the start is fine
    ExpectValueForm<ULONG>(reminder, m_appointment.Get(), {15, 0xFFFFFFFF});
    // A boolean that is neither 0 nor -1 stays as it is.
    ExpectValueForm<VARIANT_BOOL>(allDay, m_appointment.Get(), {1, VARIANT_TRUE, 0x1234, 0});
    ExpectValueForm<VARIANT_BOOL>(isBusy, m_appointment.Get(), {1, VARIANT_TRUE});

    DATE modified = 1.0;
    EXPECT_EQ(S_OK, m_entity->get_LastModificationTime(&modified));
    EXPECT_EQ(0.0, modified);
    EXPECT_EQ(S_OK, m_entity->put_LastModificationTime(40000.5));
    EXPECT_EQ(S_OK, m_entity->get_LastModificationTime(&modified));
    EXPECT_EQ(40000.5, modified);
    EXPECT_EQ(E_POINTER, m_entity->get_LastModificationTime(nullptr));

    DATE startNow = 0.0;
    EXPECT_EQ(S_OK, m_appointment->get_StartTime(&startNow));
    EXPECT_EQ(1e300, startNow);
}

TEST_F(AppointmentTest, TheRecordIsZeroAtFirstAndCopiedWhole)
{
    auto record = std::make_unique<_tagRecurringInfo>();
    FillRecord(*record);
    EXPECT_EQ(S_OK, m_appointment->get_RecurringInfo(record.get()));
    const auto zero = std::make_unique<_tagRecurringInfo>();
    EXPECT_EQ(0, std::memcmp(zero.get(), record.get(), sizeof(*zero)));
    EXPECT_EQ(None, record->eRecurType);

    const auto filled = std::make_unique<_tagRecurringInfo>();
    FillRecord(*filled);
    EXPECT_EQ(S_OK, m_appointment->put_RecurringInfo(filled.get()));
    EXPECT_EQ(S_OK, m_appointment->get_RecurringInfo(record.get()));
    EXPECT_EQ(0, std::memcmp(filled.get(), record.get(), sizeof(*filled)));

    EXPECT_EQ(E_POINTER, m_appointment->get_RecurringInfo(nullptr));
    EXPECT_EQ(E_POINTER, m_appointment->put_RecurringInfo(nullptr));
    EXPECT_EQ(S_OK, m_appointment->get_RecurringInfo(record.get()));
    EXPECT_EQ(0, std::memcmp(filled.get(), record.get(), sizeof(*filled)));

    // Zeros over a value are a value too; the last byte alone makes the record one of its own.
    EXPECT_EQ(S_OK, m_appointment->put_RecurringInfo(zero.get()));
    EXPECT_EQ(S_OK, m_appointment->get_RecurringInfo(record.get()));
    EXPECT_EQ(0, std::memcmp(zero.get(), record.get(), sizeof(*zero)));
    record->arrModifiedInstance[31].szLocation[259] = 0x100;
    EXPECT_EQ(S_OK, m_appointment->put_RecurringInfo(record.get()));
    EXPECT_EQ(S_OK, m_appointment->get_RecurringInfo(filled.get()));
    EXPECT_EQ(0, std::memcmp(filled.get(), record.get(), sizeof(*filled)));
}

TEST_F(AppointmentTest, TheRecordIsCopiedWholeWhereverItsLastValueStands)
{
    constexpr std::size_t kBytes = sizeof(_tagRecurringInfo);
    const auto given = std::make_unique<_tagRecurringInfo>();
    const auto read = std::make_unique<_tagRecurringInfo>();
    for (const std::size_t last : {std::size_t{0},
                                   std::size_t{1},
                                   std::size_t{63},
                                   std::size_t{64},
                                   std::size_t{127},
                                   kBytes - 65,
                                   kBytes - 64,
                                   kBytes - 1})
    {
        std::memset(given.get(), 0, kBytes);
        reinterpret_cast<unsigned char*>(given.get())[last] = 0x80;
        FillRecord(*read);
        EXPECT_EQ(S_OK, m_appointment->put_RecurringInfo(given.get()));
        EXPECT_EQ(S_OK, m_appointment->get_RecurringInfo(read.get()));
        EXPECT_EQ(0, std::memcmp(given.get(), read.get(), kBytes)) << last;
    }
}

TEST_F(AppointmentTest, LateBoundCallsReachEveryProperty)
{
    const wchar_t* texts[] = {L"Subject", L"Place", L"TimeZone", L"Description", L"PersistID"};
    for (const wchar_t* name : texts)
    {
        EXPECT_EQ(S_OK, DispatchPut(m_appointment.Get(), name, {Variant(name)}).result);
        const DispatchResult got = DispatchGet(m_appointment.Get(), name);
        EXPECT_EQ(S_OK, got.result);
        EXPECT_EQ(name, got.value.Text());
    }
    EXPECT_EQ(S_OK,
              DispatchPut(m_appointment.Get(), L"starttime", {Variant::Date(45000.5)}).result);
    EXPECT_EQ(S_OK, DispatchPut(m_appointment.Get(), L"EndTime", {Variant(L"2.5")}).result);
    EXPECT_EQ(S_OK, DispatchPut(m_appointment.Get(), L"Reminder", {Variant(30L)}).result);
    EXPECT_EQ(S_OK, DispatchPut(m_appointment.Get(), L"AllDay", {Variant(true)}).result);
    EXPECT_EQ(S_OK, DispatchPut(m_appointment.Get(), L"IsBusy", {Variant(true)}).result);
    const DispatchResult start = DispatchGet(m_appointment.Get(), L"StartTime");
    EXPECT_EQ(VT_DATE, start.value.Type());
    EXPECT_EQ(45000.5, start.value.Value().date);
    const DispatchResult reminder = DispatchGet(m_appointment.Get(), L"Reminder");
    EXPECT_EQ(VT_UI4, reminder.value.Type());
    EXPECT_EQ(30u, reminder.value.Value().ulVal);
    EXPECT_EQ(VARIANT_TRUE, DispatchGet(m_appointment.Get(), L"AllDay").value.Value().boolVal);
    EXPECT_EQ(VT_BOOL, DispatchGet(m_appointment.Get(), L"IsBusy").value.Type());

    EXPECT_EQ(S_OK, DispatchPut(m_entity.Get(), L"EntityID", {Variant(L"id")}).result);
    EXPECT_EQ(S_OK, DispatchPut(m_entity.Get(), L"FolderID", {Variant(L"folder")}).result);
    EXPECT_EQ(S_OK,
              DispatchPut(m_entity.Get(), L"LastModificationTime", {Variant::Date(12.5)}).result);
    EXPECT_EQ(L"id", DispatchGet(m_entity.Get(), L"EntityID").value.Text());
    EXPECT_EQ(L"folder", DispatchGet(m_entity.Get(), L"FolderID").value.Text());
    EXPECT_EQ(12.5, DispatchGet(m_entity.Get(), L"LastModificationTime").value.Value().date);
    EXPECT_EQ(L"id", Get(kEntityID, m_entity.Get()).View());
}

TEST_F(AppointmentTest, EachInterfaceDispatchesItsOwnNamesOnly)
{
    EXPECT_EQ(DISP_E_UNKNOWNNAME, DispatchGet(m_appointment.Get(), L"EntityID").result);
    EXPECT_EQ(DISP_E_UNKNOWNNAME, DispatchGet(m_entity.Get(), L"Subject").result);
}

TEST_F(AppointmentTest, LateBoundMistakesGiveTheTypeLibrarysErrors)
{
    EXPECT_EQ(DISP_E_UNKNOWNNAME, DispatchGet(m_appointment.Get(), L"NoSuchName").result);
    // A text that is no number where a number is wanted.
    EXPECT_EQ(DISP_E_TYPEMISMATCH,
              DispatchPut(m_appointment.Get(), L"Reminder", {Variant(L"soon")}).result);
    VARIANT value;
    VariantInit(&value);
    DISPPARAMS none{};
    EXPECT_EQ(DISP_E_MEMBERNOTFOUND,
              m_appointment->Invoke(
                  99, IID_NULL, 0, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr));
}

TEST_F(AppointmentTest, LateBoundCallsGiveWhatTheTypeInformationGives)
{
    // A record and a surplus argument: what becomes of them is the platform's affair, so the same
    // call straight through the type information is the measure.
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(S_OK, m_appointment->GetTypeInfo(0, 0, info.GetAddressOf()));
    const struct
    {
        DISPID id;
        WORD flags;
        UINT arguments;
    } calls[] = {
        {11, DISPATCH_PROPERTYGET, 0}, // RecurringInfo
        {11, DISPATCH_PROPERTYPUT, 1},
        {1, DISPATCH_PROPERTYGET, 2},
    };
    for (const auto& call : calls)
    {
        VARIANTARG arguments[2];
        for (VARIANTARG& argument : arguments)
            VariantInit(&argument);
        DISPID put = DISPID_PROPERTYPUT;
        const bool isPut = call.flags == DISPATCH_PROPERTYPUT;
        DISPPARAMS parameters{arguments, isPut ? &put : nullptr, call.arguments, isPut ? 1u : 0u};
        VARIANT* const noResult = nullptr;
        Variant direct;
        Variant ours;
        const HRESULT expected = info->Invoke(m_appointment.Get(),
                                              call.id,
                                              call.flags,
                                              &parameters,
                                              isPut ? noResult : direct.Get(),
                                              nullptr,
                                              nullptr);
        EXPECT_EQ(expected,
                  m_appointment->Invoke(call.id,
                                        IID_NULL,
                                        LOCALE_USER_DEFAULT,
                                        call.flags,
                                        &parameters,
                                        isPut ? noResult : ours.Get(),
                                        nullptr,
                                        nullptr))
            << call.id;
        EXPECT_EQ(direct.Type(), ours.Type());
    }
}

// A record handed over in a variant. Some platforms' late binding does not know records: then the
// call fails and the value stands, but it is never half taken.
TEST_F(AppointmentTest, ALateBoundRecordIsTakenWholeOrNotAtAll)
{
    ComPtr<ITypeInfo> interfaceInfo;
    ASSERT_EQ(S_OK, m_appointment->GetTypeInfo(0, 0, interfaceInfo.GetAddressOf()));
    ComPtr<ITypeLib> library;
    UINT index = 0;
    ASSERT_EQ(S_OK, interfaceInfo->GetContainingTypeLib(library.GetAddressOf(), &index));
    ComPtr<ITypeInfo> recordInfo;
    // {4584E786-F5EB-4DAB-B09E-DB8618FE3EFE}, the record's GUID in the published contract.
    constexpr GUID kRecord = {
        0x4584E786, 0xF5EB, 0x4DAB, {0xB0, 0x9E, 0xDB, 0x86, 0x18, 0xFE, 0x3E, 0xFE}};
    ASSERT_EQ(S_OK, library->GetTypeInfoOfGuid(kRecord, recordInfo.GetAddressOf()));
    ComPtr<IRecordInfo> description;
    ASSERT_EQ(S_OK, GetRecordInfoFromTypeInfo(recordInfo.Get(), description.GetAddressOf()));

    const auto before = std::make_unique<_tagRecurringInfo>();
    FillRecord(*before);
    ASSERT_EQ(S_OK, m_appointment->put_RecurringInfo(before.get()));

    const auto given = std::make_unique<_tagRecurringInfo>();
    given->eRecurType = Yearly;
    given->arrModifiedInstance[31].szLocation[259] = 0xABCD;
    VARIANTARG argument; // borrows the record and its description
    VariantInit(&argument);
    argument.vt = VT_RECORD;
    argument.pvRecord = given.get();
    argument.pRecInfo = description.Get();
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{&argument, &put, 1, 1};
    const HRESULT result = m_appointment->Invoke(11,
                                                 IID_NULL,
                                                 LOCALE_USER_DEFAULT,
                                                 DISPATCH_PROPERTYPUT,
                                                 &parameters,
                                                 nullptr,
                                                 nullptr,
                                                 nullptr);
    const auto read = std::make_unique<_tagRecurringInfo>();
    EXPECT_EQ(S_OK, m_appointment->get_RecurringInfo(read.get()));
    const auto& expected = SUCCEEDED(result) ? given : before;
    EXPECT_EQ(0, std::memcmp(expected.get(), read.get(), sizeof(*read))) << std::hex << result;
}

TEST_F(AppointmentTest, ALateBoundFailureArrivesAsAnException)
{
    // A null text: E_POINTER of the put.
    Variant null;
    null.Get()->vt = VT_BSTR;
    null.Get()->bstrVal = nullptr;
    const DispatchResult put = DispatchPut(m_appointment.Get(), L"Subject", {null});
    EXPECT_EQ(DISP_E_EXCEPTION, put.result);
    EXPECT_EQ(E_POINTER, put.exceptionCode);
}

TEST_F(AppointmentTest, TypeInformationIsThatOfTheInterface)
{
    UINT count = 0;
    EXPECT_EQ(S_OK, m_appointment->GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
    EXPECT_EQ(E_POINTER, m_appointment->GetTypeInfoCount(nullptr));
    EXPECT_EQ(E_POINTER, m_appointment->GetTypeInfo(0, 0, nullptr));
    ComPtr<ITypeInfo> info;
    EXPECT_EQ(DISP_E_BADINDEX, m_appointment->GetTypeInfo(1, 0, info.GetAddressOf()));
    EXPECT_EQ(nullptr, info.Get());
    ASSERT_EQ(S_OK, m_entity->GetTypeInfo(0, 0, info.GetAddressOf()));
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(S_OK, info->GetTypeAttr(&attributes));
    EXPECT_TRUE(IsEqualGUID(IID_INEntityItem, attributes->guid));
    info->ReleaseTypeAttr(attributes);
    EXPECT_EQ(E_POINTER, m_appointment->GetIDsOfNames(IID_NULL, nullptr, 1, 0, nullptr));
}

TEST_F(AppointmentTest, TheObjectLocksTheServerFromMakingToRelease)
{
    CServerModule* module = CServerModule::Current();
    const LONG before = module->GetLockCount();
    ComPtr<INAppointment> another = MakeAppointment();
    EXPECT_EQ(before + 1, module->GetLockCount());
    EXPECT_EQ(1u, ReferenceCount(another.Get()));
    another.Reset();
    EXPECT_EQ(before, module->GetLockCount());
}

TEST(AppointmentAggregationTest, LivesInsideAnOuterObject)
{
    CServerModule* module = CServerModule::Current();
    const LONG before = module->GetLockCount();
    TestOuter outer;
    ASSERT_EQ(S_OK, outer.Aggregate(CLSID_NAppointment));
    EXPECT_EQ(before + 1, module->GetLockCount());
    {
        // References to the part's interfaces are references to the outer object.
        ComPtr<INAppointment> appointment;
        ASSERT_EQ(S_OK,
                  outer.QueryInterface(IID_INAppointment,
                                       reinterpret_cast<void**>(appointment.GetAddressOf())));
        EXPECT_EQ(2u, outer.References());
        ComPtr<INEntityItem> entity;
        ASSERT_EQ(S_OK, appointment.As(&entity));
        EXPECT_EQ(3u, outer.References());
        ComPtr<IPersist> outerOnly;
        EXPECT_EQ(S_OK, entity.As(&outerOnly)); // an interface of the outer object alone
        ComPtr<IUnknown> identity;
        ASSERT_EQ(S_OK, appointment.As(&identity));
        EXPECT_EQ(static_cast<IUnknown*>(&outer), identity.Get());

        const Bstr subject(L"inside");
        EXPECT_EQ(S_OK, appointment->put_Subject(subject.Get()));
        EXPECT_EQ(L"inside", DispatchGet(appointment.Get(), L"Subject").value.Text());

        // The inner unknown is an identity of its own, and counts for itself.
        ComPtr<IUnknown> inner;
        ASSERT_EQ(S_OK,
                  outer.Inner()->QueryInterface(IID_IUnknown,
                                                reinterpret_cast<void**>(inner.GetAddressOf())));
        EXPECT_EQ(outer.Inner(), inner.Get());
        EXPECT_EQ(E_POINTER, inner->QueryInterface(IID_IUnknown, nullptr));
        EXPECT_EQ(E_POINTER, inner->QueryInterface(IID_INAppointment, nullptr));
    }
    EXPECT_EQ(1u, outer.References());
    EXPECT_EQ(1u, ReferenceCount(outer.Inner()));
    outer.DropInner();
    EXPECT_EQ(before, module->GetLockCount());
}

TEST(AppointmentAggregationTest, AnOuterObjectMayAskForTheInnerUnknownOnly)
{
    TestOuter outer;
    void* result = &outer;
    EXPECT_EQ(
        CLASS_E_NOAGGREGATION,
        CoCreateInstance(CLSID_NAppointment, &outer, kServerContext, IID_INAppointment, &result));
    EXPECT_EQ(nullptr, result);
    EXPECT_EQ(1u, outer.References());
}

TEST(AppointmentMemoryTest, AnAppointmentWithoutRecurrenceIsSmall)
{
    // The object itself; its texts come on top.
    EXPECT_LT(sizeof(CComObject<CNAppointment>), 200u);
}
