// The middle of values measured in several rounds.
#pragma once

#include <algorithm>
#include <vector>

// Wants at least one value.
inline double MedianOf(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}
