// IStream over bytes in memory: of a property, where Commit writes them back, or of unpacked RTF.
#pragma once

#include "tests/recordingstore/library/PropertyBag.h"
#include "tests/recordingstore/library/RecordedObject.h"

class StreamObject final : public RecordedObject<IStream, &IID_IStream, &IID_ISequentialStream>
{
  public:
    // A reading one.
    StreamObject(std::string name, ByteString bytes);
    // One that writes a property of that type.
    StreamObject(std::string name,
                 ByteString bytes,
                 std::shared_ptr<PropertyBag> target,
                 USHORT id,
                 ULONG type);

    // From now on it reads in the manner of that answer, one about streams.
    void Behave(StoreFault manner) { m_manner = manner; }

    STDMETHODIMP Read(void* buffer, ULONG size, ULONG* read) override;
    STDMETHODIMP Write(const void* bytes, ULONG size, ULONG* written) override;
    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override;
    STDMETHODIMP SetSize(ULARGE_INTEGER size) override;
    STDMETHODIMP
    CopyTo(IStream* to,
           ULARGE_INTEGER size,
           ULARGE_INTEGER* read,
           ULARGE_INTEGER* written) override;
    STDMETHODIMP Commit(DWORD flags) override;
    STDMETHODIMP Revert() override { return NotOffered("Revert"); }
    STDMETHODIMP LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override
    {
        return NotOffered("LockRegion");
    }
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override
    {
        return NotOffered("UnlockRegion");
    }
    STDMETHODIMP Stat(STATSTG* state, DWORD flags) override;
    STDMETHODIMP Clone(IStream**) override { return NotOffered("Clone"); }

  private:
    // What a read of so many bytes gives where the manner is not to read; fails in its own way.
    HRESULT ReadBadly(BYTE* buffer, ULONG size, ULONG& given);

    StoreFault m_manner = StoreFault::None;
    ByteString m_bytes;
    std::uint64_t m_position = 0;
    std::shared_ptr<PropertyBag> m_target;
    USHORT m_id = 0;
    ULONG m_type = PT_NULL;
};
