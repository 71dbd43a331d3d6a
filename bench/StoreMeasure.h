// Timing of what the benchmarks over the embedded store measure.
#pragma once

#include "platform/WindowsHeaders.h"

#include <functional>

// Throws std::runtime_error where the call failed.
void Require(HRESULT result, const char* what);

// What work took, in milliseconds.
struct Times
{
    double elapsed = 0.0;
    double processor = 0.0; // of this process alone, in steps of about 10 ms
};

Times TimesOf(const std::function<void()>& work);
