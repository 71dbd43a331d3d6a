// How deep the apartment thread is inside automation calls. A single-threaded apartment is entered
// again during outgoing calls (a client's own item objects, dialogs of a store), so what would
// delete state under a running call waits until the outermost call ends.
#pragma once

#include <functional>

class CallScope
{
  public:
    CallScope() noexcept;
    // At the end of the outermost scope runs what was deferred, in order.
    ~CallScope();
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

    // The number of automation calls under way on the apartment thread.
    static int Depth() noexcept;

    // Runs the action at the end of the outermost call; at once when no call is under way.
    static void Defer(std::function<void()> action);
};
