#include "endtoend/RegistryDump.h"

#include "platform/UniqueHandle.h"

#include <vector>

namespace
{
constexpr std::wstring_view kOtherWidth = L"Wow6432Node\\";
// The system's own keys, spelled differently from one system to the next.
constexpr std::wstring_view kSystemKeys[] = {L"AppID", L"CLSID", L"Interface", L"TypeLib"};

std::wstring NormalSpelling(const std::wstring& name)
{
    for (const std::wstring_view key : kSystemKeys)
        if (StrCmpIW(name.c_str(), key.data()) == 0)
            return std::wstring(key);
    return name;
}

void DumpKey(HKEY parent,
             const std::wstring& name,
             const std::wstring& path,
             std::set<std::wstring>& lines)
{
    UniqueRegistryKey key;
    if (RegOpenKeyExW(parent, name.c_str(), 0, KEY_READ | KEY_WOW64_64KEY, key.Put()) != 0)
        return;
    if (!path.empty())
        lines.insert(path);

    wchar_t valueName[16384];
    std::vector<wchar_t> data(32768);
    for (DWORD index = 0;; ++index)
    {
        DWORD nameLength = static_cast<DWORD>(std::size(valueName));
        DWORD bytes = static_cast<DWORD>((data.size() - 1) * sizeof(wchar_t));
        DWORD type = 0;
        const LSTATUS status = RegEnumValueW(key.Get(),
                                             index,
                                             valueName,
                                             &nameLength,
                                             nullptr,
                                             &type,
                                             reinterpret_cast<BYTE*>(data.data()),
                                             &bytes);
        if (status == ERROR_NO_MORE_ITEMS)
            break;
        data[bytes / sizeof(wchar_t)] = L'\0';
        const std::wstring text =
            type == REG_SZ ? data.data() : L"(type " + std::to_wstring(type) + L")";
        lines.insert(path + L" | " + valueName + L" | " + text);
    }
    for (DWORD index = 0;; ++index)
    {
        DWORD nameLength = static_cast<DWORD>(std::size(valueName));
        if (RegEnumKeyExW(
                key.Get(), index, valueName, &nameLength, nullptr, nullptr, nullptr, nullptr) != 0)
            break;
        const std::wstring child = valueName;
        std::wstring below = path.empty() ? NormalSpelling(child) : path + L'\\' + child;
        if (below.starts_with(kOtherWidth))
            below = NormalSpelling(child);
        DumpKey(key.Get(), child, below, lines);
    }
}
} // namespace

std::set<std::wstring> DumpClasses()
{
    std::set<std::wstring> lines;
    DumpKey(HKEY_LOCAL_MACHINE, L"Software\\Classes", L"", lines);
    lines.merge(DumpUserClasses());
    return lines;
}

std::set<std::wstring> DumpUserClasses()
{
    std::set<std::wstring> lines;
    DumpKey(HKEY_CURRENT_USER, L"Software\\Classes", L"", lines);
    return lines;
}
