// Late-bound calls of the contact object.
#include "support/Dispatch.h"
#include "tests/automation/ContactFixture.h"

#include <gmock/gmock.h>

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

namespace
{
constexpr LONG kBirt = 0x42697274;
constexpr LONG kLast = 0x4C617374;
constexpr LONG kEntr = 0x456E7472;

class ContactDispatchTest : public ContactFixture
{
};
} // namespace

TEST_F(ContactDispatchTest, LateBoundCallsReachEveryText)
{
    const auto wide = [](const char* name) { return std::wstring(name, name + std::strlen(name)); };
    std::vector<std::string> names = {"PersistentID"};
    for (const Contact& property : kTexts)
        names.push_back(property.name);
    for (const std::string& name : names)
        EXPECT_EQ(S_OK,
                  DispatchPut(m_contact.Get(),
                              wide(name.c_str()).c_str(),
                              {Variant(wide(name.c_str()).c_str())})
                      .result)
            << name;
    for (const std::string& name : names)
    {
        EXPECT_EQ(wide(name.c_str()), Get(TextNamed(name), m_contact.Get()).View());
        const DispatchResult got = DispatchGet(m_contact.Get(), wide(name.c_str()).c_str());
        EXPECT_EQ(S_OK, got.result) << name;
        EXPECT_EQ(wide(name.c_str()), got.value.Text());
    }
    EXPECT_EQ(S_OK, DispatchPut(m_entity.Get(), L"EntityID", {Variant(L"id")}).result);
    EXPECT_EQ(S_OK, DispatchPut(m_entity.Get(), L"folderid", {Variant(L"folder")}).result);
    EXPECT_EQ(L"id", DispatchGet(m_contact.Get(), L"PersistentID").value.Text());
    EXPECT_EQ(L"folder", DispatchGet(m_contact.Get(), L"ParentFolderID").value.Text());
}

TEST_F(ContactDispatchTest, LateBoundCallsReachDatesAndNumbers)
{
    EXPECT_EQ(S_OK, DispatchPut(m_contact.Get(), L"Birthday", {Variant::Date(1.5)}).result);
    EXPECT_EQ(S_OK, DispatchPut(m_contact.Get(), L"anniversary", {Variant(2L)}).result);
    EXPECT_EQ(S_OK,
              DispatchPut(m_entity.Get(), L"LastModificationTime", {Variant::Date(3.5)}).result);
    const DispatchResult birthday = DispatchGet(m_contact.Get(), L"Birthday");
    EXPECT_EQ(VT_DATE, birthday.value.Type());
    EXPECT_EQ(1.5, birthday.value.Value().date);
    EXPECT_EQ(2.0, DispatchGet(m_contact.Get(), L"Anniversary").value.Value().date);
    EXPECT_EQ(3.5, DispatchGet(m_entity.Get(), L"LastModificationTime").value.Value().date);

    const Variant mobile(1L);
    EXPECT_EQ(S_OK,
              DispatchPut(m_contact.Get(), L"PhoneNumber", {mobile, Variant(L"+49 170")}).result);
    Bstr number;
    EXPECT_EQ(S_OK, m_contact->get_PhoneNumber(Mobile, number.Put()));
    EXPECT_EQ(L"+49 170", number.View());
    EXPECT_EQ(L"+49 170", DispatchGet(m_contact.Get(), L"PhoneNumber", {mobile}).value.Text());
    const DispatchResult none = DispatchGet(m_contact.Get(), L"PhoneNumber", {Variant(2L)});
    EXPECT_EQ(DISP_E_EXCEPTION, none.result);
    EXPECT_EQ(E_FAIL, none.exceptionCode);
}

TEST_F(ContactDispatchTest, LateBoundCallsReachTheArrays)
{
    for (const wchar_t* name : {L"Emails", L"CategoryIDs"})
    {
        const DispatchResult none = DispatchGet(m_contact.Get(), name);
        EXPECT_EQ(DISP_E_EXCEPTION, none.result);
        EXPECT_EQ(E_FAIL, none.exceptionCode);
        Variant array;
        array.Get()->vt = VT_ARRAY | VT_BSTR;
        array.Get()->parray = ArrayOf({name, L"second"}).Detach();
        EXPECT_EQ(S_OK, DispatchPut(m_contact.Get(), name, {array}).result);
        const DispatchResult got = DispatchGet(m_contact.Get(), name);
        EXPECT_EQ(S_OK, got.result);
        ASSERT_EQ(VT_ARRAY | VT_BSTR, got.value.Type());
        EXPECT_THAT(TextsOf(got.value.Value().parray), ElementsAre(name, L"second"));
    }
}

TEST_F(ContactDispatchTest, LateBoundCallsReachTheIndexes)
{
    EXPECT_EQ(S_OK,
              DispatchCall(m_contact.Get(), L"SetStringByIndex", {Variant(kLast), Variant(L"Ng")})
                  .result);
    BSTR text = nullptr;
    EXPECT_EQ(S_OK,
              DispatchCall(m_contact.Get(),
                           L"GetStringByIndex",
                           {Variant(kLast), Variant::Reference(VT_BSTR, &text)})
                  .result);
    EXPECT_EQ(L"Ng", Bstr::Adopt(text).View());

    Variant date = Variant::Date(7.5);
    EXPECT_EQ(S_OK,
              DispatchCall(m_contact.Get(),
                           L"SetPropertyValue",
                           {Variant(kBirt), Variant::Reference(VT_VARIANT, date.Get())})
                  .result);
    EXPECT_EQ(7.5, Get(kBirthday, m_contact.Get()));
    Variant out;
    EXPECT_EQ(S_OK,
              DispatchCall(m_contact.Get(),
                           L"GetPropertyValue",
                           {Variant(kBirt), Variant::Reference(VT_VARIANT, out.Get())})
                  .result);
    EXPECT_EQ(VT_DATE, out.Type());
    EXPECT_EQ(7.5, out.Value().date);

    const DispatchResult noIndex =
        DispatchCall(m_contact.Get(), L"SetStringByIndex", {Variant(kEntr), Variant(L"x")});
    EXPECT_EQ(DISP_E_EXCEPTION, noIndex.result);
    EXPECT_EQ(E_NOTIMPL, noIndex.exceptionCode);
    Variant wrong(L"1.1.1970");
    const DispatchResult noDate =
        DispatchCall(m_contact.Get(),
                     L"SetPropertyValue",
                     {Variant(kBirt), Variant::Reference(VT_VARIANT, wrong.Get())});
    EXPECT_EQ(DISP_E_EXCEPTION, noDate.result);
    EXPECT_EQ(E_INVALIDARG, noDate.exceptionCode);
}

TEST_F(ContactDispatchTest, ALateBoundPictureStreamIsNothing)
{
    const ComPtr<INContactItem> stream = CreateObject<INContactItem>(CLSID_NContactItem);
    EXPECT_EQ(
        S_OK,
        DispatchPut(m_contact.Get(), L"PictureStream", {Variant::Object(stream.Get())}).result);
    EXPECT_EQ(1u, ReferenceCount(stream.Get()));
    const DispatchResult got = DispatchGet(m_contact.Get(), L"PictureStream");
    EXPECT_EQ(S_OK, got.result);
    EXPECT_EQ(VT_UNKNOWN, got.value.Type());
    EXPECT_EQ(nullptr, got.value.Value().punkVal);
}

TEST_F(ContactDispatchTest, EachInterfaceDispatchesItsOwnNamesOnly)
{
    EXPECT_EQ(DISP_E_UNKNOWNNAME, DispatchGet(m_contact.Get(), L"EntityID").result);
    EXPECT_EQ(DISP_E_UNKNOWNNAME, DispatchGet(m_entity.Get(), L"FirstName").result);
    EXPECT_EQ(DISP_E_UNKNOWNNAME, DispatchGet(m_contact.Get(), L"NoSuchName").result);
}

TEST_F(ContactDispatchTest, ALateBoundFailureArrivesAsAnException)
{
    Variant null;
    null.Get()->vt = VT_BSTR;
    null.Get()->bstrVal = nullptr;
    const DispatchResult put = DispatchPut(m_contact.Get(), L"PersistentID", {null});
    EXPECT_EQ(DISP_E_EXCEPTION, put.result);
    EXPECT_EQ(E_POINTER, put.exceptionCode);
    EXPECT_EQ(DISP_E_TYPEMISMATCH,
              DispatchPut(m_contact.Get(), L"Birthday", {Variant(L"soon")}).result);
}

// The record of an address has no GUID, so that no variant can carry it and what becomes of a
// late-bound call is the platform's affair: the same call straight through the type information is
// the measure. The value is never half taken.
TEST_F(ContactDispatchTest, ALateBoundAddressGivesWhatTheTypeInformationGives)
{
    EXPECT_EQ(S_OK, m_contact->put_Address(HomeAddress, Address({L"before"}).Value()));
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(S_OK, m_contact->GetTypeInfo(0, 0, info.GetAddressOf()));
    Address given({L"after"});
    DISPID put = DISPID_PROPERTYPUT;
    for (const WORD flags : {WORD{DISPATCH_PROPERTYGET}, WORD{DISPATCH_PROPERTYPUT}})
    {
        const bool isPut = flags == DISPATCH_PROPERTYPUT;
        VARIANTARG arguments[2]; // the last one first; the record is borrowed
        VariantInit(&arguments[0]);
        VariantInit(&arguments[1]);
        arguments[0].vt = isPut ? VARTYPE{VT_RECORD} : VARTYPE{VT_I4};
        if (isPut)
        {
            arguments[0].pvRecord = const_cast<_tagNAddress*>(&given.Value());
            arguments[0].pRecInfo = nullptr;
            arguments[1].vt = VT_I4;
        }
        arguments[isPut].lVal = HomeAddress;
        DISPPARAMS parameters{arguments, isPut ? &put : nullptr, isPut ? 2u : 1u, isPut ? 1u : 0u};
        VARIANT* const noResult = nullptr;
        Variant direct;
        Variant ours;
        const HRESULT expected = info->Invoke(m_contact.Get(),
                                              12,
                                              flags,
                                              &parameters,
                                              isPut ? noResult : direct.Get(),
                                              nullptr,
                                              nullptr);
        EXPECT_EQ(expected,
                  m_contact->Invoke(12,
                                    IID_NULL,
                                    LOCALE_USER_DEFAULT,
                                    flags,
                                    &parameters,
                                    isPut ? noResult : ours.Get(),
                                    nullptr,
                                    nullptr))
            << flags;
        EXPECT_EQ(direct.Type(), ours.Type());
        Address out;
        EXPECT_EQ(S_OK, m_contact->get_Address(HomeAddress, out.Put()));
        EXPECT_EQ(isPut && SUCCEEDED(expected) ? L"after" : L"before", out.Texts()[0]);
    }
}
