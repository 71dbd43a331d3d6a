// File names for the pictures of contacts. Portable.
#pragma once

#include "client/core/Contact.h"

#include <string>

namespace pim
{
// A file name on every Windows file system, made of the contact's name and the extension of its
// picture: characters that no name can hold become underscores, names of devices get one in front,
// long names are cut. From the second on, the number tells pictures of the same name apart.
std::wstring PictureFileName(const Contact& contact, unsigned number);
} // namespace pim
