// What an object does for the server's life, and for what a client may hold, while it ends.
#include "automation/base/ComObject.h"
#include "support/ComAssert.h"
#include "support/TestModule.h"

#include <gtest/gtest.h>

#include <utility>

using Microsoft::WRL::ComPtr;

namespace
{
LONG g_locksAtTheEnd = 0;
int g_depthAtTheEnd = 0;

// Tells how many locks hold the server while its content goes, and how many calls are under way.
class CNEnding : public IPersist, public CComObjectRootEx<CComSingleThreadModel>
{
  public:
    static constexpr std::array<InterfaceEntry<CNEnding>, 1> kInterfaceMap = {
        {{&__uuidof(IPersist), &CastToInterface<CNEnding, IPersist>}}};
    STDMETHODIMP GetClassID(CLSID*) override { return E_NOTIMPL; }

  protected:
    ~CNEnding()
    {
        g_locksAtTheEnd = CServerModule::Current()->GetLockCount();
        g_depthAtTheEnd = CallScope::Depth();
    }
};

class ComObjectTest : public testing::Test
{
  protected:
    ComObjectTest() { g_locksAtTheEnd = g_depthAtTheEnd = 0; }

    // Makes and releases one.
    template <typename Object> void MakeAndEnd(IUnknown* outer)
    {
        ComPtr<IUnknown> object;
        ASSERT_EQ(S_OK,
                  CComCreate<Object>(
                      outer, IID_IUnknown, reinterpret_cast<void**>(object.GetAddressOf())));
        EXPECT_EQ(1, m_module.GetLockCount());
        object.Reset();
        EXPECT_EQ(0, m_module.GetLockCount());
    }

    TestModule m_module;
};
} // namespace

// What an object holds may be a client's, and its release takes as long as the client likes.
TEST_F(ComObjectTest, HoldsTheServerUntilItsContentIsGone)
{
    MakeAndEnd<CComObject<CNEnding>>(nullptr);
    EXPECT_EQ(1, g_locksAtTheEnd);
}

// A stop that comes in through such a release waits for its end.
TEST_F(ComObjectTest, CountsTheEndOfItsContentAsACall)
{
    MakeAndEnd<CComObject<CNEnding>>(nullptr);
    EXPECT_EQ(1, std::exchange(g_depthAtTheEnd, 0));
    TestOuter outer;
    MakeAndEnd<CComAggObject<CNEnding>>(&outer);
    EXPECT_EQ(1, g_depthAtTheEnd);
    EXPECT_EQ(0, CallScope::Depth());
}
