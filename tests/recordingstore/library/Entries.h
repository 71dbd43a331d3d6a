// What opens objects by entry ID, and the objects that are opened so.
#pragma once

#include "tests/recordingstore/library/PropObject.h"
#include "tests/recordingstore/library/TableObject.h"

#include <mapiguid.h>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-parameter"
class FolderWithoutOperations
    : public RecordedObject<IMAPIFolder, &IID_IMAPIFolder, &IID_IMAPIContainer, &IID_IMAPIProp>
{
  public:
    using RecordedObject::RecordedObject;
    MAPI_IMAPIPROP_METHODS(override { return NotOffered(__func__); })
    MAPI_IMAPICONTAINER_METHODS(override { return NotOffered(__func__); })
    MAPI_IMAPIFOLDER_METHODS(override { return NotOffered(__func__); })
};
class MessageWithoutOperations : public RecordedObject<IMessage, &IID_IMessage, &IID_IMAPIProp>
{
  public:
    using RecordedObject::RecordedObject;
    MAPI_IMAPIPROP_METHODS(override { return NotOffered(__func__); })
    MAPI_IMESSAGE_METHODS(override { return NotOffered(__func__); })
};
class AttachmentWithoutOperations : public RecordedObject<IAttach, &IID_IAttachment, &IID_IMAPIProp>
{
  public:
    using RecordedObject::RecordedObject;
    MAPI_IMAPIPROP_METHODS(override { return NotOffered(__func__); })
};
class UserWithoutOperations : public RecordedObject<IMailUser, &IID_IMailUser, &IID_IMAPIProp>
{
  public:
    using RecordedObject::RecordedObject;
    MAPI_IMAPIPROP_METHODS(override { return NotOffered(__func__); })
};
class StoreWithoutOperations : public RecordedObject<IMsgStore, &IID_IMsgStore, &IID_IMAPIProp>
{
  public:
    using RecordedObject::RecordedObject;
    MAPI_IMAPIPROP_METHODS(override { return NotOffered(__func__); })
    MAPI_IMSGSTORE_METHODS(override { return NotOffered(__func__); })
};
class SessionWithoutOperations : public RecordedObject<IMAPISession, &IID_IMAPISession>
{
  public:
    using RecordedObject::RecordedObject;
    MAPI_IMAPISESSION_METHODS(override { return NotOffered(__func__); })
};
#pragma GCC diagnostic pop

// Whether an ID has bytes but no pointer to them. No caller may give one: that is a violation.
bool IsNullEntry(ULONG size, const void* entryId);

// The text of a call of OpenEntry.
std::string OpenEntryText(
    ULONG size, const void* entryId, LPCIID interfaceId, ULONG flags, const ULONG* type);

// Opens an entry for a caller. root: what an ID of 0 bytes stands for; null: nothing.
HRESULT OpenNode(const NodePtr& root,
                 ULONG size,
                 const void* entryId,
                 LPCIID interfaceId,
                 ULONG flags,
                 StoreFault fault,
                 ULONG* type,
                 IUnknown** object);

// The saved properties of a node as a row of a table.
Properties RowOf(const Node& node);

// Copies an entry ID into a new buffer.
void DeliverEntryId(const ByteString& entryId, const std::string& name, ULONG* size, ENTRYID** out);

class UserObject final : public PropObject<UserWithoutOperations>
{
  public:
    explicit UserObject(NodePtr node)
        : PropObject("IMailUser", node->name, std::make_shared<DirectBag>(node, false))
    {
    }
};
