#include "client/core/PictureName.h"

#include "client/core/LetterCase.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace pim
{
namespace
{
constexpr std::size_t kMaxNameLength = 80;
constexpr std::size_t kMaxExtensionLength = 5;
constexpr std::wstring_view kForbidden = L"<>:\"/\\|?*";
constexpr const wchar_t* kDevices[] = {L"CON", L"PRN", L"AUX", L"NUL", L"CONIN$", L"CONOUT$"};
constexpr const wchar_t* kNumberedDevices[] = {L"COM", L"LPT"};
// Of a numbered device: raised digits name it too.
constexpr std::wstring_view kDeviceDigits = L"0123456789\u00b9\u00b2\u00b3";

bool IsForbidden(wchar_t letter)
{
    return letter < 0x20 || kForbidden.find(letter) != std::wstring_view::npos;
}

bool IsLetterOrDigit(wchar_t letter)
{
    const wchar_t folded = FoldCase(letter);
    return (folded >= L'a' && folded <= L'z') || (letter >= L'0' && letter <= L'9');
}

// The system takes a device's name for the device whatever stands behind its first dot, and with
// blanks before that.
bool IsDevice(const std::wstring& name)
{
    std::wstring stem = name.substr(0, name.find(L'.'));
    stem.erase(stem.find_last_not_of(L' ') + 1);
    const bool isNumbered =
        stem.size() == 4 && kDeviceDigits.find(stem[3]) != std::wstring_view::npos;
    const auto isStem = [&](const wchar_t* device) {
        return IsSameIgnoringCase(isNumbered ? stem.substr(0, 3) : stem, device);
    };
    return isNumbered
               ? std::any_of(std::begin(kNumberedDevices), std::end(kNumberedDevices), isStem)
               : std::any_of(std::begin(kDevices), std::end(kDevices), isStem);
}

std::wstring StemOf(const Contact& contact)
{
    std::wstring stem = NameOf(contact).substr(0, kMaxNameLength);
    // Not the first half of a surrogate pair alone.
    if (!stem.empty() && stem.back() >= 0xD800 && stem.back() <= 0xDBFF)
        stem.pop_back();
    std::replace_if(stem.begin(), stem.end(), IsForbidden, L'_');
    // The system drops dots and blanks at the end.
    while (!stem.empty() && (stem.back() == L'.' || stem.back() == L' '))
        stem.pop_back();
    if (stem.empty())
        return L"contact";
    return IsDevice(stem) ? L'_' + stem : stem;
}

std::wstring ExtensionOf(const std::wstring& path)
{
    const std::size_t dot = path.rfind(L'.');
    const std::wstring extension = dot != std::wstring::npos ? path.substr(dot + 1) : L"";
    const bool isPlain = !extension.empty() && extension.size() <= kMaxExtensionLength &&
                         std::all_of(extension.begin(), extension.end(), IsLetterOrDigit);
    return isPlain ? L'.' + extension : L".jpg";
}
} // namespace

std::wstring PictureFileName(const Contact& contact, unsigned number)
{
    const std::wstring suffix = number > 1 ? L" (" + std::to_wstring(number) + L")" : L"";
    return StemOf(contact) + suffix + ExtensionOf(contact.picture.value_or(L""));
}
} // namespace pim
