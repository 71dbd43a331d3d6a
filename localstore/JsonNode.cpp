#include "localstore/JsonNode.h"

#include <algorithm>

std::string JsonPathBelow(const std::string& path, std::string_view step)
{
    return path.empty() ? std::string(step) : path + "/" + std::string(step);
}

JsonPlace JsonPlace::At(size_t index) const
{
    return JsonPlace(Array()[index], {}, this, index);
}

const JsonNode* JsonPlace::Find(std::string_view key) const
{
    for (const auto& [name, node] : Object())
    {
        if (name == key)
            return &node;
    }
    return nullptr;
}

JsonPlace JsonPlace::At(std::string_view key) const
{
    return JsonPlace(*Find(key), key, this, kNoIndex);
}

const std::string& JsonPlace::Text() const
{
    if (const auto* text = std::get_if<std::string>(&m_node.value))
        return *text;
    Fail("a text is needed here");
}

std::int64_t JsonPlace::Integer(std::int64_t least, std::int64_t most) const
{
    const auto* number = std::get_if<std::int64_t>(&m_node.value);
    if (number && *number >= least && *number <= most)
        return *number;
    Fail("a whole number from " + std::to_string(least) + " to " + std::to_string(most) +
         " is needed here");
}

const JsonNode::Array& JsonPlace::Array() const
{
    if (const auto* array = std::get_if<JsonNode::Array>(&m_node.value))
        return *array;
    Fail("an array is needed here");
}

const JsonNode::Object& JsonPlace::Object() const
{
    if (const auto* object = std::get_if<JsonNode::Object>(&m_node.value))
        return *object;
    Fail("an object is needed here");
}

void JsonPlace::ExpectKeys(std::initializer_list<std::string_view> keys) const
{
    for (const auto& [name, node] : Object())
    {
        if (std::find(keys.begin(), keys.end(), name) == keys.end())
            throw JsonProblem(node.line, JsonPathBelow(Path(), name), "there is no such key here");
    }
}

void JsonPlace::Fail(const std::string& text) const
{
    throw JsonProblem(m_node.line, Path(), text);
}

std::string JsonPlace::Path() const
{
    if (!m_parent)
        return std::string(m_key);
    return JsonPathBelow(m_parent->Path(),
                         m_index == kNoIndex ? std::string(m_key) : std::to_string(m_index));
}
