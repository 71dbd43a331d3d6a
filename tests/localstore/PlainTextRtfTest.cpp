// Each document worked out by hand from RTF 1.9.1.
#include "localstore/PlainTextRtf.h"

#include "platform/CodePages.h"
#include "rtfconverter/RtfText.h"

#include <gtest/gtest.h>

namespace
{
// What stands before the text and behind it.
std::string Document(const std::string& body)
{
    return "{\\rtf1\\ansi\\fromtext\\deff0{\\fonttbl{\\f0\\fswiss "
           "Arial;}}\\pard\\plain\\f0\\fs20 " +
           body + "}";
}

std::string Body(std::wstring_view text)
{
    const std::string rtf = RtfOfPlainText(text);
    const std::size_t around = Document("").size();
    EXPECT_GE(rtf.size(), around);
    const std::string body = rtf.substr(around - 1, rtf.size() - around);
    EXPECT_EQ(Document(body), rtf);
    return body;
}
} // namespace

TEST(PlainTextRtfTest, IsADocumentMadeFromText)
{
    EXPECT_EQ("{\\rtf1\\ansi\\fromtext\\deff0{\\fonttbl{\\f0\\fswiss Arial;}}\\pard\\plain\\f0"
              "\\fs20 note}",
              RtfOfPlainText(L"note"));
    EXPECT_EQ("{\\rtf1\\ansi\\fromtext\\deff0{\\fonttbl{\\f0\\fswiss Arial;}}\\pard\\plain\\f0"
              "\\fs20 }",
              RtfOfPlainText(L""));
}

TEST(PlainTextRtfTest, KeepsPrintableAsciiAndEscapesWhatRtfReads)
{
    // From the first printable character to the last.
    EXPECT_EQ(" !\"#$%&'()*+,-./0123456789:;<=>?@", Body(L" !\"#$%&'()*+,-./0123456789:;<=>?@"));
    EXPECT_EQ("AZ[\\\\]^_`az\\{|\\}~", Body(L"AZ[\\]^_`az{|}~"));
    EXPECT_EQ("C:\\\\temp\\\\\\{x\\}", Body(L"C:\\temp\\{x}"));
}

TEST(PlainTextRtfTest, EndsAParagraphAtEveryKindOfLineBreak)
{
    EXPECT_EQ("a\\par b", Body(L"a\r\nb"));
    EXPECT_EQ("a\\par b", Body(L"a\rb"));
    EXPECT_EQ("a\\par b", Body(L"a\nb"));
    EXPECT_EQ("\\par a\\par \\par b\\par ", Body(L"\r\na\r\n\r\nb\r\n"));
    // LF CR are two breaks, and so are CR CR LF.
    EXPECT_EQ("\\par \\par ", Body(L"\n\r"));
    EXPECT_EQ("\\par \\par ", Body(L"\r\r\n"));
    EXPECT_EQ("\\par \\par ", Body(L"\n\n"));
}

TEST(PlainTextRtfTest, KeepsTabs)
{
    EXPECT_EQ("a\\tab b\\tab \\tab ", Body(L"a\tb\t\t"));
}

TEST(PlainTextRtfTest, WritesEveryOtherCodeUnitAsANumberOf16BitsWithSign)
{
    EXPECT_EQ("gr\\u252?\\u223?e", Body(L"gr\u00FC\u00DFe"));
    EXPECT_EQ("\\u26085?", Body(L"\u65E5"));
    // The limits of the number: 0x7FFF, 0x8000 and 0xFFFF.
    EXPECT_EQ("\\u32767?\\u-32768?\\u-1?", Body(L"\x7FFF\x8000\xFFFF"));
    // U+1F600 is D83D DE00: 0xD83D - 0x10000 = -10179, 0xDE00 - 0x10000 = -8704.
    EXPECT_EQ("\\u-10179?\\u-8704?", Body(L"\xD83D\xDE00"));
    // Half a pair stays what it is.
    EXPECT_EQ("\\u-8704?x", Body(L"\xDE00x"));
}

TEST(PlainTextRtfTest, WritesControlCharactersAsNumbers)
{
    EXPECT_EQ("\\u0?\\u1?\\u8?\\u11?\\u12?\\u31? ~\\u127?\\u128?",
              Body(std::wstring_view(L"\x0000\x0001\x0008\x000B\x000C\x001F ~\x007F\x0080", 10)));
}

TEST(PlainTextRtfTest, TakesNoMoreRoomThanItSays)
{
    const std::wstring text(1000, L'\x8000');
    EXPECT_EQ(1000 * kMostRtfBytesOfUnit, Body(text).size());
}

TEST(PlainTextRtfTest, KnowsItsOwnDocuments)
{
    EXPECT_TRUE(IsRtfOfPlainText(RtfOfPlainText(L"")));
    EXPECT_TRUE(IsRtfOfPlainText(RtfOfPlainText(L"a\r\nb")));
    EXPECT_FALSE(IsRtfOfPlainText(""));
    EXPECT_FALSE(IsRtfOfPlainText("{\\rtf1\\ansi\\fromtext"));
    EXPECT_FALSE(IsRtfOfPlainText("{\\rtf1\\ansi\\deff0{\\fonttbl{\\f0\\fswiss Arial;}}\\pard a}"));
    EXPECT_FALSE(IsRtfOfPlainText(" " + RtfOfPlainText(L"")));
}

// The converter that reads notes gives the text again.
TEST(PlainTextRtfTest, ReadsBackAsTheTextThatItWasMadeOf)
{
    for (const std::wstring text : {L"",
                                    L"note",
                                    L"Met at the fair.\r\n\r\n\tCall {back}\\later?\r\n",
                                    L"gr\u00FC\u00DFe \u65E5\u672C \xD83D\xDE00?\r\n?",
                                    L" two  blanks  ",
                                    L"\\par \\u252? {\\b}"})
        EXPECT_EQ(text, TextFromRtf(RtfOfPlainText(text), 1252, AppendFromCodePage));
}
