// The memory of the temporary files that were made for contact pictures. A client may hold a path
// for long after it read the contact, so that no file is removed before it is a day old.
//
// The journal is a file of the user's, %LOCALAPPDATA%\PimStoreBridge\pictures.txt: one path per
// line, in UTF-16. Only files of the user's temporary folder are ever removed; where that has
// moved, lines of the old one are forgotten. Several processes may use it. Failures are silent: a
// file then stays, as any program's may.
#pragma once

#include "platform/WindowsHeaders.h"

#include <cstdint>
#include <string>
#include <vector>

// Throws std::bad_alloc, like what follows.
void RememberPictureFiles(const std::vector<std::wstring>& paths);

// Removes the remembered files that are older than a day, and forgets those that are gone.
void RemoveOldPictureFiles();

// The same for a journal and a moment of the caller's choice.
class PictureJournal
{
  public:
    static constexpr std::uint64_t kKeptUnits = 24ull * 3600 * 10'000'000; // of 100 ns

    // The journal's path, and the folder out of which files may be removed.
    PictureJournal(std::wstring path, std::wstring folder);

    // Creates the journal and its folder where they do not exist.
    void Remember(const std::vector<std::wstring>& paths) const;

    // What was last written at least kKeptUnits before that time goes.
    void RemoveOld(FILETIME utcNow) const;

  private:
    bool IsDone(const std::wstring& path, FILETIME utcNow) const;

    std::wstring m_path;
    std::wstring m_folder;
};
