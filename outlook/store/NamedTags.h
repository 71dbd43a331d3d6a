// The tags under which a store holds named properties.
#pragma once

#include "outlook/store/Proxcy.h"
#include "platform/WindowsHeaders.h"

#include <span>
#include <vector>

// What stands for a name that the store does not know.
inline constexpr ULONG kUnknownNameTag = PROP_TAG(PT_ERROR, 0);

// Whether a tag from FindNamedTags is of a property.
constexpr bool IsNamedTag(ULONG tag) noexcept
{
    return PROP_ID(tag) != 0 && PROP_TYPE(tag) != PT_ERROR;
}

// One tag for each number of the property set, in their order, with the type that the store tells;
// kUnknownNameTag also where the call fails or gives fewer tags. No name is ever created.
// Throws std::bad_alloc.
std::vector<ULONG> FindNamedTags(IMAPIProp& object,
                                 CNProxcy& proxy,
                                 const GUID& set,
                                 std::span<const LONG> numbers);
