// Owners of memory that a store library handed out. Each carries the proxy that frees it, so that
// memory of two libraries cannot be swapped. The proxy must outlive the owner.
#pragma once

#include "outlook/store/Proxcy.h"

#include <memory>

struct MapiBufferDeleter
{
    CNProxcy* proxy = nullptr;
    void operator()(void* buffer) const noexcept { proxy->FreeBuffer(buffer); }
};

// One buffer with what was allocated more to it.
template <typename T> using MapiBuffer = std::unique_ptr<T, MapiBufferDeleter>;

// Takes a buffer over; null gives an empty owner.
template <typename T> MapiBuffer<T> AdoptMapiBuffer(T* buffer, CNProxcy& proxy) noexcept
{
    return MapiBuffer<T>(buffer, MapiBufferDeleter{&proxy});
}

struct MapiRowSetDeleter
{
    CNProxcy* proxy = nullptr;
    void operator()(SRowSet* rows) const noexcept { proxy->FreeProws(rows); }
};

// A row set with the values of its rows.
using MapiRowSet = std::unique_ptr<SRowSet, MapiRowSetDeleter>;

// Takes a row set over; null gives an empty owner.
inline MapiRowSet AdoptMapiRowSet(SRowSet* rows, CNProxcy& proxy) noexcept
{
    return MapiRowSet(rows, MapiRowSetDeleter{&proxy});
}
