// Class factories and creators, with small classes of the test's own.
#include "automation/base/ClassFactory.h"
#include "automation/base/DispatchImpl.h"
#include "support/ComAssert.h"
#include "support/TestModule.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

#include "PimStoreBridge.h"

using Microsoft::WRL::ComPtr;

namespace
{
int g_alive = 0;
int g_finalReleases = 0;
std::function<HRESULT()> g_onConstruct;

// {6E1C2F4B-3B0A-4D8E-9C55-0D4C8E6A7F10}, a class of this test alone.
constexpr CLSID kProbeClass = {
    0x6E1C2F4B, 0x3B0A, 0x4D8E, {0x9C, 0x55, 0x0D, 0x4C, 0x8E, 0x6A, 0x7F, 0x10}};

class CNProbe : public IDispatchImpl<INObjectFactory>,
                public CComObjectRootEx<CComSingleThreadModel>,
                public CComCoClass<CNProbe, &kProbeClass>
{
  public:
    static constexpr auto kInterfaceMap = InterfaceMap<CNProbe, INObjectFactory>();

    CNProbe() { ++g_alive; }
    HRESULT FinalConstruct() { return g_onConstruct ? g_onConstruct() : S_OK; }
    void FinalRelease() { ++g_finalReleases; }

    STDMETHODIMP CreateInstance(GUID, IUnknown**) override { return E_NOTIMPL; }
    using CComCoClass<CNProbe, &kProbeClass>::CreateInstance;

  protected:
    ~CNProbe() { --g_alive; }
};

class ClassFactoryTest : public testing::Test
{
  protected:
    ClassFactoryTest()
    {
        g_onConstruct = nullptr;
        g_finalReleases = 0;
    }
    ~ClassFactoryTest() override
    {
        g_onConstruct = nullptr;
        EXPECT_EQ(0, g_alive);
    }

    TestModule m_module;
    ComPtr<CComClassFactory> m_factory = CComClassFactory::Make(&CNProbe::CreateInstance);
};
} // namespace

TEST_F(ClassFactoryTest, AnOutsideReferenceHoldsOneLock)
{
    EXPECT_EQ(0, m_module.GetLockCount());
    EXPECT_EQ(2u, m_factory->AddRef());
    EXPECT_EQ(1, m_module.GetLockCount());
    EXPECT_EQ(3u, m_factory->AddRef());
    EXPECT_EQ(1, m_module.GetLockCount());
    EXPECT_EQ(2u, m_factory->Release());
    EXPECT_EQ(1, m_module.GetLockCount());
    EXPECT_EQ(1u, m_factory->Release());
    EXPECT_EQ(0, m_module.GetLockCount());
}

TEST_F(ClassFactoryTest, TheRuntimesOwnReferencesHoldNoLock)
{
    m_factory->AddRef();
    m_factory->AddRef();
    m_factory->SettleReferences();
    EXPECT_EQ(0, m_module.GetLockCount());
    EXPECT_EQ(4u, m_factory->AddRef());
    EXPECT_EQ(1, m_module.GetLockCount());
    EXPECT_EQ(3u, m_factory->Release());
    EXPECT_EQ(0, m_module.GetLockCount());
    // The runtime letting go is no unlock either.
    m_factory->Release();
    m_factory->Release();
    EXPECT_EQ(0, m_module.GetLockCount());
}

TEST_F(ClassFactoryTest, LockServerCountsDirectly)
{
    EXPECT_EQ(S_OK, m_factory->LockServer(TRUE));
    EXPECT_EQ(S_OK, m_factory->LockServer(TRUE));
    EXPECT_EQ(2, m_module.GetLockCount());
    EXPECT_EQ(S_OK, m_factory->LockServer(FALSE));
    EXPECT_EQ(S_OK, m_factory->LockServer(FALSE));
    EXPECT_EQ(0, m_module.GetLockCount());
}

TEST_F(ClassFactoryTest, AnswersForIUnknownAndIClassFactory)
{
    ExpectInterfaces(m_factory.Get(), {IID_IUnknown, IID_IClassFactory});
}

TEST_F(ClassFactoryTest, MakesPlainObjects)
{
    ComPtr<INObjectFactory> object;
    ASSERT_EQ(S_OK,
              m_factory->CreateInstance(
                  nullptr, IID_INObjectFactory, reinterpret_cast<void**>(object.GetAddressOf())));
    EXPECT_EQ(1u, ReferenceCount(object.Get()));
    EXPECT_EQ(1, m_module.GetLockCount());
    EXPECT_EQ(1, g_alive);
    object.Reset();
    EXPECT_EQ(0, m_module.GetLockCount());
    EXPECT_EQ(1, g_finalReleases);
}

TEST_F(ClassFactoryTest, MakesAggregatedObjectsForAnOuterOne)
{
    TestOuter outer;
    ComPtr<IUnknown> inner;
    ASSERT_EQ(S_OK,
              m_factory->CreateInstance(
                  &outer, IID_IUnknown, reinterpret_cast<void**>(inner.GetAddressOf())));
    EXPECT_EQ(1u, ReferenceCount(inner.Get()));
    EXPECT_EQ(1, m_module.GetLockCount());
    ComPtr<INObjectFactory> part;
    ASSERT_EQ(
        S_OK,
        inner->QueryInterface(IID_INObjectFactory, reinterpret_cast<void**>(part.GetAddressOf())));
    EXPECT_EQ(2u, outer.References());
    EXPECT_EQ(1u, ReferenceCount(inner.Get()));
    part.Reset();
    EXPECT_EQ(1u, outer.References());
    inner.Reset();
    EXPECT_EQ(0, m_module.GetLockCount());
    EXPECT_EQ(1, g_finalReleases);
}

TEST_F(ClassFactoryTest, RefusesAnOuterObjectWithAnotherInterface)
{
    TestOuter outer;
    void* result = &outer;
    EXPECT_EQ(CLASS_E_NOAGGREGATION,
              m_factory->CreateInstance(&outer, IID_INObjectFactory, &result));
    EXPECT_EQ(nullptr, result);
}

TEST_F(ClassFactoryTest, ANullOutputIsRefused)
{
    EXPECT_EQ(E_POINTER, m_factory->CreateInstance(nullptr, IID_IUnknown, nullptr));
    EXPECT_EQ(E_POINTER, CNProbe::CreateInstance(nullptr, IID_IUnknown, nullptr));
    EXPECT_EQ(E_POINTER, m_factory->QueryInterface(IID_IUnknown, nullptr));
}

TEST_F(ClassFactoryTest, AnInterfaceThatTheObjectLacksEndsIt)
{
    void* result = this;
    EXPECT_EQ(E_NOINTERFACE, m_factory->CreateInstance(nullptr, IID_INCalendar, &result));
    EXPECT_EQ(nullptr, result);
    EXPECT_EQ(0, g_alive);
    EXPECT_EQ(0, m_module.GetLockCount());
}

TEST_F(ClassFactoryTest, AFailingConstructionEndsTheObjectPlainAndAggregated)
{
    g_onConstruct = [] { return E_FAIL; };
    void* result = this;
    EXPECT_EQ(E_FAIL, m_factory->CreateInstance(nullptr, IID_INObjectFactory, &result));
    EXPECT_EQ(nullptr, result);
    TestOuter outer;
    result = this;
    EXPECT_EQ(E_FAIL, m_factory->CreateInstance(&outer, IID_IUnknown, &result));
    EXPECT_EQ(nullptr, result);
    EXPECT_EQ(0, g_alive);
    EXPECT_EQ(1u, outer.References());
    EXPECT_EQ(0, m_module.GetLockCount());
}

TEST_F(ClassFactoryTest, ExceptionsOfAConstructionBecomeResults)
{
    const struct
    {
        std::function<HRESULT()> construct;
        HRESULT expected;
    } cases[] = {
        {[]() -> HRESULT { throw std::bad_alloc(); }, E_OUTOFMEMORY},
        {[]() -> HRESULT { throw ComError(E_OUTOFMEMORY); }, E_OUTOFMEMORY},
        {[]() -> HRESULT { throw ComError(E_ACCESSDENIED); }, E_UNEXPECTED},
        {[]() -> HRESULT { throw std::runtime_error("lost"); }, E_UNEXPECTED},
        {[]() -> HRESULT { throw 5; }, E_UNEXPECTED},
    };
    for (const auto& one : cases)
    {
        g_onConstruct = one.construct;
        void* result = this;
        EXPECT_EQ(one.expected, m_factory->CreateInstance(nullptr, IID_IUnknown, &result));
        EXPECT_EQ(nullptr, result);
    }
    EXPECT_EQ(0, m_module.GetLockCount());
}

TEST_F(ClassFactoryTest, ReferencesTakenDuringConstructionDoNotEndTheObject)
{
    ComPtr<INObjectFactory> object;
    ASSERT_EQ(S_OK,
              CNProbe::CreateInstance(
                  nullptr, IID_INObjectFactory, reinterpret_cast<void**>(object.GetAddressOf())));
    INObjectFactory* raw = object.Get();
    EXPECT_EQ(2u, raw->AddRef());
    EXPECT_EQ(1u, raw->Release());
    EXPECT_TRUE(IsEqualGUID(kProbeClass, CNProbe::GetObjectCLSID()));
}
