// An open message and its attachments: what is stored, and what waits for the message's
// SaveChanges, which brings all of it into the store in one transaction.
#pragma once

#include "localstore/StoreProperties.h"
#include "localstore/TableSource.h"
#include "localstore/WaitingObject.h"

#include <map>

class MessageState : public WaitingObject
{
  public:
    // A row with the ID 0 is a message that was never saved.
    MessageState(std::shared_ptr<StoreSession> session,
                 MessageRow row,
                 Bytes folderEntryId,
                 bool writable)
        : WaitingObject(std::move(session), writable), m_row(std::move(row)),
          m_folderEntryId(std::move(folderEntryId))
    {
    }

    PropertyMap Read(const PropertySelection& selection) override;
    bool IsComputed(std::uint16_t id) const override;
    // Without FORCE_SAVE a message that was changed by others since it was opened is refused with
    // MAPI_E_OBJECT_CHANGED. Nothing is written where nothing waits. The
    // body's RTF follows its text (BodyForms.h).
    HRESULT Save(ULONG flags) override;

    // Attachments by their numbers, as this opening of the message sees them.
    std::vector<std::int64_t> AttachmentNumbers();
    bool HasAttachment(ULONG number);
    // A number that no attachment had while the message was open.
    ULONG NewAttachmentNumber();
    PropertyMap ReadAttachment(ULONG number, const PropertySelection& selection);
    // Moves an attachment's changes to what waits; they stay where they are if it throws. A new one
    // has a number of NewAttachmentNumber; if another opening of the message saves one with
    // that number first, the save throws DatabaseError (Changed). One that others deleted meanwhile
    // stays deleted.
    void ChangeAttachment(ULONG number, bool isNew, PropertyChanges&& changes);
    // False where there is none.
    bool DeleteAttachment(ULONG number);

  private:
    struct AttachmentChange
    {
        bool deleted = false;
        bool isNew = false;
        PropertyChanges changes;
    };

    std::optional<std::int64_t> AttachmentId(ULONG number);
    void SaveRow(MessageRow& row, bool force);
    void SaveAttachments(std::int64_t message);

    MessageRow m_row;
    const Bytes m_folderEntryId;
    std::map<ULONG, AttachmentChange> m_attachments;
    std::int64_t m_lastNumber = -1;
};

class AttachmentState : public WaitingObject
{
  public:
    AttachmentState(std::shared_ptr<MessageState> message, ULONG number, bool isNew, bool writable)
        : WaitingObject(message->SharedSession(), writable), m_message(std::move(message)),
          m_number(number), m_isNew(isNew)
    {
    }

    PropertyMap Read(const PropertySelection& selection) override;
    bool IsComputed(std::uint16_t id) const override;
    // Hands the changes to the message.
    HRESULT Save(ULONG flags) override;

  private:
    const std::shared_ptr<MessageState> m_message;
    const ULONG m_number;
    // Not yet among the message's attachments.
    bool m_isNew;
};

// The attachments of a message as rows, in the order of their numbers.
std::unique_ptr<TableSource> MakeAttachmentSource(std::shared_ptr<MessageState> message);
