#include "localstore/BookEntryId.h"

#include "localstore/StoredProperties.h"
#include "platform/WindowsHeaders.h"

#include <cstring>
#include <string>
#include <string_view>

namespace
{

constexpr std::wstring_view kStart = L"/GUID:\"";
// {6D1F0C52-3B0E-4C39-9B0C-7F2B6A51E0D4}, made for these templates alone.
constexpr unsigned char kTemplateUid[16] = {
    0x52, 0x0C, 0x1F, 0x6D, 0x0E, 0x3B, 0x39, 0x4C, 0x9B, 0x0C, 0x7F, 0x2B, 0x6A, 0x51, 0xE0, 0xD4};

std::span<const std::byte> BytesOf(std::wstring_view text)
{
    return std::as_bytes(std::span(text));
}

} // namespace

Bytes NewBookEntryId()
{
    GUID uid{};
    wchar_t braced[40] = {};
    if (FAILED(CoCreateGuid(&uid)) || StringFromGUID2(uid, braced, std::size(braced)) == 0)
        throw DatabaseError(DatabaseFailure::Other, "no unique number for a new entry ID");
    const std::wstring text = std::wstring(kStart) + braced + L"\"";
    const auto bytes = BytesOf(text);
    return Bytes(bytes.begin(), bytes.end());
}

bool IsBookEntryId(std::span<const std::byte> entryId)
{
    const auto start = BytesOf(kStart);
    return entryId.size() > start.size() &&
           std::memcmp(entryId.data(), start.data(), start.size()) == 0;
}

Bytes TemplateEntryId(std::uint8_t objectType)
{
    Bytes entryId = NewEntryId(objectType);
    std::memcpy(
        entryId.data() + kEntryIdBytes - sizeof kTemplateUid, kTemplateUid, sizeof kTemplateUid);
    return entryId;
}
