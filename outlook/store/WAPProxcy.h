// Binds the library of the Windows Address Book. Its memory is freed through the IWABObject, which
// the one who opened the book hands in with SetValue; nothing may be freed after its last release.
#pragma once

#include "outlook/store/Proxcy.h"

class CWAPProxcy : public CNProxcy
{
  public:
    // True when the library loaded; init is not used.
    bool Load(std::wstring path, MAPIINIT_0* init) override;
    // Always true.
    bool Unload() override;
    // Stores the value under kWabObjectKey; false in all cases.
    bool SetValue(int key, void* value) override;

    // Each row's values, then the set. Nothing without an IWABObject.
    void FreeProws(LPSRowSet rows) override;
    void FreeBuffer(void* buffer) override;
    HRESULT HrGetOneProp(IMAPIProp* object, ULONG tag, LPSPropValue* value) override;
    // E_NOTIMPL: the address book has no such function, and none is looked for.
    HRESULT HrQueryAllRows(IMAPITable* table,
                           LPSPropTagArray tags,
                           LPSRestriction restriction,
                           LPSSortOrderSet sort,
                           LONG rowLimit,
                           LPSRowSet* rows) override;

  private:
    IWABObject* m_pWabObject = nullptr;
};
