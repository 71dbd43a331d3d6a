// The category object: every property in each of its forms. Its array is in ArrayPropertiesTest.
#include "automation/base/ServerModule.h"
#include "support/Dispatch.h"
#include "tests/automation/CollectionFixture.h"
#include "tests/automation/ItemProperties.h"

#include <gmock/gmock.h>

#include "PimStoreBridge.h"

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

namespace
{
const TextProperty<INContactCategory> kName = {
    "Name", &INContactCategory::get_Name, &INContactCategory::put_Name};
const TextProperty<INEntityItem> kEntityTexts[] = {
    {"EntityID", &INEntityItem::get_EntityID, &INEntityItem::put_EntityID},
    {"FolderID", &INEntityItem::get_FolderID, &INEntityItem::put_FolderID},
};
const DateProperty<INEntityItem> kModified = {"LastModificationTime",
                                              &INEntityItem::get_LastModificationTime,
                                              &INEntityItem::put_LastModificationTime};

class ContactCategoryTest : public testing::Test
{
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_category);
        ASSERT_EQ(S_OK, m_category.As(&m_entity));
    }

    ComPtr<INContactCategory> m_category = CreateObject<INContactCategory>(CLSID_NContactCategory);
    ComPtr<INEntityItem> m_entity;
};
} // namespace

TEST_F(ContactCategoryTest, AnswersForItsTwoInterfacesAndDispatch)
{
    ExpectInterfaces(m_category.Get(),
                     {IID_IUnknown, IID_IDispatch, IID_INContactCategory, IID_INEntityItem});
    ComPtr<IDispatch> dispatch;
    ASSERT_EQ(S_OK, m_entity.As(&dispatch));
    EXPECT_EQ(static_cast<IDispatch*>(m_category.Get()), dispatch.Get());
}

TEST_F(ContactCategoryTest, EveryTextPropertyCopiesInAndOut)
{
    ExpectTextForm(kName, m_category.Get());
    for (const auto& property : kEntityTexts)
        ExpectTextForm(property, m_entity.Get());
}

TEST_F(ContactCategoryTest, ATextThatFindsNoMemoryIsOutOfMemory)
{
    ExpectOutOfMemory(kName, m_category.Get());
    for (const auto& property : kEntityTexts)
        ExpectOutOfMemory(property, m_entity.Get());
}

TEST_F(ContactCategoryTest, EveryTextPropertyHasAFieldOfItsOwn)
{
    const std::initializer_list<TextProperty<INContactCategory>> names = {kName};
    PutOwnTexts(names, m_category.Get());
    PutOwnTexts(kEntityTexts, m_entity.Get());
    ExpectOwnTexts(names, m_category.Get());
    ExpectOwnTexts(kEntityTexts, m_entity.Get());
}

TEST_F(ContactCategoryTest, NullIsRefusedButForTheFolder)
{
    ExpectNullRefused(kName, m_category.Get());
    ExpectNullRefused(kEntityTexts[0], m_entity.Get());
    ExpectNullClears(kEntityTexts[1], m_entity.Get());
}

TEST_F(ContactCategoryTest, TheModificationTimeKeepsEveryBit)
{
    ExpectDateForm(kModified, m_entity.Get());
}

TEST_F(ContactCategoryTest, TheColorIsAnyNumber)
{
    LONG color = 77;
    EXPECT_EQ(S_OK, m_category->get_Color(&color));
    EXPECT_EQ(0, color);
    EXPECT_EQ(E_POINTER, m_category->get_Color(nullptr));
    for (const LONG value : {25L, -1L, 0x7FFFFFFFL, static_cast<LONG>(0x80000000)})
    {
        EXPECT_EQ(S_OK, m_category->put_Color(value));
        EXPECT_EQ(S_OK, m_category->get_Color(&color));
        EXPECT_EQ(value, color);
    }
}

TEST_F(ContactCategoryTest, LateBoundCallsReachEveryProperty)
{
    EXPECT_EQ(S_OK, DispatchPut(m_category.Get(), L"Name", {Variant(L"Family")}).result);
    EXPECT_EQ(L"Family", DispatchGet(m_category.Get(), L"Name").value.Text());
    EXPECT_EQ(S_OK, DispatchPut(m_category.Get(), L"Color", {Variant(-1L)}).result);
    const DispatchResult color = DispatchGet(m_category.Get(), L"Color");
    EXPECT_EQ(VT_I4, color.value.Type());
    EXPECT_EQ(-1, color.value.Value().lVal);
    const DispatchResult none = DispatchGet(m_category.Get(), L"Items");
    EXPECT_EQ(S_OK, none.result);
    EXPECT_EQ(nullptr, none.value.Value().parray);
    Variant array;
    array.Get()->vt = VT_ARRAY | VT_BSTR;
    array.Get()->parray = ArrayOf({L"one", L"two"}).Detach();
    EXPECT_EQ(S_OK, DispatchPut(m_category.Get(), L"Items", {array}).result);
    const DispatchResult items = DispatchGet(m_category.Get(), L"Items");
    EXPECT_EQ(S_OK, items.result);
    ASSERT_EQ(VT_ARRAY | VT_BSTR, items.value.Type());
    EXPECT_THAT(TextsOf(items.value.Value().parray), ElementsAre(L"one", L"two"));
    EXPECT_EQ(DISP_E_UNKNOWNNAME, DispatchGet(m_category.Get(), L"EntityID").result);
}

TEST_F(ContactCategoryTest, LivesInsideAnOuterObjectAndLocksTheServer)
{
    CServerModule* module = CServerModule::Current();
    const LONG before = module->GetLockCount();
    TestOuter outer;
    ASSERT_EQ(S_OK, outer.Aggregate(CLSID_NContactCategory));
    EXPECT_EQ(before + 1, module->GetLockCount());
    {
        ComPtr<INContactCategory> category;
        ASSERT_EQ(S_OK,
                  outer.QueryInterface(IID_INContactCategory,
                                       reinterpret_cast<void**>(category.GetAddressOf())));
        ExpectInterfaces(
            category.Get(),
            {IID_IUnknown, IID_IPersist, IID_IDispatch, IID_INContactCategory, IID_INEntityItem});
    }
    EXPECT_EQ(1u, outer.References());
    outer.DropInner();
    EXPECT_EQ(before, module->GetLockCount());
}
