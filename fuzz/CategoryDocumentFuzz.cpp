// A category that is added to a document and taken away again leaves no trace, and meanwhile
// reading the printed document gives it beside the others.
#include "Require.h"

#include "outlook/categories/CategoryDocument.h"

namespace
{
constexpr DATE kTime = 40621.75;
constexpr wchar_t kID[] = L"{F5B7B7C0-8C0E-4F0B-9C57-0C6C1B6C9A11}";

std::vector<Category> ReadAgain(const CategoryDocument& document)
{
    const auto again = CategoryDocument::Parse(document.Print());
    Require(again.has_value());
    return again->Categories();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const auto document = CategoryDocument::Parse(text);
    if (!document)
        return 0;
    const std::vector<Category> categories = document->Categories();
    const std::string printed = document->Print();
    // No XML: a reference to the zero character, which the parser takes and a copy ends at.
    if (printed.find("&#x00;") != std::string::npos)
        return 0;
    // Odd markup is printed as it came and may not parse, or not to the same: a quote in the XML
    // declaration, for one, ends a text there. Such a document is never stored.
    if (const auto again = CategoryDocument::Parse(printed);
        !again || again->Categories() != categories || again->Print() != printed)
        return 0;

    CategoryDocument changed = *document;
    if (changed.Rename(kID, L"x", kTime))
        return 0; // the input knows the ID
    Require(changed.Print() == printed);
    changed.Add(L"added & \"named\"", 5, kID, kTime);
    auto expected = categories;
    expected.push_back({L"added & \"named\"", kID, 5, kTime});
    Require(ReadAgain(changed) == expected);
    Require(changed.Rename(kID, L"again", kTime + 1));
    expected.back() = {L"again", kID, 5, kTime + 1};
    Require(ReadAgain(changed) == expected);
    Require(changed.Remove(kID));
    Require(changed.Print() == printed);
    Require(document->Print() == printed);
    return 0;
}
