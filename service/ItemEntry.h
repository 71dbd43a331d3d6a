// The light record that a table keeps per item.
#pragma once

#include "platform/Types.h"

#include <string>

struct ItemEntry
{
    std::wstring folderKey;     // hex entry ID of the row's folder; empty for a table of one folder
    std::wstring rowEntryID;    // upper-case hex of the entry ID as the contents table gave it
    std::wstring clientEntryID; // the ID under which clients know the item
    DATE lastModified = 0.0;    // UTC; 0.0 when unknown
};
