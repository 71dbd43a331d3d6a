#include "client/core/ResultText.h"

namespace pim
{
std::wstring ResultText(std::int32_t result)
{
    constexpr wchar_t kDigits[] = L"0123456789ABCDEF";
    const auto bits = static_cast<std::uint32_t>(result);
    std::wstring text = L"0x";
    for (int shift = 28; shift >= 0; shift -= 4)
        text += kDigits[(bits >> shift) & 0xF];
    return text;
}
} // namespace pim
