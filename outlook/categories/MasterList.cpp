#include "outlook/categories/MasterList.h"

#include "platform/ScopeExit.h"

#include <algorithm>

namespace
{
constexpr wchar_t kKey[] = L"Software\\Microsoft\\Office\\11.0\\Outlook\\Categories";
constexpr wchar_t kValue[] = L"MasterList";
// How often a value that grows under the reader is asked for.
constexpr int kMostReadings = 16;
// Far beyond any list of people.
constexpr DWORD kMostBytes = 16u << 20;

static_assert((KEY_READ | KEY_WRITE) == 0x2001F);
} // namespace

std::wstring MasterList::Read()
{
    std::wstring text;
    m_isUnread = true; // stays so where memory runs out
    const LSTATUS result = ReadValue(text);
    m_isUnread = result != ERROR_SUCCESS && result != ERROR_FILE_NOT_FOUND;
    if (result != ERROR_SUCCESS)
        return {};
    return text.substr(0, text.find(L'\0'));
}

// Without a key or a value ERROR_FILE_NOT_FOUND.
LSTATUS MasterList::ReadValue(std::wstring& text)
{
    HKEY key = nullptr;
    LSTATUS result = m_calls.OpenKey(HKEY_CURRENT_USER, kKey, 0, KEY_READ, &key);
    if (result != ERROR_SUCCESS)
        return result;
    const ScopeExit close([&] { m_calls.CloseKey(key); });
    DWORD bytes = 0;
    result = m_calls.QueryValue(key, kValue, nullptr, nullptr, &bytes);
    if (result != ERROR_SUCCESS)
        return result;
    for (int readings = 0; readings < kMostReadings; ++readings)
    {
        if (bytes > kMostBytes)
            return ERROR_FILE_TOO_LARGE;
        text.assign(bytes / sizeof(wchar_t) + 1, L'\0'); // an odd byte at the end counts for none
        result =
            m_calls.QueryValue(key, kValue, nullptr, reinterpret_cast<BYTE*>(text.data()), &bytes);
        if (result == ERROR_SUCCESS)
            text.resize(std::min<std::size_t>(bytes / sizeof(wchar_t), text.size()));
        // Where it grew meanwhile, the call told the new size.
        if (result != ERROR_MORE_DATA)
            break;
    }
    return result;
}

void MasterList::Write(const std::wstring& text)
{
    HKEY key = nullptr;
    if (!OpenForWriting(key))
        return;
    const ScopeExit close([&] { m_calls.CloseKey(key); });
    m_calls.SetValue(key,
                     kValue,
                     REG_BINARY,
                     reinterpret_cast<const BYTE*>(text.c_str()),
                     static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
}

bool MasterList::OpenForWriting(HKEY& key)
{
    if (m_calls.OpenKey(HKEY_CURRENT_USER, kKey, 0, KEY_READ | KEY_WRITE, &key) == ERROR_SUCCESS)
    {
        if (!m_isUnread)
            return true;
        m_calls.CloseKey(key);
        return false;
    }
    return m_calls.CreateKey(HKEY_CURRENT_USER, kValue, &key) == ERROR_SUCCESS;
}
