// A registry of two keys in memory, for tests of the 2003 category list: it writes down each call
// with its arguments, can let any of them fail, and knows which keys are open.
#pragma once

#include "outlook/categories/RegistryCalls.h"
#include "service/TextConversions.h"
#include "tests/outlook/categories/CategoryRegistry.h"

#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

class RecordedRegistry final : public RegistryCalls
{
  public:
    // Keys below the current user's by their path, each with the one value that the list uses.
    std::map<std::wstring, std::optional<RegistryBytes>> keys;
    // Failures by the number of the call, from 1 on. Closing does not count.
    std::map<int, LSTATUS> failures;
    // Runs before a call is answered. May be empty.
    std::function<void(int call)> before;
    // Changes what a query that did its work tells. May be empty.
    std::function<void(int call, DWORD& size, LSTATUS& result)> spoilQuery;

    // One line a call, as "open HKCU\A 0 20019 -> key 1"; what failed ends in "-> error 5".
    const std::vector<std::string>& Lines() const { return m_lines; }
    void ClearLines()
    {
        m_lines.clear();
        m_calls = 0;
    }
    int Calls() const { return m_calls; }
    std::size_t OpenKeys() const { return m_open.size(); }

    void SetText(const std::wstring& key, const std::wstring& text)
    {
        const auto* const first = reinterpret_cast<const BYTE*>(text.c_str());
        keys[key] = RegistryBytes{REG_SZ, {first, first + (text.size() + 1) * sizeof(wchar_t)}};
    }

    LSTATUS
    OpenKey(HKEY parent, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) override
    {
        char numbers[40];
        std::snprintf(numbers, sizeof numbers, " %lu %lX", options, access);
        const LSTATUS failure = Begin("open " + Path(parent, path) + numbers);
        if (failure != ERROR_SUCCESS)
            return failure;
        return keys.contains(path) ? Opened(path, key) : Failed(ERROR_FILE_NOT_FOUND);
    }
    LSTATUS CreateKey(HKEY parent, const wchar_t* path, HKEY* key) override
    {
        const LSTATUS failure = Begin("create " + Path(parent, path));
        if (failure != ERROR_SUCCESS)
            return failure;
        keys.try_emplace(path);
        return Opened(path, key);
    }
    LSTATUS
    QueryValue(HKEY key, const wchar_t* name, DWORD* type, BYTE* bytes, DWORD* size) override
    {
        const std::string room = bytes ? std::to_string(*size) + " bytes" : "the size";
        const LSTATUS failure = Begin("query " + ValueOf(key, name) + " " + room);
        if (failure != ERROR_SUCCESS)
            return failure;
        const auto& value = keys[m_open[key]];
        if (!value)
            return Failed(ERROR_FILE_NOT_FOUND);
        if (type)
            *type = value->type;
        const auto needed = static_cast<DWORD>(value->bytes.size());
        const bool fits = bytes && *size >= needed;
        *size = needed;
        if (fits)
            std::memcpy(bytes, value->bytes.data(), needed);
        LSTATUS result = bytes && !fits ? ERROR_MORE_DATA : ERROR_SUCCESS;
        if (spoilQuery)
            spoilQuery(m_calls, *size, result);
        m_lines.back() += " -> " + std::to_string(*size);
        return result == ERROR_SUCCESS ? result : Failed(result);
    }
    LSTATUS
    SetValue(HKEY key, const wchar_t* name, DWORD type, const BYTE* bytes, DWORD size) override
    {
        const LSTATUS failure = Begin("set " + ValueOf(key, name) + " type " +
                                      std::to_string(type) + " " + std::to_string(size) + " bytes");
        if (failure == ERROR_SUCCESS)
            keys[m_open[key]] = RegistryBytes{type, {bytes, bytes + size}};
        return failure;
    }
    void CloseKey(HKEY key) override
    {
        m_lines.push_back("close " + KeyName(key));
        if (m_open.erase(key) == 0)
            m_lines.back() += ", which is not open";
    }

  private:
    static std::string Path(HKEY parent, const wchar_t* path)
    {
        return (parent == HKEY_CURRENT_USER ? "HKCU\\" : "(another key)\\") + Utf8FromWide(path);
    }
    static std::string KeyName(HKEY key)
    {
        return "key " + std::to_string(reinterpret_cast<std::uintptr_t>(key));
    }
    std::string ValueOf(HKEY key, const wchar_t* name) const
    {
        return KeyName(key) + (m_open.contains(key) ? " " : " (not open) ") + Utf8FromWide(name);
    }

    LSTATUS Begin(const std::string& line)
    {
        const int call = ++m_calls;
        m_lines.push_back(line);
        if (before)
            before(call);
        const auto failure = failures.find(call);
        return failure == failures.end() ? ERROR_SUCCESS : Failed(failure->second);
    }
    LSTATUS Failed(LSTATUS error)
    {
        m_lines.back() += " -> error " + std::to_string(error);
        return error;
    }
    LSTATUS Opened(const std::wstring& path, HKEY* key)
    {
        *key = reinterpret_cast<HKEY>(static_cast<std::uintptr_t>(++m_opened));
        m_open[*key] = path;
        m_lines.back() += " -> " + KeyName(*key);
        return ERROR_SUCCESS;
    }

    std::vector<std::string> m_lines;
    std::map<HKEY, std::wstring> m_open; // paths
    int m_calls = 0;
    int m_opened = 0; // so far; also the number of the last key
};
