#include "outlook/store/MAPIHelper.h"

#include "outlook/store/EntryIdText.h"
#include "service/TimeConversions.h"
#include "service/ZoneConversions.h"

#include <utility>

CMAPIHelper::CMAPIHelper(std::unique_ptr<CNProxcy> proxy) : m_pProxy(std::move(proxy)) {}

CMAPIHelper::~CMAPIHelper()
{
    m_pProxy->Unload();
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
