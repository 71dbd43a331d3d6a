// What the tests of clients that mean no good share: a calendar of three tasks in the lent folder,
// stored anew before each test, and what the server has to do with it afterwards.
#pragma once

#include "endtoend/CalendarClient.h"
#include "endtoend/CalendarFilesTest.h"

#include <gmock/gmock.h>

class ThreeTasksTest : public CalendarFilesTest
{
  protected:
    void SetUp() override
    {
        CalendarFilesTest::SetUp();
        s_folder->Write(L"Work.ics", NumberedCalendar("Task", 3));
    }

    // What was stored is there, but for the tasks that a client may have changed, and the calendar
    // takes more.
    static void ExpectServes(INPersonalInformationService* service,
                             const std::vector<std::wstring>& kept = {L"Task 2", L"Task 3"})
    {
        ASSERT_EQ(S_OK, service->StartService(Bstr(kWindowsMail).Get()));
        const auto calendar = CalendarOf(service);
        ASSERT_TRUE(calendar);
        EXPECT_THAT(Subjects(calendar.Get()), testing::IsSupersetOf(kept));
        const auto item = Find(calendar.Get(), L"N2");
        ASSERT_TRUE(item);
        EXPECT_EQ(S_OK, item->put_Place(Bstr(L"Room 5").Get()));
        VARIANT_BOOL updated = VARIANT_FALSE;
        EXPECT_EQ(S_OK, calendar->UpdateAppointment(item.Get(), &updated));
        EXPECT_EQ(VARIANT_TRUE, updated);
        EXPECT_THAT(s_folder->Read(L"Work.ics"), testing::HasSubstr("LOCATION:Room 5\r\n"));
    }
};
