// The further export: what a test does to the store and reads from it.
#include "tests/recordingstore/RecordingStoreControl.h"

#include "tests/recordingstore/library/CallText.h"
#include "tests/recordingstore/library/Interruptions.h"
#include "tests/recordingstore/library/PropertyBag.h"
#include "tests/recordingstore/library/RecordedObject.h"

#include <algorithm>
#include <cstring>
#include <cwctype>

namespace
{
Content& Contents()
{
    return TheLibrary().content;
}
Recorder& TheRecorder()
{
    return TheLibrary().recorder;
}
NodePtr Find(const char* name)
{
    return Contents().Find(name);
}
ByteString Copy(ULONG size, const BYTE* bytes)
{
    return ByteString(bytes, bytes + size);
}

class Control final : public IRecordingStore
{
  public:
    void Reset() noexcept override
    {
        EmptyGraveyard();
        TheRecorder().Clear();
        TheLibrary().memory.Clear();
        Contents().Clear();
    }
    bool AddStore(const char* name) noexcept override
    {
        return Contents().AddStore(name) != nullptr;
    }
    bool SetDefaultStore(const char* name) noexcept override
    {
        const NodePtr store = Find(name);
        if (*name && (!store || store->kind != NodeKind::Store))
            return false;
        Contents().defaultStore = name;
        return true;
    }
    bool AddIdentity() noexcept override { return Contents().AddIdentity() != nullptr; }
    bool AddBook() noexcept override { return Contents().AddBook() != nullptr; }
    bool AddBookEntry(const char* name, ULONG objectType) noexcept override
    {
        const NodePtr book = Contents().Book();
        const NodePtr entry = book ? Contents().Add(NodeKind::BookEntry, name, *book) : nullptr;
        if (entry)
            entry->objectType = objectType;
        return entry != nullptr;
    }
    bool AddFolder(const char* name, const char* parent) noexcept override
    {
        const NodePtr above = Find(parent);
        return above && above->kind == NodeKind::MessageFolder &&
               Contents().Add(NodeKind::MessageFolder, name, *above);
    }
    bool AddMessage(const char* name, const char* folder, bool isAssociated) noexcept override
    {
        const NodePtr above = Find(folder);
        if (!above || above->kind != NodeKind::MessageFolder)
            return false;
        const NodePtr message = Contents().Add(NodeKind::Message, name, *above);
        if (message)
            message->isAssociated = isAssociated;
        return message != nullptr;
    }
    bool AddAttachment(const char* message, ULONG* number) noexcept override
    {
        const NodePtr above = Find(message);
        if (!above || above->kind != NodeKind::Message)
            return false;
        *number = above->nextAttachNumber++;
        const NodePtr attachment = Contents().Add(
            NodeKind::Attachment, above->name + "#" + std::to_string(*number), *above);
        if (attachment)
            attachment->attachNumber = *number;
        return attachment != nullptr;
    }
    bool SetProps(const char* object, ULONG count, const SPropValue* values) noexcept override
    {
        const NodePtr node = Find(object);
        if (!node)
            return false;
        for (ULONG i = 0; i < count; ++i)
        {
            const USHORT id = static_cast<USHORT>(PROP_ID(values[i].ulPropTag));
            const std::optional<Value> value = ReadValue(values[i]);
            if (!value)
                return false;
            node->hidden.erase(id);
            // The times go on with each save.
            if (id == PROP_ID(PR_LAST_MODIFICATION_TIME) && value->type == PT_SYSTIME)
                node->modified = value->bits;
            else if (id == PROP_ID(PR_CREATION_TIME) && value->type == PT_SYSTIME)
                node->created = value->bits;
            else
                node->properties[id] = *value;
        }
        return true;
    }
    bool RemoveProp(const char* object, ULONG tag) noexcept override
    {
        const NodePtr node = Find(object);
        if (!node)
            return false;
        const USHORT id = static_cast<USHORT>(PROP_ID(tag));
        node->properties.erase(id);
        if (IsComputedProperty(node->kind, id))
            node->hidden.insert(id);
        return true;
    }
    bool Remove(const char* object) noexcept override
    {
        const NodePtr node = Find(object);
        if (!node || !node->parent || node->parent->kind == NodeKind::Store)
            return false;
        Contents().Remove(*node);
        return true;
    }
    bool SetReceiveFolder(const wchar_t* messageClass, const char* folder) noexcept override
    {
        const NodePtr node = Find(folder);
        if (!node || node->kind != NodeKind::MessageFolder)
            return false;
        std::wstring key = messageClass;
        std::transform(key.begin(), key.end(), key.begin(), [](wchar_t unit) {
            return static_cast<wchar_t>(std::towupper(unit));
        });
        Contents().receiveFolders[key] = {messageClass, folder};
        return true;
    }
    ULONG NameProperty(const MAPINAMEID* name) noexcept override
    {
        PropertyName wanted;
        wanted.set = *name->lpguid;
        wanted.isText = name->ulKind == MNID_STRING;
        if (wanted.isText)
            wanted.text = name->Kind.lpwstrName;
        else
            wanted.number = name->Kind.lID;
        return Contents().IdOf(wanted, true);
    }
    bool SetEntryId(const char* object, ULONG size, const BYTE* bytes) noexcept override
    {
        const NodePtr node = Find(object);
        if (!node || size == 0 || size > kLongestStoreEntryId ||
            Contents().FindEntry(bytes, size).first)
            return false;
        Contents().SetEntryId(node, Copy(size, bytes));
        return true;
    }
    bool SetRowEntryId(const char* message, ULONG size, const BYTE* bytes) noexcept override
    {
        const NodePtr node = Find(message);
        if (!node || size == 0 || size > kLongestStoreEntryId ||
            Contents().FindEntry(bytes, size).first)
            return false;
        Contents().SetRowEntryId(node, Copy(size, bytes));
        return true;
    }
    bool EntryIdOf(const char* object, ULONG* size, BYTE* bytes) noexcept override
    {
        const NodePtr node = Find(object);
        if (!node || node->entryId.empty())
            return false;
        *size = static_cast<ULONG>(node->entryId.size());
        std::memcpy(bytes, node->entryId.data(), node->entryId.size());
        return true;
    }
    void SetClock(std::uint64_t fileTime, std::uint64_t step) noexcept override
    {
        Contents().clock = fileTime;
        Contents().clockStep = step;
    }
    bool SetTimes(const char* object,
                  std::uint64_t created,
                  std::uint64_t modified) noexcept override
    {
        const NodePtr node = Find(object);
        if (!node)
            return false;
        node->created = created;
        node->modified = modified;
        return true;
    }

    bool PropsOf(const char* object, StoreTextSink sink, void* context) noexcept override
    {
        const NodePtr node = Find(object);
        if (!node)
            return false;
        for (const auto& [id, value] : node->properties)
            sink(context, StoredText(id, value).c_str());
        return true;
    }
    bool ChildrenOf(const char* object, StoreTextSink sink, void* context) noexcept override
    {
        const NodePtr node = Find(object);
        if (!node)
            return false;
        for (const bool folders : {true, false})
            for (const NodePtr& child : node->children)
                if ((child->kind == NodeKind::MessageFolder) == folders)
                    sink(context, child->name.c_str());
        return true;
    }
    bool Exists(const char* object) noexcept override { return Find(object) != nullptr; }

    void Record(StoreCallSink sink, void* context) noexcept override
    {
        for (const RecordedStoreCall& call : TheRecorder().Calls())
            sink(context, call.text.c_str(), call.kind, call.number, call.result);
    }
    void ClearRecord() noexcept override { TheRecorder().ClearRecord(); }
    void Fail(unsigned number, StoreFault fault) noexcept override
    {
        TheRecorder().Fail(number, fault);
    }
    void FailNext(const char* line, StoreFault fault) noexcept override
    {
        TheRecorder().FailNext(line, fault);
    }
    void Interrupt(const char* line, StoreInterruptionSink sink, void* context) noexcept override
    {
        AddInterruption(line, sink, context);
    }
    void Uninterrupt(void* context) noexcept override { RemoveInterruption(context); }
    StoreBooks Books() noexcept override
    {
        return {static_cast<unsigned>(TheRecorder().Live().size()),
                static_cast<unsigned>(TheLibrary().memory.LiveCount()),
                TheRecorder().InitialisedTimes(),
                TheRecorder().refusedFrees,
                TheRecorder().FailableCalls(),
                TheRecorder().spoiledOutputs};
    }
    void Violations(StoreTextSink sink, void* context) noexcept override
    {
        for (const std::string& text : TheRecorder().Violations())
            sink(context, text.c_str());
    }
    void Leaks(StoreTextSink sink, void* context) noexcept override
    {
        for (const auto& [object, label] : TheRecorder().Live())
            sink(context, label.Text().c_str());
        for (const std::string& name : TheLibrary().memory.LiveNames())
            sink(context, name.c_str());
    }
};

Control g_control;
} // namespace

extern "C" IRecordingStore* WINAPI GetTheRecordingStore()
{
    return &g_control;
}
