// The properties behind an open object: what reading sees, and where writing goes.
#pragma once

#include "tests/recordingstore/library/Content.h"

#include <memory>
#include <optional>
#include <vector>

class PropertyBag
{
  public:
    virtual ~PropertyBag() = default;

    virtual std::optional<Value> Get(USHORT id) const = 0;
    virtual std::vector<USHORT> Ids() const = 0;
    // The store's own, which callers cannot set or delete.
    virtual bool IsComputed(USHORT id) const = 0;
    virtual bool IsWritable() const = 0;
    virtual void Put(USHORT id, Value value) = 0;
    virtual void Remove(USHORT id) = 0;
    // SaveChanges.
    virtual HRESULT Save(ULONG flags) = 0;
};

// What a saved object shows, computed properties included.
std::optional<Value> GetStored(const Node& node, USHORT id);
std::vector<USHORT> StoredIds(const Node& node);
bool IsComputedProperty(NodeKind kind, USHORT id);

// Stores, folders and the user: what is set is there at once.
class DirectBag final : public PropertyBag
{
  public:
    DirectBag(NodePtr node, bool isWritable) : m_node(std::move(node)), m_isWritable(isWritable) {}

    std::optional<Value> Get(USHORT id) const override { return GetStored(*m_node, id); }
    std::vector<USHORT> Ids() const override { return StoredIds(*m_node); }
    bool IsComputed(USHORT id) const override { return IsComputedProperty(m_node->kind, id); }
    bool IsWritable() const override { return m_isWritable; }
    void Put(USHORT id, Value value) override;
    void Remove(USHORT id) override;
    HRESULT Save(ULONG) override { return S_OK; }

    const NodePtr& Stored() const { return m_node; }

  private:
    NodePtr m_node;
    bool m_isWritable;
};

// Changes that wait for SaveChanges, over what is there.
class Changes
{
  public:
    // Whether the changes tell of that property; then *value is it, or nothing where it is deleted.
    bool Tell(USHORT id, std::optional<Value>& value) const;
    void Put(USHORT id, Value value) { m_changes[id] = std::move(value); }
    void Remove(USHORT id) { m_changes[id] = std::nullopt; }
    void ApplyTo(Properties& properties) const;
    std::vector<USHORT> Ids(const std::vector<USHORT>& below) const;
    void Clear() { m_changes.clear(); }

  private:
    std::map<USHORT, std::optional<Value>> m_changes;
};

// One open message, or an entry of the address book, which is one without attachments.
class MessageBag final : public PropertyBag
{
  public:
    // A new message of that folder, under that name; nothing is stored before it is saved.
    MessageBag(Node& folder, std::string name, bool isAssociated);
    // A new entry of that type in the address book, likewise.
    MessageBag(Node& container, std::string name, ULONG objectType);
    // One that is stored.
    MessageBag(NodePtr message, bool isWritable);

    std::optional<Value> Get(USHORT id) const override;
    std::vector<USHORT> Ids() const override;
    bool IsComputed(USHORT id) const override { return IsComputedProperty(m_node->kind, id); }
    bool IsWritable() const override { return m_isWritable; }
    void Put(USHORT id, Value value) override { m_changes.Put(id, std::move(value)); }
    void Remove(USHORT id) override { m_changes.Remove(id); }
    HRESULT Save(ULONG flags) override;

    const NodePtr& Stored() const { return m_node; }

    // Attachments as this open message sees them, by number.
    std::map<ULONG, Properties> Attachments() const;
    ULONG NewAttachNumber();
    void PutAttachment(ULONG number, Properties properties);
    void RemoveAttachment(ULONG number);
    std::string AttachmentName(ULONG number) const;

  private:
    NodePtr m_node; // of a new message: not in the contents yet
    bool m_isWritable;
    bool m_isNew;
    unsigned m_version;
    ULONG m_nextAttachNumber;
    Changes m_changes;
    std::map<ULONG, std::optional<Properties>> m_attachments;
};

// One open attachment of an open message.
class AttachmentBag final : public PropertyBag
{
  public:
    AttachmentBag(std::shared_ptr<MessageBag> message, ULONG number, bool isWritable)
        : m_message(std::move(message)), m_number(number), m_isWritable(isWritable)
    {
    }

    std::optional<Value> Get(USHORT id) const override;
    std::vector<USHORT> Ids() const override;
    bool IsComputed(USHORT id) const override
    {
        return IsComputedProperty(NodeKind::Attachment, id);
    }
    bool IsWritable() const override { return m_isWritable; }
    void Put(USHORT id, Value value) override { m_changes.Put(id, std::move(value)); }
    void Remove(USHORT id) override { m_changes.Remove(id); }
    HRESULT Save(ULONG flags) override;

  private:
    Properties Below() const;

    std::shared_ptr<MessageBag> m_message;
    ULONG m_number;
    bool m_isWritable;
    Changes m_changes;
};

// An attachment's properties with what the store adds: number, size of the data, object type.
Properties ShownByAttachment(Properties properties, ULONG number);
