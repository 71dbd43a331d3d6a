// Where the data of the tests lies. In one place, so that no other object file depends on where the
// project lies.
#pragma once

#include <filesystem>

// tests/data
std::filesystem::path TestData();

// The samples that the project ships.
std::filesystem::path Samples();

// Real data beside the project: the folder that PIM_SHARED_DATA in the environment names, else
// ../shared/data. It is no part of the project and may be missing.
std::filesystem::path SharedData();
