#include "localstore/JsonReader.h"

#include <nlohmann/json.hpp>

#include <iterator>
#include <memory>
#include <set>

namespace
{

// No object of a store's form has nearly as many.
constexpr size_t kMostKeys = 64;

// The bytes of the text, with the number of the line that the last one stood in.
class TextBytes
{
  public:
    explicit TextBytes(JsonSource& source) : m_source(source), m_buffer(1 << 16) { Fill(); }

    bool AtEnd() const noexcept { return m_position == m_size; }
    char Current() const noexcept { return m_buffer[m_position]; }
    void Next()
    {
        m_afterBreak = m_buffer[m_position] == '\n';
        if (m_afterBreak)
            ++m_line;
        if (++m_position == m_size)
            Fill();
    }
    // A number is known to be at its end by the byte behind it, which may be a line's break.
    size_t Line() const noexcept { return m_afterBreak ? m_line - 1 : m_line; }

  private:
    void Fill()
    {
        size_t read = 0;
        if (!m_source.Read(m_buffer, read))
            throw JsonProblem(m_line, "", "the file cannot be read further");
        m_position = 0;
        m_size = read;
    }

    JsonSource& m_source;
    std::vector<char> m_buffer;
    size_t m_position = 0;
    size_t m_size = 0;
    size_t m_line = 1;
    bool m_afterBreak = false;
};

// The input iterator that the parser takes.
class ByteIterator
{
  public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = char;

    ByteIterator() = default;
    explicit ByteIterator(TextBytes& bytes) : m_bytes(&bytes) {}

    char operator*() const { return m_bytes->Current(); }
    ByteIterator& operator++()
    {
        m_bytes->Next();
        return *this;
    }
    ByteIterator operator++(int)
    {
        ByteIterator before = *this;
        ++*this;
        return before;
    }
    bool operator==(const ByteIterator& other) const { return IsEnd() == other.IsEnd(); }
    bool operator!=(const ByteIterator& other) const { return !(*this == other); }

  private:
    bool IsEnd() const { return !m_bytes || m_bytes->AtEnd(); }

    TextBytes* m_bytes = nullptr;
};

// Takes the parser's events: builds what the listener holds, and goes through what it enters.
class Handler : public nlohmann::json_sax<nlohmann::json>
{
  public:
    Handler(TextBytes& bytes, JsonListener& listener) : m_bytes(bytes), m_listener(listener) {}

    bool null() override { return Plain(nullptr); }
    bool boolean(bool value) override { return Plain(value); }
    bool number_integer(number_integer_t value) override
    {
        return Plain(static_cast<std::int64_t>(value));
    }
    bool number_unsigned(number_unsigned_t value) override
    {
        if (value > INT64_MAX)
            return Plain(static_cast<std::uint64_t>(value));
        return Plain(static_cast<std::int64_t>(value));
    }
    bool number_float(number_float_t value, const string_t&) override { return Plain(value); }
    bool string(string_t& value) override { return Plain(std::move(value)); }
    bool binary(binary_t&) override { return false; } // comes from other formats only
    bool start_object(std::size_t) override { return Start(JsonListener::Kind::Object); }
    bool start_array(std::size_t) override { return Start(JsonListener::Kind::Array); }
    bool end_object() override { return Finish(); }
    bool end_array() override { return Finish(); }

    bool key(string_t& value) override
    {
        if (!m_open.empty())
        {
            auto& object = std::get<JsonNode::Object>(m_open.back()->value);
            // Each new key is compared with all before it.
            if (object.size() == kMostKeys)
                throw JsonProblem(m_bytes.Line(), Path(), "an object here has too many keys");
            for (const auto& [name, node] : object)
            {
                if (name == value)
                    FailTwice(value);
            }
            object.emplace_back(std::move(value), JsonNode{});
            return true;
        }
        Level& level = m_levels.back();
        if (!level.keys.insert(value).second)
            FailTwice(value);
        level.key = std::move(value);
        return true;
    }

    bool parse_error(std::size_t,
                     const std::string&,
                     const nlohmann::json::exception& error) override
    {
        // The library's own text names itself in brackets, and line and column before a colon.
        std::string text = error.what();
        size_t start = text.find("column ");
        start = start == std::string::npos ? start : text.find(": ", start);
        if (start != std::string::npos)
            text = text.substr(start + 2);
        throw JsonProblem(m_bytes.Line(), Path(), text);
    }

  private:
    // An object or array that was entered.
    struct Level
    {
        bool isArray;
        size_t next = 0; // of an array: the number of its next value
        std::string key; // of an object: that of its next value
        std::set<std::string> keys;
    };

    // The way to the value that comes, or to the one that is being built.
    std::string Path() const
    {
        std::string path;
        for (const Level& level : m_levels)
            path = JsonPathBelow(path, level.isArray ? std::to_string(level.next) : level.key);
        return path;
    }

    [[noreturn]] void FailTwice(const std::string& name) const
    {
        throw JsonProblem(m_bytes.Line(), Path(), "the key \"" + name + "\" stands twice");
    }

    void CheckDepth() const
    {
        if (m_levels.size() + m_open.size() >= kDeepestJson)
            throw JsonProblem(m_bytes.Line(),
                              Path().substr(0, 200),
                              "values are nested more than " + std::to_string(kDeepestJson) +
                                  " deep");
    }

    std::string_view Key() const
    {
        if (m_levels.empty() || m_levels.back().isArray)
            return {};
        return m_levels.back().key;
    }

    // The place for a value in the container that is being built.
    JsonNode& Slot()
    {
        JsonNode& container = *m_open.back();
        if (auto* array = std::get_if<JsonNode::Array>(&container.value))
            return array->emplace_back();
        return std::get<JsonNode::Object>(container.value).back().second;
    }

    template <typename T> bool Plain(T&& value)
    {
        if (!m_open.empty())
        {
            JsonNode& node = Slot();
            node.line = m_bytes.Line();
            node.value = std::forward<T>(value);
            return true;
        }
        JsonNode node;
        node.line = m_bytes.Line();
        node.value = std::forward<T>(value);
        if (m_listener.Begin(Path(), Key(), JsonListener::Kind::Plain, node.line) ==
            JsonStep::Enter)
            throw JsonProblem(node.line, Path(), "an object or an array is needed here");
        m_listener.Take(Path(), Key(), std::move(node));
        Advance();
        return true;
    }

    bool Start(JsonListener::Kind kind)
    {
        CheckDepth();
        const size_t line = m_bytes.Line();
        if (m_open.empty() && m_listener.Begin(Path(), Key(), kind, line) == JsonStep::Enter)
        {
            m_levels.push_back({kind == JsonListener::Kind::Array, 0, {}, {}});
            return true;
        }
        JsonNode* node = &m_root;
        if (m_open.empty())
            m_root = JsonNode();
        else
            node = &Slot();
        node->line = line;
        if (kind == JsonListener::Kind::Array)
            node->value = JsonNode::Array();
        else
            node->value = JsonNode::Object();
        m_open.push_back(node);
        return true;
    }

    bool Finish()
    {
        if (m_open.empty())
        {
            m_levels.pop_back();
            m_listener.End();
            Advance();
            return true;
        }
        m_open.pop_back();
        if (m_open.empty())
        {
            m_listener.Take(Path(), Key(), std::move(m_root));
            Advance();
        }
        return true;
    }

    void Advance()
    {
        if (!m_levels.empty() && m_levels.back().isArray)
            ++m_levels.back().next;
    }

    TextBytes& m_bytes;
    JsonListener& m_listener;
    std::vector<Level> m_levels;
    JsonNode m_root;
    // The containers of m_root that are not finished. Each is the last value of the one before, so
    // none moves while it is open.
    std::vector<JsonNode*> m_open;
};

} // namespace

void ReadJson(JsonSource& source, JsonListener& listener)
{
    TextBytes bytes(source);
    Handler handler(bytes, listener);
    nlohmann::json::sax_parse(ByteIterator(bytes), ByteIterator(), &handler);
}
