// Paths and folders.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string>

// Splits a path, cut at 260 characters, scanning from its end: the first "." seen gives the
// extension with the dot; the first backslash ends the scan. The directory keeps that backslash;
// the file name includes its extension. Without a backslash the whole path is the file name and
// the directory is empty. Each output may be null.
void SplitPath(const std::wstring& path,
               std::wstring* directory,
               std::wstring* fileName,
               std::wstring* extension);

// The executable's folder, with its trailing backslash; size in wide characters. False when the
// path cannot be had or does not fit.
bool GetModuleDirectory(wchar_t* buffer, DWORD size);

// The executable's folder, through SplitPath; a backslash is added if missing.
std::wstring GetExecutableDirectory();

// Creates the parents first, then the path. False if the path exists already as a directory or
// cannot be made. withSecurity: each folder is made by CreateOpenDirectory.
bool CreateDirectoryPath(const std::wstring& path, bool withSecurity);

// Creates one folder that is open to all (null DACL). False where the system refuses.
bool CreateOpenDirectory(const std::wstring& path);
