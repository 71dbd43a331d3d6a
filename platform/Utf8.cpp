#include "platform/Utf8.h"

#include "platform/WindowsHeaders.h"

#include <limits>
#include <new>

namespace
{
// The system's calls count in int.
int CheckedLength(std::size_t length)
{
    if (length > static_cast<std::size_t>(std::numeric_limits<int>::max()))
        throw std::bad_alloc();
    return static_cast<int>(length);
}
} // namespace

std::wstring DecodeUtf8(std::string_view text)
{
    if (text.empty())
        return {};
    const int bytes = CheckedLength(text.size());
    // No byte makes more than one code unit.
    std::wstring wide(text.size(), L'\0');
    const int units = MultiByteToWideChar(CP_UTF8, 0, text.data(), bytes, wide.data(), bytes);
    wide.resize(static_cast<std::size_t>(units));
    return wide;
}

std::string EncodeUtf8(std::wstring_view text)
{
    if (text.empty())
        return {};
    const int units = CheckedLength(text.size());
    // No code unit makes more than three bytes.
    const int room = CheckedLength(text.size() * 3);
    std::string utf8(static_cast<std::size_t>(room), '\0');
    const int bytes =
        WideCharToMultiByte(CP_UTF8, 0, text.data(), units, utf8.data(), room, nullptr, nullptr);
    utf8.resize(static_cast<std::size_t>(bytes));
    return utf8;
}
