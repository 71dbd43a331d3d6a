// Each rule of the reader with its text worked out by hand from RTF 1.9.1 and [MS-OXRTFEX].
#include "rtfconverter/RtfText.h"

#include "platform/CodePages.h"

#include <gtest/gtest.h>

#include <new>

namespace
{
std::wstring Text(std::string_view rtf)
{
    return TextFromRtf(rtf, 1252, AppendFromCodePage);
}

// A document with this body.
std::wstring Body(const std::string& body)
{
    return Text("{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fswiss Arial;}}\\pard " + body +
                "}");
}

// A document made from HTML, with this body.
std::wstring Html(const std::string& body)
{
    return Text("{\\rtf1\\ansi\\ansicpg1252\\fromhtml1 \\deff0{\\fonttbl{\\f0\\fswiss Arial;}}\r\n"
                "\\uc1\\pard\\plain " +
                body + "}");
}

std::string Repeat(std::string_view piece, std::size_t times)
{
    std::string text;
    for (std::size_t i = 0; i < times; ++i)
        text += piece;
    return text;
}
} // namespace

// --- what is RTF ------------------------------------------------------------------------------

TEST(RtfTextTest, GivesNothingForWhatIsNoRtf)
{
    EXPECT_EQ(L"", Text(""));
    EXPECT_EQ(L"", Text("hello"));
    EXPECT_EQ(L"", Text(" {\\rtf1 hello}"));
    EXPECT_EQ(L"", Text("{\\RTF1 hello}"));
    EXPECT_FALSE(IsRtf("{\\rt"));
    EXPECT_TRUE(IsRtf("{\\rtf"));
}

TEST(RtfTextTest, ReadsTheSmallestDocument)
{
    EXPECT_EQ(L"", Text("{\\rtf1}"));
    EXPECT_EQ(L"hello world", Text("{\\rtf1\\ansi\\ansicpg1252\\pard hello world}\r\n"));
}

// --- paragraphs, tabs, characters -------------------------------------------------------------

TEST(RtfTextTest, EndsParagraphsAndLinesWithCrLf)
{
    EXPECT_EQ(L"a\r\nb\r\n", Body("a\\par b\\par"));
    EXPECT_EQ(L"a\r\nb", Body("a\\line b"));
    EXPECT_EQ(L"a\r\nb\r\nc", Body("a\\page b\\sect c"));
    EXPECT_EQ(L"a\r\nb", Body("a\\\nb"));
    EXPECT_EQ(L"a\r\nb", Body("a\\\r\nb")); // one line break, not two
}

TEST(RtfTextTest, DropsLineEndsOfTheSource)
{
    EXPECT_EQ(L"abc", Body("a\r\nb\nc"));
    EXPECT_EQ(L"a\r\nb", Body("a\\par\r\nb"));
}

TEST(RtfTextTest, ShowsTabsAndCells)
{
    EXPECT_EQ(L"a\tb", Body("a\\tab b"));
    EXPECT_EQ(L"a\tb", Body("a\tb"));
    EXPECT_EQ(L"a\tb", Body("a\\\tb"));
    EXPECT_EQ(L"a\tb\t\r\n", Body("\\trowd a\\cell b\\cell\\row "));
    EXPECT_EQ(L"a\t\r\n",
              Body("a\\nestcell{\\*\\nesttableprops\\nestrow}{\\nonesttables\\par}\\row "));
}

TEST(RtfTextTest, TakesOneBlankAsTheEndOfAControlWord)
{
    EXPECT_EQ(L"a b", Body("a\\b  b"));
    EXPECT_EQ(L"ab", Body("a\\b b"));
    EXPECT_EQ(L"a-b", Body("a\\b-b"));
    EXPECT_EQ(L"ab", Body("a\\b-1 b"));
    EXPECT_EQ(L"a;b", Body("a\\b1;b"));
}

TEST(RtfTextTest, ShowsEscapedAndNamedCharacters)
{
    EXPECT_EQ(L"\\{}", Body("\\\\\\{\\}"));
    EXPECT_EQ(L"a\x00A0"
              L"b\x2011"
              L"c",
              Body("a\\~b\\_c"));
    EXPECT_EQ(L"ab", Body("a\\-b"));
    EXPECT_EQ(L"\x2018\x2019\x201C\x201D\x2022\x2013\x2014",
              Body("\\lquote\\rquote\\ldblquote\\rdblquote\\bullet\\endash\\emdash"));
    EXPECT_EQ(L"\x2003\x2002\x2005\x200D\x200C\x200E\x200F",
              Body("\\emspace\\enspace\\qmspace\\zwj\\zwnj\\ltrmark\\rtlmark"));
}

TEST(RtfTextTest, IgnoresUnknownControlWords)
{
    EXPECT_EQ(L"ab", Body("a\\someword123 b"));
    EXPECT_EQ(L"ab", Body("a" + Repeat("\\x", 1) + std::string(1000, 'y') + " b"));
    EXPECT_EQ(L"ab", Body("a\\PAR b")); // words are told apart by case
}

// --- code pages -------------------------------------------------------------------------------

TEST(RtfTextTest, DecodesHexInTheDocumentsCodePage)
{
    EXPECT_EQ(L"\x00E4\x20AC", Text("{\\rtf1\\ansi\\ansicpg1252 \\'e4\\'80}"));
    EXPECT_EQ(L"\x0434", Text("{\\rtf1\\ansi\\ansicpg1251 \\'e4}"));
    EXPECT_EQ(L"\x0434", Text("{\\rtf1\\ansicpg1251\\ansi \\'E4}")); // the explicit page wins
    EXPECT_EQ(L"\x00E4", Text("{\\rtf1\\ansi\\ansicpg0 \\'e4}"));    // 0 names none
    EXPECT_EQ(L"\x00E4", Text("{\\rtf1\\ansi\\ansicpg99999999999 \\'e4}"));
    EXPECT_EQ(L"\x00E4", Text("{\\rtf1\\mac \\'8a}"));
    EXPECT_EQ(L"\x00FC", Text("{\\rtf1\\pc \\'81}"));
    EXPECT_EQ(L"\x00F8", Text("{\\rtf1\\pca \\'9b}"));
}

TEST(RtfTextTest, UsesTheDefaultCodePageWhereTheDocumentNamesNone)
{
    EXPECT_EQ(L"\x0434", TextFromRtf("{\\rtf1 \\'e4}", 1251, AppendFromCodePage));
    EXPECT_EQ(L"\x00E4", TextFromRtf("{\\rtf1\\ansi \\'e4}", 1251, AppendFromCodePage));
}

TEST(RtfTextTest, DecodesRawBytesLikeHex)
{
    EXPECT_EQ(L"\x00E4", Text("{\\rtf1\\ansi\\ansicpg1252 \xE4}"));
    EXPECT_EQ(L"\x20AC", Text("{\\rtf1\\ansi\\ansicpg65001 \xE2\x82\xAC}"));
}

TEST(RtfTextTest, JoinsDoubleByteCharactersHoweverTheyAreWritten)
{
    // 93 FA is U+65E5, 95 5C is U+8868 and 83 7D is U+30DE in code page 932.
    const std::string start = "{\\rtf1\\ansi\\ansicpg932 ";
    EXPECT_EQ(L"\x65E5", Text(start + "\\'93\\'fa}"));
    EXPECT_EQ(L"\x65E5", Text(start + "\\'93\r\n\\'fa}"));
    EXPECT_EQ(L"\x65E5", Text(start + "\x93\xFA}"));
    EXPECT_EQ(L"\x8868", Text(start + "\\'95\\\\}"));
    EXPECT_EQ(L"\x30DE", Text(start + "\\'83\\}}"));
    EXPECT_EQ(L"a\x65E5"
              L"b",
              Text(start + "a\\'93\\'fab}"));
    // 83 41 is U+30A2: the trail byte is a plain letter.
    EXPECT_EQ(L"\x30A2"
              L"A",
              Text(start + "\\'83AA}"));
}

TEST(RtfTextTest, DecodesEachEastAsianCodePage)
{
    EXPECT_EQ(L"\x4E2D\x6587", Text("{\\rtf1\\ansicpg936 \\'d6\\'d0\\'ce\\'c4}"));
    EXPECT_EQ(L"\xD55C\xAE00", Text("{\\rtf1\\ansicpg949 \\'c7\\'d1\\'b1\\'db}"));
    EXPECT_EQ(L"\x4E2D\x6587", Text("{\\rtf1\\ansicpg950 \\'a4\\'a4\\'a4\\'e5}"));
}

TEST(RtfTextTest, KeepsDoubleByteCharactersWholeInLongRuns)
{
    // Longer than what is gathered at once, and begun at an odd place.
    const std::wstring text = Text("{\\rtf1\\ansicpg932 \\'b1" + Repeat("\\'93\\'fa", 5000) + "}");
    ASSERT_EQ(5001u, text.size());
    EXPECT_EQ(L'\xFF71', text.front());
    EXPECT_EQ(std::wstring(5000, L'\x65E5'), text.substr(1));
}

TEST(RtfTextTest, DecodesInTheFontsCodePage)
{
    const std::string start =
        "{\\rtf1\\ansi\\ansicpg1252\\deff0{\\fonttbl{\\f0\\fcharset0 Arial;}"
        "{\\f1\\fcharset204 Arial Cyr;}{\\f2\\fcharset128 Gothic;}{\\f3\\fcharset1 Any;}"
        "{\\f4\\cpg1253 Greek;}{\\f5\\fcharset2 Symbol;}}";
    EXPECT_EQ(L"\x00E4\x0434\x65E5\x00E4", Text(start + "\\'e4\\f1\\'e4\\f2\\'93\\'fa\\f3\\'e4}"));
    EXPECT_EQ(L"\x03B4\x00B7", Text(start + "\\f4\\'e4\\f5\\'b7}"));
    // A group gives its font back; \plain goes to the default font; unknown fonts have no page.
    EXPECT_EQ(L"\x0434\x00E4", Text(start + "{\\f1\\'e4}\\'e4}"));
    EXPECT_EQ(L"\x0434\x00E4", Text(start + "\\f1\\'e4\\plain\\'e4}"));
    EXPECT_EQ(L"\x00E4", Text(start + "\\f99\\'e4}"));
    EXPECT_EQ(L"\x0434", Text(start + "\\f1\\f99999999\\'e4}")); // no font has this number
}

TEST(RtfTextTest, TakesFontTablesWithoutInnerGroups)
{
    EXPECT_EQ(L"\x0434\x00E4",
              Text("{\\rtf1\\ansi\\deff1{\\fonttbl\\f0\\fcharset204 A;\\f1\\fcharset0 B;}"
                   "\\f0\\'e4\\f1\\'e4}"));
}

TEST(RtfTextTest, KeepsHalfCharactersApartAtGroupsAndControls)
{
    // Each lead byte is cut off; whatever replaces it, the letters stay.
    const std::wstring text = Text("{\\rtf1\\ansicpg932 \\'93\\b a{\\'93}b}");
    EXPECT_EQ(L'a', text[1]);
    EXPECT_EQ(L'b', text.back());
    EXPECT_EQ(4u, text.size());
}

TEST(RtfTextTest, ShowsNothingForHexWithoutDigits)
{
    EXPECT_EQ(L"azz", Body("a\\'zz"));
    EXPECT_EQ(L"az", Body("a\\'4z"));
    EXPECT_EQ(L"ab", Body("a\\'00b"));
    EXPECT_EQ(L"a", Text("{\\rtf1 a\\'"));
    EXPECT_EQ(L"a", Text("{\\rtf1 a\\'4"));
}

// --- Unicode ----------------------------------------------------------------------------------

TEST(RtfTextTest, ShowsUnicodeAndSkipsItsFallback)
{
    EXPECT_EQ(L"\x20AC", Body("\\u8364?"));
    EXPECT_EQ(L"\x20AC"
              L"a",
              Body("\\u8364\\'80a"));
    EXPECT_EQ(L"\x20AC"
              L"a",
              Body("\\u8364 ?a")); // the blank ends the word, the next character is skipped
    EXPECT_EQ(L"\xFF71", Body("\\u-143?"));
    EXPECT_EQ(L"\xFF71", Body("\\u65393?")); // unsigned, as some generators write it
}

TEST(RtfTextTest, SkipsAsManyCharactersAsTheGroupSays)
{
    EXPECT_EQ(L"\x65E5"
              L"a",
              Body("\\uc2\\u26085\\'93\\'faa"));
    EXPECT_EQ(L"\x65E5?", Body("\\uc0\\u26085?"));
    EXPECT_EQ(L"\x65E5\x65E5"
              L"ab",
              Body("{\\uc3\\u26085xyz}\\u26085 xab")); // the count ends with its group
    EXPECT_EQ(L"\x65E5"
              L"a",
              Body("\\uc1\\u26085{}a")); // a group's border ends the fallback
    EXPECT_EQ(L"\x65E5", Body("\\uc-5\\u26085"));
}

TEST(RtfTextTest, CountsAControlAsOneCharacterOfTheFallback)
{
    EXPECT_EQ(L"\x65E5"
              L"a",
              Body("\\u26085\\tab a"));
    EXPECT_EQ(L"\x65E5"
              L"a",
              Body("\\u26085\\b a"));
    EXPECT_EQ(L"\x65E5"
              L"a",
              Body("\\u26085\\~a"));
    EXPECT_EQ(L"\x65E5"
              L"a",
              Body("\\u26085\\unknown a"));
    EXPECT_EQ(L"\x65E5"
              L"a",
              Body("\\u26085\\bin3 }}}a"));
    EXPECT_EQ(L"\x65E5"
              L"a",
              Body("\\uc2\\u26085\\u26085 xa")); // a \u inside a fallback is one too
}

TEST(RtfTextTest, JoinsSurrogatesWrittenOneByOne)
{
    std::wstring smile; // U+1F600 as UTF-16
    smile += static_cast<wchar_t>(0xD83D);
    smile += static_cast<wchar_t>(0xDE00);
    EXPECT_EQ(smile, Body("\\u-10179?\\u-8704?"));
}

TEST(RtfTextTest, IgnoresUnicodeNumbersOutOfRange)
{
    EXPECT_EQ(L"a", Body("\\u0?a"));
    EXPECT_EQ(L"a", Body("\\u65536?a"));
    EXPECT_EQ(L"a", Body("\\u-32769?a"));
    EXPECT_EQ(L"a", Body("\\u99999999999999999999999?a"));
    EXPECT_EQ(L"a", Body("\\u?a"));
}

TEST(RtfTextTest, ShowsTheUnicodeOneOfTwoTexts)
{
    EXPECT_EQ(L"a\x20AC"
              L"b",
              Body("a{\\upr{ansi}{\\*\\ud{\\u8364?}}}b"));
    EXPECT_EQ(L"ab", Body("a{\\*\\skipped{\\upr{ansi}{\\*\\ud{x}}}}b"));
    EXPECT_EQ(L"ab", Body("a{\\*\\ud x}b"));
}

// --- what is left out -------------------------------------------------------------------------

TEST(RtfTextTest, LeavesHiddenTextOut)
{
    EXPECT_EQ(L"ad", Body("a{\\v b\\par\\u8364?\\'e4}{\\v1 c}d"));
    EXPECT_EQ(L"ac", Body("a\\v b\\v0 c"));
    EXPECT_EQ(L"ac", Body("a\\v b\\plain c"));
    EXPECT_EQ(L"abc", Body("a{\\v {\\v0 b}}c"));
}

TEST(RtfTextTest, LeavesDestinationsWithoutBodyTextOut)
{
    for (const char* destination : {"stylesheet{\\s0 Normal;}",
                                    "colortbl;\\red0\\green0\\blue0;",
                                    "info{\\title t}{\\author a}",
                                    "pict\\pngblip 89504e47",
                                    "header h\\par",
                                    "footer f",
                                    "footnote n",
                                    "annotation c",
                                    "*\\generator x;",
                                    "*\\unknown x{y}z",
                                    "*\\listtable{\\list x}",
                                    "xe index",
                                    "tc contents",
                                    "object{\\*\\objclass Word}{\\*\\objdata 0105}",
                                    "*\\bkmkstart b",
                                    "fldinst HYPERLINK x",
                                    "filetbl{\\file x}",
                                    "themedata 00",
                                    "nonshppict x",
                                    "*\\shpinst{\\sp{\\sn a}}"})
        EXPECT_EQ(L"ab", Body("a{\\" + std::string(destination) + "}b")) << destination;
}

TEST(RtfTextTest, ShowsTheResultOfFieldsAndObjects)
{
    EXPECT_EQ(L"see here now",
              Body("see {\\field{\\*\\fldinst{HYPERLINK \"http://example.org\"}}"
                   "{\\fldrslt{\\ul here}}} now"));
    EXPECT_EQ(L"a[x]b", Body("a{\\object{\\*\\objdata 00}{\\result [x]}}b"));
    EXPECT_EQ(L"1.\tfirst\r\n",
              Body("{\\pntext\\f0 1.\\tab}{\\*\\pn\\pnlvlbody{\\pntxta .}}first\\par "));
}

TEST(RtfTextTest, SkipsAnUnknownDestinationOnlyWhenMarked)
{
    EXPECT_EQ(L"axb", Body("a{\\unknown x}b"));
    EXPECT_EQ(L"ab", Body("a{\\*\\unknown x}b"));
    EXPECT_EQ(L"axb", Body("a{\\*x}b")); // a mark without a word
    EXPECT_EQ(L"ac", Body("a{\\*\\htmltag64 <b>}c"));
}

TEST(RtfTextTest, SkipsBinaryRunsByTheirLength)
{
    EXPECT_EQ(L"ab", Body("a{\\pict\\bin5 }{\\}{}b"));
    EXPECT_EQ(L"ab", Body("a\\bin3 }}}b"));
    EXPECT_EQ(L"ab", Body("a\\bin0 b"));
    EXPECT_EQ(L"ab", Body("a\\bin-5 b"));
    EXPECT_EQ(L"a", Body("a\\bin999999999 b"));
    EXPECT_EQ(L"a", Body("a\\bin99999999999999999999999999 b"));
}

// --- damaged input ----------------------------------------------------------------------------

TEST(RtfTextTest, EndsAtASurplusBrace)
{
    EXPECT_EQ(L"a", Text("{\\rtf1 a}b"));
    EXPECT_EQ(L"a", Text("{\\rtf1 a}}}}b"));
}

TEST(RtfTextTest, TakesADocumentThatIsCutOff)
{
    EXPECT_EQ(L"abc", Text("{\\rtf1 a{\\b b{\\i c"));
    EXPECT_EQ(L"a", Text("{\\rtf1 a\\"));
    EXPECT_EQ(L"a\r\n", Text("{\\rtf1 a\\par"));
    EXPECT_EQ(L"a", Text("{\\rtf1 a\\u"));
    EXPECT_EQ(L"a", Text("{\\rtf1 a{\\*\\htmltag <b"));
}

TEST(RtfTextTest, GivesATextForEveryPrefixAndNeverMoreUnitsThanBytes)
{
    const std::string rtf =
        "{\\rtf1\\ansi\\ansicpg932\\fromhtml1 {\\fonttbl{\\f0\\fcharset128 G;}}{\\*\\htmltag64 <p>}"
        "\\htmlrtf {\\htmlrtf0 a\\'93\\'fa\\u8364?{\\v h}\\par\\\n{\\*\\htmltag <br>}"
        "{\\upr{x}{\\*\\ud y}}\\bin3 }}}\\htmlrtf }\\htmlrtf0 z}";
    std::size_t longest = 0;
    for (std::size_t size = 0; size <= rtf.size(); ++size)
    {
        const std::wstring text = Text(std::string_view(rtf).substr(0, size));
        EXPECT_LE(text.size(), size);
        longest = std::max(longest, text.size());
    }
    EXPECT_GT(longest, 5u);
}

TEST(RtfTextTest, CopesWithDepthAndMissingBraces)
{
    EXPECT_EQ(L"a", Text("{\\rtf1 " + Repeat("{", 100000) + "a" + Repeat("}", 100000) + "}"));
    EXPECT_EQ(L"a", Text("{\\rtf1 " + Repeat("{", 1000000) + "a"));
    EXPECT_EQ(L"ab",
              Text("{\\rtf1 a" + Repeat("{\\v h{\\v0\\f1 ", 100000) + Repeat("}}", 100000) + "b}"));
    EXPECT_EQ(L"", Text("{\\rtf1" + Repeat("}", 1000000)));
}

TEST(RtfTextTest, DropsZeroBytes)
{
    EXPECT_EQ(L"ab", Text(std::string_view("{\\rtf1 a\0b}", 12)));
}

TEST(RtfTextTest, PassesOnThatMemoryIsOut)
{
    const auto outOfMemory = [](unsigned, std::string_view, std::wstring&) {
        throw std::bad_alloc();
    };
    EXPECT_THROW(TextFromRtf("{\\rtf1 a{b \\'e4 c}}", 1252, outOfMemory), std::bad_alloc);
}

// --- RTF made from HTML -----------------------------------------------------------------------

TEST(RtfTextTest, ShowsTheRtfSideOfMailClients)
{
    // As mail clients write it: tags in groups, their rendering between \htmlrtf and \htmlrtf0.
    EXPECT_EQ(
        L"Dear Ann,\r\n\r\n\x00A0\r\n\r\nBye\r\n\r\n",
        Html("{\\*\\htmltag50 <body>}\r\n{\\*\\htmltag0 \\par }\r\n"
             "{\\*\\htmltag64 <p>}\\htmlrtf {\\htmlrtf0 Dear Ann,\r\n"
             "{\\*\\htmltag244 <o:p>}\r\n{\\*\\htmltag252 </o:p>}\\htmlrtf\\par}\\htmlrtf0\r\n"
             "\\htmlrtf \\par\r\n\\htmlrtf0\r\n{\\*\\htmltag72 </p>}\r\n{\\*\\htmltag0 \\par }\r\n"
             "{\\*\\htmltag64 <p>}\\htmlrtf {\\htmlrtf0\r\n"
             "{\\*\\htmltag84 &nbsp;}\\htmlrtf \\'a0\\htmlrtf0\\htmlrtf\\par}\\htmlrtf0\r\n"
             "\\htmlrtf \\par\r\n\\htmlrtf0\r\n{\\*\\htmltag72 </p>}\r\n"
             "{\\*\\htmltag64 <p>}\\htmlrtf {\\htmlrtf0 Bye\\htmlrtf\\par}\\htmlrtf0\r\n"
             "\\htmlrtf \\par\r\n\\htmlrtf0\r\n{\\*\\htmltag72 </p>}\r\n"
             "{\\*\\htmltag58 </body>}\r\n"));
}

TEST(RtfTextTest, DoesNotDoubleBreaksThatTheRtfSideGives)
{
    EXPECT_EQ(L"a\r\nb", Html("a{\\*\\htmltag116 <br>}\\htmlrtf \\line\r\n\\htmlrtf0 b"));
    EXPECT_EQ(L"a\r\nb",
              Html("{\\*\\htmltag96 <div>}a{\\*\\htmltag104 </div>}\\htmlrtf\\par\\htmlrtf0 "
                   "{\\*\\htmltag96 <div>}b{\\*\\htmltag104 </div>}"));
    EXPECT_EQ(L"a\tb",
              Html("a{\\*\\htmltag156 </td>}\\htmlrtf \\tab \\htmlrtf0 "
                   "{\\*\\htmltag148 <td>}{\\*\\htmltag96 <div>}b"));
}

TEST(RtfTextTest, BreaksLinesByTagsAloneWhereTheRtfSideDoesNot)
{
    EXPECT_EQ(L"a\r\nb", Html("a{\\*\\htmltag <br>}b"));
    EXPECT_EQ(L"a\r\n\r\nb", Html("a {\\*\\htmltag <br>} \r\n{\\*\\htmltag <br/>} b"));
    EXPECT_EQ(L"a\r\nb\r\nc",
              Html("{\\*\\htmltag <div>}a{\\*\\htmltag </div>}{\\*\\htmltag <div>}b"
                   "{\\*\\htmltag </div>}c"));
    EXPECT_EQ(L"a\r\n\r\nb", Html("{\\*\\htmltag <p>}a{\\*\\htmltag </p>}{\\*\\htmltag <p>}b"));
    EXPECT_EQ(L"T\r\n\r\na", Html("{\\*\\htmltag <h1>}T{\\*\\htmltag </h1>}a"));
    EXPECT_EQ(L"a\r\nb", Html("{\\*\\htmltag <ul>}{\\*\\htmltag <li>}a{\\*\\htmltag <li>}b"));
    EXPECT_EQ(L"a\r\nb", Html("a{\\*\\htmltag <hr>}b"));
    // An empty block with a line break is one blank line; a break at a block's end is none.
    EXPECT_EQ(L"a\r\n\r\nb", Html("a{\\*\\htmltag </div><div><br></div><div>}b"));
    EXPECT_EQ(L"a\r\nb", Html("a{\\*\\htmltag <br></div><div>}b"));
}

TEST(RtfTextTest, SetsCellsApartByTagsAlone)
{
    EXPECT_EQ(
        L"a\tb\r\nc\td",
        Html("{\\*\\htmltag <table>}{\\*\\htmltag <tr>}{\\*\\htmltag <td>}a{\\*\\htmltag </td>}"
             "{\\*\\htmltag <td>}b{\\*\\htmltag </td>}{\\*\\htmltag </tr>}{\\*\\htmltag <tr>}"
             "{\\*\\htmltag <td>}c{\\*\\htmltag </td>}{\\*\\htmltag <td>}d"));
}

TEST(RtfTextTest, PutsABlankWhereOnlyTheSourceHasOne)
{
    EXPECT_EQ(L"a b", Html("a{\\*\\htmltag4 \\par }b"));
    EXPECT_EQ(L"a b", Html("a {\\*\\htmltag4 \\par }b"));
    EXPECT_EQ(L"ab", Html("a{\\*\\htmltag <!-- x\\par -->}b"));
}

TEST(RtfTextTest, AddsNothingBeforeTheFirstAndAfterTheLastText)
{
    EXPECT_EQ(L"a",
              Html("{\\*\\htmltag <p>}{\\*\\htmltag <br>}a{\\*\\htmltag <br>}{\\*\\htmltag </p>}"));
}

TEST(RtfTextTest, LeavesTitleStyleAndScriptOut)
{
    EXPECT_EQ(L"a",
              Html("{\\*\\htmltag241 <title>}T\\par{\\*\\htmltag249 </title>}"
                   "{\\*\\htmltag <style>}s{\\*\\htmltag </style>}"
                   "{\\*\\htmltag <script>}x\\u8364?{\\*\\htmltag </script>}a"));
    EXPECT_EQ(L"a", Html("{\\*\\htmltag <title>}T{\\*\\htmltag </head>}{\\*\\htmltag <body>}a"));
}

TEST(RtfTextTest, GoesOnBehindABraceThatOnlyTheRtfSideCloses)
{
    EXPECT_EQ(L"a\r\nb",
              Html("{\\*\\htmltag87 <b>}a{\\*\\htmltag95 </b>}\\htmlrtf }\\htmlrtf0 "
                   "{\\*\\htmltag243 <br/>}b"));
}

TEST(RtfTextTest, IgnoresTagsInDocumentsNotMadeFromHtml)
{
    EXPECT_EQ(L"ab", Body("a{\\*\\htmltag <br>}b"));
    EXPECT_EQ(L"aTb", Body("a{\\*\\htmltag <title>}T{\\*\\htmltag </title>}b"));
    EXPECT_EQ(L"ab", Text("{\\rtf1\\ansi\\fromtext a{\\*\\htmltag <br>}b}"));
}

TEST(RtfTextTest, ReadsEscapedHtmlInTags)
{
    EXPECT_EQ(L"ab", Html("a{\\*\\htmltag <a title='\\{\\'3cbr\\'3e\\}'>}b"));
    EXPECT_EQ(L"a\r\nb", Html("a{\\*\\htmltag \\'3cbr>}b"));
}
