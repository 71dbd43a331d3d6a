// The group object: every property in each of its forms. Its arrays are in ArrayPropertiesTest.
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
const TextProperty<INContactGroup> kTexts[] = {
    {"GroupID", &INContactGroup::get_GroupID, &INContactGroup::put_GroupID},
    {"Name", &INContactGroup::get_Name, &INContactGroup::put_Name},
};
const TextProperty<INEntityItem> kEntityTexts[] = {
    {"EntityID", &INEntityItem::get_EntityID, &INEntityItem::put_EntityID},
    {"FolderID", &INEntityItem::get_FolderID, &INEntityItem::put_FolderID},
};
const DateProperty<INEntityItem> kModified = {"LastModificationTime",
                                              &INEntityItem::get_LastModificationTime,
                                              &INEntityItem::put_LastModificationTime};

class ContactGroupTest : public testing::Test
{
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_group);
        ASSERT_EQ(S_OK, m_group.As(&m_entity));
    }
    std::vector<std::wstring> Items(LONG subGroup)
    {
        UniqueSafeArray out;
        EXPECT_EQ(S_OK, m_group->get_Items(subGroup, out.Put()));
        return TextsOf(out.Get());
    }

    ComPtr<INContactGroup> m_group = CreateObject<INContactGroup>(CLSID_NContactGroup);
    ComPtr<INEntityItem> m_entity;
};
} // namespace

TEST_F(ContactGroupTest, AnswersForItsTwoInterfacesAndDispatch)
{
    ExpectInterfaces(m_group.Get(),
                     {IID_IUnknown, IID_IDispatch, IID_INContactGroup, IID_INEntityItem});
    ComPtr<IDispatch> dispatch;
    ASSERT_EQ(S_OK, m_entity.As(&dispatch));
    EXPECT_EQ(static_cast<IDispatch*>(m_group.Get()), dispatch.Get());
}

TEST_F(ContactGroupTest, EveryTextPropertyCopiesInAndOut)
{
    for (const auto& property : kTexts)
        ExpectTextForm(property, m_group.Get());
    for (const auto& property : kEntityTexts)
        ExpectTextForm(property, m_entity.Get());
}

TEST_F(ContactGroupTest, EveryTextPropertyHasAFieldOfItsOwn)
{
    PutOwnTexts(kTexts, m_group.Get());
    PutOwnTexts(kEntityTexts, m_entity.Get());
    ExpectOwnTexts(kTexts, m_group.Get());
    ExpectOwnTexts(kEntityTexts, m_entity.Get());
}

TEST_F(ContactGroupTest, ATextThatFindsNoMemoryIsOutOfMemory)
{
    for (const auto& property : kTexts)
        ExpectOutOfMemory(property, m_group.Get());
    for (const auto& property : kEntityTexts)
        ExpectOutOfMemory(property, m_entity.Get());
}

TEST_F(ContactGroupTest, NullIsRefusedButForTheFolder)
{
    for (const auto& property : kTexts)
        ExpectNullRefused(property, m_group.Get());
    ExpectNullRefused(kEntityTexts[0], m_entity.Get());
    ExpectNullClears(kEntityTexts[1], m_entity.Get());
}

TEST_F(ContactGroupTest, TheModificationTimeKeepsEveryBit)
{
    ExpectDateForm(kModified, m_entity.Get());
}

TEST_F(ContactGroupTest, ANewGroupGivesNoItemsWithoutSayingSo)
{
    const UniqueSafeArray sentinel = ArrayOf({L"sentinel"});
    SAFEARRAY* out = sentinel.Get();
    EXPECT_EQ(S_OK, m_group->get_Items(0, &out));
    EXPECT_EQ(S_OK, m_group->get_Items(1, &out));
    EXPECT_EQ(E_FAIL, m_group->get_CategoryIDs(&out));
    EXPECT_EQ(sentinel.Get(), out);
}

TEST_F(ContactGroupTest, MembersSubGroupsAndCategoriesAreThreeArrays)
{
    EXPECT_EQ(S_OK, m_group->put_Items(0, ArrayOf({L"member"}).Get()));
    const UniqueSafeArray sentinel = ArrayOf({L"sentinel"});
    SAFEARRAY* out = sentinel.Get();
    EXPECT_EQ(S_OK, m_group->get_Items(1, &out));
    EXPECT_EQ(sentinel.Get(), out);
    EXPECT_EQ(S_OK, m_group->put_Items(1, ArrayOf({L"group"}).Get()));
    EXPECT_EQ(S_OK, m_group->put_CategoryIDs(ArrayOf({L"category"}).Get()));
    EXPECT_THAT(Items(0), ElementsAre(L"member"));
    EXPECT_THAT(Items(1), ElementsAre(L"group"));
    UniqueSafeArray categories;
    EXPECT_EQ(S_OK, m_group->get_CategoryIDs(categories.Put()));
    EXPECT_THAT(TextsOf(categories.Get()), ElementsAre(L"category"));
    // Every number but zero means the sub-groups.
    for (const LONG subGroup : {2L, -1L, 0x7FFFFFFFL, static_cast<LONG>(0x80000000)})
    {
        EXPECT_THAT(Items(subGroup), ElementsAre(L"group")) << subGroup;
        EXPECT_EQ(S_OK, m_group->put_Items(subGroup, ArrayOf({L"group"}).Get()));
    }
    EXPECT_THAT(Items(0), ElementsAre(L"member"));
}

TEST_F(ContactGroupTest, LateBoundCallsReachEveryProperty)
{
    for (const wchar_t* name : {L"GroupID", L"Name"})
    {
        EXPECT_EQ(S_OK, DispatchPut(m_group.Get(), name, {Variant(name)}).result);
        EXPECT_EQ(name, DispatchGet(m_group.Get(), name).value.Text());
    }
    EXPECT_EQ(S_OK, DispatchPut(m_entity.Get(), L"EntityID", {Variant(L"id")}).result);
    EXPECT_EQ(S_OK, DispatchPut(m_entity.Get(), L"FolderID", {Variant(L"folder")}).result);
    EXPECT_EQ(L"id", DispatchGet(m_entity.Get(), L"EntityID").value.Text());
    EXPECT_EQ(L"folder", DispatchGet(m_entity.Get(), L"FolderID").value.Text());

    EXPECT_EQ(E_FAIL, DispatchGet(m_group.Get(), L"CategoryIDs").exceptionCode);
    Variant array;
    array.Get()->vt = VT_ARRAY | VT_BSTR;
    array.Get()->parray = ArrayOf({L"one"}).Detach();
    EXPECT_EQ(S_OK, DispatchPut(m_group.Get(), L"CategoryIDs", {array}).result);
    EXPECT_EQ(S_OK, DispatchPut(m_group.Get(), L"Items", {Variant(1L), array}).result);
    EXPECT_THAT(Items(1), ElementsAre(L"one"));
    const DispatchResult members = DispatchGet(m_group.Get(), L"Items", {Variant(0L)});
    EXPECT_EQ(S_OK, members.result);
    EXPECT_EQ(nullptr, members.value.Value().parray);
    const DispatchResult groups = DispatchGet(m_group.Get(), L"Items", {Variant(1L)});
    EXPECT_EQ(S_OK, groups.result);
    ASSERT_EQ(VT_ARRAY | VT_BSTR, groups.value.Type());
    EXPECT_THAT(TextsOf(groups.value.Value().parray), ElementsAre(L"one"));
    EXPECT_EQ(DISP_E_UNKNOWNNAME, DispatchGet(m_group.Get(), L"EntityID").result);
}

TEST_F(ContactGroupTest, LivesInsideAnOuterObjectAndLocksTheServer)
{
    CServerModule* module = CServerModule::Current();
    const LONG before = module->GetLockCount();
    TestOuter outer;
    ASSERT_EQ(S_OK, outer.Aggregate(CLSID_NContactGroup));
    EXPECT_EQ(before + 1, module->GetLockCount());
    {
        ComPtr<INContactGroup> group;
        ASSERT_EQ(S_OK,
                  outer.QueryInterface(IID_INContactGroup,
                                       reinterpret_cast<void**>(group.GetAddressOf())));
        ExpectInterfaces(
            group.Get(),
            {IID_IUnknown, IID_IPersist, IID_IDispatch, IID_INContactGroup, IID_INEntityItem});
    }
    EXPECT_EQ(1u, outer.References());
    outer.DropInner();
    EXPECT_EQ(before, module->GetLockCount());
}
