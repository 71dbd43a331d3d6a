// What the tests of the service object and of the collection objects share: a started fake back end
// whose tables record their calls, and memory that runs out for long texts.
#pragma once

#include "platform/Bstr.h"
#include "support/ComAssert.h"
#include "tests/service/FakeBackEnds.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

// A new object of the class; null where the creation failed.
template <typename Interface> Microsoft::WRL::ComPtr<Interface> CreateObject(REFCLSID clsid)
{
    Microsoft::WRL::ComPtr<Interface> object;
    CoCreateInstance(clsid,
                     nullptr,
                     kServerContext,
                     __uuidof(Interface),
                     reinterpret_cast<void**>(object.GetAddressOf()));
    return object;
}

class CollectionFixture : public testing::Test
{
  protected:
    CollectionFixture()
    {
        backEnds.prepareProvider = [this](FakeProvider& fake) {
            provider = &fake;
            fake.prepare = [this](RecordingEnumerator& table, const std::wstring& name) {
                tables[name] = &table;
            };
        };
    }
    // Starts the fake back end and forgets the calls so far.
    void Start()
    {
        ASSERT_EQ(S_OK, backEnds.manager.StartService(L"Windows Mail"));
        log.clear();
    }
    // The last table handed out under that name, while it lives: "contacts", "groups", "calendar"
    // or the number of an enumerator's type.
    RecordingEnumerator& Table(const std::wstring& name) { return *tables.at(name); }

    FakeBackEnds backEnds;
    CallLog& log = backEnds.log;
    FakeProvider* provider = nullptr;
    std::map<std::wstring, RecordingEnumerator*> tables;
};

// Lets every text of more than so many bytes fail for want of memory, as long as it lives. Short
// texts may come from the system's cache of freed ones, so that only those of more than 64 KiB are
// certain to tell.
class LongTextsFail
{
  public:
    explicit LongTextsFail(SIZE_T limitBytes = 64 * 1024)
    {
        // Where freed texts of an earlier time lie in the system's cache it is still registered.
        const HRESULT registered = CoRegisterMallocSpy(&s_spy);
        EXPECT_TRUE(registered == S_OK || registered == CO_E_OBJISREG) << registered;
        // Keeps such a spy until the end here. Wine makes its table of spied blocks with the first
        // allocation, and a release before that reads through a null pointer.
        m_block = CoTaskMemAlloc(1);
        s_limitBytes = limitBytes;
    }
    ~LongTextsFail()
    {
        CoTaskMemFree(m_block);
        CoRevokeMallocSpy();
        // The system may keep the spy beyond that; it must then let everything pass.
        s_limitBytes = kNoLimit;
    }
    LongTextsFail(const LongTextsFail&) = delete;
    LongTextsFail& operator=(const LongTextsFail&) = delete;

    // A text that is long enough.
    static std::wstring Text() { return std::wstring(40'000, L'x'); }

  private:
    class Spy final : public IMallocSpy
    {
      public:
        STDMETHODIMP QueryInterface(REFIID iid, void** result) override
        {
            const bool known = IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IMallocSpy);
            *result = known ? this : nullptr;
            return known ? S_OK : E_NOINTERFACE;
        }
        STDMETHODIMP_(ULONG) AddRef() override { return 2; }
        STDMETHODIMP_(ULONG) Release() override { return 1; }
        // Zero for a request that was not zero makes the allocation fail.
        STDMETHODIMP_(SIZE_T) PreAlloc(SIZE_T size) override
        {
            return size > s_limitBytes ? 0 : size;
        }
        STDMETHODIMP_(void*) PostAlloc(void* block) override { return block; }
        STDMETHODIMP_(void*) PreFree(void* block, BOOL) override { return block; }
        STDMETHODIMP_(void) PostFree(BOOL) override {}
        STDMETHODIMP_(SIZE_T)
        PreRealloc(void* block, SIZE_T size, void** newBlock, BOOL) override
        {
            *newBlock = block;
            return size;
        }
        STDMETHODIMP_(void*) PostRealloc(void* block, BOOL) override { return block; }
        STDMETHODIMP_(void*) PreGetSize(void* block, BOOL) override { return block; }
        STDMETHODIMP_(SIZE_T) PostGetSize(SIZE_T size, BOOL) override { return size; }
        STDMETHODIMP_(void*) PreDidAlloc(void* block, BOOL) override { return block; }
        STDMETHODIMP_(int) PostDidAlloc(void*, BOOL, int owned) override { return owned; }
        STDMETHODIMP_(void) PreHeapMinimize() override {}
        STDMETHODIMP_(void) PostHeapMinimize() override {}
    };
    // Outlives the tests: the system may keep it until every block of its time is freed.
    inline static Spy s_spy;
    static constexpr SIZE_T kNoLimit = ~SIZE_T{0};
    inline static SIZE_T s_limitBytes = kNoLimit;
    void* m_block = nullptr;
};
