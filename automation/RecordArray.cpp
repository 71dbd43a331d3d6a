#include "automation/RecordArray.h"

using Microsoft::WRL::ComPtr;

namespace
{
constexpr WORD kMajorVersion = 1;
constexpr WORD kMinorVersion = 0;
constexpr LCID kLibraryLocale = 0x409;
} // namespace

UniqueSafeArray CreateRecordArray(const GUID& record, ULONG count, LCID locale)
{
    // Not every system falls back from a user's locale to the library's.
    ComPtr<ITypeLib> library;
    if (FAILED(LoadRegTypeLib(LIBID_PimStoreBridgeLib,
                              kMajorVersion,
                              kMinorVersion,
                              locale,
                              library.ReleaseAndGetAddressOf())) &&
        FAILED(LoadRegTypeLib(LIBID_PimStoreBridgeLib,
                              kMajorVersion,
                              kMinorVersion,
                              kLibraryLocale,
                              library.ReleaseAndGetAddressOf())))
        return {};

    ComPtr<ITypeInfo> type;
    ComPtr<IRecordInfo> description;
    if (FAILED(library->GetTypeInfoOfGuid(record, type.GetAddressOf())) ||
        FAILED(GetRecordInfoFromTypeInfo(type.Get(), description.GetAddressOf())))
        return {};

    SAFEARRAYBOUND bound = {count, 0};
    return UniqueSafeArray(SafeArrayCreateEx(VT_RECORD, 1, &bound, description.Get()));
}
