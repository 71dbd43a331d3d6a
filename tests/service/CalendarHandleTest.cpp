#include "service/CalendarHandle.h"

#include "tests/service/RecordingEnumerator.h"

#include <gtest/gtest.h>

using Microsoft::WRL::ComPtr;

namespace
{
class CalendarHandleTest : public testing::Test
{
  protected:
    CallLog log;
    RecordingEnumerator* items = new RecordingEnumerator(L"items", log);
    std::unique_ptr<CCalendarHandle> handle =
        std::make_unique<CCalendarHandle>(std::unique_ptr<IEnumerator>(items));
};
} // namespace

TEST_F(CalendarHandleTest, PassesEveryCallOnWithTheIdsUnchanged)
{
    items->deleteResult = 4;
    handle->Refresh();
    handle->ResetItem();
    handle->NextItem();
    handle->GetItemByID(L"AB");
    EXPECT_EQ(4, handle->DeleteItem(L"CD"));
    EXPECT_EQ((CallLog{L"items GetItemIDs",
                       L"items ResetItem",
                       L"items GetNextItem",
                       L"items GetItemByID AB",
                       L"items DeleteItem CD"}),
              log);
}

TEST_F(CalendarHandleTest, GetCurrentAppointmentHandsOutOneReferenceAndKeepsTheId)
{
    const auto item = FakeItem::Make(IID_INAppointment, L"AB");
    items->current = item.Get();
    INAppointment* appointment = nullptr;
    handle->GetCurrentAppointment(&appointment);
    ASSERT_EQ(item->As<INAppointment>().Get(), appointment);
    EXPECT_EQ(3u, item->References());
    appointment->Release();
    EXPECT_EQ(L"", item->puts);
    EXPECT_EQ((CallLog{L"items GetCurrentItem"}), log);
}

TEST_F(CalendarHandleTest, GetCurrentAppointmentStoresNullWithoutAnAppointment)
{
    INAppointment* appointment = reinterpret_cast<INAppointment*>(1);
    handle->GetCurrentAppointment(&appointment);
    EXPECT_EQ(nullptr, appointment);

    items->current = FakeItem::Make(IID_INContactItem, L"AB").Get();
    appointment = reinterpret_cast<INAppointment*>(1);
    handle->GetCurrentAppointment(&appointment);
    EXPECT_EQ(nullptr, appointment);
}

TEST_F(CalendarHandleTest, GetCurrentAppointmentDoesNothingForANullOutput)
{
    items->current = FakeItem::Make(IID_INAppointment, L"AB").Get();
    handle->GetCurrentAppointment(nullptr);
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(CalendarHandleTest, UpdateAppointmentGivesTheTablesResult)
{
    const auto item = FakeItem::Make(IID_INAppointment, L"AB");
    items->updateResult = 6;
    EXPECT_EQ(6, handle->UpdateAppointment(item->As<INAppointment>().Get()));
    EXPECT_EQ((CallLog{L"items UpdateItem AB"}), log);
    EXPECT_EQ(1u, item->References());
}

TEST_F(CalendarHandleTest, AddAppointmentGivesTheTablesId)
{
    const auto item = FakeItem::Make(IID_INAppointment, L"");
    items->addResult = L"NEW";
    items->addFolderID = L"FOLDER";
    EXPECT_EQ(L"NEW", handle->AddAppointment(item->As<INAppointment>().Get()));
    EXPECT_EQ((CallLog{L"items AddItem "}), log);
}

TEST_F(CalendarHandleTest, WritesRefuseNullAndWhatIsNoEntity)
{
    const auto item = FakeItem::Make(IID_INAppointment, L"AB");
    item->isEntity = false;
    EXPECT_EQ(FALSE, handle->UpdateAppointment(nullptr));
    EXPECT_EQ(FALSE, handle->UpdateAppointment(item->As<INAppointment>().Get()));
    EXPECT_EQ(L"", handle->AddAppointment(nullptr));
    EXPECT_EQ(L"", handle->AddAppointment(item->As<INAppointment>().Get()));
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(CalendarHandleTest, DeletesTheTableWithItself)
{
    handle.reset();
    EXPECT_EQ((CallLog{L"items delete"}), log);
}
