// Texts as one text. Portable.
#pragma once

#include <string>

namespace pim
{
// "one, two, three", of a range of texts.
template <typename Texts> std::wstring CommaList(const Texts& texts)
{
    std::wstring joined;
    for (const auto& text : texts)
    {
        if (!joined.empty())
            joined += L", ";
        joined += text;
    }
    return joined;
}
} // namespace pim
