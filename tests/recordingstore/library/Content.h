// What the store holds, as saved: stores, folders, messages, attachments, the user, names.
#pragma once

#include "tests/recordingstore/library/Value.h"

#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

inline constexpr std::size_t kEntryIdBytes = 24;
inline constexpr USHORT kFirstNamedId = 0x8000;

enum class NodeKind
{
    Store,
    MessageFolder,
    Message,
    Attachment,
    Identity,
    BookContainer,
    BookEntry
};

struct Node
{
    NodeKind kind = NodeKind::MessageFolder;
    std::string name;
    ByteString entryId;
    ByteString rowEntryId;  // empty: as entryId
    Node* parent = nullptr; // null for stores and the user; a store's root folder has the store
    Properties properties;
    std::set<USHORT> hidden; // computed ones that a test took away
    std::uint64_t created = 0;
    std::uint64_t modified = 0;
    unsigned version = 0;       // counts saves
    ULONG attachNumber = 0;     // of an attachment
    ULONG nextAttachNumber = 0; // of a message
    bool isAssociated = false;  // of a message
    ULONG objectType = 0;       // of an entry of the book
    bool isGone = false;
    std::vector<std::shared_ptr<Node>> children;
};

using NodePtr = std::shared_ptr<Node>;

// A named property: set, and number or text.
struct PropertyName
{
    GUID set = {};
    bool isText = false;
    LONG number = 0;
    std::wstring text;
};

class Content
{
  public:
    Content() { Clear(); }

    // One store, marked as the default, with its root.
    void Clear();

    // Null where the name is taken.
    NodePtr AddStore(const std::string& name);
    NodePtr AddIdentity();
    // The personal container of the address book; null where there is one.
    NodePtr AddBook();
    NodePtr Add(NodeKind kind, const std::string& name, Node& parent);
    // Takes a message that a caller made and saves for the first time.
    void Adopt(const NodePtr& message);
    // The name of a message that a caller makes, the next free one of "new 1", "new 2", ...
    std::string NextName();
    void Remove(Node& node);
    // Takes those of a parent's children away that the list names. MAPI_W_PARTIAL_COMPLETION where
    // it names others too.
    HRESULT RemoveListed(const SBinaryArray* entries, NodeKind kind, const Node& parent);

    NodePtr Find(const std::string& name) const;
    // By entry ID, row entry IDs included; with the second where it is the row's.
    std::pair<NodePtr, bool> FindEntry(const void* entryId, std::size_t size) const;
    const std::vector<NodePtr>& Stores() const { return m_stores; }
    NodePtr Identity() const { return m_identity; }
    NodePtr Book() const { return m_book; }
    // The root folder of the store that the node lies in.
    NodePtr RootOf(const Node& node) const;
    const Node& StoreOf(const Node& node) const;

    std::string defaultStore;
    // Upper-case class to folder name.
    std::map<std::wstring, std::pair<std::wstring, std::string>> receiveFolders;

    std::uint64_t clock = 0;
    std::uint64_t clockStep = 0;
    std::uint64_t NextTime();

    // Whether the tree of folders has no end; see StoreFault::EndlessFolders.
    bool hasEndlessFolders = false;
    // That many bytes more have entry IDs in such a tree.
    static constexpr std::size_t kFreshBytes = 8;
    ByteString Freshened(ByteString entryId);

    void SetEntryId(const NodePtr& node, const ByteString& entryId);
    void SetRowEntryId(const NodePtr& node, const ByteString& entryId);

    // 0 where it is not known and not to be created.
    USHORT IdOf(const PropertyName& name, bool create);
    const std::vector<PropertyName>& Names() const { return m_names; }

  private:
    ByteString NewEntryId();
    void ForgetEntryIds(const Node& node);

    std::vector<NodePtr> m_stores;
    NodePtr m_identity;
    NodePtr m_book;
    std::map<std::string, NodePtr> m_byName;
    std::map<ByteString, std::pair<NodePtr, bool>> m_byEntryId;
    std::vector<PropertyName> m_names;
    // What was removed; open objects may still point there.
    std::vector<NodePtr> m_retired;
    ULONG m_lastEntry = 0;
    unsigned m_lastNew = 0;
    std::uint64_t m_lastFresh = 0;
};
