// Real samples beside the project: the folder that PIM_SHARED_DATA in the environment names, else
// ../shared/data. They are no part of the project, so tests that read them run over whatever is
// there, and say so where nothing is.
#pragma once

#include <algorithm>
#include <cstdlib>
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
    const char* const given = std::getenv("PIM_SHARED_DATA");
    const std::filesystem::path root =
        given ? std::filesystem::path(given)
              : std::filesystem::path(PIM_SOURCE_DIR) / ".." / "shared" / "data";
    auto files = FilesIn(root / folder, extension);
    if (files.empty())
        std::cout << "No real samples (" << extension << ") in " << (root / folder).generic_string()
                  << ": those of tests/data alone are compared.\n";
    return files;
}
