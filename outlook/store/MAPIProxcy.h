// Binds the library of Extended MAPI.
#pragma once

#include "outlook/store/Proxcy.h"

#include <initializer_list>

class CMAPIProxcy : public CNProxcy
{
  public:
    // A library that was not given up stays loaded: its objects may still live.
    ~CMAPIProxcy() override;

    // Loads and initialises the library; true when both went well. Otherwise what was loaded stays
    // until Unload. An initialised library stays in the process for good, so that a client's late
    // release of one of its objects still finds its code.
    bool Load(std::wstring path, MAPIINIT_0* init) override;
    // Uninitialises and frees the library. False, with everything as it was, where the library
    // exports no "MAPIUninitialize" or none is loaded.
    bool Unload() override;
    // Always false: there is nothing to set.
    bool SetValue(int key, void* value) override;

    // Kept as it is: known under its decorated name alone, so that over a library without that name
    // row sets leak. Pinned by MAPIProxcyTest.
    void FreeProws(LPSRowSet rows) override;
    void FreeBuffer(void* buffer) override;
    HRESULT HrGetOneProp(IMAPIProp* object, ULONG tag, LPSPropValue* value) override;
    // The decorated name comes first, then the plain one.
    HRESULT HrQueryAllRows(IMAPITable* table,
                           LPSPropTagArray tags,
                           LPSRestriction restriction,
                           LPSSortOrderSet sort,
                           LONG rowLimit,
                           LPSRowSet* rows) override;

  private:
    // The first of the names that the library exports; null where it has none of them.
    template <typename Function> Function* FindFirst(std::initializer_list<const char*> names)
    {
        for (const char* name : names)
            if (auto* const entry = Find<Function>(name))
                return entry;
        return nullptr;
    }
};
