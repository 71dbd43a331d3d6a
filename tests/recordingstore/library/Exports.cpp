// The names that the server binds.
#include "localstore/CompressedRtf.h"
#include "tests/recordingstore/library/BookObject.h"
#include "tests/recordingstore/library/Delivery.h"
#include "tests/recordingstore/library/HostileAnswers.h"
#include "tests/recordingstore/library/RecordedObject.h"
#include "tests/recordingstore/library/SessionObject.h"
#include "tests/recordingstore/library/StreamObject.h"

#include <climits>
#include <cstdio>

namespace
{
constexpr std::size_t kMaxRtfBytes = 64u << 20;

Recorder& Record()
{
    return TheLibrary().recorder;
}

void FreeRows(SRowSet* rows, const std::string& line)
{
    const std::string name = TheLibrary().memory.NameOf(rows);
    if (name.starts_with("rows of "))
        for (ULONG i = 0; i < rows->cRows; ++i)
            FreeOne(rows->aRow[i].lpProps, line);
    FreeOne(rows, line);
}

// The bytes of a stream from where it stands.
HRESULT ReadAll(IStream* stream, std::vector<std::byte>& bytes)
{
    constexpr ULONG kPieceBytes = 0x10000;
    constexpr unsigned kMostPieces = 0x10000;
    for (unsigned pieces = 0; pieces < kMostPieces; ++pieces)
    {
        const std::size_t size = bytes.size();
        if (size > kMaxRtfBytes)
            return MAPI_E_TOO_BIG;
        bytes.resize(size + kPieceBytes);
        ULONG read = 0;
        const HRESULT result = stream->Read(bytes.data() + size, kPieceBytes, &read);
        bytes.resize(size + (SUCCEEDED(result) ? read : 0));
        if (FAILED(result))
            return result;
        if (read == 0)
            return S_OK;
    }
    return MAPI_E_TOO_BIG;
}

HRESULT
Unpack(IStream* compressed, const std::string& name, StoreFault fault, IStream** plain)
{
    std::vector<std::byte> packed;
    if (const HRESULT result = ReadAll(compressed, packed); FAILED(result))
        return result;
    std::vector<std::byte> text;
    if (DecompressRtf(packed, kMaxRtfBytes, text).status != CodecStatus::Ok)
        return MAPI_E_CORRUPT_DATA;
    const auto* const bytes = reinterpret_cast<const BYTE*>(text.data());
    auto* const stream = NewObject<StreamObject>(name, ByteString(bytes, bytes + text.size()));
    stream->Behave(MannerOf(fault));
    *plain = stream;
    return S_OK;
}

HRESULT
GetOneProp(
    IMAPIProp* object, ULONG tag, const std::string& name, StoreFault fault, SPropValue** out)
{
    if (!object || !out)
        return MAPI_E_INVALID_PARAMETER;
    SPropTagArray tags = {1, {tag}};
    ULONG count = 0;
    SPropValue* value = nullptr;
    const HRESULT result = object->GetProps(&tags, 0, &count, &value);
    if (FAILED(result))
        return result;
    if (fault == StoreFault::FewerValues && value)
        WriteError(static_cast<USHORT>(PROP_ID(tag)), MAPI_E_NOT_FOUND, *value);
    else if (!value || count == 0 || PROP_TYPE(value->ulPropTag) == PT_ERROR)
    {
        const SCODE code = value && count ? value->Value.err : MAPI_E_NOT_FOUND;
        FreeOne(value, name);
        return code;
    }
    if (fault == StoreFault::WrongTypes)
        SpoilTypes(value, count);
    SpoilValues(fault, {tag}, ChainedTo(value), value);
    *out = value;
    return S_OK;
}

HRESULT QueryAllRows(IMAPITable* table,
                     LPSPropTagArray tags,
                     LPSRestriction restriction,
                     LPSSortOrderSet sort,
                     LONG rowLimit,
                     StoreFault fault,
                     LPSRowSet* rows)
{
    if (!table || !rows)
        return MAPI_E_INVALID_PARAMETER;
    HRESULT result = S_OK;
    if (tags)
        result = table->SetColumns(tags, 0);
    const std::vector<ULONG> columns =
        tags ? std::vector<ULONG>(tags->aulPropTag, tags->aulPropTag + tags->cValues)
             : std::vector<ULONG>();
    if (SUCCEEDED(result) && restriction)
        result = table->Restrict(restriction, 0);
    if (SUCCEEDED(result) && sort)
        result = table->SortTable(sort, 0);
    if (SUCCEEDED(result))
        result = table->SeekRow(BOOKMARK_BEGINNING, 0, nullptr);
    SRowSet* all = nullptr;
    if (SUCCEEDED(result))
        result = table->QueryRows(LONG_MAX, 0, &all);
    if (FAILED(result))
        return result;
    if (rowLimit > 0 && all->cRows > static_cast<ULONG>(rowLimit))
    {
        FreeRows(all, "HrQueryAllRows");
        return MAPI_E_TABLE_TOO_BIG;
    }
    if (fault == StoreFault::FewerValues && all->cRows)
        FreeOne(all->aRow[--all->cRows].lpProps, "HrQueryAllRows");
    for (ULONG i = 0; i < all->cRows; ++i)
    {
        SRow& row = all->aRow[i];
        if (fault == StoreFault::WrongTypes)
            SpoilTypes(row.lpProps, row.cValues);
        else if (fault == StoreFault::ShortRows && row.cValues)
            --row.cValues;
        if (row.cValues == columns.size())
            SpoilValues(fault, columns, ChainedTo(row.lpProps), row.lpProps);
        if (fault != StoreFault::LongerArrays)
            SpoilArray(fault, row.cValues, row.lpProps);
    }
    *rows = all;
    return S_OK;
}

HRESULT RecordedQuery(const char* name,
                      IMAPITable* table,
                      LPSPropTagArray tags,
                      LPSRestriction restriction,
                      LPSSortOrderSet sort,
                      LONG rowLimit,
                      LPSRowSet* rows)
{
    const StoreFault fault =
        Record().Begin(std::string(name) + "(" + ObjectText(table) + ", " + TagsText(tags) + ", " +
                           RestrictionText(restriction) + ", " + SortText(sort) + ", " +
                           std::to_string(rowLimit) + ")",
                       kStoreExports);
    return RunCall(
        fault,
        [&](StoreFault way) {
            const Recorder::Quiet quiet(Record());
            return QueryAllRows(table, tags, restriction, sort, rowLimit, way, rows);
        },
        rows);
}
} // namespace

extern "C" HRESULT WINAPI RecordedMAPIInitialize(void* init)
{
    const auto* const record = static_cast<const MAPIINIT_0*>(init);
    const std::string line = record ? "MAPIInitialize(" + std::to_string(record->ulVersion) + ", " +
                                          FlagsText(record->ulFlags) + ")"
                                    : "MAPIInitialize(null)";
    StoreFault fault = Record().Begin(line, kStoreExports, false);
    if (fault == StoreFault::NullOutput)
        fault = StoreFault::None;
    return RunCall(fault, [](StoreFault way) {
        if (way != StoreFault::FailsWithWork)
            Record().Initialised();
        return S_OK;
    });
}

extern "C" void WINAPI RecordedMAPIUninitialize()
{
    Record().Note("MAPIUninitialize()", kStoreExports);
    Record().Uninitialised("MAPIUninitialize()");
}

extern "C" HRESULT WINAPI RecordedMAPILogonEx(ULONG_PTR uiParam,
                                              const void* profile,
                                              const void* password,
                                              ULONG flags,
                                              LPMAPISESSION* session)
{
    const auto text = [flags](const void* argument) {
        return flags & MAPI_UNICODE ? WideArgument(static_cast<const wchar_t*>(argument))
                                    : NarrowArgument(static_cast<const char*>(argument));
    };
    const StoreFault fault =
        Record().Begin("MAPILogonEx(" + std::to_string(uiParam) + ", " + text(profile) + ", " +
                           text(password) + ", " + FlagsText(flags) + ")",
                       kStoreExports);
    return RunCall(
        fault,
        [&](StoreFault) -> HRESULT {
            if (!session)
                return MAPI_E_INVALID_PARAMETER;
            *session = NewObject<SessionObject>();
            return S_OK;
        },
        session);
}

extern "C" void WINAPI RecordedFreeProws(LPSRowSet rows)
{
    const std::string line = "FreeProws@4(" + TheLibrary().memory.NameOf(rows) + ")";
    Record().Note(line, kStoreMemory);
    Record().CheckTime(line);
    FreeRows(rows, line);
}

extern "C" ULONG WINAPI RecordedMAPIFreeBuffer(void* buffer)
{
    const std::string line = "MAPIFreeBuffer(" + TheLibrary().memory.NameOf(buffer) + ")";
    Record().Note(line, kStoreMemory);
    Record().CheckTime(line);
    return static_cast<ULONG>(FreeOne(buffer, line));
}

extern "C" SCODE WINAPI RecordedMAPIAllocateBuffer(ULONG size, void** buffer)
{
    const StoreFault fault =
        Record().Begin("MAPIAllocateBuffer(" + std::to_string(size) + ")", kStoreMemory);
    return RunCall(
        fault,
        [&](StoreFault) -> HRESULT {
            if (!buffer)
                return MAPI_E_INVALID_PARAMETER;
            *buffer = TheLibrary().memory.Allocate(size, "allocated");
            return S_OK;
        },
        buffer);
}

extern "C" SCODE WINAPI RecordedMAPIAllocateMore(ULONG size, void* parent, void** buffer)
{
    const StoreFault fault = Record().Begin("MAPIAllocateMore(" + std::to_string(size) + ", " +
                                                TheLibrary().memory.NameOf(parent) + ")",
                                            kStoreMemory);
    return RunCall(
        fault,
        [&](StoreFault) -> HRESULT {
            if (!buffer)
                return MAPI_E_INVALID_PARAMETER;
            *buffer = TheLibrary().memory.AllocateMore(size, parent);
            return *buffer ? S_OK : MAPI_E_INVALID_PARAMETER;
        },
        buffer);
}

extern "C" HRESULT WINAPI RecordedWrapCompressedRTFStream(IStream* compressed,
                                                          ULONG flags,
                                                          IStream** plain)
{
    const StoreFault fault = Record().Begin("WrapCompressedRTFStream(" + ObjectText(compressed) +
                                                ", " + FlagsText(flags) + ")",
                                            kStoreExports);
    return RunCall(
        fault,
        [&](StoreFault way) -> HRESULT {
            if (!compressed || !plain)
                return MAPI_E_INVALID_PARAMETER;
            if (flags)
                return MAPI_E_NO_SUPPORT;
            const ObjectLabel* const label = Record().Find(compressed);
            const std::string name = "rtf of " + (label ? label->name : "foreign stream");
            const Recorder::Quiet quiet(Record());
            return Unpack(compressed, name, way, plain);
        },
        plain);
}

extern "C" HRESULT WINAPI RecordedHrGetOneProp(IMAPIProp* object, ULONG tag, LPSPropValue* value)
{
    const std::string line = "HrGetOneProp(" + ObjectText(object) + ", " + TagText(tag) + ")";
    const StoreFault fault = Record().Begin(line, kStoreExports);
    return RunCall(
        fault,
        [&](StoreFault way) {
            const Recorder::Quiet quiet(Record());
            return GetOneProp(object, tag, line, way, value);
        },
        value);
}

extern "C" HRESULT WINAPI RecordedHrQueryAllRows(IMAPITable* table,
                                                 LPSPropTagArray tags,
                                                 LPSRestriction restriction,
                                                 LPSSortOrderSet sort,
                                                 LONG rowLimit,
                                                 LPSRowSet* rows)
{
    return RecordedQuery("HrQueryAllRows@24", table, tags, restriction, sort, rowLimit, rows);
}

extern "C" HRESULT WINAPI RecordedPlainHrQueryAllRows(IMAPITable* table,
                                                      LPSPropTagArray tags,
                                                      LPSRestriction restriction,
                                                      LPSSortOrderSet sort,
                                                      LONG rowLimit,
                                                      LPSRowSet* rows)
{
    return RecordedQuery("HrQueryAllRows", table, tags, restriction, sort, rowLimit, rows);
}

extern "C" HRESULT WINAPI RecordedWABOpen(LPADRBOOK* book,
                                          LPWABOBJECT* library,
                                          const WAB_PARAM* parameter,
                                          DWORD reserved)
{
    const StoreFault fault =
        Record().Begin(std::string("WABOpen(") + (parameter ? "parameter" : "null") + ", " +
                           std::to_string(reserved) + ")",
                       kStoreExports,
                       false);
    return RunCall(
        fault,
        [&](StoreFault) -> HRESULT {
            if (!book || !library)
                return MAPI_E_INVALID_PARAMETER;
            Record().Initialised();
            *book = NewObject<AddressBookObject>();
            *library = NewObject<WabLibraryObject>();
            return S_OK;
        },
        book,
        library);
}
