#include "tests/recordingstore/library/MessageObject.h"

#include "tests/recordingstore/library/HostileAnswers.h"

MessageObject::MessageObject(const std::string& name, std::shared_ptr<MessageBag> bag)
    : PropObject("IMessage", name, bag), m_bag(std::move(bag))
{
}

HRESULT MessageObject::GetAttachmentTable(ULONG flags, LPMAPITABLE* table)
{
    return RunCall(
        Begin("GetAttachmentTable(" + FlagsText(flags) + ")"),
        [&](StoreFault) -> HRESULT {
            if (!table)
                return MAPI_E_INVALID_PARAMETER;
            if (flags & ~(MAPI_UNICODE | MAPI_DEFERRED_ERRORS))
                return MAPI_E_UNKNOWN_FLAGS;
            const auto rows = [bag = m_bag] {
                std::vector<Properties> all;
                for (const auto& [number, properties] : bag->Attachments())
                    all.push_back(ShownByAttachment(properties, number));
                return all;
            };
            *table = NewObject<TableObject>(Name() + " attachments",
                                            std::vector<ULONG>{PR_ATTACH_NUM, PR_ATTACH_SIZE},
                                            (flags & MAPI_UNICODE) != 0,
                                            rows);
            return S_OK;
        },
        table);
}

HRESULT MessageObject::OpenAttach(ULONG number,
                                  LPCIID interfaceId,
                                  ULONG flags,
                                  LPATTACH* attachment)
{
    return RunCall(
        Begin("OpenAttach(" + std::to_string(number) + ", " + InterfaceText(interfaceId) + ", " +
              FlagsText(flags) + ")"),
        [&](StoreFault) -> HRESULT {
            if (!attachment)
                return MAPI_E_INVALID_PARAMETER;
            if (interfaceId && !AttachmentObject::Answers(*interfaceId))
                return MAPI_E_INTERFACE_NOT_SUPPORTED;
            if (!m_bag->Attachments().contains(number))
                return MAPI_E_NOT_FOUND;
            if ((flags & MAPI_MODIFY) && !m_bag->IsWritable())
                return MAPI_E_NO_ACCESS;
            const bool isWriting =
                (flags & (MAPI_MODIFY | MAPI_BEST_ACCESS)) != 0 && m_bag->IsWritable();
            *attachment = NewObject<AttachmentObject>(m_bag, number, isWriting);
            return S_OK;
        },
        attachment);
}

HRESULT MessageObject::CreateAttach(LPCIID interfaceId,
                                    ULONG flags,
                                    ULONG* number,
                                    LPATTACH* attachment)
{
    return RunCall(
        Begin("CreateAttach(" + InterfaceText(interfaceId) + ", " + FlagsText(flags) + ")"),
        [&](StoreFault fault) -> HRESULT {
            if (!number || !attachment)
                return MAPI_E_INVALID_PARAMETER;
            if (interfaceId && !AttachmentObject::Answers(*interfaceId))
                return MAPI_E_INTERFACE_NOT_SUPPORTED;
            if (!m_bag->IsWritable())
                return MAPI_E_NO_ACCESS;
            *number = m_bag->NewAttachNumber();
            *attachment = NewObject<AttachmentObject>(m_bag, *number, true);
            SpoilNumber(fault, number);
            return S_OK;
        },
        number,
        attachment);
}

HRESULT
MessageObject::DeleteAttach(ULONG number, ULONG uiParam, LPMAPIPROGRESS progress, ULONG flags)
{
    return RunCall(Begin("DeleteAttach(" + std::to_string(number) + ", " + std::to_string(uiParam) +
                         (progress ? ", progress, " : ", null, ") + FlagsText(flags) + ")"),
                   [&](StoreFault) -> HRESULT {
                       if (!m_bag->IsWritable())
                           return MAPI_E_NO_ACCESS;
                       if (!m_bag->Attachments().contains(number))
                           return MAPI_E_NOT_FOUND;
                       m_bag->RemoveAttachment(number);
                       return S_OK;
                   });
}
