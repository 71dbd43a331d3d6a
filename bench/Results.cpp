#include "bench/Results.h"

#include <cstdio>

namespace
{
struct BoundText
{
    Bound bound;
    const char* text;
};

constexpr BoundText kBoundTexts[] = {
    {Bound::AtMost, "at most"},
    {Bound::Under, "under"},
    {Bound::AtLeast, "at least"},
};

const char* TextOf(Bound bound)
{
    for (const BoundText& row : kBoundTexts)
        if (row.bound == bound)
            return row.text;
    return "";
}

bool IsWithin(double value, const Limit& limit)
{
    switch (limit.bound)
    {
    case Bound::AtMost:
        return value <= limit.value;
    case Bound::Under:
        return value < limit.value;
    case Bound::AtLeast:
        return value >= limit.value;
    }
    return false;
}

// With three digits that count, as far as there is a fraction.
std::string NumberText(double value)
{
    char text[40];
    std::snprintf(text, sizeof(text), "%.*f", value < 10.0 ? 2 : value < 100.0 ? 1 : 0, value);
    return text;
}
} // namespace

std::string CountText(unsigned long count)
{
    std::string text = std::to_string(count);
    for (std::size_t end = text.size(); end > 3;)
    {
        end -= 3;
        text.insert(end, 1, ',');
    }
    return text;
}

void PrintRow(const std::string& what, double value, const std::string& unit)
{
    std::printf("%-66s %9s %s\n", what.c_str(), NumberText(value).c_str(), unit.c_str());
    std::fflush(stdout);
}

void PrintTarget(const std::string& name, double value, const std::string& unit, Limit limit)
{
    char wanted[40];
    std::snprintf(wanted, sizeof(wanted), "%g", limit.value);
    std::printf("target: %s | %s %s %s | %s %s | %s\n",
                name.c_str(),
                TextOf(limit.bound),
                wanted,
                unit.c_str(),
                NumberText(value).c_str(),
                unit.c_str(),
                IsWithin(value, limit) ? "pass" : "MISS");
    std::fflush(stdout);
}

void PrintGrowth(const std::string& series, unsigned long items, double microseconds)
{
    std::printf("growth: %s | %lu | %.2f\n", series.c_str(), items, microseconds);
    std::fflush(stdout);
}
