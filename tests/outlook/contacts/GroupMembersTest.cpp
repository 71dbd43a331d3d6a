// The members' bytes follow the published form of wrapped entry IDs: flags (4 bytes), the wrapping
// provider (16), the type byte, the wrapped ID.
#include "outlook/contacts/GroupMembers.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{
using Bytes = std::vector<std::uint8_t>;

// Before the type byte every byte is FF; the ID counts up from 0.
Bytes Wrapped(std::uint8_t type, std::size_t idSize)
{
    Bytes bytes(0x14, 0xFF);
    bytes.push_back(type);
    for (std::size_t i = 0; i < idSize; ++i)
        bytes.push_back(static_cast<std::uint8_t>(i));
    return bytes;
}

// The hex text of 00 to 45, 0x46 bytes.
constexpr wchar_t kFullID[] =
    L"000102030405060708090A0B0C0D0E0F101112131415161718191A1B1C1D1E1F202122232425262728292A2B2C2D"
    L"2E2F303132333435363738393A3B3C3D3E3F404142434445";
} // namespace

TEST(GroupMembersTest, TheTypeByteTellsTheKind)
{
    for (unsigned type = 0; type < 0x100; ++type)
    {
        const auto member = ReadGroupMember(Wrapped(static_cast<std::uint8_t>(type), 0x46));
        const bool wraps = type >= 0x80;
        const bool isContact = wraps && type % 16 == 3;
        const bool isGroup = wraps && type % 16 == 4;
        ASSERT_EQ(isContact || isGroup, member.has_value()) << type;
        if (!member)
            continue;
        EXPECT_EQ(isGroup ? GroupMemberKind::SubGroup : GroupMemberKind::Contact, member->kind);
    }
}

TEST(GroupMembersTest, AOneOffAddressIsNoMember)
{
    // The high bit is clear, whatever the low ones say.
    EXPECT_FALSE(ReadGroupMember(Wrapped(0x03, 0x46)));
    EXPECT_FALSE(ReadGroupMember(Wrapped(0x74, 0x46)));
}

TEST(GroupMembersTest, TheIdHasOneLength)
{
    ASSERT_EQ(140u, std::wstring(kFullID).size());
    EXPECT_EQ(kFullID, ReadGroupMember(Wrapped(0xC3, 0x46))->entryID);
    // What follows it is not looked at.
    EXPECT_EQ(kFullID, ReadGroupMember(Wrapped(0xB4, 0x47))->entryID);
    EXPECT_EQ(kFullID, ReadGroupMember(Wrapped(0xC3, 0x100))->entryID);
}

TEST(GroupMembersTest, AnIdThatEndsBeforeIsTakenAsItIs)
{
    EXPECT_EQ(std::wstring(kFullID).substr(0, 138), ReadGroupMember(Wrapped(0xC3, 0x45))->entryID);
    EXPECT_EQ(std::wstring(kFullID).substr(0, 48), ReadGroupMember(Wrapped(0xC3, 24))->entryID);
    EXPECT_EQ(L"00", ReadGroupMember(Wrapped(0xC3, 1))->entryID);
}

TEST(GroupMembersTest, BytesWithoutAnIdAreNoMember)
{
    EXPECT_FALSE(ReadGroupMember({}));
    const Bytes typeOnly = Wrapped(0xC3, 0);
    for (std::size_t size = 0; size <= typeOnly.size(); ++size)
        EXPECT_FALSE(ReadGroupMember(std::span(typeOnly).first(size))) << size;
}
