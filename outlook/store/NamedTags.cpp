#include "outlook/store/NamedTags.h"

#include "outlook/store/MapiMemory.h"

#include <algorithm>

namespace
{
constexpr ULONG kNoCreation = 0;

// Named properties have IDs from here on; one below is a property of its own, which a store that
// gives it for a name would have overwritten or deleted.
constexpr ULONG kFirstNamedId = 0x8000;

std::optional<std::vector<ULONG>> FindTags(IMAPIProp& object,
                                           CNProxcy& proxy,
                                           std::span<MAPINAMEID> names)
{
    std::vector<MAPINAMEID*> pointers(names.size());
    std::ranges::transform(names, pointers.begin(), [](MAPINAMEID& name) { return &name; });
    SPropTagArray* delivered = nullptr;
    const HRESULT result = object.GetIDsFromNames(
        static_cast<ULONG>(pointers.size()), pointers.data(), kNoCreation, &delivered);
    // What a failed call left in its output is nobody's.
    const MapiBuffer<SPropTagArray> found =
        AdoptMapiBuffer(SUCCEEDED(result) ? delivered : nullptr, proxy);
    if (!found)
        return std::nullopt;
    std::vector<ULONG> tags(names.size());
    std::copy_n(
        found->aulPropTag, std::min<std::size_t>(found->cValues, tags.size()), tags.begin());
    std::ranges::replace_if(
        tags, [](ULONG tag) { return PROP_ID(tag) != 0 && PROP_ID(tag) < kFirstNamedId; }, 0ul);
    return tags;
}
} // namespace

std::optional<std::vector<ULONG>> TryFindNamedTags(IMAPIProp& object,
                                                   CNProxcy& proxy,
                                                   const GUID& set,
                                                   std::span<const LONG> numbers)
{
    GUID setCopy = set; // names hold plain pointers; the interface does not write through them
    std::vector<MAPINAMEID> names(numbers.size());
    for (std::size_t i = 0; i < numbers.size(); ++i)
    {
        names[i].lpguid = &setCopy;
        names[i].ulKind = MNID_ID;
        names[i].Kind.lID = numbers[i];
    }
    return FindTags(object, proxy, names);
}

std::vector<ULONG> FindNamedTags(IMAPIProp& object,
                                 CNProxcy& proxy,
                                 const GUID& set,
                                 std::span<const LONG> numbers)
{
    auto tags = TryFindNamedTags(object, proxy, set, numbers);
    if (!tags)
        return std::vector<ULONG>(numbers.size(), kUnknownNameTag);
    std::ranges::replace(*tags, 0ul, kUnknownNameTag);
    return *std::move(tags);
}

ULONG FindNamedTag(IMAPIProp& object, CNProxcy& proxy, const GUID& set, LONG number)
{
    const auto tags = TryFindNamedTags(object, proxy, set, {&number, 1});
    return tags ? tags->front() : 0;
}

ULONG FindNamedTag(IMAPIProp& object, CNProxcy& proxy, const GUID& set, const wchar_t* name)
{
    GUID setCopy = set;
    MAPINAMEID named = {};
    named.lpguid = &setCopy;
    named.ulKind = MNID_STRING;
    named.Kind.lpwstrName = const_cast<wchar_t*>(name);
    const auto tags = FindTags(object, proxy, {&named, 1});
    return tags ? tags->front() : 0;
}
