// What the provider, its tables and the identity share: the library proxy, the walkers over rows
// and properties, and the conversions of entry IDs and times. The provider owns the one helper; the
// others keep a plain pointer.
#pragma once

#include "outlook/store/LiveObjects.h"
#include "outlook/store/Proxcy.h"
#include "platform/WindowsHeaders.h"
#include "service/Callback.h"

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

// An entry ID with memory of its own. No comparison: only a provider can tell whether two IDs mean
// the same entry.
class EntryId
{
  public:
    EntryId() = default;
    explicit EntryId(std::vector<std::uint8_t> bytes) : m_bytes(std::move(bytes)) {}

    ULONG Size() const noexcept { return static_cast<ULONG>(m_bytes.size()); }
    // As store interfaces take it; they do not write through it.
    LPENTRYID Get() noexcept { return reinterpret_cast<LPENTRYID>(m_bytes.data()); }
    // A view that is valid as long as this object; the layout of a list element.
    SBinary View() noexcept { return {Size(), m_bytes.data()}; }

  private:
    std::vector<std::uint8_t> m_bytes;
};

class CMAPIHelper
{
  public:
    // The proxy must not be null.
    explicit CMAPIHelper(std::unique_ptr<CNProxcy> proxy);
    // Unloads the library and deletes the proxy.
    ~CMAPIHelper();
    CMAPIHelper(const CMAPIHelper&) = delete;
    CMAPIHelper& operator=(const CMAPIHelper&) = delete;

    CNProxcy& Proxy() const noexcept { return *m_pProxy; }

    // Who works with this helper and outlives the provider where a client keeps it. The provider
    // detaches them before it releases anything.
    LiveObjects& Live() noexcept { return m_live; }

    // Walks a table: sets the tags as its columns and hands every row in order to the callback,
    // until that clears *pContinue. All rows come in one query; those that a store leaves out of it
    // are not walked. The set is freed after the walk, also where the callback throws.
    //   flags: of the query (QueryRows); 0 in all uses.
    // Returns: what the callback returned last; 0 where none ran, for a null table or callback and
    //          without tags.
    BOOL EnumerateRows(IMAPITable* table,
                       std::span<const ULONG> tags,
                       int callType,
                       ICallback* callback,
                       ULONG flags);

    // Reads the tags of one object and hands their values to the callback, once, in the order of
    // the tags; one that cannot be had has the type PT_ERROR. The values are freed after the call,
    // also where the callback throws.
    //   flags: of the reading (GetProps): MAPI_UNICODE for wide texts.
    // Returns: 1 where the callback returned non-zero; else 0, also where the reading failed, for a
    //          null object or callback and without tags.
    BOOL EnumerateProperties(IMAPIProp* object,
                             std::span<const ULONG> tags,
                             int callType,
                             ICallback* callback,
                             ULONG flags);

    // Upper-case hexadecimal text; empty for an empty value.
    static std::wstring BinaryToHex(const SBinary& value);
    // Every text gives an ID, see outlook/store/EntryIdText.h.
    static EntryId HexToBinary(const std::wstring& text);

    // Without a change of zone; 0.0 and zero where a step fails.
    static DATE FileTimeToDate(FILETIME time);
    static FILETIME DateToFileTime(DATE date);
    // By the rules of the zone; null stands for the machine's own.
    static FILETIME LocalDateToUtcFileTime(DATE localDate, const TIME_ZONE_INFORMATION* zone);
    static DATE UtcFileTimeToLocalDate(FILETIME utcTime, const TIME_ZONE_INFORMATION* zone);

  private:
    std::unique_ptr<CNProxcy> m_pProxy;
    LiveObjects m_live;
};
