// The calendar object: every method by its results, its outputs and the calls on its table.
#include "support/Dispatch.h"
#include "tests/automation/CollectionFixture.h"

using Microsoft::WRL::ComPtr;

namespace
{
constexpr VARIANT_BOOL kUntouched = 0x1234;

class CalendarTest : public CollectionFixture
{
  protected:
    void SetUp() override
    {
        Start();
        calendar = CreateObject<INCalendar>(CLSID_NCalendar);
        ASSERT_TRUE(calendar);
        log.clear();
    }
    void TearDown() override { calendar.Reset(); }

    ComPtr<FakeItem> item = FakeItem::Make(IID_INAppointment, L"AB");
    ComPtr<INAppointment> appointment = item->As<INAppointment>();
    Bstr id{L"ID"};
    ComPtr<INCalendar> calendar;
};
} // namespace

TEST_F(CalendarTest, AnswersForItsInterfaceAndDispatch)
{
    ExpectInterfaces(calendar.Get(), {IID_IUnknown, IID_IDispatch, IID_INCalendar});
}

TEST_F(CalendarTest, TakesALoadedTableAndDeletesItWithItself)
{
    const auto second = CreateObject<INCalendar>(CLSID_NCalendar);
    EXPECT_EQ((CallLog{L"provider GetCalendar"}), log);
    calendar.Reset();
    EXPECT_EQ((CallLog{L"provider GetCalendar", L"calendar delete"}), log);
}

TEST_F(CalendarTest, IsRefusedWhileNoProviderRunsAndWhereItHasNone)
{
    provider->hasCalendar = false;
    void* none = this;
    EXPECT_EQ(E_FAIL,
              CoCreateInstance(CLSID_NCalendar, nullptr, kServerContext, IID_INCalendar, &none));
    EXPECT_EQ(nullptr, none);
    backEnds.manager.StopService();
    none = this;
    EXPECT_EQ(E_FAIL,
              CoCreateInstance(CLSID_NCalendar, nullptr, kServerContext, IID_INCalendar, &none));
    EXPECT_EQ(nullptr, none);
    TestOuter outer;
    EXPECT_EQ(E_FAIL, outer.Aggregate(CLSID_NCalendar));
}

TEST_F(CalendarTest, WorksInsideAnAggregate)
{
    TestOuter outer;
    ASSERT_EQ(S_OK, outer.Aggregate(CLSID_NCalendar));
    ComPtr<INCalendar> inner;
    ASSERT_EQ(S_OK,
              outer.QueryInterface(IID_INCalendar, reinterpret_cast<void**>(inner.GetAddressOf())));
    EXPECT_EQ(S_OK, inner->Refresh());
    inner.Reset();
    outer.DropInner();
    EXPECT_EQ(1u, outer.References());
}

TEST_F(CalendarTest, NullArgumentsReachNoTable)
{
    VARIANT_BOOL result = kUntouched;
    BSTR text = nullptr;
    INAppointment* out = nullptr;
    EXPECT_EQ(E_POINTER, calendar->Reset(nullptr));
    EXPECT_EQ(E_POINTER, calendar->GetNextAppointment(nullptr));
    EXPECT_EQ(E_POINTER, calendar->GetAppointmentByID(nullptr, &out));
    EXPECT_EQ(E_POINTER, calendar->GetAppointmentByID(id.Get(), nullptr));
    EXPECT_EQ(E_POINTER, calendar->AddAppointment(nullptr, &text));
    EXPECT_EQ(E_POINTER, calendar->AddAppointment(appointment.Get(), nullptr));
    EXPECT_EQ(E_POINTER, calendar->UpdateAppointment(nullptr, &result));
    EXPECT_EQ(E_POINTER, calendar->UpdateAppointment(appointment.Get(), nullptr));
    EXPECT_EQ(E_POINTER, calendar->DeleteAppointment(nullptr, &result));
    EXPECT_EQ(E_POINTER, calendar->DeleteAppointment(id.Get(), nullptr));
    EXPECT_EQ(CallLog{}, log);
    EXPECT_EQ(kUntouched, result);
}

TEST_F(CalendarTest, WalksUntilTheEnd)
{
    EXPECT_EQ(S_OK, calendar->Refresh());
    VARIANT_BOOL result = kUntouched;
    EXPECT_EQ(S_OK, calendar->Reset(&result));
    EXPECT_EQ(VARIANT_TRUE, result);
    Table(L"calendar").current = item.Get();
    ComPtr<INAppointment> out;
    EXPECT_EQ(S_OK, calendar->GetNextAppointment(out.GetAddressOf()));
    EXPECT_EQ(appointment.Get(), out.Get());
    Table(L"calendar").current.Reset();
    INAppointment* none = appointment.Get();
    EXPECT_EQ(E_FAIL, calendar->GetNextAppointment(&none));
    EXPECT_EQ(nullptr, none);
    EXPECT_EQ((CallLog{L"calendar GetItemIDs",
                       L"calendar ResetItem",
                       L"calendar GetNextItem",
                       L"calendar GetCurrentItem",
                       L"calendar GetNextItem",
                       L"calendar GetCurrentItem"}),
              log);
}

TEST_F(CalendarTest, GetAppointmentByIdHandsOutTheCurrentItemOrFails)
{
    INAppointment* none = appointment.Get();
    EXPECT_EQ(E_FAIL, calendar->GetAppointmentByID(id.Get(), &none));
    EXPECT_EQ(nullptr, none);
    Table(L"calendar").current = item.Get();
    ComPtr<INAppointment> out;
    EXPECT_EQ(S_OK, calendar->GetAppointmentByID(id.Get(), out.GetAddressOf()));
    EXPECT_EQ(appointment.Get(), out.Get());
    EXPECT_EQ(L"", item->puts);
    EXPECT_EQ(L"calendar GetItemByID ID", log.front());
}

TEST_F(CalendarTest, AddsUpdatesAndDeletes)
{
    Table(L"calendar").addResult = L"NEW";
    Bstr text;
    EXPECT_EQ(S_OK, calendar->AddAppointment(appointment.Get(), text.Put()));
    EXPECT_EQ(L"NEW", text.View());
    VARIANT_BOOL result = kUntouched;
    EXPECT_EQ(S_OK, calendar->UpdateAppointment(appointment.Get(), &result));
    EXPECT_EQ(VARIANT_TRUE, result);
    result = kUntouched;
    EXPECT_EQ(S_OK, calendar->DeleteAppointment(id.Get(), &result));
    EXPECT_EQ(VARIANT_TRUE, result);
    EXPECT_EQ(
        (CallLog{L"calendar AddItem AB", L"calendar UpdateItem AB", L"calendar DeleteItem ID"}),
        log);
}

TEST_F(CalendarTest, FailedWritesLeaveTheirOutputsAlone)
{
    Table(L"calendar").updateResult = FALSE;
    Table(L"calendar").deleteResult = FALSE;
    VARIANT_BOOL result = kUntouched;
    const BSTR mine = id.Get();
    BSTR text = mine;
    EXPECT_EQ(E_FAIL, calendar->AddAppointment(appointment.Get(), &text));
    EXPECT_EQ(mine, text);
    EXPECT_EQ(E_FAIL, calendar->UpdateAppointment(appointment.Get(), &result));
    EXPECT_EQ(E_FAIL, calendar->DeleteAppointment(id.Get(), &result));
    EXPECT_EQ(kUntouched, result);
}

TEST_F(CalendarTest, AnIdThatFindsNoMemoryIsOutOfMemory)
{
    Table(L"calendar").addResult = LongTextsFail::Text();
    const BSTR mine = id.Get();
    BSTR text = mine;
    const LongTextsFail fail;
    EXPECT_EQ(E_OUTOFMEMORY, calendar->AddAppointment(appointment.Get(), &text));
    EXPECT_EQ(mine, text);
}

TEST_F(CalendarTest, AnExceptionInATableEndsAtTheBoundary)
{
    Table(L"calendar").duringWrite = [] { throw 1; };
    VARIANT_BOOL result = kUntouched;
    EXPECT_EQ(E_UNEXPECTED, calendar->UpdateAppointment(appointment.Get(), &result));
    EXPECT_EQ(kUntouched, result);
}

TEST_F(CalendarTest, ItsLastReleaseDuringAWriteWaitsForTheWrite)
{
    INCalendar* const raw = calendar.Get();
    Table(L"calendar").duringWrite = [&] {
        calendar.Reset();
        log.push_back(L"released");
    };
    VARIANT_BOOL result = kUntouched;
    EXPECT_EQ(S_OK, raw->UpdateAppointment(appointment.Get(), &result));
    EXPECT_EQ((CallLog{L"calendar UpdateItem AB", L"released", L"calendar delete"}), log);
}

TEST_F(CalendarTest, WorksLateBound)
{
    // A real appointment, since the late-bound call asks it for its interface.
    const auto real = CreateObject<INAppointment>(CLSID_NAppointment);
    ASSERT_TRUE(real);
    ComPtr<INEntityItem> entity;
    ASSERT_EQ(S_OK, real.As(&entity));
    Table(L"calendar").current = entity.Get();
    Table(L"calendar").addResult = L"NEW";

    const DispatchResult reset = DispatchCall(calendar.Get(), L"Reset");
    EXPECT_EQ(S_OK, reset.result);
    EXPECT_EQ(VARIANT_TRUE, reset.value.Value().boolVal);
    const DispatchResult next = DispatchCall(calendar.Get(), L"GetNextAppointment");
    EXPECT_EQ(S_OK, next.result);
    ASSERT_EQ(VT_DISPATCH, next.value.Type());
    EXPECT_EQ(static_cast<IDispatch*>(real.Get()), next.value.Value().pdispVal);
    const DispatchResult byID =
        DispatchCall(calendar.Get(), L"GetAppointmentByID", {Variant(L"ID")});
    EXPECT_EQ(S_OK, byID.result);
    const DispatchResult added =
        DispatchCall(calendar.Get(), L"AddAppointment", {Variant::Object(real.Get())});
    EXPECT_EQ(S_OK, added.result);
    EXPECT_EQ(L"NEW", added.value.Text());
    const DispatchResult updated =
        DispatchCall(calendar.Get(), L"UpdateAppointment", {Variant::Object(real.Get())});
    EXPECT_EQ(S_OK, updated.result);
    EXPECT_EQ(VARIANT_TRUE, updated.value.Value().boolVal);
    const DispatchResult deleted =
        DispatchCall(calendar.Get(), L"DeleteAppointment", {Variant(L"ID")});
    EXPECT_EQ(S_OK, deleted.result);
    EXPECT_EQ(S_OK, DispatchCall(calendar.Get(), L"Refresh").result);

    Table(L"calendar").current.Reset();
    const DispatchResult end = DispatchCall(calendar.Get(), L"GetNextAppointment");
    EXPECT_EQ(DISP_E_EXCEPTION, end.result);
    EXPECT_EQ(E_FAIL, end.exceptionCode);
}
