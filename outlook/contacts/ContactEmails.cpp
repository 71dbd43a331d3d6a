#include "outlook/contacts/ContactEmails.h"

#include <iterator>
#include <vector>

namespace
{
struct Slot
{
    LONG address;
    LONG display;
    LONG originalDisplay;
    LONG type;
};

constexpr Slot kSlots[] = {
    {0x8083, 0x8080, 0x8084, 0x8082},
    {0x8093, 0x8090, 0x8094, 0x8092},
    {0x80A3, 0x80A0, 0x80A4, 0x80A2},
};

constexpr LONG kUsedSlots = 0x8028;     // PidLidAddressBookProviderEmailList
constexpr LONG kUsedSlotsMask = 0x8029; // PidLidAddressBookProviderArrayType

// Whether the store knows the name.
bool AddText(PropertyArray& values,
             const ContactNameTags& tags,
             LONG name,
             const std::wstring& text)
{
    const ULONG tag = tags.Of(name, PT_UNICODE);
    if (tag)
        values.AddText(tag, text);
    return tag != 0;
}
} // namespace

void AddContactEmails(PropertyArray& values,
                      std::span<const std::wstring> addresses,
                      const std::wstring& displayName,
                      const ContactNameTags& tags)
{
    LONG mask = 0;
    std::vector<LONG> used;
    LONG slotNumber = 0;
    for (const std::wstring& address : addresses)
    {
        if (address.empty())
            continue;
        if (slotNumber == std::ssize(kSlots))
            break;
        const Slot& slot = kSlots[slotNumber];
        if (AddText(values, tags, slot.address, address))
        {
            mask |= 1 << slotNumber;
            used.push_back(slotNumber);
        }
        AddText(values, tags, slot.display, displayName + L" (" + address + L")");
        AddText(values, tags, slot.originalDisplay, address);
        AddText(values, tags, slot.type, L"SMTP");
        ++slotNumber;
    }
    if (used.empty())
        return;
    if (const ULONG tag = tags.Of(kUsedSlotsMask, PT_LONG))
        values.AddLong(tag, mask);
    if (const ULONG tag = tags.Of(kUsedSlots, PT_MV_LONG))
        values.AddLongs(tag, used);
}
