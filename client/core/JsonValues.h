// Values of items as JSON; null stands for what is not there. Portable.
#pragma once

#include "client/core/CivilTime.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace pim
{
using Json = nlohmann::ordered_json;

Json TextJson(const std::wstring& text);
Json TextsJson(const std::vector<std::wstring>& texts);
Json TextOrNull(const std::optional<std::wstring>& text);

// "2024-04-30T17:20:00Z"
Json UtcOrNull(const std::optional<DATE>& utc);

// Text that is valid JSON, indented, with a line feed at its end.
std::wstring JsonText(const Json& json);
} // namespace pim
