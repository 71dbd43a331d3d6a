#include "localstore/RtfStream.h"

#include "localstore/ByteStream.h"
#include "localstore/CompressedRtf.h"
#include "localstore/MapiValues.h"

#include <algorithm>

using Microsoft::WRL::ComPtr;

namespace
{

constexpr ULONG kReadBytes = 64 * 1024;
// A group of 17 packed bytes gives at most 8 times 17 bytes of text.
constexpr size_t kLargestRatio = 8;

HRESULT ReadAll(IStream& stream, Bytes& bytes)
{
    Bytes piece(kReadBytes);
    for (;;)
    {
        ULONG count = 0;
        if (const HRESULT result = stream.Read(piece.data(), kReadBytes, &count); FAILED(result))
            return result;
        count = std::min(count, kReadBytes);
        if (count == 0)
            return S_OK;
        if (bytes.size() > kMaxValueBytes - count)
            return MAPI_E_TOO_BIG;
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + count);
    }
}

HRESULT WriteAll(IStream& stream, const Bytes& bytes)
{
    if (const HRESULT result = stream.Seek({}, STREAM_SEEK_SET, nullptr); FAILED(result))
        return result;
    for (size_t done = 0; done < bytes.size();)
    {
        const auto left =
            static_cast<ULONG>(std::min<size_t>(bytes.size() - done, size_t{1} << 30));
        ULONG count = 0;
        const HRESULT result = stream.Write(bytes.data() + done, left, &count);
        if (FAILED(result))
            return result;
        if (count == 0 || count > left)
            return STG_E_MEDIUMFULL;
        done += count;
    }
    ULARGE_INTEGER size{};
    size.QuadPart = bytes.size();
    if (const HRESULT result = stream.SetSize(size); FAILED(result))
        return result;
    return stream.Commit(STGC_DEFAULT);
}

HRESULT ResultOfCodec(CodecStatus status)
{
    if (status == CodecStatus::Ok)
        return S_OK;
    return status == CodecStatus::LimitExceeded ? MAPI_E_TOO_BIG : MAPI_E_CORRUPT_DATA;
}

HRESULT Unpack(IStream& compressed, Bytes& text)
{
    Bytes packed;
    if (const HRESULT result = ReadAll(compressed, packed); FAILED(result))
        return result;
    text.clear();
    if (packed.empty())
        return S_OK;
    return ResultOfCodec(DecompressRtf(packed, packed.size() * kLargestRatio, text).status);
}

class RtfContent : public StreamContent
{
  public:
    RtfContent(IStream* compressed, bool plain) : m_compressed(compressed), m_plain(plain) {}
    ~RtfContent() override
    {
        if (changed)
            Guarded([&] { return Store(); });
    }

    HRESULT Store() override
    {
        Bytes packed;
        const auto pack = m_plain ? &StoreRtf : &CompressRtf;
        if (const CodecStatus status = pack(bytes, packed); status != CodecStatus::Ok)
            return ResultOfCodec(status);
        return WriteAll(*m_compressed.Get(), packed);
    }
    HRESULT Reload() override
    {
        if (const HRESULT result = m_compressed->Seek({}, STREAM_SEEK_SET, nullptr); FAILED(result))
            return result;
        Bytes text;
        const HRESULT result = Unpack(*m_compressed.Get(), text);
        if (SUCCEEDED(result))
            bytes.swap(text);
        return result;
    }

  private:
    const ComPtr<IStream> m_compressed;
    const bool m_plain;
};

} // namespace

HRESULT WrapRtfStream(IStream* compressed, ULONG flags, IStream** text) noexcept
{
    if (text)
        *text = nullptr;
    if (!compressed || !text)
        return MAPI_E_INVALID_PARAMETER;
    if (flags & ~(MAPI_MODIFY | STORE_UNCOMPRESSED_RTF))
        return MAPI_E_UNKNOWN_FLAGS;
    return Guarded([&]() -> HRESULT {
        const auto content =
            std::make_shared<RtfContent>(compressed, (flags & STORE_UNCOMPRESSED_RTF) != 0);
        if (const HRESULT result = Unpack(*compressed, content->bytes); FAILED(result))
            return result;
        content->writable = (flags & MAPI_MODIFY) != 0;
        *text = MakeObject<ByteStream>(content).Detach();
        return S_OK;
    });
}
