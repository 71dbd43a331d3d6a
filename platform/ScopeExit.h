// Runs a callable when the scope ends, unless it was released.
#pragma once

#include <utility>

template <typename F> class [[nodiscard]] ScopeExit
{
  public:
    explicit ScopeExit(F onExit) : m_onExit(std::move(onExit)) {}
    ~ScopeExit()
    {
        if (m_active)
            m_onExit();
    }
    ScopeExit(const ScopeExit&) = delete;
    ScopeExit& operator=(const ScopeExit&) = delete;

    // Gives the duty up: nothing runs at the end of the scope.
    void Release() noexcept { m_active = false; }

  private:
    F m_onExit;
    bool m_active = true;
};
