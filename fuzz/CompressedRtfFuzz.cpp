// Unpacking any bytes gives a text within the cap, the same twice, and a text that packs and
// unpacks to itself; a failure gives none.
#include "localstore/CompressedRtf.h"

#include <cstdint>
#include <cstdlib>

namespace
{
constexpr std::size_t kMaxTextBytes = 1 << 20;
constexpr std::size_t kMaxBytesPerByte = 9; // 17 bytes from a reference of two
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::span input(reinterpret_cast<const std::byte*>(data), size);
    std::vector<std::byte> text;
    const CompressedRtfResult result = DecompressRtf(input, kMaxTextBytes, text);
    if (result.offset > size || text.size() > kMaxTextBytes ||
        text.capacity() > kMaxBytesPerByte * (size + 1))
        std::abort();
    std::vector<std::byte> again;
    if (DecompressRtf(input, kMaxTextBytes, again).status != result.status || again != text)
        std::abort();
    if (result.status != CodecStatus::Ok)
    {
        if (!text.empty())
            std::abort();
        return 0;
    }
    std::vector<std::byte> packed;
    if (CompressRtf(text, packed) != CodecStatus::Ok ||
        DecompressRtf(packed, text.size(), again).status != CodecStatus::Ok || again != text)
        std::abort();
    return 0;
}
