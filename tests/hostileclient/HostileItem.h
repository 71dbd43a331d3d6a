// Item objects of a client's own that keep no promise of their interface: what they answer to
// QueryInterface and to the properties of INEntityItem.
#pragma once

#include "platform/Bstr.h"
#include "platform/WindowsHeaders.h"
#include "support/EarlyBound.h"

#include "PimStoreBridge.h"

#include <limits>

class HostileItem final : public EarlyBound<INEntityItem>
{
  public:
    enum class Query
    {
        Refuses,     // everything but IUnknown
        GivesNull,   // S_OK with a null pointer
        GivesEntity, // INEntityItem, as it should, and nothing that tells what it is
    };
    enum class Text
    {
        Fails,     // with an error, and the output as it was
        GivesNull, // S_OK and null
        Untouched, // S_OK and the output as it was
        OddBytes,  // S_OK and a text of an odd number of bytes
        Long,      // S_OK and 256 KiB of text
    };

    // The caller owns the object and must outlive every use.
    HostileItem(Query query, Text text) : m_query(query), m_text(text) {}
    HostileItem(const HostileItem&) = delete;
    HostileItem& operator=(const HostileItem&) = delete;

    // 1 where everybody has let go of it.
    ULONG References() const noexcept { return m_references; }

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        const bool isKnown = IsEqualGUID(iid, IID_IUnknown) ||
                             (m_query == Query::GivesEntity && IsEqualGUID(iid, IID_INEntityItem));
        *result = isKnown ? static_cast<INEntityItem*>(this) : nullptr;
        if (isKnown)
            AddRef();
        return isKnown || m_query == Query::GivesNull ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override { return --m_references; }
    STDMETHODIMP get_EntityID(BSTR* value) override { return Give(value); }
    STDMETHODIMP put_EntityID(BSTR) override { return E_OUTOFMEMORY; }
    STDMETHODIMP get_LastModificationTime(DATE* value) override
    {
        *value = std::numeric_limits<DATE>::quiet_NaN();
        return S_OK;
    }
    STDMETHODIMP put_LastModificationTime(DATE) override { return E_OUTOFMEMORY; }
    STDMETHODIMP get_FolderID(BSTR* value) override { return Give(value); }
    STDMETHODIMP put_FolderID(BSTR) override { return E_OUTOFMEMORY; }

  private:
    HRESULT Give(BSTR* value) const
    {
        switch (m_text)
        {
        case Text::Fails:
            return E_ACCESSDENIED;
        case Text::GivesNull:
            *value = nullptr;
            return S_OK;
        case Text::Untouched:
            return S_OK;
        case Text::OddBytes:
            *value = SysAllocStringByteLen("4142X", 5);
            return S_OK;
        case Text::Long:
            *value = Bstr(std::wstring(128 * 1024, L'A')).Detach();
            return S_OK;
        }
        return E_UNEXPECTED;
    }

    const Query m_query;
    const Text m_text;
    ULONG m_references = 1;
};
