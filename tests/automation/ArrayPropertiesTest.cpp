// The array properties of all item objects: what they share, and the two forms of it.
#include "tests/automation/CollectionFixture.h"
#include "tests/automation/ItemProperties.h"

#include <gmock/gmock.h>

#include <functional>

#include "PimStoreBridge.h"

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
// The array property of a new object.
struct ArrayCalls
{
    std::function<HRESULT(SAFEARRAY**)> get;
    std::function<HRESULT(SAFEARRAY*)> put;
};

template <typename Interface>
ArrayCalls CallsOf(REFCLSID clsid,
                   HRESULT (STDMETHODCALLTYPE Interface::*get)(SAFEARRAY**),
                   HRESULT (STDMETHODCALLTYPE Interface::*put)(SAFEARRAY*))
{
    const ComPtr<Interface> object = CreateObject<Interface>(clsid);
    return {[=](SAFEARRAY** out) { return (object.Get()->*get)(out); },
            [=](SAFEARRAY* array) { return (object.Get()->*put)(array); }};
}

ArrayCalls ItemsOfGroup(LONG subGroup)
{
    const ComPtr<INContactGroup> group = CreateObject<INContactGroup>(CLSID_NContactGroup);
    return {[=](SAFEARRAY** out) { return group->get_Items(subGroup, out); },
            [=](SAFEARRAY* array) { return group->put_Items(subGroup, array); }};
}

struct ArrayProperty
{
    const char* name;
    ArrayCalls (*make)();
    bool tellsFailures; // of copies, and of a get before the first put
    bool takesNull;
};

const ArrayProperty kArrays[] = {
    {"ContactEmails",
     [] {
         return CallsOf(CLSID_NContactItem, &INContactItem::get_Emails, &INContactItem::put_Emails);
     },
     true,
     true},
    {"ContactCategoryIDs",
     [] {
         return CallsOf(
             CLSID_NContactItem, &INContactItem::get_CategoryIDs, &INContactItem::put_CategoryIDs);
     },
     true,
     true},
    {"GroupCategoryIDs",
     [] {
         return CallsOf(CLSID_NContactGroup,
                        &INContactGroup::get_CategoryIDs,
                        &INContactGroup::put_CategoryIDs);
     },
     true,
     false},
    {"GroupMembers", [] { return ItemsOfGroup(0); }, false, false},
    {"GroupSubGroups", [] { return ItemsOfGroup(1); }, false, false},
    {"CategoryItems",
     [] {
         return CallsOf(
             CLSID_NContactCategory, &INContactCategory::get_Items, &INContactCategory::put_Items);
     },
     false,
     false},
};

class ArrayPropertiesTest : public testing::TestWithParam<ArrayProperty>
{
  protected:
    UniqueSafeArray Get() const
    {
        UniqueSafeArray out;
        EXPECT_EQ(S_OK, m_array.get(out.Put()));
        EXPECT_TRUE(out);
        return out;
    }
    // The property holds no array: its get says so, or not, and leaves the output as it is.
    void ExpectNone() const
    {
        const UniqueSafeArray sentinel = ArrayOf({L"sentinel"});
        SAFEARRAY* out = sentinel.Get();
        EXPECT_EQ(GetParam().tellsFailures ? E_FAIL : S_OK, m_array.get(&out));
        EXPECT_EQ(sentinel.Get(), out);
    }

    const ArrayCalls m_array = GetParam().make();
};

// An element that puts other arrays while the object copies it or lets go of it.
class MeddlingElement final : public IUnknown
{
  public:
    explicit MeddlingElement(const ArrayCalls& array) : m_array(array) {}
    int puts = 0;
    ULONG references = 1;

    STDMETHODIMP QueryInterface(REFIID, void** result) override
    {
        *result = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override
    {
        Meddle();
        return ++references;
    }
    STDMETHODIMP_(ULONG) Release() override
    {
        Meddle();
        return --references;
    }

  private:
    void Meddle()
    {
        if (puts >= 20)
            return;
        ++puts;
        m_array.put(ArrayOf({L"meddled"}).Get());
    }

    const ArrayCalls& m_array;
};
} // namespace

TEST_P(ArrayPropertiesTest, HoldsNoArrayAtFirst)
{
    ExpectNone();
    EXPECT_EQ(E_POINTER, m_array.get(nullptr));
}

TEST_P(ArrayPropertiesTest, CopiesInAndOut)
{
    {
        const UniqueSafeArray given = ArrayOf({L"a@b.example", L"", L"c"});
        EXPECT_EQ(S_OK, m_array.put(given.Get()));
        const SafeArrayAccess<BSTR> elements(given.Get());
        elements.Data()[0][0] = L'?'; // changes the client's array only
    }
    const UniqueSafeArray first = Get();
    const UniqueSafeArray second = Get();
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_THAT(TextsOf(first.Get()), ElementsAre(L"a@b.example", L"", L"c"));
    {
        const SafeArrayAccess<BSTR> elements(first.Get());
        elements.Data()[0][0] = L'!'; // changes this copy only
    }
    EXPECT_THAT(TextsOf(second.Get()), ElementsAre(L"a@b.example", L"", L"c"));
    EXPECT_THAT(TextsOf(Get().Get()), ElementsAre(L"a@b.example", L"", L"c"));
    EXPECT_EQ(E_POINTER, m_array.get(nullptr));
}

TEST_P(ArrayPropertiesTest, AnotherArrayTakesItsPlaceWhole)
{
    EXPECT_EQ(S_OK, m_array.put(ArrayOf({L"1", L"2"}).Get()));
    EXPECT_EQ(S_OK, m_array.put(ArrayOf({L"only"}).Get()));
    EXPECT_THAT(TextsOf(Get().Get()), ElementsAre(L"only"));
    // An array of no elements is an array too.
    EXPECT_EQ(S_OK, m_array.put(ArrayOf({}).Get()));
    EXPECT_THAT(TextsOf(Get().Get()), IsEmpty());
}

// Where no array may be put, the result is what the system's copy of no array gives.
TEST_P(ArrayPropertiesTest, NullEmptiesItOrIsRefused)
{
    EXPECT_EQ(S_OK, m_array.put(ArrayOf({L"old"}).Get()));
    if (GetParam().takesNull)
    {
        SAFEARRAY* copyOfNone = nullptr;
        const HRESULT result = SafeArrayCopy(nullptr, &copyOfNone);
        EXPECT_EQ(result, m_array.put(nullptr));
        ExpectNone();
        EXPECT_EQ(result, m_array.put(nullptr));
        ExpectNone();
        return;
    }
    EXPECT_EQ(E_POINTER, m_array.put(nullptr));
    EXPECT_THAT(TextsOf(Get().Get()), ElementsAre(L"old"));
}

TEST_P(ArrayPropertiesTest, ArraysOfAnyShapeComeBackAsTheyWere)
{
    SAFEARRAYBOUND plane[] = {{2, -5}, {3, 7}};
    SAFEARRAYBOUND negative[] = {{2, -2147483647}};
    const UniqueSafeArray arrays[] = {
        UniqueSafeArray(SafeArrayCreate(VT_BSTR, 2, plane)),
        UniqueSafeArray(SafeArrayCreate(VT_BSTR, 1, negative)),
        UniqueSafeArray(SafeArrayCreateVector(VT_I4, 3, 4)),
        UniqueSafeArray(SafeArrayCreateVector(VT_VARIANT, 0, 2)),
        UniqueSafeArray(SafeArrayCreateVector(VT_UNKNOWN, 0, 1)),
    };
    for (const UniqueSafeArray& array : arrays)
    {
        ASSERT_TRUE(array);
        EXPECT_EQ(S_OK, m_array.put(array.Get()));
        const UniqueSafeArray out = Get();
        VARTYPE given = VT_EMPTY;
        VARTYPE got = VT_EMPTY;
        EXPECT_EQ(S_OK, SafeArrayGetVartype(array.Get(), &given));
        EXPECT_EQ(S_OK, SafeArrayGetVartype(out.Get(), &got));
        EXPECT_EQ(given, got);
        ASSERT_EQ(SafeArrayGetDim(array.Get()), SafeArrayGetDim(out.Get()));
        for (UINT dimension = 1; dimension <= SafeArrayGetDim(array.Get()); ++dimension)
        {
            LONG bounds[4] = {1, 2, 3, 4};
            EXPECT_EQ(S_OK, SafeArrayGetLBound(array.Get(), dimension, &bounds[0]));
            EXPECT_EQ(S_OK, SafeArrayGetLBound(out.Get(), dimension, &bounds[1]));
            EXPECT_EQ(S_OK, SafeArrayGetUBound(array.Get(), dimension, &bounds[2]));
            EXPECT_EQ(S_OK, SafeArrayGetUBound(out.Get(), dimension, &bounds[3]));
            EXPECT_EQ(bounds[0], bounds[1]);
            EXPECT_EQ(bounds[2], bounds[3]);
        }
    }
}

TEST_P(ArrayPropertiesTest, AnArrayThatCannotBeCopiedLeavesNone)
{
    const UniqueSafeArray array = ArrayOf({LongTextsFail::Text()});
    EXPECT_EQ(S_OK, m_array.put(array.Get()));
    const HRESULT failure = GetParam().tellsFailures ? E_OUTOFMEMORY : S_OK;
    SAFEARRAY* out = array.Get();
    {
        const LongTextsFail fail;
        EXPECT_EQ(failure, m_array.get(&out));
        EXPECT_EQ(nullptr, out);
        EXPECT_EQ(failure, m_array.put(array.Get()));
    }
    ExpectNone();
}

TEST_P(ArrayPropertiesTest, ElementsThatCallBackMeetNoDestroyedArray)
{
    ArrayCalls calls = m_array;
    MeddlingElement element(calls);
    {
        UniqueSafeArray array(SafeArrayCreateVector(VT_UNKNOWN, 0, 1));
        {
            const SafeArrayAccess<IUnknown*> elements(array.Get());
            elements.Data()[0] = &element;
            ++element.references;
        }
        for (int i = 0; i < 3; ++i)
        {
            EXPECT_EQ(S_OK, m_array.put(array.Get()));
            Get();
        }
        EXPECT_EQ(S_OK, m_array.put(ArrayOf({L"last"}).Get()));
    }
    EXPECT_GT(element.puts, 3);
    EXPECT_EQ(1u, element.references);
}

INSTANTIATE_TEST_SUITE_P(Items,
                         ArrayPropertiesTest,
                         testing::ValuesIn(kArrays),
                         [](const auto& tested) { return tested.param.name; });
