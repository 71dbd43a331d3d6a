#include "outlook/contacts/PictureFile.h"

#include <algorithm>

namespace
{
constexpr std::size_t kPrefixUnits = 3;
constexpr std::wstring_view kSeparators = L"\\/";

bool CannotStandInName(wchar_t unit) noexcept
{
    constexpr std::wstring_view kReserved = L"\\/:*?\"<>|";
    return unit < 0x20 || unit == 0x7F || kReserved.find(unit) != std::wstring_view::npos;
}

bool CanStandInName(std::wstring_view text) noexcept
{
    return std::none_of(text.begin(), text.end(), &CannotStandInName);
}

wchar_t ToUpper(wchar_t unit) noexcept
{
    return unit >= L'a' && unit <= L'z' ? static_cast<wchar_t>(unit - (L'a' - L'A')) : unit;
}

// Devices answer to their names in every folder, with any extension and blanks before it.
bool IsDevice(std::wstring_view name)
{
    std::wstring stem(name.substr(0, name.find(L'.')));
    stem.erase(stem.find_last_not_of(L' ') + 1);
    std::transform(stem.begin(), stem.end(), stem.begin(), &ToUpper);
    for (const std::wstring_view device : {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"})
        if (stem == device)
            return true;
    // A port has one digit, which may be a raised one.
    constexpr std::wstring_view kPortDigits = L"0123456789\u00b9\u00b2\u00b3";
    return stem.size() == 4 && (stem.starts_with(L"COM") || stem.starts_with(L"LPT")) &&
           kPortDigits.find(stem[3]) != std::wstring_view::npos;
}
} // namespace

std::wstring PicturePrefix(std::wstring_view attachmentName)
{
    const std::wstring_view prefix = attachmentName.substr(0, kPrefixUnits);
    return std::wstring(CanStandInName(prefix) ? prefix : L"pic");
}

std::wstring PictureExtension(std::wstring_view attachmentExtension)
{
    const bool usable = !attachmentExtension.empty() && CanStandInName(attachmentExtension);
    return std::wstring(usable ? attachmentExtension : L".jpg");
}

bool IsFileOfFolder(std::wstring_view folder, std::wstring_view path)
{
    if (folder.empty() || !path.starts_with(folder))
        return false;
    std::wstring_view name = path.substr(folder.size());
    if (kSeparators.find(folder.back()) == std::wstring_view::npos)
    {
        if (name.empty() || kSeparators.find(name.front()) == std::wstring_view::npos)
            return false;
        name.remove_prefix(1);
    }
    // The system takes dots and blanks off a name's end, so that nothing may be left.
    return name.find_last_not_of(L". ") != std::wstring_view::npos && CanStandInName(name) &&
           !IsDevice(name);
}
