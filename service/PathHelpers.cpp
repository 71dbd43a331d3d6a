#include "service/PathHelpers.h"

#include <string_view>

namespace
{
constexpr std::size_t kPathLimit = 260;

void Assign(std::wstring* output, std::wstring_view text)
{
    if (output)
        *output = text;
}

bool IsDirectory(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY);
}

bool CreateOne(const std::wstring& path, bool withSecurity)
{
    return withSecurity ? CreateOpenDirectory(path) : CreateDirectoryW(path.c_str(), nullptr);
}
} // namespace

void SplitPath(const std::wstring& path,
               std::wstring* directory,
               std::wstring* fileName,
               std::wstring* extension)
{
    // A copy, since an output may be the path itself.
    const std::wstring copy = path.substr(0, kPathLimit);
    const std::wstring_view whole = copy;
    const std::size_t slash = whole.rfind(L'\\');
    const std::size_t nameStart = slash == std::wstring_view::npos ? 0 : slash + 1;
    const std::wstring_view name = whole.substr(nameStart);
    const std::size_t dot = name.rfind(L'.');
    Assign(directory, whole.substr(0, nameStart));
    Assign(fileName, name);
    Assign(extension, dot == std::wstring_view::npos ? std::wstring_view() : name.substr(dot));
}

bool GetModuleDirectory(wchar_t* buffer, DWORD size)
{
    if (!buffer || size == 0)
        return false;
    const DWORD length = GetModuleFileNameW(nullptr, buffer, size);
    // A length of the whole buffer means that the path was cut.
    const std::size_t slash =
        length < size ? std::wstring_view(buffer, length).rfind(L'\\') : std::wstring_view::npos;
    if (slash == std::wstring_view::npos)
    {
        buffer[0] = L'\0';
        return false;
    }
    buffer[slash + 1] = L'\0';
    return true;
}

std::wstring GetExecutableDirectory()
{
    wchar_t path[kPathLimit + 1] = {};
    GetModuleFileNameW(nullptr, path, kPathLimit + 1);
    path[kPathLimit] = L'\0';
    std::wstring directory;
    SplitPath(path, &directory, nullptr, nullptr);
    if (!directory.ends_with(L'\\'))
        directory += L'\\';
    return directory;
}

bool CreateDirectoryPath(const std::wstring& path, bool withSecurity)
{
    const std::size_t last = path.find_last_not_of(L'\\');
    if (last == std::wstring::npos)
        return false;
    const std::wstring wanted = path.substr(0, last + 1);
    if (IsDirectory(wanted))
        return false;
    // From the top down. A parent that cannot be made, a drive or a share among them, shows in the
    // result of the whole path.
    for (std::size_t slash = wanted.find(L'\\'); slash != std::wstring::npos;
         slash = wanted.find(L'\\', slash + 1))
    {
        const std::wstring parent = wanted.substr(0, slash);
        if (!parent.empty() && !IsDirectory(parent))
            CreateOne(parent, withSecurity);
    }
    return CreateOne(wanted, withSecurity);
}

bool CreateOpenDirectory(const std::wstring& path)
{
    SECURITY_DESCRIPTOR descriptor{};
    if (!InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION) ||
        !SetSecurityDescriptorDacl(&descriptor, TRUE, nullptr, FALSE) ||
        !SetSecurityDescriptorGroup(&descriptor, nullptr, FALSE) ||
        !SetSecurityDescriptorSacl(&descriptor, FALSE, nullptr, FALSE))
        return false;
    SECURITY_ATTRIBUTES attributes{sizeof(attributes), &descriptor, TRUE};
    return CreateDirectoryW(path.c_str(), &attributes);
}
