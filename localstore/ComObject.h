// The small base of the library's COM objects: one interface with its ancestors, a thread-safe
// count, deletion by the last Release. And the guard that keeps exceptions inside.
#pragma once

#include "localstore/Database.h"
#include "platform/WindowsHeaders.h"

#include <atomic>
#include <new>
#include <utility>

// The result that stands for a failure of the database.
HRESULT ResultOf(DatabaseFailure failure) noexcept;

// Turns exceptions of the body into results.
template <typename Body> HRESULT Guarded(Body&& body) noexcept
{
    try
    {
        return body();
    }
    catch (const std::bad_alloc&)
    {
        return MAPI_E_NOT_ENOUGH_MEMORY;
    }
    catch (const DatabaseError& error)
    {
        return ResultOf(error.Failure());
    }
    catch (...)
    {
        return E_UNEXPECTED;
    }
}

// Identities: the interface IDs that the object answers beside IID_IUnknown; all of them are the
// one interface or its ancestors.
template <typename Interface, const IID*... Identities> class ComObject : public Interface
{
  public:
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    // Whether QueryInterface gives that interface.
    static bool Answers(REFIID iid) noexcept
    {
        return IsEqualIID(iid, IID_IUnknown) || (IsEqualIID(iid, *Identities) || ...);
    }

    STDMETHODIMP QueryInterface(REFIID iid, LPVOID* object) override
    {
        if (!object)
            return E_POINTER;
        *object = nullptr;
        if (!Answers(iid))
            return E_NOINTERFACE;
        *object = static_cast<Interface*>(this);
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = --m_references;
        if (left == 0)
            delete this;
        return left;
    }

  protected:
    ComObject() = default;
    virtual ~ComObject() = default;

  private:
    std::atomic<ULONG> m_references{1};
};

// A new object with its first reference. Throws std::bad_alloc.
template <typename Object, typename... Arguments>
Microsoft::WRL::ComPtr<Object> MakeObject(Arguments&&... arguments)
{
    // Not Attach: the toolchain's takes a further reference.
    Microsoft::WRL::ComPtr<Object> object;
    *object.GetAddressOf() = new Object(std::forward<Arguments>(arguments)...);
    return object;
}
