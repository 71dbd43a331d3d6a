#include "localstore/StoreDump.h"

#include "localstore/NamedProperties.h"
#include "localstore/PropertyJson.h"
#include "localstore/Snapshot.h"
#include "localstore/StoreProfile.h"
#include "localstore/StoreProperties.h"
#include "localstore/StoredProperties.h"

#include <map>
#include <set>
#include <string>
#include <vector>

namespace
{

// Text goes to the sink in pieces of about this size.
constexpr size_t kPieceBytes = 1 << 16;

struct FolderRow
{
    std::int64_t id;
    Bytes entryId;
    std::int64_t created;
    std::int64_t modified;
};

Bytes Copy(std::span<const std::byte> bytes)
{
    return Bytes(bytes.begin(), bytes.end());
}

class Dumper
{
  public:
    Dumper(Database& database, const std::function<void(std::string_view)>& sink)
        : m_database(database), m_sink(sink)
    {
        ReadNames();
        ReadFolders();
        ReadRoles();
    }

    void Run()
    {
        m_text = "{\n  \"format\": \"PimStoreBridge store\",\n  \"version\": 1";
        m_text += ",\n  \"store\": {";
        Properties({OwnerKind::Store, 0}, 4, true);
        m_text += "\n  }";
        Identity();
        Book();
        Root();
        m_text += "\n}\n";
        m_sink(m_text);
        m_text.clear();
    }

  private:
    void ReadNames()
    {
        Statement ids = m_database.Prepare("SELECT property_id FROM named_property");
        while (ids.Step())
        {
            const auto id = static_cast<std::uint16_t>(ids.Integer(0));
            m_names.emplace(id, *NameOfProperty(m_database, id));
        }
    }

    void ReadFolders()
    {
        Statement rows = m_database.Prepare(
            "SELECT id, entry_id, created, modified, parent FROM folder ORDER BY id");
        while (rows.Step())
            m_children[rows.IsNull(4) ? 0 : rows.Integer(4)].push_back(
                {rows.Integer(0), Copy(rows.Blob(1)), rows.Integer(2), rows.Integer(3)});
        Statement receive = m_database.Prepare(
            "SELECT folder, message_class FROM receive_folder ORDER BY message_class");
        while (receive.Step())
        {
            if (!receive.Text(1).empty())
                m_receives[receive.Integer(0)].emplace_back(receive.Text(1));
        }
    }

    // A role is told where each of its holders names the same folder. The properties are then left
    // out; what is set up otherwise stands as plain properties.
    void ReadRoles()
    {
        for (const FolderRole& role : FolderRoles())
        {
            const auto folder = FolderOfRole(m_database, role);
            if (!folder)
                continue;
            const PropertyValue entryId{PT_BINARY, EntryIdOfFolder(m_database, *folder).value()};
            bool whole = true;
            const std::vector<PropertyOwner> holders = RoleHolders(m_database, role);
            for (const PropertyOwner& holder : holders)
                whole = whole && ReadProperty(m_database, holder, role.propertyId) == entryId;
            if (!whole)
                continue;
            m_roles[*folder].push_back(role.name);
            for (const PropertyOwner& holder : holders)
                m_told.insert({holder.kind, holder.id, role.propertyId});
        }
    }

    void Line(int indent)
    {
        m_text += '\n';
        m_text.append(static_cast<size_t>(indent), ' ');
        if (m_text.size() < kPieceBytes)
            return;
        m_sink(m_text);
        m_text.clear();
    }

    // Begins the next line of an object: a comma before all but its first one.
    void Key(int indent, bool& first, std::string_view key)
    {
        if (!first)
            m_text += ',';
        first = false;
        Line(indent);
        m_text += "\"" + std::string(key) + "\": ";
    }

    // The properties as a key of the object whose lines have that indent.
    void Properties(PropertyOwner owner,
                    int indent,
                    bool first,
                    std::initializer_list<ULONG> toldElsewhere = {})
    {
        // Those with a name come behind, by their names: the order of their IDs is another in each
        // store.
        std::vector<std::pair<PropertyKey, PropertyValue>> plain;
        std::map<PropertyName, PropertyValue> named;
        for (auto& [id, value] : ReadProperties(m_database, owner))
        {
            const ULONG tag = PROP_TAG(value.type, id);
            const auto name = m_names.find(id);
            if (name != m_names.end())
                named.emplace(name->second, std::move(value));
            else if (!IsComputedOf(owner.kind, id) &&
                     !m_told.contains({owner.kind, owner.id, id}) &&
                     std::find(toldElsewhere.begin(), toldElsewhere.end(), tag) ==
                         toldElsewhere.end())
                plain.emplace_back(id, std::move(value));
        }
        for (auto& [name, value] : named)
            plain.emplace_back(name, std::move(value));
        if (plain.empty())
            return;
        Key(indent, first, "properties");
        m_text += '[';
        bool firstItem = true;
        for (const auto& [key, value] : plain)
        {
            if (!firstItem)
                m_text += ',';
            firstItem = false;
            Line(indent + 2);
            m_text += PropertyText(key, value);
        }
        Line(indent);
        m_text += ']';
    }

    void Identity()
    {
        Statement row = m_database.Prepare("SELECT entry_id FROM identity WHERE id = 1");
        if (!row.Step())
            return;
        bool first = false;
        Key(2, first, "identity");
        m_text += '{';
        first = true;
        Key(4, first, "entryId");
        m_text += "\"" + HexText(row.Blob(0)) + "\"";
        Properties({OwnerKind::Identity, 1}, 4, false);
        Line(2);
        m_text += '}';
    }

    // The rows of a statement as a list, which is a further key of the object whose lines have that
    // indent; nothing for no rows.
    template <typename WriteItem>
    void List(Statement& rows, const char* key, int indent, WriteItem&& writeItem)
    {
        bool any = false;
        while (rows.Step())
        {
            bool first = false;
            if (any)
                m_text += ',';
            else
            {
                Key(indent, first, key);
                m_text += '[';
            }
            any = true;
            Line(indent + 2);
            writeItem(indent + 2);
        }
        if (!any)
            return;
        Line(indent);
        m_text += ']';
    }

    void Book()
    {
        Statement rows = m_database.Prepare("SELECT id, entry_id, object_type, created, modified "
                                            "FROM book_entry ORDER BY id");
        List(rows, "book", 2, [&](int indent) { BookEntry(rows, indent); });
    }

    void BookEntry(const Statement& row, int indent)
    {
        const std::int64_t id = row.Integer(0);
        bool first = true;
        m_text += '{';
        if (row.Integer(2) == MAPI_DISTLIST)
        {
            Key(indent + 2, first, "type");
            m_text += "\"list\"";
        }
        Key(indent + 2, first, "entryId");
        m_text += "\"" + HexText(row.Blob(1)) + "\"";
        Times(row.Integer(3), row.Integer(4), indent + 2, first);
        Properties({OwnerKind::BookEntry, id}, indent + 2, first);
        Line(indent);
        m_text += '}';
    }

    void Root()
    {
        const auto roots = m_children.find(0);
        if (roots == m_children.end())
            return;
        bool first = false;
        Key(2, first, "root");
        Folder(roots->second.front(), 2);
    }

    // Texts that have a key of their own in a folder.
    void FolderText(PropertyOwner owner, ULONG tag, int indent, bool& first, const char* key)
    {
        const auto value =
            ReadProperty(m_database, owner, static_cast<std::uint16_t>(PROP_ID(tag)));
        if (!value || value->type != PT_UNICODE)
            return;
        Key(indent, first, key);
        m_text += TextValueText(std::get<std::wstring>(value->data));
    }

    void Texts(const std::vector<std::string>& texts)
    {
        m_text += '[';
        for (size_t i = 0; i < texts.size(); ++i)
            m_text += (i ? ", " : "") + QuotedText(texts[i]);
        m_text += ']';
    }

    void Times(std::int64_t created, std::int64_t modified, int indent, bool& first)
    {
        Key(indent, first, "created");
        m_text += TimeText(static_cast<std::uint64_t>(created));
        Key(indent, first, "modified");
        m_text += TimeText(static_cast<std::uint64_t>(modified));
    }

    // Behind the key or the comma that the caller wrote; indent is that of its last line.
    void Folder(const FolderRow& folder, int indent)
    {
        const PropertyOwner owner{OwnerKind::MessageFolder, folder.id};
        const int inner = indent + 2;
        bool first = true;
        m_text += '{';
        FolderText(owner, PR_DISPLAY_NAME_W, inner, first, "name");
        FolderText(owner, PR_CONTAINER_CLASS_W, inner, first, "class");
        if (const auto roles = m_roles.find(folder.id); roles != m_roles.end())
        {
            Key(inner, first, "roles");
            Texts(roles->second);
        }
        if (const auto classes = m_receives.find(folder.id); classes != m_receives.end())
        {
            Key(inner, first, "receives");
            Texts(classes->second);
        }
        Key(inner, first, "entryId");
        m_text += "\"" + HexText(folder.entryId) + "\"";
        Times(folder.created, folder.modified, inner, first);
        Properties(owner, inner, first, {PR_DISPLAY_NAME_W, PR_CONTAINER_CLASS_W});
        Messages(folder.id, 0, "messages", inner);
        Messages(folder.id, 1, "associated", inner);
        if (const auto children = m_children.find(folder.id); children != m_children.end())
        {
            Key(inner, first, "folders");
            m_text += '[';
            bool firstChild = true;
            for (const FolderRow& child : children->second)
            {
                if (!firstChild)
                    m_text += ',';
                firstChild = false;
                Line(inner + 2);
                Folder(child, inner + 2);
            }
            Line(inner);
            m_text += ']';
        }
        Line(indent);
        m_text += '}';
    }

    void Messages(std::int64_t folder, int associated, const char* key, int indent)
    {
        Statement rows = m_database.Prepare("SELECT id, entry_id, created, modified FROM message "
                                            "WHERE folder = ?1 AND associated = ?2 ORDER BY id");
        rows.Bind(1, folder).Bind(2, associated);
        List(rows, key, indent, [&](int inner) { Message(rows, inner); });
    }

    void Message(const Statement& row, int indent)
    {
        const std::int64_t id = row.Integer(0);
        bool first = true;
        m_text += '{';
        Key(indent + 2, first, "entryId");
        m_text += "\"" + HexText(row.Blob(1)) + "\"";
        Times(row.Integer(2), row.Integer(3), indent + 2, first);
        Properties({OwnerKind::Message, id}, indent + 2, first);
        Attachments(id, indent + 2);
        Line(indent);
        m_text += '}';
    }

    void Attachments(std::int64_t message, int indent)
    {
        Statement rows = m_database.Prepare(
            "SELECT id, number FROM attachment WHERE message = ?1 ORDER BY number");
        rows.Bind(1, message);
        List(rows, "attachments", indent, [&](int inner) {
            bool first = true;
            m_text += '{';
            Key(inner + 2, first, "number");
            m_text += std::to_string(rows.Integer(1));
            Properties({OwnerKind::Attachment, rows.Integer(0)}, inner + 2, first);
            Line(inner);
            m_text += '}';
        });
    }

    struct Told
    {
        OwnerKind kind;
        std::int64_t id;
        std::uint16_t propertyId;
        auto operator<=>(const Told&) const = default;
    };

    Database& m_database;
    const std::function<void(std::string_view)>& m_sink;
    std::string m_text;
    std::map<std::uint16_t, PropertyName> m_names;
    std::map<std::int64_t, std::vector<FolderRow>> m_children; // of the folder; 0: the root
    std::map<std::int64_t, std::vector<std::string>> m_receives;
    std::map<std::int64_t, std::vector<std::string>> m_roles;
    std::set<Told> m_told;
};

} // namespace

void DumpStore(Database& database, const std::function<void(std::string_view)>& sink)
{
    const Snapshot snapshot(database);
    Dumper(database, sink).Run();
}
