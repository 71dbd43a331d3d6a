// The properties that the store itself makes for its objects.
#pragma once

#include "localstore/SavedRow.h"
#include "localstore/StoreSession.h"

#include <cstdint>

// Whether the store makes the property of that number itself, so that none is stored.
bool IsComputedOfStore(std::uint16_t id);
bool IsComputedOfFolder(std::uint16_t id);
bool IsComputedOfMessage(std::uint16_t id);
bool IsComputedOfAttachment(std::uint16_t id);
bool IsComputedOfIdentity(std::uint16_t id);
bool IsComputedOfBookContainer(std::uint16_t id);
bool IsComputedOfBookEntry(std::uint16_t id);
bool IsComputedOf(OwnerKind kind, std::uint16_t id);

// Each puts a property of its type over one of the same number. Time: 100 ns since 1601, UTC.
void PutLong(PropertyMap& properties, ULONG tag, ULONG value);
void PutBoolean(PropertyMap& properties, ULONG tag, bool value);
void PutBinary(PropertyMap& properties, ULONG tag, const Bytes& value);
void PutTime(PropertyMap& properties, ULONG tag, std::int64_t value);
void PutText(PropertyMap& properties, ULONG tag, const wchar_t* value);

// The store's row of the stores table and the computed properties of the store itself.
void PutStoreProperties(const StoreSession& session, bool writable, PropertyMap& properties);

// A folder's properties, stored and computed; counts only where they are wanted. Throws
// DatabaseError (Gone).
PropertyMap ReadFolder(StoreSession& session,
                       std::int64_t folder,
                       bool writable,
                       const PropertySelection& selection);

// A message as a row of the table message has it.
struct MessageRow : SavedRow
{
    std::int64_t folder = 0;
    bool associated = false;
};

// The computed properties of a message but PR_HASATTACH.
void PutMessageProperties(const StoreSession& session,
                          const MessageRow& message,
                          const Bytes& folderEntryId,
                          bool writable,
                          PropertyMap& properties);
