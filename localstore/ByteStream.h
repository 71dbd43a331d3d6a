// IStream over bytes in memory: what property streams and RTF streams share. Where the bytes come
// from and where they go to is the content's matter.
// Thread: any; clones share the bytes.
#pragma once

#include "localstore/ComObject.h"
#include "localstore/StoreSchema.h"
#include "platform/ScopedLock.h"
#include "platform/WindowsHeaders.h"

#include <memory>

// The bytes of a stream and all its clones.
class StreamContent
{
  public:
    virtual ~StreamContent() = default;

    SRWLOCK lock = SRWLOCK_INIT;
    Bytes bytes;
    // Written since the last Store.
    bool changed = false;
    bool writable = false;

    // Takes the bytes to where they belong. Called under the lock.
    virtual HRESULT Store() = 0;
    // Makes the bytes those of the last Store. Called under the lock.
    virtual HRESULT Reload() = 0;
};

class ByteStream : public ComObject<IStream, &IID_ISequentialStream, &IID_IStream>
{
  public:
    explicit ByteStream(std::shared_ptr<StreamContent> content, std::uint64_t position = 0);

    STDMETHODIMP Read(void* buffer, ULONG size, ULONG* read) override;
    STDMETHODIMP Write(const void* buffer, ULONG size, ULONG* written) override;
    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override;
    STDMETHODIMP SetSize(ULARGE_INTEGER size) override;
    STDMETHODIMP
    CopyTo(IStream* target,
           ULARGE_INTEGER size,
           ULARGE_INTEGER* read,
           ULARGE_INTEGER* written) override;
    STDMETHODIMP Commit(DWORD flags) override;
    STDMETHODIMP Revert() override;
    STDMETHODIMP LockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER size, DWORD type) override;
    STDMETHODIMP UnlockRegion(ULARGE_INTEGER offset, ULARGE_INTEGER size, DWORD type) override;
    // The stream has no name: the record's is null whatever the flags say.
    STDMETHODIMP Stat(STATSTG* record, DWORD flags) override;
    // The clone begins at this stream's position and shares its bytes.
    STDMETHODIMP Clone(IStream** stream) override;

  private:
    ULONG TakeBytes(void* buffer, ULONG size) noexcept;

    std::shared_ptr<StreamContent> m_content;
    std::uint64_t m_position;
};
