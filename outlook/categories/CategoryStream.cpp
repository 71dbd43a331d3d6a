#include "outlook/categories/CategoryStream.h"

#include "outlook/store/MapiMemory.h"
#include "outlook/store/StreamReads.h"
#include "outlook/store/TagArray.h"
#include "service/XmlScan.h"

#include <algorithm>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr ULONG kStreamTag = 0x7C080102; // PR_ROAMING_XMLSTREAM
constexpr ULONG kPieceBytes = 0x4000;

CategoryStream ReadLarge(IMAPIProp& message, std::string& text)
{
    IUnknown* opened = nullptr;
    // What a failed call left in its output is nobody's.
    if (FAILED(message.OpenProperty(kStreamTag, &IID_IStream, 0, 0, &opened)) || !opened)
        return CategoryStream::Unreadable;
    ComPtr<IStream> stream;
    *stream.GetAddressOf() = static_cast<IStream*>(opened); // the interface that was asked for
    std::string bytes;
    for (unsigned reads = 0;; ++reads)
    {
        const std::size_t size = bytes.size();
        bytes.resize(size + kPieceBytes);
        ULONG read = 0;
        if (FAILED(stream->Read(bytes.data() + size, kPieceBytes, &read)))
            return CategoryStream::Unreadable;
        bytes.resize(size + std::min(read, kPieceBytes));
        if (bytes.size() > kMaxXmlBytes || reads == kMostStreamReads)
            return CategoryStream::Unreadable;
        if (read == 0)
            break;
    }
    // The store said that there is a value.
    if (bytes.empty())
        return CategoryStream::Unreadable;
    text = std::move(bytes);
    return CategoryStream::Read;
}
} // namespace

CategoryStream ReadCategoryStream(IMAPIProp& message, CNProxcy& proxy, std::string& text)
{
    TagArray tags({&kStreamTag, 1});
    ULONG count = 0;
    SPropValue* delivered = nullptr;
    const HRESULT result = message.GetProps(tags.Get(), MAPI_UNICODE, &count, &delivered);
    // What a failed call left in its outputs is nobody's.
    const auto value = AdoptMapiBuffer(SUCCEEDED(result) ? delivered : nullptr, proxy);
    if (!value || count == 0)
        return CategoryStream::Unreadable;
    if (PROP_TYPE(value->ulPropTag) == PT_ERROR)
        return value->Value.err == MAPI_E_NOT_ENOUGH_MEMORY ? ReadLarge(message, text)
                                                            : CategoryStream::Missing;
    if (PROP_TYPE(value->ulPropTag) != PT_BINARY)
        return CategoryStream::Unreadable;
    const SBinary& bytes = value->Value.bin;
    if (bytes.cb == 0)
        return CategoryStream::Missing;
    if (!bytes.lpb)
        return CategoryStream::Unreadable;
    text.assign(reinterpret_cast<const char*>(bytes.lpb), bytes.cb);
    return CategoryStream::Read;
}

bool WriteCategoryStream(IMAPIProp& message, CNProxcy& proxy, const std::string& text)
{
    SPropValue value = {};
    value.ulPropTag = kStreamTag;
    // Values hold plain pointers; the interface does not write through.
    auto* const bytes = reinterpret_cast<BYTE*>(const_cast<char*>(text.data()));
    value.Value.bin = {static_cast<ULONG>(text.size()), bytes};
    SPropProblemArray* problems = nullptr;
    const HRESULT set = message.SetProps(1, &value, &problems);
    const auto owned = AdoptMapiBuffer(SUCCEEDED(set) ? problems : nullptr, proxy);
    // A problem with the one value is told as a success of the call.
    if (FAILED(set) || (owned && owned->cProblem != 0))
        return false;
    return SUCCEEDED(message.SaveChanges(FORCE_SAVE));
}
