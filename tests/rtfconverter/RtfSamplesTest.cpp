// Whole documents: our own with their exact text, and real RTF bodies beside the plain body of the
// same item, as other programs wrote it.
#include "rtfconverter/RtfText.h"

#include "platform/CodePages.h"
#include "platform/Utf8.h"
#include "support/SharedData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <regex>

namespace
{
// Samples whose plain body does not belong to their RTF, each with how that shows.
enum class Odd
{
    BodyHasMoreBefore, // a notice that a library put there
    BodyIsEmpty,
    BodyIsMisread, // Japanese text in the Western code page
};

const std::map<std::string, Odd> kOdd = {
    {"item_aspose-cpp_outputAttachments_out", Odd::BodyHasMoreBefore},
    {"item_aspose-java_Message", Odd::BodyHasMoreBefore},
    {"item_aspose-java_SetEmailHeaders_out", Odd::BodyHasMoreBefore},
    {"item_aspose-net_outputAttachments", Odd::BodyIsEmpty},
    {"item_hiraoka-msg_nonUnicodeCP932", Odd::BodyIsMisread},
};

// Samples whose plain body is broken into lines at about 72 characters.
constexpr std::array kWrapped = {"item_aspose-net_Meeting_with_Recurring_Occurrences",
                                 "item_aspose-net_failed",
                                 "item_msg_parser_other"};

// What both sides say in their own way: links and pictures, which a plain body spells out, rules,
// bullets and fixed blanks.
std::string WithoutDialect(std::string text)
{
    text = std::regex_replace(text, std::regex("\xC2\xA0"), " ");
    text = std::regex_replace(text, std::regex("\xC2\xB7"), "*");
    text = std::regex_replace(text, std::regex(" <(https?|mailto):[^>]*> ?"), "");
    text = std::regex_replace(text, std::regex("<(https?|mailto):[^>]*>"), "");
    text = std::regex_replace(text, std::regex("\\[cid:[^\\]]*\\]"), "");
    return std::regex_replace(text, std::regex("_{8,}"), "");
}

// Every visible character.
std::string Characters(std::string text)
{
    std::erase_if(text, [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; });
    text = WithoutDialect(text);
    std::erase(text, ' ');
    return text;
}

// The lines that show something, with blanks made alike.
std::vector<std::string> Lines(const std::string& text)
{
    std::string even = std::regex_replace(WithoutDialect(text), std::regex("[ \t]+"), " ");
    even = std::regex_replace(even, std::regex(" ?\r?\n ?"), "\n");
    std::vector<std::string> lines;
    for (std::size_t at = 0; at < even.size();)
    {
        const std::size_t end = std::min(even.find('\n', at), even.size());
        std::string line = even.substr(at, end - at);
        if (at == 0 && line.starts_with(' '))
            line.erase(0, 1);
        if (!line.empty() && line != " ")
            lines.push_back(line.ends_with(' ') ? line.substr(0, line.size() - 1) : line);
        at = end + 1;
    }
    return lines;
}

std::string TextOf(const std::string& rtf)
{
    return EncodeUtf8(TextFromRtf(rtf, 1252, AppendFromCodePage));
}
} // namespace

TEST(RtfSamplesTest, GiveTheExactTextOfOurOwnDocuments)
{
    const auto documents = FilesIn(TestData() / "rtf", ".rtf");
    EXPECT_EQ(5u, documents.size());
    for (const auto& path : documents)
    {
        auto expected = path;
        expected.replace_extension(".expected.txt");
        EXPECT_EQ(ReadSample(expected), TextOf(ReadSample(path))) << path;
    }
}

TEST(RtfSamplesTest, ShowWhatThePlainBodySays)
{
    for (const auto& path : SharedSamples("rtf", ".rtf"))
    {
        const std::string name = path.stem().string();
        auto bodyPath = path;
        bodyPath.replace_extension(".body.txt");
        if (!std::filesystem::exists(bodyPath))
            continue;
        const std::string text = TextOf(ReadSample(path));
        const std::string body = ReadSample(bodyPath);
        const auto odd = kOdd.find(name);
        if (odd == kOdd.end())
        {
            EXPECT_EQ(Characters(body), Characters(text)) << name;
            if (std::ranges::find(kWrapped, name) == kWrapped.end())
            {
                EXPECT_EQ(Lines(body), Lines(text)) << name;
            }
            continue;
        }
        switch (odd->second)
        {
        case Odd::BodyHasMoreBefore:
            EXPECT_TRUE(Characters(body).ends_with(Characters(text))) << name;
            EXPECT_LT(Characters(text).size(), Characters(body).size()) << name;
            break;
        case Odd::BodyIsEmpty:
            EXPECT_EQ("", body) << name;
            EXPECT_NE("", text) << name;
            break;
        case Odd::BodyIsMisread:
            EXPECT_EQ(EncodeUtf8(L"\x65E5\x672C\x8A9E Non Unicode \x672C\x6587\r\n"), text) << name;
            break;
        }
    }
}

TEST(RtfSamplesTest, GiveAReadableTextWithoutMarkup)
{
    for (const auto& path : SharedSamples("rtf", ".rtf"))
    {
        const std::string rtf = ReadSample(path);
        const std::string text = TextOf(rtf);
        for (const char* markup : {"\\par", "\\htmlrtf", "htmltag", "<div", "</p>", "{\\", "\\'"})
            EXPECT_EQ(std::string::npos, text.find(markup)) << path << ' ' << markup;
        EXPECT_EQ(std::string::npos, text.find("\xEF\xBF\xBD")) << path; // nothing was undecodable
    }
}
