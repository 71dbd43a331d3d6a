#include "localstore/ByteStream.h"

#include "localstore/MapiValues.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr ULONG kCopyBytes = 64 * 1024;

} // namespace

ByteStream::ByteStream(std::shared_ptr<StreamContent> content, std::uint64_t position)
    : m_content(std::move(content)), m_position(position)
{
}

// Under the lock. The position may stand behind the end.
ULONG ByteStream::TakeBytes(void* buffer, ULONG size) noexcept
{
    const Bytes& bytes = m_content->bytes;
    if (m_position >= bytes.size())
        return 0;
    const size_t count = std::min<size_t>(size, bytes.size() - static_cast<size_t>(m_position));
    if (count)
        std::memcpy(buffer, bytes.data() + m_position, count);
    m_position += count;
    return static_cast<ULONG>(count);
}

STDMETHODIMP ByteStream::Read(void* buffer, ULONG size, ULONG* read)
{
    if (read)
        *read = 0;
    if (!buffer)
        return STG_E_INVALIDPOINTER;
    const ScopedLock lock(m_content->lock);
    const ULONG count = TakeBytes(buffer, size);
    if (read)
        *read = count;
    return S_OK;
}

STDMETHODIMP ByteStream::Write(const void* buffer, ULONG size, ULONG* written)
{
    if (written)
        *written = 0;
    if (!buffer)
        return STG_E_INVALIDPOINTER;
    const ScopedLock lock(m_content->lock);
    if (!m_content->writable)
        return STG_E_ACCESSDENIED;
    if (size == 0)
        return S_OK;
    if (m_position > kMaxValueBytes || size > kMaxValueBytes - m_position)
        return STG_E_MEDIUMFULL;
    return Guarded([&] {
        Bytes& bytes = m_content->bytes;
        const auto first = static_cast<size_t>(m_position);
        if (first + size > bytes.size())
            bytes.resize(first + size);
        std::memcpy(bytes.data() + first, buffer, size);
        m_position += size;
        m_content->changed = true;
        if (written)
            *written = size;
        return S_OK;
    });
}

STDMETHODIMP ByteStream::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position)
{
    const ScopedLock lock(m_content->lock);
    std::uint64_t from = 0;
    if (origin == STREAM_SEEK_CUR)
        from = m_position;
    else if (origin == STREAM_SEEK_END)
        from = m_content->bytes.size();
    else if (origin != STREAM_SEEK_SET)
        return STG_E_INVALIDFUNCTION;
    // The position stays below the sign bit, so neither sum can wrap around.
    constexpr std::uint64_t kLast = 0x7FFFFFFFFFFFFFFF;
    if (move.QuadPart < 0)
    {
        const std::uint64_t back = 0 - static_cast<std::uint64_t>(move.QuadPart);
        if (back > from)
            return STG_E_INVALIDFUNCTION;
        from -= back;
    }
    else
    {
        if (static_cast<std::uint64_t>(move.QuadPart) > kLast - from)
            return STG_E_INVALIDFUNCTION;
        from += static_cast<std::uint64_t>(move.QuadPart);
    }
    m_position = from;
    if (position)
        position->QuadPart = from;
    return S_OK;
}

STDMETHODIMP ByteStream::SetSize(ULARGE_INTEGER size)
{
    const ScopedLock lock(m_content->lock);
    if (!m_content->writable)
        return STG_E_ACCESSDENIED;
    if (size.QuadPart > kMaxValueBytes)
        return STG_E_MEDIUMFULL;
    return Guarded([&] {
        m_content->bytes.resize(static_cast<size_t>(size.QuadPart));
        m_content->changed = true;
        return S_OK;
    });
}

STDMETHODIMP ByteStream::CopyTo(IStream* target,
                                ULARGE_INTEGER size,
                                ULARGE_INTEGER* read,
                                ULARGE_INTEGER* written)
{
    if (read)
        read->QuadPart = 0;
    if (written)
        written->QuadPart = 0;
    if (!target)
        return STG_E_INVALIDPOINTER;
    return Guarded([&] {
        Bytes piece(kCopyBytes);
        std::uint64_t left = size.QuadPart;
        std::uint64_t copied = 0;
        while (left > 0)
        {
            const auto wanted = static_cast<ULONG>(std::min<std::uint64_t>(left, kCopyBytes));
            ULONG count = 0;
            {
                // The target is called without the lock: it may be a clone of this stream.
                const ScopedLock lock(m_content->lock);
                count = TakeBytes(piece.data(), wanted);
            }
            if (count == 0)
                break;
            if (read)
                read->QuadPart += count;
            ULONG taken = 0;
            const HRESULT result = target->Write(piece.data(), count, &taken);
            copied += taken;
            if (written)
                written->QuadPart = copied;
            if (FAILED(result))
                return result;
            if (taken < count)
                return STG_E_MEDIUMFULL;
            left -= count;
        }
        return S_OK;
    });
}

STDMETHODIMP ByteStream::Commit(DWORD)
{
    const ScopedLock lock(m_content->lock);
    if (!m_content->changed)
        return S_OK;
    const HRESULT result = Guarded([&] { return m_content->Store(); });
    if (SUCCEEDED(result))
        m_content->changed = false;
    return result;
}

STDMETHODIMP ByteStream::Revert()
{
    const ScopedLock lock(m_content->lock);
    const HRESULT result = Guarded([&] { return m_content->Reload(); });
    if (SUCCEEDED(result))
        m_content->changed = false;
    return result;
}

STDMETHODIMP ByteStream::LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD)
{
    return STG_E_INVALIDFUNCTION;
}

STDMETHODIMP ByteStream::UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD)
{
    return STG_E_INVALIDFUNCTION;
}

STDMETHODIMP ByteStream::Stat(STATSTG* record, DWORD)
{
    if (!record)
        return STG_E_INVALIDPOINTER;
    const ScopedLock lock(m_content->lock);
    *record = {};
    record->type = STGTY_STREAM;
    record->cbSize.QuadPart = m_content->bytes.size();
    record->grfMode = m_content->writable ? STGM_READWRITE : STGM_READ;
    return S_OK;
}

STDMETHODIMP ByteStream::Clone(IStream** stream)
{
    if (!stream)
        return STG_E_INVALIDPOINTER;
    *stream = nullptr;
    return Guarded([&] {
        const ScopedLock lock(m_content->lock);
        *stream = MakeObject<ByteStream>(m_content, m_position).Detach();
        return S_OK;
    });
}
