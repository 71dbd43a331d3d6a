#include "localstore/MapiValues.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <deque>
#include <span>
#include <string>

namespace
{

// Fills a block from its front; every piece begins at a multiple of eight. The block's size was
// worked out before with the same rule.
class Packer
{
  public:
    explicit Packer(void* block) : m_next(static_cast<std::byte*>(block)) {}

    static size_t Padded(size_t size) { return (size + 7) & ~size_t{7}; }

    void* Take(size_t size)
    {
        void* piece = m_next;
        m_next += Padded(size);
        return piece;
    }

  private:
    std::byte* m_next;
};

void* CopyBytes(Packer& packer, const void* bytes, size_t size)
{
    void* copy = packer.Take(size);
    if (size)
        std::memcpy(copy, bytes, size);
    return copy;
}

wchar_t* CopyText(Packer& packer, const std::wstring& text)
{
    return static_cast<wchar_t*>(
        CopyBytes(packer, text.c_str(), (text.size() + 1) * sizeof(wchar_t)));
}

// The block is zero-filled, so the terminator stands already.
char* CopyText8(Packer& packer, const Bytes& text)
{
    char* copy = static_cast<char*>(packer.Take(text.size() + 1));
    if (!text.empty())
        std::memcpy(copy, text.data(), text.size());
    return copy;
}

SBinary CopyBinary(Packer& packer, const Bytes& bytes)
{
    return {static_cast<ULONG>(bytes.size()),
            static_cast<BYTE*>(CopyBytes(packer, bytes.data(), bytes.size()))};
}

// What a value takes in the block beside its SPropValue.
size_t PackedSize(const PropertyValue& value)
{
    struct Sizes
    {
        ULONG type;
        size_t operator()(std::uint64_t) const { return 0; }
        size_t operator()(const Bytes& bytes) const
        {
            return Packer::Padded(bytes.size() + ((type & ~ULONG{MV_FLAG}) == PT_STRING8 ? 1 : 0));
        }
        size_t operator()(const std::wstring& text) const
        {
            return Packer::Padded((text.size() + 1) * sizeof(wchar_t));
        }
        size_t operator()(const std::vector<std::uint64_t>& items) const
        {
            return items.size() * sizeof(std::uint64_t) + 8;
        }
        size_t operator()(const std::vector<Bytes>& items) const
        {
            size_t size = items.size() * std::max(sizeof(SBinary), sizeof(GUID));
            for (const Bytes& item : items)
                size += (*this)(item);
            return size;
        }
        size_t operator()(const std::vector<std::wstring>& items) const
        {
            size_t size = items.size() * sizeof(wchar_t*);
            for (const std::wstring& item : items)
                size += (*this)(item);
            return size;
        }
    };
    return std::visit(Sizes{value.type}, value.data);
}

// An array of elements made one by one.
template <typename Element, typename Item, typename Make>
Element* CopyArray(Packer& packer, const std::vector<Item>& items, Make make)
{
    auto* array = static_cast<Element*>(packer.Take(items.size() * sizeof(Element)));
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

std::vector<Bytes> AllToAnsi(const std::vector<std::wstring>& texts)
{
    std::vector<Bytes> converted;
    converted.reserve(texts.size());
    for (const std::wstring& text : texts)
        converted.push_back(AnsiFromWide(text));
    return converted;
}

std::vector<std::wstring> AllToWide(const std::vector<Bytes>& texts)
{
    std::vector<std::wstring> converted;
    converted.reserve(texts.size());
    for (const Bytes& text : texts)
        converted.push_back(WideFromAnsi(text));
    return converted;
}

// The stored value in the type that was asked for; null where that cannot be.
const PropertyValue* InType(const PropertyValue& stored, ULONG type, PropertyValue& converted)
{
    if (type == PT_UNSPECIFIED || type == stored.type)
        return &stored;
    if (type == PT_STRING8 && stored.type == PT_UNICODE)
        converted = {PT_STRING8, AnsiFromWide(std::get<std::wstring>(stored.data))};
    else if (type == PT_UNICODE && stored.type == PT_STRING8)
        converted = {PT_UNICODE, WideFromAnsi(std::get<Bytes>(stored.data))};
    else if (type == PT_MV_STRING8 && stored.type == PT_MV_UNICODE)
        converted = {PT_MV_STRING8, AllToAnsi(std::get<std::vector<std::wstring>>(stored.data))};
    else if (type == PT_MV_UNICODE && stored.type == PT_MV_STRING8)
        converted = {PT_MV_UNICODE, AllToWide(std::get<std::vector<Bytes>>(stored.data))};
    else
        return nullptr;
    return &converted;
}

// The type that stands for PT_UNSPECIFIED where the value is text.
ULONG TypeForUntyped(const PropertyValue& stored, UntypedText untyped)
{
    const ULONG single = stored.type & ~ULONG{MV_FLAG};
    if (untyped == UntypedText::AsStored || (single != PT_UNICODE && single != PT_STRING8))
        return PT_UNSPECIFIED;
    return (untyped == UntypedText::Unicode ? PT_UNICODE : PT_STRING8) | (stored.type & MV_FLAG);
}

void FillSingle(const PropertyValue& value, Packer& packer, SPropValue& out)
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
        out.Value.lpszW = CopyText(packer, *text);
    else if (const auto* bytes = std::get_if<Bytes>(&value.data))
    {
        if (value.type == PT_STRING8)
            out.Value.lpszA = CopyText8(packer, *bytes);
        else if (value.type == PT_CLSID)
            out.Value.lpguid = static_cast<GUID*>(CopyBytes(packer, bytes->data(), sizeof(GUID)));
        else
            out.Value.bin = CopyBinary(packer, *bytes);
    }
}

template <typename Element>
Element* CopyNumbers(Packer& packer, const std::vector<std::uint64_t>& items)
{
    return CopyArray<Element>(packer, items, FromBits<Element>);
}

void FillMulti(const PropertyValue& value, Packer& packer, SPropValue& out)
{
    if (const auto* fixed = std::get_if<std::vector<std::uint64_t>>(&value.data))
    {
        // Every array of the union begins with its count.
        out.Value.MVl.cValues = static_cast<ULONG>(fixed->size());
        switch (value.type)
        {
        case PT_MV_I2:
            out.Value.MVi.lpi = CopyNumbers<short>(packer, *fixed);
            break;
        case PT_MV_LONG:
            out.Value.MVl.lpl = CopyNumbers<LONG>(packer, *fixed);
            break;
        case PT_MV_R4:
            out.Value.MVflt.lpflt = CopyNumbers<float>(packer, *fixed);
            break;
        case MV_FLAG | PT_BOOLEAN:
            out.Value.MVi.lpi = CopyNumbers<short>(packer, *fixed);
            break;
        default:
            out.Value.MVli.lpli = CopyNumbers<LARGE_INTEGER>(packer, *fixed);
            break;
        }
    }
    else if (const auto* texts = std::get_if<std::vector<std::wstring>>(&value.data))
    {
        out.Value.MVszW.cValues = static_cast<ULONG>(texts->size());
        out.Value.MVszW.lppszW = CopyArray<wchar_t*>(
            packer, *texts, [&](const std::wstring& text) { return CopyText(packer, text); });
    }
    else if (const auto* items = std::get_if<std::vector<Bytes>>(&value.data))
    {
        out.Value.MVbin.cValues = static_cast<ULONG>(items->size());
        if (value.type == PT_MV_STRING8)
            out.Value.MVszA.lppszA = CopyArray<char*>(
                packer, *items, [&](const Bytes& text) { return CopyText8(packer, text); });
        else if (value.type == PT_MV_CLSID)
            out.Value.MVguid.lpguid = CopyArray<GUID>(packer, *items, GuidOf);
        else
            out.Value.MVbin.lpbin = CopyArray<SBinary>(
                packer, *items, [&](const Bytes& bytes) { return CopyBinary(packer, bytes); });
    }
}

template <typename T> std::uint64_t BitsOf(T number)
{
    if constexpr (std::is_same_v<T, float>)
        return std::bit_cast<std::uint32_t>(number);
    else if constexpr (std::is_same_v<T, double>)
        return std::bit_cast<std::uint64_t>(number);
    else
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(number));
}

Bytes CopyOfBytes(const void* bytes, size_t size)
{
    const auto* first = static_cast<const std::byte*>(bytes);
    return Bytes(first, first + size);
}

HRESULT ReadBinary(const SBinary& binary, Bytes& bytes)
{
    if (binary.cb != 0 && !binary.lpb)
        return MAPI_E_INVALID_PARAMETER;
    if (binary.cb > kMaxValueBytes)
        return MAPI_E_TOO_BIG;
    if (binary.cb != 0)
        bytes = CopyOfBytes(binary.lpb, binary.cb);
    return S_OK;
}

HRESULT ReadText(const wchar_t* text, std::wstring& wide)
{
    if (!text)
        return MAPI_E_INVALID_PARAMETER;
    wide = text;
    return wide.size() > kMaxValueBytes / sizeof(wchar_t) ? MAPI_E_TOO_BIG : S_OK;
}

HRESULT ReadText8(const char* text, Bytes& bytes)
{
    if (!text)
        return MAPI_E_INVALID_PARAMETER;
    bytes = CopyOfBytes(text, std::strlen(text));
    return bytes.size() > kMaxValueBytes ? MAPI_E_TOO_BIG : S_OK;
}

HRESULT ReadSingle(const SPropValue& source, PropertyValue& value)
{
    HRESULT result = S_OK;
    switch (value.type)
    {
    case PT_I2:
        value.data = BitsOf(source.Value.i);
        break;
    case PT_LONG:
        value.data = BitsOf(source.Value.l);
        break;
    case PT_BOOLEAN:
        value.data = BitsOf(source.Value.b);
        break;
    case PT_R4:
        value.data = BitsOf(source.Value.flt);
        break;
    case PT_DOUBLE:
    case PT_APPTIME:
        value.data = BitsOf(source.Value.dbl);
        break;
    case PT_CURRENCY:
    case PT_I8:
    case PT_SYSTIME:
        // One layout in the union.
        value.data = BitsOf(source.Value.li.QuadPart);
        break;
    case PT_UNICODE:
        result = ReadText(source.Value.lpszW, value.data.emplace<std::wstring>());
        break;
    case PT_STRING8:
        result = ReadText8(source.Value.lpszA, value.data.emplace<Bytes>());
        break;
    case PT_BINARY:
        result = ReadBinary(source.Value.bin, value.data.emplace<Bytes>());
        break;
    case PT_CLSID:
        if (!source.Value.lpguid)
            return MAPI_E_INVALID_PARAMETER;
        value.data = CopyOfBytes(source.Value.lpguid, sizeof(GUID));
        break;
    default:
        result = MAPI_E_INVALID_TYPE;
        break;
    }
    return result;
}

// Adds up to what one value may have.
class SizeBudget
{
  public:
    HRESULT Take(size_t size)
    {
        if (size > m_left)
            return MAPI_E_TOO_BIG;
        m_left -= size;
        return S_OK;
    }

  private:
    size_t m_left = kMaxValueBytes;
};

template <typename Element>
HRESULT ReadNumbers(const Element* items, ULONG count, PropertyValue& value)
{
    std::vector<std::uint64_t>& numbers = value.data.emplace<std::vector<std::uint64_t>>();
    for (ULONG i = 0; i < count; ++i)
    {
        if constexpr (std::is_same_v<Element, LARGE_INTEGER>)
            numbers.push_back(BitsOf(items[i].QuadPart));
        else
            numbers.push_back(BitsOf(items[i]));
    }
    return S_OK;
}

template <typename Item, typename Element, typename Read>
HRESULT ReadItems(const Element* items, ULONG count, PropertyValue& value, Read read)
{
    std::vector<Item>& list = value.data.emplace<std::vector<Item>>();
    SizeBudget budget;
    for (ULONG i = 0; i < count; ++i)
    {
        Item item;
        if (const HRESULT result = read(items[i], item); FAILED(result))
            return result;
        // Each item is stored with its length.
        const size_t size = sizeof(std::uint32_t) + item.size() * sizeof(item[0]);
        if (const HRESULT result = budget.Take(size); FAILED(result))
            return result;
        list.push_back(std::move(item));
    }
    return S_OK;
}

HRESULT ReadMulti(const SPropValue& source, PropertyValue& value)
{
    // Every array of the union begins with its count and has its address at the same place.
    const ULONG count = source.Value.MVl.cValues;
    if (count != 0 && !source.Value.MVl.lpl)
        return MAPI_E_INVALID_PARAMETER;
    if (count > kMaxValueBytes / sizeof(std::uint64_t))
        return MAPI_E_TOO_BIG;
    switch (value.type)
    {
    case PT_MV_I2:
    case MV_FLAG | PT_BOOLEAN:
        return ReadNumbers(source.Value.MVi.lpi, count, value);
    case PT_MV_LONG:
        return ReadNumbers(source.Value.MVl.lpl, count, value);
    case PT_MV_R4:
        return ReadNumbers(source.Value.MVflt.lpflt, count, value);
    case PT_MV_DOUBLE:
    case PT_MV_APPTIME:
        return ReadNumbers(source.Value.MVdbl.lpdbl, count, value);
    case PT_MV_CURRENCY:
    case PT_MV_I8:
    case PT_MV_SYSTIME:
        return ReadNumbers(source.Value.MVli.lpli, count, value);
    case PT_MV_UNICODE:
        return ReadItems<std::wstring>(source.Value.MVszW.lppszW, count, value, ReadText);
    case PT_MV_STRING8:
        return ReadItems<Bytes>(source.Value.MVszA.lppszA, count, value, ReadText8);
    case PT_MV_BINARY:
        return ReadItems<Bytes>(source.Value.MVbin.lpbin, count, value, ReadBinary);
    case PT_MV_CLSID:
        return ReadItems<Bytes>(
            source.Value.MVguid.lpguid, count, value, [](const GUID& guid, Bytes& bytes) {
                bytes = CopyOfBytes(&guid, sizeof guid);
                return S_OK;
            });
    default:
        return MAPI_E_INVALID_TYPE;
    }
}

} // namespace

Bytes AnsiFromWide(const std::wstring& text)
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

std::wstring WideFromAnsi(const Bytes& text)
{
    const auto* first = reinterpret_cast<const char*>(text.data());
    const int size = static_cast<int>(text.size());
    const int units = size ? MultiByteToWideChar(CP_ACP, 0, first, size, nullptr, 0) : 0;
    std::wstring wide(static_cast<size_t>(units), L'\0');
    if (units)
        MultiByteToWideChar(CP_ACP, 0, first, size, wide.data(), units);
    return wide;
}

std::wstring WideFromCaller(const TCHAR* text, ULONG flags)
{
    if (!text)
        return {};
    if (flags & MAPI_UNICODE)
        return reinterpret_cast<const wchar_t*>(text);
    const std::string_view narrow(reinterpret_cast<const char*>(text));
    const auto bytes = std::as_bytes(std::span(narrow));
    return WideFromAnsi(Bytes(bytes.begin(), bytes.end()));
}

Bytes TextForCaller(const std::wstring& text, ULONG flags)
{
    if (!(flags & MAPI_UNICODE))
    {
        Bytes narrow = AnsiFromWide(text);
        narrow.push_back(std::byte{0});
        return narrow;
    }
    const auto units = std::as_bytes(std::span(text.c_str(), text.size() + 1));
    return Bytes(units.begin(), units.end());
}

void HandOutEntryId(std::span<const std::byte> entryId, ULONG* entryIdBytes, LPENTRYID* copy)
{
    ChainedBuffer buffer(ChainedMemory::OfLibrary(), entryId.size());
    std::ranges::copy(entryId, static_cast<std::byte*>(buffer.Get()));
    *entryIdBytes = static_cast<ULONG>(entryId.size());
    *copy = static_cast<LPENTRYID>(buffer.Detach());
}

std::optional<PropertyValue> ConvertValue(const PropertyValue& stored, std::uint16_t type)
{
    PropertyValue converted;
    const PropertyValue* value = InType(stored, type, converted);
    return value ? std::optional<PropertyValue>(*value) : std::nullopt;
}

HRESULT ReadValue(const SPropValue& source, PropertyValue& value)
{
    const ULONG id = PROP_ID(source.ulPropTag);
    if (id == 0 || id == 0xFFFF)
        return MAPI_E_INVALID_PARAMETER;
    value.type = static_cast<std::uint16_t>(PROP_TYPE(source.ulPropTag));
    return value.type & MV_FLAG ? ReadMulti(source, value) : ReadSingle(source, value);
}

HRESULT CopyValues(const PropertyMap& properties,
                   const std::vector<ULONG>& tags,
                   ChainedMemory& memory,
                   SPropValue** values,
                   UntypedText untyped)
{
    // First what is given out and how much room it takes, then one block for all of it.
    std::vector<const PropertyValue*> chosen(tags.size());
    std::deque<PropertyValue> conversions;
    size_t size = tags.size() * sizeof(SPropValue);
    for (size_t i = 0; i < tags.size(); ++i)
    {
        const auto found = properties.find(static_cast<std::uint16_t>(PROP_ID(tags[i])));
        if (found == properties.end())
            continue;
        ULONG type = PROP_TYPE(tags[i]);
        if (type == PT_UNSPECIFIED)
            type = TypeForUntyped(found->second, untyped);
        PropertyValue converted;
        chosen[i] = InType(found->second, type, converted);
        if (chosen[i] == &converted)
            chosen[i] = &conversions.emplace_back(std::move(converted));
        if (chosen[i])
            size += PackedSize(*chosen[i]);
    }

    ChainedBuffer buffer(memory, size);
    auto* array = static_cast<SPropValue*>(buffer.Get());
    Packer packer(array + tags.size());
    HRESULT result = S_OK;
    for (size_t i = 0; i < tags.size(); ++i)
    {
        SPropValue& out = array[i];
        const PropertyValue* value = chosen[i];
        if (!value)
        {
            out.ulPropTag = CHANGE_PROP_TYPE(tags[i], PT_ERROR);
            out.Value.err = MAPI_E_NOT_FOUND;
            result = MAPI_W_ERRORS_RETURNED;
            continue;
        }
        out.ulPropTag = CHANGE_PROP_TYPE(tags[i], value->type);
        if (value->type & MV_FLAG)
            FillMulti(*value, packer, out);
        else
            FillSingle(*value, packer, out);
    }
    *values = static_cast<SPropValue*>(buffer.Detach());
    return result;
}

PropertySelection SelectionOf(const std::vector<ULONG>& tags)
{
    std::vector<std::uint16_t> ids;
    ids.reserve(tags.size());
    for (const ULONG tag : tags)
        ids.push_back(static_cast<std::uint16_t>(PROP_ID(tag)));
    return PropertySelection(std::move(ids));
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
