// What an object does for the server's life while it ends.
#include "automation/base/ComObject.h"
#include "support/TestModule.h"

#include <gtest/gtest.h>

using Microsoft::WRL::ComPtr;

namespace
{
LONG g_locksAtTheEnd = 0;

// Tells how many locks hold the server while its content goes.
class CNEnding : public IPersist, public CComObjectRootEx<CComSingleThreadModel>
{
  public:
    static constexpr std::array<InterfaceEntry<CNEnding>, 1> kInterfaceMap = {
        {{&__uuidof(IPersist), &CastToInterface<CNEnding, IPersist>}}};
    STDMETHODIMP GetClassID(CLSID*) override { return E_NOTIMPL; }

  protected:
    ~CNEnding() { g_locksAtTheEnd = CServerModule::Current()->GetLockCount(); }
};

class ComObjectTest : public testing::Test
{
  protected:
    ComObjectTest() { g_locksAtTheEnd = 0; }

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
