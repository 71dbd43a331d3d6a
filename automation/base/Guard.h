// The boundary between the server's C++ code and its COM callers: no exception crosses it.
#pragma once

#include "platform/WindowsHeaders.h"
#include "service/CallScope.h"

#include <new>
#include <utility>

// An HRESULT on its way to the boundary.
class ComError
{
  public:
    explicit ComError(HRESULT result) noexcept : m_result(result) {}
    HRESULT Result() const noexcept { return m_result; }

  private:
    HRESULT m_result;
};

// The HRESULT of the exception that is being handled: E_OUTOFMEMORY for exhausted memory,
// E_UNEXPECTED for anything else. Call it in a catch block only.
inline HRESULT ResultOfException() noexcept
{
    try
    {
        throw;
    }
    catch (const std::bad_alloc&)
    {
        return E_OUTOFMEMORY;
    }
    catch (const ComError& error)
    {
        return error.Result() == E_OUTOFMEMORY ? E_OUTOFMEMORY : E_UNEXPECTED;
    }
    catch (...)
    {
        return E_UNEXPECTED;
    }
}

// The identity of an object whose class has an interface map.
template <typename T> IUnknown* UnknownOf(T* object) noexcept
{
    return T::kInterfaceMap.front().cast(object);
}

// Runs the body of an interface method: counts the call (see CallScope), keeps the object alive
// although the body or a re-entrant call may release it, and turns exceptions into an HRESULT.
// Every method body of the automation objects runs in it.
template <typename T, typename Body> HRESULT Guard(T* object, Body&& body) noexcept
{
    // Declared first, so that it ends last: what the call deferred still finds the object.
    const Microsoft::WRL::ComPtr<IUnknown> alive(UnknownOf(object));
    const CallScope scope;
    try
    {
        return std::forward<Body>(body)();
    }
    catch (...)
    {
        return ResultOfException();
    }
}
