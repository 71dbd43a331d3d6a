#include "outlook/store/RichEditHelper.h"

#include "platform/Bstr.h"
#include "service/Log.h"
#include "service/PathHelpers.h"

#include <algorithm>
#include <limits>

namespace
{
constexpr wchar_t kLibraryName[] = L"RTFConverterExX64.dll";
constexpr DWORD kPathSize = 0x104;

// The text up to its first zero as bytes of the ANSI code page; empty where that fails.
std::string AnsiText(const std::wstring& text)
{
    const std::size_t length = std::min(text.find(L'\0'), text.size());
    if (length == 0 || length > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        return {};
    const int units = static_cast<int>(length);
    const int size = WideCharToMultiByte(
        CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), units, nullptr, 0, nullptr, nullptr);
    if (size <= 0)
        return {};
    std::string bytes(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(
        CP_ACP, WC_NO_BEST_FIT_CHARS, text.data(), units, bytes.data(), size, nullptr, nullptr);
    return bytes;
}
} // namespace

CRichEditHelper::~CRichEditHelper()
{
    Uninit();
}

void CRichEditHelper::Init()
{
    wchar_t directory[kPathSize] = {};
    std::wstring path;
    // Without the folder's name nothing is loaded: a bare name would be looked for elsewhere.
    if (GetModuleDirectory(directory, kPathSize))
    {
        path = directory;
        if (!path.ends_with(L'\\'))
            path += L'\\';
        path += kLibraryName;
    }
    InitFrom(path);
}

void CRichEditHelper::InitFrom(const std::wstring& path)
{
    LogPrintf(L"CRichEditHelper::Init");
    End();
    if (!path.empty())
        m_library.Reset(LoadLibraryW(path.c_str()));
    if (!m_library)
    {
        LogPrintf(L" ::LoadLibrary(%s) Failed, LastError=%d", path.c_str(), GetLastError());
        return;
    }
    m_create = Find<RtfConverterCreate>(kRtfConverterCreateName);
    m_convert = Find<RtfConverterConvert>(kRtfConverterConvertName);
    m_destroy = Find<RtfConverterDestroy>(kRtfConverterDestroyName);
    if (m_create && m_convert && m_destroy)
        m_hMgt = m_create();
    // Also tells of an export that is missing.
    if (!m_hMgt)
        LogPrintf(L"m_hMgt == NULL");
}

bool CRichEditHelper::Convert(const std::wstring& rtf, std::wstring& text)
{
    LogPrintf(L"CRichEditHelper::Convert");
    if (!m_hMgt)
        return false;
    const std::string bytes = AnsiText(rtf);
    if (const Bstr plain = Bstr::Adopt(m_convert(m_hMgt, bytes.c_str())))
        text = TextOf(plain.Get());
    return !text.empty();
}

void CRichEditHelper::Uninit()
{
    LogPrintf(L"CRichEditHelper::Uninit");
    End();
}

void CRichEditHelper::End() noexcept
{
    if (m_hMgt)
        m_destroy(m_hMgt);
    m_hMgt = nullptr;
    m_library.Reset();
    m_create = nullptr;
    m_convert = nullptr;
    m_destroy = nullptr;
}
