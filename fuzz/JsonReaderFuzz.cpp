// A JSON text is read to the same values however its bytes arrive, whether they are held whole or
// gone into; whatever is read is JSON by another parser too, with the same values. A refusal names
// a line of the text.
#include "Require.h"

#include "localstore/JsonReader.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string_view>

namespace
{
using Json = nlohmann::ordered_json;

class TextSource final : public JsonSource
{
  public:
    TextSource(std::string_view text, std::size_t step) : m_rest(text), m_step(step) {}

    bool Read(std::span<char> room, std::size_t& count) override
    {
        count = std::min({room.size(), m_rest.size(), m_step});
        m_rest.copy(room.data(), count);
        m_rest.remove_prefix(count);
        return true;
    }

  private:
    std::string_view m_rest;
    std::size_t m_step;
};

Json JsonOf(const JsonNode& node)
{
    return std::visit(
        [](const auto& value) -> Json {
            using Value = std::decay_t<decltype(value)>;
            if constexpr (std::is_same_v<Value, JsonNode::Array>)
            {
                Json json = Json::array();
                for (const JsonNode& element : value)
                    json.push_back(JsonOf(element));
                return json;
            }
            else if constexpr (std::is_same_v<Value, JsonNode::Object>)
            {
                Json json = Json::object();
                for (const auto& [key, member] : value)
                    json[key] = JsonOf(member);
                return json;
            }
            else
            {
                return value;
            }
        },
        node.value);
}

// Builds the text's value: goes into objects and arrays down to a depth, holds what lies below.
class Builder final : public JsonListener
{
  public:
    explicit Builder(std::size_t depth) : m_depth(depth) {}

    JsonStep Begin(const std::string&, std::string_view key, Kind kind, size_t) override
    {
        if (kind == Kind::Plain || m_open.size() >= m_depth)
            return JsonStep::Hold;
        m_open.push_back(&Put(key, kind == Kind::Array ? Json::array() : Json::object()));
        return JsonStep::Enter;
    }
    void Take(const std::string&, std::string_view key, JsonNode&& node) override
    {
        Put(key, JsonOf(node));
    }
    void End() override { m_open.pop_back(); }

    const Json& Value() const { return m_value; }

  private:
    Json& Put(std::string_view key, Json value)
    {
        if (m_open.empty())
            return m_value = std::move(value);
        Json& parent = *m_open.back();
        if (parent.is_array())
            return parent.emplace_back(std::move(value));
        return parent[std::string(key)] = std::move(value);
    }

    std::size_t m_depth;
    Json m_value;
    // Each is the last value of the one before, so that none moves while it is open.
    std::vector<Json*> m_open;
};

std::optional<Json> Read(std::string_view text, std::size_t step, std::size_t depth)
{
    TextSource source(text, step);
    Builder builder(depth);
    try
    {
        ReadJson(source, builder);
    }
    catch (const JsonProblem& problem)
    {
        const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
        Require(problem.Line() >= 1 && problem.Line() <= lines);
        return std::nullopt;
    }
    return builder.Value();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::optional<Json> held = Read(text, text.size(), 0);
    if (held)
        Require(*held == Json::parse(text));
    Require(Read(text, 1, 0) == held);
    // Those that are gone into may have more keys than those that are held.
    const std::optional<Json> entered = Read(text, 7, 3);
    Require(entered || !held);
    if (held)
        Require(*entered == *held);
    else if (entered)
        Require(*entered == Json::parse(text));
    return 0;
}
