// The functions of the contract that take items, each set behind one face: an enumerator's, the
// address book's for contacts and for groups, the calendar's.
#pragma once

#include "endtoend/EveryKind.h"
#include "platform/Bstr.h"

#include <memory>
#include <vector>

class ItemCollection
{
  public:
    virtual ~ItemCollection() = default;
    virtual HRESULT Add(INEntityItem& item, Bstr& id) = 0;
    virtual HRESULT Update(INEntityItem& item) = 0;
    virtual HRESULT Delete(const Bstr& id) = 0;
    virtual HRESULT Reset() = 0;
    virtual HRESULT Next(Microsoft::WRL::ComPtr<INEntityItem>& item) = 0;
    virtual HRESULT Find(const Bstr& id, Microsoft::WRL::ComPtr<INEntityItem>& item) = 0;
};

struct CollectionType
{
    const char* name;
    // A new one, before its first item; null where the service gives none.
    std::unique_ptr<ItemCollection> (*open)(INPersonalInformationService& service,
                                            _tagNEnumeratorType type);
    // The address book takes groups among its contacts, and so takes none.
    bool addsItsItems = true;
};

// The enumerator, and what else takes items of that kind.
std::vector<CollectionType> CollectionsOf(const Kind& kind);
std::unique_ptr<ItemCollection> OpenEnumerator(INPersonalInformationService& service,
                                               _tagNEnumeratorType type);
