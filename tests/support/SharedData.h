// Real samples beside the project. They are no part of it, so tests that read them run over
// whatever is there, and say so where nothing is.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

// The whole file, as bytes; empty where it cannot be read.
inline std::string ReadSample(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

// The files of a folder of samples with this extension, sorted; prints a notice where there are
// none.
inline std::vector<std::filesystem::path> Samples(const std::string& folder,
                                                  const std::string& extension)
{
    const std::filesystem::path root = std::filesystem::path(PIM_SHARED_DATA) / folder;
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(root, error))
        if (entry.path().extension() == extension)
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    if (files.empty())
        std::cout << "No samples (" << extension << ") in " << root.generic_string()
                  << ": nothing to compare.\n";
    return files;
}
