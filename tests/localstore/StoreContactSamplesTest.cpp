// Contact messages of real mail clients, loaded into the embedded store and read by the server.
// What is to come out stands in tests/data/contacts, see there.
#include "service/TextConversions.h"
#include "support/SharedData.h"
#include "support/TestZone.h"
#include "tests/localstore/SampleMessages.h"
#include "tests/localstore/StoreContactFixture.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <sstream>

using nlohmann::json;

namespace
{
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
const json& ValueOf(const SampleMessage& message, unsigned number, bool isNamed)
{
    for (const json& line : message.properties)
        if (isNamed ? line.value("set", "") == "PSETID_Address" &&
                          HexNumber(line.value("id", "0")) == number
                    : !line.contains("set") && HexNumber(line["tag"]) == number)
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
std::string ExpectedLine(const SampleMessage& message, const std::string& line)
{
    const std::size_t blank = line.find(' ');
    const std::string field = line.substr(0, blank + 1);
    const std::string source = line.substr(blank + 1);
    if (source.starts_with('"'))
        return field + source;
    if (source.starts_with("local "))
        return field + DateText(std::atof(source.c_str() + 6));
    if (source.starts_with("utc "))
        return field + DateText(std::atof(source.c_str() + 4) - TestZoneBiasDays());
    if (source.starts_with("keyword "))
    {
        for (const json& property : message.properties)
            if (property.value("name", "") == "Keywords")
                return field + Quoted(property["value"][std::atoi(source.c_str() + 8)]);
        throw std::runtime_error(message.name + " has no keywords");
    }
    const bool isNamed = source.starts_with('n');
    return field + Quoted(ValueOf(message, HexNumber(source.substr(isNamed)), isNamed));
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

using StoreContactSamplesTest = StoreContactTest;
} // namespace

TEST_F(StoreContactSamplesTest, MessagesOfMailClientsAreReadWhole)
{
    std::vector<SampleMessage> messages = {
        ReadSampleMessage(TestData() / "contacts" / "own.jsonl")};
    for (const auto& path : SharedSamples("msg/contacts", ".jsonl"))
        messages.push_back(ReadSampleMessage(path));
    EXPECT_EQ(messages.size(),
              LoadFolders(m_path, json::array({SampleFolder("contacts", "messages", messages)})));
    OpenTable();
    const std::map<std::string, TextLines> expected = ReadExpected();
    for (const SampleMessage& message : messages)
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
