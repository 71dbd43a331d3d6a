// The distribution lists of Outlook's default contact folder. Name and members are read; only the
// name is written.
#pragma once

#include "outlook/store/ContentTable.h"

class COutlookAddressGroupTable : public CContentTable
{
  public:
    using CContentTable::CContentTable;

  protected:
    bool IsWantedRow(const PropertyView& row) override;
    std::vector<ULONG> GetPropertyNames() override;
    void FillItem(INEntityItem& item, const PropertyView& values) override;
    // A new group.
    Microsoft::WRL::ComPtr<INEntityItem> CreateItem() override;
    // Kept as it is: the class written is that of an appointment, so that a list which was added or
    // updated here is no group after the next load. Members and group ID are not written. Pinned by
    // OutlookAddressGroupTableTest.
    PropertyArray ReadItem(INEntityItem& item, bool isNew) override;
};
