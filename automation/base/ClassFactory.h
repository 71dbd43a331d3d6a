// The class object of one row of the object map.
#pragma once

#include "automation/base/ComObject.h"

// Holds a lock on the server while an outside reference to it exists. References that the server
// and the runtime's table of class objects hold are not outside ones: a new factory counts one
// such reference, its maker's; SettleReferences counts anew once the runtime has taken its own.
class CComClassFactory final : public IClassFactory, public CComObjectRootEx<CComSingleThreadModel>
{
  public:
    static constexpr std::array<InterfaceEntry<CComClassFactory>, 1> kInterfaceMap = {
        {{&__uuidof(IClassFactory), &CastToInterface<CComClassFactory, IClassFactory>}}};

    // A factory with one reference, which the caller owns. Throws std::bad_alloc.
    static Microsoft::WRL::ComPtr<CComClassFactory> Make(CreatorFunction* create);

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override;
    STDMETHODIMP_(ULONG) AddRef() override;
    STDMETHODIMP_(ULONG) Release() override;

    // CLASS_E_NOAGGREGATION for an outer object with another interface than IUnknown.
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID iid, void** result) override;
    STDMETHODIMP LockServer(BOOL lock) override;

    // Takes the references that exist now for the server's and the runtime's own.
    void SettleReferences() noexcept;

  private:
    explicit CComClassFactory(CreatorFunction* create) noexcept : m_create(create) {}
    ~CComClassFactory() = default;

    void AdjustLock(ULONG references) noexcept;

    CreatorFunction* m_create;
    ULONG m_references = 0;
    ULONG m_ownReferences = 1;
    bool m_holdsLock = false;
};
