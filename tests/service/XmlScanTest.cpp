#include "service/XmlScan.h"

#include <gtest/gtest.h>
#include <tinyxml.h>

#include <string>

namespace
{
std::string Repeated(const std::string& text, std::size_t count)
{
    std::string result;
    result.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        result += text;
    return result;
}

std::string Nested(std::size_t depth)
{
    return Repeated("<a>", depth) + Repeated("</a>", depth);
}

bool ParserTakes(const std::string& text)
{
    TiXmlDocument document;
    document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
    return !document.Error();
}
} // namespace

TEST(XmlScanTest, TakesWhatThePlainFilesHold)
{
    const std::string text = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n"
                             "<!-- a <b> -- c --><root a=\"1>\" b='<' c=d>\r\n"
                             "text &amp; &#65; &#x41; <![CDATA[ <x> ]]><leaf/></root>\r\n";
    EXPECT_EQ(XmlScanResult::Ok, ScanXml(text));
    EXPECT_TRUE(ParserTakes(text));
}

TEST(XmlScanTest, TakesAByteOrderMarkInFront)
{
    EXPECT_EQ(XmlScanResult::Ok, ScanXml("\xEF\xBB\xBF<root/>"));
    EXPECT_TRUE(ParserTakes("\xEF\xBB\xBF<root/>"));
}

TEST(XmlScanTest, TakesAnEmptyText)
{
    EXPECT_EQ(XmlScanResult::Ok, ScanXml(""));
}

TEST(XmlScanTest, TakesSixtyFourLevelsAndRefusesOneMore)
{
    EXPECT_EQ(XmlScanResult::Ok, ScanXml(Nested(64)));
    EXPECT_TRUE(ParserTakes(Nested(64)));
    EXPECT_EQ(XmlScanResult::TooDeep, ScanXml(Nested(65)));
    EXPECT_EQ(XmlScanResult::TooDeep, ScanXml(Repeated("<a>", 64) + "<b/>"));
}

TEST(XmlScanTest, RefusesTenThousandLevelsInEveryDisguise)
{
    EXPECT_EQ(XmlScanResult::TooDeep, ScanXml(Nested(10000)));
    EXPECT_EQ(XmlScanResult::TooDeep, ScanXml(Repeated("<a>", 10000)));
    EXPECT_EQ(XmlScanResult::TooDeep, ScanXml(Repeated("<a b=c>", 10000)));
    EXPECT_EQ(XmlScanResult::TooDeep, ScanXml(Repeated("<a b='>'>text", 10000)));
    EXPECT_EQ(XmlScanResult::TooDeep, ScanXml(Repeated("<a><!-- > --><![CDATA[</a>]]>", 10000)));
    EXPECT_EQ(XmlScanResult::TooDeep, ScanXml(Repeated("<a><?xml version='</a>'?>", 10000)));
    EXPECT_EQ(XmlScanResult::TooDeep, ScanXml(Repeated("<a><!ENTITY b>", 10000)));
    EXPECT_EQ(XmlScanResult::TooDeep, ScanXml(Repeated("<\xC3\xA9>", 10000)));
    EXPECT_EQ(XmlScanResult::TooDeep, ScanXml("\xEF\xBB\xBF" + Nested(10000)));
    EXPECT_EQ(XmlScanResult::TooDeep,
              ScanXml("<\xEF\xBF\xBE"
                      "b></b>" +
                      Nested(10000)));
}

TEST(XmlScanTest, CountsOpenElementsAndNotSiblings)
{
    EXPECT_EQ(XmlScanResult::Ok, ScanXml("<a>" + Repeated("<b></b><c/>", 10000) + "</a>"));
    // The parser takes an end tag with blanks behind the name.
    EXPECT_EQ(XmlScanResult::Ok, ScanXml(Repeated("<b></b \n>", 10000)));
}

TEST(XmlScanTest, LeavesBrokenFormToTheParser)
{
    const char* const broken[] = {"<a",
                                  "<a b",
                                  "<a b=",
                                  "<a b='",
                                  "<a b=c\">",
                                  "<a/",
                                  "<a>",
                                  "<a><b></a></b>",
                                  "<a>&#xZ;</a>",
                                  "<a>&#12",
                                  "<a><!-- ",
                                  "<a><![CDATA[ ",
                                  "<a></ab>",
                                  "<a b='1' b='2'/>"};
    for (const char* text : broken)
    {
        EXPECT_EQ(XmlScanResult::Ok, ScanXml(text)) << text;
        EXPECT_FALSE(ParserTakes(text)) << text;
    }
}

TEST(XmlScanTest, SeesTheDepthBehindWhatLooksBroken)
{
    // All of these the parser reads on, so the scan has to as well.
    const char* const lenient[] = {
        "</x>", "<>", "<1>", "<!DOCTYPE a [<!ENTITY b \"c\">", "<?other?>"};
    for (const char* text : lenient)
        EXPECT_EQ(XmlScanResult::TooDeep, ScanXml(text + Nested(65))) << text;
    // At the outermost level the parser ends at the first text, without an error.
    EXPECT_EQ(XmlScanResult::Ok, ScanXml("text" + Nested(65)));
}

TEST(XmlScanTest, ReadsNumericReferencesUpToTheNextSemicolonAsTheParserDoes)
{
    // One reference from the first mark on, over the tag between them.
    EXPECT_EQ(XmlScanResult::TooDeep, ScanXml("<a>&#junk<b>#12;</a>" + Nested(65)));
    EXPECT_TRUE(ParserTakes("<a>&#junk<b>#12;</a>"));
    EXPECT_EQ(XmlScanResult::TooDeep, ScanXml("<a>&#xjunk<b>x4F;</a>" + Nested(65)));
    EXPECT_TRUE(ParserTakes("<a>&#xjunk<b>x4F;</a>"));
    // No digits in front of the semicolon: the parser stops.
    EXPECT_EQ(XmlScanResult::Ok, ScanXml("<a>&#junk<b>#1g;</a>" + Nested(65)));
    EXPECT_FALSE(ParserTakes("<a>&#junk<b>#1g;</a>"));
}

TEST(XmlScanTest, RefusesMoreThanSixteenMebibytes)
{
    const std::string most = "<a/>" + std::string(kMaxXmlBytes - 4, ' ');
    EXPECT_EQ(XmlScanResult::Ok, ScanXml(most));
    EXPECT_EQ(XmlScanResult::TooLarge, ScanXml(most + " "));
}

TEST(XmlScanTest, RefusesWhatWouldFillTheMemoryWithNodes)
{
    EXPECT_EQ(XmlScanResult::Ok, ScanXml(Repeated("<a/>", kMaxXmlNodes)));
    EXPECT_EQ(XmlScanResult::TooManyNodes, ScanXml(Repeated("<a/>", kMaxXmlNodes + 1)));
    EXPECT_EQ(XmlScanResult::TooManyNodes, ScanXml("<a>" + Repeated("b<c/>", 300000) + "</a>"));
    EXPECT_EQ(XmlScanResult::TooManyNodes, ScanXml(Repeated("<!>", 600000)));
}

TEST(XmlScanTest, RefusesMoreAttributesThanCanBeSearched)
{
    // One name is enough here: the scan counts and the parser alone minds a repetition.
    EXPECT_EQ(XmlScanResult::Ok, ScanXml("<a" + Repeated(" b='c'", kMaxXmlAttributes) + "/>"));
    EXPECT_EQ(XmlScanResult::TooManyNodes,
              ScanXml("<a" + Repeated(" b='c'", kMaxXmlAttributes + 1) + "/>"));
}

TEST(XmlScanTest, RefusesWhatIsNotUtf8)
{
    const char* const bad[] = {
        "<a>\xFF</a>",             // no lead byte
        "<a>\x80</a>",             // a continuation alone
        "<a>\xC3</a>",             // a sequence cut short
        "<a>\xC0\xAF</a>",         // overlong
        "<a>\xE0\x80\xAF</a>",     // overlong
        "<a>\xF0\x80\x80\xAF</a>", // overlong
        "<a>\xED\xA0\x80</a>",     // a surrogate
        "<a>\xF4\x90\x80\x80</a>", // beyond U+10FFFF
        "<a/>\xE2\x82",            // cut at the end
        "\xFF\xFE<\0a\0>",         // the mark of another encoding
    };
    for (const char* text : bad)
        EXPECT_EQ(XmlScanResult::BadEncoding, ScanXml(text)) << text;
}

TEST(XmlScanTest, TakesTheEdgesOfUtf8)
{
    EXPECT_EQ(XmlScanResult::Ok,
              ScanXml("<a>\xC2\x80 \xDF\xBF \xE0\xA0\x80 \xED\x9F\xBF \xEE\x80\x80 \xEF\xBF\xBF "
                      "\xF0\x90\x80\x80 \xF4\x8F\xBF\xBF</a>"));
}

TEST(XmlScanTest, EndsWithTheParserAtTheFirstNul)
{
    EXPECT_EQ(XmlScanResult::Ok, ScanXml(std::string("<a/>\0", 5) + Nested(65)));
    EXPECT_EQ(XmlScanResult::BadEncoding, ScanXml(std::string("<a/>\0\xFF", 6)));
}

TEST(XmlScanTest, StaysLinearOnHostileRepetition)
{
    // Each of these costs a parser that searches ahead the square of its length; the limit of the
    // test run is the watchdog.
    const std::size_t count = 2 * 1024 * 1024;
    EXPECT_EQ(XmlScanResult::Ok, ScanXml("<a>" + Repeated("&#", count)));
    EXPECT_FALSE(ParserTakes("<a>" + Repeated("&#", count)));
    EXPECT_EQ(XmlScanResult::Ok, ScanXml("<a>" + Repeated("&lol;", count) + "</a>"));
    EXPECT_TRUE(ParserTakes("<a>" + Repeated("&lol;", count) + "</a>"));
    EXPECT_EQ(XmlScanResult::Ok, ScanXml("<!--" + Repeated("--", count)));
    EXPECT_EQ(XmlScanResult::Ok, ScanXml("<a b='" + Repeated("<c>", count)));
}
