#include "service/CallScope.h"

#include <utility>
#include <vector>

namespace
{
// All automation calls run on the one apartment thread, so plain state will do.
int g_depth = 0;
std::vector<std::function<void()>> g_deferred;
} // namespace

CallScope::CallScope() noexcept
{
    ++g_depth;
}

CallScope::~CallScope()
{
    if (g_depth > 1)
    {
        --g_depth;
        return;
    }
    // Still at depth 1: what an action defers in turn joins the queue, and nothing nests.
    while (!g_deferred.empty())
    {
        const auto actions = std::exchange(g_deferred, {});
        for (const auto& action : actions)
            action();
    }
    --g_depth;
}

int CallScope::Depth() noexcept
{
    return g_depth;
}

void CallScope::Defer(std::function<void()> action)
{
    if (g_depth == 0)
        action();
    else
        g_deferred.push_back(std::move(action));
}
