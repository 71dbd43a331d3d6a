// What tables of contacts share: the class of their items, and the copying of pictures.
#pragma once

#include "outlook/store/ContentTable.h"

class CAddressTable : public CContentTable
{
  public:
    using CContentTable::CContentTable;

  protected:
    // A new contact.
    Microsoft::WRL::ComPtr<INEntityItem> CreateItem() override;

    // Copies a file into the stream, from where that stands; ends where a read gives nothing more
    // or a call fails.
    // Returns: the number of bytes that the stream took; 0 for a null argument and for a file that
    //          does not open.
    static ULONG SavePicture(const wchar_t* path, IStream* stream);
};
