// What the values of a contact message, by the positions of ContactColumns.h, mean for the item.
// What cannot be read leaves its field alone. Throws std::bad_alloc only.
#pragma once

#include "outlook/store/PropertyView.h"

#include "PimStoreBridge.h"

// Time of the last change, texts, phone numbers, e-mail addresses, postal addresses, dates.
//   hasLocalDates: whether the store knows contacts' local dates, which are then preferred.
//   zoneBiasDays:  see ZoneBiasDays.
void PutContactValues(INEntityItem& entity,
                      INContactItem& contact,
                      const PropertyView& values,
                      bool hasLocalDates,
                      double zoneBiasDays);

// The categories; nothing where there are none.
void PutContactCategories(INContactItem& contact, const PropertyView& values);

// What the system's zone is off from UTC, as the days to add to a local time for UTC. Without
// daylight saving, whatever the season.
double ZoneBiasDays();
