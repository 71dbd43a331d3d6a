#include "tests/localstore/SampleMessages.h"

#include "localstore/StoreLoad.h"
#include "localstore/StoreSchema.h"
#include "support/SharedData.h"
#include "tests/localstore/LocalStoreSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <map>
#include <sstream>
#include <string_view>

using nlohmann::json;

namespace
{
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
                                                             {"0x101F", "PT_MV_UNICODE"},
                                                             {"0x1102", "PT_MV_BINARY"}};
    const auto found = names.find(number);
    return found == names.end() ? nullptr : found->second;
}

// Whether each store makes that property of a message itself: whether it has attachments, its
// number among those of another message, the access to it, its times of creation and change.
bool IsMadeByStores(const std::string& tag)
{
    constexpr std::string_view kTags[] = {"0x0E1B", "0x0E21", "0x0FF7", "0x3007", "0x3008"};
    return std::find(std::begin(kTags), std::end(kTags), tag) != std::end(kTags);
}

// The property in the form of docs/formats/store_json.md; null for one that stays behind: of no
// type, without the name that it had, or made by the store itself.
json LoadableProperty(const json& line)
{
    const std::string tag = line["tag"];
    const std::string type = line["type"];
    if (!TypeName(type) || IsMadeByStores(tag))
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
    if (HexNumber(tag) >= 0x8000)
        return nullptr;
    property["tag"] = tag + type.substr(2);
    return property;
}

json LoadableMessage(const SampleMessage& message)
{
    json properties = json::array();
    for (const json& line : message.properties)
        if (json property = LoadableProperty(line); !property.is_null())
            properties.push_back(std::move(property));
    return {{"properties", std::move(properties)}};
}
} // namespace

SampleMessage ReadSampleMessage(const std::filesystem::path& path)
{
    SampleMessage message = {path.stem().string(), {}};
    std::istringstream lines(ReadSample(path));
    for (std::string line; std::getline(lines, line);)
        message.properties.push_back(json::parse(line));
    return message;
}

unsigned HexNumber(const std::string& text)
{
    return static_cast<unsigned>(std::strtoul(text.c_str(), nullptr, 16));
}

json SampleFolder(const char* role, const char* list, std::span<const SampleMessage> messages)
{
    json loadable = json::array();
    for (const SampleMessage& message : messages)
        loadable.push_back(LoadableMessage(message));
    std::string name = role;
    name[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(name[0])));
    return {{"name", name}, {"roles", json::array({role})}, {list, std::move(loadable)}};
}

std::size_t LoadFolders(const std::wstring& store, json folders)
{
    const json subtree = {
        {"name", "Top"}, {"roles", json::array({"subtree"})}, {"folders", std::move(folders)}};
    const json contents = {{"format", "PimStoreBridge store"},
                           {"version", 1},
                           {"root", {{"folders", json::array({subtree})}}}};
    const TempFolder scratch;
    const std::wstring path = scratch.File(L"samples.json");
    WriteWholeFile(path, contents.dump());
    JsonFile file;
    DWORD reason = 0;
    EXPECT_TRUE(file.Open(path, reason)) << reason;
    Database database = OpenStore(store);
    try
    {
        return LoadStore(database, file, LoadMode::Merge).messages;
    }
    catch (const JsonProblem& problem)
    {
        ADD_FAILURE() << problem.Line() << ": " << problem.Path() << ": " << problem.what();
        return 0;
    }
}
