#include "tests/recordingstore/library/Library.h"

#include "tests/recordingstore/library/RecordedObject.h"

namespace
{
Library g_library;
std::vector<std::unique_ptr<Mortal>> g_graveyard;
} // namespace

Library& TheLibrary() noexcept
{
    return g_library;
}

void Bury(std::unique_ptr<Mortal> object)
{
    g_graveyard.push_back(std::move(object));
}

void EmptyGraveyard()
{
    g_graveyard.clear();
}

HRESULT FreeOne(void* buffer, const std::string& line)
{
    if (!buffer)
        return S_OK;
    switch (TheLibrary().memory.Free(buffer))
    {
    case BufferMemory::FreeResult::Freed:
        return S_OK;
    case BufferMemory::FreeResult::FreedBefore:
        TheLibrary().recorder.AddViolation("freed twice: " + line);
        return MAPI_E_INVALID_PARAMETER;
    default:
        ++TheLibrary().recorder.refusedFrees;
        return MAPI_E_INVALID_PARAMETER;
    }
}
