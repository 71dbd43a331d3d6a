// Moves values between the server's contact objects and the client's plain ones.
#pragma once

#include "client/ReadFields.h"
#include "client/core/Contact.h"
#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

namespace pim
{
// Reads what the item gives; a property that fails or is null is absent from the result. For a
// table it is what the table shows, and the picture where that is asked for too.
// Throws: Failure, where the server went away.
Contact ReadContact(INContactItem* item, ReadFields fields, bool withPicture);

// Puts every field in which wanted differs from before.
// Throws: Failure, where a put fails or the server went away.
void PutChanges(INContactItem* item, const Contact& before, const Contact& wanted);
} // namespace pim
