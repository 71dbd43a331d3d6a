// What benchmarks print: rows of measured values for people, and lines that bench/run gathers.
//
//     target: NAME | LIMIT | MEASURED | pass       or MISS
//     growth: SERIES | ITEMS | MICROSECONDS        of one item
//
// Every line is written out at once, so that a run that is cut short shows what it had.
#pragma once

#include <string>

enum class Bound
{
    AtMost,
    Under,
    AtLeast,
};

struct Limit
{
    Bound bound;
    double value;
};

// A count with a comma before each three digits.
std::string CountText(unsigned long count);

// A value with its unit; "x" for a ratio.
void PrintRow(const std::string& what, double value, const std::string& unit);

// The row of a value that has a target, and its line.
//   name: says by itself what was measured; the table of all targets has nothing else
void PrintTarget(const std::string& name, double value, const std::string& unit, Limit limit);

// One point of the plot of growth.
void PrintGrowth(const std::string& series, unsigned long items, double microseconds);
