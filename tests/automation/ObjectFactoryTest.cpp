// The object factory: every class through it, and what it answers where there is none.
#include "automation/base/ServerModule.h"
#include "support/Dispatch.h"
#include "tests/automation/CollectionFixture.h"

using Microsoft::WRL::ComPtr;

namespace
{
class ObjectFactoryTest : public CollectionFixture
{
  protected:
    void SetUp() override { ASSERT_TRUE(factory); }

    ComPtr<INObjectFactory> factory = CreateObject<INObjectFactory>(CLSID_NObjectFactory64);
};

// No class has this ID.
constexpr CLSID kNoClass = {
    0x5B0D0B1C, 0x3E0E, 0x4B2B, {0x9C, 0x11, 0x2D, 0x55, 0x0A, 0x6E, 0x77, 0x01}};

// The system's manager of component categories: a class of another server.
constexpr CLSID kForeignClass = {
    0x0002E005, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
} // namespace

TEST_F(ObjectFactoryTest, AnswersForItsInterfaceAndDispatch)
{
    ExpectInterfaces(factory.Get(), {IID_IUnknown, IID_IDispatch, IID_INObjectFactory});
}

TEST_F(ObjectFactoryTest, RefusesANullOutput)
{
    EXPECT_EQ(E_POINTER, factory->CreateInstance(CLSID_NAppointment, nullptr));
    EXPECT_EQ(E_POINTER, factory->CreateInstance(kNoClass, nullptr));
}

TEST_F(ObjectFactoryTest, MakesObjectsThatCountInThisServer)
{
    const LONG before = CServerModule::Current()->GetLockCount();
    ComPtr<IUnknown> object;
    ASSERT_EQ(S_OK, factory->CreateInstance(CLSID_NAppointment, object.GetAddressOf()));
    ASSERT_TRUE(object);
    EXPECT_EQ(before + 1, CServerModule::Current()->GetLockCount());
    EXPECT_EQ(1u, ReferenceCount(object.Get()));
    ExpectInterfaces(object.Get(), {IID_IUnknown, IID_INAppointment, IID_INEntityItem});
    object.Reset();
    EXPECT_EQ(before, CServerModule::Current()->GetLockCount());
}

TEST_F(ObjectFactoryTest, MakesEveryClassThatNeedsAProviderWhileOneRuns)
{
    const struct
    {
        CLSID clsid;
        IID iid;
    } classes[] = {{CLSID_NPersonalInformationService, IID_INPersonalInformationService},
                   {CLSID_NAddressBook, IID_INAddressBook},
                   {CLSID_NCalendar, IID_INCalendar},
                   {CLSID_NUserProperties, IID_INUserProperties},
                   {CLSID_NObjectFactory64, IID_INObjectFactory}};
    Start();
    for (const auto& row : classes)
    {
        ComPtr<IUnknown> object;
        EXPECT_EQ(S_OK, factory->CreateInstance(row.clsid, object.GetAddressOf()));
        ASSERT_TRUE(object);
        ExpectInterfaces(object.Get(), {IID_IUnknown, IID_IDispatch, row.iid});
    }
}

TEST_F(ObjectFactoryTest, MakesEveryItemWithoutAProvider)
{
    const struct
    {
        CLSID clsid;
        IID iid;
    } classes[] = {{CLSID_NContactItem, IID_INContactItem},
                   {CLSID_NContactGroup, IID_INContactGroup},
                   {CLSID_NContactCategory, IID_INContactCategory},
                   {CLSID_NAppointment, IID_INAppointment}};
    for (const auto& row : classes)
    {
        ComPtr<IUnknown> object;
        EXPECT_EQ(S_OK, factory->CreateInstance(row.clsid, object.GetAddressOf()));
        ASSERT_TRUE(object);
        ExpectInterfaces(object.Get(), {IID_IUnknown, IID_IDispatch, row.iid, IID_INEntityItem});
    }
}

TEST_F(ObjectFactoryTest, TellsWhatTheClassRefuses)
{
    IUnknown* none = factory.Get();
    EXPECT_EQ(E_FAIL, factory->CreateInstance(CLSID_NAddressBook, &none)); // no provider runs
    EXPECT_EQ(nullptr, none);
}

TEST_F(ObjectFactoryTest, TellsThatAClassIsNotRegistered)
{
    for (const CLSID& clsid : {kNoClass, CLSID_NULL, CLSID_NObjectFactory32})
    {
        IUnknown* none = factory.Get();
        EXPECT_EQ(REGDB_E_CLASSNOTREG, factory->CreateInstance(clsid, &none));
        EXPECT_EQ(nullptr, none);
    }
}

TEST_F(ObjectFactoryTest, MakesClassesOfOtherServersToo)
{
    ComPtr<IUnknown> object;
    EXPECT_EQ(S_OK, factory->CreateInstance(kForeignClass, object.GetAddressOf()));
    EXPECT_TRUE(object);
}

TEST_F(ObjectFactoryTest, IsKnownToLateBoundClients)
{
    DISPID id = 0;
    wchar_t name[] = L"CREATEINSTANCE";
    LPOLESTR names = name;
    EXPECT_EQ(S_OK, factory->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id));
    EXPECT_EQ(1, id);
    // Without its argument there is nothing to make.
    EXPECT_TRUE(FAILED(DispatchCall(factory.Get(), L"CreateInstance").result));
}

TEST_F(ObjectFactoryTest, WorksInsideAnAggregate)
{
    TestOuter outer;
    ASSERT_EQ(S_OK, outer.Aggregate(CLSID_NObjectFactory64));
    ComPtr<INObjectFactory> inner;
    ASSERT_EQ(
        S_OK,
        outer.QueryInterface(IID_INObjectFactory, reinterpret_cast<void**>(inner.GetAddressOf())));
    ComPtr<IUnknown> object;
    EXPECT_EQ(S_OK, inner->CreateInstance(CLSID_NAppointment, object.GetAddressOf()));
    EXPECT_TRUE(object);
    ExpectInterfaces(inner.Get(), {IID_IUnknown, IID_IPersist, IID_INObjectFactory, IID_IDispatch});
    inner.Reset();
    outer.DropInner();
    EXPECT_EQ(1u, outer.References());
}
