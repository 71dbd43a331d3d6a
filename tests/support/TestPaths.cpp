#include "support/TestPaths.h"

#include <cstdlib>

namespace
{
std::filesystem::path Project()
{
    return PIM_PROJECT_FOLDER;
}
} // namespace

std::filesystem::path TestData()
{
    return Project() / "tests" / "data";
}

std::filesystem::path Samples()
{
    return Project() / "samples";
}

std::filesystem::path SharedData()
{
    const char* const given = std::getenv("PIM_SHARED_DATA");
    return given ? std::filesystem::path(given) : Project() / ".." / "shared" / "data";
}
