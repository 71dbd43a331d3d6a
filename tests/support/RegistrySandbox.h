// Lets this process see an empty, writable key in the place of a predefined one.
//
// Everything in the process that reads the predefined key meanwhile reads the sandbox, so it is
// kept for the few calls under test. At the end the real key is back and the sandbox is gone.
#pragma once

#include "platform/UniqueHandle.h"

#include <stdexcept>
#include <string>
#include <vector>

class RegistrySandbox
{
  public:
    // For example HKEY_LOCAL_MACHINE. Throws std::runtime_error.
    explicit RegistrySandbox(HKEY predefined) : m_predefined(predefined)
    {
        RegDeleteTreeW(HKEY_CURRENT_USER, Path().c_str());
        if (RegCreateKeyExW(HKEY_CURRENT_USER,
                            Path().c_str(),
                            0,
                            nullptr,
                            0,
                            KEY_ALL_ACCESS,
                            nullptr,
                            m_root.Put(),
                            nullptr) != ERROR_SUCCESS ||
            RegOverridePredefKey(m_predefined, m_root.Get()) != ERROR_SUCCESS)
            throw std::runtime_error("no registry sandbox");
    }
    ~RegistrySandbox()
    {
        RegOverridePredefKey(m_predefined, nullptr);
        m_root.Reset();
        RegDeleteTreeW(HKEY_CURRENT_USER, Path().c_str());
    }
    RegistrySandbox(const RegistrySandbox&) = delete;
    RegistrySandbox& operator=(const RegistrySandbox&) = delete;

    HKEY Root() const noexcept { return m_root.Get(); }

    // Creates the key with its parents.
    void AddKey(const std::wstring& key) { Create(key); }

    // Stores the bytes as they are, so that a test can leave a terminator out.
    void SetValue(const std::wstring& key,
                  const std::wstring& value,
                  DWORD type,
                  const void* bytes,
                  std::size_t size)
    {
        // The system takes a terminator along that it sees behind the bytes.
        const auto* const first = static_cast<const BYTE*>(bytes);
        std::vector<BYTE> copy(first, first + size);
        copy.insert(copy.end(), sizeof(wchar_t), 0xFF);
        if (RegSetValueExW(
                Create(key).Get(), value.c_str(), 0, type, copy.data(), static_cast<DWORD>(size)) !=
            ERROR_SUCCESS)
            throw std::runtime_error("a value of the registry sandbox cannot be set");
    }
    // A text with its terminator.
    void SetText(const std::wstring& key,
                 const std::wstring& value,
                 const std::wstring& text,
                 DWORD type = REG_SZ)
    {
        SetValue(key, value, type, text.c_str(), (text.size() + 1) * sizeof(wchar_t));
    }

  private:
    static std::wstring Path()
    {
        return L"Software\\PimStoreBridge.Tests\\" + std::to_wstring(GetCurrentProcessId());
    }
    UniqueRegistryKey Create(const std::wstring& key)
    {
        UniqueRegistryKey created;
        if (RegCreateKeyExW(m_root.Get(),
                            key.c_str(),
                            0,
                            nullptr,
                            0,
                            KEY_ALL_ACCESS,
                            nullptr,
                            created.Put(),
                            nullptr) != ERROR_SUCCESS)
            throw std::runtime_error("a key of the registry sandbox cannot be made");
        return created;
    }

    HKEY m_predefined;
    UniqueRegistryKey m_root;
};
