// Names of the property tags, types and property sets that people meet, for texts that they read
// and write.
#pragma once

#include "platform/WindowsHeaders.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// As PR_SURNAME_W. Empty where there is none.
std::string_view NameOfTag(ULONG tag);
std::optional<ULONG> TagOfName(std::string_view name);

// As PT_UNICODE, for the types that can be stored. Empty for others.
std::string_view NameOfType(std::uint16_t type);
std::optional<std::uint16_t> TypeOfName(std::string_view name);

// As PSETID_Address. Empty where there is none.
std::string_view NameOfSet(const GUID& set);
std::optional<GUID> SetOfName(std::string_view name);
