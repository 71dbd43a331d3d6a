#include "automation/base/Guard.h"

#include "automation/base/ComObject.h"
#include "support/TestModule.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

using Microsoft::WRL::ComPtr;

namespace
{
bool g_gone = false;

class CNGuarded : public IPersist, public CComObjectRootEx<CComSingleThreadModel>
{
  public:
    static constexpr std::array<InterfaceEntry<CNGuarded>, 1> kInterfaceMap = {
        {{&__uuidof(IPersist), &CastToInterface<CNGuarded, IPersist>}}};

    STDMETHODIMP GetClassID(CLSID*) override
    {
        return Guard(this, [this] { return m_body(); });
    }

    std::function<HRESULT()> m_body;

  protected:
    ~CNGuarded() { g_gone = true; }
};

class GuardTest : public testing::Test
{
  protected:
    GuardTest()
    {
        g_gone = false;
        m_object = new CComObject<CNGuarded>();
        m_object->AddRef();
    }

    HRESULT Run(std::function<HRESULT()> body)
    {
        m_object->m_body = std::move(body);
        return m_object->GetClassID(nullptr);
    }

    TestModule m_module;
    CComObject<CNGuarded>* m_object;
};
} // namespace

TEST_F(GuardTest, PassesResultsThrough)
{
    EXPECT_EQ(S_OK, Run([] { return S_OK; }));
    EXPECT_EQ(S_FALSE, Run([] { return S_FALSE; }));
    EXPECT_EQ(E_ACCESSDENIED, Run([] { return E_ACCESSDENIED; }));
    m_object->Release();
    EXPECT_TRUE(g_gone);
}

TEST_F(GuardTest, TurnsExceptionsIntoResults)
{
    EXPECT_EQ(E_OUTOFMEMORY, Run([]() -> HRESULT { throw std::bad_alloc(); }));
    EXPECT_EQ(E_OUTOFMEMORY, Run([]() -> HRESULT { throw ComError(E_OUTOFMEMORY); }));
    EXPECT_EQ(E_UNEXPECTED, Run([]() -> HRESULT { throw ComError(E_FAIL); }));
    EXPECT_EQ(E_UNEXPECTED, Run([]() -> HRESULT { throw std::length_error("far"); }));
    EXPECT_EQ(E_UNEXPECTED, Run([]() -> HRESULT { throw 1; }));
    EXPECT_EQ(0, CallScope::Depth());
    m_object->Release();
}

TEST_F(GuardTest, CountsTheCall)
{
    int depth = 0;
    EXPECT_EQ(0, CallScope::Depth());
    Run([&] {
        depth = CallScope::Depth();
        return S_OK;
    });
    EXPECT_EQ(1, depth);
    m_object->Release();
}

TEST_F(GuardTest, KeepsTheObjectUntilTheCallAndWhatItDeferredHaveEnded)
{
    bool goneInBody = true;
    bool goneInDeferred = true;
    Run([&] {
        // As a re-entrant call of a client that lets its last reference go would do.
        CallScope::Defer([&] { goneInDeferred = g_gone; });
        m_object->Release();
        goneInBody = g_gone;
        return S_OK;
    });
    EXPECT_FALSE(goneInBody);
    EXPECT_FALSE(goneInDeferred);
    EXPECT_TRUE(g_gone);
    EXPECT_EQ(0, m_module.GetLockCount());
}
