// The enumerator object: every method by its results, its outputs and the calls on its table.
#include "support/Dispatch.h"
#include "tests/automation/CollectionFixture.h"

using Microsoft::WRL::ComPtr;

namespace
{
constexpr VARIANT_BOOL kUntouched = 0x1234;

class EnumeratorTest : public CollectionFixture
{
  protected:
    void SetUp() override
    {
        Start();
        backEnds.manager.GetEnumerator(AddressBook);
        enumerator = CreateObject<INEnumerator>(CLSID_NEnumerator);
        ASSERT_TRUE(enumerator);
    }
    void TearDown() override { enumerator.Reset(); }

    ComPtr<FakeItem> item = FakeItem::Make(IID_INContactItem, L"AB");
    Bstr id{L"ID"};
    ComPtr<INEnumerator> enumerator;
};
} // namespace

TEST_F(EnumeratorTest, AnswersForItsInterfaceAndDispatch)
{
    ExpectInterfaces(enumerator.Get(), {IID_IUnknown, IID_IDispatch, IID_INEnumerator});
}

TEST_F(EnumeratorTest, LoadsAndResetsTheTableOfTheRememberedType)
{
    EXPECT_EQ((CallLog{L"provider GetEnumerator 3", L"3 GetItemIDs", L"3 ResetItem"}), log);
    log.clear();
    enumerator.Reset();
    EXPECT_EQ((CallLog{L"3 delete"}), log);
}

TEST_F(EnumeratorTest, IsRefusedWithoutARememberedTypeATableOrAProvider)
{
    void* none = this;
    backEnds.manager.GetEnumerator(static_cast<_tagNEnumeratorType>(7));
    EXPECT_EQ(
        E_FAIL,
        CoCreateInstance(CLSID_NEnumerator, nullptr, kServerContext, IID_INEnumerator, &none));
    EXPECT_EQ(nullptr, none);
    backEnds.manager.StopService();
    none = this;
    EXPECT_EQ(
        E_FAIL,
        CoCreateInstance(CLSID_NEnumerator, nullptr, kServerContext, IID_INEnumerator, &none));
    EXPECT_EQ(nullptr, none);
    TestOuter outer;
    EXPECT_EQ(E_FAIL, outer.Aggregate(CLSID_NEnumerator));

    // The creation without a provider forgot the type.
    ASSERT_EQ(S_OK, backEnds.manager.StartService(L"Windows Mail"));
    none = this;
    EXPECT_EQ(
        E_FAIL,
        CoCreateInstance(CLSID_NEnumerator, nullptr, kServerContext, IID_INEnumerator, &none));
    EXPECT_EQ(nullptr, none);
}

TEST_F(EnumeratorTest, WorksInsideAnAggregate)
{
    TestOuter outer;
    ASSERT_EQ(S_OK, outer.Aggregate(CLSID_NEnumerator));
    ComPtr<INEnumerator> inner;
    ASSERT_EQ(
        S_OK,
        outer.QueryInterface(IID_INEnumerator, reinterpret_cast<void**>(inner.GetAddressOf())));
    EXPECT_EQ(S_OK, inner->Refresh());
    inner.Reset();
    outer.DropInner();
    EXPECT_EQ(1u, outer.References());
}

TEST_F(EnumeratorTest, NullArgumentsReachNoTable)
{
    log.clear();
    VARIANT_BOOL result = kUntouched;
    BSTR text = nullptr;
    INEntityItem* out = nullptr;
    EXPECT_EQ(E_POINTER, enumerator->ResetItem(nullptr));
    EXPECT_EQ(E_POINTER, enumerator->GetNextItem(nullptr));
    EXPECT_EQ(E_POINTER, enumerator->GetItemByID(nullptr, &out));
    EXPECT_EQ(E_POINTER, enumerator->GetItemByID(id.Get(), nullptr));
    EXPECT_EQ(E_POINTER, enumerator->UpdateItem(nullptr, &result));
    EXPECT_EQ(E_POINTER, enumerator->UpdateItem(item.Get(), nullptr));
    EXPECT_EQ(E_POINTER, enumerator->AddItem(nullptr, &text));
    EXPECT_EQ(E_POINTER, enumerator->AddItem(item.Get(), nullptr));
    EXPECT_EQ(E_POINTER, enumerator->DeleteItem(nullptr, &result));
    EXPECT_EQ(E_POINTER, enumerator->DeleteItem(id.Get(), nullptr));
    EXPECT_EQ(CallLog{}, log);
    EXPECT_EQ(kUntouched, result);
}

TEST_F(EnumeratorTest, WalksWithTheTablesOwnIds)
{
    log.clear();
    EXPECT_EQ(S_OK, enumerator->Refresh());
    VARIANT_BOOL result = kUntouched;
    EXPECT_EQ(S_OK, enumerator->ResetItem(&result));
    EXPECT_EQ(VARIANT_TRUE, result);
    Table(L"3").current = item.Get();
    ComPtr<INEntityItem> out;
    EXPECT_EQ(S_OK, enumerator->GetNextItem(out.GetAddressOf()));
    EXPECT_EQ(item.Get(), out.Get());
    out.Reset();
    EXPECT_EQ(S_OK, enumerator->GetItemByID(id.Get(), out.GetAddressOf()));
    EXPECT_EQ(item.Get(), out.Get());
    EXPECT_EQ(L"", item->puts);
    Table(L"3").current.Reset();
    INEntityItem* none = item.Get();
    EXPECT_EQ(E_FAIL, enumerator->GetNextItem(&none));
    EXPECT_EQ(nullptr, none);
    none = item.Get();
    EXPECT_EQ(E_FAIL, enumerator->GetItemByID(id.Get(), &none));
    EXPECT_EQ(nullptr, none);
    EXPECT_EQ((CallLog{L"3 GetItemIDs",
                       L"3 ResetItem",
                       L"3 GetNextItem",
                       L"3 GetCurrentItem",
                       L"3 GetItemByID ID",
                       L"3 GetCurrentItem",
                       L"3 GetNextItem",
                       L"3 GetCurrentItem",
                       L"3 GetItemByID ID",
                       L"3 GetCurrentItem"}),
              log);
}

TEST_F(EnumeratorTest, WritesTheItemAsGiven)
{
    log.clear();
    item->isEntity = false; // a query for INEntityItem would fail
    Table(L"3").addResult = L"NEW";
    Table(L"3").addFolderID = L"FOLDER";
    Bstr text;
    EXPECT_EQ(S_OK, enumerator->AddItem(item.Get(), text.Put()));
    EXPECT_EQ(L"NEW", text.View());
    VARIANT_BOOL result = kUntouched;
    EXPECT_EQ(S_OK, enumerator->UpdateItem(item.Get(), &result));
    EXPECT_EQ(VARIANT_TRUE, result);
    result = kUntouched;
    EXPECT_EQ(S_OK, enumerator->DeleteItem(id.Get(), &result));
    EXPECT_EQ(VARIANT_TRUE, result);
    EXPECT_EQ(L"", item->puts);
    EXPECT_EQ((CallLog{L"3 AddItem AB", L"3 UpdateItem AB", L"3 DeleteItem ID"}), log);
}

TEST_F(EnumeratorTest, FailedWritesLeaveTheirOutputsAlone)
{
    Table(L"3").updateResult = FALSE;
    Table(L"3").deleteResult = FALSE;
    VARIANT_BOOL result = kUntouched;
    const BSTR mine = id.Get();
    BSTR text = mine;
    EXPECT_EQ(E_FAIL, enumerator->AddItem(item.Get(), &text));
    EXPECT_EQ(mine, text);
    EXPECT_EQ(E_FAIL, enumerator->UpdateItem(item.Get(), &result));
    EXPECT_EQ(E_FAIL, enumerator->DeleteItem(id.Get(), &result));
    EXPECT_EQ(kUntouched, result);
}

TEST_F(EnumeratorTest, AnIdThatFindsNoMemoryIsOutOfMemory)
{
    Table(L"3").addResult = LongTextsFail::Text();
    const BSTR mine = id.Get();
    BSTR text = mine;
    const LongTextsFail fail;
    EXPECT_EQ(E_OUTOFMEMORY, enumerator->AddItem(item.Get(), &text));
    EXPECT_EQ(mine, text);
}

TEST_F(EnumeratorTest, ItsLastReleaseDuringAWriteWaitsForTheWrite)
{
    log.clear();
    INEnumerator* const raw = enumerator.Get();
    Table(L"3").duringWrite = [&] {
        enumerator.Reset();
        log.push_back(L"released");
    };
    Table(L"3").addResult = L"NEW";
    Bstr text;
    EXPECT_EQ(S_OK, raw->AddItem(item.Get(), text.Put()));
    EXPECT_EQ(L"NEW", text.View());
    EXPECT_EQ((CallLog{L"3 AddItem AB", L"released", L"3 delete"}), log);
}

TEST_F(EnumeratorTest, WorksLateBound)
{
    const auto real = CreateObject<INEntityItem>(CLSID_NAppointment);
    ASSERT_TRUE(real);
    Table(L"3").current = real;
    Table(L"3").addResult = L"NEW";
    EXPECT_EQ(S_OK, DispatchCall(enumerator.Get(), L"Refresh").result);
    EXPECT_EQ(VARIANT_TRUE, DispatchCall(enumerator.Get(), L"ResetItem").value.Value().boolVal);
    const DispatchResult next = DispatchCall(enumerator.Get(), L"GetNextItem");
    EXPECT_EQ(S_OK, next.result);
    EXPECT_EQ(VT_DISPATCH, next.value.Type());
    EXPECT_EQ(static_cast<IDispatch*>(real.Get()), next.value.Value().pdispVal);
    EXPECT_EQ(S_OK, DispatchCall(enumerator.Get(), L"GetItemByID", {Variant(L"ID")}).result);
    EXPECT_EQ(
        L"NEW",
        DispatchCall(enumerator.Get(), L"AddItem", {Variant::Object(real.Get())}).value.Text());
    EXPECT_EQ(S_OK,
              DispatchCall(enumerator.Get(), L"UpdateItem", {Variant::Object(real.Get())}).result);
    EXPECT_EQ(S_OK, DispatchCall(enumerator.Get(), L"DeleteItem", {Variant(L"ID")}).result);
    Table(L"3").current.Reset();
    const DispatchResult end = DispatchCall(enumerator.Get(), L"GetNextItem");
    EXPECT_EQ(DISP_E_EXCEPTION, end.result);
    EXPECT_EQ(E_FAIL, end.exceptionCode);
}
