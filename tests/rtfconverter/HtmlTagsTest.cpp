#include "rtfconverter/HtmlTags.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{
// What one group says, without the characters that say nothing.
std::vector<HtmlLayout> Scan(std::string_view group)
{
    HtmlTagScanner scanner;
    scanner.Begin();
    std::vector<HtmlLayout> said;
    for (const char c : group)
        said.push_back(scanner.Feed(c));
    said.push_back(scanner.End());
    std::erase(said, HtmlLayout::None);
    return said;
}

using Said = std::vector<HtmlLayout>;
} // namespace

TEST(HtmlTagsTest, KnowsTagsThatLayOutTextInAnyLetterCase)
{
    EXPECT_EQ(Said{HtmlLayout::Break}, Scan("<br>"));
    EXPECT_EQ(Said{HtmlLayout::Break}, Scan("<BR/>"));
    EXPECT_EQ(Said{HtmlLayout::Break}, Scan("<br class='x' />"));
    EXPECT_EQ(Said{HtmlLayout::Block}, Scan("<div>"));
    EXPECT_EQ(Said{HtmlLayout::Block}, Scan("</Div>"));
    EXPECT_EQ(Said{HtmlLayout::Paragraph}, Scan("<p class=MsoNormal>"));
    EXPECT_EQ(Said{HtmlLayout::Paragraph}, Scan("</h6>"));
    EXPECT_EQ(Said{HtmlLayout::Cell}, Scan("</td>"));
    EXPECT_EQ((Said{HtmlLayout::Block, HtmlLayout::Cell}), Scan("<tr><td>"));
}

TEST(HtmlTagsTest, IgnoresOtherTags)
{
    for (const char* group : {"<b>",
                              "</a>",
                              "<span>",
                              "<o:p>",
                              "<!DOCTYPE-html>",
                              "<divx>",
                              "<>",
                              "</>",
                              "<p:x>",
                              "<blockquotex>",
                              "br",
                              "&nbsp;"})
        EXPECT_EQ(Said{}, Scan(group)) << group;
}

TEST(HtmlTagsTest, IgnoresTagsInAttributesAndComments)
{
    EXPECT_EQ(Said{}, Scan("<a title=\"<br>\">"));
    EXPECT_EQ(Said{}, Scan("<a title='<br>\"'>"));
    EXPECT_EQ(Said{}, Scan("<!--[if mso]><div><br></div><![endif]-->"));
    EXPECT_EQ(Said{HtmlLayout::Break}, Scan("<!--a--><br>"));
    EXPECT_EQ(Said{}, Scan("<!--a- -><br>"));
}

TEST(HtmlTagsTest, TellsWhereTextIsNeverShown)
{
    EXPECT_EQ(Said{HtmlLayout::BeginsMute}, Scan("<title>"));
    EXPECT_EQ(Said{HtmlLayout::EndsMute}, Scan("</title>"));
    EXPECT_EQ(Said{HtmlLayout::BeginsMute}, Scan("<style type=\"text/css\">"));
    EXPECT_EQ(Said{HtmlLayout::EndsMute}, Scan("</head>"));
    EXPECT_EQ(Said{HtmlLayout::EndsMute}, Scan("<body>"));
}

TEST(HtmlTagsTest, CountsATagThatTheGroupCutsOff)
{
    EXPECT_EQ(Said{HtmlLayout::Break}, Scan("<br"));
    EXPECT_EQ(Said{}, Scan("<"));
    EXPECT_EQ(Said{}, Scan("<!--<br"));
}

TEST(HtmlTagsTest, SaysABlankForWhiteSpaceOutsideOfTags)
{
    EXPECT_EQ(Said{HtmlLayout::Space}, Scan("\n"));
    EXPECT_EQ(Said{HtmlLayout::Space}, Scan(" "));
    EXPECT_EQ(Said{}, Scan("<a href=x target=y>"));
}
