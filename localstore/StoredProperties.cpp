#include "localstore/StoredProperties.h"

#include "platform/WindowsHeaders.h"

#include <cstring>
#include <span>

namespace
{

enum class Form
{
    Fixed,
    Bytes,
    Text
};

struct TypeForm
{
    std::uint16_t type;
    Form form;
};

// Every type that can be stored, single; with MV_FLAG added also as a multi-value.
constexpr TypeForm kTypeForms[] = {
    {PT_I2, Form::Fixed},
    {PT_LONG, Form::Fixed},
    {PT_R4, Form::Fixed},
    {PT_DOUBLE, Form::Fixed},
    {PT_CURRENCY, Form::Fixed},
    {PT_APPTIME, Form::Fixed},
    {PT_BOOLEAN, Form::Fixed},
    {PT_I8, Form::Fixed},
    {PT_SYSTIME, Form::Fixed},
    {PT_STRING8, Form::Bytes},
    {PT_CLSID, Form::Bytes},
    {PT_BINARY, Form::Bytes},
    {PT_UNICODE, Form::Text},
};

std::optional<Form> FormOf(std::uint16_t type)
{
    for (const TypeForm& row : kTypeForms)
    {
        if (row.type == (type & ~MV_FLAG))
            return row.form;
    }
    return std::nullopt;
}

[[noreturn]] void ThrowCorrupt()
{
    throw DatabaseError(DatabaseFailure::Corrupt, "a property's row does not fit its type");
}

[[noreturn]] void ThrowUnfit()
{
    throw DatabaseError(DatabaseFailure::Constraint, "the value does not fit the property's type");
}

// Text is stored as its UTF-16 code units, so that also unpaired surrogates come back.
void AppendText(Bytes& bytes, const std::wstring& text)
{
    const auto units = std::as_bytes(std::span(text));
    bytes.insert(bytes.end(), units.begin(), units.end());
}

std::wstring TextOfBytes(std::span<const std::byte> bytes)
{
    static_assert(sizeof(wchar_t) == 2);
    if (bytes.size() % sizeof(wchar_t) != 0)
        ThrowCorrupt();
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    if (!bytes.empty())
        std::memcpy(text.data(), bytes.data(), bytes.size());
    return text;
}

template <typename T> void AppendNumber(Bytes& bytes, T value)
{
    const auto raw = std::as_bytes(std::span(&value, 1));
    bytes.insert(bytes.end(), raw.begin(), raw.end());
}

void AppendLength(Bytes& bytes, size_t length)
{
    if (length > 0x7FFFFFFF)
        ThrowUnfit();
    AppendNumber(bytes, static_cast<std::uint32_t>(length));
}

// Takes from the front of a multi-value's bytes; short input is a corrupt row.
class Reader
{
  public:
    explicit Reader(std::span<const std::byte> bytes) : m_rest(bytes) {}

    std::span<const std::byte> Take(size_t size)
    {
        if (size > m_rest.size())
            ThrowCorrupt();
        const auto taken = m_rest.first(size);
        m_rest = m_rest.subspan(size);
        return taken;
    }
    template <typename T> T Number()
    {
        T value{};
        std::memcpy(&value, Take(sizeof value).data(), sizeof value);
        return value;
    }
    // A count of elements that take at least that many bytes each.
    std::uint32_t Count(size_t elementBytes)
    {
        const auto count = Number<std::uint32_t>();
        if (count > m_rest.size() / elementBytes)
            ThrowCorrupt();
        return count;
    }
    void ExpectEnd() const
    {
        if (!m_rest.empty())
            ThrowCorrupt();
    }

  private:
    std::span<const std::byte> m_rest;
};

Bytes EncodeMulti(Form form, const PropertyValue& value)
{
    Bytes bytes;
    if (form == Form::Fixed)
    {
        const auto* values = std::get_if<std::vector<std::uint64_t>>(&value.data);
        if (!values)
            ThrowUnfit();
        AppendLength(bytes, values->size());
        for (const std::uint64_t item : *values)
            AppendNumber(bytes, item);
    }
    else if (form == Form::Bytes)
    {
        const auto* values = std::get_if<std::vector<Bytes>>(&value.data);
        if (!values)
            ThrowUnfit();
        AppendLength(bytes, values->size());
        for (const Bytes& item : *values)
        {
            AppendLength(bytes, item.size());
            bytes.insert(bytes.end(), item.begin(), item.end());
        }
    }
    else
    {
        const auto* values = std::get_if<std::vector<std::wstring>>(&value.data);
        if (!values)
            ThrowUnfit();
        AppendLength(bytes, values->size());
        for (const std::wstring& item : *values)
        {
            AppendLength(bytes, item.size() * sizeof(wchar_t));
            AppendText(bytes, item);
        }
    }
    return bytes;
}

PropertyValue DecodeMulti(Form form, std::uint16_t type, std::span<const std::byte> bytes)
{
    Reader reader(bytes);
    PropertyValue value{type, {}};
    if (form == Form::Fixed)
    {
        std::vector<std::uint64_t> values(reader.Count(sizeof(std::uint64_t)));
        for (std::uint64_t& item : values)
            item = reader.Number<std::uint64_t>();
        value.data = std::move(values);
    }
    else if (form == Form::Bytes)
    {
        std::vector<Bytes> values(reader.Count(sizeof(std::uint32_t)));
        for (Bytes& item : values)
        {
            const auto taken = reader.Take(reader.Number<std::uint32_t>());
            item.assign(taken.begin(), taken.end());
        }
        value.data = std::move(values);
    }
    else
    {
        std::vector<std::wstring> values(reader.Count(sizeof(std::uint32_t)));
        for (std::wstring& item : values)
            item = TextOfBytes(reader.Take(reader.Number<std::uint32_t>()));
        value.data = std::move(values);
    }
    reader.ExpectEnd();
    return value;
}

// The bytes of a value that is no single fixed-size one.
Bytes Encode(Form form, const PropertyValue& value)
{
    if (value.type & MV_FLAG)
        return EncodeMulti(form, value);
    if (form == Form::Bytes)
    {
        const auto* bytes = std::get_if<Bytes>(&value.data);
        if (!bytes || (value.type == PT_CLSID && bytes->size() != sizeof(GUID)))
            ThrowUnfit();
        return *bytes;
    }
    const auto* text = std::get_if<std::wstring>(&value.data);
    if (!text)
        ThrowUnfit();
    Bytes bytes;
    AppendText(bytes, *text);
    return bytes;
}

PropertyValue DecodeBytes(Form form, std::uint16_t type, std::span<const std::byte> bytes)
{
    if (type & MV_FLAG)
        return DecodeMulti(form, type, bytes);
    if (form == Form::Text)
        return {type, TextOfBytes(bytes)};
    if (type == PT_CLSID && bytes.size() != sizeof(GUID))
        ThrowCorrupt();
    return {type, Bytes(bytes.begin(), bytes.end())};
}

constexpr char kReadOwner[] = "SELECT property_id, type, value, large FROM property "
                              "WHERE owner_kind = ?1 AND owner = ?2";

} // namespace

PropertyValue ReadValueColumns(Database& database, const Statement& row, int firstColumn)
{
    const std::int64_t storedType = row.Integer(firstColumn);
    const auto type = static_cast<std::uint16_t>(storedType);
    const std::optional<Form> form = FormOf(type);
    if (!form || storedType != type)
        ThrowCorrupt();

    if (*form == Form::Fixed && !(type & MV_FLAG))
    {
        if (!row.IsInteger(firstColumn + 1))
            ThrowCorrupt();
        return {type, static_cast<std::uint64_t>(row.Integer(firstColumn + 1))};
    }
    if (row.IsNull(firstColumn + 2))
    {
        if (!row.IsBlob(firstColumn + 1))
            ThrowCorrupt();
        return DecodeBytes(*form, type, row.Blob(firstColumn + 1));
    }
    Statement large = database.Prepare("SELECT bytes FROM large_value WHERE id = ?1");
    large.Bind(1, row.Integer(firstColumn + 2));
    if (!large.Step() || !large.IsBlob(0))
        ThrowCorrupt();
    return DecodeBytes(*form, type, large.Blob(0));
}

PropertyMap ReadProperties(Database& database, PropertyOwner owner)
{
    return ReadProperties(database, owner, PropertySelection::All());
}

PropertyMap ReadProperties(Database& database,
                           PropertyOwner owner,
                           const PropertySelection& selection)
{
    Statement rows = database.Prepare(kReadOwner);
    rows.Bind(1, static_cast<std::int64_t>(owner.kind)).Bind(2, owner.id);
    PropertyMap properties;
    while (rows.Step())
    {
        const auto id = static_cast<std::uint16_t>(rows.Integer(0));
        // The rows come in the order of their IDs.
        if (selection.Has(id))
            properties.emplace_hint(properties.end(), id, ReadValueColumns(database, rows, 1));
    }
    return properties;
}

std::optional<PropertyValue> ReadProperty(Database& database,
                                          PropertyOwner owner,
                                          std::uint16_t propertyId)
{
    Statement row = database.Prepare("SELECT type, value, large FROM property "
                                     "WHERE owner_kind = ?1 AND owner = ?2 AND property_id = ?3");
    row.Bind(1, static_cast<std::int64_t>(owner.kind)).Bind(2, owner.id).Bind(3, propertyId);
    if (!row.Step())
        return std::nullopt;
    return ReadValueColumns(database, row, 0);
}

void WriteProperty(Database& database,
                   PropertyOwner owner,
                   std::uint16_t propertyId,
                   const PropertyValue& value)
{
    const std::optional<Form> form = FormOf(value.type);
    const bool fixed = form == Form::Fixed && !(value.type & MV_FLAG);
    if (!form || (fixed && !std::holds_alternative<std::uint64_t>(value.data)))
        ThrowUnfit();
    const Bytes bytes = fixed ? Bytes() : Encode(*form, value);

    // A replaced row would leave its large value behind; a deleted one takes it along.
    DeleteProperty(database, owner, propertyId);
    std::int64_t large = 0;
    if (bytes.size() > kLargestInlineBytes)
    {
        database.Prepare("INSERT INTO large_value (bytes) VALUES (?1)")
            .Bind(1, std::span<const std::byte>(bytes))
            .Run();
        large = database.LastInsertId();
    }
    Statement insert = database.Prepare(
        "INSERT INTO property (owner_kind, owner, property_id, type, value, large) "
        "VALUES (?1, ?2, ?3, ?4, ?5, ?6)");
    insert.Bind(1, static_cast<std::int64_t>(owner.kind))
        .Bind(2, owner.id)
        .Bind(3, propertyId)
        .Bind(4, value.type);
    if (fixed)
        insert.Bind(5, static_cast<std::int64_t>(std::get<std::uint64_t>(value.data)));
    else if (large == 0)
        insert.Bind(5, std::span<const std::byte>(bytes));
    if (large != 0)
        insert.Bind(6, large);
    insert.Run();
}

bool DeleteProperty(Database& database, PropertyOwner owner, std::uint16_t propertyId)
{
    database
        .Prepare("DELETE FROM property WHERE owner_kind = ?1 AND owner = ?2 AND property_id = ?3")
        .Bind(1, static_cast<std::int64_t>(owner.kind))
        .Bind(2, owner.id)
        .Bind(3, propertyId)
        .Run();
    return database.Changes() > 0;
}
