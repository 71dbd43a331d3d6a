// How the proxy library carries arrays between processes. What is no array of records goes the way
// of the runtime; arrays of records go with the identity of their record, their bytes and their
// texts. Records hold numbers and texts only, as those of the contract do.
//
// On the wire, from a multiple of eight bytes on: a 32-bit kind, 32 bits of nothing, and for
// records a Header, the elements, and for each text in them its size in bytes (kNoText for a null
// one) and its bytes.
//
// For tests: both ends are programs of one build, so that what comes in is not distrusted.
#include "platform/WindowsHeaders.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

using Microsoft::WRL::ComPtr;

namespace
{

enum class Kind : std::uint32_t
{
    Null = 0,
    Other = 1,
    Records = 2
};

struct Header
{
    GUID library;
    GUID record;
    std::uint32_t locale;
    std::uint16_t majorVersion;
    std::uint16_t minorVersion;
    std::uint32_t count;
    std::uint32_t elementBytes;
};

constexpr std::uint32_t kNoText = 0xFFFFFFFF;
constexpr std::size_t kKindBytes = sizeof(Kind);

// What there is to know of an array of records.
struct Description
{
    Header header{};
    std::vector<std::size_t> texts; // offsets of the texts in an element
};

Kind KindOf(LPSAFEARRAY array)
{
    VARTYPE type = VT_EMPTY;
    if (!array)
        return Kind::Null;
    return SUCCEEDED(SafeArrayGetVartype(array, &type)) && type == VT_RECORD ? Kind::Records
                                                                             : Kind::Other;
}

[[noreturn]] void Fail(HRESULT result)
{
    RaiseException(static_cast<DWORD>(result), EXCEPTION_NONCONTINUABLE, 0, nullptr);
    __builtin_unreachable();
}

void Check(HRESULT result)
{
    if (FAILED(result))
        Fail(result);
}

void FindTexts(ITypeInfo* type, std::vector<std::size_t>& offsets)
{
    TYPEATTR* attributes = nullptr;
    Check(type->GetTypeAttr(&attributes));
    const UINT fields = attributes->cVars;
    type->ReleaseTypeAttr(attributes);
    for (UINT i = 0; i < fields; ++i)
    {
        VARDESC* field = nullptr;
        Check(type->GetVarDesc(i, &field));
        if (field->elemdescVar.tdesc.vt == VT_BSTR)
            offsets.push_back(field->oInst);
        type->ReleaseVarDesc(field);
    }
}

Description Describe(LPSAFEARRAY array)
{
    Description description;
    ComPtr<IRecordInfo> record;
    ComPtr<ITypeInfo> type;
    ComPtr<ITypeLib> library;
    UINT index = 0;
    Check(SafeArrayGetRecordInfo(array, record.GetAddressOf()));
    Check(record->GetGuid(&description.header.record));
    Check(record->GetTypeInfo(type.GetAddressOf()));
    Check(type->GetContainingTypeLib(library.GetAddressOf(), &index));
    TLIBATTR* attributes = nullptr;
    Check(library->GetLibAttr(&attributes));
    description.header.library = attributes->guid;
    description.header.locale = attributes->lcid;
    description.header.majorVersion = attributes->wMajorVerNum;
    description.header.minorVersion = attributes->wMinorVerNum;
    library->ReleaseTLibAttr(attributes);
    LONG first = 0;
    LONG last = -1;
    Check(SafeArrayGetLBound(array, 1, &first));
    Check(SafeArrayGetUBound(array, 1, &last));
    description.header.count = static_cast<std::uint32_t>(last - first + 1);
    description.header.elementBytes = SafeArrayGetElemsize(array);
    FindTexts(type.Get(), description.texts);
    return description;
}

// The text in that place of the elements.
BSTR& TextAt(void* elements,
             const Description& description,
             std::size_t element,
             std::size_t offset)
{
    std::byte* bytes = static_cast<std::byte*>(elements);
    return *reinterpret_cast<BSTR*>(bytes + element * description.header.elementBytes + offset);
}

template <typename Take> void ForEachText(void* elements, const Description& description, Take take)
{
    for (std::size_t i = 0; i < description.header.count; ++i)
    {
        for (const std::size_t offset : description.texts)
            take(TextAt(elements, description, i, offset));
    }
}

unsigned char* Put(unsigned char* buffer, const void* bytes, std::size_t size)
{
    if (size)
        std::memcpy(buffer, bytes, size);
    return buffer + size;
}

unsigned char* Get(unsigned char* buffer, void* bytes, std::size_t size)
{
    if (size)
        std::memcpy(bytes, buffer, size);
    return buffer + size;
}

unsigned char* Align(unsigned char* buffer)
{
    return reinterpret_cast<unsigned char*>((reinterpret_cast<std::uintptr_t>(buffer) + 3) &
                                            ~std::uintptr_t{3});
}

} // namespace

extern "C"
{

    ULONG __RPC_USER RecordArray_UserSize(ULONG* flags, ULONG start, LPSAFEARRAY* array)
    {
        const ULONG size = ((start + 3) & ~3ul) + static_cast<ULONG>(kKindBytes);
        switch (KindOf(*array))
        {
        case Kind::Null:
            return size;
        case Kind::Other:
            return LPSAFEARRAY_UserSize(flags, size, array);
        default:
            break;
        }
        const Description description = Describe(*array);
        std::size_t bytes = sizeof(Header) +
                            std::size_t{description.header.count} * description.header.elementBytes;
        void* elements = nullptr;
        Check(SafeArrayAccessData(*array, &elements));
        ForEachText(elements, description, [&](BSTR text) {
            bytes += sizeof(std::uint32_t) + (text ? SysStringByteLen(text) : 0);
        });
        SafeArrayUnaccessData(*array);
        return size + static_cast<ULONG>(bytes);
    }

    unsigned char* __RPC_USER RecordArray_UserMarshal(ULONG* flags,
                                                      unsigned char* buffer,
                                                      LPSAFEARRAY* array)
    {
        buffer = Align(buffer);
        const Kind kind = KindOf(*array);
        buffer = Put(buffer, &kind, sizeof kind);
        if (kind == Kind::Null)
            return buffer;
        if (kind == Kind::Other)
            return LPSAFEARRAY_UserMarshal(flags, buffer, array);
        const Description description = Describe(*array);
        buffer = Put(buffer, &description.header, sizeof description.header);
        void* elements = nullptr;
        Check(SafeArrayAccessData(*array, &elements));
        buffer = Put(buffer,
                     elements,
                     std::size_t{description.header.count} * description.header.elementBytes);
        ForEachText(elements, description, [&](BSTR text) {
            const std::uint32_t size = text ? SysStringByteLen(text) : kNoText;
            buffer = Put(buffer, &size, sizeof size);
            buffer = Put(buffer, text, text ? size : 0);
        });
        SafeArrayUnaccessData(*array);
        return buffer;
    }

    unsigned char* __RPC_USER RecordArray_UserUnmarshal(ULONG* flags,
                                                        unsigned char* buffer,
                                                        LPSAFEARRAY* array)
    {
        buffer = Align(buffer);
        Kind kind = Kind::Null;
        buffer = Get(buffer, &kind, sizeof kind);
        if (kind == Kind::Null)
        {
            *array = nullptr;
            return buffer;
        }
        if (kind == Kind::Other)
            return LPSAFEARRAY_UserUnmarshal(flags, buffer, array);
        Description description;
        Header& header = description.header;
        buffer = Get(buffer, &header, sizeof header);
        ComPtr<IRecordInfo> record;
        ComPtr<ITypeInfo> type;
        Check(GetRecordInfoFromGuids(header.library,
                                     header.majorVersion,
                                     header.minorVersion,
                                     header.locale,
                                     header.record,
                                     record.GetAddressOf()));
        Check(record->GetTypeInfo(type.GetAddressOf()));
        FindTexts(type.Get(), description.texts);
        SAFEARRAYBOUND bound = {header.count, 0};
        *array = SafeArrayCreateEx(VT_RECORD, 1, &bound, record.Get());
        if (!*array)
            Fail(E_OUTOFMEMORY);
        if (SafeArrayGetElemsize(*array) != header.elementBytes)
            Fail(TYPE_E_TYPEMISMATCH);
        void* elements = nullptr;
        Check(SafeArrayAccessData(*array, &elements));
        buffer = Get(buffer, elements, std::size_t{header.count} * header.elementBytes);
        // The pointers are those of the other process until each text is here.
        ForEachText(elements, description, [](BSTR& text) { text = nullptr; });
        ForEachText(elements, description, [&](BSTR& text) {
            std::uint32_t size = 0;
            buffer = Get(buffer, &size, sizeof size);
            if (size == kNoText)
                return;
            text = SysAllocStringByteLen(reinterpret_cast<const char*>(buffer), size);
            buffer += size;
        });
        SafeArrayUnaccessData(*array);
        return buffer;
    }

    void __RPC_USER RecordArray_UserFree(ULONG* flags, LPSAFEARRAY* array)
    {
        LPSAFEARRAY_UserFree(flags, array);
    }

} // extern "C"
