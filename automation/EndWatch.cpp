#include "automation/EndWatch.h"

EndWatch::EndWatch(DWORD timeoutMilliseconds,
                   void (*endProcess)(UINT exitCode),
                   UINT exitCode) noexcept
    : m_timeoutMilliseconds(timeoutMilliseconds), m_endProcess(endProcess), m_exitCode(exitCode),
      m_done(CreateEventW(nullptr, TRUE, FALSE, nullptr))
{
    if (m_done)
        m_thread.Reset(CreateThread(nullptr, 0, &Watch, this, 0, nullptr));
}

EndWatch::~EndWatch()
{
    if (!m_thread)
        return;
    SetEvent(m_done.Get());
    WaitForSingleObject(m_thread.Get(), INFINITE);
}

DWORD WINAPI EndWatch::Watch(void* self) noexcept
{
    const EndWatch& watch = *static_cast<const EndWatch*>(self);
    if (WaitForSingleObject(watch.m_done.Get(), watch.m_timeoutMilliseconds) == WAIT_TIMEOUT)
        watch.m_endProcess(watch.m_exitCode);
    return 0;
}
