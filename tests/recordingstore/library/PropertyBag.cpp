#include "tests/recordingstore/library/PropertyBag.h"

#include "tests/recordingstore/library/Library.h"

#include <algorithm>
#include <set>

namespace
{
const auto IsFolder = [](const NodePtr& child) { return child->kind == NodeKind::MessageFolder; };

LONG CountMessages(const Node& folder, bool isAssociated)
{
    return static_cast<LONG>(
        std::count_if(folder.children.begin(), folder.children.end(), [&](const NodePtr& child) {
            return child->kind == NodeKind::Message && child->isAssociated == isAssociated;
        }));
}

using Compute = std::optional<Value> (*)(const Node& node);

template <typename T> Value Long(T number)
{
    return NumberValue(PT_LONG, static_cast<ULONG>(number));
}
Value Boolean(bool truth)
{
    return NumberValue(PT_BOOLEAN, truth);
}
std::optional<Value> Time(std::uint64_t time)
{
    return time ? std::optional(NumberValue(PT_SYSTIME, time)) : std::nullopt;
}
std::optional<Value> Id(const ByteString& id)
{
    return id.empty() ? std::nullopt : std::optional(BinaryValue(id));
}

LONG ObjectTypeOf(NodeKind kind)
{
    switch (kind)
    {
    case NodeKind::Store:
        return MAPI_STORE;
    case NodeKind::MessageFolder:
        return MAPI_FOLDER;
    case NodeKind::Message:
        return MAPI_MESSAGE;
    case NodeKind::Attachment:
        return MAPI_ATTACH;
    case NodeKind::BookContainer:
        return MAPI_ABCONT;
    default:
        return MAPI_MAILUSER;
    }
}

std::size_t DataSize(const Properties& attachment)
{
    const auto data = attachment.find(PROP_ID(PR_ATTACH_DATA_BIN));
    return data == attachment.end() ? 0 : data->second.bytes.size();
}

constexpr unsigned Bit(NodeKind kind)
{
    return 1u << static_cast<unsigned>(kind);
}
constexpr unsigned kStore = Bit(NodeKind::Store);
constexpr unsigned kFolder = Bit(NodeKind::MessageFolder);
constexpr unsigned kMessage = Bit(NodeKind::Message);
constexpr unsigned kAttachment = Bit(NodeKind::Attachment);
constexpr unsigned kIdentity = Bit(NodeKind::Identity);
constexpr unsigned kBook = Bit(NodeKind::BookContainer);
constexpr unsigned kBookEntry = Bit(NodeKind::BookEntry);
constexpr unsigned kEntries = kStore | kFolder | kMessage | kIdentity | kBook | kBookEntry;

// clang-format off
constexpr struct
{
    USHORT id;
    unsigned kinds;
    Compute compute;
} kComputed[] = {
    {PROP_ID(PR_ENTRYID), kEntries, [](const Node& node) { return Id(node.entryId); }},
    {PROP_ID(PR_RECORD_KEY), kEntries, [](const Node& node) { return Id(node.entryId); }},
    {PROP_ID(PR_OBJECT_TYPE), kEntries | kAttachment, [](const Node& node) { return std::optional(node.objectType ? Long(node.objectType) : Long(ObjectTypeOf(node.kind))); }},
    {PROP_ID(PR_STORE_ENTRYID), kStore | kFolder | kMessage, [](const Node& node) { return Id(TheLibrary().content.StoreOf(node).entryId); }},
    // The root is its own parent.
    {PROP_ID(PR_PARENT_ENTRYID), kFolder | kMessage, [](const Node& node) { return Id(node.parent->kind == NodeKind::MessageFolder ? node.parent->entryId : node.entryId); }},
    {PROP_ID(PR_CREATION_TIME), kFolder | kMessage | kBookEntry, [](const Node& node) { return Time(node.created); }},
    {PROP_ID(PR_LAST_MODIFICATION_TIME), kFolder | kMessage | kBookEntry, [](const Node& node) { return Time(node.modified); }},
    {PROP_ID(PR_DEFAULT_STORE), kStore, [](const Node& node) { return std::optional(Boolean(TheLibrary().content.defaultStore == node.name)); }},
    {PROP_ID(PR_CONTENT_COUNT), kFolder, [](const Node& node) { return std::optional(Long(CountMessages(node, false))); }},
    {PROP_ID(PR_ASSOC_CONTENT_COUNT), kFolder, [](const Node& node) { return std::optional(Long(CountMessages(node, true))); }},
    {PROP_ID(PR_SUBFOLDERS), kFolder, [](const Node& node) { return std::optional(Boolean(std::any_of(node.children.begin(), node.children.end(), IsFolder))); }},
    {PROP_ID(PR_FOLDER_TYPE), kFolder, [](const Node& node) { return std::optional(Long(node.parent->kind == NodeKind::Store ? FOLDER_ROOT : FOLDER_GENERIC)); }},
    {PROP_ID(PR_HASATTACH), kMessage, [](const Node& node) { return std::optional(Boolean(!node.children.empty())); }},
    {PROP_ID(PR_ATTACH_NUM), kAttachment, [](const Node& node) { return std::optional(Long(node.attachNumber)); }},
    {PROP_ID(PR_ATTACH_SIZE), kAttachment, [](const Node& node) { return std::optional(Long(DataSize(node.properties))); }},
};
// clang-format on

} // namespace

std::optional<Value> GetStored(const Node& node, USHORT id)
{
    if (node.hidden.contains(id))
        return std::nullopt;
    if (const auto found = node.properties.find(id); found != node.properties.end())
        return found->second;
    for (const auto& row : kComputed)
        if (row.id == id && (row.kinds & Bit(node.kind)))
            return row.compute(node);
    return std::nullopt;
}

std::vector<USHORT> StoredIds(const Node& node)
{
    std::set<USHORT> ids;
    for (const auto& [id, value] : node.properties)
        ids.insert(id);
    for (const auto& row : kComputed)
        if (GetStored(node, row.id))
            ids.insert(row.id);
    return {ids.begin(), ids.end()};
}

bool IsComputedProperty(NodeKind kind, USHORT id)
{
    return std::any_of(std::begin(kComputed), std::end(kComputed), [&](const auto& row) {
        return row.id == id && (row.kinds & Bit(kind));
    });
}

Properties ShownByAttachment(Properties properties, ULONG number)
{
    properties.emplace(PROP_ID(PR_ATTACH_NUM), Long(number));
    properties.emplace(PROP_ID(PR_ATTACH_SIZE), Long(DataSize(properties)));
    properties.emplace(PROP_ID(PR_OBJECT_TYPE), Long(MAPI_ATTACH));
    return properties;
}

void DirectBag::Put(USHORT id, Value value)
{
    m_node->properties[id] = std::move(value);
    m_node->modified = TheLibrary().content.NextTime();
}

void DirectBag::Remove(USHORT id)
{
    m_node->properties.erase(id);
    m_node->modified = TheLibrary().content.NextTime();
}

bool Changes::Tell(USHORT id, std::optional<Value>& value) const
{
    const auto found = m_changes.find(id);
    if (found == m_changes.end())
        return false;
    value = found->second;
    return true;
}

void Changes::ApplyTo(Properties& properties) const
{
    for (const auto& [id, value] : m_changes)
        if (value)
            properties[id] = *value;
        else
            properties.erase(id);
}

std::vector<USHORT> Changes::Ids(const std::vector<USHORT>& below) const
{
    std::set<USHORT> ids(below.begin(), below.end());
    for (const auto& [id, value] : m_changes)
        if (value)
            ids.insert(id);
        else
            ids.erase(id);
    return {ids.begin(), ids.end()};
}

MessageBag::MessageBag(Node& folder, std::string name, bool isAssociated)
    : m_node(std::make_shared<Node>()), m_isWritable(true), m_isNew(true), m_version(0),
      m_nextAttachNumber(0)
{
    m_node->kind = NodeKind::Message;
    m_node->name = std::move(name);
    m_node->parent = &folder;
    m_node->isAssociated = isAssociated;
}

MessageBag::MessageBag(Node& container, std::string name, ULONG objectType)
    : MessageBag(container, std::move(name), false)
{
    m_node->kind = NodeKind::BookEntry;
    m_node->objectType = objectType;
}

MessageBag::MessageBag(NodePtr message, bool isWritable)
    : m_node(std::move(message)), m_isWritable(isWritable), m_isNew(false),
      m_version(m_node->version), m_nextAttachNumber(m_node->nextAttachNumber)
{
}

std::optional<Value> MessageBag::Get(USHORT id) const
{
    if (id == PROP_ID(PR_HASATTACH) && m_node->kind == NodeKind::Message)
        return NumberValue(PT_BOOLEAN, !Attachments().empty());
    std::optional<Value> value;
    return m_changes.Tell(id, value) ? value : GetStored(*m_node, id);
}

std::vector<USHORT> MessageBag::Ids() const
{
    return m_changes.Ids(StoredIds(*m_node));
}

HRESULT MessageBag::Save(ULONG flags)
{
    if (!m_isWritable)
        return MAPI_E_NO_ACCESS;
    if (m_node->isGone)
        return MAPI_E_OBJECT_DELETED;
    if (m_version != m_node->version && !(flags & FORCE_SAVE))
        return MAPI_E_OBJECT_CHANGED;
    Content& content = TheLibrary().content;
    if (m_isNew)
    {
        content.Adopt(m_node);
        m_isNew = false;
    }
    m_node->modified = content.NextTime();
    if (!m_node->created)
        m_node->created = m_node->modified;
    m_changes.ApplyTo(m_node->properties);
    m_changes.Clear();
    for (auto& [number, properties] : m_attachments)
    {
        NodePtr attachment = content.Find(AttachmentName(number));
        if (!properties)
        {
            if (attachment)
                content.Remove(*attachment);
            continue;
        }
        if (!attachment)
        {
            attachment = content.Add(NodeKind::Attachment, AttachmentName(number), *m_node);
            attachment->attachNumber = number;
        }
        attachment->properties = *std::move(properties);
        attachment->modified = m_node->modified;
    }
    m_attachments.clear();
    m_node->nextAttachNumber = std::max(m_node->nextAttachNumber, m_nextAttachNumber);
    m_version = ++m_node->version;
    return S_OK;
}

std::map<ULONG, Properties> MessageBag::Attachments() const
{
    std::map<ULONG, Properties> all;
    for (const NodePtr& child : m_node->children)
        all[child->attachNumber] = child->properties;
    for (const auto& [number, properties] : m_attachments)
        if (properties)
            all[number] = *properties;
        else
            all.erase(number);
    return all;
}

ULONG MessageBag::NewAttachNumber()
{
    m_nextAttachNumber = std::max(m_nextAttachNumber, m_node->nextAttachNumber);
    return m_nextAttachNumber++;
}

void MessageBag::PutAttachment(ULONG number, Properties properties)
{
    m_attachments[number] = std::move(properties);
}

void MessageBag::RemoveAttachment(ULONG number)
{
    m_attachments[number] = std::nullopt;
}

std::string MessageBag::AttachmentName(ULONG number) const
{
    return m_node->name + "#" + std::to_string(number);
}

Properties AttachmentBag::Below() const
{
    const std::map<ULONG, Properties> all = m_message->Attachments();
    const auto found = all.find(m_number);
    return found == all.end() ? Properties() : found->second;
}

std::optional<Value> AttachmentBag::Get(USHORT id) const
{
    Properties properties = Below();
    m_changes.ApplyTo(properties);
    const Properties shown = ShownByAttachment(std::move(properties), m_number);
    const auto found = shown.find(id);
    return found == shown.end() ? std::nullopt : std::optional(found->second);
}

std::vector<USHORT> AttachmentBag::Ids() const
{
    std::vector<USHORT> below;
    for (const auto& [id, value] : ShownByAttachment(Below(), m_number))
        below.push_back(id);
    return m_changes.Ids(below);
}

HRESULT AttachmentBag::Save(ULONG)
{
    if (!m_isWritable)
        return MAPI_E_NO_ACCESS;
    Properties properties = Below();
    m_changes.ApplyTo(properties);
    m_changes.Clear();
    m_message->PutAttachment(m_number, std::move(properties));
    return S_OK;
}
