// Moves the picture of a contact between an attachment of its message and a file.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string>

// Copies an attachment into a new file of the user's temporary folder. Its name takes prefix and
// extension from those of the attachment, see PictureFile.h. Both the file and the empty one that
// reserves its name are remembered, see PictureJournal.h.
// Limits:  kLongestPictureBytes and kMostStreamReads; a longer attachment is cut there.
// Returns: the path, also where the copy broke off; empty where there is no file.
// Throws std::bad_alloc.
std::wstring SavePictureFile(IMessage& message,
                             ULONG attachmentNumber,
                             const wchar_t* fileName,
                             const wchar_t* extension);

// Fills an open attachment from a file, marks it as a contact's picture and saves it. Nothing for
// an empty path or a null attachment; where the file or the attachment's data cannot be opened,
// or the path leads to a pipe or a device, nothing is set or saved.
// Limits:  kLongestPictureBytes; a longer file is cut there.
// Throws std::bad_alloc.
void CreatePicture(const std::wstring& path, IAttach* attachment);
