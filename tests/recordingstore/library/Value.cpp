#include "tests/recordingstore/library/Value.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace
{
ByteString Copy(const void* bytes, std::size_t size)
{
    const auto* const from = static_cast<const BYTE*>(bytes);
    return size ? ByteString(from, from + size) : ByteString();
}

// The bytes of a number of each type, at the start of the union.
std::size_t NumberSize(ULONG type)
{
    switch (type)
    {
    case PT_I2:
    case PT_BOOLEAN:
        return 2;
    case PT_LONG:
    case PT_R4:
    case PT_ERROR:
        return 4;
    case PT_DOUBLE:
    case PT_CURRENCY:
    case PT_APPTIME:
    case PT_I8:
    case PT_SYSTIME:
        return 8;
    default:
        return 0;
    }
}

Value FromBinary(ULONG type, const SBinary& binary)
{
    Value value;
    value.type = type;
    value.bytes = Copy(binary.lpb, binary.lpb ? binary.cb : 0);
    return value;
}

Value FromWide(const wchar_t* text)
{
    return TextValue(text ? text : L"");
}

Value FromNarrow(const char* text)
{
    Value value;
    value.type = PT_STRING8;
    value.bytes = Copy(text, text ? std::strlen(text) : 0);
    return value;
}

Value FromGuid(const GUID& guid)
{
    Value value;
    value.type = PT_CLSID;
    value.bytes = Copy(&guid, sizeof guid);
    return value;
}

// Multi-valued ones: {count, array} at the start of the union.
template <typename Element, typename Make>
std::optional<Value> FromArray(const SPropValue& from, Make make)
{
    struct Array
    {
        ULONG count;
        const Element* elements;
    };
    Array array;
    static_assert(sizeof array == sizeof(SLongArray));
    std::memcpy(&array, &from.Value, sizeof array);
    if (array.count && !array.elements)
        return std::nullopt;
    Value value;
    value.type = PROP_TYPE(from.ulPropTag);
    for (ULONG i = 0; i < array.count; ++i)
        value.items.push_back(make(array.elements[i]));
    return value;
}

template <typename Element> std::optional<Value> FromNumbers(const SPropValue& from)
{
    const ULONG type = PROP_TYPE(from.ulPropTag) & ~MV_FLAG;
    return FromArray<Element>(from, [type](const Element& element) {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &element, sizeof element);
        return NumberValue(type, bits);
    });
}

void* CopyOut(const ByteString& bytes, std::size_t terminator, const Allocator& allocate)
{
    void* const copy = allocate(bytes.size() + terminator);
    if (!bytes.empty())
        std::memcpy(copy, bytes.data(), bytes.size());
    return copy;
}

template <typename Element, typename Make>
void ToArray(const Value& value, const Allocator& allocate, SPropValue& out, Make make)
{
    auto* const elements =
        static_cast<Element*>(allocate(value.items.size() * sizeof(Element) + 1));
    for (std::size_t i = 0; i < value.items.size(); ++i)
        elements[i] = make(value.items[i]);
    struct
    {
        ULONG count;
        Element* elements;
    } const array = {static_cast<ULONG>(value.items.size()), elements};
    std::memcpy(&out.Value, &array, sizeof array);
}

template <typename Element>
void ToNumbers(const Value& value, const Allocator& allocate, SPropValue& out)
{
    ToArray<Element>(value, allocate, out, [](const Value& item) {
        Element element;
        std::memcpy(&element, &item.bits, sizeof element);
        return element;
    });
}

SBinary OutBinary(const Value& value, const Allocator& allocate)
{
    return {static_cast<ULONG>(value.bytes.size()),
            static_cast<BYTE*>(CopyOut(value.bytes, 1, allocate))};
}
wchar_t* OutWide(const Value& value, const Allocator& allocate)
{
    return static_cast<wchar_t*>(CopyOut(value.bytes, sizeof(wchar_t), allocate));
}
char* OutNarrow(const Value& value, const Allocator& allocate)
{
    return static_cast<char*>(CopyOut(value.bytes, 1, allocate));
}
GUID OutGuid(const Value& value)
{
    GUID guid = {};
    std::memcpy(&guid, value.bytes.data(), std::min(sizeof guid, value.bytes.size()));
    return guid;
}

template <typename T> int Order(T left, T right)
{
    return left < right ? -1 : right < left;
}

int CompareNumbers(const Value& left, const Value& right)
{
    const auto as = [](const Value& value, auto number) {
        std::memcpy(&number, &value.bits, sizeof number);
        return number;
    };
    switch (left.type)
    {
    case PT_I2:
        return Order(as(left, short{}), as(right, short{}));
    case PT_LONG:
        return Order(as(left, LONG{}), as(right, LONG{}));
    case PT_R4:
        return Order(as(left, float{}), as(right, float{}));
    case PT_DOUBLE:
    case PT_APPTIME:
        return Order(as(left, double{}), as(right, double{}));
    case PT_CURRENCY:
    case PT_I8:
        return Order(static_cast<std::int64_t>(left.bits), static_cast<std::int64_t>(right.bits));
    default:
        return Order(left.bits, right.bits);
    }
}
} // namespace

std::optional<Value> ReadValue(const SPropValue& from)
{
    const ULONG type = PROP_TYPE(from.ulPropTag);
    if (const std::size_t size = NumberSize(type))
    {
        std::uint64_t bits = 0;
        std::memcpy(&bits, &from.Value, size);
        return NumberValue(type, bits);
    }
    switch (type)
    {
    case PT_UNICODE:
        return from.Value.lpszW ? std::optional(FromWide(from.Value.lpszW)) : std::nullopt;
    case PT_STRING8:
        return from.Value.lpszA ? std::optional(FromNarrow(from.Value.lpszA)) : std::nullopt;
    case PT_BINARY:
        if (from.Value.bin.cb && !from.Value.bin.lpb)
            return std::nullopt;
        return FromBinary(type, from.Value.bin);
    case PT_CLSID:
        return from.Value.lpguid ? std::optional(FromGuid(*from.Value.lpguid)) : std::nullopt;
    case PT_MV_I2:
        return FromNumbers<short>(from);
    case PT_MV_LONG:
        return FromNumbers<LONG>(from);
    case PT_MV_R4:
        return FromNumbers<float>(from);
    case PT_MV_DOUBLE:
    case PT_MV_APPTIME:
    case PT_MV_CURRENCY:
    case PT_MV_I8:
    case PT_MV_SYSTIME:
        return FromNumbers<std::uint64_t>(from);
    case PT_MV_UNICODE:
        return FromArray<wchar_t*>(from, FromWide);
    case PT_MV_STRING8:
        return FromArray<char*>(from, FromNarrow);
    case PT_MV_BINARY:
        return FromArray<SBinary>(from,
                                  [](const SBinary& one) { return FromBinary(PT_BINARY, one); });
    case PT_MV_CLSID:
        return FromArray<GUID>(from, FromGuid);
    default:
        return std::nullopt;
    }
}

void WriteValue(const Value& value, USHORT id, const Allocator& allocate, SPropValue& out)
{
    out = {};
    out.ulPropTag = PROP_TAG(value.type, id);
    switch (value.type)
    {
    case PT_UNICODE:
        out.Value.lpszW = OutWide(value, allocate);
        break;
    case PT_STRING8:
        out.Value.lpszA = OutNarrow(value, allocate);
        break;
    case PT_BINARY:
        out.Value.bin = OutBinary(value, allocate);
        break;
    case PT_CLSID:
        out.Value.lpguid = static_cast<GUID*>(allocate(sizeof(GUID)));
        *out.Value.lpguid = OutGuid(value);
        break;
    case PT_MV_I2:
        return ToNumbers<short>(value, allocate, out);
    case PT_MV_LONG:
        return ToNumbers<LONG>(value, allocate, out);
    case PT_MV_R4:
        return ToNumbers<float>(value, allocate, out);
    case PT_MV_DOUBLE:
    case PT_MV_APPTIME:
    case PT_MV_CURRENCY:
    case PT_MV_I8:
    case PT_MV_SYSTIME:
        return ToNumbers<std::uint64_t>(value, allocate, out);
    case PT_MV_UNICODE:
        return ToArray<wchar_t*>(
            value, allocate, out, [&](const Value& item) { return OutWide(item, allocate); });
    case PT_MV_STRING8:
        return ToArray<char*>(
            value, allocate, out, [&](const Value& item) { return OutNarrow(item, allocate); });
    case PT_MV_BINARY:
        return ToArray<SBinary>(
            value, allocate, out, [&](const Value& item) { return OutBinary(item, allocate); });
    case PT_MV_CLSID:
        return ToArray<GUID>(value, allocate, out, OutGuid);
    default:
        std::memcpy(&out.Value, &value.bits, NumberSize(value.type));
    }
}

void WriteError(USHORT id, SCODE code, SPropValue& out)
{
    out = {};
    out.ulPropTag = PROP_TAG(PT_ERROR, id);
    out.Value.err = code;
}

std::optional<Value> InType(const Value& value, ULONG type)
{
    if (type == PT_UNSPECIFIED || type == value.type)
        return value;
    const bool isMany = (type & MV_FLAG) != 0;
    const ULONG wanted = type & ~MV_FLAG;
    const ULONG there = value.type & ~MV_FLAG;
    const auto isText = [](ULONG one) { return one == PT_UNICODE || one == PT_STRING8; };
    if (isMany != ((value.type & MV_FLAG) != 0) || !isText(wanted) || !isText(there))
        return std::nullopt;
    if (isMany)
    {
        Value converted;
        converted.type = type;
        for (const Value& item : value.items)
            converted.items.push_back(*InType(item, wanted));
        return converted;
    }
    const int size = static_cast<int>(value.bytes.size());
    Value converted;
    converted.type = wanted;
    if (size == 0)
        return converted;
    if (wanted == PT_UNICODE)
    {
        const auto* const text = reinterpret_cast<const char*>(value.bytes.data());
        std::wstring wide(
            static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, text, size, nullptr, 0)),
            L'\0');
        MultiByteToWideChar(CP_ACP, 0, text, size, wide.data(), static_cast<int>(wide.size()));
        return TextValue(wide);
    }
    const std::wstring wide = WideTextOf(value);
    const int units = static_cast<int>(wide.size());
    converted.bytes.resize(static_cast<std::size_t>(
        WideCharToMultiByte(CP_ACP, 0, wide.data(), units, nullptr, 0, nullptr, nullptr)));
    WideCharToMultiByte(CP_ACP,
                        0,
                        wide.data(),
                        units,
                        reinterpret_cast<char*>(converted.bytes.data()),
                        static_cast<int>(converted.bytes.size()),
                        nullptr,
                        nullptr);
    return converted;
}

Value TextValue(std::wstring_view text)
{
    Value value;
    value.type = PT_UNICODE;
    value.bytes = Copy(text.data(), text.size() * sizeof(wchar_t));
    return value;
}

Value NumberValue(ULONG type, std::uint64_t bits)
{
    Value value;
    value.type = type;
    value.bits = bits;
    return value;
}

Value BinaryValue(const ByteString& bytes)
{
    Value value;
    value.type = PT_BINARY;
    value.bytes = bytes;
    return value;
}

std::wstring WideTextOf(const Value& value)
{
    const std::optional<Value> wide = InType(value, PT_UNICODE);
    if (!wide)
        return {};
    std::wstring text(wide->bytes.size() / sizeof(wchar_t), L'\0');
    if (!text.empty())
        std::memcpy(text.data(), wide->bytes.data(), text.size() * sizeof(wchar_t));
    return text;
}

int CompareValues(const Value& left, const Value& right, bool ignoreCase)
{
    if (left.type == PT_UNICODE || left.type == PT_STRING8)
    {
        const std::wstring a = WideTextOf(left);
        const std::wstring b = WideTextOf(right);
        if (ignoreCase)
            return CompareStringW(LOCALE_USER_DEFAULT,
                                  NORM_IGNORECASE,
                                  a.data(),
                                  static_cast<int>(a.size()),
                                  b.data(),
                                  static_cast<int>(b.size())) -
                   CSTR_EQUAL;
        return a.compare(b);
    }
    if (NumberSize(left.type))
        return CompareNumbers(left, right);
    return Order(left.bytes, right.bytes);
}
