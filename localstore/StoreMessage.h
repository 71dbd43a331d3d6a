// Messages and attachments of the embedded store. Changes wait: an attachment's for its own
// SaveChanges and then the message's, a message's for its SaveChanges. Until then they show in the
// object itself and nowhere else.
#pragma once

#include "localstore/MessageState.h"
#include "localstore/StoreObject.h"

class StoreMessage : public StoreObject<MessageState, IMessage, &IID_IMessage>
{
  public:
    explicit StoreMessage(std::shared_ptr<MessageState> state) : StoreObject(std::move(state)) {}

    // Inside StoreSession::Run.
    static HRESULT Open(const std::shared_ptr<StoreSession>& session,
                        std::span<const std::byte> entryId,
                        const IID* iid,
                        bool writable,
                        IUnknown** object);

    STDMETHODIMP GetAttachmentTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP
    OpenAttach(ULONG number, LPCIID iid, ULONG flags, LPATTACH* attachment) override;
    STDMETHODIMP
    CreateAttach(LPCIID iid, ULONG flags, ULONG* number, LPATTACH* attachment) override;
    STDMETHODIMP
    DeleteAttach(ULONG number, ULONG uiParam, LPMAPIPROGRESS progress, ULONG flags) override;
    STDMETHODIMP GetRecipientTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP ModifyRecipients(ULONG flags, LPADRLIST recipients) override;
    STDMETHODIMP SubmitMessage(ULONG flags) override;
    STDMETHODIMP SetReadFlag(ULONG flags) override;
};

class StoreAttachment : public StoreObject<AttachmentState, IAttach, &IID_IAttachment>
{
  public:
    explicit StoreAttachment(std::shared_ptr<AttachmentState> state) : StoreObject(std::move(state))
    {
    }
};
