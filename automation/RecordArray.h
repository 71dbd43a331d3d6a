// Arrays of the contract's records. The element type is built at run time from the registered type
// library, so without a registration there is no array.
#pragma once

#include "platform/SafeArray.h"
#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

// The GUIDs under which the type library knows its records.
inline constexpr GUID kFolderInfoRecord = {
    0x067D2523, 0x0E96, 0x4FB4, {0x85, 0x85, 0x27, 0x06, 0xA8, 0xB2, 0xBF, 0x28}};
inline constexpr GUID kBasicContactInfoRecord = {
    0x250B493B, 0x20F7, 0x4E27, {0xAC, 0xCE, 0xA7, 0x8F, 0xA8, 0x27, 0xB8, 0x15}};

// An array of count records of that type, all zero, lower bound 0. The library is looked up under
// the locale and, where that finds nothing, under its own one. Empty where a step fails.
UniqueSafeArray CreateRecordArray(const GUID& record, ULONG count, LCID locale);

// One record per item of the range, in its order; fill(Record&, const Item&) writes one. Texts are
// made by NewText, so that they belong to the array at once. Empty where the array cannot be made.
// Throws what fill throws.
template <typename Record, typename Range, typename Fill>
UniqueSafeArray MakeRecordArray(const GUID& record, const Range& items, Fill fill)
{
    UniqueSafeArray array =
        CreateRecordArray(record, static_cast<ULONG>(items.size()), GetUserDefaultLCID());
    const SafeArrayAccess<Record> records(array.Get());
    if (records)
    {
        Record* next = records.Data();
        for (const auto& item : items)
            fill(*next++, item);
    }
    return array;
}
