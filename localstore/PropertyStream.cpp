#include "localstore/PropertyStream.h"

#include "localstore/ByteStream.h"

#include <cstring>

namespace
{

Bytes BytesOf(PropertyValue&& value)
{
    if (auto* bytes = std::get_if<Bytes>(&value.data))
        return std::move(*bytes);
    const auto& text = std::get<std::wstring>(value.data);
    const auto units = std::as_bytes(std::span(text));
    return Bytes(units.begin(), units.end());
}

// Half a code unit at the end of text is dropped.
PropertyValue ValueOf(std::uint16_t type, const Bytes& bytes)
{
    if (type != PT_UNICODE)
        return {type, bytes};
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    if (!text.empty())
        std::memcpy(text.data(), bytes.data(), text.size() * sizeof(wchar_t));
    return {type, std::move(text)};
}

bool HasStream(std::uint16_t type)
{
    return type == PT_BINARY || type == PT_UNICODE || type == PT_STRING8;
}

class PropertyContent : public StreamContent
{
  public:
    PropertyContent(std::shared_ptr<StoredObject> object,
                    std::uint16_t id,
                    std::uint16_t type,
                    bool transacted)
        : m_object(std::move(object)), m_id(id), m_type(type), m_transacted(transacted)
    {
    }
    ~PropertyContent() override
    {
        if (changed && !m_transacted)
            Guarded([&] { return Store(); });
    }

    HRESULT Store() override
    {
        return m_object->Session().Run([&] {
            PropertyChanges changes;
            changes.emplace(m_id, ValueOf(m_type, bytes));
            return m_object->Change(std::move(changes));
        });
    }
    HRESULT Reload() override
    {
        return m_object->Session().Run([&] {
            auto value = Stored();
            bytes = value ? BytesOf(std::move(*value)) : Bytes();
            return S_OK;
        });
    }

    // The object's value in the stream's type; inside Run.
    std::optional<PropertyValue> Stored()
    {
        const PropertyMap properties = m_object->Read(PropertySelection({m_id}));
        const auto found = properties.find(m_id);
        if (found == properties.end())
            return std::nullopt;
        // A tag without a type takes what is there.
        if (m_type == PT_UNSPECIFIED)
            m_type = found->second.type;
        return HasStream(m_type) ? ConvertValue(found->second, m_type) : std::nullopt;
    }
    std::uint16_t Type() const noexcept { return m_type; }

  private:
    const std::shared_ptr<StoredObject> m_object;
    const std::uint16_t m_id;
    std::uint16_t m_type;
    const bool m_transacted;
};

} // namespace

HRESULT PropertyStream::Open(const std::shared_ptr<StoredObject>& object,
                             ULONG tag,
                             ULONG interfaceOptions,
                             ULONG flags,
                             IUnknown** stream)
{
    const auto type = static_cast<std::uint16_t>(PROP_TYPE(tag));
    const auto id = static_cast<std::uint16_t>(PROP_ID(tag));
    const bool writes = (flags & (MAPI_MODIFY | MAPI_CREATE)) != 0;
    if (!HasStream(type) && type != PT_UNSPECIFIED)
        return MAPI_E_NO_SUPPORT;
    if (id == 0 || id == 0xFFFF)
        return MAPI_E_INVALID_PARAMETER;
    // Outside of Run: the content takes the lock when it goes.
    std::shared_ptr<PropertyContent> content;
    return Guarded([&] {
        content = std::make_shared<PropertyContent>(
            object, id, type, (interfaceOptions & STGM_TRANSACTED) != 0);
        return object->Session().Run([&]() -> HRESULT {
            if (writes && !object->IsWritable())
                return MAPI_E_NO_ACCESS;
            if (writes && object->IsComputed(id))
                return MAPI_E_COMPUTED;
            auto value = content->Stored();
            if (flags & MAPI_CREATE)
            {
                if (!HasStream(content->Type()))
                    return MAPI_E_INVALID_TYPE;
                if (id >= 0x8000 && !object->Session().Names().NameOf(id))
                    return MAPI_E_NOT_FOUND;
            }
            else if (!value)
                return MAPI_E_NOT_FOUND;
            else
                content->bytes = BytesOf(std::move(*value));
            auto made = MakeObject<ByteStream>(content);
            content->writable = writes;
            // An empty value is a value: it comes to be also where nothing is written.
            content->changed = (flags & MAPI_CREATE) != 0;
            *stream = made.Detach();
            return S_OK;
        });
    });
}
