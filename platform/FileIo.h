// Whole files in and out. Paths are in the platform's form; natively they are encoded as UTF-8.
#pragma once

#include <string>
#include <string_view>

// The bytes of a file that others may hold open. False, and *bytes unchanged, where it does not
// open (a folder and a device do not, whatever their names), cannot be read, is larger than 1 GiB
// or does not fit the memory.
bool ReadWholeFile(const std::wstring& path, std::string& bytes);

// Makes the bytes the file's content. They are lines of text: see the last step.
//
//   1. The file is opened for writing without changing it. Where that fails, as for a read-only
//      file, the result is false and nothing else happens. A file that does not exist needs none.
//   2. The bytes go to a sibling file with ".tmp" behind its name, which is flushed. One that a
//      killed process left behind is overwritten.
//   3. That file replaces the target in one step.
//   4. Where 2 or 3 cannot be done (another program keeps the target open, the folder takes no new
//      file, the target has several names), the bytes are written in place: space first, then all
//      in one write with line breaks up to the old length, then the file is cut.
//
// Returns: false where the file cannot be opened or made for writing, else true: the outcome of
// the write does not count. Where a write fails the old bytes stand. A process that ends at any
// step leaves the old bytes or the new ones, whole (in step 4 at most with empty lines behind).
// Throws std::bad_alloc before anything changes.
bool SaveWholeFile(const std::wstring& path, std::string_view bytes);

// --- For tests ---------------------------------------------------------------------------------

enum class SaveStep
{
    OpenTarget,
    CreateTemporary,
    WriteTemporary, // refused: half of the bytes are written
    FlushTemporary,
    Replace,
    OpenInPlace,
    ReserveInPlace,
    WriteInPlace, // refused: half of the bytes are written
    CutInPlace,
    RemoveTemporary,
};

// While it lives, each step of a save is first put to the function; false makes the step fail.
class ScopedSaveHook
{
  public:
    using Hook = bool (*)(SaveStep step);

    explicit ScopedSaveHook(Hook hook);
    ~ScopedSaveHook();
    ScopedSaveHook(const ScopedSaveHook&) = delete;
    ScopedSaveHook& operator=(const ScopedSaveHook&) = delete;

  private:
    Hook m_previous;
};
