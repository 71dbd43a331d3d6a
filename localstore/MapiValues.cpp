#include "localstore/MapiValues.h"

#include <bit>
#include <cstring>
#include <span>
#include <string>

namespace
{

void* CopyBytes(ChainedBuffer& buffer, const void* bytes, size_t size)
{
    void* copy = buffer.More(size);
    if (size)
        std::memcpy(copy, bytes, size);
    return copy;
}

wchar_t* CopyText(ChainedBuffer& buffer, const std::wstring& text)
{
    return static_cast<wchar_t*>(
        CopyBytes(buffer, text.c_str(), (text.size() + 1) * sizeof(wchar_t)));
}

char* CopyText8(ChainedBuffer& buffer, const Bytes& text)
{
    char* copy = static_cast<char*>(buffer.More(text.size() + 1));
    if (!text.empty())
        std::memcpy(copy, text.data(), text.size());
    return copy;
}

SBinary CopyBinary(ChainedBuffer& buffer, const Bytes& bytes)
{
    return {static_cast<ULONG>(bytes.size()),
            static_cast<BYTE*>(CopyBytes(buffer, bytes.data(), bytes.size()))};
}

Bytes ToAnsi(const std::wstring& text)
{
    const int units = static_cast<int>(text.size());
    const int size =
        units ? WideCharToMultiByte(CP_ACP, 0, text.data(), units, nullptr, 0, nullptr, nullptr)
              : 0;
    Bytes bytes(static_cast<size_t>(size));
    if (size)
        WideCharToMultiByte(CP_ACP,
                            0,
                            text.data(),
                            units,
                            reinterpret_cast<char*>(bytes.data()),
                            size,
                            nullptr,
                            nullptr);
    return bytes;
}

std::wstring FromAnsi(const Bytes& bytes)
{
    const auto* text = reinterpret_cast<const char*>(bytes.data());
    const int size = static_cast<int>(bytes.size());
    const int units = size ? MultiByteToWideChar(CP_ACP, 0, text, size, nullptr, 0) : 0;
    std::wstring wide(static_cast<size_t>(units), L'\0');
    if (units)
        MultiByteToWideChar(CP_ACP, 0, text, size, wide.data(), units);
    return wide;
}

// An array of elements made one by one.
template <typename Element, typename Item, typename Make>
Element* CopyArray(ChainedBuffer& buffer, const std::vector<Item>& items, Make make)
{
    auto* array = static_cast<Element*>(buffer.More(items.size() * sizeof(Element)));
    for (size_t i = 0; i < items.size(); ++i)
        array[i] = make(items[i]);
    return array;
}

template <typename T> T FromBits(std::uint64_t bits)
{
    if constexpr (std::is_same_v<T, float>)
        return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    else if constexpr (std::is_integral_v<T>)
        return static_cast<T>(bits);
    else
    {
        static_assert(sizeof(T) == sizeof(bits));
        T value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }
}

GUID GuidOf(const Bytes& bytes)
{
    GUID guid{};
    if (bytes.size() == sizeof guid)
        std::memcpy(&guid, bytes.data(), sizeof guid);
    return guid;
}

// The stored value in the type that was asked for; null where that cannot be.
const PropertyValue* InType(const PropertyValue& stored, ULONG type, PropertyValue& converted)
{
    if (type == PT_UNSPECIFIED || type == stored.type)
        return &stored;
    if (type == PT_STRING8 && stored.type == PT_UNICODE)
        converted = {PT_STRING8, ToAnsi(std::get<std::wstring>(stored.data))};
    else if (type == PT_UNICODE && stored.type == PT_STRING8)
        converted = {PT_UNICODE, FromAnsi(std::get<Bytes>(stored.data))};
    else if (type == PT_MV_STRING8 && stored.type == PT_MV_UNICODE)
    {
        std::vector<Bytes> texts;
        for (const std::wstring& text : std::get<std::vector<std::wstring>>(stored.data))
            texts.push_back(ToAnsi(text));
        converted = {PT_MV_STRING8, std::move(texts)};
    }
    else if (type == PT_MV_UNICODE && stored.type == PT_MV_STRING8)
    {
        std::vector<std::wstring> texts;
        for (const Bytes& text : std::get<std::vector<Bytes>>(stored.data))
            texts.push_back(FromAnsi(text));
        converted = {PT_MV_UNICODE, std::move(texts)};
    }
    else
        return nullptr;
    return &converted;
}

void FillSingle(const PropertyValue& value, ChainedBuffer& buffer, SPropValue& out)
{
    if (const auto* fixed = std::get_if<std::uint64_t>(&value.data))
    {
        switch (value.type)
        {
        case PT_I2:
            out.Value.i = FromBits<short>(*fixed);
            break;
        case PT_BOOLEAN:
            out.Value.b = FromBits<unsigned short>(*fixed);
            break;
        case PT_LONG:
            out.Value.l = FromBits<LONG>(*fixed);
            break;
        case PT_R4:
            out.Value.flt = FromBits<float>(*fixed);
            break;
        default:
            // The 64-bit types: one layout in the union.
            out.Value.li = FromBits<LARGE_INTEGER>(*fixed);
            break;
        }
    }
    else if (const auto* text = std::get_if<std::wstring>(&value.data))
        out.Value.lpszW = CopyText(buffer, *text);
    else if (const auto* bytes = std::get_if<Bytes>(&value.data))
    {
        if (value.type == PT_STRING8)
            out.Value.lpszA = CopyText8(buffer, *bytes);
        else if (value.type == PT_CLSID)
            out.Value.lpguid = static_cast<GUID*>(CopyBytes(buffer, bytes->data(), sizeof(GUID)));
        else
            out.Value.bin = CopyBinary(buffer, *bytes);
    }
}

template <typename Element>
Element* CopyNumbers(ChainedBuffer& buffer, const std::vector<std::uint64_t>& items)
{
    return CopyArray<Element>(buffer, items, FromBits<Element>);
}

void FillMulti(const PropertyValue& value, ChainedBuffer& buffer, SPropValue& out)
{
    if (const auto* fixed = std::get_if<std::vector<std::uint64_t>>(&value.data))
    {
        // Every array of the union begins with its count.
        out.Value.MVl.cValues = static_cast<ULONG>(fixed->size());
        switch (value.type)
        {
        case PT_MV_I2:
            out.Value.MVi.lpi = CopyNumbers<short>(buffer, *fixed);
            break;
        case PT_MV_LONG:
            out.Value.MVl.lpl = CopyNumbers<LONG>(buffer, *fixed);
            break;
        case PT_MV_R4:
            out.Value.MVflt.lpflt = CopyNumbers<float>(buffer, *fixed);
            break;
        case MV_FLAG | PT_BOOLEAN:
            out.Value.MVi.lpi = CopyNumbers<short>(buffer, *fixed);
            break;
        default:
            out.Value.MVli.lpli = CopyNumbers<LARGE_INTEGER>(buffer, *fixed);
            break;
        }
    }
    else if (const auto* texts = std::get_if<std::vector<std::wstring>>(&value.data))
    {
        out.Value.MVszW.cValues = static_cast<ULONG>(texts->size());
        out.Value.MVszW.lppszW = CopyArray<wchar_t*>(
            buffer, *texts, [&](const std::wstring& text) { return CopyText(buffer, text); });
    }
    else if (const auto* items = std::get_if<std::vector<Bytes>>(&value.data))
    {
        out.Value.MVbin.cValues = static_cast<ULONG>(items->size());
        if (value.type == PT_MV_STRING8)
            out.Value.MVszA.lppszA = CopyArray<char*>(
                buffer, *items, [&](const Bytes& text) { return CopyText8(buffer, text); });
        else if (value.type == PT_MV_CLSID)
            out.Value.MVguid.lpguid = CopyArray<GUID>(buffer, *items, GuidOf);
        else
            out.Value.MVbin.lpbin = CopyArray<SBinary>(
                buffer, *items, [&](const Bytes& bytes) { return CopyBinary(buffer, bytes); });
    }
}

} // namespace

HRESULT CopyValues(const PropertyMap& properties,
                   const std::vector<ULONG>& tags,
                   ChainedMemory& memory,
                   SPropValue** values)
{
    ChainedBuffer buffer(memory, tags.size() * sizeof(SPropValue));
    auto* array = static_cast<SPropValue*>(buffer.Get());
    HRESULT result = S_OK;
    for (size_t i = 0; i < tags.size(); ++i)
    {
        SPropValue& out = array[i];
        const auto found = properties.find(static_cast<std::uint16_t>(PROP_ID(tags[i])));
        PropertyValue converted;
        const PropertyValue* value = found == properties.end()
                                         ? nullptr
                                         : InType(found->second, PROP_TYPE(tags[i]), converted);
        if (!value)
        {
            out.ulPropTag = CHANGE_PROP_TYPE(tags[i], PT_ERROR);
            out.Value.err = MAPI_E_NOT_FOUND;
            result = MAPI_W_ERRORS_RETURNED;
            continue;
        }
        out.ulPropTag = CHANGE_PROP_TYPE(tags[i], value->type);
        if (value->type & MV_FLAG)
            FillMulti(*value, buffer, out);
        else
            FillSingle(*value, buffer, out);
    }
    *values = static_cast<SPropValue*>(buffer.Detach());
    return result;
}

std::vector<ULONG> TagsOf(const PropertyMap& properties, bool unicode)
{
    std::vector<ULONG> tags;
    for (const auto& [id, value] : properties)
    {
        ULONG type = value.type;
        const ULONG single = type & ~ULONG{MV_FLAG};
        if (single == PT_UNICODE || single == PT_STRING8)
            type = (unicode ? PT_UNICODE : PT_STRING8) | (type & MV_FLAG);
        tags.push_back(PROP_TAG(type, id));
    }
    return tags;
}

HRESULT ReadTags(const SPropTagArray* array, std::vector<ULONG>& tags)
{
    if (!array || array->cValues == 0 || array->cValues > kMaxTags)
        return MAPI_E_INVALID_PARAMETER;
    tags.assign(array->aulPropTag, array->aulPropTag + array->cValues);
    return S_OK;
}

SPropTagArray* CopyTags(const std::vector<ULONG>& tags, ChainedMemory& memory)
{
    ChainedBuffer buffer(memory, CbNewSPropTagArray(tags.size()));
    auto* array = static_cast<SPropTagArray*>(buffer.Get());
    array->cValues = static_cast<ULONG>(tags.size());
    std::copy(tags.begin(), tags.end(), array->aulPropTag);
    return static_cast<SPropTagArray*>(buffer.Detach());
}
