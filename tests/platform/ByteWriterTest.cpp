#include "platform/ByteWriter.h"

#include <gmock/gmock.h>

#include <array>

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
} // namespace

TEST(ByteWriterTest, AppendsLittleEndianFieldsBehindWhatStandsThere)
{
    std::vector<std::byte> bytes{std::byte{9}};
    ByteWriter writer(bytes);
    EXPECT_TRUE(writer.Write<std::uint8_t>(1));
    EXPECT_TRUE(writer.Write<std::uint16_t>(0x1234));
    EXPECT_TRUE(writer.Write<std::uint32_t>(0x89ABCDEFu));
    EXPECT_TRUE(writer.Write<std::int16_t>(-2));
    const std::array<std::byte, 2> raw{std::byte{5}, std::byte{6}};
    EXPECT_TRUE(writer.WriteBytes(raw));
    EXPECT_THAT(Values(bytes),
                ElementsAre(9, 1, 0x34, 0x12, 0xEF, 0xCD, 0xAB, 0x89, 0xFE, 0xFF, 5, 6));
    EXPECT_EQ(11u, writer.Size());
}

TEST(ByteWriterTest, FillsAHoleLater)
{
    std::vector<std::byte> bytes{std::byte{9}};
    ByteWriter writer(bytes);
    const std::size_t hole = writer.Hole<std::uint16_t>();
    writer.Write<std::uint8_t>(7);
    EXPECT_TRUE(writer.Patch<std::uint16_t>(hole, writer.Size()));
    EXPECT_THAT(Values(bytes), ElementsAre(9, 3, 0, 7));
    EXPECT_FALSE(writer.Patch<std::uint16_t>(2, 1)); // would reach behind the end
    EXPECT_EQ(CodecStatus::Inconsistent, writer.Status());
}

TEST(ByteWriterTest, FailsOnAValueThatDoesNotFitAndStaysFailed)
{
    std::vector<std::byte> bytes;
    ByteWriter writer(bytes);
    const std::size_t hole = writer.Hole<std::uint8_t>();
    EXPECT_FALSE(writer.Write<std::uint8_t>(256));
    EXPECT_EQ(CodecStatus::LimitExceeded, writer.Status());
    EXPECT_FALSE(writer.Write<std::uint8_t>(1));
    EXPECT_FALSE(writer.Patch<std::uint8_t>(hole, 1));
    EXPECT_THAT(Values(bytes), ElementsAre(0));

    std::vector<std::byte> others;
    ByteWriter other(others);
    EXPECT_FALSE(other.Write<std::uint32_t>(-1));
    EXPECT_FALSE(other.Write<std::int8_t>(128));
    EXPECT_THAT(Values(others), ElementsAre());
}
