// Turns RTF into plain text through RTFConverterExX64.dll, which is loaded from the executable's
// folder at run time. Where that cannot be had nothing is converted, and the caller goes on.
#pragma once

#include "platform/UniqueHandle.h"
#include "rtfconverter/RTFConverterExX64.h"

#include <string>

class CRichEditHelper
{
  public:
    CRichEditHelper() = default;
    // Uninit, which the log tells in every case.
    ~CRichEditHelper();
    CRichEditHelper(const CRichEditHelper&) = delete;
    CRichEditHelper& operator=(const CRichEditHelper&) = delete;

    // Loads the library from the executable's folder and makes a converter, in place of one that
    // there was. What goes wrong goes to the log.
    void Init();
    // The same with the library at that path; nothing is loaded for an empty one.
    void InitFrom(const std::wstring& path);

    // Converts RTF text, up to its first zero, in the system's ANSI code page: characters that it
    // lacks become its default character. The output keeps its text where the converter gives none.
    // Returns: whether the output is non-empty; false without a converter.
    bool Convert(const std::wstring& rtf, std::wstring& text);

    // Ends the converter and frees the library.
    void Uninit();

  private:
    template <typename Function> Function Find(const char* name) const noexcept
    {
        return reinterpret_cast<Function>(
            reinterpret_cast<void*>(GetProcAddress(m_library.Get(), name)));
    }
    void End() noexcept;

    RtfConverterCreate m_create = nullptr;
    RtfConverterConvert m_convert = nullptr;
    RtfConverterDestroy m_destroy = nullptr;
    RtfConverterHandle m_hMgt = nullptr;
    UniqueModule m_library;
};
