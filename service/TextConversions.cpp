#include "service/TextConversions.h"

#include "platform/Utf8.h"

#include <new>

namespace
{
// The buffer of the short conversions, its terminator included: bytes or code units.
constexpr std::size_t kShortLength = 260;

template <typename Text> Text UpToNul(const Text& text)
{
    return text.substr(0, text.find(typename Text::value_type{}));
}

template <typename Text> Text IfShort(Text text)
{
    return text.size() < kShortLength ? text : Text();
}
} // namespace

bool Utf8ToWide(const char* text, std::wstring& wide)
{
    if (!text)
        return false;
    try
    {
        wide = DecodeUtf8(text);
    }
    catch (const std::bad_alloc&)
    {
        // The contract: no memory leaves the output as it was and is no failure.
    }
    return true;
}

bool WideToUtf8(const wchar_t* text, std::string& utf8)
{
    if (!text)
        return false;
    try
    {
        utf8 = EncodeUtf8(text);
    }
    catch (const std::bad_alloc&)
    {
        // As in Utf8ToWide.
    }
    return true;
}

std::wstring WideFromUtf8(std::string_view text)
{
    return DecodeUtf8(text);
}

std::string Utf8FromWide(std::wstring_view text)
{
    return EncodeUtf8(text);
}

std::wstring Utf8ToWideShort(const std::string& text)
{
    return IfShort(DecodeUtf8(UpToNul(text)));
}

std::string WideToUtf8Short(const std::wstring& text)
{
    return IfShort(EncodeUtf8(UpToNul(text)));
}

void TrimToCString(std::string& text)
{
    text = UpToNul(text);
}

void TrimToCString(std::wstring& text)
{
    text = UpToNul(text);
}
