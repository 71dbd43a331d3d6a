#include "outlook/categories/RegistryCalls.h"

namespace
{
class SystemCalls final : public RegistryCalls
{
  public:
    LSTATUS
    OpenKey(HKEY parent, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) override
    {
        return RegOpenKeyExW(parent, path, options, access, key);
    }
    LSTATUS CreateKey(HKEY parent, const wchar_t* path, HKEY* key) override
    {
        return RegCreateKeyW(parent, path, key);
    }
    LSTATUS
    QueryValue(HKEY key, const wchar_t* name, DWORD* type, BYTE* bytes, DWORD* size) override
    {
        return RegQueryValueExW(key, name, nullptr, type, bytes, size);
    }
    LSTATUS
    SetValue(HKEY key, const wchar_t* name, DWORD type, const BYTE* bytes, DWORD size) override
    {
        return RegSetValueExW(key, name, 0, type, bytes, size);
    }
    void CloseKey(HKEY key) override { RegCloseKey(key); }
};

SystemCalls g_systemCalls;
} // namespace

RegistryCalls& SystemRegistry()
{
    return g_systemCalls;
}
