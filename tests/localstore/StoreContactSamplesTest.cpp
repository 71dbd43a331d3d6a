// Contact messages of real mail clients, loaded into the embedded store and read by the server.
// What is to come out stands in tests/data/contacts, see there.
#include "outlook/contacts/ContactValues.h"
#include "localstore/StoreLoad.h"
#include "localstore/StoreSchema.h"
#include "service/TextConversions.h"
#include "support/SharedData.h"
#include "tests/localstore/StoreContactFixture.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>

using nlohmann::json;

namespace
{
struct Message
{
    std::string name;
    std::vector<json> properties;
};

Message ReadMessage(const std::filesystem::path& path)
{
    Message message = {path.stem().string(), {}};
    std::istringstream lines(ReadSample(path));
    for (std::string line; std::getline(lines, line);)
        message.properties.push_back(json::parse(line));
    return message;
}

unsigned NumberOf(const std::string& hex)
{
    return static_cast<unsigned>(std::strtoul(hex.c_str(), nullptr, 16));
}

// --- Loading -------------------------------------------------------------------------------------

const char* TypeName(const std::string& number)
{
    static const std::map<std::string, const char*> names = {{"0x0002", "PT_I2"},
                                                             {"0x0003", "PT_LONG"},
                                                             {"0x0005", "PT_DOUBLE"},
                                                             {"0x000B", "PT_BOOLEAN"},
                                                             {"0x0014", "PT_I8"},
                                                             {"0x001E", "PT_STRING8"},
                                                             {"0x001F", "PT_UNICODE"},
                                                             {"0x0040", "PT_SYSTIME"},
                                                             {"0x0102", "PT_BINARY"},
                                                             {"0x1003", "PT_MV_LONG"},
                                                             {"0x101F", "PT_MV_UNICODE"}};
    const auto found = names.find(number);
    return found == names.end() ? nullptr : found->second;
}

// The property in the form of docs/formats/store_json.md; null for one that stays behind: of no
// type, without the name that it had, or made by every store itself.
json LoadableProperty(const json& line)
{
    const std::string tag = line["tag"];
    const std::string type = line["type"];
    if (!TypeName(type) || tag == "0x3007" || tag == "0x3008" || tag == "0x0E21")
        return nullptr;
    json property = {{"value", line["value"]}};
    if (line.contains("set"))
    {
        std::string set = line["guid"];
        for (char& digit : set)
            digit = static_cast<char>(std::toupper(static_cast<unsigned char>(digit)));
        property["set"] = "{" + set + "}";
        property["type"] = TypeName(type);
        property[line.contains("id") ? "id" : "name"] = line[line.contains("id") ? "id" : "name"];
        return property;
    }
    if (NumberOf(tag) >= 0x8000)
        return nullptr;
    property["tag"] = tag + type.substr(2);
    return property;
}

json LoadableMessage(const Message& message)
{
    json properties = json::array();
    for (const json& line : message.properties)
        if (json property = LoadableProperty(line); !property.is_null())
            properties.push_back(std::move(property));
    return {{"properties", std::move(properties)}};
}

// --- What is to come out -------------------------------------------------------------------------

// By the names of the messages, lines of field and source.
std::map<std::string, TextLines> ReadExpected()
{
    std::map<std::string, TextLines> expected;
    std::istringstream lines(ReadSample(TestData() / "contacts" / "expected.txt"));
    std::string name;
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("== "))
            name = line.substr(3);
        else if (!line.empty())
            expected[name].push_back(line);
    return expected;
}

std::string Quoted(const json& text)
{
    return QuotedText(WideFromUtf8(text.get<std::string>()));
}

// The value of the property with that number, of a fixed one or of an address name.
const json& ValueOf(const Message& message, unsigned number, bool isNamed)
{
    for (const json& line : message.properties)
        if (isNamed ? line.value("set", "") == "PSETID_Address" &&
                          NumberOf(line.value("id", "0")) == number
                    : !line.contains("set") && NumberOf(line["tag"]) == number)
            return line["value"];
    throw std::runtime_error(message.name + " has no such property");
}

std::string DateText(double days)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.12g", days);
    return text;
}

// One line of TextOfContact.
std::string ExpectedLine(const Message& message, const std::string& line)
{
    const std::size_t blank = line.find(' ');
    const std::string field = line.substr(0, blank + 1);
    const std::string source = line.substr(blank + 1);
    if (source.starts_with('"'))
        return field + source;
    if (source.starts_with("local "))
        return field + DateText(std::atof(source.c_str() + 6));
    if (source.starts_with("utc "))
        return field + DateText(std::atof(source.c_str() + 4) - ZoneBiasDays());
    if (source.starts_with("keyword "))
    {
        for (const json& property : message.properties)
            if (property.value("name", "") == "Keywords")
                return field + Quoted(property["value"][std::atoi(source.c_str() + 8)]);
        throw std::runtime_error(message.name + " has no keywords");
    }
    const bool isNamed = source.starts_with('n');
    return field + Quoted(ValueOf(message, NumberOf(source.substr(isNamed)), isNamed));
}

// Dates with as many digits as those of the expected lines.
TextLines WithShortDates(TextLines lines)
{
    for (std::string& line : lines)
        for (const char* const field : {"Birthday ", "Anniversary "})
            if (line.starts_with(field))
                line = field + DateText(std::atof(line.c_str() + std::strlen(field)));
    return lines;
}

class StoreContactSamplesTest : public StoreContactTest
{
  protected:
    void Load(const std::vector<Message>& messages)
    {
        json loadable = json::array();
        for (const Message& message : messages)
            loadable.push_back(LoadableMessage(message));
        const json contacts = {
            {"name", "Contacts"}, {"roles", {"contacts"}}, {"messages", std::move(loadable)}};
        const json subtree = {{"name", "Top"}, {"roles", {"subtree"}}, {"folders", {contacts}}};
        const json store = {
            {"format", "PimStoreBridge store"}, {"version", 1}, {"root", {{"folders", {subtree}}}}};
        const std::wstring path = m_folder.File(L"samples.json");
        WriteWholeFile(path, store.dump());
        JsonFile file;
        DWORD reason = 0;
        ASSERT_TRUE(file.Open(path, reason)) << reason;
        Database database = OpenStore(m_path);
        try
        {
            EXPECT_EQ(messages.size(), LoadStore(database, file, LoadMode::Merge).messages);
        }
        catch (const JsonProblem& problem)
        {
            FAIL() << problem.Line() << ": " << problem.Path() << ": " << problem.what();
        }
    }
};
} // namespace

TEST_F(StoreContactSamplesTest, MessagesOfMailClientsAreReadWhole)
{
    std::vector<Message> messages = {ReadMessage(TestData() / "contacts" / "own.jsonl")};
    for (const auto& path : SharedSamples("msg/contacts", ".jsonl"))
        messages.push_back(ReadMessage(path));
    Load(messages);
    OpenTable();
    const std::map<std::string, TextLines> expected = ReadExpected();
    for (const Message& message : messages)
    {
        SCOPED_TRACE(message.name);
        const auto contact = Next();
        ASSERT_TRUE(contact);
        ASSERT_TRUE(expected.contains(message.name));
        TextLines lines;
        for (const std::string& line : expected.at(message.name))
            lines.push_back(ExpectedLine(message, line));
        EXPECT_EQ(lines, WithShortDates(TextOfContact(contact.Get())));
    }
    EXPECT_FALSE(Next());
}
