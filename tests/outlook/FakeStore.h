// Small store objects for tests of what reads them: they write down every call with its arguments,
// can be told to fail one of them, and count what they hand out. All live in the test.
#pragma once

#include "outlook/store/Proxcy.h"
#include "platform/WindowsHeaders.h"
#include "service/Callback.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

using StoreCalls = std::vector<std::string>;

// How a call goes wrong.
enum class StoreFailure
{
    None,
    OutOfMemory, // E_OUTOFMEMORY, with rubbish in the output
    CallFailed,  // MAPI_E_CALL_FAILED, with rubbish in the output
    GivesNull,   // S_OK with nothing in the output
    Warning,     // MAPI_W_ERRORS_RETURNED with one value or row fewer
};

inline constexpr StoreFailure kStoreFailures[] = {StoreFailure::OutOfMemory,
                                                  StoreFailure::CallFailed,
                                                  StoreFailure::GivesNull,
                                                  StoreFailure::Warning};

inline HRESULT ResultOf(StoreFailure failure)
{
    switch (failure)
    {
    case StoreFailure::OutOfMemory:
        return E_OUTOFMEMORY;
    case StoreFailure::CallFailed:
        return MAPI_E_CALL_FAILED;
    case StoreFailure::Warning:
        return MAPI_W_ERRORS_RETURNED;
    default:
        return S_OK;
    }
}

// An address that nobody may touch.
template <typename T> T* Rubbish()
{
    return reinterpret_cast<T*>(std::uintptr_t{0x10});
}

// One property value of a test. Texts stay the test's own.
inline SPropValue NumberValue(ULONG tag, LONG number)
{
    SPropValue value = {};
    value.ulPropTag = tag;
    value.Value.l = number;
    return value;
}
inline SPropValue TextValue(ULONG tag, const wchar_t* text)
{
    SPropValue value = {};
    value.ulPropTag = tag;
    value.Value.lpszW = const_cast<wchar_t*>(text);
    return value;
}
inline SPropValue MissingValue(ULONG tag)
{
    SPropValue value = {};
    value.ulPropTag = CHANGE_PROP_TYPE(tag, PT_ERROR);
    value.Value.err = MAPI_E_NOT_FOUND;
    return value;
}

// A proxy without a library, whose memory is counted. Writes down what it is asked to free, by what
// it is: "values", "rows", "first row" or "unknown".
class FakeStoreProxcy : public CNProxcy
{
  public:
    explicit FakeStoreProxcy(StoreCalls& calls) : m_calls(calls) {}
    ~FakeStoreProxcy() override { EXPECT_EQ(0u, Live()); }

    // What was handed out and not freed.
    std::size_t Live() const { return m_live.size(); }

    SPropValue* NewValues(const std::vector<SPropValue>& values)
    {
        auto* const copy =
            static_cast<SPropValue*>(New(values.size() * sizeof(SPropValue), "values"));
        std::copy(values.begin(), values.end(), copy);
        return copy;
    }
    SRowSet* NewRows(const std::vector<std::vector<SPropValue>>& rows)
    {
        const ULONG count = static_cast<ULONG>(rows.size());
        auto* const set = static_cast<SRowSet*>(New(CbNewSRowSet(count), "rows"));
        set->cRows = count;
        for (ULONG i = 0; i < count; ++i)
            set->aRow[i] = {0, static_cast<ULONG>(rows[i].size()), NewValues(rows[i])};
        m_firstRow = set->aRow;
        return set;
    }

    bool Load(std::wstring, MAPIINIT_0*) override { return false; }
    bool Unload() override { return true; }
    bool SetValue(int, void*) override { return false; }
    void FreeProws(LPSRowSet rows) override
    {
        m_calls.push_back("FreeProws");
        ASSERT_EQ("rows", Kind(rows));
        for (ULONG i = 0; i < rows->cRows; ++i)
            End(rows->aRow[i].lpProps);
        End(rows);
    }
    void FreeBuffer(void* buffer) override
    {
        const std::string kind = buffer == m_firstRow ? "first row" : Kind(buffer);
        m_calls.push_back("FreeBuffer " + kind);
        if (kind == "values")
            End(buffer);
    }
    HRESULT WrapCompressedRTFStream(IStream* compressed, ULONG flags, IStream** plain) override
    {
        return wrap ? wrap(compressed, flags, plain) : E_NOTIMPL;
    }
    HRESULT HrGetOneProp(IMAPIProp*, ULONG, LPSPropValue*) override { return E_NOTIMPL; }
    HRESULT HrQueryAllRows(
        IMAPITable*, LPSPropTagArray, LPSRestriction, LPSSortOrderSet, LONG, LPSRowSet*) override
    {
        return E_NOTIMPL;
    }

    // What WrapCompressedRTFStream does.
    std::function<HRESULT(IStream*, ULONG, IStream**)> wrap;

  private:
    struct Block
    {
        std::vector<SPropValue> storage; // for its alignment
        std::string kind;
    };

    void* New(std::size_t size, const char* kind)
    {
        Block block{std::vector<SPropValue>(size / sizeof(SPropValue) + 1), kind};
        void* const address = block.storage.data();
        m_live.emplace(address, std::move(block));
        return address;
    }
    std::string Kind(void* address) const
    {
        const auto found = m_live.find(address);
        return found == m_live.end() ? "unknown" : found->second.kind;
    }
    void End(void* address)
    {
        if (address)
        {
            EXPECT_EQ(1u, m_live.erase(address)) << "freed twice, or not handed out";
        }
    }

    StoreCalls& m_calls;
    std::map<void*, Block> m_live;
    const void* m_firstRow = nullptr;
};

// A reference count for objects that the test owns; it must be 1 again at their end.
template <typename Interface> class StoreObject : public Interface
{
  public:
    StoreObject() = default;
    StoreObject(const StoreObject&) = delete;
    StoreObject& operator=(const StoreObject&) = delete;

    ULONG References() const { return m_references; }

    STDMETHODIMP QueryInterface(REFIID, void** result) override
    {
        *result = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override { return --m_references; }

  protected:
    ~StoreObject() { EXPECT_EQ(1u, m_references); }

  private:
    ULONG m_references = 1;
};

// The interfaces have many operations that no test reaches.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-parameter"
class TableWithoutOperations : public StoreObject<IMAPITable>
{
  public:
    MAPI_IMAPITABLE_METHODS(override { return E_NOTIMPL; })
};
class StreamWithoutOperations : public StoreObject<IStream>
{
  public:
    STDMETHODIMP Read(void*, ULONG, ULONG*) override { return E_NOTIMPL; }
    STDMETHODIMP Write(const void*, ULONG, ULONG*) override { return E_NOTIMPL; }
    STDMETHODIMP Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return E_NOTIMPL; }
    STDMETHODIMP SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    STDMETHODIMP CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP Commit(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Revert() override { return E_NOTIMPL; }
    STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Clone(IStream**) override { return E_NOTIMPL; }
};
class PropWithoutOperations : public StoreObject<IMAPIProp>
{
  public:
    MAPI_IMAPIPROP_METHODS(override { return E_NOTIMPL; })
};
#pragma GCC diagnostic pop

// The tags of a call, each as " %08lX".
inline std::string TagText(LPSPropTagArray tags)
{
    std::string text;
    for (ULONG i = 0; i < tags->cValues; ++i)
    {
        char one[16];
        std::snprintf(one, sizeof one, " %08lX", tags->aulPropTag[i]);
        text += one;
    }
    return text;
}

inline std::string FlagText(ULONG flags)
{
    char text[24];
    std::snprintf(text, sizeof text, ", flags %08lX", flags);
    return text;
}

// A table of rows.
class FakeTable final : public TableWithoutOperations
{
  public:
    FakeTable(StoreCalls& calls, FakeStoreProxcy& proxy) : m_calls(calls), m_proxy(proxy) {}

    std::vector<std::vector<SPropValue>> rows;
    // How each call ends.
    StoreFailure setColumns = StoreFailure::None;
    StoreFailure getRowCount = StoreFailure::None;
    StoreFailure queryRows = StoreFailure::None;
    // Told instead of the number of rows, where it is not 0.
    ULONG toldCount = 0;

    STDMETHODIMP SetColumns(LPSPropTagArray tags, ULONG flags) override
    {
        m_calls.push_back("SetColumns" + TagText(tags) + FlagText(flags));
        return ResultOf(setColumns);
    }
    STDMETHODIMP GetRowCount(ULONG flags, ULONG* count) override
    {
        m_calls.push_back("GetRowCount" + FlagText(flags));
        const ULONG all = toldCount ? toldCount : static_cast<ULONG>(rows.size());
        *count = getRowCount == StoreFailure::GivesNull ? 0
                 : getRowCount == StoreFailure::Warning ? all - 1
                                                        : all;
        return ResultOf(getRowCount);
    }
    STDMETHODIMP QueryRows(LONG count, ULONG flags, LPSRowSet* set) override
    {
        m_calls.push_back("QueryRows " + std::to_string(count) + FlagText(flags));
        std::vector<std::vector<SPropValue>> delivered = rows;
        if (count >= 0 && static_cast<std::size_t>(count) < delivered.size())
            delivered.resize(static_cast<std::size_t>(count));
        if (queryRows == StoreFailure::GivesNull)
            *set = nullptr;
        else if (FAILED(ResultOf(queryRows)))
            *set = Rubbish<SRowSet>();
        else
        {
            if (queryRows == StoreFailure::Warning)
                delivered.pop_back();
            *set = m_proxy.NewRows(delivered);
        }
        return ResultOf(queryRows);
    }

  private:
    StoreCalls& m_calls;
    FakeStoreProxcy& m_proxy;
};

// An object with properties.
class FakeProp final : public PropWithoutOperations
{
  public:
    FakeProp(StoreCalls& calls, FakeStoreProxcy& proxy) : m_calls(calls), m_proxy(proxy) {}

    // What GetProps delivers, whatever it was asked for.
    std::vector<SPropValue> values;
    StoreFailure getProps = StoreFailure::None;
    // What GetProps returns where it does not fail.
    HRESULT getPropsResult = S_OK;
    // What OpenProperty does; without it there is no such property.
    std::function<HRESULT(IUnknown**)> openProperty;

    STDMETHODIMP
    GetProps(LPSPropTagArray tags, ULONG flags, ULONG* count, LPSPropValue* delivered) override
    {
        m_calls.push_back("GetProps" + TagText(tags) + FlagText(flags));
        std::vector<SPropValue> copy = values;
        *count = static_cast<ULONG>(copy.size());
        if (getProps == StoreFailure::GivesNull)
            *delivered = nullptr;
        else if (FAILED(ResultOf(getProps)))
            *delivered = Rubbish<SPropValue>();
        else
        {
            if (getProps == StoreFailure::Warning)
                *count -= 1;
            *delivered = m_proxy.NewValues(copy);
        }
        return getProps == StoreFailure::None ? getPropsResult : ResultOf(getProps);
    }
    STDMETHODIMP OpenProperty(
        ULONG tag, LPCIID interfaceId, ULONG options, ULONG flags, LPUNKNOWN* object) override
    {
        char text[96];
        std::snprintf(text,
                      sizeof text,
                      "OpenProperty %08lX %s, options %lu, flags %lu",
                      tag,
                      interfaceId && IsEqualGUID(*interfaceId, IID_IStream) ? "IStream" : "other",
                      options,
                      flags);
        m_calls.push_back(text);
        return openProperty ? openProperty(object) : MAPI_E_NOT_FOUND;
    }

  private:
    StoreCalls& m_calls;
    FakeStoreProxcy& m_proxy;
};

// Writes down what a walk delivers: the type of the call and each value's tag.
class RecordingCallback final : public ICallback
{
  public:
    explicit RecordingCallback(StoreCalls& calls) : m_calls(calls) {}

    // What the calls return, in order; then 0.
    std::vector<BOOL> results;
    // Number of the call that stops the walk, and of the one that throws; from 1.
    int stopAt = 0;
    int throwAt = 0;

    BOOL OnPropertyRow(ULONG count, LPSPropValue values, int callType, BOOL* goesOn) override
    {
        std::string text = "row " + std::to_string(callType) + ":";
        for (ULONG i = 0; i < count; ++i)
        {
            char one[16];
            std::snprintf(one, sizeof one, " %08lX", values[i].ulPropTag);
            text += one;
        }
        m_calls.push_back(text);
        EXPECT_EQ(1, *goesOn);
        ++m_count;
        if (m_count == throwAt)
            throw std::runtime_error("a callback that fails");
        if (m_count == stopAt)
            *goesOn = 0;
        return m_count <= static_cast<int>(results.size()) ? results[m_count - 1] : 0;
    }

  private:
    StoreCalls& m_calls;
    int m_count = 0;
};
