#include "localstore/CompressedRtf.h"

#include "platform/ByteReader.h"
#include "platform/ByteWriter.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string_view>

namespace
{
constexpr std::size_t kHeaderBytes = 16;
constexpr std::size_t kHeaderAfterSizeBytes = 12; // the part of the header that its size counts
constexpr std::uint32_t kPacked = 0x75465A4C;     // "LZFu"
constexpr std::uint32_t kUnpacked = 0x414C454D;   // "MELA"
constexpr std::size_t kDictionaryBytes = 4096;    // a power of two: offsets have 12 bits
constexpr std::size_t kMinMatch = 2;
constexpr std::size_t kMaxMatch = 17;
constexpr unsigned kTokensPerControlByte = 8;
constexpr unsigned kMaxCandidates = 64; // how far a match is looked for

// What both sides know before the first byte.
constexpr std::string_view kPreset =
    "{\\rtf1\\ansi\\mac\\deff0\\deftab720{\\fonttbl;}{\\f0\\fnil \\froman \\fswiss \\fmodern "
    "\\fscript \\fdecor MS Sans SerifSymbolArialTimes New RomanCourier{\\colortbl\\red0\\green0"
    "\\blue0\r\n\\par \\pard\\plain\\f0\\fs20\\b\\i\\u\\tab\\tx";
static_assert(kPreset.size() == 207);

constexpr auto kCrcTable = [] {
    std::array<std::uint32_t, 256> table{};
    for (std::uint32_t byte = 0; byte < table.size(); ++byte)
    {
        std::uint32_t crc = byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320u : 0u);
        table[byte] = crc;
    }
    return table;
}();

// The format's checksum: the usual polynomial, but started at zero and not inverted at the end.
std::uint32_t Crc(std::span<const std::byte> bytes)
{
    std::uint32_t crc = 0;
    for (const std::byte byte : bytes)
        crc = kCrcTable[(crc ^ std::to_integer<std::uint32_t>(byte)) & 0xFF] ^ (crc >> 8);
    return crc;
}

// The bytes last written, in a ring; the side that unpacks reads from it.
class Dictionary
{
  public:
    Dictionary() noexcept
    {
        for (const char c : kPreset)
            Put(static_cast<std::byte>(c));
    }

    std::size_t WriteOffset() const noexcept { return m_written % kDictionaryBytes; }
    // True for an offset that has held a byte.
    bool Holds(std::size_t offset) const noexcept { return offset < m_written; }
    std::byte At(std::size_t offset) const noexcept { return m_ring[offset % kDictionaryBytes]; }
    void Put(std::byte byte) noexcept { m_ring[m_written++ % kDictionaryBytes] = byte; }

  private:
    std::array<std::byte, kDictionaryBytes> m_ring;
    std::size_t m_written = 0;
};

// Unpacks the contents; false where they are damaged. Contents that end without their end mark are
// whole if the text is.
bool Unpack(ByteReader& contents, std::size_t textBytes, std::vector<std::byte>& text)
{
    Dictionary dictionary;
    const auto put = [&](std::byte byte) {
        text.push_back(byte);
        dictionary.Put(byte);
    };
    while (contents.Remaining() > 0)
    {
        std::uint8_t control = 0;
        contents.Read(control);
        for (unsigned token = 0; token < kTokensPerControlByte; ++token)
        {
            if (contents.Remaining() == 0 && text.size() == textBytes)
                return true;
            if (((control >> token) & 1) == 0)
            {
                std::uint8_t literal = 0;
                if (!contents.Read(literal))
                    return false;
                if (text.size() == textBytes)
                    return contents.Fail(CodecStatus::Inconsistent);
                put(static_cast<std::byte>(literal));
                continue;
            }
            // Most significant byte first: 12 bits of offset, 4 bits of length.
            std::uint8_t high = 0;
            std::uint8_t low = 0;
            if (!contents.Read(high) || !contents.Read(low))
                return false;
            const std::size_t offset = (std::size_t{high} << 4) | (low >> 4);
            const std::size_t length = (low & 0x0Fu) + kMinMatch;
            if (offset == dictionary.WriteOffset()) // the end mark
                return text.size() == textBytes || contents.Fail(CodecStatus::Inconsistent);
            if (!dictionary.Holds(offset) || length > textBytes - text.size())
                return contents.Fail(CodecStatus::Inconsistent);
            for (std::size_t i = 0; i < length; ++i)
                put(dictionary.At(offset + i));
        }
    }
    return text.size() == textBytes || contents.Fail(CodecStatus::Truncated);
}

CompressedRtfResult ResultOf(const ByteReader& reader)
{
    return {reader.Status(), reader.Offset()};
}

CompressedRtfResult Decompress(std::span<const std::byte> compressed,
                               std::size_t maxTextBytes,
                               std::vector<std::byte>& text)
{
    ByteReader reader(compressed);
    const auto fail = [&](CodecStatus status) {
        reader.Fail(status);
        return ResultOf(reader);
    };
    std::uint32_t sizeAfterField = 0;
    std::uint32_t textBytes = 0;
    std::uint32_t kind = 0;
    std::uint32_t crc = 0;
    reader.Read(sizeAfterField);
    reader.Read(textBytes);
    reader.Read(kind);
    if (!reader.Read(crc))
        return ResultOf(reader);
    if (kind != kPacked && kind != kUnpacked)
        return fail(CodecStatus::Unsupported);
    if (sizeAfterField < kHeaderAfterSizeBytes)
        return fail(CodecStatus::Inconsistent);
    if (textBytes > maxTextBytes)
        return fail(CodecStatus::LimitExceeded);

    const std::size_t contentBytes = sizeAfterField - kHeaderAfterSizeBytes;
    ByteReader contents = reader.Sub(contentBytes);
    std::span<const std::byte> all;
    if (!ByteReader(contents).ReadBytes(contentBytes, all))
        return ResultOf(reader);
    if (kind == kUnpacked)
    {
        // Some generators state the size of the text with part of the header counted in.
        all = all.first(std::min<std::size_t>(textBytes, all.size()));
        text.assign(all.begin(), all.end());
        return ResultOf(reader);
    }
    // Nothing packs better than a row of the longest references.
    if (Crc(all) != crc || textBytes / kMaxMatch > contentBytes / 2)
        return fail(CodecStatus::Inconsistent);
    text.reserve(textBytes);
    return Unpack(contents, textBytes, text) ? ResultOf(reader) : ResultOf(contents);
}

// Finds earlier places in the text, or in what both sides know before it, that begin with the same
// two bytes. Positions count from the start of the preset.
class MatchFinder
{
  public:
    explicit MatchFinder(std::span<const std::byte> text) : m_text(text)
    {
        m_latest.fill(kNone);
        while (m_known < kPreset.size())
            Advance();
    }

    struct Match
    {
        std::size_t position;
        std::size_t length;
    };

    // The longest match of the text at the current position; of equal ones the earliest, as
    // the published examples have it. A length below kMinMatch is none.
    Match Find() const
    {
        Match best{0, 0};
        const std::size_t limit = std::min(kMaxMatch, End() - m_known);
        if (limit < kMinMatch)
            return best;
        std::size_t candidate = m_latest[Pair(m_known)];
        for (unsigned tried = 0; tried < kMaxCandidates; ++tried)
        {
            // The byte written a whole dictionary ago stands where the end mark would point to.
            if (candidate == kNone || m_known - candidate >= kDictionaryBytes)
                break;
            std::size_t length = 0;
            while (length < limit && At(candidate + length) == At(m_known + length))
                ++length;
            if (length >= best.length)
                best = {candidate, length};
            if (length == limit)
                break;
            candidate = m_earlier[candidate % kDictionaryBytes];
        }
        return best;
    }

    // Makes the current byte known and goes on to the next.
    void Advance()
    {
        if (m_known + 1 < End())
        {
            std::size_t& latest = m_latest[Pair(m_known)];
            m_earlier[m_known % kDictionaryBytes] = latest;
            latest = m_known;
        }
        ++m_known;
    }

    std::size_t Position() const { return m_known; }

  private:
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    std::size_t End() const { return kPreset.size() + m_text.size(); }
    std::byte At(std::size_t position) const
    {
        return position < kPreset.size() ? static_cast<std::byte>(kPreset[position])
                                         : m_text[position - kPreset.size()];
    }
    std::size_t Pair(std::size_t position) const
    {
        return std::to_integer<std::size_t>(At(position)) << 8 |
               std::to_integer<std::size_t>(At(position + 1));
    }

    std::span<const std::byte> m_text;
    std::size_t m_known = 0;
    std::array<std::size_t, 65536> m_latest;             // the last position of each pair of bytes
    std::array<std::size_t, kDictionaryBytes> m_earlier; // the one before a position
};

// Gathers tokens behind their control bytes.
class TokenWriter
{
  public:
    explicit TokenWriter(std::vector<std::byte>& bytes) : m_bytes(bytes) {}

    void Literal(std::byte byte)
    {
        NextToken(false);
        m_bytes.push_back(byte);
    }

    void Reference(std::size_t offset, std::size_t length)
    {
        NextToken(true);
        const std::size_t bits = offset << 4 | (length - kMinMatch);
        m_bytes.push_back(static_cast<std::byte>(bits >> 8));
        m_bytes.push_back(static_cast<std::byte>(bits & 0xFF));
    }

  private:
    void NextToken(bool isReference)
    {
        if (m_token == kTokensPerControlByte)
        {
            m_token = 0;
            m_control = m_bytes.size();
            m_bytes.push_back(std::byte{0});
        }
        if (isReference)
            m_bytes[m_control] |= static_cast<std::byte>(1u << m_token);
        ++m_token;
    }

    std::vector<std::byte>& m_bytes;
    std::size_t m_control = 0;
    unsigned m_token = kTokensPerControlByte;
};

void Pack(std::span<const std::byte> text, std::vector<std::byte>& bytes)
{
    const auto finder = std::make_unique<MatchFinder>(text);
    TokenWriter tokens(bytes);
    for (std::size_t done = 0; done < text.size();)
    {
        const MatchFinder::Match match = finder->Find();
        const bool isReference = match.length >= kMinMatch;
        if (isReference)
            tokens.Reference(match.position % kDictionaryBytes, match.length);
        else
            tokens.Literal(text[done]);
        const std::size_t taken = isReference ? match.length : 1;
        for (std::size_t i = 0; i < taken; ++i)
            finder->Advance();
        done += taken;
    }
    tokens.Reference(finder->Position() % kDictionaryBytes, kMinMatch); // the end mark
}
} // namespace

CompressedRtfResult DecompressRtf(std::span<const std::byte> compressed,
                                  std::size_t maxTextBytes,
                                  std::vector<std::byte>& text)
{
    text.clear();
    const CompressedRtfResult result = Decompress(compressed, maxTextBytes, text);
    if (result.status != CodecStatus::Ok)
        text.clear();
    return result;
}

CodecStatus CompressRtf(std::span<const std::byte> text, std::vector<std::byte>& compressed)
{
    compressed.clear();
    ByteWriter writer(compressed);
    const std::size_t sizeHole = writer.Hole<std::uint32_t>();
    writer.Write<std::uint32_t>(text.size());
    writer.Write<std::uint32_t>(kPacked);
    const std::size_t crcHole = writer.Hole<std::uint32_t>();
    if (writer.IsOk())
    {
        Pack(text, compressed);
        writer.Patch<std::uint32_t>(crcHole, Crc(std::span(compressed).subspan(kHeaderBytes)));
        writer.Patch<std::uint32_t>(sizeHole, writer.Size() - sizeof(std::uint32_t));
    }
    if (!writer.IsOk())
        compressed.clear();
    return writer.Status();
}

CodecStatus StoreRtf(std::span<const std::byte> text, std::vector<std::byte>& stored)
{
    stored.clear();
    ByteWriter writer(stored);
    writer.Write<std::uint32_t>(text.size() + kHeaderAfterSizeBytes);
    writer.Write<std::uint32_t>(text.size());
    writer.Write<std::uint32_t>(kUnpacked);
    writer.Write<std::uint32_t>(0u); // no checksum
    if (writer.IsOk())
        stored.insert(stored.end(), text.begin(), text.end());
    else
        stored.clear();
    return writer.Status();
}
