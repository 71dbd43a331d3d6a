// What an installed Outlook leaves in the registry, as long as the object lives: its entry among
// the mail clients, and the installer's record of where its MAPI library lies.
#pragma once

#include "support/ScopedRegistryValue.h"

#include <cstdint>
#include <cstring>
#include <deque>
#include <iterator>
#include <string>
#include <vector>

inline constexpr wchar_t kOutlookKey[] = L"Software\\Clients\\Mail\\Microsoft Outlook";

// The strings as a value of the registry holds them, but for the last terminator.
inline std::wstring MultiString(const std::vector<std::wstring>& texts)
{
    std::wstring joined;
    for (const std::wstring& text : texts)
        joined += text + L'\0';
    return joined;
}

// A component of a product that the installer knows, published under a qualifier.
class PublishedComponent
{
  public:
    PublishedComponent(const std::wstring& component,
                       const std::wstring& qualifier,
                       const std::wstring& path)
    {
        constexpr wchar_t kProduct[] = L"{90110409-6000-11D3-8CFE-0150048383C9}";
        const std::wstring squashed = Squashed(component);
        const std::wstring product = Squashed(kProduct);
        const std::wstring user =
            L"Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData\\S-1-5-18\\";
        const std::wstring properties = user + L"Products\\" + product + L"\\InstallProperties";
        Add(HKEY_CLASSES_ROOT, L"Installer\\Components\\" + squashed, qualifier)
            .Set(MultiString({Base85(kProduct) + L"Feat>" + Base85(component)}), REG_MULTI_SZ);
        Add(HKEY_LOCAL_MACHINE, user + L"Components\\" + squashed, product).Set(path);
        // A number, so that the text that the scoped value takes is replaced at once.
        Add(HKEY_LOCAL_MACHINE, properties, L"WindowsInstaller").Set(L"");
        const DWORD one = 1;
        RegSetKeyValueW(HKEY_LOCAL_MACHINE,
                        properties.c_str(),
                        L"WindowsInstaller",
                        REG_DWORD,
                        &one,
                        sizeof one);
        Add(HKEY_LOCAL_MACHINE, user + L"Products\\" + product + L"\\Features", L"Feat").Set(L"");
        Add(HKEY_CLASSES_ROOT, L"Installer\\Products\\" + product, L"ProductName").Set(L"Mail");
        Add(HKEY_CLASSES_ROOT, L"Installer\\Features\\" + product, L"Feat").Set(L"");
    }
    ~PublishedComponent()
    {
        while (!m_values.empty())
            m_values.pop_back();
    }
    PublishedComponent(const PublishedComponent&) = delete;
    PublishedComponent& operator=(const PublishedComponent&) = delete;

  private:
    ScopedRegistryValue& Add(HKEY root, const std::wstring& key, const std::wstring& name)
    {
        return m_values.emplace_back(root, key, name);
    }

    // 32 digits: the first three groups backwards, of the other bytes the two digits swapped.
    static std::wstring Squashed(const std::wstring& text)
    {
        std::wstring digits;
        for (const wchar_t c : text)
            if (iswxdigit(c))
                digits += c;
        std::wstring result;
        for (const auto& [start, size] : {std::pair{0u, 8u}, {8u, 4u}, {12u, 4u}})
            result += std::wstring(digits.rend() - start - size, digits.rend() - start);
        for (std::size_t i = 16; i < 32; i += 2)
            result += {digits[i + 1], digits[i]};
        return result;
    }

    // 20 characters: each of four numbers of 32 bits by five digits to the base 85, the lowest
    // first.
    static std::wstring Base85(const std::wstring& text)
    {
        constexpr wchar_t kDigits[] = L"!$%&'()*+,-.0123456789=?@ABCDEFGHIJKLMNOPQRSTUVWXYZ[]^_`"
                                      L"abcdefghijklmnopqrstuvwxyz{}~";
        static_assert(std::size(kDigits) == 85 + 1);
        GUID guid = {};
        CLSIDFromString(text.c_str(), &guid);
        std::uint32_t words[4];
        std::memcpy(words, &guid, sizeof words);
        std::wstring result;
        for (std::uint32_t word : words)
            for (int i = 0; i < 5; ++i, word /= 85)
                result += kDigits[word % 85];
        return result;
    }

    std::deque<ScopedRegistryValue> m_values;
};

// An Outlook whose MAPI library is the one at that path. The application's key tells its version.
class OutlookInstallation
{
  public:
    explicit OutlookInstallation(
        const std::wstring& library,
        const std::wstring& application = L"Microsoft\\Office\\14.0\\Outlook")
        : m_published(kMapiComponent, application, library)
    {
        m_component.Set(kMapiComponent);
        m_application.Set(MultiString({application}), REG_MULTI_SZ);
        m_office.Remove();
    }

  private:
    static constexpr wchar_t kMapiComponent[] = L"{FF1D0740-D227-11D1-A4B0-006008AF820E}";

    PublishedComponent m_published;
    ScopedRegistryValue m_component{HKEY_LOCAL_MACHINE, kOutlookKey, L"MSIComponentID"};
    ScopedRegistryValue m_application{HKEY_LOCAL_MACHINE, kOutlookKey, L"MSIApplicationLCID"};
    ScopedRegistryValue m_office{HKEY_LOCAL_MACHINE, kOutlookKey, L"MSIOfficeLCID"};
};
