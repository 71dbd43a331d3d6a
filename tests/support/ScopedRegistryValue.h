// Sets or removes one registry value as long as the object lives and puts back what was there
// before, the keys that it had to make included.
#pragma once

#include "platform/UniqueHandle.h"
#include "platform/WindowsHeaders.h"

#include <string>
#include <vector>

class ScopedRegistryValue
{
  public:
    // The present value of that name, untouched so far. An empty name is the key's default value.
    ScopedRegistryValue(HKEY root, std::wstring key, std::wstring name)
        : m_root(root), m_key(std::move(key)), m_name(std::move(name))
    {
        m_existingKey = ExistingPart();
        DWORD size = 0;
        if (RegGetValueW(
                m_root, m_key.c_str(), m_name.c_str(), kAsStored, &m_type, nullptr, &size) ==
            ERROR_SUCCESS)
        {
            m_data.resize(size);
            m_existed = RegGetValueW(m_root,
                                     m_key.c_str(),
                                     m_name.c_str(),
                                     kAsStored,
                                     nullptr,
                                     m_data.data(),
                                     &size) == ERROR_SUCCESS;
        }
    }
    ~ScopedRegistryValue()
    {
        if (m_existed)
            RegSetKeyValueW(m_root,
                            m_key.c_str(),
                            m_name.c_str(),
                            m_type,
                            m_data.data(),
                            static_cast<DWORD>(m_data.size()));
        else
            Remove();
        // Keys that were made for the value end with it, unless something else came into them.
        for (std::wstring key = m_key; key.size() > m_existingKey.size();)
        {
            RegDeleteKeyW(m_root, key.c_str());
            const std::size_t parent = key.rfind(L'\\');
            key.resize(parent == std::wstring::npos ? 0 : parent);
        }
    }
    ScopedRegistryValue(const ScopedRegistryValue&) = delete;
    ScopedRegistryValue& operator=(const ScopedRegistryValue&) = delete;

    void Set(const std::wstring& text, DWORD type = REG_SZ)
    {
        RegSetKeyValueW(m_root,
                        m_key.c_str(),
                        m_name.c_str(),
                        type,
                        text.c_str(),
                        static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    }
    void Remove() { RegDeleteKeyValueW(m_root, m_key.c_str(), m_name.c_str()); }

  private:
    static constexpr DWORD kAsStored = RRF_RT_ANY | RRF_NOEXPAND;

    // The longest part of the key's path that exists.
    std::wstring ExistingPart() const
    {
        std::wstring part = m_key;
        while (!part.empty())
        {
            UniqueRegistryKey key;
            if (RegOpenKeyExW(m_root, part.c_str(), 0, KEY_READ, key.Put()) == ERROR_SUCCESS)
                break;
            const std::size_t parent = part.rfind(L'\\');
            part.resize(parent == std::wstring::npos ? 0 : parent);
        }
        return part;
    }

    HKEY m_root;
    std::wstring m_key;
    std::wstring m_name;
    std::wstring m_existingKey;
    std::vector<BYTE> m_data;
    DWORD m_type = REG_NONE;
    bool m_existed = false;
};
