// The names of the temporary files that hold contact pictures. Portable; no file is touched.
//
// A name comes from a message that anyone may have sent, so none of it may lead out of the
// temporary folder. Characters that no file name can hold are the separators, the colon, the
// wildcards * ? " < >, the bar, and the control characters below 0x20 and 0x7F.
#pragma once

#include <string>
#include <string_view>

// The prefix of the file's name: the first three UTF-16 code units of the attachment's file name,
// fewer where that is shorter; "pic" where one of them cannot stand in a file name.
std::wstring PicturePrefix(std::wstring_view attachmentName);

// What is put behind the file's name: the attachment's extension as it is, with or without a dot;
// ".jpg" where it is empty or holds what no file name can.
std::wstring PictureExtension(std::wstring_view attachmentExtension);

// Whether the path is the folder's, a separator and the name of one file: no further folder, no
// stream of a file, no device (whatever its extension), not the folder itself or the one above.
bool IsFileOfFolder(std::wstring_view folder, std::wstring_view path);
