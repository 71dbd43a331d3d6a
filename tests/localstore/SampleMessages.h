// Real messages as they lie beside the project, each a list of its properties, and how they come
// into a store.
#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>
#include <span>
#include <string>
#include <vector>

struct SampleMessage
{
    std::string name; // of the file
    // One a property: tag, type, for named ones the set with its number or name, value.
    std::vector<nlohmann::json> properties;
};

SampleMessage ReadSampleMessage(const std::filesystem::path& path);

// The number of a tag, a type or a name: "0x8053".
unsigned HexNumber(const std::string& text);

// The folder with that role, as docs/formats/store_json.md has it, with the messages in it.
//   list: "messages" or "associated".
nlohmann::json SampleFolder(const char* role,
                            const char* list,
                            std::span<const SampleMessage> messages);

// Loads folders below the subtree into the store at that path, as pimstore does it. Problems are
// test failures.
// Returns: the number of messages.
std::size_t LoadFolders(const std::wstring& store, nlohmann::json folders);
