#include "outlook/contacts/ContactText.h"

#include "automation/ItemProperties.h"
#include "platform/Bstr.h"
#include "tests/automation/CollectionFixture.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>
#include <stdexcept>

using Microsoft::WRL::ComPtr;

namespace
{
struct TextField
{
    const char* name;
    HRESULT (STDMETHODCALLTYPE INContactItem::*get)(BSTR*);
    HRESULT (STDMETHODCALLTYPE INContactItem::*put)(BSTR);
};

constexpr TextField kFields[] = {
    {"FirstName", &INContactItem::get_FirstName, &INContactItem::put_FirstName},
    {"MiddleName", &INContactItem::get_MiddleName, &INContactItem::put_MiddleName},
    {"LastName", &INContactItem::get_LastName, &INContactItem::put_LastName},
    {"Suffix", &INContactItem::get_Suffix, &INContactItem::put_Suffix},
    {"DisplayName", &INContactItem::get_DisplayName, &INContactItem::put_DisplayName},
    {"JobTitle", &INContactItem::get_JobTitle, &INContactItem::put_JobTitle},
    {"CompanyName", &INContactItem::get_CompanyName, &INContactItem::put_CompanyName},
    {"InstantMessagingAddress",
     &INContactItem::get_InstantMessagingAddress,
     &INContactItem::put_InstantMessagingAddress},
    {"Website", &INContactItem::get_Website, &INContactItem::put_Website},
    {"Notes", &INContactItem::get_Notes, &INContactItem::put_Notes},
    {"Picture", &INContactItem::get_Picture, &INContactItem::put_Picture},
    {"GroupID", &INContactItem::get_GroupID, &INContactItem::put_GroupID},
};

constexpr const char* kKinds[] = {"Home.", "Business.", "Other."};

struct AddressField
{
    const char* name;
    BSTR _tagNAddress::*field;
};

constexpr AddressField kAddressFieldNames[] = {
    {"Country", &_tagNAddress::Country},
    {"StateOrProvince", &_tagNAddress::StateOrProvince},
    {"City", &_tagNAddress::City},
    {"Street", &_tagNAddress::Street},
    {"PostOfficeBox", &_tagNAddress::PostOfficeBox},
    {"PostalCode", &_tagNAddress::PostalCode},
};

std::string Format(const char* format, auto... arguments)
{
    char text[64];
    std::snprintf(text, sizeof text, format, arguments...);
    return text;
}

// Owner of an address's texts.
class AddressTexts
{
  public:
    AddressTexts() = default;
    AddressTexts(const AddressTexts&) = delete;
    AddressTexts& operator=(const AddressTexts&) = delete;
    ~AddressTexts()
    {
        for (const AddressField& field : kAddressFieldNames)
            SysFreeString(record.*field.field);
    }
    _tagNAddress record = {};
};

bool PutAddressField(const std::string& name,
                     const std::wstring& text,
                     std::map<int, AddressTexts>& addresses)
{
    for (int kind = 0; kind < 3; ++kind)
        for (const AddressField& field : kAddressFieldNames)
            if (name == std::string(kKinds[kind]) + field.name)
            {
                addresses[kind].record.*field.field = Bstr(std::wstring_view(text)).Detach();
                return true;
            }
    return false;
}
} // namespace

TextLines LinesOf(const std::string& text)
{
    TextLines lines;
    std::istringstream input(text);
    for (std::string line; std::getline(input, line);)
        if (const std::size_t start = line.find_first_not_of(' '); start != std::string::npos)
            lines.push_back(line.substr(start));
    return lines;
}

std::string QuotedText(const std::wstring& text)
{
    std::string quoted = "\"";
    for (const wchar_t unit : text)
        if (unit >= 0x20 && unit < 0x7F && unit != L'"' && unit != L'\\')
            quoted += static_cast<char>(unit);
        else
            quoted += Format("\\x%04X", static_cast<unsigned>(unit));
    return quoted + "\"";
}

std::wstring UnquotedText(const std::string& text)
{
    if (text.size() < 2 || text.front() != '"' || text.back() != '"')
        throw std::invalid_argument("no quotation marks: " + text);
    std::wstring unquoted;
    for (std::size_t i = 1; i + 1 < text.size(); ++i)
    {
        if (text[i] != '\\')
        {
            unquoted += static_cast<wchar_t>(text[i]);
            continue;
        }
        unquoted += static_cast<wchar_t>(std::strtoul(text.substr(i + 2, 4).c_str(), nullptr, 16));
        i += 5;
    }
    return unquoted;
}

ComPtr<INContactItem> ContactOf(const TextLines& lines)
{
    const auto contact = CreateObject<INContactItem>(CLSID_NContactItem);
    if (!contact)
        throw std::runtime_error("no contact");
    std::vector<std::wstring> emails;
    std::vector<std::wstring> categories;
    std::map<int, AddressTexts> addresses;
    for (const std::string& line : lines)
    {
        const std::size_t blank = line.find(' ');
        const std::string name = line.substr(0, blank);
        const std::string value = blank == std::string::npos ? "" : line.substr(blank + 1);
        if (name == "Birthday")
        {
            contact->put_Birthday(std::atof(value.c_str()));
            continue;
        }
        if (name == "Anniversary")
        {
            contact->put_Anniversary(std::atof(value.c_str()));
            continue;
        }
        const std::wstring text = UnquotedText(value);
        bool isKnown = true;
        if (name == "Email")
            emails.push_back(text);
        else if (name == "Category")
            categories.push_back(text);
        else if (name.starts_with("Phone"))
            contact->put_PhoneNumber(static_cast<_tagNPhoneNumberType>(std::atoi(name.c_str() + 5)),
                                     Bstr(std::wstring_view(text)).Get());
        else
            isKnown = PutAddressField(name, text, addresses);
        for (const TextField& field : kFields)
            if (name == field.name)
            {
                (contact.Get()->*field.put)(Bstr(std::wstring_view(text)).Get());
                isKnown = true;
            }
        if (!isKnown)
            throw std::invalid_argument("no value: " + line);
    }
    if (!emails.empty())
        contact->put_Emails(ArrayOf(emails).Get());
    if (!categories.empty())
        contact->put_CategoryIDs(ArrayOf(categories).Get());
    for (const auto& [kind, address] : addresses)
        contact->put_Address(static_cast<_tagNAddressType>(kind), address.record);
    return contact;
}

TextLines TextOfContact(INContactItem* contact)
{
    TextLines lines;
    for (const TextField& field : kFields)
    {
        Bstr text;
        if (SUCCEEDED((contact->*field.get)(text.Put())) && text)
            lines.push_back(std::string(field.name) + " " + QuotedText(std::wstring(text.View())));
    }
    for (int type = 0; type < 13; ++type)
    {
        Bstr number;
        if (SUCCEEDED(
                contact->get_PhoneNumber(static_cast<_tagNPhoneNumberType>(type), number.Put())) &&
            number)
            lines.push_back("Phone" + std::to_string(type) + " " +
                            QuotedText(std::wstring(number.View())));
    }
    UniqueSafeArray emails;
    if (SUCCEEDED(contact->get_Emails(emails.Put())))
        for (const std::wstring& email : TextsOf(emails.Get()))
            lines.push_back("Email " + QuotedText(email));
    for (int kind = 0; kind < 3; ++kind)
    {
        AddressTexts address;
        if (FAILED(contact->get_Address(static_cast<_tagNAddressType>(kind), &address.record)))
            continue;
        for (const AddressField& field : kAddressFieldNames)
            if (const BSTR text = address.record.*field.field)
                lines.push_back(std::string(kKinds[kind]) + field.name + " " +
                                QuotedText(TextOf(text)));
    }
    DATE date = 0.0;
    if (contact->get_Birthday(&date); date != 0.0)
        lines.push_back(Format("Birthday %.15g", date));
    if (contact->get_Anniversary(&date); date != 0.0)
        lines.push_back(Format("Anniversary %.15g", date));
    UniqueSafeArray categories;
    if (SUCCEEDED(contact->get_CategoryIDs(categories.Put())))
        for (const std::wstring& category : TextsOf(categories.Get()))
            lines.push_back("Category " + QuotedText(category));
    return lines;
}

TextLines TextOfValues(ULONG count, const SPropValue* values)
{
    TextLines lines;
    for (ULONG i = 0; i < count; ++i)
    {
        const SPropValue& value = values[i];
        std::string line = Format("%08lX ", value.ulPropTag);
        switch (PROP_TYPE(value.ulPropTag))
        {
        case PT_UNICODE:
            line += QuotedText(value.Value.lpszW);
            break;
        case PT_LONG:
            line += std::to_string(value.Value.l);
            break;
        case PT_BOOLEAN:
            line += value.Value.b ? "true" : "false";
            break;
        case PT_SYSTIME:
            line += std::to_string(std::uint64_t{value.Value.ft.dwHighDateTime} << 32 |
                                   value.Value.ft.dwLowDateTime);
            break;
        case PT_BINARY:
            for (ULONG k = 0; k < value.Value.bin.cb; ++k)
                line += Format("%02X", static_cast<unsigned>(value.Value.bin.lpb[k]));
            break;
        case PT_MV_UNICODE:
            line += "[";
            for (ULONG k = 0; k < value.Value.MVszW.cValues; ++k)
                line += (k ? ", " : "") + QuotedText(value.Value.MVszW.lppszW[k]);
            line += "]";
            break;
        case PT_MV_LONG:
            line += "[";
            for (ULONG k = 0; k < value.Value.MVl.cValues; ++k)
                line += (k ? ", " : "") + std::to_string(value.Value.MVl.lpl[k]);
            line += "]";
            break;
        default:
            line += "?";
        }
        lines.push_back(line);
    }
    return lines;
}
