#include "tests/recordingstore/library/Delivery.h"

bool DeliverValues(const std::vector<ULONG>& tags,
                   const FindValue& find,
                   bool isUnicode,
                   const Allocator& allocate,
                   SPropValue* out)
{
    bool isMissing = false;
    for (const ULONG tag : tags)
    {
        const USHORT id = static_cast<USHORT>(PROP_ID(tag));
        std::optional<Value> value = find(id);
        ULONG type = PROP_TYPE(tag) & ~MV_INSTANCE;
        if (value && value->type == PT_ERROR)
        {
            isMissing = true;
            WriteError(id, static_cast<SCODE>(value->bits), *out++);
            continue;
        }
        if (value && type == PT_UNSPECIFIED)
        {
            const ULONG plain = value->type & ~MV_FLAG;
            if (plain == PT_UNICODE || plain == PT_STRING8)
                type = (isUnicode ? PT_UNICODE : PT_STRING8) | (value->type & MV_FLAG);
        }
        if (value)
            value = InType(*value, type);
        if (value)
            WriteValue(*value, id, allocate, *out++);
        else
        {
            isMissing = true;
            WriteError(id, MAPI_E_NOT_FOUND, *out++);
        }
    }
    return isMissing;
}

void SpoilTypes(SPropValue* values, ULONG count)
{
    for (ULONG i = 0; i < count; ++i)
    {
        const ULONG type = PROP_TYPE(values[i].ulPropTag) == PT_LONG ? PT_BOOLEAN : PT_LONG;
        values[i].ulPropTag = PROP_TAG(type, PROP_ID(values[i].ulPropTag));
        // Read as anything with a pointer, this is 16 bytes at address 16.
        values[i].Value.bin = {16, reinterpret_cast<BYTE*>(std::uintptr_t{16})};
    }
}

Allocator ChainedTo(void* buffer)
{
    return [buffer](std::size_t bytes) { return TheLibrary().memory.AllocateMore(bytes, buffer); };
}
