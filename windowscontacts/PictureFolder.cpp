#include "windowscontacts/PictureFolder.h"

#include "platform/WindowsHeaders.h"
#include "service/PathHelpers.h"

namespace
{
constexpr wchar_t kFolderName[] = L"ContactImg";
constexpr int kParents[] = {CSIDL_PERSONAL, CSIDL_MYPICTURES};

int g_pictures = 0; // made by this process

// With its trailing backslash; empty where the user has none.
std::wstring ParentFolder()
{
    for (const int parent : kParents)
    {
        wchar_t path[MAX_PATH] = {};
        if (!SHGetSpecialFolderPathW(nullptr, path, parent, FALSE) || !*path)
            continue;
        std::wstring folder = path;
        if (!folder.ends_with(L'\\'))
            folder += L'\\';
        return folder;
    }
    return {};
}

void Hide(const std::wstring& folder)
{
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_HIDDEN))
        SetFileAttributesW(folder.c_str(), attributes | FILE_ATTRIBUTE_HIDDEN);
}
} // namespace

std::wstring NewContactPicturePath()
{
    std::wstring folder = ParentFolder();
    if (folder.empty())
        return {};
    folder += kFolderName;
    CreateDirectoryPath(folder, false);
    Hide(folder);
    // A signed number, as in the names of the pictures that are there already.
    return folder + L"\\Con" + std::to_wstring(static_cast<int>(GetTickCount())) + L"_" +
           std::to_wstring(g_pictures++) + L".jpg";
}
