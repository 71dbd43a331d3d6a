#include "rtfconverter/RtfWords.h"

#include <algorithm>
#include <array>

namespace
{
// clang-format off
constexpr auto kWords = std::to_array<RtfWord>({
    {"aftncn", RtfAction::Skip, nullptr, 0},
    {"aftnsep", RtfAction::Skip, nullptr, 0},
    {"aftnsepc", RtfAction::Skip, nullptr, 0},
    {"annotation", RtfAction::Skip, nullptr, 0},
    {"ansi", RtfAction::CodePage, nullptr, 1252},
    {"ansicpg", RtfAction::AnsiCodePage, nullptr, 0},
    {"atnauthor", RtfAction::Skip, nullptr, 0},
    {"atnid", RtfAction::Skip, nullptr, 0},
    {"bin", RtfAction::Binary, nullptr, 0},
    {"bkmkend", RtfAction::Skip, nullptr, 0},
    {"bkmkstart", RtfAction::Skip, nullptr, 0},
    {"bullet", RtfAction::Emit, L"\x2022", 0},
    {"cell", RtfAction::Emit, L"\t", 0},
    {"colorschememapping", RtfAction::Skip, nullptr, 0},
    {"colortbl", RtfAction::Skip, nullptr, 0},
    {"cpg", RtfAction::FontCodePage, nullptr, 0},
    {"datastore", RtfAction::Skip, nullptr, 0},
    {"deff", RtfAction::DefaultFont, nullptr, 0},
    {"emdash", RtfAction::Emit, L"\x2014", 0},
    {"emspace", RtfAction::Emit, L"\x2003", 0},
    {"endash", RtfAction::Emit, L"\x2013", 0},
    {"enspace", RtfAction::Emit, L"\x2002", 0},
    {"f", RtfAction::Font, nullptr, 0},
    {"fcharset", RtfAction::FontCharset, nullptr, 0},
    {"filetbl", RtfAction::Skip, nullptr, 0},
    {"fldinst", RtfAction::Skip, nullptr, 0},
    {"fonttbl", RtfAction::FontTable, nullptr, 0},
    {"footer", RtfAction::Skip, nullptr, 0},
    {"footerf", RtfAction::Skip, nullptr, 0},
    {"footerl", RtfAction::Skip, nullptr, 0},
    {"footerr", RtfAction::Skip, nullptr, 0},
    {"footnote", RtfAction::Skip, nullptr, 0},
    {"fromhtml", RtfAction::FromHtml, nullptr, 0},
    {"ftncn", RtfAction::Skip, nullptr, 0},
    {"ftnsep", RtfAction::Skip, nullptr, 0},
    {"ftnsepc", RtfAction::Skip, nullptr, 0},
    {"generator", RtfAction::Skip, nullptr, 0},
    {"header", RtfAction::Skip, nullptr, 0},
    {"headerf", RtfAction::Skip, nullptr, 0},
    {"headerl", RtfAction::Skip, nullptr, 0},
    {"headerr", RtfAction::Skip, nullptr, 0},
    {"htmlrtf", RtfAction::HtmlRtf, nullptr, 0},
    {"htmltag", RtfAction::HtmlTag, nullptr, 0},
    {"info", RtfAction::Skip, nullptr, 0},
    {"latentstyles", RtfAction::Skip, nullptr, 0},
    {"ldblquote", RtfAction::Emit, L"\x201C", 0},
    {"line", RtfAction::Emit, L"\r\n", 0},
    {"listoverridetable", RtfAction::Skip, nullptr, 0},
    {"listtable", RtfAction::Skip, nullptr, 0},
    {"lquote", RtfAction::Emit, L"\x2018", 0},
    {"ltrmark", RtfAction::Emit, L"\x200E", 0},
    {"mac", RtfAction::CodePage, nullptr, 10000},
    {"nestcell", RtfAction::Emit, L"\t", 0},
    {"nestrow", RtfAction::Emit, L"\r\n", 0},
    {"nonesttables", RtfAction::Skip, nullptr, 0},
    {"nonshppict", RtfAction::Skip, nullptr, 0},
    {"objalias", RtfAction::Skip, nullptr, 0},
    {"objclass", RtfAction::Skip, nullptr, 0},
    {"objdata", RtfAction::Skip, nullptr, 0},
    {"objname", RtfAction::Skip, nullptr, 0},
    {"objsect", RtfAction::Skip, nullptr, 0},
    {"page", RtfAction::Emit, L"\r\n", 0},
    {"par", RtfAction::Emit, L"\r\n", 0},
    {"pc", RtfAction::CodePage, nullptr, 437},
    {"pca", RtfAction::CodePage, nullptr, 850},
    {"pict", RtfAction::Skip, nullptr, 0},
    {"plain", RtfAction::Plain, nullptr, 0},
    {"private", RtfAction::Skip, nullptr, 0},
    {"qmspace", RtfAction::Emit, L"\x2005", 0},
    {"rdblquote", RtfAction::Emit, L"\x201D", 0},
    {"revtbl", RtfAction::Skip, nullptr, 0},
    {"row", RtfAction::Emit, L"\r\n", 0},
    {"rquote", RtfAction::Emit, L"\x2019", 0},
    {"rsidtbl", RtfAction::Skip, nullptr, 0},
    {"rtlmark", RtfAction::Emit, L"\x200F", 0},
    {"sect", RtfAction::Emit, L"\r\n", 0},
    {"stylesheet", RtfAction::Skip, nullptr, 0},
    {"tab", RtfAction::Emit, L"\t", 0},
    {"tc", RtfAction::Skip, nullptr, 0},
    {"themedata", RtfAction::Skip, nullptr, 0},
    {"u", RtfAction::Unicode, nullptr, 0},
    {"uc", RtfAction::UnicodeCount, nullptr, 0},
    {"ud", RtfAction::UnicodePreferred, nullptr, 0},
    {"upr", RtfAction::UnicodeAlternative, nullptr, 0},
    {"v", RtfAction::Hidden, nullptr, 0},
    {"xe", RtfAction::Skip, nullptr, 0},
    {"xmlnstbl", RtfAction::Skip, nullptr, 0},
    {"zwj", RtfAction::Emit, L"\x200D", 0},
    {"zwnj", RtfAction::Emit, L"\x200C", 0},
});
// clang-format on

static_assert(std::ranges::is_sorted(kWords, {}, &RtfWord::word));

struct CharsetRow
{
    std::int64_t charset;
    unsigned codePage;
};

// The symbol set (2) stands here too: what is not in its own glyphs reads as Western text, its
// bullet above all.
constexpr auto kCharsets = std::to_array<CharsetRow>({
    {0, 1252},
    {2, 1252},
    {77, 10000},
    {128, 932},
    {129, 949},
    {130, 1361},
    {134, 936},
    {136, 950},
    {161, 1253},
    {162, 1254},
    {163, 1258},
    {177, 1255},
    {178, 1256},
    {186, 1257},
    {204, 1251},
    {222, 874},
    {238, 1250},
    {254, 437},
});

struct LeadByteRow
{
    unsigned codePage;
    std::uint8_t first;
    std::uint8_t last;
};

// Code page 54936 has characters of two such pairs.
constexpr auto kLeadBytes = std::to_array<LeadByteRow>({
    {932, 0x81, 0x9F},
    {932, 0xE0, 0xFC},
    {936, 0x81, 0xFE},
    {949, 0x81, 0xFE},
    {950, 0x81, 0xFE},
    {1361, 0x84, 0xD3},
    {1361, 0xD8, 0xDE},
    {1361, 0xE0, 0xF9},
    {54936, 0x81, 0xFE},
});
} // namespace

const RtfWord* FindRtfWord(std::string_view word)
{
    const auto row = std::ranges::lower_bound(kWords, word, {}, &RtfWord::word);
    return row != kWords.end() && row->word == word ? &*row : nullptr;
}

unsigned CodePageOfCharset(std::int64_t charset)
{
    const auto row = std::ranges::find(kCharsets, charset, &CharsetRow::charset);
    return row != kCharsets.end() ? row->codePage : 0;
}

bool IsLeadByte(unsigned codePage, char byte)
{
    const auto value = static_cast<std::uint8_t>(byte);
    return value >= 0x80 && std::ranges::any_of(kLeadBytes, [&](const LeadByteRow& row) {
               return row.codePage == codePage && row.first <= value && value <= row.last;
           });
}

bool HasLongCharacters(unsigned codePage)
{
    return codePage == 54936 || codePage == 65001;
}
