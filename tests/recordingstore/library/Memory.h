// The library's buffers: who they are, what is chained to them, which are freed. A freed buffer is
// overwritten and kept for a while, so that a second free is told from an address that never was
// one and late readers do not find what they look for.
#pragma once

#include "platform/WindowsHeaders.h"

#include <cstddef>
#include <deque>
#include <map>
#include <memory>
#include <string>
#include <vector>

class BufferMemory
{
  public:
    enum class FreeResult
    {
        Freed,
        FreedBefore,
        NoBuffer
    };

    // A zeroed buffer. Throws std::bad_alloc.
    void* Allocate(std::size_t bytes, std::string name);
    // A zeroed block that is freed with the buffer; null where that is none. Throws std::bad_alloc.
    void* AllocateMore(std::size_t bytes, void* buffer);
    FreeResult Free(void* buffer);
    // As lines of the record show it.
    std::string NameOf(const void* address) const;

    std::size_t LiveCount() const;
    std::vector<std::string> LiveNames() const;
    // Frees all.
    void Clear();

  private:
    using Block = std::unique_ptr<BYTE[]>;
    struct Buffer
    {
        std::string name;
        std::size_t size = 0;
        Block memory;
        std::vector<std::pair<Block, std::size_t>> more;
        bool isFreed = false;
    };
    void DropOldest();

    std::map<const void*, Buffer> m_buffers;
    std::deque<const void*> m_freed; // oldest first
    std::size_t m_freedBytes = 0;
};
