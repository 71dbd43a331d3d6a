// One root folder of a store, as the folder walk found it.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string>

struct OutlookFolderInfo
{
    Microsoft::WRL::ComPtr<IMAPIFolder> folder;
    bool isDefault = false;
    LONG itemCount = 0;
    std::wstring entryIDHex; // upper-case hex, two digits per byte
    std::wstring displayName;
};
