// What the installer changes: registry keys below one root, folders and files. An interface, so
// that tests can let any single change fail.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string>
#include <vector>

struct RegistryValue
{
    DWORD type = REG_NONE;
    std::vector<BYTE> bytes;

    bool operator==(const RegistryValue&) const = default;
};

// REG_SZ of one text, REG_MULTI_SZ of several.
RegistryValue TextValue(const std::wstring& text);
RegistryValue ListValue(const std::vector<std::wstring>& texts);
// The text of a string value up to its first NUL; empty for other types.
std::wstring TextOfValue(const RegistryValue& value);
std::vector<std::wstring> ListOfValue(const RegistryValue& value);

// Results are the system's error codes. An empty value name is a key's default value.
class InstallTarget
{
  public:
    virtual ~InstallTarget() = default;

    // ERROR_FILE_NOT_FOUND where the key or the value is missing.
    virtual LSTATUS ReadValue(const std::wstring& key,
                              const std::wstring& name,
                              RegistryValue& value) const = 0;
    virtual bool KeyExists(const std::wstring& key) const = 0;
    virtual bool FolderExists(const std::wstring& path) const = 0;
    // ERROR_FILE_NOT_FOUND or ERROR_PATH_NOT_FOUND where there is none.
    virtual LSTATUS ReadWholeFile(const std::wstring& path, std::vector<BYTE>& bytes) const = 0;

    // With all keys above it; no error where it is there.
    virtual LSTATUS CreateKey(const std::wstring& key) = 0;
    // Makes the value or replaces it; the key must be there.
    virtual LSTATUS WriteValue(const std::wstring& key,
                               const std::wstring& name,
                               const RegistryValue& value) = 0;
    // ERROR_FILE_NOT_FOUND where it is missing.
    virtual LSTATUS DeleteValue(const std::wstring& key, const std::wstring& name) = 0;
    // ERROR_DIR_NOT_EMPTY, and the key stays, where it holds values or keys.
    virtual LSTATUS DeleteEmptyKey(const std::wstring& key) = 0;
    virtual LSTATUS CreateFolder(const std::wstring& path) = 0;
    // ERROR_DIR_NOT_EMPTY, and the folder stays, where something is in it.
    virtual LSTATUS RemoveEmptyFolder(const std::wstring& path) = 0;
    // ERROR_FILE_EXISTS where there is one. A file that could not be written whole is not there.
    virtual LSTATUS WriteNewFile(const std::wstring& path, const std::vector<BYTE>& bytes) = 0;
    virtual LSTATUS RemoveFile(const std::wstring& path) = 0;
};

// The real one. The root is HKEY_LOCAL_MACHINE, or any open key that stands in for it; it is not
// owned.
class SystemInstallTarget : public InstallTarget
{
  public:
    explicit SystemInstallTarget(HKEY root) : m_root(root) {}

    LSTATUS ReadValue(const std::wstring& key,
                      const std::wstring& name,
                      RegistryValue& value) const override;
    bool KeyExists(const std::wstring& key) const override;
    bool FolderExists(const std::wstring& path) const override;
    LSTATUS ReadWholeFile(const std::wstring& path, std::vector<BYTE>& bytes) const override;
    LSTATUS CreateKey(const std::wstring& key) override;
    LSTATUS WriteValue(const std::wstring& key,
                       const std::wstring& name,
                       const RegistryValue& value) override;
    LSTATUS DeleteValue(const std::wstring& key, const std::wstring& name) override;
    LSTATUS DeleteEmptyKey(const std::wstring& key) override;
    LSTATUS CreateFolder(const std::wstring& path) override;
    LSTATUS RemoveEmptyFolder(const std::wstring& path) override;
    LSTATUS WriteNewFile(const std::wstring& path, const std::vector<BYTE>& bytes) override;
    LSTATUS RemoveFile(const std::wstring& path) override;

  private:
    HKEY m_root;
};
