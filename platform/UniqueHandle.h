// Owners of system resources that are closed by one call each.
#pragma once

#include "platform/WindowsHeaders.h"

#include <utility>

// A policy names the type, its empty value and the call that ends it.
template <typename Policy> class UniqueResource
{
  public:
    using Type = typename Policy::Type;

    UniqueResource() noexcept = default;
    explicit UniqueResource(Type value) noexcept : m_value(value) {}
    UniqueResource(UniqueResource&& other) noexcept
        : m_value(std::exchange(other.m_value, Policy::Empty()))
    {
    }
    UniqueResource& operator=(UniqueResource&& other) noexcept
    {
        if (this != &other)
            Reset(std::exchange(other.m_value, Policy::Empty()));
        return *this;
    }
    ~UniqueResource() { Reset(); }

    Type Get() const noexcept { return m_value; }
    explicit operator bool() const noexcept { return m_value != Policy::Empty(); }
    // Closes what is held and hands out the address for an out parameter.
    Type* Put() noexcept
    {
        Reset();
        return &m_value;
    }
    Type Detach() noexcept { return std::exchange(m_value, Policy::Empty()); }
    // Closes what is held and takes the value over.
    void Reset(Type value = Policy::Empty()) noexcept
    {
        if (m_value != Policy::Empty())
            Policy::Close(m_value);
        m_value = value;
    }

  private:
    Type m_value = Policy::Empty();
};

// Kernel objects whose empty value is null (events, threads, processes).
struct HandlePolicy
{
    using Type = HANDLE;
    static Type Empty() noexcept { return nullptr; }
    static void Close(Type value) noexcept { CloseHandle(value); }
};
using UniqueHandle = UniqueResource<HandlePolicy>;

// Files, whose empty value is INVALID_HANDLE_VALUE.
struct FileHandlePolicy : HandlePolicy
{
    static Type Empty() noexcept { return INVALID_HANDLE_VALUE; }
};
using UniqueFile = UniqueResource<FileHandlePolicy>;

// Directory searches, ended by FindClose.
struct FindHandlePolicy : FileHandlePolicy
{
    static void Close(Type value) noexcept { FindClose(value); }
};
using UniqueFind = UniqueResource<FindHandlePolicy>;

// Registry keys.
struct RegistryKeyPolicy
{
    using Type = HKEY;
    static Type Empty() noexcept { return nullptr; }
    static void Close(Type value) noexcept { RegCloseKey(value); }
};
using UniqueRegistryKey = UniqueResource<RegistryKeyPolicy>;

// Loaded libraries.
struct ModulePolicy
{
    using Type = HMODULE;
    static Type Empty() noexcept { return nullptr; }
    static void Close(Type value) noexcept { FreeLibrary(value); }
};
using UniqueModule = UniqueResource<ModulePolicy>;
