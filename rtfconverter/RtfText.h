// Plain text out of Rich Text Format (RTF 1.9.1). Pure and linear in its input: one pass, no
// recursion, and a stack of groups that grows only where a group changes what holds outside of it.
//
// Shown: paragraphs, lines, rows and pages as CR LF; tabs and cells as TAB; \'xx in the font's code
// page, else the document's; \uN with its fallback skipped; the result of fields and objects; list
// numbers as written. Left out: hidden text (\v), every destination that holds no body text, and
// unknown destinations marked \*.
//
// RTF made from HTML (\fromhtml1, [MS-OXRTFEX]) gives the text of its RTF side, what stands between
// \htmlrtf and \htmlrtf0 included; where that side lays nothing out, the tags in the \htmltag
// groups do (ShownText.h). The text of title, style and script is left out.
//
// Damaged input never fails: a surplus closing brace ends the document (but not one that only the
// RTF side of HTML has), missing ones do not matter, lengths of binary runs end at the end of the
// input.
#pragma once

#include <string>
#include <string_view>

// Appends the text of bytes in a Windows code page to *text, as UTF-16 code units, at most one unit
// per byte. What cannot be decoded is replaced, not dropped; an unknown code page is read as some
// known one. It may throw std::bad_alloc.
using CodePageDecoder = void (*)(unsigned codePage, std::string_view bytes, std::wstring& text);

// True for text that begins as RTF does.
bool IsRtf(std::string_view rtf) noexcept;

// The text of an RTF document, in at most one UTF-16 code unit per input byte; empty for what is no
// RTF.
//   defaultCodePage: for documents that name none.
// Memory: two bytes per input byte for the text on Windows, and at most as much again for what is
// gathered on the way.
// Throws std::bad_alloc.
std::wstring TextFromRtf(std::string_view rtf, unsigned defaultCodePage, CodePageDecoder decode);
