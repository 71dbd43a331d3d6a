// The tags under which a store holds named properties. No name is ever created by asking for it.
#pragma once

#include "outlook/store/Proxcy.h"
#include "platform/WindowsHeaders.h"

#include <optional>
#include <span>
#include <vector>

// The sets of names that contacts use.
inline constexpr GUID kAddressNames = {
    0x00062004, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}; // PSETID_Address
inline constexpr GUID kCommonNames = {
    0x00062008, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}; // PSETID_Common
inline constexpr GUID kPublicNames = {
    0x00020329, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}; // PS_PUBLIC_STRINGS

inline constexpr wchar_t kKeywordsName[] = L"Keywords"; // of kPublicNames
inline constexpr LONG kHasPictureName = 0x8015;         // of kAddressNames: PidLidHasPicture

// What stands for a name that the store does not know.
inline constexpr ULONG kUnknownNameTag = PROP_TAG(PT_ERROR, 0);

// Whether a tag that was looked up is of a property.
constexpr bool IsNamedTag(ULONG tag) noexcept
{
    return PROP_ID(tag) != 0 && PROP_TYPE(tag) != PT_ERROR;
}

// The tag with another type.
constexpr ULONG WithType(ULONG tag, ULONG type) noexcept
{
    return PROP_TAG(type, PROP_ID(tag));
}

// One tag for each number of the property set, in their order, with the type that the store tells;
// kUnknownNameTag also where the call fails or gives fewer tags. Throws std::bad_alloc.
std::vector<ULONG> FindNamedTags(IMAPIProp& object,
                                 CNProxcy& proxy,
                                 const GUID& set,
                                 std::span<const LONG> numbers);

// The same for callers to whom a failing call means more than unknown names: nothing where it
// fails, and 0 for a tag that it does not give; an unknown name's is for IsNamedTag to tell.
std::optional<std::vector<ULONG>> TryFindNamedTags(IMAPIProp& object,
                                                   CNProxcy& proxy,
                                                   const GUID& set,
                                                   std::span<const LONG> numbers);

// The same for one name: 0 where the call fails, so that only IsNamedTag tells a usable tag.
ULONG FindNamedTag(IMAPIProp& object, CNProxcy& proxy, const GUID& set, LONG number);
ULONG FindNamedTag(IMAPIProp& object, CNProxcy& proxy, const GUID& set, const wchar_t* name);
