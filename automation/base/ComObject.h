// Objects with a reference count, plain or inside an aggregate.
//
// How a coclass is written:
//
//     class CNThing : public CComObjectRootEx<CComSingleThreadModel>,
//                     public CComCoClass<CNThing, &CLSID_NThing>,
//                     public IDispatchImpl<INThing>
//     {
//       public:
//         static constexpr auto kInterfaceMap = InterfaceMap<CNThing, INThing>();
//         HRESULT FinalConstruct();                  // optional: a failure ends the creation
//         STDMETHODIMP get_Name(BSTR* pVal) override;// body: return Guard(this, [&] { ... });
//       protected:
//         ~CNThing();                                // objects end through Release only
//     };
//
// and gets a row in ObjectMap.cpp. In code, CNThing::CreateInstance(outer, iid, out) makes one.
#pragma once

#include "automation/base/Guard.h"
#include "automation/base/ServerModule.h"
#include "platform/ScopeExit.h"

#include <array>

// One interface that a class answers QueryInterface for.
template <typename T> struct InterfaceEntry
{
    const IID* iid;
    IUnknown* (*cast)(T* object) noexcept;
};

// The object as one of its interfaces, for a row of the map.
template <typename T, typename Interface> IUnknown* CastToInterface(T* object) noexcept
{
    return static_cast<Interface*>(object);
}

// The interface map of class T: its interfaces in order, then IDispatch, which leads to the first
// one. The first is also the object's identity.
template <typename T, typename First, typename... More>
constexpr std::array<InterfaceEntry<T>, sizeof...(More) + 2> InterfaceMap()
{
    return {{{&__uuidof(First), &CastToInterface<T, First>},
             {&__uuidof(More), &CastToInterface<T, More>}...,
             {&__uuidof(IDispatch), &CastToInterface<T, First>}}};
}

// Calls of one apartment, so plain arithmetic will do.
struct CComSingleThreadModel
{
    static ULONG Increment(LONG& value) noexcept { return static_cast<ULONG>(++value); }
    static ULONG Decrement(LONG& value) noexcept { return static_cast<ULONG>(--value); }
};

template <typename ThreadModel> class CComObjectRootEx
{
  public:
    CComObjectRootEx() = default;
    CComObjectRootEx(const CComObjectRootEx&) = delete;
    CComObjectRootEx& operator=(const CComObjectRootEx&) = delete;

    ULONG InternalAddRef() noexcept { return ThreadModel::Increment(m_refCount); }
    ULONG InternalRelease() noexcept { return ThreadModel::Decrement(m_refCount); }

    // Called once after construction, with the object kept alive; a failure ends the creation.
    HRESULT FinalConstruct() { return S_OK; }
    // Called once before destruction.
    void FinalRelease() {}

  protected:
    ~CComObjectRootEx() = default;

    // From here on a pair of AddRef and Release does not end the object again.
    void MarkDestroying() noexcept { m_refCount = kDestroying; }

    // Answers from the interface map; IUnknown leads to the first entry.
    template <typename T>
    static HRESULT InternalQueryInterface(T* object, REFIID iid, void** result) noexcept
    {
        if (!result)
            return E_POINTER;
        *result = nullptr;
        IUnknown* found = nullptr;
        if (IsEqualGUID(iid, IID_IUnknown))
            found = UnknownOf(object);
        else
            for (const auto& entry : T::kInterfaceMap)
                if (IsEqualGUID(iid, *entry.iid))
                {
                    found = entry.cast(object);
                    break;
                }
        if (!found)
            return E_NOINTERFACE;
        found->AddRef();
        *result = found;
        return S_OK;
    }

  private:
    static constexpr LONG kDestroying = -0x40000000;
    LONG m_refCount = 0;
};

// Ends an object with its last reference. What it holds may be a client's, whose release calls out:
// that counts as a call, so that nothing is deleted under it (see CallScope).
template <typename Object> void EndObject(Object* object) noexcept
{
    const CallScope scope;
    delete object;
}

// A plain object of class Base; holds a lock on the server until its content is gone, hence the
// order of the bases. Ends itself with its last reference.
template <typename Base> class CComObject final : private ServerLock, public Base
{
  public:
    CComObject() = default;
    ~CComObject()
    {
        this->MarkDestroying();
        this->FinalRelease();
    }

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        return Base::InternalQueryInterface(static_cast<Base*>(this), iid, result);
    }
    STDMETHODIMP_(ULONG) AddRef() override { return this->InternalAddRef(); }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = this->InternalRelease();
        if (left == 0)
            EndObject(this);
        return left;
    }

    // For CComCreator; the plain object has no outer one.
    static CComObject* Make(IUnknown*) { return new CComObject; }
};

// The part of an aggregated object that carries the interfaces: its identity is the outer object's.
template <typename Base> class CComContainedObject final : public Base
{
  public:
    explicit CComContainedObject(IUnknown* outer) noexcept : m_outer(outer) {}
    ~CComContainedObject() = default;

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        return m_outer->QueryInterface(iid, result);
    }
    STDMETHODIMP_(ULONG) AddRef() override { return m_outer->AddRef(); }
    STDMETHODIMP_(ULONG) Release() override { return m_outer->Release(); }

    // What the inner unknown answers with: the part's own interfaces.
    HRESULT QueryContained(REFIID iid, void** result) noexcept
    {
        return Base::InternalQueryInterface(static_cast<Base*>(this), iid, result);
    }

  private:
    IUnknown* m_outer; // not counted: the outer object owns this one
};

// The inner object of an aggregate: its own unknown, and the contained part with the interfaces.
template <typename Base>
class CComAggObject final : public IUnknown, public CComObjectRootEx<CComSingleThreadModel>
{
  public:
    explicit CComAggObject(IUnknown* outer) noexcept : m_contained(outer) {}
    ~CComAggObject()
    {
        MarkDestroying();
        m_contained.FinalRelease();
    }

    HRESULT FinalConstruct() { return m_contained.FinalConstruct(); }

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        if (!result)
            return E_POINTER;
        if (!IsEqualGUID(iid, IID_IUnknown))
            return m_contained.QueryContained(iid, result);
        AddRef();
        *result = static_cast<IUnknown*>(this);
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return InternalAddRef(); }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = InternalRelease();
        if (left == 0)
            EndObject(this);
        return left;
    }

    static CComAggObject* Make(IUnknown* outer) { return new CComAggObject(outer); }

  private:
    ServerLock m_lock;
    CComContainedObject<Base> m_contained;
};

// Makes an object, completes it and asks it for an interface. Object is CComObject<T> or
// CComAggObject<T>.
// Returns: S_OK; E_POINTER; E_OUTOFMEMORY; the failure of FinalConstruct or of the query. *result
//          is null on failure, and the object is gone.
template <typename Object> HRESULT CComCreate(IUnknown* outer, REFIID iid, void** result) noexcept
{
    if (!result)
        return E_POINTER;
    *result = nullptr;
    try
    {
        Object* object = Object::Make(outer);
        object->InternalAddRef();
        ScopeExit release([object] { object->Release(); });
        const HRESULT completed = object->FinalConstruct();
        if (FAILED(completed))
            return completed;
        return object->QueryInterface(iid, result);
    }
    catch (...)
    {
        return ResultOfException();
    }
}

// The creator of an object map row: plain without an outer object, else aggregated.
using CreatorFunction = HRESULT(IUnknown* outer, REFIID iid, void** result) noexcept;

// What makes T a creatable class.
template <typename T, const CLSID* pclsid> class CComCoClass
{
  public:
    static const CLSID& GetObjectCLSID() noexcept { return *pclsid; }

    // The creator of the class; the caller owns *result.
    static HRESULT CreateInstance(IUnknown* outer, REFIID iid, void** result) noexcept
    {
        return outer ? CComCreate<CComAggObject<T>>(outer, iid, result)
                     : CComCreate<CComObject<T>>(nullptr, iid, result);
    }

  protected:
    ~CComCoClass() = default;
};
