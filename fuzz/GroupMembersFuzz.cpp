// A member of a distribution list is read within its bytes, and its ID is a part of them.
#include "outlook/contacts/GroupMembers.h"
#include "outlook/store/EntryIdText.h"

#include <algorithm>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto member = ReadGroupMember({data, size});
    if (!member)
        return 0;
    const auto id = HexToBytes(member->entryID);
    if (id.empty() || id.size() > 0x46 || size < 0x15 + id.size() ||
        !std::equal(id.begin(), id.end(), data + 0x15))
        std::abort();
    // It ends early only where the bytes do.
    if (id.size() < 0x46 && size != 0x15 + id.size())
        std::abort();
    return 0;
}
