#include "client/PictureFiles.h"

#include "client/Failure.h"
#include "client/InputFile.h"
#include "client/core/CommandLine.h"
#include "client/core/PictureName.h"
#include "client/core/Unicode.h"

namespace pim
{
namespace
{
constexpr unsigned kMostOfOneName = 10000;

std::wstring ErrorText(DWORD error)
{
    return L" (error " + std::to_wstring(error) + L").";
}

// Empty when the system cannot tell; such a path then fails where it is used.
std::filesystem::path AbsolutePath(const std::wstring& typed)
{
    std::error_code ignored;
    return std::filesystem::absolute(typed, ignored);
}
} // namespace

std::wstring ReadablePicture(const std::wstring& typed)
{
    std::wstring path = AbsolutePath(typed).wstring();
    if (!OpenForReading(path))
        throw Failure{kExitFailed,
                      L"The picture \"" + OneLine(typed) + L"\" cannot be read" +
                          ErrorText(GetLastError())};
    return path;
}

PictureFolder::PictureFolder(const std::wstring& path) : m_path(AbsolutePath(path))
{
    std::error_code error;
    std::filesystem::create_directories(m_path, error);
    if (!std::filesystem::is_directory(m_path, error))
        throw Failure{kExitFailed,
                      L"The folder \"" + OneLine(path) + L"\" for the pictures cannot be made."};
}

void PictureFolder::Save(Contact& contact) const
{
    if (!contact.picture || contact.picture->empty())
        return;
    for (unsigned number = 1; number <= kMostOfOneName; ++number)
    {
        const std::wstring copy = (m_path / PictureFileName(contact, number)).wstring();
        if (CopyFileW(contact.picture->c_str(), copy.c_str(), TRUE))
        {
            contact.picture = copy;
            return;
        }
        const DWORD error = GetLastError();
        if (error != ERROR_FILE_EXISTS && error != ERROR_ALREADY_EXISTS)
            throw Failure{kExitFailed,
                          L"The picture of \"" + OneLine(NameOf(contact)) +
                              L"\" cannot be saved as \"" + OneLine(copy) + L"\"" +
                              ErrorText(error)};
    }
    throw Failure{kExitFailed, L"The folder for the pictures has too many files of one name."};
}
} // namespace pim
