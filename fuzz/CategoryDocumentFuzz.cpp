// A category that is added to a document and taken away again leaves no trace, and meanwhile
// reading the stored document gives it beside the others.
#include "Require.h"

#include "outlook/categories/CategoryDocument.h"
#include "service/TextConversions.h"

namespace
{
constexpr DATE kTime = 40621.75;
constexpr wchar_t kID[] = L"{F5B7B7C0-8C0E-4F0B-9C57-0C6C1B6C9A11}";

std::vector<Category> Stored(CategoryDocument& document)
{
    const auto text = document.PrintToStore();
    Require(text.has_value());
    Require(*text == document.Print());
    const auto again = CategoryDocument::Parse(*text);
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
    CategoryDocument changed = *document;
    const auto stored = changed.PrintToStore();
    // Odd markup is printed as it came and may not parse, or not to the same: a quote in the XML
    // declaration, for one, ends a text there. Such a document is never stored.
    const auto again = CategoryDocument::Parse(printed);
    Require(stored.has_value() == (again && again->Categories() == categories));
    if (!stored || again->Print() != printed)
        return 0;

    if (changed.Rename(kID, L"x", kTime))
        return 0; // the input knows the ID
    Require(changed.Print() == printed);
    const std::wstring name = L"N" + WideFromUtf8(text.c_str());
    changed.Add(name, 5, kID, kTime);
    auto expected = categories;
    expected.push_back({name, kID, 5, kTime});
    Require(Stored(changed) == expected);
    Require(changed.Rename(kID, L"again", kTime + 1));
    expected.back() = {L"again", kID, 5, kTime + 1};
    Require(Stored(changed) == expected);
    // What was there before can be changed and taken away as well.
    for (const Category& category : categories)
    {
        if (!category.id || category.id->empty())
            continue;
        CategoryDocument another = changed;
        if (another.Rename(*category.id, name, kTime))
            Require(Stored(another).size() == expected.size());
        Require(another.Remove(*category.id));
        Require(Stored(another).size() == expected.size() - 1);
    }
    Require(changed.Remove(kID));
    Require(changed.Print() == printed);
    Require(Stored(changed) == categories);
    Require(document->Print() == printed);
    return 0;
}
