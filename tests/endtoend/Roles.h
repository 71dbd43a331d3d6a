// For the entry function of the end-to-end tests alone.
#pragma once

#include <optional>

// Plays the role that the command line names, and gives its exit code; empty where it names none.
std::optional<int> PlayRole(int argc, wchar_t** argv);
