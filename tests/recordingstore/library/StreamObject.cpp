#include "tests/recordingstore/library/StreamObject.h"

#include "tests/recordingstore/library/HostileAnswers.h"

#include <algorithm>
#include <cstring>

StreamObject::StreamObject(std::string name, ByteString bytes)
    : RecordedObject("IStream", std::move(name)), m_bytes(std::move(bytes))
{
}

StreamObject::StreamObject(
    std::string name, ByteString bytes, std::shared_ptr<PropertyBag> target, USHORT id, ULONG type)
    : RecordedObject("IStream", std::move(name)), m_bytes(std::move(bytes)),
      m_target(std::move(target)), m_id(id), m_type(type)
{
}

HRESULT StreamObject::ReadBadly(BYTE* buffer, ULONG size, ULONG& given)
{
    if (m_manner == StoreFault::BreakingStream && m_position > 0)
        return STG_E_READFAULT;
    const ULONG most = m_manner == StoreFault::EmptyStream     ? 0
                       : m_manner == StoreFault::EndlessStream ? size
                                                               : 1;
    given = std::min(size, most);
    std::fill_n(buffer, given, static_cast<BYTE>('x'));
    m_position += given;
    return S_OK;
}

HRESULT StreamObject::Read(void* buffer, ULONG size, ULONG* read)
{
    return RunCall(
        Begin("Read(" + std::to_string(size) + ")"),
        [&](StoreFault fault) -> HRESULT {
            if (!buffer)
                return STG_E_INVALIDPOINTER;
            if (m_manner != StoreFault::None)
            {
                ULONG given = 0;
                const HRESULT result = ReadBadly(static_cast<BYTE*>(buffer), size, given);
                if (read)
                    *read = given;
                return result;
            }
            std::uint64_t there = m_position < m_bytes.size() ? m_bytes.size() - m_position : 0;
            there = std::min<std::uint64_t>(there, size);
            if (fault == StoreFault::FewerValues && there > 0)
                --there;
            if (there)
                std::memcpy(buffer, m_bytes.data() + m_position, there);
            m_position += there;
            if (read)
                *read = static_cast<ULONG>(there);
            SpoilNumber(fault, read);
            return S_OK;
        },
        read);
}

HRESULT StreamObject::Write(const void* bytes, ULONG size, ULONG* written)
{
    return RunCall(
        Begin("Write(" + std::to_string(size) + ")"),
        [&](StoreFault fault) -> HRESULT {
            if (!m_target)
                return STG_E_ACCESSDENIED;
            if (!bytes && size)
                return STG_E_INVALIDPOINTER;
            const std::size_t count = fault == StoreFault::FewerValues && size ? size - 1 : size;
            const std::size_t end = static_cast<std::size_t>(m_position) + count;
            if (end > m_bytes.size())
                m_bytes.resize(end);
            if (count)
                std::memcpy(m_bytes.data() + m_position, bytes, count);
            m_position = end;
            if (written)
                *written = static_cast<ULONG>(count);
            SpoilNumber(fault, written);
            return S_OK;
        },
        written);
}

HRESULT StreamObject::Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position)
{
    return RunCall(
        Begin("Seek(" + std::to_string(move.QuadPart) + ", " + std::to_string(origin) + ")"),
        [&](StoreFault) -> HRESULT {
            std::int64_t from = 0;
            if (origin == STREAM_SEEK_CUR)
                from = static_cast<std::int64_t>(m_position);
            else if (origin == STREAM_SEEK_END)
                from = static_cast<std::int64_t>(m_bytes.size());
            else if (origin != STREAM_SEEK_SET)
                return STG_E_INVALIDFUNCTION;
            const std::int64_t to = from + move.QuadPart;
            if (to < 0)
                return STG_E_INVALIDFUNCTION;
            m_position = static_cast<std::uint64_t>(to);
            if (position)
                position->QuadPart = m_position;
            return S_OK;
        });
}

HRESULT StreamObject::SetSize(ULARGE_INTEGER size)
{
    return RunCall(Begin("SetSize(" + std::to_string(size.QuadPart) + ")"),
                   [&](StoreFault) -> HRESULT {
                       if (!m_target)
                           return STG_E_ACCESSDENIED;
                       m_bytes.resize(size.QuadPart);
                       return S_OK;
                   });
}

HRESULT
StreamObject::CopyTo(IStream* to,
                     ULARGE_INTEGER size,
                     ULARGE_INTEGER* read,
                     ULARGE_INTEGER* written)
{
    return RunCall(
        Begin("CopyTo(" + ObjectText(to) + ", " + std::to_string(size.QuadPart) + ")"),
        [&](StoreFault) -> HRESULT {
            if (!to)
                return STG_E_INVALIDPOINTER;
            const std::uint64_t there =
                m_position < m_bytes.size() ? m_bytes.size() - m_position : 0;
            const ULONG count = static_cast<ULONG>(std::min<std::uint64_t>(there, size.QuadPart));
            ULONG done = 0;
            Recorder::Quiet quiet(TheLibrary().recorder);
            const HRESULT result = to->Write(m_bytes.data() + m_position, count, &done);
            m_position += count;
            if (read)
                read->QuadPart = count;
            if (written)
                written->QuadPart = done;
            return result;
        },
        read,
        written);
}

HRESULT StreamObject::Commit(DWORD flags)
{
    return RunCall(Begin("Commit(" + FlagsText(flags) + ")"), [&](StoreFault) -> HRESULT {
        if (!m_target)
            return S_OK;
        Value value;
        value.type = m_type;
        value.bytes = m_bytes;
        m_target->Put(m_id, std::move(value));
        return S_OK;
    });
}

HRESULT StreamObject::Stat(STATSTG* state, DWORD flags)
{
    return RunCall(
        Begin("Stat(" + FlagsText(flags) + ")"),
        [&](StoreFault) -> HRESULT {
            if (!state)
                return STG_E_INVALIDPOINTER;
            *state = {};
            state->type = STGTY_STREAM;
            state->cbSize.QuadPart = m_bytes.size();
            state->grfMode = m_target ? STGM_READWRITE : STGM_READ;
            return S_OK;
        },
        state);
}
