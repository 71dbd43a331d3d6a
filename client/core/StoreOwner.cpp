#include "client/core/StoreOwner.h"

#include "client/core/TextTable.h"
#include "client/core/Unicode.h"

#include <nlohmann/json.hpp>

namespace pim
{
namespace
{
// One string of the user's identity: how it is called for people and for programs.
struct IdentityField
{
    const wchar_t* title;
    const char* member;
};

// clang-format off
constexpr std::array<IdentityField, kIdentityFields> kFields = {{
    {L"Account",             "account"},
    {L"Address type",        "addressType"},
    {L"Name",                "displayName"},
    {L"Company",             "company"},
    {L"E-mail address",      "emailAddress"},
    {L"First name",          "firstName"},
    {L"Last name",           "lastName"},
    {L"Office",              "officeLocation"},
    {L"SMTP address",        "smtpAddress"},
    {L"Name as transmitted", "transmitableDisplayName"},
}};
// clang-format on
} // namespace

std::wstring IdentityTable(const Identity& identity)
{
    TextTable table({{L""}, {L""}});
    bool any = false;
    for (std::size_t i = 0; i < kIdentityFields; ++i)
    {
        if (identity[i].empty())
            continue;
        table.AddRow({kFields[i].title, identity[i]});
        any = true;
    }
    return any ? table.Format() : L"The store does not tell who its user is.\n";
}

nlohmann::ordered_json IdentityJson(const Identity& identity)
{
    nlohmann::ordered_json json;
    for (std::size_t i = 0; i < kIdentityFields; ++i)
        json[kFields[i].member] = identity[i].empty()
                                      ? nlohmann::ordered_json()
                                      : nlohmann::ordered_json(Utf8FromWide(identity[i]));
    return json;
}

std::wstring FolderTable(const std::vector<ContactFolder>& folders)
{
    if (folders.empty())
        return L"No contact folders.\n";
    TextTable table({{L"FOLDER"}, {L"ITEMS"}, {L""}, {L"ID"}});
    for (const ContactFolder& folder : folders)
        table.AddRow({folder.name,
                      std::to_wstring(folder.itemCount),
                      folder.isDefault ? L"default" : L"",
                      folder.id});
    return table.Format();
}

nlohmann::ordered_json FoldersJson(const std::vector<ContactFolder>& folders)
{
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    for (const ContactFolder& folder : folders)
        list.push_back({{"id", Utf8FromWide(folder.id)},
                        {"name", Utf8FromWide(folder.name)},
                        {"items", folder.itemCount},
                        {"default", folder.isDefault}});
    return {{"folders", std::move(list)}};
}
} // namespace pim
