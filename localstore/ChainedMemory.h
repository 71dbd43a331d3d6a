// Memory in the manner of MAPI: buffers, and further blocks chained to a buffer that are freed with
// it. Knows every buffer that it handed out and refuses all other addresses without touching them.
// Thread: any.
#pragma once

#include "platform/ScopedLock.h"
#include "platform/WindowsHeaders.h"

#include <cstddef>
#include <unordered_map>
#include <vector>

class ChainedMemory
{
  public:
    ChainedMemory() = default;
    ~ChainedMemory();
    ChainedMemory(const ChainedMemory&) = delete;
    ChainedMemory& operator=(const ChainedMemory&) = delete;

    // The one of this library: what any of its objects handed out, any other may free.
    static ChainedMemory& OfLibrary();

    // A zero-filled buffer of at least that many bytes; zero bytes give a buffer too.
    // Returns: S_OK; MAPI_E_INVALID_PARAMETER for a null output; MAPI_E_NOT_ENOUGH_MEMORY.
    HRESULT Allocate(size_t bytes, void** buffer) noexcept;

    // The same, freed with the buffer. MAPI_E_INVALID_PARAMETER also where the buffer is none that
    // Allocate gave out; blocks of AllocateMore are no such buffers.
    HRESULT AllocateMore(size_t bytes, void* buffer, void** block) noexcept;

    // Frees a buffer and what is chained to it. A null address is fine. MAPI_E_INVALID_PARAMETER,
    // and nothing happens, for an address that is none of the living buffers.
    HRESULT Free(void* buffer) noexcept;

    // Whether the address is that of a living buffer.
    bool Owns(const void* buffer) const;

    // Living buffers and blocks, for leak checks.
    size_t LiveCount() const;

  private:
    using Buffers = std::unordered_map<void*, std::vector<void*>>; // with what is chained to each

    mutable SRWLOCK m_lock = SRWLOCK_INIT;
    Buffers m_buffers;
};

// Owns a buffer until it is handed out.
class ChainedBuffer
{
  public:
    // Throws std::bad_alloc.
    ChainedBuffer(ChainedMemory& memory, size_t bytes);
    ~ChainedBuffer() { m_memory.Free(m_buffer); }
    ChainedBuffer(const ChainedBuffer&) = delete;
    ChainedBuffer& operator=(const ChainedBuffer&) = delete;

    void* Get() const noexcept { return m_buffer; }
    // A block that is freed with this buffer. Throws std::bad_alloc.
    void* More(size_t bytes);
    void* Detach() noexcept;

  private:
    ChainedMemory& m_memory;
    void* m_buffer = nullptr;
};
