// The members of a distribution list: each is a binary that wraps the member's entry ID. Portable.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

enum class GroupMemberKind
{
    Contact,
    SubGroup
};

struct GroupMember
{
    GroupMemberKind kind;
    std::wstring entryID; // upper-case hex
};

// The member that the bytes wrap; nothing for a one-off address, for any other kind and for bytes
// without an ID. The ID is read in the one length that it has in a mailbox; one that ends before,
// as the IDs of file stores do, is taken as it is.
std::optional<GroupMember> ReadGroupMember(std::span<const std::uint8_t> bytes);
