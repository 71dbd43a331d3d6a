// The contact object: every property in each of its forms.
#include "automation/ContactItem.h"
#include "automation/base/ServerModule.h"
#include "support/Dispatch.h"
#include "tests/automation/ContactFixture.h"

#include <gmock/gmock.h>

#include <cstring>

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

namespace
{
class ContactItemTest : public ContactFixture
{
};
} // namespace

TEST_F(ContactItemTest, AnswersForItsTwoInterfacesAndDispatch)
{
    ExpectInterfaces(m_contact.Get(),
                     {IID_IUnknown, IID_IDispatch, IID_INContactItem, IID_INEntityItem});
    ComPtr<IDispatch> dispatch;
    ASSERT_EQ(S_OK, m_entity.As(&dispatch));
    EXPECT_EQ(static_cast<IDispatch*>(m_contact.Get()), dispatch.Get());
}

TEST_F(ContactItemTest, EveryTextPropertyCopiesInAndOut)
{
    for (const Contact& property : kTexts)
        ExpectTextForm(property, m_contact.Get());
    ExpectTextForm(kPersistentID, m_contact.Get());
}

TEST_F(ContactItemTest, TheTextsOfTheEntityHaveTheSameForm)
{
    ExpectTextForm(kEntityID, m_entity.Get());
    ExpectTextForm(kFolderID, m_entity.Get());
}

TEST_F(ContactItemTest, EveryTextPropertyHasAFieldOfItsOwn)
{
    PutOwnTexts(m_contact.Get());
    ExpectOwnTexts(m_contact.Get());
}

TEST_F(ContactItemTest, ANullPutEmptiesEveryTextButThePersistentId)
{
    for (const Contact& property : kTexts)
        ExpectNullClears(property, m_contact.Get());
    ExpectNullClears(kEntityID, m_entity.Get());
    ExpectNullClears(kFolderID, m_entity.Get());
}

TEST_F(ContactItemTest, ThePersistentIdRefusesNullWhereTheEntityIdIsCleared)
{
    EXPECT_EQ(E_POINTER, m_contact->put_PersistentID(nullptr));
    EXPECT_FALSE(Get(kPersistentID, m_contact.Get()));
    ExpectNullRefused(kPersistentID, m_contact.Get());
    EXPECT_EQ(S_OK, m_entity->put_EntityID(nullptr));
    EXPECT_FALSE(Get(kPersistentID, m_contact.Get()));
}

TEST_F(ContactItemTest, BothInterfacesShowOneIdAndOneFolder)
{
    EXPECT_EQ(S_OK, m_contact->put_PersistentID(Bstr(L"id 1").Get()));
    EXPECT_EQ(L"id 1", Get(kEntityID, m_entity.Get()).View());
    EXPECT_EQ(S_OK, m_entity->put_EntityID(Bstr(L"id 2").Get()));
    EXPECT_EQ(L"id 2", Get(kPersistentID, m_contact.Get()).View());

    const Contact& parent = TextNamed("ParentFolderID");
    EXPECT_EQ(S_OK, m_contact->put_ParentFolderID(Bstr(L"folder 1").Get()));
    EXPECT_EQ(L"folder 1", Get(kFolderID, m_entity.Get()).View());
    EXPECT_EQ(S_OK, m_entity->put_FolderID(Bstr(L"folder 2").Get()));
    EXPECT_EQ(L"folder 2", Get(parent, m_contact.Get()).View());
    EXPECT_EQ(S_OK, m_contact->put_ParentFolderID(nullptr));
    EXPECT_FALSE(Get(kFolderID, m_entity.Get()));
    EXPECT_EQ(L"id 2", Get(kEntityID, m_entity.Get()).View());
}

TEST_F(ContactItemTest, DatesKeepEveryBit)
{
    ExpectDateForm(kBirthday, m_contact.Get());
    ExpectDateForm(kAnniversary, m_contact.Get());
    ExpectDateForm(kModified, m_entity.Get());
    // Three fields, not one.
    EXPECT_EQ(S_OK, m_contact->put_Birthday(1.0));
    EXPECT_EQ(S_OK, m_contact->put_Anniversary(2.0));
    EXPECT_EQ(S_OK, m_entity->put_LastModificationTime(3.0));
    EXPECT_EQ(1.0, Get(kBirthday, m_contact.Get()));
    EXPECT_EQ(2.0, Get(kAnniversary, m_contact.Get()));
    EXPECT_EQ(3.0, Get(kModified, m_entity.Get()));
}

TEST_F(ContactItemTest, ArraysDoNotShareAField)
{
    EXPECT_EQ(S_OK, m_contact->put_Emails(ArrayOf({L"mail"}).Get()));
    EXPECT_EQ(S_OK, m_contact->put_CategoryIDs(ArrayOf({L"category"}).Get()));
    UniqueSafeArray emails;
    UniqueSafeArray categories;
    EXPECT_EQ(S_OK, m_contact->get_Emails(emails.Put()));
    EXPECT_EQ(S_OK, m_contact->get_CategoryIDs(categories.Put()));
    EXPECT_THAT(TextsOf(emails.Get()), ElementsAre(L"mail"));
    EXPECT_THAT(TextsOf(categories.Get()), ElementsAre(L"category"));
}

TEST_F(ContactItemTest, EachPhoneNumberTypeIsAnEntryOfItsOwn)
{
    for (const LONG type : kPhoneTypes)
    {
        const Bstr leftOver(L"left over");
        BSTR out = leftOver.Get();
        EXPECT_EQ(E_FAIL, m_contact->get_PhoneNumber(Phone(type), &out)) << type;
        EXPECT_EQ(leftOver.Get(), out);
        EXPECT_EQ(E_POINTER, m_contact->get_PhoneNumber(Phone(type), nullptr)) << type;
        EXPECT_EQ(S_OK, m_contact->put_PhoneNumber(Phone(type), Bstr(std::to_wstring(type)).Get()));
        EXPECT_EQ(E_POINTER, m_contact->get_PhoneNumber(Phone(type), nullptr)) << type;
    }
    for (const LONG type : kPhoneTypes)
    {
        Bstr out;
        EXPECT_EQ(S_OK, m_contact->get_PhoneNumber(Phone(type), out.Put()));
        EXPECT_EQ(std::to_wstring(type), out.View());
    }
}

TEST_F(ContactItemTest, ANullPhoneNumberIsAnEntryWithoutText)
{
    const Bstr leftOver(L"left over");
    BSTR out = leftOver.Get();
    EXPECT_EQ(E_FAIL, m_contact->get_PhoneNumber(Pager, &out));
    EXPECT_EQ(S_OK, m_contact->put_PhoneNumber(Pager, nullptr));
    EXPECT_EQ(S_OK, m_contact->get_PhoneNumber(Pager, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(E_FAIL, m_contact->get_PhoneNumber(Car, &out)); // the others still have none

    EXPECT_EQ(S_OK, m_contact->put_PhoneNumber(Pager, Bstr(L"+49 30").Get()));
    EXPECT_EQ(S_OK, m_contact->put_PhoneNumber(Pager, nullptr));
    EXPECT_EQ(S_OK, m_contact->get_PhoneNumber(Pager, &out));
    EXPECT_EQ(nullptr, out);
}

TEST_F(ContactItemTest, PhoneNumbersFollowTheFormOfTexts)
{
    const auto read = [&] {
        BSTR out = nullptr;
        EXPECT_EQ(S_OK, m_contact->get_PhoneNumber(Mobile, &out));
        return Bstr::Adopt(out);
    };
    EXPECT_EQ(S_OK, m_contact->put_PhoneNumber(Mobile, Bstr({L"12\0 34", 6}).Get()));
    const Bstr first = read();
    EXPECT_EQ(L"12", first.View());
    EXPECT_NE(first.Get(), read().Get());
    EXPECT_EQ(S_OK, m_contact->put_PhoneNumber(Mobile, Bstr(std::wstring_view()).Get()));
    const Bstr empty = read();
    EXPECT_TRUE(empty);
    EXPECT_EQ(L"", empty.View());
}

TEST_F(ContactItemTest, AnAddressThatWasNeverPutFailsAndLeavesTheOutput)
{
    const _tagNAddress sentinel = {reinterpret_cast<BSTR>(0x11),
                                   reinterpret_cast<BSTR>(0x22),
                                   reinterpret_cast<BSTR>(0x33),
                                   reinterpret_cast<BSTR>(0x44),
                                   reinterpret_cast<BSTR>(0x55),
                                   reinterpret_cast<BSTR>(0x66)};
    EXPECT_EQ(S_OK, m_contact->put_Address(HomeAddress, Address({L"Home"}).Value()));
    for (const LONG type : {1L, 2L, 3L, -1L})
    {
        _tagNAddress out = sentinel;
        EXPECT_EQ(E_FAIL, m_contact->get_Address(AddressType(type), &out)) << type;
        EXPECT_EQ(0, std::memcmp(&sentinel, &out, sizeof(out))) << type;
        EXPECT_EQ(E_POINTER, m_contact->get_Address(AddressType(type), nullptr)) << type;
    }
    EXPECT_EQ(E_POINTER, m_contact->get_Address(HomeAddress, nullptr));
}

TEST_F(ContactItemTest, EveryFieldOfAnAddressIsCopiedInAndOut)
{
    Address given({L"Country", L"State", L"City", L"Street", L"Box", L"Code"});
    EXPECT_EQ(S_OK, m_contact->put_Address(BusinessAddress, given.Value()));
    given.Field(0)[0] = L'?'; // changes the client's record only
    Address first;
    Address second;
    EXPECT_EQ(S_OK, m_contact->get_Address(BusinessAddress, first.Put()));
    EXPECT_EQ(S_OK, m_contact->get_Address(BusinessAddress, second.Put()));
    EXPECT_THAT(first.Texts(),
                ElementsAre(L"Country", L"State", L"City", L"Street", L"Box", L"Code"));
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_NE(first.Field(i), second.Field(i));
}

TEST_F(ContactItemTest, APutOfAnAddressReplacesTheWholeRecord)
{
    EXPECT_EQ(S_OK,
              m_contact->put_Address(OtherAddress,
                                     Address({L"1", L"2", L"3", L"4", L"5", L"6"}).Value()));
    // Null stays null, an empty text stays one, and a text ends at its first zero.
    Address next({nullptr, L"", nullptr, nullptr, L"new", nullptr});
    next.Field(2) = Bstr({L"ab\0c", 4}).Detach();
    EXPECT_EQ(S_OK, m_contact->put_Address(OtherAddress, next.Value()));
    Address out;
    EXPECT_EQ(S_OK, m_contact->get_Address(OtherAddress, out.Put()));
    EXPECT_THAT(out.Texts(), ElementsAre(L"(null)", L"", L"ab", L"(null)", L"new", L"(null)"));
    EXPECT_EQ(2u, SysStringLen(out.Field(2)));

    // A record of nothing is a record all the same.
    EXPECT_EQ(S_OK, m_contact->put_Address(OtherAddress, Address().Value()));
    EXPECT_EQ(S_OK, m_contact->get_Address(OtherAddress, out.Put()));
    EXPECT_THAT(out.Texts(), testing::Each(L"(null)"));
}

TEST_F(ContactItemTest, EachAddressTypeIsARecordOfItsOwn)
{
    const LONG types[] = {0, 1, 2, 3, -1, 0x7FFFFFFF};
    for (const LONG type : types)
        EXPECT_EQ(S_OK,
                  m_contact->put_Address(AddressType(type),
                                         Address({std::to_wstring(type).c_str()}).Value()));
    for (const LONG type : types)
    {
        Address out;
        EXPECT_EQ(S_OK, m_contact->get_Address(AddressType(type), out.Put())) << type;
        EXPECT_EQ(std::to_wstring(type), out.Texts()[0]);
    }
}

TEST_F(ContactItemTest, ATextThatFindsNoMemoryIsOutOfMemory)
{
    const Bstr text(LongTextsFail::Text());
    const Bstr held(LongTextsFail::Text() + L"y");
    const Address address({nullptr, L"short", nullptr, nullptr, nullptr, text.Get()});
    EXPECT_EQ(S_OK, m_contact->put_FirstName(held.Get()));
    EXPECT_EQ(S_OK, m_contact->put_PersistentID(held.Get()));
    EXPECT_EQ(S_OK, m_contact->put_Address(HomeAddress, address.Value()));
    BSTR out = text.Get();
    Address noAddress({L"stays"});
    _tagNAddress untouched = noAddress.Value();
    {
        const LongTextsFail fail;
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->put_FirstName(text.Get()));
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->put_PersistentID(text.Get()));
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->put_PhoneNumber(Home1, text.Get()));
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->SetStringByIndex(0x50657273 /* Pers */, text.Get()));
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->put_Address(BusinessAddress, address.Value()));
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->get_Address(HomeAddress, &untouched));
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->get_FirstName(&out));
    }
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(0, std::memcmp(&noAddress.Value(), &untouched, sizeof(untouched)));
    EXPECT_EQ(held.View(), Get(TextNamed("FirstName"), m_contact.Get()).View());
    EXPECT_EQ(held.View(), Get(kPersistentID, m_contact.Get()).View());
    // The entry of a phone number comes before its text; an address comes whole or not at all.
    EXPECT_EQ(S_OK, m_contact->get_PhoneNumber(Home1, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(E_FAIL, m_contact->get_Address(BusinessAddress, &untouched));
}

TEST_F(ContactItemTest, APictureStreamNeverComesOut)
{
    const ComPtr<INContactItem> stream = CreateObject<INContactItem>(CLSID_NContactItem);
    IUnknown* const sentinel = reinterpret_cast<IUnknown*>(0x1234);
    for (IUnknown* put : {static_cast<IUnknown*>(nullptr), static_cast<IUnknown*>(stream.Get())})
    {
        IUnknown* out = sentinel;
        EXPECT_EQ(S_OK, m_contact->get_PictureStream(&out));
        EXPECT_EQ(sentinel, out);
        EXPECT_EQ(E_POINTER, m_contact->get_PictureStream(nullptr));
        EXPECT_EQ(S_OK, m_contact->put_PictureStream(put));
        EXPECT_EQ(S_OK, m_contact->get_PictureStream(&out));
        EXPECT_EQ(sentinel, out);
        EXPECT_EQ(E_POINTER, m_contact->get_PictureStream(nullptr));
    }
    // No reference was taken, and none is given back.
    EXPECT_EQ(1u, ReferenceCount(stream.Get()));
    m_contact.Reset();
    m_entity.Reset();
    EXPECT_EQ(1u, ReferenceCount(stream.Get()));
}

TEST_F(ContactItemTest, TheObjectLocksTheServerFromMakingToRelease)
{
    CServerModule* module = CServerModule::Current();
    const LONG before = module->GetLockCount();
    ComPtr<INContactItem> another = CreateObject<INContactItem>(CLSID_NContactItem);
    EXPECT_EQ(before + 1, module->GetLockCount());
    EXPECT_EQ(1u, ReferenceCount(another.Get()));
    another.Reset();
    EXPECT_EQ(before, module->GetLockCount());
}

TEST(ContactItemAggregationTest, LivesInsideAnOuterObject)
{
    CServerModule* module = CServerModule::Current();
    const LONG before = module->GetLockCount();
    TestOuter outer;
    ASSERT_EQ(S_OK, outer.Aggregate(CLSID_NContactItem));
    EXPECT_EQ(before + 1, module->GetLockCount());
    {
        ComPtr<INContactItem> contact;
        ASSERT_EQ(S_OK,
                  outer.QueryInterface(IID_INContactItem,
                                       reinterpret_cast<void**>(contact.GetAddressOf())));
        ComPtr<INEntityItem> entity;
        ASSERT_EQ(S_OK, contact.As(&entity));
        EXPECT_EQ(3u, outer.References());
        ComPtr<IPersist> outerOnly;
        EXPECT_EQ(S_OK, entity.As(&outerOnly)); // an interface of the outer object alone
        EXPECT_EQ(S_OK, contact->put_PersistentID(Bstr(L"inside").Get()));
        EXPECT_EQ(L"inside", DispatchGet(entity.Get(), L"EntityID").value.Text());
    }
    EXPECT_EQ(1u, outer.References());
    outer.DropInner();
    EXPECT_EQ(before, module->GetLockCount());
}

TEST(ContactItemAggregationTest, AnOuterObjectMayAskForTheInnerUnknownOnly)
{
    TestOuter outer;
    void* result = &outer;
    EXPECT_EQ(
        CLASS_E_NOAGGREGATION,
        CoCreateInstance(CLSID_NContactItem, &outer, kServerContext, IID_INContactItem, &result));
    EXPECT_EQ(nullptr, result);
    EXPECT_EQ(1u, outer.References());
}
