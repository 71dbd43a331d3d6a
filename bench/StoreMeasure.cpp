#include "StoreMeasure.h"

#include <chrono>
#include <cstdio>
#include <stdexcept>

namespace
{
double ProcessorMilliseconds()
{
    FILETIME unused{};
    FILETIME kernel{};
    FILETIME user{};
    GetProcessTimes(GetCurrentProcess(), &unused, &unused, &kernel, &user);
    const auto ticks = [](FILETIME time) {
        return static_cast<double>(
            ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart);
    };
    return (ticks(kernel) + ticks(user)) / 10'000.0;
}
} // namespace

void Require(HRESULT result, const char* what)
{
    if (FAILED(result))
    {
        char text[100];
        std::snprintf(text, sizeof text, "%s: %08lX", what, static_cast<unsigned long>(result));
        throw std::runtime_error(text);
    }
}

Times TimesOf(const std::function<void()>& work)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    const double processorStart = ProcessorMilliseconds();
    work();
    return {std::chrono::duration<double, std::milli>(Clock::now() - start).count(),
            ProcessorMilliseconds() - processorStart};
}
