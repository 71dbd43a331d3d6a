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
