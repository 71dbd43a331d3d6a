// Registry readers. Keys are opened with KEY_READ; nothing is written, failures are silent.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string>
#include <vector>

// The text of a REG_SZ or REG_EXPAND_SZ value up to its first NUL, not expanded; empty on any
// failure and for other types. An empty value name is the key's default value.
std::wstring ReadRegistryString(HKEY root, const std::wstring& key, const std::wstring& value);

// True when the key opened. The output is cleared in every case and set only from a non-empty
// string value that fits the buffer size in bytes (at most 520).
bool ReadRegistryBuffer(HKEY root,
                        const std::wstring& key,
                        const std::wstring& value,
                        DWORD bufferBytes,
                        std::wstring& text);

// Appends the name of each subkey, in the order of the system's enumeration.
void EnumRegistrySubKeys(HKEY root, const std::wstring& key, std::vector<std::wstring>& names);

// Appends each non-empty string of a REG_MULTI_SZ value; an empty entry does not end the walk.
void ReadRegistryMultiString(HKEY root,
                             const std::wstring& key,
                             const std::wstring& value,
                             std::vector<std::wstring>& texts);

// True when the value, of any type, fits the buffer of that many bytes. False for a null or empty
// key or value text and a null buffer.
bool ReadRegistryBinary(
    HKEY root, const wchar_t* key, const wchar_t* value, void* buffer, DWORD bufferBytes);
