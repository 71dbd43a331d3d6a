// A list of property tags in the form that store interfaces take: the count in front of the tags.
#pragma once

#include "platform/WindowsHeaders.h"

#include <cstddef>
#include <span>
#include <vector>

class TagArray
{
  public:
    // Throws std::bad_alloc.
    explicit TagArray(std::span<const ULONG> tags)
    {
        m_words.reserve(tags.size() + 1);
        m_words.push_back(static_cast<ULONG>(tags.size()));
        m_words.insert(m_words.end(), tags.begin(), tags.end());
    }

    // Valid as long as this object; the interfaces do not write through it.
    LPSPropTagArray Get() noexcept { return reinterpret_cast<LPSPropTagArray>(m_words.data()); }

  private:
    static_assert(offsetof(SPropTagArray, aulPropTag) == sizeof(ULONG));
    static_assert(alignof(SPropTagArray) == alignof(ULONG));
    std::vector<ULONG> m_words;
};
