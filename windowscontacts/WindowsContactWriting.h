// What a contact item becomes in the Windows Address Book.
#pragma once

#include "outlook/store/PropertyArray.h"

#include "PimStoreBridge.h"

// The values to set, in their order, without the picture. A property of the item that cannot be
// had, or is empty, gives none; given and display name are "Untitled" where there is no part of a
// name. Throws std::bad_alloc.
PropertyArray WindowsContactProperties(INContactItem& contact);
