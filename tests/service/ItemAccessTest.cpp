// What the tables ask of an item object beside its properties.
#include "service/ItemAccess.h"

#include "tests/support/EarlyBound.h"

#include <gtest/gtest.h>

namespace
{
enum class Stands
{
    ForItself,
    ForAnObjectElsewhere
};

// Answers a read of its ID with one result.
class Answering final : public EarlyBound<INEntityItem>
{
  public:
    explicit Answering(HRESULT result, Stands stands = Stands::ForAnObjectElsewhere)
        : m_result(result), m_stands(stands)
    {
    }
    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        const bool isKnown = m_stands == Stands::ForAnObjectElsewhere && iid == IID_IMultiQI;
        *result = isKnown ? this : nullptr;
        if (isKnown)
            AddRef();
        return isKnown ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references; }
    STDMETHODIMP_(ULONG) Release() override { return --references; }
    STDMETHODIMP get_EntityID(BSTR* value) override
    {
        ++reads;
        if (SUCCEEDED(m_result))
            *value = SysAllocString(L"N1");
        return m_result;
    }
    STDMETHODIMP put_EntityID(BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP get_LastModificationTime(DATE*) override { return E_NOTIMPL; }
    STDMETHODIMP put_LastModificationTime(DATE) override { return E_NOTIMPL; }
    STDMETHODIMP get_FolderID(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP put_FolderID(BSTR) override { return E_NOTIMPL; }

    ULONG references = 1;
    int reads = 0;

  private:
    const HRESULT m_result;
    const Stands m_stands;
};
} // namespace

// What calls to an object of a process that is gone give, and of one that is too busy to answer.
TEST(ItemAccessTest, AnObjectIsLostWhereTheWayToItFails)
{
    for (const HRESULT result : {RPC_E_DISCONNECTED,
                                 RPC_E_SERVER_DIED,
                                 RPC_E_SERVER_DIED_DNE,
                                 RPC_E_CALL_REJECTED,
                                 CO_E_OBJNOTCONNECTED,
                                 HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE),
                                 HRESULT_FROM_WIN32(RPC_S_CALL_FAILED),
                                 HRESULT_FROM_WIN32(RPC_S_CALL_FAILED_DNE)})
    {
        Answering object(result);
        EXPECT_FALSE(IsReachable(object)) << std::hex << result;
        EXPECT_EQ(1u, object.references);
    }
}

TEST(ItemAccessTest, AnObjectThatAnswersAnythingIsReachable)
{
    for (const HRESULT result :
         {S_OK, E_NOINTERFACE, E_FAIL, E_ACCESSDENIED, HRESULT_FROM_WIN32(ERROR_ACCESS_DENIED)})
    {
        Answering object(result);
        EXPECT_TRUE(IsReachable(object)) << std::hex << result;
        EXPECT_EQ(1u, object.references);
    }
}

TEST(ItemAccessTest, AnObjectOfThisProcessIsNotAsked)
{
    Answering object(RPC_E_DISCONNECTED, Stands::ForItself);
    EXPECT_TRUE(IsReachable(object));
    EXPECT_EQ(0, object.reads);
}
