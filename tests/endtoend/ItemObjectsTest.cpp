// Contacts, groups and categories in the real server's process: every kind of value goes there and
// comes back.
#include "endtoend/ServerFixture.h"
#include "platform/Bstr.h"
#include "tests/automation/ItemProperties.h"

#include <gmock/gmock.h>

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

namespace
{
// An object that the server's factory made.
template <typename Interface> ComPtr<Interface> MakeByFactory(REFCLSID clsid)
{
    const auto factory = MakeInServer<INObjectFactory>(CLSID_NObjectFactory64);
    ComPtr<IUnknown> unknown;
    ComPtr<Interface> object;
    if (factory)
    {
        EXPECT_EQ(S_OK, factory->CreateInstance(clsid, unknown.GetAddressOf()));
        EXPECT_EQ(S_OK, unknown.As(&object));
    }
    return object;
}
} // namespace

TEST(ItemObjectsTest, AContactKeepsWhatAnotherProcessPuts)
{
    const auto contact = MakeByFactory<INContactItem>(CLSID_NContactItem);
    ASSERT_TRUE(contact);
    ComPtr<INEntityItem> entity;
    ASSERT_EQ(S_OK, contact.As(&entity));

    Bstr text;
    EXPECT_EQ(S_OK, contact->put_LastName(Bstr(L"Garc\u00eda \u5c71\u7530").Get()));
    EXPECT_EQ(S_OK, contact->get_LastName(text.Put()));
    EXPECT_EQ(L"Garc\u00eda \u5c71\u7530", text.View());
    EXPECT_EQ(S_OK, contact->put_LastName(nullptr));
    EXPECT_EQ(S_OK, contact->get_LastName(text.Put()));
    EXPECT_FALSE(text);
    EXPECT_EQ(S_OK, contact->put_PersistentID(Bstr(L"00AB").Get()));
    EXPECT_EQ(E_POINTER, contact->put_PersistentID(nullptr));
    EXPECT_EQ(S_OK, entity->get_EntityID(text.Put()));
    EXPECT_EQ(L"00AB", text.View());

    DATE date = 0.0;
    EXPECT_EQ(S_OK, contact->put_Birthday(25569.5));
    EXPECT_EQ(S_OK, contact->get_Birthday(&date));
    EXPECT_EQ(25569.5, date);

    EXPECT_EQ(E_FAIL, contact->get_PhoneNumber(Mobile, text.Put()));
    EXPECT_EQ(S_OK, contact->put_PhoneNumber(Mobile, Bstr(L"+49 170").Get()));
    EXPECT_EQ(S_OK, contact->get_PhoneNumber(Mobile, text.Put()));
    EXPECT_EQ(L"+49 170", text.View());
    EXPECT_EQ(S_OK, contact->put_PhoneNumber(Pager, nullptr));
    EXPECT_EQ(S_OK, contact->get_PhoneNumber(Pager, text.Put()));
    EXPECT_FALSE(text);

    UniqueSafeArray array;
    EXPECT_EQ(E_FAIL, contact->get_Emails(array.Put()));
    EXPECT_EQ(S_OK, contact->put_Emails(ArrayOf({L"a@example.org", L""}).Get()));
    EXPECT_EQ(S_OK, contact->get_Emails(array.Put()));
    EXPECT_THAT(TextsOf(array.Get()), ElementsAre(L"a@example.org", L""));
}

TEST(ItemObjectsTest, AnAddressGoesToAnotherProcessByValue)
{
    const auto contact = MakeByFactory<INContactItem>(CLSID_NContactItem);
    ASSERT_TRUE(contact);
    _tagNAddress out{};
    EXPECT_EQ(E_FAIL, contact->get_Address(OtherAddress, &out));
    const Bstr country(L"Jap\u00e3o");
    const Bstr street(L"1\r\n2");
    const Bstr code(L"10-1");
    const _tagNAddress given = {country.Get(), nullptr, nullptr, street.Get(), nullptr, code.Get()};
    EXPECT_EQ(S_OK, contact->put_Address(OtherAddress, given));
    EXPECT_EQ(S_OK, contact->get_Address(OtherAddress, &out));
    const Bstr texts[] = {Bstr::Adopt(out.Country),
                          Bstr::Adopt(out.StateOrProvince),
                          Bstr::Adopt(out.City),
                          Bstr::Adopt(out.Street),
                          Bstr::Adopt(out.PostOfficeBox),
                          Bstr::Adopt(out.PostalCode)};
    EXPECT_EQ(country.View(), texts[0].View());
    EXPECT_FALSE(texts[1]);
    EXPECT_FALSE(texts[2]);
    EXPECT_EQ(street.View(), texts[3].View());
    EXPECT_FALSE(texts[4]);
    EXPECT_EQ(code.View(), texts[5].View());
}

TEST(ItemObjectsTest, IndexesWorkAcrossProcesses)
{
    const auto contact = MakeByFactory<INContactItem>(CLSID_NContactItem);
    ASSERT_TRUE(contact);
    constexpr LONG kLast = 0x4C617374; // "Last"
    Bstr text;
    EXPECT_EQ(S_OK, contact->SetStringByIndex(kLast, Bstr(L"Ng").Get()));
    EXPECT_EQ(S_OK, contact->GetStringByIndex(kLast, text.Put()));
    EXPECT_EQ(L"Ng", text.View());
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_DATE;
    value.date = 4.5;
    EXPECT_EQ(S_OK, contact->SetPropertyValue(kLast, &value));
    VariantInit(&value);
    EXPECT_EQ(S_OK, contact->GetPropertyValue(kLast, &value));
    EXPECT_EQ(VT_DATE, value.vt);
    EXPECT_EQ(4.5, value.date);
    value.vt = VT_R8;
    EXPECT_EQ(E_INVALIDARG, contact->SetPropertyValue(kLast, &value));
    EXPECT_EQ(E_NOTIMPL, contact->SetStringByIndex(0x456E7472 /* Entr */, Bstr(L"x").Get()));
}

TEST(ItemObjectsTest, GroupsAndCategoriesKeepTheirItems)
{
    const auto group = MakeByFactory<INContactGroup>(CLSID_NContactGroup);
    const auto category = MakeByFactory<INContactCategory>(CLSID_NContactCategory);
    ASSERT_TRUE(group && category);
    UniqueSafeArray array;
    EXPECT_EQ(E_FAIL, group->get_CategoryIDs(array.Put()));
    EXPECT_EQ(S_OK, group->get_Items(0, array.Put()));
    EXPECT_FALSE(array);
    EXPECT_EQ(S_OK, group->put_Items(0, ArrayOf({L"member"}).Get()));
    EXPECT_EQ(S_OK, group->put_Items(1, ArrayOf({L"group"}).Get()));
    EXPECT_EQ(S_OK, group->get_Items(0, array.Put()));
    EXPECT_THAT(TextsOf(array.Get()), ElementsAre(L"member"));
    EXPECT_EQ(S_OK, category->put_Items(ArrayOf({L"contact"}).Get()));
    EXPECT_EQ(S_OK, category->get_Items(array.Put()));
    EXPECT_THAT(TextsOf(array.Get()), ElementsAre(L"contact"));
    EXPECT_EQ(S_OK, category->put_Color(-7));
    LONG color = 0;
    EXPECT_EQ(S_OK, category->get_Color(&color));
    EXPECT_EQ(-7, color);
    ComPtr<INEntityItem> entity;
    ASSERT_EQ(S_OK, category.As(&entity));
    EXPECT_EQ(S_OK, entity->put_FolderID(nullptr));
}
