// The properties of a Windows contact in the order in which they are asked for.
#pragma once

#include "platform/WindowsHeaders.h"

#include <span>

// Positions in the list. Those that nothing reads have no name here.
namespace WindowsContactColumn
{
enum : ULONG
{
    kLastModified = 0,
    kFirstName = 1,
    kLastName = 2,
    kMiddleName = 3,
    kJobTitle = 4,
    kCompanyName = 5,
    kFirstPhone = 6, // and the twelve behind it, by _tagNPhoneNumberType
    kEmails = 19,
    kEmailTypes = 20,
    kDefaultEmail = 21,
    kPersonalWebsite = 22,
    kBusinessWebsite = 23,
    kHomeAddress = 24, // six columns each, see kAddressFields
    kBusinessAddress = 30,
    kOtherAddress = 36,
    kBirthday = 42,
    kAnniversary = 43,
    kSuffix = 44,
};
} // namespace WindowsContactColumn

// All 45, by position.
std::span<const ULONG> WindowsContactColumnTags();
// One of them.
ULONG WindowsContactTag(ULONG position);

inline constexpr ULONG kWindowsContactNotes = 0x3004001F;   // PR_COMMENT
inline constexpr ULONG kWindowsContactPicture = 0x660E001F; // the path of a file

// What an update deletes before it writes, 59 tags.
// Kept as it is: notes and suffix are not among them and outlive an update that has none. Pinned by
// WindowsContactUpdateTest.
std::span<const ULONG> WindowsContactClearedTags();
