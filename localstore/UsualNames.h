// The named properties of appointments, contacts and groups that mail clients make in every store.
// Programs that read and write such items look the names up without making any, so a store without
// them would keep neither the times of an appointment nor the addresses of a contact.
//
// Everything here throws DatabaseError.
#pragma once

#include "localstore/Database.h"
#include "localstore/NamedProperties.h"

#include <vector>

std::vector<PropertyName> UsualNames();

// Whether the store has not been given the names that are usual now. Cheap.
bool LacksUsualNames(Database& database);

// Makes those that are missing, as far as the store has room for names.
void MakeUsualNames(Database& database);
