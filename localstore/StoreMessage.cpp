#include "localstore/StoreMessage.h"

#include "localstore/StoreProfile.h"
#include "localstore/StoreTable.h"

HRESULT StoreMessage::Open(const std::shared_ptr<StoreSession>& session,
                           std::span<const std::byte> entryId,
                           const IID* iid,
                           bool writable,
                           IUnknown** object)
{
    Statement found = session->Store().Prepare(
        "SELECT m.id, m.folder, m.associated, m.created, m.modified, f.entry_id FROM message m "
        "JOIN folder f ON f.id = m.folder WHERE m.entry_id = ?1");
    found.Bind(1, entryId);
    if (!found.Step())
        return MAPI_E_NOT_FOUND;
    if (iid && !Answers(*iid))
        return MAPI_E_INTERFACE_NOT_SUPPORTED;
    MessageRow row;
    row.id = found.Integer(0);
    row.entryId.assign(entryId.begin(), entryId.end());
    row.folder = found.Integer(1);
    row.associated = found.Integer(2) != 0;
    row.created = found.Integer(3);
    row.modified = found.Integer(4);
    const auto folder = found.Blob(5);
    auto state = std::make_shared<MessageState>(
        session, std::move(row), Bytes(folder.begin(), folder.end()), writable);
    *object = MakeObject<StoreMessage>(std::move(state)).Detach();
    return S_OK;
}

STDMETHODIMP StoreMessage::GetAttachmentTable(ULONG flags, LPMAPITABLE* table)
{
    if (!table)
        return MAPI_E_INVALID_PARAMETER;
    *table = nullptr;
    if (flags & ~(MAPI_UNICODE | MAPI_DEFERRED_ERRORS))
        return MAPI_E_UNKNOWN_FLAGS;
    return Session().Run([&] {
        *table =
            MakeObject<StoreTable>(State().SharedSession(), MakeAttachmentSource(SharedState()))
                .Detach();
        return S_OK;
    });
}

STDMETHODIMP StoreMessage::OpenAttach(ULONG number, LPCIID iid, ULONG flags, LPATTACH* attachment)
{
    if (!attachment)
        return MAPI_E_INVALID_PARAMETER;
    *attachment = nullptr;
    if (flags & ~(MAPI_MODIFY | MAPI_DEFERRED_ERRORS | MAPI_BEST_ACCESS))
        return MAPI_E_UNKNOWN_FLAGS;
    if (iid && !StoreAttachment::Answers(*iid))
        return MAPI_E_INTERFACE_NOT_SUPPORTED;
    return Session().Run([&]() -> HRESULT {
        if (!State().HasAttachment(number))
            return MAPI_E_NOT_FOUND;
        const bool writes = (flags & (MAPI_MODIFY | MAPI_BEST_ACCESS)) != 0 && State().IsWritable();
        if ((flags & MAPI_MODIFY) && !(flags & MAPI_BEST_ACCESS) && !writes)
            return MAPI_E_NO_ACCESS;
        auto state = std::make_shared<AttachmentState>(SharedState(), number, false, writes);
        *attachment = MakeObject<StoreAttachment>(std::move(state)).Detach();
        return S_OK;
    });
}

STDMETHODIMP
StoreMessage::CreateAttach(LPCIID iid, ULONG flags, ULONG* number, LPATTACH* attachment)
{
    if (number)
        *number = 0;
    if (attachment)
        *attachment = nullptr;
    if (!number || !attachment)
        return MAPI_E_INVALID_PARAMETER;
    if (flags & ~MAPI_DEFERRED_ERRORS)
        return MAPI_E_UNKNOWN_FLAGS;
    if (iid && !StoreAttachment::Answers(*iid))
        return MAPI_E_INTERFACE_NOT_SUPPORTED;
    return Session().Run([&] {
        if (!State().IsWritable())
            return MAPI_E_NO_ACCESS;
        const ULONG made = State().NewAttachmentNumber();
        auto state = std::make_shared<AttachmentState>(SharedState(), made, true, true);
        *attachment = MakeObject<StoreAttachment>(std::move(state)).Detach();
        *number = made;
        return S_OK;
    });
}

STDMETHODIMP StoreMessage::DeleteAttach(ULONG number, ULONG, LPMAPIPROGRESS, ULONG flags)
{
    if (flags & ~ATTACH_DIALOG)
        return MAPI_E_UNKNOWN_FLAGS;
    return Session().Run([&] {
        if (!State().IsWritable())
            return MAPI_E_NO_ACCESS;
        return State().DeleteAttachment(number) ? S_OK : MAPI_E_NOT_FOUND;
    });
}

STDMETHODIMP StoreMessage::GetRecipientTable(ULONG, LPMAPITABLE* table)
{
    return RefuseWith(table);
}

STDMETHODIMP StoreMessage::ModifyRecipients(ULONG, LPADRLIST)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP StoreMessage::SubmitMessage(ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP StoreMessage::SetReadFlag(ULONG)
{
    return MAPI_E_NO_SUPPORT;
}
