#include "localstore/ChainedMemory.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace
{

// At namespace scope: a guarded static of a function would cost the runtime's lock.
ChainedMemory g_memoryOfLibrary;

} // namespace

ChainedMemory::~ChainedMemory()
{
    for (const auto& [buffer, blocks] : m_buffers)
    {
        for (void* block : blocks)
            std::free(block);
        std::free(buffer);
    }
}

ChainedMemory& ChainedMemory::OfLibrary()
{
    return g_memoryOfLibrary;
}

HRESULT ChainedMemory::Allocate(size_t bytes, void** buffer) noexcept
{
    if (!buffer)
        return MAPI_E_INVALID_PARAMETER;
    *buffer = nullptr;
    void* made = std::calloc(1, bytes ? bytes : 1);
    if (!made)
        return MAPI_E_NOT_ENOUGH_MEMORY;
    try
    {
        const ScopedLock lock(m_lock);
        m_buffers.try_emplace(made);
    }
    catch (...)
    {
        std::free(made);
        return MAPI_E_NOT_ENOUGH_MEMORY;
    }
    *buffer = made;
    return S_OK;
}

HRESULT ChainedMemory::AllocateMore(size_t bytes, void* buffer, void** block) noexcept
{
    if (!block)
        return MAPI_E_INVALID_PARAMETER;
    *block = nullptr;
    void* made = nullptr;
    try
    {
        const ScopedLock lock(m_lock);
        const auto found = m_buffers.find(buffer);
        if (found == m_buffers.end())
            return MAPI_E_INVALID_PARAMETER;
        found->second.push_back(nullptr);
        made = std::calloc(1, bytes ? bytes : 1);
        if (!made)
        {
            found->second.pop_back();
            return MAPI_E_NOT_ENOUGH_MEMORY;
        }
        found->second.back() = made;
    }
    catch (...)
    {
        return MAPI_E_NOT_ENOUGH_MEMORY;
    }
    *block = made;
    return S_OK;
}

HRESULT ChainedMemory::Free(void* buffer) noexcept
{
    if (!buffer)
        return S_OK;
    std::vector<void*> blocks;
    {
        const ScopedLock lock(m_lock);
        const auto found = m_buffers.find(buffer);
        if (found == m_buffers.end())
            return MAPI_E_INVALID_PARAMETER;
        blocks.swap(found->second);
        m_buffers.erase(found);
        // A map keeps the table that it needed at its largest; the library lives on for long.
        if (m_buffers.empty())
            Buffers().swap(m_buffers);
    }
    for (void* block : blocks)
        std::free(block);
    std::free(buffer);
    return S_OK;
}

bool ChainedMemory::Owns(const void* buffer) const
{
    const ScopedLock lock(m_lock);
    return m_buffers.contains(const_cast<void*>(buffer));
}

size_t ChainedMemory::LiveCount() const
{
    const ScopedLock lock(m_lock);
    size_t count = m_buffers.size();
    for (const auto& [buffer, blocks] : m_buffers)
        count += blocks.size();
    return count;
}

ChainedBuffer::ChainedBuffer(ChainedMemory& memory, size_t bytes) : m_memory(memory)
{
    if (FAILED(m_memory.Allocate(bytes, &m_buffer)))
        throw std::bad_alloc();
}

void* ChainedBuffer::More(size_t bytes)
{
    void* block = nullptr;
    if (FAILED(m_memory.AllocateMore(bytes, m_buffer, &block)))
        throw std::bad_alloc();
    return block;
}

void* ChainedBuffer::Detach() noexcept
{
    return std::exchange(m_buffer, nullptr);
}
