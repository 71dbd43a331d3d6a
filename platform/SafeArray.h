// Owner of a SAFEARRAY, and scoped access to its elements.
#pragma once

#include "platform/UniqueHandle.h"
#include "platform/WindowsHeaders.h"

// Destroying the array frees what its elements own.
struct SafeArrayPolicy
{
    using Type = SAFEARRAY*;
    static Type Empty() noexcept { return nullptr; }
    static void Close(Type value) noexcept { SafeArrayDestroy(value); }
};
using UniqueSafeArray = UniqueResource<SafeArrayPolicy>;

// Keeps the array locked as long as it lives. Data is null where the array is null or could not be
// locked; T must be the array's element type. An array that is still locked cannot be destroyed,
// so the access ends before the owner does.
template <typename T> class SafeArrayAccess
{
  public:
    explicit SafeArrayAccess(SAFEARRAY* array) noexcept
    {
        void* data = nullptr;
        if (array && SUCCEEDED(SafeArrayAccessData(array, &data)))
        {
            m_array = array;
            m_data = static_cast<T*>(data);
        }
    }
    ~SafeArrayAccess()
    {
        if (m_array)
            SafeArrayUnaccessData(m_array);
    }
    SafeArrayAccess(const SafeArrayAccess&) = delete;
    SafeArrayAccess& operator=(const SafeArrayAccess&) = delete;

    explicit operator bool() const noexcept { return m_array != nullptr; }
    T* Data() const noexcept { return m_data; }

  private:
    SAFEARRAY* m_array = nullptr;
    T* m_data = nullptr;
};
