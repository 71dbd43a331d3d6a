// Real samples beside the project: tests that read them run over whatever is there, and say so
// where nothing is.
#pragma once

#include "support/TestPaths.h"

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

// The files of a folder with this extension, sorted.
inline std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder,
                                                  const std::string& extension)
{
    std::vector<std::filesystem::path> files;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        if (entry.path().extension() == extension)
            files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    return files;
}

// The real samples of a folder; prints a notice where there are none.
inline std::vector<std::filesystem::path> SharedSamples(const std::string& folder,
                                                        const std::string& extension)
{
    auto files = FilesIn(SharedData() / folder, extension);
    if (files.empty())
        std::cout << "No real samples (" << extension << ") in "
                  << (SharedData() / folder).generic_string()
                  << ": those of tests/data alone are compared.\n";
    return files;
}
