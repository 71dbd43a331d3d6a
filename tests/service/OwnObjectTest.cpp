// Objects that the server makes of its own classes.
#include "service/OwnObject.h"

#include "tests/service/FakeBackEnds.h"

#include <gtest/gtest.h>

#include "PimStoreBridge.h"

using Microsoft::WRL::ComPtr;

TEST(OwnObjectTest, IsANewOneEachTime)
{
    const auto first = CreateOwn<INAppointment>(CLSID_NAppointment);
    const auto second = CreateOwn<INAppointment>(CLSID_NAppointment);
    ASSERT_TRUE(first);
    ASSERT_TRUE(second);
    EXPECT_NE(first.Get(), second.Get());
}

TEST(OwnObjectTest, IsNullWhereTheClassRefuses)
{
    const FakeBackEnds backEnds; // none runs
    EXPECT_FALSE(CreateOwn<INCalendar>(CLSID_NCalendar));
    EXPECT_FALSE(CreateOwn<INCalendar>(CLSID_NAppointment)); // no interface of that class
    EXPECT_FALSE(CreateOwn<INCalendar>(CLSID_NULL));         // no class at all
}

TEST(OwnObjectTest, TellsTheResultBesideTheObject)
{
    ComPtr<INEntityItem> item;
    EXPECT_EQ(S_OK,
              CreateOwn(CLSID_NAppointment,
                        IID_INEntityItem,
                        reinterpret_cast<void**>(item.GetAddressOf())));
    EXPECT_TRUE(item);
    int none = 0;
    void* object = &none;
    EXPECT_EQ(E_NOINTERFACE, CreateOwn(CLSID_NAppointment, IID_INCalendar, &object));
    EXPECT_EQ(nullptr, object);
}
