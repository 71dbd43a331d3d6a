#include "platform/ByteReader.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <vector>

namespace
{
std::vector<std::byte> Bytes(std::initializer_list<int> values)
{
    std::vector<std::byte> bytes;
    for (const int value : values)
        bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}
} // namespace

TEST(ByteReaderTest, ReadsLittleEndianIntegersOfEveryWidth)
{
    const auto bytes = Bytes({0x01, 0x34, 0x12, 0x78, 0x56, 0x34, 0x12,       //
                              0xEF, 0xCD, 0xAB, 0x89, 0x67, 0x45, 0x23, 0x01, //
                              0xFF, 0xFE, 0xFF, 0xFD, 0xFF, 0xFF, 0xFF});
    ByteReader reader(bytes);
    std::uint8_t u8 = 0;
    std::uint16_t u16 = 0;
    std::uint32_t u32 = 0;
    std::uint64_t u64 = 0;
    std::int8_t i8 = 0;
    std::int16_t i16 = 0;
    std::int32_t i32 = 0;
    EXPECT_TRUE(reader.Read(u8) && reader.Read(u16) && reader.Read(u32) && reader.Read(u64));
    EXPECT_TRUE(reader.Read(i8) && reader.Read(i16) && reader.Read(i32));
    EXPECT_EQ(0x01, u8);
    EXPECT_EQ(0x1234, u16);
    EXPECT_EQ(0x12345678u, u32);
    EXPECT_EQ(0x0123456789ABCDEFu, u64);
    EXPECT_EQ(-1, i8);
    EXPECT_EQ(-2, i16);
    EXPECT_EQ(-3, i32);
    EXPECT_EQ(0u, reader.Remaining());
    EXPECT_EQ(CodecStatus::Ok, reader.Status());
}

TEST(ByteReaderTest, KeepsTheFirstFailureItsOffsetAndTheOutputs)
{
    const auto bytes = Bytes({1, 2, 3});
    ByteReader reader(bytes);
    std::uint16_t first = 0;
    std::uint16_t second = 77;
    std::uint8_t third = 88;
    EXPECT_TRUE(reader.Read(first));
    EXPECT_FALSE(reader.Read(second));
    EXPECT_FALSE(reader.Read(third)); // the byte is there, but the failure sticks
    EXPECT_FALSE(reader.Skip(0));
    EXPECT_FALSE(reader.Fail(CodecStatus::BadVersion));
    EXPECT_EQ(0x0201, first);
    EXPECT_EQ(77, second);
    EXPECT_EQ(88, third);
    EXPECT_EQ(CodecStatus::Truncated, reader.Status());
    EXPECT_EQ(2u, reader.Offset());
}

TEST(ByteReaderTest, HandsOutBytesWithoutCopyingThem)
{
    const auto bytes = Bytes({1, 2, 3, 4});
    ByteReader reader(bytes);
    std::span<const std::byte> piece;
    EXPECT_TRUE(reader.Skip(1));
    EXPECT_TRUE(reader.ReadBytes(2, piece));
    EXPECT_EQ(bytes.data() + 1, piece.data());
    EXPECT_EQ(2u, piece.size());
    EXPECT_FALSE(reader.ReadBytes(SIZE_MAX, piece));
    EXPECT_EQ(2u, piece.size());
}

TEST(ByteReaderTest, CapsTheReaderOfAPart)
{
    const auto bytes = Bytes({1, 2, 3, 4, 5});
    ByteReader reader(bytes);
    EXPECT_TRUE(reader.Skip(1));
    ByteReader part = reader.Sub(2);
    std::uint8_t value = 0;
    EXPECT_TRUE(part.Read(value));
    EXPECT_EQ(2, value);
    EXPECT_EQ(2u, part.Offset()); // offsets count from the start of the whole
    std::uint16_t wide = 0;
    EXPECT_FALSE(part.Read(wide));
    EXPECT_TRUE(reader.IsOk());
    EXPECT_EQ(3u, reader.Offset());

    const ByteReader tooLong = reader.Sub(3);
    EXPECT_EQ(CodecStatus::Truncated, tooLong.Status());
    EXPECT_EQ(0u, tooLong.Remaining());
    EXPECT_EQ(CodecStatus::Truncated, reader.Status());
}

TEST(ByteReaderTest, AcceptsACountOnlyIfItsElementsCanFollow)
{
    const auto bytes = Bytes({3, 0, 0, 0, 0, 0, 0, 0, 0});
    std::size_t count = 99;
    {
        ByteReader reader(bytes);
        EXPECT_FALSE(reader.ReadCount<std::uint16_t>(3, 100, count)); // 7 bytes, 9 needed
        EXPECT_EQ(CodecStatus::Truncated, reader.Status());
        EXPECT_EQ(0u, reader.Offset());
    }
    {
        ByteReader reader(bytes);
        EXPECT_FALSE(reader.ReadCount<std::uint16_t>(1, 2, count));
        EXPECT_EQ(CodecStatus::LimitExceeded, reader.Status());
    }
    EXPECT_EQ(99u, count);
    {
        ByteReader reader(bytes);
        EXPECT_TRUE(reader.ReadCount<std::uint16_t>(2, 3, count));
        EXPECT_EQ(3u, count);
    }
    const auto huge = Bytes({0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
    ByteReader reader(huge);
    EXPECT_FALSE(reader.ReadCount<std::uint64_t>(16, SIZE_MAX, count));
    EXPECT_EQ(CodecStatus::Truncated, reader.Status());
}
