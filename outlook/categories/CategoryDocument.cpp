#include "outlook/categories/CategoryDocument.h"

#include "outlook/categories/CategoryTime.h"
#include "service/StringHelpers.h"
#include "service/TextConversions.h"
#include "service/XmlScan.h"

#include <tinyxml.h>

#include <utility>

namespace
{
constexpr char kNever[] = "1601-01-01T00:00:00.000";
constexpr char kIndent[] = "    ";
constexpr char kLineBreak[] = "\n";

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

// IDs are compared unit by unit: no language has a say in braces, digits and letters up to F.
TiXmlElement* FindElement(TiXmlElement& root, std::wstring_view id)
{
    for (TiXmlElement* element = root.FirstChildElement(); element;
         element = element->NextSiblingElement())
    {
        const char* const guid = element->Attribute(kGuid);
        if (guid && WideFromUtf8(guid) == id)
            return element;
    }
    return nullptr;
}
} // namespace

CategoryDocument::CategoryDocument() : m_document(std::make_unique<TiXmlDocument>())
{
    m_document->LinkEndChild(new TiXmlDeclaration("1.0", "", ""));
    auto root = std::make_unique<TiXmlElement>("categories");
    for (const Attribute& attribute : kRootAttributes)
        root->SetAttribute(attribute.name, attribute.value);
    m_document->LinkEndChild(root.release());
}

CategoryDocument::CategoryDocument(std::unique_ptr<TiXmlDocument> document) noexcept
    : m_document(std::move(document))
{
}

CategoryDocument::CategoryDocument(const CategoryDocument& other)
    : m_document(std::make_unique<TiXmlDocument>(*other.m_document))
{
}

CategoryDocument::CategoryDocument(CategoryDocument&& other) noexcept = default;

CategoryDocument& CategoryDocument::operator=(CategoryDocument other) noexcept
{
    m_document = std::move(other.m_document);
    return *this;
}

CategoryDocument::~CategoryDocument() = default;

std::optional<CategoryDocument> CategoryDocument::Parse(std::string_view utf8)
{
    if (ScanXml(utf8) != XmlScanResult::Ok)
        return std::nullopt;
    auto document = std::make_unique<TiXmlDocument>();
    document->Parse(std::string(utf8).c_str(), nullptr, TIXML_ENCODING_UTF8);
    if (document->Error() || !document->RootElement())
        return std::nullopt;
    return CategoryDocument(std::move(document));
}

std::vector<Category> CategoryDocument::Categories() const
{
    std::vector<Category> categories;
    for (const TiXmlElement* element = m_document->RootElement()->FirstChildElement(); element;
         element = element->NextSiblingElement())
        categories.push_back(ReadCategory(*element));
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
    auto element = std::make_unique<TiXmlElement>(kElement);
    for (const Attribute& attribute : attributes)
        element->SetAttribute(attribute.name, attribute.value);
    m_document->RootElement()->LinkEndChild(element.release());
}

bool CategoryDocument::Rename(std::wstring_view id, std::wstring_view name, DATE utcLastUsed)
{
    TiXmlElement* const element = FindElement(*m_document->RootElement(), id);
    if (!element)
        return false;
    if (!name.empty())
    {
        element->SetAttribute(kName, Utf8FromWide(name).c_str());
        element->SetAttribute(kLastUsed, FormatCategoryTime(utcLastUsed).c_str());
    }
    return true;
}

bool CategoryDocument::Remove(std::wstring_view id)
{
    TiXmlElement& root = *m_document->RootElement();
    TiXmlElement* const element = FindElement(root, id);
    return element && root.RemoveChild(element);
}

std::string CategoryDocument::Print() const
{
    TiXmlPrinter printer;
    printer.SetIndent(kIndent);
    printer.SetLineBreak(kLineBreak);
    m_document->Accept(&printer);
    return printer.Str();
}
