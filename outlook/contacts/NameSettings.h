// What the user chose in Outlook for the names of contacts.
#pragma once

#include "outlook/contacts/ContactNames.h"

// The settings of the newest Outlook in whose key an order was chosen; none where there is no such
// key. Read anew by each call. Throws std::bad_alloc.
NameSettings ReadNameSettings();
