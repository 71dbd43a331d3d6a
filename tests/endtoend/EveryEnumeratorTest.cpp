// Every type of enumerator of every back end as a client of another process uses it: all objects
// come from the server's factory, and items are walked, added, updated and deleted.
#include "endtoend/StoredItemsTest.h"

#include <gmock/gmock.h>

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

namespace
{
using Texts = std::vector<std::wstring>;

class EveryEnumeratorTest : public StoredItemsTest, public testing::WithParamInterface<Kind>
{
  protected:
    void SetUp() override
    {
        StoredItemsTest::SetUp();
        factory = MakeInServer<INObjectFactory>(CLSID_NObjectFactory64);
        ASSERT_TRUE(factory);
        service = Make<INPersonalInformationService>(CLSID_NPersonalInformationService);
        ASSERT_TRUE(service);
        ASSERT_EQ(S_OK, service->StartService(Bstr(GetParam().backEnd).Get()));
    }
    void TearDown() override
    {
        if (service)
        {
            EXPECT_EQ(S_OK, service->StopService());
        }
    }

    template <typename Interface> ComPtr<Interface> Make(const CLSID& clsid)
    {
        ComPtr<IUnknown> unknown;
        ComPtr<Interface> object;
        EXPECT_EQ(S_OK, factory->CreateInstance(clsid, unknown.GetAddressOf()));
        if (unknown)
        {
            EXPECT_EQ(S_OK, unknown.As(&object));
        }
        return object;
    }
    // A new one, loaded and before its first item.
    ComPtr<INEnumerator> Enumerator()
    {
        ComPtr<INEnumerator> enumerator;
        EXPECT_EQ(S_OK, service->GetEnumerator(GetParam().type, enumerator.GetAddressOf()));
        EXPECT_TRUE(enumerator);
        return enumerator;
    }
    Texts Walk(INEnumerator& enumerator)
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        EXPECT_EQ(S_OK, enumerator.ResetItem(&done));
        EXPECT_EQ(VARIANT_TRUE, done);
        Texts names;
        ComPtr<INEntityItem> item;
        while (names.size() < 50 && enumerator.GetNextItem(item.ReleaseAndGetAddressOf()) == S_OK)
            names.push_back(GetParam().item.read(*item.Get()).name);
        return names;
    }
    Texts WalkAnew() { return Walk(*Enumerator().Get()); }
    // The stored item and, where it shows, another one.
    Texts StoredAnd(const wchar_t* other) const
    {
        Texts names = {GetParam().stored};
        if (GetParam().staysInTheList)
            names.push_back(other);
        return names;
    }

    ComPtr<INObjectFactory> factory;
    ComPtr<INPersonalInformationService> service;
};
} // namespace

TEST_P(EveryEnumeratorTest, WalksAddsUpdatesAndDeletes)
{
    const Kind& kind = GetParam();
    const auto enumerator = Enumerator();
    ASSERT_TRUE(enumerator);
    EXPECT_THAT(Walk(*enumerator.Get()), ElementsAre(kind.stored));

    const auto item = Make<INEntityItem>(kind.item.classID);
    ASSERT_TRUE(item);
    kind.item.write(*item.Get(), {L"Added \u65e5", 7});
    Bstr id;
    ASSERT_EQ(S_OK, enumerator->AddItem(item.Get(), id.Put()));
    EXPECT_NE(0u, id.View().size());

    const auto another = Enumerator();
    EXPECT_EQ(StoredAnd(L"Added \u65e5"), Walk(*another.Get()));
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, another->ResetItem(&done));
    ComPtr<INEntityItem> found;
    ASSERT_EQ(S_OK, another->GetItemByID(id.Get(), found.GetAddressOf()));
    EXPECT_EQ((ItemValues{L"Added \u65e5", kind.item.numberIs == NumberIs::NotStored ? 0 : 7}),
              kind.item.read(*found.Get()));
    kind.item.write(*found.Get(), {L"Changed"});
    EXPECT_EQ(S_OK, another->UpdateItem(found.Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_EQ(StoredAnd(L"Changed"), WalkAnew());

    done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, another->DeleteItem(id.Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_THAT(WalkAnew(), ElementsAre(kind.stored));
}

INSTANTIATE_TEST_SUITE_P(BackEnds,
                         EveryEnumeratorTest,
                         testing::ValuesIn(EveryKind().begin(), EveryKind().end()),
                         [](const auto& tested) { return tested.param.name; });

TEST(MissingEnumeratorTest, TheBackEndsOfWindowsHaveNoListsOfGroupsAndCategories)
{
    const CalendarFolder folder;
    for (const wchar_t* backEnd : {kWindowsMail, kOutlookExpress})
    {
        const auto service = StartBackEnd(backEnd);
        ASSERT_TRUE(service);
        for (const _tagNEnumeratorType type : {ContactCategory, ContactGroup})
        {
            ComPtr<INEnumerator> enumerator;
            EXPECT_EQ(S_OK, service->GetEnumerator(type, enumerator.GetAddressOf()));
            EXPECT_FALSE(enumerator);
        }
        EXPECT_EQ(S_OK, service->StopService());
    }
}

// Without a folder of calendars there is nothing to walk and no place for a file.
TEST(MissingEnumeratorTest, OutlookExpressWalksAnEmptyCalendarAndAddsNothing)
{
    const CalendarFolder folder;
    const auto service = StartBackEnd(kOutlookExpress);
    ASSERT_TRUE(service);
    ComPtr<INEnumerator> enumerator;
    EXPECT_EQ(S_OK, service->GetEnumerator(Calendar, enumerator.GetAddressOf()));
    ASSERT_TRUE(enumerator);
    ComPtr<INEntityItem> item;
    EXPECT_EQ(E_FAIL, enumerator->GetNextItem(item.GetAddressOf()));
    const auto added = MakeInServer<INEntityItem>(CLSID_NAppointment);
    kAppointmentItem.write(*added.Get(), {L"Added"});
    Bstr id;
    EXPECT_EQ(E_FAIL, enumerator->AddItem(added.Get(), id.Put()));
    EXPECT_EQ(S_OK, service->StopService());
}

namespace
{
// Outlook 2003, as the registry tells it: its categories lie there too.
class Outlook2003CategoriesTest : public testing::Test
{
  protected:
    void SetUp() override
    {
        store.Load(kOneItemOfEachKind);
        // A list of texts; the library lies where one without a language lies.
        application.Set(L"Microsoft\\Office\\11.0\\Outlook" + std::wstring(1, L'\0') +
                            L"NoLanguage" + std::wstring(1, L'\0'),
                        REG_MULTI_SZ);
        masterList.Set(L"Work;");
        service = StartBackEnd(kOutlook);
        ASSERT_TRUE(service);
    }
    void TearDown() override
    {
        if (service)
        {
            EXPECT_EQ(S_OK, service->StopService());
        }
    }
    ComPtr<INEnumerator> Enumerator()
    {
        ComPtr<INEnumerator> enumerator;
        EXPECT_EQ(S_OK, service->GetEnumerator(ContactCategory, enumerator.GetAddressOf()));
        return enumerator;
    }
    static std::vector<ComPtr<INEntityItem>> Items(INEnumerator& enumerator)
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        EXPECT_EQ(S_OK, enumerator.ResetItem(&done));
        std::vector<ComPtr<INEntityItem>> items;
        ComPtr<INEntityItem> item;
        while (items.size() < 50 && enumerator.GetNextItem(item.ReleaseAndGetAddressOf()) == S_OK)
            items.push_back(item);
        return items;
    }
    Texts NamesAnew()
    {
        Texts names;
        for (const auto& item : Items(*Enumerator().Get()))
            names.push_back(kCategoryItem.read(*item.Get()).name);
        return names;
    }
    static HRESULT Find(INEnumerator& enumerator, const Bstr& id, ComPtr<INEntityItem>& item)
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        EXPECT_EQ(S_OK, enumerator.ResetItem(&done));
        return enumerator.GetItemByID(id.Get(), item.ReleaseAndGetAddressOf());
    }

    MessageStore store{RecordArrays::LeftToTheRuntime};
    ScopedRegistryValue application{
        HKEY_LOCAL_MACHINE, L"Software\\Clients\\Mail\\Microsoft Outlook", L"MSIApplicationLCID"};
    ScopedRegistryValue masterList{HKEY_CURRENT_USER,
                                   L"Software\\Microsoft\\Office\\11.0\\Outlook\\Categories",
                                   L"MasterList"};
    ComPtr<INPersonalInformationService> service;
};
} // namespace

// IDs hold for one enumerator; between two the name tells which category it is.
TEST_F(Outlook2003CategoriesTest, AreWalkedAddedUpdatedAndDeletedByName)
{
    const auto enumerator = Enumerator();
    ASSERT_TRUE(enumerator);
    ASSERT_EQ(1u, Items(*enumerator.Get()).size());
    const auto item = MakeInServer<INEntityItem>(CLSID_NContactCategory);
    kCategoryItem.write(*item.Get(), {L"Added \u65e5"});
    Bstr id;
    ASSERT_EQ(S_OK, enumerator->AddItem(item.Get(), id.Put()));
    EXPECT_EQ(38u, id.View().size()); // a GUID in braces
    ComPtr<INEntityItem> found;
    ASSERT_EQ(S_OK, Find(*enumerator.Get(), id, found));
    EXPECT_EQ(L"Added \u65e5", kCategoryItem.read(*found.Get()).name);
    EXPECT_THAT(NamesAnew(), ElementsAre(L"Work", L"Added \u65e5"));

    const auto another = Enumerator();
    EXPECT_EQ(E_FAIL, Find(*another.Get(), id, found));
    const auto items = Items(*another.Get());
    ASSERT_EQ(2u, items.size());
    kCategoryItem.write(*items[1].Get(), {L"Changed"});
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, another->UpdateItem(items[1].Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_THAT(NamesAnew(), ElementsAre(L"Work", L"Changed"));

    Bstr changedID;
    EXPECT_EQ(S_OK, items[1]->get_EntityID(changedID.Put()));
    EXPECT_EQ(E_FAIL, another->DeleteItem(changedID.Get(), &done));
    done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, another->DeleteItem(Bstr(L"Changed").Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_THAT(NamesAnew(), ElementsAre(L"Work"));
}
