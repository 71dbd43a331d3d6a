// Holds a slim lock for a scope. Slim locks and not the runtime's mutexes: a library that is loaded
// and unloaded again and again must not take a thread-local slot each time.
#pragma once

#include "platform/WindowsHeaders.h"

class ScopedLock
{
  public:
    explicit ScopedLock(SRWLOCK& lock) noexcept : m_lock(lock) { AcquireSRWLockExclusive(&m_lock); }
    ~ScopedLock() { ReleaseSRWLockExclusive(&m_lock); }
    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

  private:
    SRWLOCK& m_lock;
};
