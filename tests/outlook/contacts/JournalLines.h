// The lines of a journal of pictures, read without the program's own reader.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

// UTF-16, each line with its end; none where there is no file.
inline std::vector<std::wstring> JournalLines(const std::wstring& path)
{
    std::ifstream input(std::filesystem::path(path), std::ios::binary);
    const std::string bytes(std::istreambuf_iterator<char>(input), {});
    std::vector<std::wstring> lines;
    std::wstring line;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2)
    {
        const auto unit = static_cast<wchar_t>(static_cast<unsigned char>(bytes[i]) |
                                               static_cast<unsigned char>(bytes[i + 1]) << 8);
        if (unit != L'\n')
            line += unit;
        else
            lines.push_back(std::exchange(line, {}));
    }
    EXPECT_EQ(L"", line);
    return lines;
}
