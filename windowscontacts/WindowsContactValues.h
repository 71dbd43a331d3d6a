// What the values of a Windows contact, by the positions of WindowsContactColumns.h, mean for the
// item.
#pragma once

#include "outlook/store/PropertyView.h"

#include "PimStoreBridge.h"

// Time of the last change, texts, phone numbers, e-mail addresses, postal addresses, dates. What is
// not there leaves its field alone. Throws std::bad_alloc only.
void PutWindowsContactValues(INEntityItem& entity,
                             INContactItem& contact,
                             const PropertyView& values);
