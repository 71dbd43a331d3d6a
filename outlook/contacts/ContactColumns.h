// The properties of a contact message in the order in which they are asked for, and the tags of
// those that both reading and writing use.
#pragma once

#include "outlook/contacts/ContactFields.h"
#include "outlook/store/Proxcy.h"
#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

#include <optional>
#include <vector>

// Positions in the list. Those that nothing reads have no name here.
namespace ContactColumn
{
enum : ULONG
{
    kLastModified = 0,
    kFirstName = 1,
    kLastName = 2,
    kMiddleName = 3,
    kJobTitle = 4,
    kCompanyName = 5,
    kInstantMessaging = 6,
    kFirstPhone = 7, // and the twelve behind it, by _tagNPhoneNumberType
    kFirstEmail = 22,
    kSecondEmail = 26,
    kThirdEmail = 30, // behind each the text that it was entered as
    kWebsite = 32,
    kHomeAddress = 33, // six columns each, see kAddressFields
    kBusinessAddress = 39,
    kOtherAddress = 45,
    kBirthday = 51,
    kAnniversary = 52,
    kSuffix = 53,
    kRtf = 56,
    kCategories = 57,
    kDisplayName = 58,
    kLocalBirthday = 59,
    kLocalAnniversary = 60,
};
} // namespace ContactColumn

struct ContactColumnTags
{
    std::vector<ULONG> tags; // by position
    bool hasLocalDates;      // whether the last two columns are there
};

// Names are looked up on the container, those of the business address on the message, which may be
// null.
ContactColumnTags FindContactColumns(IMAPIProp& container, IMAPIProp* message, CNProxcy& proxy);

// The tag of a column that has a fixed one.
ULONG FixedContactTag(ULONG position);

// The tags of the business address: of its own names, each replaced by a fixed one where the store
// does not know the name, and all of them where the message answers no questions.
// Returns: nothing where the lookup fails.
std::optional<AddressTags> FindBusinessAddressTags(IUnknown* message, CNProxcy& proxy);

// The tag of the message's keywords, with its type; as the lookup gave it where that is of no use.
ULONG FindKeywordsTag(IMAPIProp& object, CNProxcy& proxy);
