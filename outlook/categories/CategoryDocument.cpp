#include "outlook/categories/CategoryDocument.h"

#include "outlook/categories/CategoryTime.h"
#include "service/StringHelpers.h"
#include "service/TextConversions.h"
#include "service/XmlScan.h"

#include <tinyxml.h>

#include <algorithm>
#include <utility>

namespace
{
constexpr char kNever[] = "1601-01-01T00:00:00.000";
constexpr std::string_view kIndent = "    ";
constexpr std::string_view kLineBreak = "\n";
constexpr std::string_view kEmptyElementEnd = " />\n";

constexpr char kElement[] = "category";
constexpr char kName[] = "name";
constexpr char kColor[] = "color";
constexpr char kLastUsed[] = "lastTimeUsed";
constexpr char kGuid[] = "guid";

struct Attribute
{
    const char* name;
    const char* value;
};

constexpr Attribute kRootAttributes[] = {
    {"default", ""},
    {"lastSavedSession", "0"},
    {"lastSavedTime", kNever},
    {"xmlns", "CategoryList.xsd"},
};

// How an attribute becomes part of a category.
struct AttributeReader
{
    std::string_view name;
    void (*read)(const std::wstring& value, Category& category);
};

constexpr AttributeReader kReaders[] = {
    {kName, [](const std::wstring& value, Category& category) { category.name = value; }},
    {kColor,
     [](const std::wstring& value, Category& category) { category.color = ParseInt(value); }},
    {kGuid, [](const std::wstring& value, Category& category) { category.id = value; }},
    {kLastUsed,
     [](const std::wstring& value, Category& category) {
         category.utcLastUsed = ParseCategoryTime(value);
     }},
};

Category ReadCategory(const TiXmlElement& element)
{
    Category category;
    for (const TiXmlAttribute* attribute = element.FirstAttribute(); attribute;
         attribute = attribute->Next())
        for (const AttributeReader& reader : kReaders)
            if (reader.name == attribute->Name())
                reader.read(WideFromUtf8(attribute->Value()), category);
    return category;
}

// Prints nodes as they stand below a root, between others.
class NodePrinter
{
  public:
    NodePrinter() : m_root("root")
    {
        m_printer.SetIndent(kIndent.data());
        m_printer.SetLineBreak(kLineBreak.data());
        m_printer.VisitEnter(m_root, nullptr); // one level of indent
    }

    std::string Print(const TiXmlNode& node)
    {
        const std::size_t begin = m_printer.Size();
        node.Accept(&m_printer);
        return m_printer.Str().substr(begin);
    }

  private:
    TiXmlElement m_root;
    TiXmlPrinter m_printer;
};
} // namespace

struct CategoryDocument::Node
{
    std::string lines;                // as they are printed between other nodes
    std::optional<Category> category; // of an element
    bool isText = false;              // and no CDATA
};

CategoryDocument::CategoryDocument()
{
    TiXmlDocument document;
    document.LinkEndChild(new TiXmlDeclaration("1.0", "", ""));
    auto root = std::make_unique<TiXmlElement>("categories");
    for (const Attribute& attribute : kRootAttributes)
        root->SetAttribute(attribute.name, attribute.value);
    document.LinkEndChild(root.release());
    *this = CategoryDocument(document);
}

CategoryDocument::CategoryDocument(TiXmlDocument& document)
{
    TiXmlElement& root = *document.RootElement();
    m_rootName = root.ValueStr();
    NodePrinter nodes;
    for (const TiXmlNode* node = root.FirstChild(); node; node = node->NextSibling())
    {
        const TiXmlElement* const element = node->ToElement();
        const TiXmlText* const text = node->ToText();
        m_nodes.push_back(std::make_shared<const Node>(
            Node{nodes.Print(*node),
                 element ? std::optional(ReadCategory(*element)) : std::nullopt,
                 text && !text->CDATA()}));
    }

    root.Clear();
    TiXmlPrinter printer;
    printer.SetLineBreak(kLineBreak.data());
    for (const TiXmlNode* node = document.FirstChild(); node; node = node->NextSibling())
    {
        node->Accept(&printer);
        if (node == &root)
            m_before = printer.Str();
    }
    m_behind = printer.Str().substr(m_before.size());
    m_before.resize(m_before.size() - kEmptyElementEnd.size());
}

std::optional<CategoryDocument> CategoryDocument::Parse(std::string_view utf8)
{
    if (ScanXml(utf8) != XmlScanResult::Ok)
        return std::nullopt;
    TiXmlDocument document;
    document.Parse(std::string(utf8).c_str(), nullptr, TIXML_ENCODING_UTF8);
    if (document.Error() || !document.RootElement())
        return std::nullopt;
    return CategoryDocument(document);
}

std::shared_ptr<const CategoryDocument::Node> CategoryDocument::NodeOf(const TiXmlElement& element)
{
    return std::make_shared<const Node>(Node{NodePrinter().Print(element), ReadCategory(element)});
}

std::vector<Category> CategoryDocument::Categories() const
{
    std::vector<Category> categories;
    for (const auto& node : m_nodes)
        if (node->category)
            categories.push_back(*node->category);
    return categories;
}

void CategoryDocument::Add(std::wstring_view name,
                           std::int32_t color,
                           std::wstring_view id,
                           DATE utcLastUsed)
{
    const std::string nameText = Utf8FromWide(name);
    const std::string colorText = std::to_string(color);
    const std::string lastUsedText = FormatCategoryTime(utcLastUsed);
    const std::string idText = Utf8FromWide(id);
    const Attribute attributes[] = {
        {"xmlns", ""},
        {kName, nameText.c_str()},
        {kColor, colorText.c_str()},
        {"keyboardShortcut", "0"},
        {"usageCount", "0"},
        {"lastTimeUsedNotes", kNever},
        {"lastTimeUsedJournal", kNever},
        {"lastTimeUsedContacts", kNever},
        {"lastTimeUsedTasks", kNever},
        {"lastTimeUsedCalendar", kNever},
        {"lastTimeUsedMail", kNever},
        {kLastUsed, lastUsedText.c_str()},
        {"lastSessionUsed", kNever},
        {kGuid, idText.c_str()},
    };
    TiXmlElement element(kElement);
    for (const Attribute& attribute : attributes)
        element.SetAttribute(attribute.name, attribute.value);
    m_nodes.push_back(NodeOf(element));
}

bool CategoryDocument::Rename(std::wstring_view id, std::wstring_view name, DATE utcLastUsed)
{
    const auto found = Find(id);
    if (found == m_nodes.end())
        return false;
    if (name.empty())
        return true;
    TiXmlDocument document;
    document.Parse((*found)->lines.c_str(), nullptr, TIXML_ENCODING_UTF8);
    TiXmlElement* const element = document.RootElement();
    if (document.Error() || !element)
        return false;
    element->SetAttribute(kName, Utf8FromWide(name).c_str());
    element->SetAttribute(kLastUsed, FormatCategoryTime(utcLastUsed).c_str());
    *found = NodeOf(*element);
    return true;
}

bool CategoryDocument::Remove(std::wstring_view id)
{
    const auto found = Find(id);
    if (found == m_nodes.end())
        return false;
    m_nodes.erase(found);
    return true;
}

// IDs are compared unit by unit: no language has a say in braces, digits and letters up to F.
CategoryDocument::Nodes::iterator CategoryDocument::Find(std::wstring_view id)
{
    return std::ranges::find_if(
        m_nodes, [id](const auto& node) { return node->category && node->category->id == id; });
}

std::string CategoryDocument::Print() const
{
    std::size_t size = m_before.size() + m_rootName.size() + m_behind.size() + 8; // and brackets
    for (const auto& node : m_nodes)
        size += node->lines.size();
    std::string text;
    text.reserve(size);
    text += m_before;
    if (m_nodes.empty())
    {
        text += kEmptyElementEnd;
        return text += m_behind;
    }
    text += '>';
    if (m_nodes.size() == 1 && m_nodes[0]->isText)
    {
        // A text alone stands beside its tags.
        std::string_view line = m_nodes[0]->lines;
        line.remove_prefix(kIndent.size());
        line.remove_suffix(kLineBreak.size());
        text += line;
    }
    else
    {
        text += kLineBreak;
        for (const auto& node : m_nodes)
            text += node->lines;
    }
    text += "</";
    text += m_rootName;
    text += '>';
    text += kLineBreak;
    return text += m_behind;
}

std::optional<std::string> CategoryDocument::PrintToStore()
{
    std::string text = Print();
    if (m_comesBack)
        return ScanXml(text) == XmlScanResult::Ok ? std::optional(std::move(text)) : std::nullopt;
    const auto again = Parse(text);
    if (!again || again->Categories() != Categories())
        return std::nullopt;
    m_comesBack = true;
    return text;
}
