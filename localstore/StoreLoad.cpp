#include "localstore/StoreLoad.h"

#include "localstore/BookEntryId.h"
#include "localstore/PropertyJson.h"
#include "localstore/StoreProfile.h"
#include "localstore/StoreProperties.h"
#include "localstore/StoredProperties.h"
#include "service/TextConversions.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

namespace
{

constexpr char kFormat[] = "PimStoreBridge store";

// Below a folder, what nests most: its messages, a message, the attachments, an attachment, the
// properties, a property, a list of values, a value.
constexpr int kLevelsInFolder = 8;
static_assert(2 * kMostFolderLevels + kLevelsInFolder <= static_cast<int>(kDeepestJson));

using Properties = std::vector<KeyedProperty>;

// What every object of the store may say about itself.
struct ObjectData
{
    std::optional<Bytes> entryId;
    std::optional<std::int64_t> created;
    std::optional<std::int64_t> modified;
    Properties properties;
};

struct AttachmentData
{
    std::int64_t number;
    Properties properties;
};

struct MessageData : ObjectData
{
    std::vector<AttachmentData> attachments;
};

struct BookEntryData : ObjectData
{
    std::int64_t objectType = MAPI_MAILUSER;
};

struct FolderData : ObjectData
{
    size_t line = 0;
    std::string path;
    std::optional<size_t> parent; // among the folders of the file
    int level = 1;
    std::optional<std::wstring> name;
    std::vector<const FolderRole*> roles;
    std::vector<std::string> receives;
};

// Everything of the file but the messages and the entries of the book.
struct FileData
{
    std::optional<ObjectData> store;
    std::optional<ObjectData> identity;
    std::vector<FolderData> folders; // parents before children
};

std::string Fold(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](char unit) {
        return unit >= 'A' && unit <= 'Z' ? static_cast<char>(unit - 'A' + 'a') : unit;
    });
    return text;
}

Properties ReadPropertyList(const JsonPlace& list, OwnerKind owner)
{
    Properties properties;
    const size_t count = list.Array().size();
    properties.reserve(count);
    std::set<PropertyKey> keys;
    for (size_t i = 0; i < count; ++i)
    {
        const JsonPlace place = list.At(i);
        properties.push_back(ReadPropertyJson(place));
        const PropertyKey& key = properties.back().key;
        const auto* id = std::get_if<std::uint16_t>(&key);
        if (id && IsComputedOf(owner, *id))
            place.At("tag").Fail("the store makes this property itself; entryId, created and "
                                 "modified give what can be given");
        if (!keys.insert(key).second)
            place.Fail("this property stands twice");
    }
    return properties;
}

// Of an object that need not have any.
Properties ReadPropertiesOf(const JsonPlace& object, OwnerKind owner)
{
    return object.Find("properties") ? ReadPropertyList(object.At("properties"), owner)
                                     : Properties();
}

std::int64_t ReadTicks(const JsonPlace& place)
{
    const std::uint64_t ticks = ReadTime(place);
    if (ticks > INT64_MAX)
        place.Fail("the time is too far in the future");
    return static_cast<std::int64_t>(ticks);
}

// objectType: the MAPI type that the entry ID has to tell.
Bytes ReadEntryId(const JsonPlace& place, std::uint8_t objectType)
{
    Bytes entryId = ReadHex(place);
    if (!IsOwnEntryId(entryId) ||
        std::to_integer<std::uint8_t>(entryId[kEntryIdTypeAt]) != objectType)
        place.Fail("this is no entry ID of such an object; leave it out for a new one");
    return entryId;
}

void ReadObjectTimes(const JsonPlace& object, ObjectData& data)
{
    if (object.Find("created"))
        data.created = ReadTicks(object.At("created"));
    if (object.Find("modified"))
        data.modified = ReadTicks(object.At("modified"));
}

MessageData ReadMessage(const JsonPlace& place)
{
    place.ExpectKeys({"entryId", "created", "modified", "properties", "attachments"});
    MessageData message;
    if (place.Find("entryId"))
        message.entryId = ReadEntryId(place.At("entryId"), MAPI_MESSAGE);
    ReadObjectTimes(place, message);
    message.properties = ReadPropertiesOf(place, OwnerKind::Message);
    if (!place.Find("attachments"))
        return message;
    const JsonPlace list = place.At("attachments");
    std::set<std::int64_t> numbers;
    for (size_t i = 0; i < list.Array().size(); ++i)
    {
        const JsonPlace item = list.At(i);
        item.ExpectKeys({"number", "properties"});
        const std::int64_t number = item.Find("number") ? item.At("number").Integer(0, INT32_MAX)
                                                        : static_cast<std::int64_t>(i);
        if (!numbers.insert(number).second)
            item.Fail("two attachments of the message have the number " + std::to_string(number));
        message.attachments.push_back({number, ReadPropertiesOf(item, OwnerKind::Attachment)});
    }
    return message;
}

// Entries of the book may have IDs of any form, as other programs' books have them.
BookEntryData ReadBookEntry(const JsonPlace& place)
{
    place.ExpectKeys({"type", "entryId", "created", "modified", "properties"});
    BookEntryData entry;
    if (place.Find("type"))
    {
        const JsonPlace type = place.At("type");
        if (type.Text() == "list")
            entry.objectType = MAPI_DISTLIST;
        else if (type.Text() != "user")
            type.Fail("an entry of the book is of the type \"user\" or \"list\"");
    }
    if (place.Find("entryId"))
    {
        entry.entryId = ReadHex(place.At("entryId"));
        if (entry.entryId->empty() || entry.entryId->size() > kLongestEntryId)
            place.At("entryId").Fail(
                "an entry ID has 1 to 4,096 bytes; leave it out for a new one");
    }
    ReadObjectTimes(place, entry);
    entry.properties = ReadPropertiesOf(place, OwnerKind::BookEntry);
    return entry;
}

// Follows the form of the file: which values are held, which are entered, where a message stands.
class FileReader : public JsonListener
{
  public:
    JsonStep Begin(const std::string& path, std::string_view key, Kind kind, size_t line) override
    {
        if (m_levels.empty())
            return Enter(Level::File, Kind::Object, kind, path, line);
        switch (m_levels.back())
        {
        case Level::File:
            if (key == "root")
                return EnterFolder(std::nullopt, kind, path, line);
            if (key == "book")
                return Enter(Level::Book, Kind::Array, kind, path, line);
            return Known(key, {"format", "version", "store", "identity"}, path, line);
        case Level::Folder:
            if (key == "folders")
                return Enter(Level::Folders, Kind::Array, kind, path, line);
            if (key == "messages")
                return Enter(Level::Messages, Kind::Array, kind, path, line);
            if (key == "associated")
                return Enter(Level::Associated, Kind::Array, kind, path, line);
            return Known(key,
                         {"name",
                          "class",
                          "roles",
                          "receives",
                          "entryId",
                          "created",
                          "modified",
                          "properties"},
                         path,
                         line);
        case Level::Folders:
            return EnterFolder(m_folders.back(), kind, path, line);
        default:
            return JsonStep::Hold;
        }
    }

    void Take(const std::string& path, std::string_view key, JsonNode&& node) override
    {
        const JsonPlace place(node, path);
        switch (m_levels.back())
        {
        case Level::File:
            TakeFileValue(key, place);
            return;
        case Level::Folder:
            TakeFolderValue(m_folders.back(), key, place);
            return;
        case Level::Book:
            TakeBookEntry(place);
            return;
        default:
            TakeMessage(m_folders.back(), m_levels.back() == Level::Associated, place);
            return;
        }
    }

    void End() override
    {
        if (m_levels.back() == Level::Folder)
            m_folders.pop_back();
        m_levels.pop_back();
    }

  protected:
    virtual void TakeFileValue(std::string_view key, const JsonPlace& place) = 0;
    // Folders are told by the order in which they begin.
    virtual void TakeFolder(size_t folder,
                            std::optional<size_t> parent,
                            const std::string& path,
                            size_t line) = 0;
    virtual void TakeFolderValue(size_t folder, std::string_view key, const JsonPlace& place) = 0;
    virtual void TakeMessage(size_t folder, bool associated, const JsonPlace& place) = 0;
    virtual void TakeBookEntry(const JsonPlace& place) = 0;

  private:
    enum class Level
    {
        File,
        Book,
        Folder,
        Folders,
        Messages,
        Associated
    };

    JsonStep Enter(Level level, Kind wanted, Kind kind, const std::string& path, size_t line)
    {
        if (kind != wanted)
            throw JsonProblem(line,
                              path,
                              wanted == Kind::Object ? "an object is needed here"
                                                     : "an array is needed here");
        m_levels.push_back(level);
        return JsonStep::Enter;
    }

    JsonStep EnterFolder(std::optional<size_t> parent,
                         Kind kind,
                         const std::string& path,
                         size_t line)
    {
        Enter(Level::Folder, Kind::Object, kind, path, line);
        TakeFolder(m_next, parent, path, line);
        m_folders.push_back(m_next++);
        return JsonStep::Enter;
    }

    static JsonStep Known(std::string_view key,
                          std::initializer_list<std::string_view> keys,
                          const std::string& path,
                          size_t line)
    {
        if (std::find(keys.begin(), keys.end(), key) == keys.end())
            throw JsonProblem(line, path, "there is no such key here");
        return JsonStep::Hold;
    }

    std::vector<Level> m_levels;
    std::vector<size_t> m_folders; // those that have begun and not ended
    size_t m_next = 0;
};

// The first reading: checks everything and keeps all but the messages and the entries of the book.
class Survey : public FileReader
{
  public:
    FileData Finish()
    {
        const auto fail = [](const char* text) { throw JsonProblem(1, "", text); };
        if (!m_hasFormat)
            fail("the key \"format\" is missing: this is no store of PimStoreBridge");
        if (!m_hasVersion)
            fail("the key \"version\" is missing");
        for (const FolderData& folder : m_file.folders)
        {
            if (folder.level > kMostFolderLevels)
                throw JsonProblem(folder.line,
                                  folder.path,
                                  "folders stand in " + std::to_string(kMostFolderLevels) +
                                      " levels at most, the root in the first");
        }
        return std::move(m_file);
    }

  protected:
    void TakeFileValue(std::string_view key, const JsonPlace& place) override
    {
        if (key == "format")
        {
            if (place.Text() != kFormat)
                place.Fail("this is no store of PimStoreBridge: its format is \"" +
                           std::string(kFormat) + "\"");
            m_hasFormat = true;
        }
        else if (key == "version")
        {
            if (place.Integer(1, INT32_MAX) != 1)
                place.Fail("this version of the form is newer than this program: update it");
            m_hasVersion = true;
        }
        else if (key == "store")
        {
            place.ExpectKeys({"properties"});
            m_file.store.emplace().properties = ReadPropertiesOf(place, OwnerKind::Store);
        }
        else
        {
            place.ExpectKeys({"entryId", "properties"});
            ObjectData& identity = m_file.identity.emplace();
            if (place.Find("entryId"))
                identity.entryId = ReadEntryId(place.At("entryId"), MAPI_MAILUSER);
            identity.properties = ReadPropertiesOf(place, OwnerKind::Identity);
        }
    }

    void TakeFolder(size_t,
                    std::optional<size_t> parent,
                    const std::string& path,
                    size_t line) override
    {
        FolderData& folder = m_file.folders.emplace_back();
        folder.parent = parent;
        if (parent)
            folder.level = m_file.folders[*parent].level + 1;
        folder.path = path;
        folder.line = line;
    }

    void TakeFolderValue(size_t index, std::string_view key, const JsonPlace& place) override
    {
        FolderData& folder = m_file.folders[index];
        if (key == "name")
        {
            folder.name = ReadTextValue(place);
            AddText(folder, PROP_ID(PR_DISPLAY_NAME_W), *folder.name, place);
        }
        else if (key == "class")
            AddText(folder, PROP_ID(PR_CONTAINER_CLASS_W), ReadTextValue(place), place);
        else if (key == "roles")
            ReadRoles(folder, place);
        else if (key == "receives")
            ReadReceives(folder, place);
        else if (key == "created")
            folder.created = ReadTicks(place);
        else if (key == "modified")
            folder.modified = ReadTicks(place);
        else if (key == "entryId")
        {
            folder.entryId = ReadEntryId(place, MAPI_FOLDER);
            TakeEntryId(folder, place);
        }
        else
            AddProperties(folder, place);
    }

    void TakeMessage(size_t, bool, const JsonPlace& place) override
    {
        const MessageData message = ReadMessage(place);
        TakeEntryId(message, place);
    }

    void TakeBookEntry(const JsonPlace& place) override
    {
        const BookEntryData entry = ReadBookEntry(place);
        TakeEntryId(entry, place);
    }

  private:
    void TakeEntryId(const ObjectData& object, const JsonPlace& place)
    {
        if (object.entryId && !m_entryIds.insert(*object.entryId).second)
            place.Fail("two objects of the file have this entry ID");
    }

    // Fails where one of the folder's first properties has the key.
    static void ExpectNew(const FolderData& folder,
                          size_t count,
                          const PropertyKey& key,
                          const JsonPlace& place)
    {
        for (size_t i = 0; i < count; ++i)
        {
            if (folder.properties[i].key == key)
                place.Fail("this property stands twice: \"name\" and \"class\" are properties too");
        }
    }

    // A property that has a key of its own.
    static void AddText(FolderData& folder,
                        std::uint32_t id,
                        const std::wstring& text,
                        const JsonPlace& place)
    {
        const PropertyKey key = static_cast<std::uint16_t>(id);
        ExpectNew(folder, folder.properties.size(), key, place);
        folder.properties.push_back({key, {PT_UNICODE, text}});
    }

    static void AddProperties(FolderData& folder, const JsonPlace& list)
    {
        // The list has no key twice, so that only those with a key of their own are looked at.
        const size_t before = folder.properties.size();
        for (KeyedProperty& property : ReadPropertyList(list, OwnerKind::MessageFolder))
        {
            ExpectNew(folder, before, property.key, list);
            folder.properties.push_back(std::move(property));
        }
    }

    void ReadRoles(FolderData& folder, const JsonPlace& list)
    {
        for (size_t i = 0; i < list.Array().size(); ++i)
        {
            const JsonPlace place = list.At(i);
            const FolderRole* role = FindFolderRole(place.Text());
            if (!role)
                place.Fail("there is no role \"" + place.Text() + "\"");
            if (!m_roles.insert(role).second)
                place.Fail("two folders have the role \"" + place.Text() + "\"");
            folder.roles.push_back(role);
        }
    }

    void ReadReceives(FolderData& folder, const JsonPlace& list)
    {
        for (size_t i = 0; i < list.Array().size(); ++i)
        {
            const JsonPlace place = list.At(i);
            const std::string& messageClass = place.Text();
            if (messageClass.empty() || messageClass.find('\0') != std::string::npos)
                place.Fail("a message class is needed here; the role inbox stands for all classes");
            if (!m_classes.insert(Fold(messageClass)).second)
                place.Fail("two folders receive the class \"" + messageClass + "\"");
            folder.receives.push_back(messageClass);
        }
    }

    FileData m_file;
    bool m_hasFormat = false;
    bool m_hasVersion = false;
    std::set<Bytes> m_entryIds;
    std::set<const FolderRole*> m_roles;
    std::set<std::string> m_classes;
};

// The second reading: writes the messages into the folders that were made before it, and the
// entries of the book into the personal container.
class Writer : public FileReader
{
  public:
    explicit Writer(Database& database) : m_database(database), m_now(CurrentFileTime()) {}

    // Everything but the messages and the entries of the book.
    void Write(const FileData& file)
    {
        if (file.store)
            WriteProperties({OwnerKind::Store, 0}, file.store->properties);
        if (file.identity)
            WriteIdentity(*file.identity);
        for (const FolderData& folder : file.folders)
            WriteFolder(folder);
        // In the order of the roles: the inbox holds the properties of others.
        for (const FolderRole& role : FolderRoles())
        {
            for (size_t i = 0; i < file.folders.size(); ++i)
            {
                const auto& roles = file.folders[i].roles;
                if (std::find(roles.begin(), roles.end(), &role) != roles.end())
                    SetFolderRole(m_database, role, m_folders[i]);
            }
        }
    }

    const LoadCounts& Counts() const noexcept { return m_counts; }

  protected:
    void TakeFileValue(std::string_view, const JsonPlace&) override {}
    void TakeFolder(size_t, std::optional<size_t>, const std::string&, size_t) override {}
    void TakeFolderValue(size_t, std::string_view, const JsonPlace&) override {}

    void TakeMessage(size_t folder, bool associated, const JsonPlace& place) override
    {
        const MessageData message = ReadMessage(place);
        // What has that entry ID gives way to what the file holds.
        if (message.entryId)
            m_database.Prepare("DELETE FROM message WHERE entry_id = ?1")
                .Bind(1, std::span<const std::byte>(*message.entryId))
                .Run();
        const Bytes entryId = message.entryId ? *message.entryId : NewEntryId(MAPI_MESSAGE);
        m_database
            .Prepare("INSERT INTO message (entry_id, folder, associated, created, modified) "
                     "VALUES (?1, ?2, ?3, ?4, ?5)")
            .Bind(1, std::span<const std::byte>(entryId))
            .Bind(2, m_folders.at(folder))
            .Bind(3, associated ? 1 : 0)
            .Bind(4, message.created.value_or(m_now))
            .Bind(5, message.modified.value_or(m_now))
            .Run();
        const std::int64_t id = m_database.LastInsertId();
        ++m_counts.messages;
        WriteProperties({OwnerKind::Message, id}, message.properties);
        for (const AttachmentData& attachment : message.attachments)
        {
            m_database.Prepare("INSERT INTO attachment (message, number) VALUES (?1, ?2)")
                .Bind(1, id)
                .Bind(2, attachment.number)
                .Run();
            ++m_counts.attachments;
            WriteProperties({OwnerKind::Attachment, m_database.LastInsertId()},
                            attachment.properties);
        }
    }

    void TakeBookEntry(const JsonPlace& place) override
    {
        const BookEntryData entry = ReadBookEntry(place);
        if (entry.entryId)
            m_database.Prepare("DELETE FROM book_entry WHERE entry_id = ?1")
                .Bind(1, std::span<const std::byte>(*entry.entryId))
                .Run();
        const Bytes entryId = entry.entryId ? *entry.entryId : NewBookEntryId();
        m_database
            .Prepare("INSERT INTO book_entry (entry_id, container, object_type, created, modified) "
                     "SELECT ?1, id, ?2, ?3, ?4 FROM book_container WHERE role = ?5")
            .Bind(1, std::span<const std::byte>(entryId))
            .Bind(2, entry.objectType)
            .Bind(3, entry.created.value_or(m_now))
            .Bind(4, entry.modified.value_or(m_now))
            .Bind(5, static_cast<std::int64_t>(BookRole::Personal))
            .Run();
        if (m_database.Changes() == 0)
            throw DatabaseError(DatabaseFailure::Corrupt,
                                "a container of the address book is gone");
        ++m_counts.bookEntries;
        WriteProperties({OwnerKind::BookEntry, m_database.LastInsertId()}, entry.properties);
    }

  private:
    std::uint16_t IdOf(const PropertyKey& key)
    {
        if (const auto* id = std::get_if<std::uint16_t>(&key))
            return *id;
        const auto& name = std::get<PropertyName>(key);
        const auto known = m_names.find(name);
        if (known != m_names.end())
            return known->second;
        return m_names.emplace(name, MakeNamedProperty(m_database, name)).first->second;
    }

    void WriteProperties(PropertyOwner owner, const Properties& properties)
    {
        for (const KeyedProperty& property : properties)
            WriteProperty(m_database, owner, IdOf(property.key), property.value);
        m_counts.properties += properties.size();
    }

    void WriteIdentity(const ObjectData& identity)
    {
        if (identity.entryId)
            m_database
                .Prepare("INSERT INTO identity (id, entry_id) VALUES (1, ?1) "
                         "ON CONFLICT (id) DO UPDATE SET entry_id = excluded.entry_id")
                .Bind(1, std::span<const std::byte>(*identity.entryId))
                .Run();
        else
            m_database.Prepare("INSERT OR IGNORE INTO identity (id, entry_id) VALUES (1, ?1)")
                .Bind(1, NewEntryId(MAPI_MAILUSER))
                .Run();
        WriteProperties({OwnerKind::Identity, 1}, identity.properties);
    }

    // The folder of the store that the file means: by entry ID, by role, by name; the root is the
    // root. Nothing where it is new.
    std::optional<std::int64_t> FindFolder(const FolderData& folder,
                                           std::optional<std::int64_t> parent)
    {
        if (folder.entryId)
        {
            if (const auto found = FolderOfEntryId(m_database, *folder.entryId))
            {
                if (ParentOf(*found) != parent)
                    throw JsonProblem(folder.line,
                                      folder.path,
                                      "the store has the folder of this entry ID in another place");
                return found;
            }
        }
        if (!parent)
            return RootFolder(m_database);
        if (m_made.contains(*parent))
            return std::nullopt;
        for (const FolderRole* role : folder.roles)
        {
            const auto found = FolderOfRole(m_database, *role);
            if (found && ParentOf(*found) == parent)
                return found;
        }
        return folder.name ? ChildOfName(*parent, *folder.name) : std::nullopt;
    }

    std::optional<std::int64_t> ParentOf(std::int64_t folder)
    {
        Statement row = m_database.Prepare("SELECT parent FROM folder WHERE id = ?1");
        row.Bind(1, folder);
        if (!row.Step() || row.IsNull(0))
            return std::nullopt;
        return row.Integer(0);
    }

    std::optional<std::int64_t> ChildOfName(std::int64_t parent, const std::wstring& name)
    {
        auto [children, isNew] = m_children.try_emplace(parent);
        if (isNew)
        {
            std::vector<std::int64_t> ids;
            Statement rows =
                m_database.Prepare("SELECT id FROM folder WHERE parent = ?1 ORDER BY id DESC");
            rows.Bind(1, parent);
            while (rows.Step())
                ids.push_back(rows.Integer(0));
            for (const std::int64_t id : ids)
            {
                const auto value = ReadProperty(
                    m_database, {OwnerKind::MessageFolder, id}, PROP_ID(PR_DISPLAY_NAME_W));
                if (value && std::holds_alternative<std::wstring>(value->data))
                    children->second[std::get<std::wstring>(value->data)].push_back(id);
            }
        }
        // A second folder of the file with that name is the next one, or another.
        std::vector<std::int64_t>& ids = children->second[name];
        while (!ids.empty() && m_used.contains(ids.back()))
            ids.pop_back();
        return ids.empty() ? std::nullopt : std::optional(ids.back());
    }

    void WriteFolder(const FolderData& folder)
    {
        const std::optional<std::int64_t> parent =
            folder.parent ? std::optional(m_folders.at(*folder.parent)) : std::nullopt;
        std::optional<std::int64_t> id = FindFolder(folder, parent);
        if (id && !m_used.insert(*id).second)
        {
            if (folder.entryId && FolderOfEntryId(m_database, *folder.entryId))
                throw JsonProblem(
                    folder.line,
                    folder.path,
                    "a folder before it was taken for the store's folder of this entry ID");
            id.reset();
        }
        if (!id)
        {
            id = NewFolder(folder, parent);
            m_used.insert(*id);
            m_made.insert(*id);
        }
        else
            UpdateTimes(*id, folder);
        m_folders.push_back(*id);
        ++m_counts.folders;
        WriteProperties({OwnerKind::MessageFolder, *id}, folder.properties);
        for (const std::string& messageClass : folder.receives)
            m_database
                .Prepare("INSERT OR REPLACE INTO receive_folder (message_class, folder) "
                         "VALUES (?1, ?2)")
                .Bind(1, std::string_view(messageClass))
                .Bind(2, *id)
                .Run();
    }

    std::int64_t NewFolder(const FolderData& folder, std::optional<std::int64_t> parent)
    {
        const Bytes entryId = folder.entryId ? *folder.entryId : NewEntryId(MAPI_FOLDER);
        Statement insert =
            m_database.Prepare("INSERT INTO folder (entry_id, parent, created, modified) "
                               "VALUES (?1, ?2, ?3, ?4)");
        insert.Bind(1, std::span<const std::byte>(entryId))
            .Bind(3, folder.created.value_or(m_now))
            .Bind(4, folder.modified.value_or(m_now));
        if (parent)
            insert.Bind(2, *parent);
        else
            insert.BindNull(2);
        insert.Run();
        return m_database.LastInsertId();
    }

    void UpdateTimes(std::int64_t id, const FolderData& folder)
    {
        if (folder.created)
            m_database.Prepare("UPDATE folder SET created = ?2 WHERE id = ?1")
                .Bind(1, id)
                .Bind(2, *folder.created)
                .Run();
        if (folder.modified)
            m_database.Prepare("UPDATE folder SET modified = ?2 WHERE id = ?1")
                .Bind(1, id)
                .Bind(2, *folder.modified)
                .Run();
    }

    Database& m_database;
    const std::int64_t m_now;
    LoadCounts m_counts;
    std::vector<std::int64_t> m_folders; // the store's folders for those of the file
    std::set<std::int64_t> m_used;       // one folder of the store stands for one of the file
    std::set<std::int64_t> m_made;
    std::map<std::int64_t, std::unordered_map<std::wstring, std::vector<std::int64_t>>>
        m_children; // the first one last
    std::map<PropertyName, std::uint16_t> m_names;
};

// Everything that a dump tells; the map of named properties stays, since IDs from it may be known
// to others.
void Empty(Database& database)
{
    for (const char* sql : {"DELETE FROM message",
                            "DELETE FROM receive_folder",
                            "DELETE FROM folder",
                            "DELETE FROM identity",
                            "DELETE FROM book_entry",
                            "DELETE FROM property WHERE owner_kind = 1"})
        database.Execute(sql);
}

} // namespace

LoadCounts LoadStore(Database& database, const JsonFile& file, LoadMode mode)
{
    Survey survey;
    ReadJson(file, survey);
    const FileData data = survey.Finish();

    Transaction transaction(database);
    if (mode == LoadMode::Replace)
        Empty(database);
    Writer writer(database);
    writer.Write(data);
    ReadJson(file, writer);
    const LoadCounts counts = writer.Counts();
    transaction.Commit();
    return counts;
}
