// The category document: what is read of it, and every byte of what is written. The expected texts
// were written by hand.
#include "outlook/categories/CategoryDocument.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr DATE kDay = 40621.0; // 2011-03-19

constexpr char kEmptyList[] =
    R"(<?xml version="1.0" ?>
<categories default="" lastSavedSession="0" lastSavedTime="1601-01-01T00:00:00.000" xmlns="CategoryList.xsd" />
)";

// As another program leaves it: attributes and elements of its own, a byte-order mark, no line
// breaks, an order of its own.
constexpr char kForeignList[] =
    "\xEF\xBB\xBF"
    R"(<?xml version="1.0" encoding="utf-8"?><categories lastSavedTime="2011-03-19T11:19:09.564Z" )"
    R"(mark='5"' xmlns="CategoryList.xsd"><!-- kept --><category guid="{A}" renameOnFirstUse="1" )"
    R"(color="7" name="R&#233;union &amp; Co" lastTimeUsed="2011-03-19T12:00:00.000" odd="&lt;" />)"
    R"(<extra name="Other"><inner>text</inner></extra>)"
    R"(<category name="Last" color="-1" guid="{B}" lastTimeUsed="soon"></category></categories>)";

Category Of(std::optional<std::wstring> name,
            std::optional<std::int32_t> color,
            std::optional<std::wstring> id,
            std::optional<DATE> utcLastUsed)
{
    return {std::move(name), std::move(id), color, utcLastUsed};
}

std::vector<Category> CategoriesIn(std::string_view text)
{
    const auto document = CategoryDocument::Parse(text);
    EXPECT_TRUE(document) << text;
    return document ? document->Categories() : std::vector<Category>();
}

// That many elements, one inside the other.
std::string Nested(int depth)
{
    std::string text;
    for (int i = 0; i < depth; ++i)
        text = "<e>" + text + "</e>";
    return text;
}

std::string Elements(const std::string& inside)
{
    return "<categories>" + inside + "</categories>";
}
} // namespace

TEST(CategoryDocumentTest, ANewListIsDeclarationAndRoot)
{
    const CategoryDocument document;
    EXPECT_EQ(kEmptyList, document.Print());
    EXPECT_THAT(document.Categories(), IsEmpty());
    EXPECT_THAT(CategoriesIn(kEmptyList), IsEmpty());
}

TEST(CategoryDocumentTest, ReadsFourAttributesOfEveryElement)
{
    EXPECT_THAT(CategoriesIn(kForeignList),
                ElementsAre(Of(L"R\u00e9union & Co", 7, L"{A}", kDay + 0.5),
                            Of(L"Other", std::nullopt, std::nullopt, std::nullopt),
                            Of(L"Last", -1, L"{B}", 0.0)));
}

TEST(CategoryDocumentTest, AnAttributeThatIsMissingIsAbsent)
{
    EXPECT_THAT(CategoriesIn(Elements("<category/>")),
                ElementsAre(Of(std::nullopt, std::nullopt, std::nullopt, std::nullopt)));
    EXPECT_THAT(CategoriesIn(Elements(R"(<category name="" guid=""/>)")),
                ElementsAre(Of(L"", std::nullopt, L"", std::nullopt)));
    // Names count exactly.
    EXPECT_THAT(CategoriesIn(Elements(R"(<category Name="A" GUID="B" Color="1" lastTime="x"/>)")),
                ElementsAre(Of(std::nullopt, std::nullopt, std::nullopt, std::nullopt)));
}

TEST(CategoryDocumentTest, ReadsColoursAsNumbers)
{
    const auto colorOf = [](const std::string& text) {
        return CategoriesIn(Elements("<c color=\"" + text + "\"/>")).front().color;
    };
    EXPECT_EQ(25, colorOf("25"));
    EXPECT_EQ(-3, colorOf(" -3"));
    EXPECT_EQ(0, colorOf("red"));
    EXPECT_EQ(0, colorOf(""));
    EXPECT_EQ(12, colorOf("12 or more"));
    EXPECT_EQ(2147483647, colorOf("99999999999"));
    EXPECT_EQ(-2147483647 - 1, colorOf("-99999999999"));
}

TEST(CategoryDocumentTest, ReadsOnlyElementsDirectlyBelowTheRoot)
{
    EXPECT_THAT(CategoriesIn(R"(<r name="R"><a name="A"><b name="B"/></a>text<!-- c --></r>)"),
                ElementsAre(Of(L"A", std::nullopt, std::nullopt, std::nullopt)));
    // The first root counts.
    EXPECT_THAT(CategoriesIn(R"(<r/><categories><a name="A"/></categories>)"), IsEmpty());
}

TEST(CategoryDocumentTest, TakesNoDamagedText)
{
    const std::string accepted[] = {
        "<r/>", "\xEF\xBB\xBF<r/>", "<?xml version=\"1.0\"?><r></r>", Nested(64)};
    for (const std::string& text : accepted)
        EXPECT_TRUE(CategoryDocument::Parse(text)) << text;
    const std::string refused[] = {
        "",
        "\xEF\xBB\xBF",
        "   ",
        "text",
        "<?xml version=\"1.0\"?>",
        "<!-- a comment alone -->",
        "<categories>",
        "<categories",
        "<categories><category name=\"A\"/>",
        "<categories><category name=\"A</categories>",
        "<categories></other>",
        R"(<categories><category name="A" name="B"/></categories>)",
        "<r a=\"\xFF\"/>",
        "<r a=\"\xC3\"/>",
        Nested(65),
        "<r a=\"" + std::string(16 * 1024 * 1024, 'x') + "\"/>",
        R"(<!DOCTYPE r [<!ENTITY a "aaaaaaaaaa"><!ENTITY b "&a;&a;&a;">]><r><e name="&b;"/></r>)",
    };
    for (const std::string& text : refused)
        EXPECT_FALSE(CategoryDocument::Parse(text)) << text.substr(0, 80);
}

// The parser takes an entity that it does not know for text without its first character.
TEST(CategoryDocumentTest, UnknownEntitiesAreNotExpanded)
{
    EXPECT_THAT(CategoriesIn(Elements(R"(<c name="&b;&lt;"/>)")),
                ElementsAre(Of(L"b;<", std::nullopt, std::nullopt, std::nullopt)));
}

TEST(CategoryDocumentTest, AddsAnElementWithAllAttributesInTheirOrder)
{
    CategoryDocument document;
    document.Add(
        L"Ann & \"Ben\" <\u65e5\u672c>", 7, L"{8D375578-D8F9-4557-A7C6-9669D79C535D}", kDay + 0.75);
    document.Add(L"It's", -1, L"{B}", kDay);
    EXPECT_EQ(
        R"(<?xml version="1.0" ?>
<categories default="" lastSavedSession="0" lastSavedTime="1601-01-01T00:00:00.000" xmlns="CategoryList.xsd">
    <category xmlns="" name='Ann &amp; &quot;Ben&quot; &lt;)"
        "\xE6\x97\xA5\xE6\x9C\xAC"
        R"(&gt;' color="7" keyboardShortcut="0" usageCount="0" lastTimeUsedNotes="1601-01-01T00:00:00.000" lastTimeUsedJournal="1601-01-01T00:00:00.000" lastTimeUsedContacts="1601-01-01T00:00:00.000" lastTimeUsedTasks="1601-01-01T00:00:00.000" lastTimeUsedCalendar="1601-01-01T00:00:00.000" lastTimeUsedMail="1601-01-01T00:00:00.000" lastTimeUsed="2011-03-19T18:00:00.000" lastSessionUsed="1601-01-01T00:00:00.000" guid="{8D375578-D8F9-4557-A7C6-9669D79C535D}" />
    <category xmlns="" name="It&apos;s" color="-1" keyboardShortcut="0" usageCount="0" lastTimeUsedNotes="1601-01-01T00:00:00.000" lastTimeUsedJournal="1601-01-01T00:00:00.000" lastTimeUsedContacts="1601-01-01T00:00:00.000" lastTimeUsedTasks="1601-01-01T00:00:00.000" lastTimeUsedCalendar="1601-01-01T00:00:00.000" lastTimeUsedMail="1601-01-01T00:00:00.000" lastTimeUsed="2011-03-19T00:00:00.000" lastSessionUsed="1601-01-01T00:00:00.000" guid="{B}" />
</categories>
)",
        document.Print());
    EXPECT_THAT(CategoriesIn(document.Print()),
                ElementsAre(Of(L"Ann & \"Ben\" <\u65e5\u672c>",
                               7,
                               L"{8D375578-D8F9-4557-A7C6-9669D79C535D}",
                               kDay + 0.75),
                            Of(L"It's", -1, L"{B}", kDay)));
}

// Every write begins with the whole document as it came.
TEST(CategoryDocumentTest, ForeignAttributesAndElementsSurviveARename)
{
    auto document = CategoryDocument::Parse(kForeignList);
    ASSERT_TRUE(document);
    EXPECT_TRUE(document->Rename(L"{A}", L"New", kDay + 0.25));
    EXPECT_EQ(
        R"(<?xml version="1.0" encoding="utf-8" ?>
<categories lastSavedTime="2011-03-19T11:19:09.564Z" mark='5&quot;' xmlns="CategoryList.xsd">
    <!-- kept -->
    <category guid="{A}" renameOnFirstUse="1" color="7" name="New" lastTimeUsed="2011-03-19T06:00:00.000" odd="&lt;" />
    <extra name="Other">
        <inner>text</inner>
    </extra>
    <category name="Last" color="-1" guid="{B}" lastTimeUsed="soon" />
</categories>
)",
        document->Print());
}

TEST(CategoryDocumentTest, RenameAddsTheAttributesThatAnElementLacks)
{
    auto document = CategoryDocument::Parse(R"(<r><c guid="{A}"/></r>)");
    ASSERT_TRUE(document);
    EXPECT_TRUE(document->Rename(L"{A}", L"New", kDay));
    EXPECT_EQ("<r>\n    <c guid=\"{A}\" name=\"New\" lastTimeUsed=\"2011-03-19T00:00:00.000\" />\n"
              "</r>\n",
              document->Print());
}

TEST(CategoryDocumentTest, RenameWithoutANameChangesNothing)
{
    auto document = CategoryDocument::Parse(kForeignList);
    ASSERT_TRUE(document);
    const std::string before = document->Print();
    EXPECT_TRUE(document->Rename(L"{A}", L"", kDay));
    EXPECT_EQ(before, document->Print());
}

TEST(CategoryDocumentTest, FindsTheFirstElementWithExactlyThatID)
{
    constexpr char kText[] = R"(<r><c id="{A}"/><c GUID="{A}"/><c guid="{a}"/><c guid="{A}"/>)"
                             R"(<c guid="{A}" last=""/></r>)";
    auto document = CategoryDocument::Parse(kText);
    ASSERT_TRUE(document);
    EXPECT_FALSE(document->Rename(L"{AA}", L"x", kDay));
    EXPECT_FALSE(document->Remove(L"{"));
    EXPECT_FALSE(document->Remove(L""));
    EXPECT_TRUE(document->Remove(L"{A}"));
    EXPECT_EQ("<r>\n    <c id=\"{A}\" />\n    <c GUID=\"{A}\" />\n    <c guid=\"{a}\" />\n"
              "    <c guid=\"{A}\" last=\"\" />\n</r>\n",
              document->Print());
}

TEST(CategoryDocumentTest, RemovesTheElementWithAllThatIsInIt)
{
    auto document = CategoryDocument::Parse(R"(<r><c guid="{A}"><d/>text</c><c guid="{B}"/></r>)");
    ASSERT_TRUE(document);
    EXPECT_TRUE(document->Remove(L"{A}"));
    EXPECT_FALSE(document->Remove(L"{A}"));
    EXPECT_EQ("<r>\n    <c guid=\"{B}\" />\n</r>\n", document->Print());
    EXPECT_TRUE(document->Remove(L"{B}"));
    EXPECT_EQ("<r />\n", document->Print());
}

TEST(CategoryDocumentTest, ACopyIsADocumentOfItsOwn)
{
    CategoryDocument document;
    document.Add(L"A", 1, L"{A}", kDay);
    const std::string before = document.Print();
    CategoryDocument copy = document;
    copy.Add(L"B", 2, L"{B}", kDay);
    EXPECT_TRUE(copy.Remove(L"{A}"));
    EXPECT_EQ(before, document.Print());
    const std::string changed = copy.Print();
    document = std::move(copy);
    EXPECT_EQ(changed, document.Print());
}

// Each kind of node stays at its place, whatever stands around it by then.
TEST(CategoryDocumentTest, EveryNodeIsPrintedOnItsLine)
{
    auto document = CategoryDocument::Parse(
        "<?xml version=\"1.0\"?><!-- a --><r>one &amp; two<![CDATA[<x>]]><c guid=\"{A}\">"
        "in<d>deep</d></c><!odd></r><!-- b --><s/>");
    ASSERT_TRUE(document);
    constexpr char kBefore[] = "<?xml version=\"1.0\" ?>\n<!-- a -->\n<r>\n    one &amp; two\n"
                               "    <![CDATA[<x>]]>\n";
    constexpr char kBehind[] = "    <!odd>\n</r>\n<!-- b -->\n<s />\n";
    EXPECT_EQ(std::string(kBefore) +
                  "    <c guid=\"{A}\">\n        in\n        <d>deep</d>\n    </c>\n" + kBehind,
              document->Print());
    EXPECT_TRUE(document->Rename(L"{A}", L"New", kDay));
    EXPECT_EQ(std::string(kBefore) +
                  "    <c guid=\"{A}\" name=\"New\" lastTimeUsed=\"2011-03-19T00:00:00.000\">\n"
                  "        in\n        <d>deep</d>\n    </c>\n" +
                  kBehind,
              document->Print());
    EXPECT_TRUE(document->Remove(L"{A}"));
    EXPECT_EQ(std::string(kBefore) + kBehind, document->Print());
}

TEST(CategoryDocumentTest, ATextStandsBesideTheTagsOnlyWhileItIsAlone)
{
    auto document = CategoryDocument::Parse(R"(<r a="b">one &lt; two<c guid="{A}"/></r>)");
    ASSERT_TRUE(document);
    EXPECT_EQ("<r a=\"b\">\n    one &lt; two\n    <c guid=\"{A}\" />\n</r>\n", document->Print());
    EXPECT_TRUE(document->Remove(L"{A}"));
    EXPECT_EQ("<r a=\"b\">one &lt; two</r>\n", document->Print());
    // CDATA never does.
    document = CategoryDocument::Parse("<r><![CDATA[one]]></r>");
    ASSERT_TRUE(document);
    EXPECT_EQ("<r>\n    <![CDATA[one]]>\n</r>\n", document->Print());
}

TEST(CategoryDocumentTest, StoresWhatItPrints)
{
    CategoryDocument document;
    EXPECT_EQ(kEmptyList, document.PrintToStore());
    auto foreign = CategoryDocument::Parse(kForeignList);
    ASSERT_TRUE(foreign);
    EXPECT_EQ(foreign->Print(), foreign->PrintToStore());
    CategoryDocument copy = *foreign;
    copy.Add(L"<&>", 3, L"{C}", kDay);
    EXPECT_TRUE(copy.Rename(L"{A}", L"\u65e5 \"'", kDay));
    EXPECT_EQ(copy.Print(), copy.PrintToStore());
    EXPECT_TRUE(copy.Remove(L"{B}"));
    EXPECT_EQ(copy.Print(), copy.PrintToStore());
}

// The declaration is printed with an end of its own inside.
TEST(CategoryDocumentTest, StoresNothingThatWouldNotComeBack)
{
    auto odd = CategoryDocument::Parse(R"(<?xml version="1&quot;&gt;x"?><r><c guid="{A}"/></r>)");
    ASSERT_TRUE(odd);
    EXPECT_EQ(1u, odd->Categories().size());
    EXPECT_EQ(std::nullopt, odd->PrintToStore());
    EXPECT_TRUE(odd->Rename(L"{A}", L"New", kDay));
    EXPECT_EQ(std::nullopt, odd->PrintToStore());
}

// This one would come back as another document: its declaration holds a whole one.
TEST(CategoryDocumentTest, StoresNothingThatWouldComeBackAsSomethingElse)
{
    auto odd = CategoryDocument::Parse(
        R"(<?xml version="1&quot;?&gt;&lt;r&gt;&lt;c/&gt;&lt;/r&gt;"?><r/>)");
    ASSERT_TRUE(odd);
    EXPECT_THAT(odd->Categories(), IsEmpty());
    EXPECT_EQ(1u, CategoriesIn(odd->Print()).size());
    EXPECT_EQ(std::nullopt, odd->PrintToStore());
}

// An element and its 14 attributes are 15 of the 524,288 nodes that are read.
TEST(CategoryDocumentTest, StoresNoMoreNodesThanItTakesBack)
{
    std::string text = "<r>";
    for (int i = 0; i < 512 * 1024 - 1 - 15; ++i)
        text += "<c/>";
    auto document = CategoryDocument::Parse(text + "</r>");
    ASSERT_TRUE(document);
    ASSERT_TRUE(document->PrintToStore());
    CategoryDocument full = *document;
    full.Add(L"A", 1, L"{A}", kDay);
    EXPECT_TRUE(full.PrintToStore());
    CategoryDocument another = full;
    another.Add(L"B", 1, L"{B}", kDay);
    EXPECT_EQ(std::nullopt, another.PrintToStore());
    EXPECT_TRUE(another.Remove(L"{A}"));
    EXPECT_TRUE(another.PrintToStore());
}
