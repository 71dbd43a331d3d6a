#include "localstore/StoredObject.h"

#include "localstore/PropertyStream.h"
#include "localstore/Snapshot.h"

#include <mapiguid.h>

#include <cstring>

namespace
{

constexpr ULONG kSaveFlags =
    KEEP_OPEN_READONLY | KEEP_OPEN_READWRITE | FORCE_SAVE | MAPI_DEFERRED_ERRORS;

// Problems of single values, in the order of the values.
using Problems = std::vector<SPropProblem>;

// The problems as the caller gets them; made before anything changes, so that memory that runs out
// then changes nothing.
class ProblemArray
{
  public:
    ProblemArray(const Problems& problems, SPropProblemArray** output) : m_output(output)
    {
        if (!output || problems.empty())
            return;
        m_buffer.emplace(ChainedMemory::OfLibrary(), CbNewSPropProblemArray(problems.size()));
        auto* array = static_cast<SPropProblemArray*>(m_buffer->Get());
        array->cProblem = static_cast<ULONG>(problems.size());
        std::copy(problems.begin(), problems.end(), array->aProblem);
    }

    void Give() noexcept
    {
        if (m_buffer)
            *m_output = static_cast<SPropProblemArray*>(m_buffer->Detach());
    }

  private:
    SPropProblemArray** m_output;
    std::optional<ChainedBuffer> m_buffer;
};

HRESULT ChangeObject(StoredObject& object,
                     PropertyChanges changes,
                     const Problems& found,
                     SPropProblemArray** problems)
{
    ProblemArray array(found, problems);
    const HRESULT result = object.Change(std::move(changes));
    if (SUCCEEDED(result))
        array.Give();
    return result;
}

UntypedText UntypedOf(ULONG flags)
{
    return (flags & MAPI_UNICODE) ? UntypedText::Unicode : UntypedText::Ansi;
}

// Values under an ID that stands for no name would turn up under the next name that gets it.
bool IsUnnamed(StoredObject& object, std::uint16_t id)
{
    return id >= 0x8000 && !object.Session().Names().NameOf(id);
}

} // namespace

void Overlay(PropertyMap& properties,
             const PropertyChanges& changes,
             const PropertySelection& selection)
{
    for (const auto& [id, value] : changes)
    {
        if (!value)
            properties.erase(id);
        else if (selection.Has(id))
            properties.insert_or_assign(id, *value);
    }
}

void WriteChanges(Database& database, PropertyOwner owner, const PropertyChanges& changes)
{
    for (const auto& [id, value] : changes)
    {
        if (value)
            WriteProperty(database, owner, id, *value);
        else
            DeleteProperty(database, owner, id);
    }
}

PropertyMap ReadStored(Database& database,
                       PropertyOwner owner,
                       const PropertySelection& selection,
                       bool (*isComputed)(std::uint16_t id))
{
    // Beyond this one pass over the owner's rows is cheaper than a search for each.
    constexpr size_t kFew = 4;
    if (selection.IsAll())
        return ReadProperties(database, owner, selection);
    const std::vector<std::uint16_t> ids = selection.Without(isComputed);
    if (ids.size() > kFew)
        return ReadProperties(database, owner, selection);
    PropertyMap properties;
    for (const std::uint16_t id : ids)
    {
        if (auto value = ReadProperty(database, owner, id))
            properties.emplace(id, std::move(*value));
    }
    return properties;
}

HRESULT GetObjectProps(
    StoredObject& object, SPropTagArray* tagArray, ULONG flags, ULONG* count, SPropValue** values)
{
    if (!count || !values)
        return MAPI_E_INVALID_PARAMETER;
    *count = 0;
    *values = nullptr;
    if (flags & ~MAPI_UNICODE)
        return MAPI_E_UNKNOWN_FLAGS;
    return object.Session().Run([&] {
        PropertyMap properties;
        std::vector<ULONG> tags;
        if (tagArray)
        {
            if (const HRESULT result = ReadTags(tagArray, tags); FAILED(result))
                return result;
            const Snapshot snapshot(object.Session().Store());
            properties = object.Read(SelectionOf(tags));
        }
        else
        {
            const Snapshot snapshot(object.Session().Store());
            properties = object.Read(PropertySelection::All());
            tags = TagsOf(properties, (flags & MAPI_UNICODE) != 0);
        }
        const HRESULT result =
            CopyValues(properties, tags, ChainedMemory::OfLibrary(), values, UntypedOf(flags));
        *count = static_cast<ULONG>(tags.size());
        return result;
    });
}

HRESULT GetObjectPropList(StoredObject& object, ULONG flags, SPropTagArray** tags)
{
    if (!tags)
        return MAPI_E_INVALID_PARAMETER;
    *tags = nullptr;
    if (flags & ~MAPI_UNICODE)
        return MAPI_E_UNKNOWN_FLAGS;
    return object.Session().Run([&] {
        const Snapshot snapshot(object.Session().Store());
        *tags = CopyTags(TagsOf(object.Read(PropertySelection::All()), (flags & MAPI_UNICODE) != 0),
                         ChainedMemory::OfLibrary());
        return S_OK;
    });
}

HRESULT SetObjectProps(StoredObject& object,
                       ULONG count,
                       const SPropValue* values,
                       SPropProblemArray** problems)
{
    if (problems)
        *problems = nullptr;
    if (count == 0 || count > kMaxTags || !values)
        return MAPI_E_INVALID_PARAMETER;
    return object.Session().Run([&] {
        if (!object.IsWritable())
            return MAPI_E_NO_ACCESS;
        PropertyChanges changes;
        Problems found;
        for (ULONG i = 0; i < count; ++i)
        {
            const ULONG tag = values[i].ulPropTag;
            const auto id = static_cast<std::uint16_t>(PROP_ID(tag));
            // Missing values of a GetProps may come back as they are; they change nothing.
            if (PROP_TYPE(tag) == PT_ERROR)
                continue;
            PropertyValue value;
            HRESULT result = MAPI_E_COMPUTED;
            if (!object.IsComputed(id))
                result = IsUnnamed(object, id) ? MAPI_E_NOT_FOUND : ReadValue(values[i], value);
            if (FAILED(result))
                found.push_back({i, tag, result});
            else
                changes.insert_or_assign(id, std::move(value));
        }
        return ChangeObject(object, std::move(changes), found, problems);
    });
}

HRESULT DeleteObjectProps(StoredObject& object,
                          const SPropTagArray* tagArray,
                          SPropProblemArray** problems)
{
    if (problems)
        *problems = nullptr;
    return object.Session().Run([&] {
        std::vector<ULONG> tags;
        if (const HRESULT result = ReadTags(tagArray, tags); FAILED(result))
            return result;
        if (!object.IsWritable())
            return MAPI_E_NO_ACCESS;
        // The type of a tag says nothing here; deleting what is not there is fine.
        PropertyChanges changes;
        Problems found;
        for (size_t i = 0; i < tags.size(); ++i)
        {
            const auto id = static_cast<std::uint16_t>(PROP_ID(tags[i]));
            if (object.IsComputed(id))
                found.push_back({static_cast<ULONG>(i), tags[i], MAPI_E_COMPUTED});
            else if (id != 0 && id != 0xFFFF)
                changes.insert_or_assign(id, std::nullopt);
        }
        return ChangeObject(object, std::move(changes), found, problems);
    });
}

HRESULT SaveObject(StoredObject& object, ULONG flags)
{
    if (flags & ~kSaveFlags)
        return MAPI_E_UNKNOWN_FLAGS;
    return object.Session().Run([&] {
        const HRESULT result = object.Save(flags);
        if (SUCCEEDED(result) && (flags & KEEP_OPEN_READONLY))
            object.MakeReadOnly();
        return result;
    });
}

HRESULT OpenObjectProperty(const std::shared_ptr<StoredObject>& object,
                           ULONG tag,
                           const IID* iid,
                           ULONG interfaceOptions,
                           ULONG flags,
                           IUnknown** stream)
{
    if (!stream)
        return MAPI_E_INVALID_PARAMETER;
    *stream = nullptr;
    if (!iid)
        return MAPI_E_INVALID_PARAMETER;
    if (flags & ~(MAPI_MODIFY | MAPI_CREATE | MAPI_DEFERRED_ERRORS))
        return MAPI_E_UNKNOWN_FLAGS;
    if (!IsEqualIID(*iid, IID_IStream))
        return MAPI_E_INTERFACE_NOT_SUPPORTED;
    return PropertyStream::Open(object, tag, interfaceOptions, flags, stream);
}

namespace
{

HRESULT ReadName(const MAPINAMEID* source, PropertyName& name)
{
    if (!source || !source->lpguid)
        return MAPI_E_INVALID_PARAMETER;
    name.set = *source->lpguid;
    if (source->ulKind == MNID_ID)
        name.name = source->Kind.lID;
    else if (source->ulKind == MNID_STRING && source->Kind.lpwstrName)
        name.name = std::wstring(source->Kind.lpwstrName);
    else
        return MAPI_E_INVALID_PARAMETER;
    return S_OK;
}

// In the set of MAPI's own properties the number is the ID.
std::optional<std::uint16_t> MapiId(const PropertyName& name)
{
    const LONG* number = std::get_if<LONG>(&name.name);
    if (!number || !IsEqualGUID(name.set, PS_MAPI) || *number <= 0 || *number >= 0x8000)
        return std::nullopt;
    return static_cast<std::uint16_t>(*number);
}

} // namespace

HRESULT GetObjectIdsFromNames(StoreSession& session,
                              bool writable,
                              ULONG count,
                              MAPINAMEID** names,
                              ULONG flags,
                              SPropTagArray** tags)
{
    if (!tags)
        return MAPI_E_INVALID_PARAMETER;
    *tags = nullptr;
    if (flags & ~MAPI_CREATE)
        return MAPI_E_UNKNOWN_FLAGS;
    if (count > kMaxTags || (count != 0 && !names))
        return MAPI_E_INVALID_PARAMETER;
    return session.Run([&] {
        std::vector<ULONG> result;
        if (count == 0)
        {
            for (const auto& [id, name] : session.Names().All())
                result.push_back(PROP_TAG(PT_UNSPECIFIED, id));
            *tags = CopyTags(result, ChainedMemory::OfLibrary());
            return S_OK;
        }
        std::vector<PropertyName> wanted(count);
        // Those that the map has to tell.
        std::vector<PropertyName> asked;
        std::vector<std::optional<std::uint16_t>> ids(count);
        std::vector<size_t> askedAt;
        for (ULONG i = 0; i < count; ++i)
        {
            if (const HRESULT read = ReadName(names[i], wanted[i]); FAILED(read))
                return read;
            ids[i] = MapiId(wanted[i]);
            if (ids[i] || IsEqualGUID(wanted[i].set, PS_MAPI))
                continue;
            asked.push_back(wanted[i]);
            askedAt.push_back(i);
        }
        if ((flags & MAPI_CREATE) && !writable)
            return MAPI_E_NO_ACCESS;
        const auto found = (flags & MAPI_CREATE) ? session.Names().FindOrCreate(asked)
                                                 : session.Names().Find(asked);
        for (size_t i = 0; i < found.size(); ++i)
            ids[askedAt[i]] = found[i];
        HRESULT outcome = S_OK;
        for (const auto& id : ids)
        {
            result.push_back(id ? PROP_TAG(PT_UNSPECIFIED, *id) : PROP_TAG(PT_ERROR, 0));
            if (!id)
                outcome = MAPI_W_ERRORS_RETURNED;
        }
        *tags = CopyTags(result, ChainedMemory::OfLibrary());
        return outcome;
    });
}

HRESULT GetObjectNamesFromIds(StoreSession& session,
                              SPropTagArray** tags,
                              const GUID* set,
                              ULONG flags,
                              ULONG* count,
                              MAPINAMEID*** names)
{
    if (count)
        *count = 0;
    if (names)
        *names = nullptr;
    if (!tags || !count || !names)
        return MAPI_E_INVALID_PARAMETER;
    if (flags & ~(MAPI_NO_STRINGS | MAPI_NO_IDS))
        return MAPI_E_UNKNOWN_FLAGS;
    return session.Run([&] {
        const auto wanted = [&](const PropertyName& name) {
            const bool isNumber = std::holds_alternative<LONG>(name.name);
            return (!set || IsEqualGUID(*set, name.set)) &&
                   !(flags & (isNumber ? MAPI_NO_IDS : MAPI_NO_STRINGS));
        };
        std::vector<ULONG> ids;
        std::vector<std::optional<PropertyName>> found;
        const bool all = !*tags;
        HRESULT outcome = S_OK;
        if (all)
        {
            for (const auto& [id, name] : session.Names().All())
            {
                if (!wanted(name))
                    continue;
                ids.push_back(PROP_TAG(PT_UNSPECIFIED, id));
                found.emplace_back(name);
            }
        }
        else
        {
            if (const HRESULT read = ReadTags(*tags, ids); FAILED(read))
                return read;
            for (const ULONG tag : ids)
            {
                const auto id = static_cast<std::uint16_t>(PROP_ID(tag));
                std::optional<PropertyName> name;
                if (id != 0 && id < 0x8000)
                    name = PropertyName{PS_MAPI, static_cast<LONG>(id)};
                else if (const PropertyName* known = session.Names().NameOf(id))
                    name = *known;
                if (name && !wanted(*name))
                    name.reset();
                if (!name)
                    outcome = MAPI_W_ERRORS_RETURNED;
                found.push_back(std::move(name));
            }
        }

        ChainedMemory& memory = ChainedMemory::OfLibrary();
        ChainedBuffer buffer(memory, std::max<size_t>(found.size(), 1) * sizeof(MAPINAMEID*));
        auto** array = static_cast<MAPINAMEID**>(buffer.Get());
        auto* records = static_cast<MAPINAMEID*>(buffer.More(found.size() * sizeof(MAPINAMEID)));
        auto* sets = static_cast<GUID*>(buffer.More(found.size() * sizeof(GUID)));
        for (size_t i = 0; i < found.size(); ++i)
        {
            if (!found[i])
                continue;
            sets[i] = found[i]->set;
            records[i].lpguid = &sets[i];
            if (const LONG* number = std::get_if<LONG>(&found[i]->name))
            {
                records[i].ulKind = MNID_ID;
                records[i].Kind.lID = *number;
            }
            else
            {
                const std::wstring& text = std::get<std::wstring>(found[i]->name);
                const size_t bytes = (text.size() + 1) * sizeof(wchar_t);
                records[i].ulKind = MNID_STRING;
                records[i].Kind.lpwstrName = static_cast<wchar_t*>(buffer.More(bytes));
                std::memcpy(records[i].Kind.lpwstrName, text.c_str(), bytes);
            }
            array[i] = &records[i];
        }
        if (all)
            *tags = CopyTags(ids, memory);
        *count = static_cast<ULONG>(found.size());
        *names = static_cast<MAPINAMEID**>(buffer.Detach());
        return outcome;
    });
}
