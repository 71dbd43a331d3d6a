#include "localstore/CompressedRtf.h"

#include "support/SharedData.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace
{
constexpr std::size_t kLimit = 10 << 20;

std::vector<std::byte> Bytes(std::string_view text)
{
    const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
    return {bytes, bytes + text.size()};
}

std::string Text(const std::vector<std::byte>& bytes)
{
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::vector<std::byte> FromHex(std::string_view hex)
{
    std::vector<std::byte> bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(
            static_cast<std::byte>(std::stoi(std::string(hex.substr(i, 2)), nullptr, 16)));
    return bytes;
}

std::vector<std::byte> Packed(std::string_view text)
{
    std::vector<std::byte> compressed;
    EXPECT_EQ(CodecStatus::Ok, CompressRtf(Bytes(text), compressed));
    return compressed;
}

CodecStatus Status(const std::vector<std::byte>& compressed, std::size_t limit = kLimit)
{
    std::vector<std::byte> text{std::byte{1}};
    const CompressedRtfResult result = DecompressRtf(compressed, limit, text);
    EXPECT_LE(result.offset, compressed.size());
    EXPECT_TRUE(result.status == CodecStatus::Ok || text.empty());
    return result.status;
}

std::string Unpacked(const std::vector<std::byte>& compressed)
{
    std::vector<std::byte> text;
    EXPECT_EQ(CodecStatus::Ok, DecompressRtf(compressed, kLimit, text).status);
    return Text(text);
}

// A header, for contents worked out by hand. The checksum is made by the definition, bit by bit.
std::vector<std::byte> WithHeader(std::uint32_t textBytes, const std::vector<std::byte>& contents)
{
    std::uint32_t crc = 0;
    for (const std::byte byte : contents)
    {
        crc ^= std::to_integer<std::uint32_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? (crc >> 1) ^ 0xEDB88320u : crc >> 1;
    }
    std::vector<std::byte> bytes;
    for (const std::uint32_t field :
         {static_cast<std::uint32_t>(contents.size()) + 12, textBytes, 0x75465A4Cu, crc})
        for (int i = 0; i < 4; ++i)
            bytes.push_back(static_cast<std::byte>(field >> (8 * i)));
    bytes.insert(bytes.end(), contents.begin(), contents.end());
    return bytes;
}

// The two examples that [MS-OXRTFCP] works through.
constexpr std::string_view kHello = "{\\rtf1\\ansi\\ansicpg1252\\pard hello world}\r\n";
constexpr std::string_view kHelloPacked =
    "2d0000002b0000004c5a4675f1c5c7a7"
    "03000a007263706731323542320af32068656c090020627705b06c647d0a800fa0";
constexpr std::string_view kOverlap = "{\\rtf1 WXYZWXYZWXYZWXYZWXYZ}";
constexpr std::string_view kOverlapPacked = "1a0000001c0000004c5a4675e2d44b51"
                                            "41000420575859"
                                            "5a0d6e7d010eb0";
} // namespace

TEST(CompressedRtfTest, UnpacksThePublishedExamples)
{
    EXPECT_EQ(kHello, Unpacked(FromHex(kHelloPacked)));
    EXPECT_EQ(kOverlap, Unpacked(FromHex(kOverlapPacked)));
}

TEST(CompressedRtfTest, PacksThePublishedExamplesAsPublished)
{
    EXPECT_EQ(FromHex(kHelloPacked), Packed(kHello));
    EXPECT_EQ(FromHex(kOverlapPacked), Packed(kOverlap));
}

TEST(CompressedRtfTest, TakesUnpackedContentsAsTheyAre)
{
    // "abc" behind a header of kind "MELA": sizes 3 + 12 and 3, no checksum.
    EXPECT_EQ("abc", Unpacked(FromHex("0f000000030000004d454c4100000000616263")));
    // A text size that counts part of the header in, as some generators write it.
    EXPECT_EQ("abc", Unpacked(FromHex("0f0000000f0000004d454c4100000000616263")));
    EXPECT_EQ("ab", Unpacked(FromHex("0f000000020000004d454c4100000000616263")));
}

TEST(CompressedRtfTest, StoresTextsUnpackedBehindTheirHeader)
{
    std::vector<std::byte> stored;
    ASSERT_EQ(CodecStatus::Ok, StoreRtf(Bytes("abc"), stored));
    // As above: sizes 3 + 12 and 3, "MELA", no checksum.
    EXPECT_EQ(FromHex("0f000000030000004d454c4100000000616263"), stored);
    ASSERT_EQ(CodecStatus::Ok, StoreRtf({}, stored));
    EXPECT_EQ(FromHex("0c000000000000004d454c4100000000"), stored);
}

TEST(CompressedRtfTest, LeavesBytesBehindTheStatedSizeAlone)
{
    auto bytes = FromHex(kHelloPacked);
    const std::size_t size = bytes.size();
    bytes.push_back(std::byte{0xFF});
    std::vector<std::byte> text;
    const CompressedRtfResult result = DecompressRtf(bytes, kLimit, text);
    EXPECT_EQ(CodecStatus::Ok, result.status);
    EXPECT_EQ(size, result.offset);
    EXPECT_EQ(kHello, Text(text));
}

TEST(CompressedRtfTest, UnpacksTokensWorkedOutByHand)
{
    // Two literals "ab" at 207 and 208, then 4 bytes from 207, the last two of them just written
    // (0xCF2 = offset 207, length 2 + 2), then the end mark at 213 (0xD5).
    EXPECT_EQ("ababab",
              Unpacked(WithHeader(6,
                                  FromHex("0c6162"
                                          "0cf2"
                                          "0d50"))));
    // The preset's beginning as one reference: offset 0, length 4 + 2; end mark at 213.
    EXPECT_EQ("{\\rtf1",
              Unpacked(WithHeader(6,
                                  FromHex("03"
                                          "0004"
                                          "0d50"))));
    // No end mark: whole all the same where the text is.
    EXPECT_EQ("ab", Unpacked(WithHeader(2, FromHex("006162"))));
    EXPECT_EQ("abcdefgh", Unpacked(WithHeader(8, FromHex("006162636465666768"))));
    EXPECT_EQ("", Unpacked(WithHeader(0, FromHex("010cf0"))));
    EXPECT_EQ("", Unpacked(WithHeader(0, {})));
}

TEST(CompressedRtfTest, RefusesContentsThatContradictTheHeader)
{
    // Less or more text than stated.
    EXPECT_EQ(CodecStatus::Inconsistent, Status(WithHeader(3, FromHex("0461620d10"))));
    EXPECT_EQ(CodecStatus::Inconsistent, Status(WithHeader(1, FromHex("0461620d10"))));
    EXPECT_EQ(CodecStatus::Inconsistent, Status(WithHeader(5, FromHex("0c61620cf20d50"))));
    // A reference to a place that nothing was written to: offset 4000.
    EXPECT_EQ(CodecStatus::Inconsistent, Status(WithHeader(4, FromHex("0c6162fa000d30"))));
    // The end mark at once.
    EXPECT_EQ(CodecStatus::Inconsistent, Status(WithHeader(2, FromHex("010cf0"))));
    // Contents that end inside a token or before the text does.
    EXPECT_EQ(CodecStatus::Truncated, Status(WithHeader(4, FromHex("0461620c"))));
    EXPECT_EQ(CodecStatus::Truncated, Status(WithHeader(3, FromHex("006162"))));
    EXPECT_EQ(CodecStatus::Truncated, Status(WithHeader(9, FromHex("006162636465666768"))));
}

TEST(CompressedRtfTest, RefusesBadHeaders)
{
    auto bytes = FromHex(kHelloPacked);
    bytes[8] = std::byte{'X'};
    EXPECT_EQ(CodecStatus::Unsupported, Status(bytes));

    bytes = FromHex(kHelloPacked);
    bytes[12] ^= std::byte{1};
    EXPECT_EQ(CodecStatus::Inconsistent, Status(bytes));

    bytes = FromHex(kHelloPacked);
    bytes[20] ^= std::byte{1}; // a byte of the contents
    EXPECT_EQ(CodecStatus::Inconsistent, Status(bytes));

    bytes = FromHex(kHelloPacked);
    bytes[0] = std::byte{11}; // less than the rest of the header
    EXPECT_EQ(CodecStatus::Inconsistent, Status(bytes));

    // Larger than the cap, and larger than such contents can give: refused before any allocation.
    EXPECT_EQ(CodecStatus::LimitExceeded, Status(FromHex(kHelloPacked), 42));
    EXPECT_EQ(CodecStatus::Ok, Status(FromHex(kHelloPacked), 43));
    EXPECT_EQ(CodecStatus::LimitExceeded, Status(WithHeader(0xFFFFFFFF, FromHex("010cf0"))));
    EXPECT_EQ(CodecStatus::Inconsistent,
              Status(WithHeader(0xFFFFFFFF, FromHex("010cf0")), SIZE_MAX));
    EXPECT_EQ(CodecStatus::LimitExceeded,
              Status(FromHex("ffffffffffffffff4d454c4100000000616263")));
    EXPECT_EQ(CodecStatus::Truncated,
              Status(FromHex("ffffffffffffffff4d454c4100000000616263"), SIZE_MAX));
}

TEST(CompressedRtfTest, FailsCleanlyOnEveryPrefix)
{
    for (const std::string_view hex : {kHelloPacked, kOverlapPacked})
    {
        const auto whole = FromHex(hex);
        for (std::size_t size = 0; size < whole.size(); ++size)
            EXPECT_EQ(CodecStatus::Truncated, Status({whole.begin(), whole.begin() + size}))
                << size;
    }
}

TEST(CompressedRtfTest, RoundTripsTextsOfEverySizeAndKind)
{
    // A cheap generator of bytes, the same on every host.
    std::uint32_t seed = 1;
    const auto next = [&seed] {
        seed = seed * 1664525u + 1013904223u;
        return seed >> 24;
    };
    for (const unsigned letters : {1u, 2u, 5u, 256u})
    {
        for (const std::size_t size :
             {0,   1,    2,    3,    7,    8,    9,    16,   17,    18,    19,
              100, 3888, 3889, 3890, 4095, 4096, 4097, 8192, 20000, 100000})
        {
            std::string text;
            for (std::size_t i = 0; i < size; ++i)
                text += static_cast<char>(next() % letters);
            ASSERT_EQ(text, Unpacked(Packed(text))) << letters << ' ' << size;
        }
    }
}

TEST(CompressedRtfTest, PacksRepetitionTightlyAndNothingMuchLarger)
{
    const std::string repeated(17000, 'a');
    EXPECT_LT(Packed(repeated).size(), 2300u); // 17 bytes in 2 and an eighth
    std::string random;
    std::uint32_t seed = 7;
    for (int i = 0; i < 10000; ++i)
    {
        seed = seed * 1664525u + 1013904223u;
        random += static_cast<char>(seed >> 24);
    }
    EXPECT_LT(Packed(random).size(), 10000u + 1250u + 32u);
}

TEST(CompressedRtfTest, AgreesWithOurOwnSamplesAndRealBodies)
{
    auto samples = FilesIn(TestData() / "compressed_rtf", ".lzfu");
    EXPECT_EQ(3u, samples.size());
    std::ranges::move(SharedSamples("rtf", ".lzfu"), std::back_inserter(samples));
    for (const auto& path : samples)
    {
        auto plain = path;
        plain.replace_extension(".rtf");
        const std::string expected = ReadSample(plain);
        const std::vector<std::byte> packed = Bytes(ReadSample(path));
        EXPECT_EQ(expected, Unpacked(packed)) << path;
        EXPECT_EQ(expected, Unpacked(Packed(expected))) << path;
        for (std::size_t size = 0; size < packed.size(); size += 1 + packed.size() / 50)
            EXPECT_EQ(CodecStatus::Truncated, Status({packed.begin(), packed.begin() + size}))
                << path << ' ' << size;
    }
}
