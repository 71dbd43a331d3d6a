#include "rtfconverter/ConverterHandles.h"

#include "platform/ScopedLock.h"

namespace
{
// Handles are neither small numbers nor addresses: a caller's stray value is unlikely to be one.
constexpr std::uintptr_t kFirst = 0x5254460000000001;
constexpr std::uintptr_t kStep = 2;
} // namespace

RtfConverterHandle ConverterHandles::Add()
{
    const ScopedLock lock(m_lock);
    const std::uintptr_t next = m_last == 0 ? kFirst : m_last + kStep;
    m_live.insert(next);
    m_last = next;
    return reinterpret_cast<RtfConverterHandle>(next);
}

bool ConverterHandles::Contains(RtfConverterHandle handle) noexcept
{
    const ScopedLock lock(m_lock);
    return m_live.contains(reinterpret_cast<std::uintptr_t>(handle));
}

void ConverterHandles::Remove(RtfConverterHandle handle) noexcept
{
    const ScopedLock lock(m_lock);
    m_live.erase(reinterpret_cast<std::uintptr_t>(handle));
}
