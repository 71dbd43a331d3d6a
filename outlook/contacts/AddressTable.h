// What tables of contacts share: the class of their items, and the copying of pictures for a store
// that keeps them as files.
#pragma once

#include "outlook/store/ContentTable.h"

class CAddressTable : public CContentTable
{
  public:
    using CContentTable::CContentTable;

  protected:
    // A new contact.
    Microsoft::WRL::ComPtr<INEntityItem> CreateItem() override;
    // Contacts alone: the clearing of another item's message would be all that happens to it.
    bool IsWritable(INEntityItem& item) override;

    // Copies a file into the stream, from where that stands; ends where a read gives nothing more
    // or a call fails.
    // Limits:  those of CopyPicture; a longer file is cut there.
    // Returns: the number of bytes that the stream took; 0 for a null argument, for a file that
    //          does not open and for a path to a pipe or a device.
    static ULONG SavePicture(const wchar_t* path, IStream* stream);
};
