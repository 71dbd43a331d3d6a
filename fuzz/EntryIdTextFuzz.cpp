// Every entry ID comes back from its text, and every text gives bytes.
#include "FuzzInput.h"

#include "outlook/store/EntryIdText.h"
#include "service/TextConversions.h"

#include <cstdlib>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::vector<std::uint8_t> bytes(data, data + size);
    const std::wstring hex = BytesToHex(bytes);
    if (hex.size() != 2 * size || HexToBytes(hex) != bytes)
        std::abort();

    const std::wstring text = WideFromUtf8(FuzzInput(data, size).TakeRest());
    if (HexToBytes(text).size() != text.size() / 2)
        std::abort();
    return 0;
}
