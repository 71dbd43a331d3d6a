#include "platform/SparseBytes.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <initializer_list>
#include <vector>

namespace
{
using Bytes = std::vector<unsigned char>;

Bytes Packed(const Bytes& bytes)
{
    // What is written behind the stated size shows.
    constexpr unsigned char kMark = 0xAB;
    const std::size_t size = SparseSize(bytes);
    Bytes packed(size + 16, kMark);
    PackSparse(bytes, packed.data());
    EXPECT_EQ(Bytes(packed.begin() + static_cast<std::ptrdiff_t>(size), packed.end()),
              Bytes(16, kMark));
    packed.resize(size);
    return packed;
}

Bytes Unpacked(const Bytes& packed, std::size_t size)
{
    Bytes bytes(size, 0xCD);
    UnpackSparse(packed, bytes);
    return bytes;
}
} // namespace

TEST(SparseBytesTest, TakesTheZerosAtTheEndAway)
{
    EXPECT_EQ(WithoutZerosAtEnd({}).size(), 0u);
    for (const std::size_t size : {1, 7, 8, 63, 64, 65, 128, 129, 1000})
    {
        Bytes bytes(size);
        EXPECT_EQ(WithoutZerosAtEnd(bytes).size(), 0u) << size;
        for (std::size_t last = 0; last < size; ++last)
        {
            bytes.assign(size, 0);
            bytes[last] = 0x80;
            EXPECT_EQ(WithoutZerosAtEnd(bytes).size(), last + 1) << size;
        }
    }
}

TEST(SparseBytesTest, WritesAMaskAndTheBytesThatAreNotZero)
{
    EXPECT_EQ(Packed({}), Bytes());
    EXPECT_EQ(Packed({0, 0, 0}), Bytes());
    EXPECT_EQ(Packed({5}), (Bytes{0x01, 5}));
    EXPECT_EQ(Packed({0, 0, 7, 0, 0, 0, 0, 9, 0}), (Bytes{0x84, 7, 9}));
    // A group without any byte keeps its mask; the second byte of the third group is its bit 1.
    EXPECT_EQ(Packed({1, 2, 3, 4, 5, 6, 7, 8, 0, 0, 0, 0, 0, 0, 0, 0, 0, 6, 0}),
              (Bytes{0xFF, 1, 2, 3, 4, 5, 6, 7, 8, 0x00, 0x02, 6}));
}

TEST(SparseBytesTest, UnpacksWhatWasPacked)
{
    for (const std::size_t size : {0, 1, 7, 8, 9, 64, 100, 1000})
    {
        for (const std::size_t step : {1, 2, 3, 8, 9, 50})
        {
            Bytes bytes(size);
            for (std::size_t i = 0; i < size; i += step)
                bytes[i] = static_cast<unsigned char>(i % 255 + 1);
            EXPECT_EQ(Unpacked(Packed(bytes), size), bytes) << size << ' ' << step;
        }
    }
}

TEST(SparseBytesTest, FillsALongerRecordWithZerosAndAShorterOneToItsEnd)
{
    const Bytes packed = Packed({1, 0, 3, 0, 0, 0, 0, 8, 9});
    EXPECT_EQ(Unpacked(packed, 12), (Bytes{1, 0, 3, 0, 0, 0, 0, 8, 9, 0, 0, 0}));
    EXPECT_EQ(Unpacked(packed, 8), (Bytes{1, 0, 3, 0, 0, 0, 0, 8}));
    EXPECT_EQ(Unpacked(packed, 7), (Bytes{1, 0, 3, 0, 0, 0, 0}));
    EXPECT_EQ(Unpacked(packed, 0), Bytes());
}

TEST(SparseBytesTest, ReadsNothingBehindPackedBytesThatAreCutOff)
{
    // The mask promises three bytes, of which fewer are there.
    EXPECT_EQ(Unpacked({0x07, 1, 2}, 4), (Bytes{1, 2, 0, 0}));
    EXPECT_EQ(Unpacked({0x07}, 4), (Bytes{0, 0, 0, 0}));
    EXPECT_EQ(Unpacked({}, 4), (Bytes{0, 0, 0, 0}));
}
