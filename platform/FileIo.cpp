#include "platform/FileIo.h"

#include "platform/RawFile.h"

#include <algorithm>
#include <new>
#include <utility>

namespace
{
ScopedSaveHook::Hook g_hook = nullptr;

bool Allowed(SaveStep step)
{
    return !g_hook || g_hook(step);
}

// Writes from the start of the file.
bool WriteStep(RawFile& file, SaveStep step, std::string_view bytes)
{
    if (Allowed(step))
        return file.WriteAt(0, bytes);
    file.WriteAt(0, bytes.substr(0, bytes.size() / 2));
    return false;
}

// The file is closed at the end, so that it can be renamed.
bool WriteTemporary(const std::wstring& path, std::string_view bytes)
{
    RawFile file;
    return Allowed(SaveStep::CreateTemporary) && file.Open(path, RawFile::Mode::Truncated) &&
           WriteStep(file, SaveStep::WriteTemporary, bytes) && Allowed(SaveStep::FlushTemporary) &&
           file.Flush();
}

void OverwriteInPlace(RawFile& file, std::string_view bytes)
{
    std::string old;
    if (!file.ReadAll(old))
        return;
    // A shorter text is filled up, so that no moment shows it with the end of the old one behind.
    std::string padded(bytes);
    padded.resize(std::max(bytes.size(), old.size()), '\n');

    if (!Allowed(SaveStep::ReserveInPlace) || !file.Reserve(padded.size()))
        return;
    if (!WriteStep(file, SaveStep::WriteInPlace, padded))
    {
        file.WriteAt(0, old);
        file.Cut(old.size());
    }
    else if (Allowed(SaveStep::CutInPlace))
    {
        file.Cut(bytes.size());
    }
    file.Flush();
}
} // namespace

bool ReadWholeFile(const std::wstring& path, std::string& bytes)
{
    try
    {
        RawFile file;
        std::string content;
        if (!file.Open(path, RawFile::Mode::Read) || !file.ReadAll(content))
            return false;
        bytes = std::move(content);
        return true;
    }
    catch (const std::bad_alloc&)
    {
        return false;
    }
}

bool SaveWholeFile(const std::wstring& path, std::string_view bytes)
{
    bool mayReplace = true;
    {
        RawFile target;
        if (!Allowed(SaveStep::OpenTarget))
            return false;
        if (target.Open(path, RawFile::Mode::Existing))
            mayReplace = target.HasOneName();
        else if (!target.WasMissing())
            return false;
    }

    const std::wstring temporary = path + L".tmp";
    if (mayReplace && WriteTemporary(temporary, bytes) && Allowed(SaveStep::Replace) &&
        ReplaceByRename(temporary, path))
        return true;

    RawFile target;
    const bool opened = Allowed(SaveStep::OpenInPlace) && target.Open(path, RawFile::Mode::Always);
    if (opened)
        OverwriteInPlace(target, bytes);
    if (mayReplace && Allowed(SaveStep::RemoveTemporary))
        RemoveFile(temporary);
    return opened;
}

ScopedSaveHook::ScopedSaveHook(Hook hook) : m_previous(std::exchange(g_hook, hook)) {}

ScopedSaveHook::~ScopedSaveHook()
{
    g_hook = m_previous;
}
