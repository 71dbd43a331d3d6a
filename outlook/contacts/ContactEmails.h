// The e-mail addresses of a contact that is written: each takes one of three slots, every one of
// four named properties.
#pragma once

#include "outlook/contacts/ContactNameTags.h"
#include "outlook/store/PropertyArray.h"

#include <span>
#include <string>

// Adds the first three addresses that are not empty, and behind them which slots are used. A
// property whose name the store does not know is left out by itself; a slot without its address
// does not count as used. Throws std::bad_alloc.
//
// Kept as it is: every address is written as one of internet mail, whatever it came from. Pinned by
// ContactWritingTest.
void AddContactEmails(PropertyArray& values,
                      std::span<const std::wstring> addresses,
                      const std::wstring& displayName,
                      const ContactNameTags& tags);
