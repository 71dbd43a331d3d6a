// Any bytes come back from their packed form, which is never much larger, and no damage of one byte
// in it goes unnoticed.
#include "localstore/CompressedRtf.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::span input(reinterpret_cast<const std::byte*>(data), size);
    std::vector<std::byte> packed;
    if (CompressRtf(input, packed) != CodecStatus::Ok || packed.size() > size + size / 8 + 20)
        std::abort();
    std::vector<std::byte> text;
    const CompressedRtfResult result = DecompressRtf(packed, size, text);
    if (result.status != CodecStatus::Ok || result.offset != packed.size() ||
        !std::ranges::equal(text, input))
        std::abort();

    if (size == 0)
        return 0;
    // Behind the header: the checksum tells. The place is chosen by the input.
    const std::size_t place = 16 + data[size - 1] % (packed.size() - 16);
    packed[place] ^= std::byte{0x10};
    if (DecompressRtf(packed, size, text).status == CodecStatus::Ok)
        std::abort();
    return 0;
}
