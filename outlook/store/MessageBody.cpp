#include "outlook/store/MessageBody.h"

#include "outlook/store/ReadValues.h"
#include "outlook/store/StoreObjects.h"
#include "outlook/store/StreamReads.h"
#include "platform/CodePages.h"
#include "service/Log.h"

#include <algorithm>
#include <array>
#include <optional>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr ULONG kBody = 0x1000001F;          // PR_BODY_W
constexpr ULONG kRtfCompressed = 0x10090102; // PR_RTF_COMPRESSED
constexpr ULONG kPieceBytes = 0x400;

// The text that goes out for a body: a lone line break counts as none.
std::wstring TextOfBody(const wchar_t* body)
{
    return lstrcmpiW(body, L"\r\n") == 0 ? std::wstring() : std::wstring(body);
}

// PR_BODY_W; nothing where the message has none.
std::optional<std::wstring> ReadPlainBody(IMAPIProp* message, CNProxcy& proxy)
{
    const ReadValues values(*message, {&kBody, 1}, proxy);
    const wchar_t* const body = values.View().Text(0);
    // A warning counts as a failure here.
    if (values.Result() != S_OK || !body)
        return std::nullopt;
    return TextOfBody(body);
}

// The streams of the message's RTF; the plain one is null where a step fails.
struct RtfStreams
{
    ComPtr<IStream> compressed;
    ComPtr<IStream> plain;
};

RtfStreams OpenRtf(IMAPIProp* message, CNProxcy& proxy)
{
    RtfStreams streams;
    streams.compressed = OpenStream(*message, kRtfCompressed, 0);
    if (!streams.compressed)
        return streams;
    IStream* plain = nullptr;
    // What a failed call left in its output is nobody's.
    if (SUCCEEDED(proxy.WrapCompressedRTFStream(streams.compressed.Get(), 0, &plain)))
        *streams.plain.GetAddressOf() = plain;
    return streams;
}

// The bytes of one read, capped by what was asked for; 0 where it failed.
ULONG Read(IStream* stream, char* buffer, ULONG size)
{
    ULONG read = 0;
    return FAILED(stream->Read(buffer, size, &read)) ? 0 : std::min(read, size);
}

// The stream tells no size, so that a first pass counts.
ULONG CountBytes(IStream* stream)
{
    std::array<char, kPieceBytes> piece;
    ULONG total = 0;
    for (unsigned reads = 0; total <= kLongestRtfBytes && reads < kMostStreamReads; ++reads)
    {
        const ULONG read = Read(stream, piece.data(), kPieceBytes);
        if (read == 0)
            break;
        total += read;
    }
    return total;
}

// Fills the buffer with as many bytes as come; a stream that gives all at once is read once.
// Returns: how many came.
ULONG ReadWhole(IStream* stream, std::string& buffer)
{
    const ULONG size = static_cast<ULONG>(buffer.size());
    ULONG total = 0;
    for (unsigned reads = 0; total < size && reads < kMostStreamReads; ++reads)
    {
        const ULONG read = Read(stream, buffer.data() + total, size - total);
        if (read == 0)
            break;
        total += read;
    }
    return total;
}

// The bytes up to their first zero, as text of the system's ANSI code page.
std::wstring WideText(const char* bytes)
{
    std::wstring text;
    AppendFromCodePage(GetACP(), bytes, text);
    return text;
}

std::wstring ReadRtf(IMAPIProp* message, CNProxcy& proxy)
{
    const RtfStreams streams = OpenRtf(message, proxy);
    IStream* const stream = streams.plain.Get();
    if (!stream)
        return {};
    const ULONG size = CountBytes(stream);
    if (size == 0)
        return {};
    std::string bytes(size, '\0');
    if (FAILED(stream->Seek({}, STREAM_SEEK_SET, nullptr)))
        return {};
    bytes.resize(ReadWhole(stream, bytes));
    return WideText(bytes.c_str());
}
} // namespace

std::wstring ReadMessageBody(IMAPIProp* message,
                             bool isPresent,
                             CNProxcy& proxy,
                             std::unique_ptr<CRichEditHelper>& converter)
{
    // Kept as it is: a contact chooses by its RTF, so that a plain note without RTF is not read.
    // Pinned by MessageBodyTest.WithoutTheChoosingPropertyThePlainBodyIsNotAskedFor.
    if (isPresent)
        if (std::optional<std::wstring> body = ReadPlainBody(message, proxy))
            return *std::move(body);
    LogPrintf(L"Get note Failed, Get from PR_RTF_COMPRESSED agian");
    return ReadRtfBody(message, proxy, converter);
}

std::wstring ReadRtfBody(IMAPIProp* message,
                         CNProxcy& proxy,
                         std::unique_ptr<CRichEditHelper>& converter)
{
    if (!converter)
    {
        converter = std::make_unique<CRichEditHelper>();
        converter->Init();
    }
    const std::wstring rtf = ReadRtf(message, proxy);
    std::wstring text;
    if (!rtf.empty() && !converter->Convert(rtf, text))
        text.clear();
    return text;
}
