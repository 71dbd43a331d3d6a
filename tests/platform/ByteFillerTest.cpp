#include "platform/ByteFiller.h"

#include <gmock/gmock.h>

#include <array>
#include <vector>

using testing::ElementsAre;

namespace
{
std::vector<int> Values(const std::vector<std::byte>& bytes)
{
    std::vector<int> values;
    for (const std::byte byte : bytes)
        values.push_back(std::to_integer<int>(byte));
    return values;
}

constexpr std::array kRaw{std::byte{5}, std::byte{6}};

template <class Out> void WriteSome(Out& out)
{
    out.template Write<std::uint8_t>(1);
    out.template Write<std::uint16_t>(0x1234);
    out.template Write<std::uint32_t>(0x89ABCDEFu);
    out.template Write<std::int16_t>(-2);
    out.WriteBytes(kRaw);
    out.WriteBytes({});
}
} // namespace

TEST(ByteFillerTest, FillsTheRoomThatTheCounterTold)
{
    ByteCounter size;
    WriteSome(size);
    EXPECT_EQ(11u, size.Size());
    std::vector<std::byte> bytes(size.Size());
    ByteFiller out(bytes);
    WriteSome(out);
    EXPECT_EQ(CodecStatus::Ok, out.Status());
    EXPECT_EQ(0u, out.Remaining());
    EXPECT_THAT(Values(bytes),
                ElementsAre(1, 0x34, 0x12, 0xEF, 0xCD, 0xAB, 0x89, 0xFE, 0xFF, 5, 6));
}

TEST(ByteFillerTest, StopsAtTheEndOfTheRoom)
{
    std::vector<std::byte> bytes(4, std::byte{9});
    ByteFiller out{std::span<std::byte>(bytes).first(3)};
    out.Write<std::uint16_t>(0x0201);
    EXPECT_EQ(1u, out.Remaining());
    out.Write<std::uint16_t>(3);
    EXPECT_EQ(CodecStatus::LimitExceeded, out.Status());
    out.Write<std::uint8_t>(3); // would fit
    EXPECT_THAT(Values(bytes), ElementsAre(1, 2, 9, 9));

    ByteFiller other(bytes);
    other.Write<std::uint8_t>(7);
    other.WriteBytes(std::vector<std::byte>(4));
    EXPECT_FALSE(other.IsOk());
    other.WriteBytes(kRaw);
    EXPECT_THAT(Values(bytes), ElementsAre(7, 2, 9, 9));
}

TEST(ByteFillerTest, FailsOnAValueThatDoesNotFitAndStaysFailed)
{
    std::vector<std::byte> bytes(8, std::byte{9});
    ByteFiller out(bytes);
    out.Write<std::uint8_t>(256);
    EXPECT_EQ(CodecStatus::LimitExceeded, out.Status());
    out.Write<std::uint8_t>(1);
    ByteFiller other(bytes);
    other.Write<std::uint32_t>(-1);
    EXPECT_FALSE(other.IsOk());
    EXPECT_EQ(8u, other.Remaining());
    EXPECT_EQ(std::vector<int>(8, 9), Values(bytes));
}
