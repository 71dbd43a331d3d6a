// The pictures of contacts as files.
#pragma once

#include "client/core/Contact.h"

#include <filesystem>
#include <string>

namespace pim
{
// The full path of a picture that can be read, for the server, which has another current folder.
// Throws: Failure, where it cannot.
std::wstring ReadablePicture(const std::wstring& typed);

// A folder that takes copies. Files that are there already stay as they are.
class PictureFolder
{
  public:
    // Makes the folder where it is missing. Throws: Failure, where that fails.
    explicit PictureFolder(const std::wstring& path);

    // Copies the contact's picture, where it has one, under a name of its own, and lets the contact
    // name the copy. Throws: Failure, where the picture cannot be copied.
    void Save(Contact& contact) const;

  private:
    std::filesystem::path m_path;
};
} // namespace pim
