// Checks that every automation object's tests share.
#pragma once

#include "platform/WindowsHeaders.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>

// The context that the server itself uses to make its objects.
inline constexpr DWORD kServerContext = 0x17;

// The object's count of references as it stands.
inline ULONG ReferenceCount(IUnknown* object)
{
    object->AddRef();
    return object->Release();
}

// QueryInterface by the rules of identity: from every interface of the list to every other, with
// one IUnknown; interfaces that are not the object's give E_NOINTERFACE and null; a null output
// gives E_POINTER; no query changes the count but by the reference it hands out.
inline void ExpectInterfaces(IUnknown* object, std::initializer_list<IID> interfaces)
{
    using Microsoft::WRL::ComPtr;
    ComPtr<IUnknown> identity;
    ASSERT_EQ(
        S_OK,
        object->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(identity.GetAddressOf())));
    const ULONG before = ReferenceCount(object);
    for (const IID& from : interfaces)
    {
        ComPtr<IUnknown> first;
        ASSERT_EQ(S_OK,
                  object->QueryInterface(from, reinterpret_cast<void**>(first.GetAddressOf())));
        ComPtr<IUnknown> again;
        ASSERT_EQ(
            S_OK,
            first->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(again.GetAddressOf())));
        EXPECT_EQ(identity.Get(), again.Get());
        for (const IID& to : interfaces)
        {
            ComPtr<IUnknown> second;
            EXPECT_EQ(S_OK,
                      first->QueryInterface(to, reinterpret_cast<void**>(second.GetAddressOf())));
        }
        void* none = first.Get();
        // An interface that no automation object has.
        EXPECT_EQ(E_NOINTERFACE, first->QueryInterface(IID_IStorage, &none));
        EXPECT_EQ(nullptr, none);
        EXPECT_EQ(E_POINTER, first->QueryInterface(from, nullptr));
    }
    EXPECT_EQ(before, ReferenceCount(object));
}

// An outer object for aggregation: answers IUnknown and IPersist itself and passes the rest to the
// inner object, which it owns.
class TestOuter final : public IPersist
{
  public:
    // Makes the inner object of the class inside this one. The outer object starts with one
    // reference, which its maker owns.
    HRESULT Aggregate(REFCLSID clsid)
    {
        return CoCreateInstance(clsid,
                                this,
                                kServerContext,
                                IID_IUnknown,
                                reinterpret_cast<void**>(m_inner.GetAddressOf()));
    }
    IUnknown* Inner() const { return m_inner.Get(); }
    void DropInner() { m_inner.Reset(); }
    ULONG References() const { return m_references; }

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        if (!result)
            return E_POINTER;
        if (IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IPersist))
        {
            AddRef();
            *result = static_cast<IPersist*>(this);
            return S_OK;
        }
        *result = nullptr;
        return m_inner ? m_inner->QueryInterface(iid, result) : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    // The test owns the storage, so the last release frees nothing.
    STDMETHODIMP_(ULONG) Release() override { return --m_references; }
    STDMETHODIMP GetClassID(CLSID* id) override
    {
        *id = CLSID_NULL;
        return S_OK;
    }

  private:
    ULONG m_references = 1;
    Microsoft::WRL::ComPtr<IUnknown> m_inner;
};
