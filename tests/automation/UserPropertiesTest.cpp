// The identity object over a fake provider: its ten texts and its creation.
#include "support/Dispatch.h"
#include "tests/automation/CollectionFixture.h"

#include <iterator>

using Microsoft::WRL::ComPtr;

namespace
{
struct IdentityProperty
{
    const wchar_t* name;
    HRESULT (STDMETHODCALLTYPE INUserProperties::*get)(BSTR*);
    std::wstring UserIdentity::*text;
};

constexpr IdentityProperty kProperties[] = {
    {L"Account", &INUserProperties::get_Account, &UserIdentity::account},
    {L"AddressType", &INUserProperties::get_AddressType, &UserIdentity::addressType},
    {L"DisplayName", &INUserProperties::get_DisplayName, &UserIdentity::displayName},
    {L"Company", &INUserProperties::get_Company, &UserIdentity::company},
    {L"EmailAddress", &INUserProperties::get_EmailAddress, &UserIdentity::emailAddress},
    {L"FirstName", &INUserProperties::get_FirstName, &UserIdentity::firstName},
    {L"LastName", &INUserProperties::get_LastName, &UserIdentity::lastName},
    {L"OfficeLocation", &INUserProperties::get_OfficeLocation, &UserIdentity::officeLocation},
    {L"SMTPAddress", &INUserProperties::get_SMTPAddress, &UserIdentity::smtpAddress},
    {L"TransmitableDisplayName",
     &INUserProperties::get_TransmitableDisplayName,
     &UserIdentity::transmitableDisplayName},
};

class UserPropertiesObjectTest : public CollectionFixture
{
  protected:
    void SetUp() override
    {
        Start();
        // Each text is its property's own name.
        provider->prepareIdentity = [](UserIdentity& identity) {
            for (const IdentityProperty& property : kProperties)
                identity.*property.text = property.name;
        };
        user = CreateObject<INUserProperties>(CLSID_NUserProperties);
        ASSERT_TRUE(user);
    }
    void TearDown() override { user.Reset(); }

    ComPtr<INUserProperties> user;
};
} // namespace

TEST_F(UserPropertiesObjectTest, AnswersForItsInterfaceAndDispatch)
{
    ExpectInterfaces(user.Get(), {IID_IUnknown, IID_IDispatch, IID_INUserProperties});
}

TEST_F(UserPropertiesObjectTest, GivesEachText)
{
    for (const IdentityProperty& property : kProperties)
    {
        Bstr text;
        EXPECT_EQ(S_OK, (user.Get()->*property.get)(text.Put()));
        EXPECT_EQ(property.name, text.View());
    }
}

TEST_F(UserPropertiesObjectTest, GivesEachTextToLateBoundClients)
{
    for (std::size_t i = 0; i < std::size(kProperties); ++i)
    {
        DISPID id = 0;
        LPOLESTR name = const_cast<LPOLESTR>(kProperties[i].name);
        EXPECT_EQ(S_OK, user->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id));
        EXPECT_EQ(static_cast<DISPID>(i + 1), id);
        const DispatchResult got = DispatchGet(user.Get(), kProperties[i].name);
        EXPECT_EQ(S_OK, got.result);
        EXPECT_EQ(kProperties[i].name, got.value.Text());
        EXPECT_TRUE(FAILED(DispatchPut(user.Get(), kProperties[i].name, {Variant(L"new")}).result));
    }
}

TEST_F(UserPropertiesObjectTest, RefusesNullOutputs)
{
    for (const IdentityProperty& property : kProperties)
        EXPECT_EQ(E_POINTER, (user.Get()->*property.get)(nullptr));
}

TEST_F(UserPropertiesObjectTest, AnUnknownTextIsEmptyAndNeverNull)
{
    provider->prepareIdentity = nullptr;
    const auto unknown = CreateObject<INUserProperties>(CLSID_NUserProperties);
    ASSERT_TRUE(unknown);
    for (const IdentityProperty& property : kProperties)
    {
        Bstr text;
        EXPECT_EQ(S_OK, (unknown.Get()->*property.get)(text.Put()));
        EXPECT_TRUE(text);
        EXPECT_EQ(L"", text.View());
    }
}

TEST_F(UserPropertiesObjectTest, TellsExhaustedMemory)
{
    provider->prepareIdentity = [](UserIdentity& identity) {
        identity.account = LongTextsFail::Text();
    };
    const auto longOne = CreateObject<INUserProperties>(CLSID_NUserProperties);
    ASSERT_TRUE(longOne);
    const LongTextsFail fail;
    const BSTR mine = reinterpret_cast<BSTR>(1);
    BSTR text = mine;
    EXPECT_EQ(E_OUTOFMEMORY, longOne->get_Account(&text));
    EXPECT_EQ(mine, text);
}

// The provider is asked once; the texts are those of that moment, also when it has ended.
TEST_F(UserPropertiesObjectTest, OutlivesTheService)
{
    EXPECT_EQ((CallLog{L"provider GetUserProperties"}), log);
    log.clear();
    backEnds.manager.StopService();
    Bstr text;
    EXPECT_EQ(S_OK, user->get_Company(text.Put()));
    EXPECT_EQ(L"Company", text.View());
    EXPECT_EQ((CallLog{L"provider delete"}), log);
    log.clear();
    user.Reset();
    EXPECT_EQ((CallLog{L"identity delete"}), log);
}

TEST_F(UserPropertiesObjectTest, IsRefusedWhileNoProviderRuns)
{
    backEnds.manager.StopService();
    void* none = this;
    EXPECT_EQ(E_FAIL,
              CoCreateInstance(
                  CLSID_NUserProperties, nullptr, kServerContext, IID_INUserProperties, &none));
    EXPECT_EQ(nullptr, none);
    TestOuter outer;
    EXPECT_EQ(E_FAIL, outer.Aggregate(CLSID_NUserProperties));
    EXPECT_EQ(nullptr, outer.Inner());
    EXPECT_EQ(1u, outer.References());
}

TEST_F(UserPropertiesObjectTest, IsRefusedWhereTheProviderKnowsNoIdentity)
{
    provider->hasUserProperties = false;
    void* none = this;
    EXPECT_EQ(E_FAIL,
              CoCreateInstance(
                  CLSID_NUserProperties, nullptr, kServerContext, IID_INUserProperties, &none));
    EXPECT_EQ(nullptr, none);
    TestOuter outer;
    EXPECT_EQ(E_FAIL, outer.Aggregate(CLSID_NUserProperties));
    EXPECT_EQ(nullptr, outer.Inner());
    EXPECT_EQ(1u, outer.References());
}

TEST_F(UserPropertiesObjectTest, AnUnknownInterfaceEndsTheNewObject)
{
    log.clear();
    void* none = this;
    EXPECT_EQ(
        E_NOINTERFACE,
        CoCreateInstance(CLSID_NUserProperties, nullptr, kServerContext, IID_INCalendar, &none));
    EXPECT_EQ(nullptr, none);
    EXPECT_EQ((CallLog{L"provider GetUserProperties", L"identity delete"}), log);
}

TEST_F(UserPropertiesObjectTest, WorksInsideAnAggregate)
{
    log.clear();
    TestOuter outer;
    ASSERT_EQ(S_OK, outer.Aggregate(CLSID_NUserProperties));
    ComPtr<INUserProperties> inner;
    ASSERT_EQ(
        S_OK,
        outer.QueryInterface(IID_INUserProperties, reinterpret_cast<void**>(inner.GetAddressOf())));
    Bstr text;
    EXPECT_EQ(S_OK, inner->get_LastName(text.Put()));
    EXPECT_EQ(L"LastName", text.View());
    ExpectInterfaces(inner.Get(),
                     {IID_IUnknown, IID_IPersist, IID_INUserProperties, IID_IDispatch});
    inner.Reset();
    outer.DropInner();
    EXPECT_EQ(1u, outer.References());
    EXPECT_EQ((CallLog{L"provider GetUserProperties", L"identity delete"}), log);
}

TEST_F(UserPropertiesObjectTest, TheServiceObjectHandsOneOut)
{
    const auto service =
        CreateObject<INPersonalInformationService>(CLSID_NPersonalInformationService);
    ASSERT_TRUE(service);
    ComPtr<INUserProperties> got;
    EXPECT_EQ(S_OK, service->GetUserProperties(got.GetAddressOf()));
    ASSERT_TRUE(got);
    EXPECT_NE(user.Get(), got.Get());
    Bstr text;
    EXPECT_EQ(S_OK, got->get_SMTPAddress(text.Put()));
    EXPECT_EQ(L"SMTPAddress", text.View());

    provider->hasUserProperties = false;
    INUserProperties* none = user.Get();
    EXPECT_EQ(S_OK, service->GetUserProperties(&none));
    EXPECT_EQ(nullptr, none);
}
