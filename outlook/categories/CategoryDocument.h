// The category list that Outlook keeps as XML in a hidden message: one element per category below a
// root. Of an element four attributes are read and two are ever changed; whatever else the document
// holds, attributes, elements and comments, is printed again as it was read. Portable.
//
// Documents are values: a change is made on a copy and the copy kept once it has been stored. What
// stands below the root is shared by copies, each node as its text: a change of one costs no second
// printing of the others. Format notes: docs/formats/category_list.md
#pragma once

#include "platform/Types.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class TiXmlDocument;
class TiXmlElement;

// What is read of an element; absent where it has no such attribute.
struct Category
{
    std::optional<std::wstring> name;
    std::optional<std::wstring> id; // a GUID in braces
    std::optional<std::int32_t> color;
    std::optional<DATE> utcLastUsed;

    bool operator==(const Category&) const = default;
};

class CategoryDocument
{
  public:
    // A new list without categories.
    CategoryDocument();

    // The document in these bytes of UTF-8, a byte-order mark in front allowed. Nothing for a text
    // that is damaged, has no root element or is beyond the limits of service/XmlScan.h.
    static std::optional<CategoryDocument> Parse(std::string_view utf8);

    // One for each element below the root, whatever its name.
    std::vector<Category> Categories() const;

    // Puts an element with all attributes of a category that was never used behind the others; its
    // last use is that time.
    void Add(std::wstring_view name, std::int32_t color, std::wstring_view id, DATE utcLastUsed);

    // Gives the first element with the ID a name and a time of last use.
    // Kept as it is: a category keeps its colour for good. Pinned by CategoryDocumentTest.
    // Returns: whether there is one, and whether its own text can be read. An empty name changes
    // nothing else.
    bool Rename(std::wstring_view id, std::wstring_view name, DATE utcLastUsed);

    // Takes the first element with the ID away. Returns: whether there was one.
    bool Remove(std::wstring_view id);

    // UTF-8, one node a line, four blanks for each level; no byte-order mark.
    std::string Print() const;

    // Print(), where reading it again gives the same categories; else nothing: the document may be
    // too large by now, and odd markup of others, printed as it came, may not parse. That markup is
    // tried once: the copies of a document that came back do so too, whatever is changed in them.
    std::optional<std::string> PrintToStore();

  private:
    struct Node; // one below the root: an element, a text, a comment or another
    using Nodes = std::vector<std::shared_ptr<const Node>>;

    // Takes the document apart; it has a root element, which is empty afterwards.
    explicit CategoryDocument(TiXmlDocument& document);

    static std::shared_ptr<const Node> NodeOf(const TiXmlElement& element);
    Nodes::iterator Find(std::wstring_view id);

    std::string m_before; // down to the last attribute of the root
    std::string m_rootName;
    Nodes m_nodes;
    std::string m_behind;     // the root
    bool m_comesBack = false; // the markup of others has been tried
};
