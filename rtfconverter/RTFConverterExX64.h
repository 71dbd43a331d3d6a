// The interface of RTFConverterExX64.dll: RTF to plain text. Callers bind the three exports, by
// exactly these names, at run time; the names' spelling is fixed.
#pragma once

#include "platform/WindowsHeaders.h"

// Names one converter. No pointer: it is looked up, never followed, so that any value may be
// passed.
using RtfConverterHandle = void*;

// Makes a converter. Null when memory is out.
// Ownership: the caller ends it with RTFConverter_Destory.
// Thread:    any, as with the other two; calls may run at the same time.
using RtfConverterCreate = RtfConverterHandle (*)();

// The text of an RTF document, given as NUL-terminated bytes that are read as the system's ANSI
// code page where the document names no other. What is shown stands in rtfconverter/RtfText.h.
// Ownership: the caller frees the result with SysFreeString.
// Returns:   the text, which may be empty; null for a handle that names no converter, for text that
//            is null or no RTF, and when memory is out.
using RtfConverterConvert = BSTR (*)(RtfConverterHandle converter, const char* rtf);

// Ends a converter. A handle that names none, or no longer, does nothing.
using RtfConverterDestroy = void (*)(RtfConverterHandle converter);

inline constexpr char kRtfConverterCreateName[] = "RTFConverter_Create";
inline constexpr char kRtfConverterConvertName[] = "RTFConverter_Convert";
inline constexpr char kRtfConverterDestroyName[] = "RTFConverter_Destory";
