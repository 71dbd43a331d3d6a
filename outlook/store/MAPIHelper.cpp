#include "outlook/store/MAPIHelper.h"

#include "outlook/store/EntryIdText.h"
#include "outlook/store/MapiMemory.h"
#include "outlook/store/TagArray.h"
#include "service/Log.h"
#include "service/TimeConversions.h"
#include "service/ZoneConversions.h"

#include <algorithm>
#include <limits>
#include <utility>

CMAPIHelper::CMAPIHelper(std::unique_ptr<CNProxcy> proxy) : m_pProxy(std::move(proxy)) {}

CMAPIHelper::~CMAPIHelper()
{
    m_pProxy->Unload();
}

BOOL CMAPIHelper::EnumerateRows(
    IMAPITable* table, std::span<const ULONG> tags, int callType, ICallback* callback, ULONG flags)
{
    if (!table || !callback || !tags.data() || tags.empty())
        return FALSE;
    TagArray columns(tags);
    ULONG count = 0;
    if (FAILED(table->SetColumns(columns.Get(), 0)) || FAILED(table->GetRowCount(0, &count)) ||
        count == 0)
        return FALSE;

    // A negative count would walk backwards.
    constexpr ULONG kMostRows = std::numeric_limits<LONG>::max();
    SRowSet* delivered = nullptr;
    // Kept as it is: one query for all rows, also where the store gives fewer than it counted. What
    // it left out is not in the list. Pinned by
    // MAPIHelperRowsTest.RowsThatTheQueryLeavesOutAreNotAskedForAgain.
    if (FAILED(
            table->QueryRows(static_cast<LONG>(std::min(count, kMostRows)), flags, &delivered)) ||
        !delivered)
        return FALSE;
    const MapiRowSet rows = AdoptMapiRowSet(delivered, *m_pProxy);
    LogPrintf(L"==========pTable->QueryRows()! Rows = %d\r\n", rows->cRows);

    BOOL result = FALSE;
    for (ULONG i = 0; i < rows->cRows; ++i)
    {
        const SRow& row = rows->aRow[i];
        BOOL goesOn = TRUE;
        result =
            callback->OnPropertyRow(row.lpProps ? row.cValues : 0, row.lpProps, callType, &goesOn);
        // Kept as it is: frees the address of the set's first row for every row, where one would
        // expect the row's own values. A library refuses that address, since it handed out none
        // like it, and the values go with the set. Pinned by MAPIHelperRowsTest; not checked
        // against real libraries.
        m_pProxy->FreeBuffer(&rows->aRow[0]);
        if (!goesOn)
            break;
    }
    return result;
}

BOOL CMAPIHelper::EnumerateProperties(
    IMAPIProp* object, std::span<const ULONG> tags, int callType, ICallback* callback, ULONG flags)
{
    if (!object || !callback || !tags.data() || tags.empty())
        return FALSE;
    TagArray wanted(tags);
    ULONG count = 0;
    SPropValue* delivered = nullptr;
    const HRESULT result = object->GetProps(wanted.Get(), flags, &count, &delivered);
    LogPrintf(L"==========EnumerateProperties pMAPIProperty->GetProps, hr = (0X%p)! \r\n",
              Hr(result));
    // What a failed call left in its outputs is nobody's.
    const MapiBuffer<SPropValue> values =
        AdoptMapiBuffer(SUCCEEDED(result) ? delivered : nullptr, *m_pProxy);
    if (count == 0 || !values)
    {
        LogPrintf(L"==========Failed: All Properties: \r\n");
        for (std::size_t i = 0; i < tags.size(); ++i)
            LogPrintf(L"=========Index:%d, Name:%X", static_cast<int>(i), tags[i]);
        return FALSE;
    }
    BOOL goesOn = TRUE;
    return callback->OnPropertyRow(count, values.get(), callType, &goesOn) ? TRUE : FALSE;
}

std::wstring CMAPIHelper::BinaryToHex(const SBinary& value)
{
    if (!value.lpb)
        return {};
    return BytesToHex({value.lpb, value.cb});
}

EntryId CMAPIHelper::HexToBinary(const std::wstring& text)
{
    return EntryId(HexToBytes(text));
}

DATE CMAPIHelper::FileTimeToDate(FILETIME time)
{
    return ::FileTimeToDate(time);
}

FILETIME CMAPIHelper::DateToFileTime(DATE date)
{
    return ::DateToFileTime(date);
}

FILETIME CMAPIHelper::LocalDateToUtcFileTime(DATE localDate, const TIME_ZONE_INFORMATION* zone)
{
    return ::LocalDateToUtcFileTime(localDate, zone);
}

DATE CMAPIHelper::UtcFileTimeToLocalDate(FILETIME utcTime, const TIME_ZONE_INFORMATION* zone)
{
    return ::UtcFileTimeToLocalDate(utcTime, zone);
}
