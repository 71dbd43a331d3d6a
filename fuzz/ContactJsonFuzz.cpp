// A file of contacts either holds contacts or has a problem. Written as JSON and read again, a
// contact is written as the same JSON, alone and in a list.
#include "Require.h"

#include "client/core/ContactJson.h"
#include "client/core/JsonValues.h"
#include "client/core/Unicode.h"

#include <cstdint>

namespace
{
void CheckSame(const pim::ContactFile& file, const std::vector<pim::Json>& expected)
{
    Require(file.problem.empty() && file.contacts.size() == expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i)
        Require(pim::ContactJson(file.contacts[i]) == expected[i]);
}

pim::ContactFile ReadBack(const pim::Json& json)
{
    return pim::ReadContacts(pim::Utf8FromWide(pim::JsonText(json)));
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const pim::ContactFile file =
        pim::ReadContacts(std::string_view(reinterpret_cast<const char*>(data), size));
    if (!file.problem.empty())
    {
        Require(file.contacts.empty());
        return 0;
    }
    Require(file.contacts.size() <= size);
    std::vector<pim::Json> written;
    for (const pim::Contact& contact : file.contacts)
    {
        written.push_back(pim::ContactJson(contact));
        CheckSame(ReadBack(written.back()), {written.back()});
    }
    pim::Json list = pim::Json::array();
    for (const pim::Json& json : written)
        list.push_back(json);
    CheckSame(ReadBack(list), written);
    CheckSame(ReadBack({{"contacts", list}}), written);
    return 0;
}
