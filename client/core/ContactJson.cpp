#include "client/core/ContactJson.h"

#include "client/core/ContactFields.h"
#include "client/core/JsonValues.h"
#include "client/core/Unicode.h"

#include <algorithm>
#include <iterator>

namespace pim
{
namespace
{
constexpr const wchar_t* kOwnMembers[] = {L"id", L"folderId", L"displayName", L"modifiedUtc"};

std::string Key(const wchar_t* name)
{
    return Utf8FromWide(name);
}

Json DayOrNull(const std::optional<DATE>& date)
{
    const auto time = CivilFromDate(date);
    return time ? TextJson(IsMidnight(*time) ? FormatDay(*time) : FormatIso(*time)) : Json();
}

Json PhonesJson(const Contact& contact)
{
    Json json;
    for (std::size_t i = 0; i < kPhoneTypeCount; ++i)
        json[Key(kPhoneTypes[i].name)] = TextOrNull(contact.phones[i]);
    return json;
}

Json AddressJson(const std::optional<PostalAddress>& address)
{
    if (!address)
        return {};
    Json json;
    for (const AddressPart& part : kAddressParts)
        json[Key(part.name)] = TextOrNull((*address).*part.value);
    return json;
}

// Reads an object by handing each member to the reader of its name; the first mistake ends it.
class ContactReader
{
  public:
    // Throws: Mistake.
    struct Mistake
    {
        std::wstring path;
        std::wstring text;
    };

    static Contact Read(const Json& json, const std::wstring& path)
    {
        CheckObject(json, path);
        Contact contact;
        for (const auto& [key, value] : json.items())
        {
            const std::wstring name = WideFromUtf8(key);
            const std::wstring place = path + name;
            if (!value.is_null() && !ReadField(name, value, place, contact) && !IsOwn(name))
                throw Mistake{place, L"a contact has no such member."};
        }
        return contact;
    }

  private:
    static bool IsOwn(const std::wstring& name)
    {
        return std::find(std::begin(kOwnMembers), std::end(kOwnMembers), name) !=
               std::end(kOwnMembers);
    }

    static void CheckObject(const Json& json, const std::wstring& path)
    {
        if (!json.is_object())
            throw Mistake{path, L"an object is needed here."};
    }

    static std::wstring Text(const Json& value, const std::wstring& place)
    {
        if (!value.is_string())
            throw Mistake{place, L"a text is needed here."};
        return WideFromUtf8(value.get_ref<const std::string&>());
    }

    static std::vector<std::wstring> Texts(const Json& value, const std::wstring& place)
    {
        if (!value.is_array())
            throw Mistake{place, L"an array of texts is needed here."};
        std::vector<std::wstring> texts;
        for (const Json& entry : value)
            texts.push_back(Text(entry, place + L'/' + std::to_wstring(texts.size())));
        return texts;
    }

    static DATE Day(const Json& value, const std::wstring& place)
    {
        const std::wstring text = Text(value, place);
        if (text.empty())
            return kNoDay;
        const auto typed = ParseTypedTime(text);
        if (!typed || typed->isUtc)
            throw Mistake{place, L"a day as 1984-06-12 is needed here."};
        return DateFromCivil(typed->time);
    }

    // False where no field has that name.
    static bool ReadField(const std::wstring& name,
                          const Json& value,
                          const std::wstring& place,
                          Contact& contact)
    {
        const auto read = [&](const auto& fields, auto reader) {
            const auto field = std::find_if(
                fields.begin(), fields.end(), [&](const auto& one) { return name == one.member; });
            if (field == fields.end())
                return false;
            contact.*field->value = reader(value, place);
            return true;
        };
        if (read(kContactTexts, Text) || read(kContactDays, Day) || read(kContactLists, Texts))
            return true;
        if (name == L"picture")
            contact.picture = Text(value, place);
        else if (name == L"phones")
            ReadPhones(value, place, contact);
        else if (name == L"addresses")
            ReadAddresses(value, place, contact);
        else
            return false;
        return true;
    }

    static void ReadPhones(const Json& value, const std::wstring& place, Contact& contact)
    {
        CheckObject(value, place);
        for (const auto& [key, number] : value.items())
        {
            const std::wstring below = place + L'/' + WideFromUtf8(key);
            const std::size_t type = TypeOf(kPhoneTypes, key, below);
            if (!number.is_null())
                contact.phones[type] = Text(number, below);
        }
    }

    static void ReadAddresses(const Json& value, const std::wstring& place, Contact& contact)
    {
        CheckObject(value, place);
        for (const auto& [key, parts] : value.items())
        {
            const std::wstring below = place + L'/' + WideFromUtf8(key);
            const std::size_t type = TypeOf(kAddressTypes, key, below);
            if (!parts.is_null())
                contact.addresses[type] = ReadAddress(parts, below);
        }
    }

    static PostalAddress ReadAddress(const Json& value, const std::wstring& place)
    {
        CheckObject(value, place);
        PostalAddress address;
        for (const auto& [key, text] : value.items())
        {
            const std::wstring below = place + L'/' + WideFromUtf8(key);
            const AddressPart* const part = FindAddressPart(WideFromUtf8(key));
            if (!part)
                throw Mistake{below, L"an address has no such member."};
            if (!text.is_null())
                address.*part->value = Text(text, below);
        }
        return address;
    }

    static std::size_t TypeOf(std::span<const ContactType> types,
                              const std::string& key,
                              const std::wstring& place)
    {
        const ContactType* const type = FindContactType(types, WideFromUtf8(key));
        if (!type)
            throw Mistake{place,
                          L"there is no such type; there are " + ContactTypeNames(types) + L'.'};
        return std::size_t(type - types.data());
    }
};

const Json* ListIn(const Json& json)
{
    if (json.is_array())
        return &json;
    const auto member = json.is_object() ? json.find("contacts") : json.end();
    return member != json.end() && member->is_array() ? &*member : nullptr;
}
} // namespace

Json ContactJson(const Contact& contact)
{
    Json json;
    json["id"] = TextOrNull(contact.id);
    json["folderId"] = TextOrNull(contact.folderId);
    json["displayName"] = TextOrNull(contact.displayName);
    for (const ContactText& field : kContactTexts)
        json[Key(field.member)] = TextOrNull(contact.*field.value);
    for (const ContactList& field : kContactLists)
        json[Key(field.member)] =
            TextsJson((contact.*field.value).value_or(std::vector<std::wstring>()));
    for (const ContactDay& field : kContactDays)
        json[Key(field.member)] = DayOrNull(contact.*field.value);
    json["phones"] = PhonesJson(contact);
    Json addresses;
    for (std::size_t i = 0; i < kAddressTypeCount; ++i)
        addresses[Key(kAddressTypes[i].name)] = AddressJson(contact.addresses[i]);
    json["addresses"] = std::move(addresses);
    json["picture"] = TextOrNull(contact.picture);
    json["modifiedUtc"] = UtcOrNull(contact.modifiedUtc);
    return json;
}

ContactFile ReadContacts(std::string_view utf8)
{
    ContactFile file;
    const Json json = Json::parse(utf8, nullptr, false);
    if (json.is_discarded())
    {
        file.problem = L"it is no JSON in UTF-8.";
        return file;
    }
    try
    {
        const Json* const list = ListIn(json);
        if (!list)
            file.contacts.push_back(ContactReader::Read(json, L""));
        for (std::size_t i = 0; list && i < list->size(); ++i)
            file.contacts.push_back(ContactReader::Read((*list)[i], std::to_wstring(i) + L'/'));
    }
    catch (const ContactReader::Mistake& mistake)
    {
        file.contacts.clear();
        file.problem = (mistake.path.empty() ? L"" : mistake.path + L": ") + mistake.text;
    }
    return file;
}
} // namespace pim
