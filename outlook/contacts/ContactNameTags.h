// The tags of the named properties that writing a contact sets, asked for in one call.
#pragma once

#include "outlook/store/Proxcy.h"
#include "platform/WindowsHeaders.h"

#include <array>

class ContactNameTags
{
  public:
    // Where the lookup fails no name is known. Throws std::bad_alloc.
    ContactNameTags(IMAPIProp& container, CNProxcy& proxy);

    // By the number among Outlook's address names, with the type; 0 where the store does not know
    // the name, and for a number that is none of those asked for.
    ULONG Of(LONG number, ULONG type) const;

  private:
    static constexpr std::size_t kCount = 19;
    static const LONG kNumbers[kCount];

    std::array<ULONG, kCount> m_tags = {}; // in the order of kNumbers
};
