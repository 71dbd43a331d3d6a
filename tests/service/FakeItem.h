// An item object with an EntityID and one further interface of the caller's choice.
#pragma once

#include "platform/Bstr.h"
#include "platform/WindowsHeaders.h"
#include "tests/support/EarlyBound.h"

#include "PimStoreBridge.h"

#include <functional>
#include <string>

// The object's EntityID; empty where it gives none.
inline std::wstring EntityIDOf(INEntityItem* item)
{
    Bstr id;
    return item && SUCCEEDED(item->get_EntityID(id.Put())) ? TextOf(id.Get()) : std::wstring();
}

class FakeItem final : public EarlyBound<INEntityItem>
{
  public:
    // typed: the further interface that it answers for, beside INEntityItem. IID_NULL for none.
    static Microsoft::WRL::ComPtr<FakeItem> Make(const IID& typed, std::wstring id = {})
    {
        Microsoft::WRL::ComPtr<FakeItem> item;
        *item.GetAddressOf() = new FakeItem(typed, std::move(id));
        return item;
    }

    // The item under its further interface. Only the IUnknown part of it works, which is all that
    // handles and collections may use.
    template <typename Interface> Microsoft::WRL::ComPtr<Interface> As()
    {
        Microsoft::WRL::ComPtr<Interface> result;
        QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(result.GetAddressOf()));
        return result;
    }

    std::wstring entityID;
    HRESULT getResult = S_OK;    // of get_EntityID
    bool isCareless = false;     // get_EntityID leaves the text also where it fails
    bool isEntity = true;        // false: no INEntityItem either
    std::wstring puts;           // every text that put_EntityID took, each with ';' behind it
    std::function<void()> onEnd; // runs in the last Release
    ULONG References() const { return m_references; }

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        *result = nullptr;
        if (IsEqualGUID(iid, m_typed))
            *result = static_cast<IUnknown*>(&m_face);
        else if (IsEqualGUID(iid, IID_IUnknown) || (isEntity && IsEqualGUID(iid, IID_INEntityItem)))
            *result = static_cast<INEntityItem*>(this);
        else
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = --m_references;
        if (left == 0)
        {
            if (onEnd)
                onEnd();
            delete this;
        }
        return left;
    }
    STDMETHODIMP get_EntityID(BSTR* pVal) override
    {
        if (SUCCEEDED(getResult) || isCareless)
            *pVal = NewText(entityID);
        return getResult;
    }
    STDMETHODIMP put_EntityID(BSTR newVal) override
    {
        entityID = TextOf(newVal);
        puts += entityID + L";";
        return S_OK;
    }
    STDMETHODIMP get_LastModificationTime(DATE*) override { return E_NOTIMPL; }
    STDMETHODIMP put_LastModificationTime(DATE) override { return E_NOTIMPL; }
    STDMETHODIMP get_FolderID(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP put_FolderID(BSTR) override { return E_NOTIMPL; }

  private:
    // What stands for the further interface: it leads back to the object.
    struct Face final : IUnknown
    {
        explicit Face(FakeItem& owner) : item(owner) {}
        STDMETHODIMP QueryInterface(REFIID iid, void** result) override
        {
            return item.QueryInterface(iid, result);
        }
        STDMETHODIMP_(ULONG) AddRef() override { return item.AddRef(); }
        STDMETHODIMP_(ULONG) Release() override { return item.Release(); }
        FakeItem& item;
    };

    FakeItem(const IID& typed, std::wstring id)
        : entityID(std::move(id)), m_typed(typed), m_face(*this)
    {
    }
    ~FakeItem() = default;

    IID m_typed;
    Face m_face;
    ULONG m_references = 1;
};
