#include "outlook/categories/CategoryStream.h"

#include "outlook/store/MapiMemory.h"
#include "outlook/store/ReadValues.h"
#include "outlook/store/StoreObjects.h"
#include "outlook/store/StreamReads.h"
#include "service/XmlScan.h"

#include <algorithm>
#include <optional>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr ULONG kStreamTag = 0x7C080102; // PR_ROAMING_XMLSTREAM
constexpr ULONG kPieceBytes = 0x4000;

CategoryStream ReadLarge(IMAPIProp& message, std::string& text)
{
    const ComPtr<IStream> stream = OpenStream(message, kStreamTag, 0);
    if (!stream)
        return CategoryStream::Unreadable;
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
    const ReadValues values(message, {&kStreamTag, 1}, proxy);
    // Kept as it is: whatever else a store says instead of the value, a denied access included,
    // counts as no document, and loading puts an empty one in its place. Pinned by
    // Outlook2007CategoryListTest.AnyOtherErrorOfTheValueCountsAsMissing.
    if (const std::optional<SCODE> error = values.View().Error(0))
        return *error == MAPI_E_NOT_ENOUGH_MEMORY ? ReadLarge(message, text)
                                                  : CategoryStream::Missing;
    const SBinary* const bytes = values.View().Binary(0);
    if (!bytes)
        return CategoryStream::Unreadable;
    if (bytes->cb == 0)
        return CategoryStream::Missing;
    text.assign(reinterpret_cast<const char*>(bytes->lpb), bytes->cb);
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
