#include "tests/recordingstore/library/Interruptions.h"

#include <algorithm>
#include <vector>

namespace
{
struct Interruption
{
    std::string line;
    StoreInterruptionSink sink;
    void* context;
};

std::vector<Interruption> g_interruptions;
} // namespace

void AddInterruption(const char* line, StoreInterruptionSink sink, void* context)
{
    g_interruptions.push_back({line, sink, context});
}

void RemoveInterruption(void* context)
{
    std::erase_if(g_interruptions,
                  [=](const Interruption& waiting) { return waiting.context == context; });
}

void ClearInterruptions()
{
    g_interruptions.clear();
}

void RunInterruption(const std::string& line)
{
    const auto next =
        std::find_if(g_interruptions.begin(),
                     g_interruptions.end(),
                     [&](const Interruption& waiting) { return line.starts_with(waiting.line); });
    if (next == g_interruptions.end())
        return;
    const Interruption interruption = *next;
    g_interruptions.erase(next);
    interruption.sink(interruption.context);
}
