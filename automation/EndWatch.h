// Bounds the last step of the process: the end of its apartment lets go of what clients lent, asks
// each of them, and waits without a limit for a client that hangs.
#pragma once

#include "platform/UniqueHandle.h"

class EndWatch
{
  public:
    // Watches until the object ends. After the time endProcess is called once, on a thread of its
    // own, with that exit code; it may return. Where the system gives no thread nothing is watched.
    EndWatch(DWORD timeoutMilliseconds, void (*endProcess)(UINT exitCode), UINT exitCode) noexcept;
    ~EndWatch();
    EndWatch(const EndWatch&) = delete;
    EndWatch& operator=(const EndWatch&) = delete;

  private:
    static DWORD WINAPI Watch(void* self) noexcept;

    const DWORD m_timeoutMilliseconds;
    void (*const m_endProcess)(UINT exitCode);
    const UINT m_exitCode;
    UniqueHandle m_done; // an event
    UniqueHandle m_thread;
};
