#include "tests/recordingstore/library/Memory.h"

#include <algorithm>
#include <cstring>

namespace
{
constexpr std::size_t kKeptBytes = 16u << 20;
constexpr BYTE kFreedByte = 0xDD;

std::size_t TotalSize(const auto& buffer)
{
    std::size_t size = buffer.size;
    for (const auto& [block, bytes] : buffer.more)
        size += bytes;
    return size;
}
} // namespace

void* BufferMemory::Allocate(std::size_t bytes, std::string name)
{
    Buffer buffer;
    buffer.name = std::move(name);
    buffer.size = std::max<std::size_t>(bytes, 1);
    buffer.memory = std::make_unique<BYTE[]>(buffer.size);
    void* const address = buffer.memory.get();
    m_buffers.emplace(address, std::move(buffer));
    return address;
}

void* BufferMemory::AllocateMore(std::size_t bytes, void* buffer)
{
    const auto found = m_buffers.find(buffer);
    if (found == m_buffers.end() || found->second.isFreed)
        return nullptr;
    const std::size_t size = std::max<std::size_t>(bytes, 1);
    return found->second.more.emplace_back(std::make_unique<BYTE[]>(size), size).first.get();
}

BufferMemory::FreeResult BufferMemory::Free(void* address)
{
    const auto found = m_buffers.find(address);
    if (found == m_buffers.end())
        return FreeResult::NoBuffer;
    Buffer& buffer = found->second;
    if (buffer.isFreed)
        return FreeResult::FreedBefore;
    buffer.isFreed = true;
    std::memset(buffer.memory.get(), kFreedByte, buffer.size);
    for (const auto& [block, bytes] : buffer.more)
        std::memset(block.get(), kFreedByte, bytes);
    m_freed.push_back(address);
    m_freedBytes += TotalSize(buffer);
    while (m_freedBytes > kKeptBytes)
        DropOldest();
    return FreeResult::Freed;
}

void BufferMemory::DropOldest()
{
    const auto oldest = m_buffers.find(m_freed.front());
    m_freed.pop_front();
    m_freedBytes -= TotalSize(oldest->second);
    m_buffers.erase(oldest);
}

std::string BufferMemory::NameOf(const void* address) const
{
    if (!address)
        return "null";
    auto behind = m_buffers.upper_bound(address);
    if (behind == m_buffers.begin())
        return "unknown";
    const auto& [start, buffer] = *--behind;
    const auto offset = static_cast<std::size_t>(static_cast<const BYTE*>(address) -
                                                 static_cast<const BYTE*>(start));
    if (offset >= buffer.size)
        return "unknown";
    return (offset ? "inside " : "") + std::string(buffer.isFreed ? "freed " : "") + buffer.name;
}

std::size_t BufferMemory::LiveCount() const
{
    return m_buffers.size() - m_freed.size();
}

std::vector<std::string> BufferMemory::LiveNames() const
{
    std::vector<std::string> names;
    for (const auto& [address, buffer] : m_buffers)
        if (!buffer.isFreed)
            names.push_back(buffer.name);
    std::sort(names.begin(), names.end());
    return names;
}

void BufferMemory::Clear()
{
    m_buffers.clear();
    m_freed.clear();
    m_freedBytes = 0;
}
