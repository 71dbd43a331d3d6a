// IMessage, and IAttach below it.
#pragma once

#include "tests/recordingstore/library/Entries.h"

class MessageObject final : public PropObject<MessageWithoutOperations>
{
  public:
    MessageObject(const std::string& name, std::shared_ptr<MessageBag> bag);

    STDMETHODIMP GetAttachmentTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP
    OpenAttach(ULONG number, LPCIID interfaceId, ULONG flags, LPATTACH* attachment) override;
    STDMETHODIMP
    CreateAttach(LPCIID interfaceId, ULONG flags, ULONG* number, LPATTACH* attachment) override;
    STDMETHODIMP
    DeleteAttach(ULONG number, ULONG uiParam, LPMAPIPROGRESS progress, ULONG flags) override;

  private:
    std::shared_ptr<MessageBag> m_bag;
};

class AttachmentObject final : public PropObject<AttachmentWithoutOperations>
{
  public:
    AttachmentObject(const std::shared_ptr<MessageBag>& message, ULONG number, bool isWritable)
        : PropObject("IAttach",
                     message->AttachmentName(number),
                     std::make_shared<AttachmentBag>(message, number, isWritable))
    {
    }
};
