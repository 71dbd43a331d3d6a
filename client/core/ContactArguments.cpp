#include "client/core/ContactArguments.h"

#include "client/core/Arguments.h"
#include "client/core/Unicode.h"

#include <CLI/CLI.hpp>

namespace pim
{
namespace
{
std::string OptionName(const wchar_t* option)
{
    return "--" + Utf8FromWide(option);
}

// Both sides of the first equals sign.
struct Assignment
{
    std::wstring name;
    std::wstring value;
};

Assignment ReadAssignment(const std::string& text, const char* problem)
{
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos)
        throw UsageProblem{std::string(problem) + ", not \"" + text + "\"."};
    return {WideFromUtf8(text.substr(0, sign)), WideFromUtf8(text.substr(sign + 1))};
}

std::size_t ReadType(std::span<const ContactType> types,
                     const std::wstring& name,
                     const char* option)
{
    const ContactType* const type = FindContactType(types, name);
    if (!type)
        throw UsageProblem{std::string(option) + " knows " + Utf8FromWide(ContactTypeNames(types)) +
                           ", not \"" + Utf8FromWide(name) + "\"."};
    return std::size_t(type - types.data());
}

void ReadPhone(const std::string& text, Contact& wish)
{
    const Assignment typed =
        ReadAssignment(text, "--phone takes a type and a number as mobile=+47 555 01 234");
    wish.phones[ReadType(kPhoneTypes, typed.name, "--phone")] = typed.value;
}

void ReadAddress(const std::string& text, Contact& wish)
{
    constexpr const char* kForm = "--address takes a part of an address as home.city=Oslo";
    const Assignment typed = ReadAssignment(text, kForm);
    const std::size_t dot = typed.name.find(L'.');
    if (dot == std::wstring::npos)
        throw UsageProblem{std::string(kForm) + ", not \"" + text + "\"."};
    const std::size_t type = ReadType(kAddressTypes, typed.name.substr(0, dot), "--address");
    const AddressPart* const part = FindAddressPart(typed.name.substr(dot + 1));
    if (!part)
        throw UsageProblem{"--address knows the parts " + Utf8FromWide(AddressPartNames()) +
                           ", not \"" + Utf8FromWide(typed.name.substr(dot + 1)) + "\"."};
    if (!wish.addresses[type])
        wish.addresses[type].emplace();
    (*wish.addresses[type]).*part->value = typed.value;
}

DATE ReadContactDay(const std::string& text, const char* option)
{
    return EqualsIgnoringCase(text, "none") ? kNoDay : DateFromCivil(ReadDay(text, option));
}

// An empty entry clears the list or stands for nothing beside others.
std::vector<std::wstring> ReadList(const std::vector<std::string>& texts, const char* option)
{
    std::vector<std::wstring> entries;
    for (const std::string& text : texts)
    {
        if (!text.empty())
            entries.push_back(ReadLine(text, option));
    }
    return entries;
}

// Notes alone may have several lines.
std::wstring ReadText(const ContactText& field, const std::string& text)
{
    return field.value == &Contact::notes ? WideFromUtf8(text)
                                          : ReadLine(text, OptionName(field.option).c_str());
}

CLI::Option* AddRepeated(CLI::App& command,
                         const std::string& name,
                         std::vector<std::string>& texts,
                         const std::string& about)
{
    // Each takes one value, so that an ID behind it stays an ID.
    return command.add_option(name, texts, about)->allow_extra_args(false);
}
} // namespace

void ContactArguments::AddTo(CLI::App& command)
{
    for (std::size_t i = 0; i < kContactTextCount; ++i)
        command
            .add_option(OptionName(kContactTexts[i].option),
                        m_texts[i],
                        Utf8FromWide(kContactTexts[i].title))
            ->type_name("TEXT");
    for (std::size_t i = 0; i < kContactListCount; ++i)
        AddRepeated(command,
                    OptionName(kContactLists[i].option),
                    m_lists[i],
                    Utf8FromWide(kContactLists[i].title) + "; once for each of them")
            ->type_name("TEXT");
    for (std::size_t i = 0; i < kContactDayCount; ++i)
        command
            .add_option(OptionName(kContactDays[i].option),
                        m_days[i],
                        Utf8FromWide(kContactDays[i].title) + ": 1984-06-12, or none")
            ->type_name("DAY|none");
    AddRepeated(command,
                "--phone",
                m_phones,
                "A number by its type: " + Utf8FromWide(ContactTypeNames(kPhoneTypes)))
        ->type_name("TYPE=NUMBER");
    AddRepeated(command,
                "--address",
                m_addresses,
                "A part of an address: " + Utf8FromWide(ContactTypeNames(kAddressTypes)) +
                    "; with " + Utf8FromWide(AddressPartNames()))
        ->type_name("TYPE.PART=TEXT");
    command.add_option("--picture", m_picture, "A picture to store with it, or none")
        ->type_name("FILE|none");
    CLI::Option* const file =
        command.add_option("--from", m_file, "What --json printed, in place of other options")
            ->type_name("FILE");
    for (CLI::Option* const option : command.get_options())
    {
        if (option != file && option != command.get_help_ptr() && !option->get_positional())
            file->excludes(option);
    }
}

ContactOptions ContactArguments::Read(const CLI::App& command) const
{
    const auto given = [&](const std::string& name) { return command.count(name) > 0; };
    ContactOptions options;
    bool any = false;
    const auto readAll = [&](const auto& fields, const auto& texts, auto read) {
        for (std::size_t i = 0; i < fields.size(); ++i)
        {
            if (!given(OptionName(fields[i].option)))
                continue;
            options.wish.*fields[i].value = read(fields[i], texts[i]);
            any = true;
        }
    };
    readAll(kContactTexts, m_texts, ReadText);
    readAll(kContactDays, m_days, [](const ContactDay& field, const std::string& text) {
        return ReadContactDay(text, OptionName(field.option).c_str());
    });
    readAll(kContactLists, m_lists, [](const ContactList& field, const auto& texts) {
        return ReadList(texts, OptionName(field.option).c_str());
    });
    for (const std::string& text : m_phones)
        ReadPhone(text, options.wish);
    for (const std::string& text : m_addresses)
        ReadAddress(text, options.wish);
    if (given("--picture"))
        options.wish.picture =
            EqualsIgnoringCase(m_picture, "none") ? L"" : ReadLine(m_picture, "--picture");
    if (given("--from"))
        options.file = ReadLine(m_file, "--from");
    any = any || given("--phone") || given("--address") || given("--picture") || options.file;
    if (!any)
        throw UsageProblem{"Say what the contact has, as in --first-name Oda, or give a file of "
                           "contacts with --from."};
    return options;
}
} // namespace pim
