#include "localstore/BodyForms.h"

#include "localstore/CompressedRtf.h"
#include "localstore/PlainTextRtf.h"

namespace
{

constexpr auto kBody = static_cast<std::uint16_t>(PROP_ID(PR_BODY_W));
constexpr auto kRtf = static_cast<std::uint16_t>(PROP_ID(PR_RTF_COMPRESSED));

// The longest document of RtfOfPlainText with room for its header.
constexpr std::size_t kLargestMadeRtf = kLongestTextForRtf * kMostRtfBytesOfUnit + 1024;

const PropertyValue* Written(const PropertyChanges& changes, std::uint16_t id)
{
    const auto change = changes.find(id);
    return change != changes.end() && change->second ? &*change->second : nullptr;
}

// Nothing for a value that is no text.
std::optional<std::wstring> TextOf(const PropertyValue* value)
{
    std::optional<PropertyValue> converted;
    if (value)
        converted = ConvertValue(*value, PT_UNICODE);
    if (!converted)
        return std::nullopt;
    return std::get<std::wstring>(std::move(converted->data));
}

std::optional<PropertyValue> MakeRtf(const std::wstring& text)
{
    if (text.size() > kLongestTextForRtf)
        return std::nullopt;
    const std::string rtf = RtfOfPlainText(text);
    Bytes compressed;
    if (CompressRtf(std::as_bytes(std::span(rtf)), compressed) != CodecStatus::Ok)
        return std::nullopt;
    return PropertyValue{PT_BINARY, std::move(compressed)};
}

bool IsMadeRtf(const std::optional<PropertyValue>& value)
{
    const Bytes* const compressed = value ? std::get_if<Bytes>(&value->data) : nullptr;
    Bytes rtf;
    return compressed &&
           DecompressRtf(*compressed, kLargestMadeRtf, rtf).status == CodecStatus::Ok &&
           IsRtfOfPlainText({reinterpret_cast<const char*>(rtf.data()), rtf.size()});
}

} // namespace

void FollowBodyChange(Database& database, PropertyOwner message, const PropertyChanges& changes)
{
    if (!changes.contains(kBody) || Written(changes, kRtf))
        return;
    if (const std::optional<std::wstring> text = TextOf(Written(changes, kBody)))
    {
        if (const std::optional<PropertyValue> rtf = MakeRtf(*text))
            WriteProperty(database, message, kRtf, *rtf);
        else
            DeleteProperty(database, message, kRtf);
    }
    else if (IsMadeRtf(ReadProperty(database, message, kRtf)))
        DeleteProperty(database, message, kRtf);
}
