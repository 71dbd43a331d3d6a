// What a contact item becomes in the store.
#pragma once

#include "outlook/contacts/ContactNames.h"
#include "outlook/store/PropertyArray.h"
#include "outlook/store/Proxcy.h"

#include "PimStoreBridge.h"

// Where a contact is written to.
struct ContactTarget
{
    IMAPIProp& container; // of which most named properties are asked
    IMAPIProp* message;   // the open one
    CNProxcy& proxy;
};

// What of the user's system has a part in it.
struct ContactSettings
{
    NameSettings names;
    double zoneBiasDays = 0.0; // see ContactValues.h
};

// The values to set, in their order. A property of the item that cannot be had, or is empty, gives
// none, but for those that always stand there. Where the item has a picture, an attachment is made
// of it; and its categories are put back into it as they came.
//   isNew: whether the message is still without a class.
// Throws std::bad_alloc.
PropertyArray ContactProperties(INContactItem& contact,
                                bool isNew,
                                const ContactSettings& settings,
                                const ContactTarget& target);
