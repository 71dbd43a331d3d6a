// The steps of moving a picture that all stores share, with their limits.
#pragma once

#include "platform/UniqueHandle.h"
#include "platform/WindowsHeaders.h"

#include <cstdint>
#include <string>

inline constexpr std::uint64_t kLongestPictureBytes = 64u << 20;

// Opens the file of a picture for reading. The path is a client's: what is no file on a disk, such
// as a pipe or a device, could keep the server waiting for bytes, and counts as none.
//   sharing: what others may do with the file meanwhile (FILE_SHARE_...).
// Returns: null where there is no such file.
UniqueFile OpenPictureFile(const std::wstring& path, DWORD sharing);

// Copies from where the one stream stands to where the other does, until a read gives nothing or
// fails, or a write fails or falls short.
// Limits:  kLongestPictureBytes and kMostStreamReads; what is longer is cut there.
// Returns: the number of bytes that were taken.
ULONG CopyPicture(IStream& from, IStream& to);
