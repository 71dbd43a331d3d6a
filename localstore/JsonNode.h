// Values of a JSON text with the place where each stands, and the failure that names a place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

// What is wrong in a JSON text, and where.
class JsonProblem : public std::runtime_error
{
  public:
    JsonProblem(size_t line, std::string path, const std::string& text)
        : std::runtime_error(text), m_line(line), m_path(std::move(path))
    {
    }
    size_t Line() const noexcept { return m_line; }
    // As "folders/0/name", from the outermost value inwards; empty for that value itself.
    const std::string& Path() const noexcept { return m_path; }

  private:
    size_t m_line;
    std::string m_path;
};

struct JsonNode
{
    using Array = std::vector<JsonNode>;
    using Object = std::vector<std::pair<std::string, JsonNode>>;

    size_t line = 0;
    // Text is UTF-8. Integers that fit are std::int64_t, larger ones std::uint64_t.
    std::variant<std::nullptr_t,
                 bool,
                 std::int64_t,
                 std::uint64_t,
                 double,
                 std::string,
                 Array,
                 Object>
        value = nullptr;
};

// The way to a value one step below that one: a key, or an index in an array.
std::string JsonPathBelow(const std::string& path, std::string_view step);

// A node with the way to it, for messages. Must not outlive what it was made from.
class JsonPlace
{
  public:
    JsonPlace(const JsonNode& node, std::string_view path) : m_node(node), m_key(path) {}

    const JsonNode& Node() const noexcept { return m_node; }
    // The element of an array; the index must be within.
    JsonPlace At(size_t index) const;
    // The value of that key; null where there is none.
    const JsonNode* Find(std::string_view key) const;
    JsonPlace At(std::string_view key) const; // of a key that Find finds

    // The value in the type that it must have; the failure names what was wanted.
    const std::string& Text() const;
    std::int64_t Integer(std::int64_t least, std::int64_t most) const;
    const JsonNode::Array& Array() const;
    const JsonNode::Object& Object() const;
    // An object that has no other keys than these.
    void ExpectKeys(std::initializer_list<std::string_view> keys) const;

    // Throws JsonProblem about this place, which Path names.
    [[noreturn]] void Fail(const std::string& text) const;
    std::string Path() const;

  private:
    JsonPlace(const JsonNode& node, std::string_view key, const JsonPlace* parent, size_t index)
        : m_node(node), m_key(key), m_parent(parent), m_index(index)
    {
    }

    const JsonNode& m_node;
    std::string_view m_key;
    const JsonPlace* m_parent = nullptr;
    size_t m_index = kNoIndex;

    static constexpr size_t kNoIndex = static_cast<size_t>(-1);
};
