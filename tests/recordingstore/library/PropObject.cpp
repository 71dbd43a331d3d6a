#include "tests/recordingstore/library/PropObject.h"

#include "tests/recordingstore/library/Delivery.h"
#include "tests/recordingstore/library/HostileAnswers.h"
#include "tests/recordingstore/library/StreamObject.h"

#include <algorithm>
#include <cstring>

namespace
{
constexpr ULONG kMaxCount = 0xFFFF; // there are no more property IDs

// A buffer with count elements behind the fields before the first one.
template <typename T>
T* NewArray(std::size_t offset, std::size_t elementSize, ULONG count, std::string name)
{
    return static_cast<T*>(TheLibrary().memory.Allocate(
        offset + elementSize * std::max<ULONG>(count, 1), std::move(name)));
}

SPropTagArray* NewTags(const std::vector<ULONG>& tags, std::string name)
{
    const ULONG count = static_cast<ULONG>(tags.size());
    auto* const array = NewArray<SPropTagArray>(
        offsetof(SPropTagArray, aulPropTag), sizeof(ULONG), count, std::move(name));
    array->cValues = count;
    std::copy(tags.begin(), tags.end(), array->aulPropTag);
    return array;
}

// The tags of all properties, texts in one of both forms.
std::vector<ULONG> AllTags(const PropertyBag& bag, bool isUnicode)
{
    std::vector<ULONG> tags;
    for (const USHORT id : bag.Ids())
    {
        const std::optional<Value> value = bag.Get(id);
        if (!value)
            continue;
        ULONG type = value->type;
        if (const ULONG plain = type & ~MV_FLAG; plain == PT_UNICODE || plain == PT_STRING8)
            type = (isUnicode ? PT_UNICODE : PT_STRING8) | (type & MV_FLAG);
        tags.push_back(PROP_TAG(type, id));
    }
    return tags;
}

struct Problem
{
    ULONG index;
    ULONG tag;
    SCODE code;
};

// Null where there are none; nobody gets them where nobody asked.
void DeliverProblems(const std::vector<Problem>& found,
                     const std::string& name,
                     SPropProblemArray** problems)
{
    if (!problems)
        return;
    *problems = nullptr;
    if (found.empty())
        return;
    const ULONG count = static_cast<ULONG>(found.size());
    auto* const array = NewArray<SPropProblemArray>(
        offsetof(SPropProblemArray, aProblem), sizeof(SPropProblem), count, "problems of " + name);
    array->cProblem = count;
    for (ULONG i = 0; i < count; ++i)
        array->aProblem[i] = {found[i].index, found[i].tag, found[i].code};
    *problems = array;
}

std::optional<PropertyName> ReadName(const MAPINAMEID* name)
{
    if (!name || !name->lpguid)
        return std::nullopt;
    PropertyName read;
    read.set = *name->lpguid;
    if (name->ulKind == MNID_ID)
        read.number = name->Kind.lID;
    else if (name->ulKind == MNID_STRING && name->Kind.lpwstrName)
    {
        read.isText = true;
        read.text = name->Kind.lpwstrName;
    }
    else
        return std::nullopt;
    return read;
}
} // namespace

HRESULT DoGetProps(const PropertyBag& bag,
                   const std::string& name,
                   StoreFault fault,
                   const SPropTagArray* tags,
                   ULONG flags,
                   ULONG* count,
                   SPropValue** values)
{
    if (!count || !values)
        return MAPI_E_INVALID_PARAMETER;
    if (flags & ~MAPI_UNICODE)
        return MAPI_E_UNKNOWN_FLAGS;
    const bool isUnicode = (flags & MAPI_UNICODE) != 0;
    std::vector<ULONG> wanted;
    if (!tags)
        wanted = AllTags(bag, isUnicode);
    else if (tags->cValues == 0 || tags->cValues > kMaxCount)
        return MAPI_E_INVALID_PARAMETER;
    else
        wanted.assign(tags->aulPropTag, tags->aulPropTag + tags->cValues);
    if (fault == StoreFault::FewerValues || fault == StoreFault::ShortRows)
        wanted.resize(wanted.empty() ? 0 : wanted.size() - 1);
    SpoilWanted(fault, wanted);
    auto* array = NewArray<SPropValue>(
        0, sizeof(SPropValue), static_cast<ULONG>(wanted.size()), "props of " + name);
    const bool isMissing = DeliverValues(
        wanted, [&](USHORT id) { return bag.Get(id); }, isUnicode, ChainedTo(array), array);
    *count = static_cast<ULONG>(wanted.size());
    if (fault == StoreFault::WrongTypes)
        SpoilTypes(array, *count);
    SpoilValues(fault, wanted, ChainedTo(array), array);
    SpoilArray(fault, *count, array);
    *values = array;
    return isMissing && !IsHostileAnswer(fault) ? MAPI_W_ERRORS_RETURNED : S_OK;
}

HRESULT
DoGetPropList(const PropertyBag& bag, const std::string& name, ULONG flags, SPropTagArray** tags)
{
    if (!tags)
        return MAPI_E_INVALID_PARAMETER;
    if (flags & ~MAPI_UNICODE)
        return MAPI_E_UNKNOWN_FLAGS;
    *tags = NewTags(AllTags(bag, (flags & MAPI_UNICODE) != 0), "tags of " + name);
    return S_OK;
}

HRESULT DoSetProps(PropertyBag& bag,
                   const std::string& name,
                   StoreFault fault,
                   ULONG count,
                   const SPropValue* values,
                   SPropProblemArray** problems)
{
    if (!values || count == 0 || count > kMaxCount)
        return MAPI_E_INVALID_PARAMETER;
    if (!bag.IsWritable())
        return MAPI_E_NO_ACCESS;
    std::vector<Problem> found;
    for (ULONG i = 0; i < count; ++i)
    {
        const ULONG tag = values[i].ulPropTag;
        const USHORT id = static_cast<USHORT>(PROP_ID(tag));
        std::optional<Value> value = ReadValue(values[i]);
        if (fault == StoreFault::FewerValues && i + 1 == count)
            found.push_back({i, tag, MAPI_E_NOT_ENOUGH_MEMORY});
        else if (id == 0 || !value || PROP_TYPE(tag) == PT_ERROR)
            found.push_back({i, tag, MAPI_E_INVALID_PARAMETER});
        else if (bag.IsComputed(id))
            found.push_back({i, tag, MAPI_E_COMPUTED});
        else
            bag.Put(id, *std::move(value));
    }
    DeliverProblems(found, name, problems);
    SpoilProblems(fault, problems);
    return S_OK;
}

HRESULT DoDeleteProps(PropertyBag& bag,
                      const std::string& name,
                      StoreFault fault,
                      const SPropTagArray* tags,
                      SPropProblemArray** problems)
{
    if (!tags || tags->cValues == 0 || tags->cValues > kMaxCount)
        return MAPI_E_INVALID_PARAMETER;
    if (!bag.IsWritable())
        return MAPI_E_NO_ACCESS;
    std::vector<Problem> found;
    for (ULONG i = 0; i < tags->cValues; ++i)
    {
        const ULONG tag = tags->aulPropTag[i];
        const USHORT id = static_cast<USHORT>(PROP_ID(tag));
        if (bag.IsComputed(id))
            found.push_back({i, tag, MAPI_E_COMPUTED});
        else if (!bag.Get(id))
            found.push_back({i, tag, MAPI_E_NOT_FOUND});
        else
            bag.Remove(id);
    }
    DeliverProblems(found, name, problems);
    SpoilProblems(fault, problems);
    return S_OK;
}

HRESULT DoOpenProperty(const std::shared_ptr<PropertyBag>& bag,
                       const std::string& name,
                       StoreFault fault,
                       ULONG tag,
                       LPCIID interfaceId,
                       ULONG flags,
                       IUnknown** object)
{
    if (!object || !interfaceId)
        return MAPI_E_INVALID_PARAMETER;
    *object = nullptr;
    const ULONG type = PROP_TYPE(tag);
    const USHORT id = static_cast<USHORT>(PROP_ID(tag));
    if (!IsEqualIID(*interfaceId, IID_IStream) ||
        (type != PT_BINARY && type != PT_UNICODE && type != PT_STRING8))
        return MAPI_E_INTERFACE_NOT_SUPPORTED;
    const bool isWriting = (flags & (MAPI_MODIFY | MAPI_CREATE)) != 0;
    if (isWriting && (!bag->IsWritable() || bag->IsComputed(id)))
        return MAPI_E_NO_ACCESS;
    std::optional<Value> value = bag->Get(id);
    if (value)
        value = InType(*value, type);
    // MAPI_CREATE: what was there is replaced.
    if (flags & MAPI_CREATE)
    {
        value = Value();
        value->type = type;
    }
    if (!value)
        return MAPI_E_NOT_FOUND;
    const std::string streamName = name + " " + TagText(tag) + " stream";
    StreamObject* const stream =
        isWriting ? NewObject<StreamObject>(streamName, value->bytes, bag, id, type)
                  : NewObject<StreamObject>(streamName, value->bytes);
    stream->Behave(MannerOf(fault));
    *object = stream;
    return S_OK;
}

HRESULT DoGetIDsFromNames(const std::string& name,
                          StoreFault fault,
                          ULONG count,
                          MAPINAMEID** names,
                          ULONG flags,
                          SPropTagArray** tags)
{
    if (!tags)
        return MAPI_E_INVALID_PARAMETER;
    if (flags & ~MAPI_CREATE)
        return MAPI_E_UNKNOWN_FLAGS;
    if (count > kMaxCount || (count != 0) != (names != nullptr))
        return MAPI_E_INVALID_PARAMETER;
    Content& content = TheLibrary().content;
    std::vector<ULONG> ids;
    bool isMissing = false;
    if (count == 0) // all that there are
        for (std::size_t i = 0; i < content.Names().size(); ++i)
            ids.push_back(PROP_TAG(PT_UNSPECIFIED, kFirstNamedId + i));
    for (ULONG i = 0; i < count; ++i)
    {
        const std::optional<PropertyName> wanted = ReadName(names[i]);
        const USHORT id = wanted ? content.IdOf(*wanted, (flags & MAPI_CREATE) != 0) : 0;
        isMissing = isMissing || id == 0;
        ids.push_back(PROP_TAG(id ? PT_UNSPECIFIED : PT_ERROR, id));
    }
    if (fault == StoreFault::FewerValues || fault == StoreFault::ShortRows)
        ids.resize(ids.empty() ? 0 : ids.size() - 1);
    if (fault == StoreFault::WrongTypes)
        for (ULONG& tag : ids)
            tag = CHANGE_PROP_TYPE(tag, PT_OBJECT);
    SpoilNames(fault, ids);
    *tags = NewTags(ids, "names of " + name);
    return isMissing ? MAPI_W_ERRORS_RETURNED : S_OK;
}

HRESULT DoGetNamesFromIDs(const std::string& name,
                          SPropTagArray** tags,
                          ULONG* count,
                          MAPINAMEID*** names)
{
    if (!tags || !*tags || !count || !names)
        return MAPI_E_INVALID_PARAMETER;
    const SPropTagArray& wanted = **tags;
    const std::vector<PropertyName>& known = TheLibrary().content.Names();
    auto** const found =
        NewArray<MAPINAMEID*>(0, sizeof(MAPINAMEID*), wanted.cValues, "names of " + name);
    const Allocator allocate = ChainedTo(found);
    bool isMissing = false;
    for (ULONG i = 0; i < wanted.cValues; ++i)
    {
        const std::size_t index = PROP_ID(wanted.aulPropTag[i]) - std::size_t{kFirstNamedId};
        if (index >= known.size())
        {
            isMissing = true;
            continue;
        }
        const PropertyName& from = known[index];
        auto* const entry = static_cast<MAPINAMEID*>(allocate(sizeof(MAPINAMEID)));
        entry->lpguid = static_cast<GUID*>(allocate(sizeof(GUID)));
        *entry->lpguid = from.set;
        entry->ulKind = from.isText ? MNID_STRING : MNID_ID;
        if (from.isText)
        {
            const std::size_t bytes = (from.text.size() + 1) * sizeof(wchar_t);
            entry->Kind.lpwstrName = static_cast<wchar_t*>(allocate(bytes));
            std::memcpy(entry->Kind.lpwstrName, from.text.c_str(), bytes);
        }
        else
            entry->Kind.lID = from.number;
        found[i] = entry;
    }
    *count = wanted.cValues;
    *names = found;
    return isMissing ? MAPI_W_ERRORS_RETURNED : S_OK;
}
