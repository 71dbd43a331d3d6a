#include "outlook/contacts/GroupMembers.h"

#include "outlook/store/EntryIdText.h"

#include <algorithm>

namespace
{
// Behind the flags (4 bytes) and the wrapping provider (16) stands the type, then the wrapped ID.
constexpr std::size_t kTypeOffset = 0x14;
constexpr std::size_t kEntryIDOffset = kTypeOffset + 1;
constexpr std::size_t kEntryIDSize = 0x46;

constexpr std::uint8_t kWrapsEntryID = 0x80; // else a one-off address
constexpr std::uint8_t kKindMask = 0x0F;

std::optional<GroupMemberKind> KindOf(std::uint8_t type)
{
    if (!(type & kWrapsEntryID))
        return std::nullopt;
    switch (type & kKindMask)
    {
    case 3:
        return GroupMemberKind::Contact;
    case 4:
        return GroupMemberKind::SubGroup;
    default:
        return std::nullopt;
    }
}
} // namespace

std::optional<GroupMember> ReadGroupMember(std::span<const std::uint8_t> bytes)
{
    if (bytes.size() <= kEntryIDOffset)
        return std::nullopt;
    const auto kind = KindOf(bytes[kTypeOffset]);
    if (!kind)
        return std::nullopt;
    const auto rest = bytes.subspan(kEntryIDOffset);
    return GroupMember{*kind, BytesToHex(rest.first(std::min(rest.size(), kEntryIDSize)))};
}
