#include "service/ItemAccess.h"

namespace
{
// Whether a result comes from the way to the object rather than from the object.
bool IsOfTransport(HRESULT result) noexcept
{
    const int facility = HRESULT_FACILITY(result);
    const int code = HRESULT_CODE(result);
    return FAILED(result) && (facility == FACILITY_RPC || result == CO_E_OBJNOTCONNECTED ||
                              (facility == FACILITY_WIN32 && code >= RPC_S_INVALID_STRING_BINDING &&
                               code <= RPC_X_BAD_STUB_DATA));
}
} // namespace

bool IsReachable(INEntityItem& item) noexcept
{
    // Only what stands for an object elsewhere has this interface.
    if (!QueryItem<IMultiQI>(&item))
        return true;
    Bstr id;
    return !IsOfTransport(item.get_EntityID(id.Put()));
}
