// The vocabulary of the RTF reader (RTF 1.9.1): what each control word does to the plain text, and
// how text in a font is coded. Words that are not listed show nothing and change nothing.
#pragma once

#include <cstdint>
#include <string_view>

enum class RtfAction : std::uint8_t
{
    AnsiCodePage,       // \ansicpgN: the document's code page
    Binary,             // \binN: N bytes follow that are no RTF
    CodePage,           // \ansi, \mac, ...: the document's code page where \ansicpgN names none
    DefaultFont,        // \deffN
    Emit,               // shows its text
    Font,               // \fN
    FontCharset,        // \fcharsetN, in the font table
    FontCodePage,       // \cpgN, in the font table
    FontTable,          // begins the font table
    FromHtml,           // \fromhtml1: the document was made from HTML
    Hidden,             // \v, \v0
    HtmlRtf,            // \htmlrtf, \htmlrtf0: what only the RTF side of such a document needs
    HtmlTag,            // begins a destination with HTML
    Plain,              // \plain: the default font, not hidden
    Skip,               // begins a destination without body text
    Unicode,            // \uN
    UnicodeAlternative, // \upr: two texts to choose from
    UnicodeCount,       // \ucN
    UnicodePreferred,   // \ud: the second of them
};

struct RtfWord
{
    std::string_view word;
    RtfAction action;
    const wchar_t* text; // for Emit
    unsigned codePage;   // for CodePage
};

// The row of a control word, in the letters as written; null for one that is not listed.
const RtfWord* FindRtfWord(std::string_view word);

// The code page of a Windows character set; 0 for the default one and for unknown ones, whose texts
// are in the document's code page.
unsigned CodePageOfCharset(std::int64_t charset);

// True for a byte that needs another one to make a character. False throughout for code pages whose
// characters are single bytes.
bool IsLeadByte(unsigned codePage, char byte);

// True for the code pages where a character may need more than two bytes.
bool HasLongCharacters(unsigned codePage);
