// What a message says of its picture never leads out of the temporary folder: the parts of a file
// name that are taken from it hold no separator, and a path that passes for a file of the folder is
// the folder, one separator and one plain name. Plain names of letters do pass.
#include "FuzzInput.h"
#include "Require.h"

#include "outlook/contacts/PictureFile.h"
#include "service/TextConversions.h"

#include <string>

namespace
{
constexpr std::wstring_view kNotInNames = L"\\/:*?\"<>|";

bool IsPlain(std::wstring_view text)
{
    for (const wchar_t unit : text)
        if (unit < 0x20 || unit == 0x7F || kNotInNames.find(unit) != std::wstring_view::npos)
            return false;
    return true;
}

void CheckParts(const std::wstring& text)
{
    const std::wstring prefix = PicturePrefix(text);
    Require(prefix.size() <= 3 && IsPlain(prefix));
    Require(prefix == text.substr(0, 3) || prefix == L"pic");
    const std::wstring extension = PictureExtension(text);
    Require(!extension.empty() && IsPlain(extension));
    Require(extension == text || extension == L".jpg");
}

void CheckPath(const std::wstring& folder, const std::wstring& path)
{
    if (!IsFileOfFolder(folder, path))
        return;
    Require(path.starts_with(folder));
    std::wstring name = path.substr(folder.size());
    if (folder.back() != L'\\' && folder.back() != L'/')
    {
        Require(name.front() == L'\\' || name.front() == L'/');
        name.erase(0, 1);
    }
    Require(IsPlain(name) && name != L"." && name != L"..");
    Require(name != L"NUL" && name != L"con.jpg" && name != L"COM1");
}

void CheckPlainName(const std::wstring& folder, const std::wstring& text)
{
    std::wstring name = L"picture";
    for (const wchar_t unit : text)
        if ((unit >= L'a' && unit <= L'z') || unit >= 0x80)
            name += unit;
    Require(IsFileOfFolder(folder, folder + L'\\' + name));
    Require(!IsFileOfFolder(folder, folder + L'\\' + name + L'\\' + name));
    Require(!IsFileOfFolder(folder, folder + name));
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const std::wstring folder = WideFromUtf8(input.TakeText(input.Take<std::uint8_t>() % 8));
    const std::wstring text = WideFromUtf8(input.TakeRest());
    CheckParts(text);
    CheckPath(folder, text);
    CheckPath(folder, folder + text);
    CheckPath(L"C:\\Temp", L"C:\\Temp\\" + text);
    CheckPlainName(L"C:\\Temp", text);
    return 0;
}
