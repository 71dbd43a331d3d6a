#include "client/core/JsonValues.h"

#include "client/core/Unicode.h"

namespace pim
{
Json TextJson(const std::wstring& text)
{
    return Utf8FromWide(text);
}

Json TextsJson(const std::vector<std::wstring>& texts)
{
    Json list = Json::array();
    for (const std::wstring& text : texts)
        list.push_back(TextJson(text));
    return list;
}

Json TextOrNull(const std::optional<std::wstring>& text)
{
    return text ? TextJson(*text) : Json();
}

Json UtcOrNull(const std::optional<DATE>& utc)
{
    const auto time = CivilFromDate(utc);
    return time ? TextJson(FormatIso(*time) + L"Z") : Json();
}

std::wstring JsonText(const Json& json)
{
    return WideFromUtf8(json.dump(2)) + L'\n';
}
} // namespace pim
