// The identity in an entry ID is a piece of the ID behind the marker, without what ends it.

#include "windowscontacts/EntryIdMarker.h"

#include <cstdlib>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::wstring identity = MarkedIdentity({data, size});
    if (identity.empty())
        return 0;
    if (identity.size() > kLongestMarkedIdentity || identity.size() + 7 > size / 2 ||
        identity.find(L'"') != std::wstring::npos || identity.find(L'\0') != std::wstring::npos)
        std::abort();

    // An ID that begins with the marker gives the same again.
    std::vector<std::uint8_t> shorter;
    for (const wchar_t unit : L"/GUID:\"" + identity)
    {
        shorter.push_back(static_cast<std::uint8_t>(unit & 0xFF));
        shorter.push_back(static_cast<std::uint8_t>(unit >> 8 & 0xFF));
    }
    if (MarkedIdentity(shorter) != identity)
        std::abort();
    return 0;
}
