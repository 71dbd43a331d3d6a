#include "tests/recordingstore/library/Content.h"

#include <algorithm>
#include <cstring>

namespace
{
// 2024-01-01 00:00 UTC: 738,885 - 584,388 = 154,497 days after 1601-01-01, 100 ns each.
constexpr std::uint64_t kFirstTime = 154'497ull * 86'400 * 10'000'000;
constexpr std::uint64_t kSecond = 10'000'000;

// Flags (0), a provider's ID, a number.
constexpr BYTE kProviderId[16] = {
    'R', 'e', 'c', 'o', 'r', 'd', 'i', 'n', 'g', ' ', 's', 't', 'o', 'r', 'e', 0};

bool IsSameName(const PropertyName& left, const PropertyName& right)
{
    return IsEqualGUID(left.set, right.set) && left.isText == right.isText &&
           (left.isText ? left.text == right.text : left.number == right.number);
}
} // namespace

void Content::Clear()
{
    m_retired.insert(m_retired.end(), m_stores.begin(), m_stores.end());
    m_stores.clear();
    m_identity.reset();
    if (m_book)
        m_retired.push_back(m_book);
    m_book.reset();
    m_byName.clear();
    m_byEntryId.clear();
    m_names.clear();
    receiveFolders.clear();
    m_lastEntry = 0;
    m_lastNew = 0;
    m_lastFresh = 0;
    hasEndlessFolders = false;
    clock = kFirstTime;
    clockStep = kSecond;
    defaultStore = "store";
    AddStore("store");
}

ByteString Content::NewEntryId()
{
    ByteString id(kEntryIdBytes);
    std::copy(std::begin(kProviderId), std::end(kProviderId), id.begin() + 4);
    ++m_lastEntry;
    for (std::size_t i = 0; i < 4; ++i)
        id[4 + sizeof kProviderId + i] = static_cast<BYTE>(m_lastEntry >> (8 * i));
    return id;
}

NodePtr Content::AddStore(const std::string& name)
{
    if (m_byName.contains(name))
        return nullptr;
    const NodePtr store = std::make_shared<Node>();
    store->kind = NodeKind::Store;
    store->name = name;
    SetEntryId(store, NewEntryId());
    store->created = store->modified = clock;
    m_byName.emplace(name, store);
    m_stores.push_back(store);
    Add(NodeKind::MessageFolder, name == "store" ? "root" : name + " root", *store);
    return store;
}

NodePtr Content::AddIdentity()
{
    if (m_identity)
        return nullptr;
    m_identity = std::make_shared<Node>();
    m_identity->kind = NodeKind::Identity;
    m_identity->name = "identity";
    SetEntryId(m_identity, NewEntryId());
    m_byName.emplace(m_identity->name, m_identity);
    return m_identity;
}

NodePtr Content::AddBook()
{
    if (m_book || m_byName.contains("book"))
        return nullptr;
    m_book = std::make_shared<Node>();
    m_book->kind = NodeKind::BookContainer;
    m_book->name = "book";
    SetEntryId(m_book, NewEntryId());
    m_byName.emplace(m_book->name, m_book);
    return m_book;
}

NodePtr Content::Add(NodeKind kind, const std::string& name, Node& parent)
{
    if (m_byName.contains(name))
        return nullptr;
    const NodePtr node = std::make_shared<Node>();
    node->kind = kind;
    node->name = name;
    node->parent = &parent;
    if (kind != NodeKind::Attachment)
        SetEntryId(node, NewEntryId());
    node->created = node->modified = clock;
    parent.children.push_back(node);
    m_byName.emplace(name, node);
    return node;
}

void Content::Adopt(const NodePtr& message)
{
    message->parent->children.push_back(message);
    m_byName.emplace(message->name, message);
    SetEntryId(message, NewEntryId());
}

std::string Content::NextName()
{
    std::string name;
    do
        name = "new " + std::to_string(++m_lastNew);
    while (m_byName.contains(name));
    return name;
}

void Content::Remove(Node& node)
{
    while (!node.children.empty())
        Remove(*node.children.back());
    node.isGone = true;
    ForgetEntryIds(node);
    m_byName.erase(node.name);
    if (!node.parent)
        return;
    auto& siblings = node.parent->children;
    const auto found = std::find_if(
        siblings.begin(), siblings.end(), [&](const NodePtr& one) { return one.get() == &node; });
    if (found == siblings.end())
        return;
    m_retired.push_back(*found);
    siblings.erase(found);
}

HRESULT Content::RemoveListed(const SBinaryArray* entries, NodeKind kind, const Node& parent)
{
    if (!entries || (entries->cValues && !entries->lpbin))
        return MAPI_E_INVALID_PARAMETER;
    HRESULT result = S_OK;
    for (ULONG i = 0; i < entries->cValues; ++i)
    {
        const SBinary& entry = entries->lpbin[i];
        const NodePtr node = FindEntry(entry.lpb, entry.cb).first;
        if (node && node->kind == kind && node->parent == &parent)
            Remove(*node);
        else
            result = MAPI_W_PARTIAL_COMPLETION;
    }
    return result;
}

NodePtr Content::Find(const std::string& name) const
{
    const auto found = m_byName.find(name);
    return found == m_byName.end() ? nullptr : found->second;
}

ByteString Content::Freshened(ByteString entryId)
{
    ++m_lastFresh;
    const auto* const bytes = reinterpret_cast<const BYTE*>(&m_lastFresh);
    entryId.insert(entryId.end(), bytes, bytes + kFreshBytes);
    return entryId;
}

std::pair<NodePtr, bool> Content::FindEntry(const void* entryId, std::size_t size) const
{
    if (!entryId || size == 0)
        return {};
    const auto* const bytes = static_cast<const BYTE*>(entryId);
    if (hasEndlessFolders && size == kEntryIdBytes + kFreshBytes)
        size = kEntryIdBytes;
    const auto found = m_byEntryId.find(ByteString(bytes, bytes + size));
    return found == m_byEntryId.end() ? std::pair<NodePtr, bool>() : found->second;
}

void Content::ForgetEntryIds(const Node& node)
{
    m_byEntryId.erase(node.entryId);
    m_byEntryId.erase(node.rowEntryId);
}

void Content::SetEntryId(const NodePtr& node, const ByteString& entryId)
{
    m_byEntryId.erase(node->entryId);
    node->entryId = entryId;
    m_byEntryId[entryId] = {node, false};
}

void Content::SetRowEntryId(const NodePtr& node, const ByteString& entryId)
{
    m_byEntryId.erase(node->rowEntryId);
    node->rowEntryId = entryId;
    m_byEntryId[entryId] = {node, true};
}

const Node& Content::StoreOf(const Node& node) const
{
    const Node* store = &node;
    while (store->parent)
        store = store->parent;
    return *store;
}

NodePtr Content::RootOf(const Node& node) const
{
    const Node& store = StoreOf(node);
    return store.children.empty() ? nullptr : store.children.front();
}

std::uint64_t Content::NextTime()
{
    const std::uint64_t time = clock;
    clock += clockStep;
    return time;
}

USHORT Content::IdOf(const PropertyName& name, bool create)
{
    const auto found = std::find_if(m_names.begin(), m_names.end(), [&](const PropertyName& one) {
        return IsSameName(one, name);
    });
    if (found == m_names.end())
    {
        if (!create)
            return 0;
        m_names.push_back(name);
        return static_cast<USHORT>(kFirstNamedId + m_names.size() - 1);
    }
    return static_cast<USHORT>(kFirstNamedId + (found - m_names.begin()));
}
