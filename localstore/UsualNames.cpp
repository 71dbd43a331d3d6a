#include "localstore/UsualNames.h"

namespace
{
constexpr GUID kAppointment = {0x00062002, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr GUID kAddress = {0x00062004, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr GUID kCommon = {0x00062008, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr GUID kPublicStrings = {0x00020329, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// clang-format off
constexpr LONG kAppointmentNumbers[] = {
    0x8205, 0x8208, 0x820D, 0x820E, 0x8213, 0x8215, 0x8216, 0x8223, 0x8231, 0x8233, 0x8234, 0x8235,
    0x8236, 0x825E, 0x825F};
constexpr LONG kAddressNumbers[] = {
    0x8005, 0x8006, 0x8015, 0x801A, 0x801B, 0x801C, 0x8028, 0x8029, 0x802B, 0x8045, 0x8046, 0x8047,
    0x8048, 0x8049, 0x804A, 0x8053, 0x8055, 0x8062, 0x8080, 0x8082, 0x8083, 0x8084, 0x8090, 0x8092,
    0x8093, 0x8094, 0x80A0, 0x80A2, 0x80A3, 0x80A4, 0x80DE, 0x80DF};
constexpr LONG kCommonNumbers[] = {
    0x8501, 0x8502, 0x8503, 0x8510, 0x8516, 0x8517, 0x851C, 0x851E, 0x851F, 0x8580, 0x8581, 0x85BD};
// clang-format on

// Goes up with every change of the lists, so that older stores get the new names too.
constexpr std::int64_t kVersion = 1;
} // namespace

std::vector<PropertyName> UsualNames()
{
    std::vector<PropertyName> names;
    const auto add = [&](const GUID& set, std::span<const LONG> numbers) {
        for (const LONG number : numbers)
            names.push_back({set, number});
    };
    add(kAppointment, kAppointmentNumbers);
    add(kAddress, kAddressNumbers);
    add(kCommon, kCommonNumbers);
    names.push_back({kPublicStrings, std::wstring(L"Keywords")});
    return names;
}

bool LacksUsualNames(Database& database)
{
    return database.QueryInteger("SELECT coalesce((SELECT value FROM meta WHERE name = "
                                 "'usual_names'), 0)") < kVersion;
}

void MakeUsualNames(Database& database)
{
    try
    {
        for (const PropertyName& name : UsualNames())
            MakeNamedProperty(database, name);
    }
    catch (const DatabaseError& error)
    {
        // A store that is full of names is as good as it gets.
        if (error.Failure() != DatabaseFailure::Full)
            throw;
    }
    database.Prepare("INSERT OR REPLACE INTO meta (name, value) VALUES ('usual_names', ?1)")
        .Bind(1, kVersion)
        .Run();
}
