#include "outlook/store/NamedTags.h"

#include "outlook/store/MapiMemory.h"

#include <algorithm>

std::vector<ULONG> FindNamedTags(IMAPIProp& object,
                                 CNProxcy& proxy,
                                 const GUID& set,
                                 std::span<const LONG> numbers)
{
    GUID setCopy = set; // names hold plain pointers; the interface does not write through them
    std::vector<MAPINAMEID> names(numbers.size());
    std::vector<MAPINAMEID*> pointers(numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i)
    {
        names[i].lpguid = &setCopy;
        names[i].ulKind = MNID_ID;
        names[i].Kind.lID = numbers[i];
        pointers[i] = &names[i];
    }
    std::vector<ULONG> tags(numbers.size(), kUnknownNameTag);
    SPropTagArray* delivered = nullptr;
    const HRESULT result =
        object.GetIDsFromNames(static_cast<ULONG>(names.size()), pointers.data(), 0, &delivered);
    // What a failed call left in its output is nobody's.
    const MapiBuffer<SPropTagArray> found =
        AdoptMapiBuffer(SUCCEEDED(result) ? delivered : nullptr, proxy);
    if (found)
        std::copy_n(
            found->aulPropTag, std::min<std::size_t>(found->cValues, tags.size()), tags.begin());
    return tags;
}
