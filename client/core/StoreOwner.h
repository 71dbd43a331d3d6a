// The mail user and the contact folders of a store, as tables and as JSON. Portable.
//
// JSON of the user: account, addressType, displayName, company, emailAddress, firstName, lastName,
// officeLocation, smtpAddress, transmitableDisplayName; text, null for what the store leaves empty.
// JSON of a folder: id, name (text), items (a number), default (true or false).
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace pim
{
inline constexpr std::size_t kIdentityFields = 10;
// The strings of the user's identity, in the order of the JSON above.
using Identity = std::array<std::wstring, kIdentityFields>;

struct ContactFolder
{
    std::wstring id;
    std::wstring name;
    std::int32_t itemCount = 0;
    bool isDefault = false;
};

// A line for each string that is not empty; a sentence where all are.
std::wstring IdentityTable(const Identity& identity);
nlohmann::ordered_json IdentityJson(const Identity& identity);

// A line for each folder in the server's order; a sentence where there is none.
std::wstring FolderTable(const std::vector<ContactFolder>& folders);
nlohmann::ordered_json FoldersJson(const std::vector<ContactFolder>& folders);
} // namespace pim
