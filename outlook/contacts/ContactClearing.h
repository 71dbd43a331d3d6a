// Takes everything off a contact message that an update writes anew, and more.
#pragma once

#include "outlook/store/Proxcy.h"
#include "platform/WindowsHeaders.h"

// Deletes the properties that this system knows and all attachments, and saves the message without
// a picture, so that the cleared state is stored before the new values come. What fails is passed
// over. Throws std::bad_alloc.
//
// Kept as it is: what an item cannot hold is lost with it, a nickname for one, while a suffix and
// a note are not in the list and outlive an update that has none. Pinned by ContactClearingTest and
// ContactUpdateTest.
void ClearContact(IMAPIProp& message, CNProxcy& proxy);
