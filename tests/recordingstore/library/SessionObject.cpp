#include "tests/recordingstore/library/SessionObject.h"

#include "tests/recordingstore/library/HostileAnswers.h"
#include "tests/recordingstore/library/StoreObject.h"

HRESULT SessionObject::GetMsgStoresTable(ULONG flags, LPMAPITABLE* table)
{
    return RunCall(
        Begin("GetMsgStoresTable(" + FlagsText(flags) + ")"),
        [&](StoreFault) -> HRESULT {
            if (!table)
                return MAPI_E_INVALID_PARAMETER;
            if (flags & ~(MAPI_UNICODE | MAPI_DEFERRED_ERRORS))
                return MAPI_E_UNKNOWN_FLAGS;
            const auto rows = [] {
                std::vector<Properties> all;
                for (const NodePtr& store : TheLibrary().content.Stores())
                    all.push_back(RowOf(*store));
                return all;
            };
            *table = NewObject<TableObject>(
                "stores",
                std::vector<ULONG>{PR_ENTRYID, PR_DISPLAY_NAME_W, PR_DEFAULT_STORE},
                (flags & MAPI_UNICODE) != 0,
                rows);
            return S_OK;
        },
        table);
}

HRESULT SessionObject::OpenMsgStore(
    ULONG_PTR uiParam, ULONG size, LPENTRYID entryId, LPCIID interfaceId, ULONG flags, LPMDB* store)
{
    return RunCall(
        Begin("OpenMsgStore(" + std::to_string(uiParam) + ", " + EntryText(size, entryId) + ", " +
              InterfaceText(interfaceId) + ", " + FlagsText(flags) + ")"),
        [&](StoreFault) -> HRESULT {
            if (!store || IsNullEntry(size, entryId))
                return MAPI_E_INVALID_PARAMETER;
            if (interfaceId && !StoreObject::Answers(*interfaceId))
                return MAPI_E_INTERFACE_NOT_SUPPORTED;
            const NodePtr node = TheLibrary().content.FindEntry(entryId, size).first;
            if (!node || node->kind != NodeKind::Store)
                return node || size != kEntryIdBytes ? MAPI_E_INVALID_ENTRYID : MAPI_E_NOT_FOUND;
            constexpr ULONG kWrite = 0x00000004; // MDB_WRITE
            *store = NewObject<StoreObject>(node, (flags & (kWrite | MAPI_BEST_ACCESS)) != 0);
            return S_OK;
        },
        store);
}

HRESULT SessionObject::OpenEntry(
    ULONG size, LPENTRYID entryId, LPCIID interfaceId, ULONG flags, ULONG* type, LPUNKNOWN* object)
{
    return RunCall(
        Begin(OpenEntryText(size, entryId, interfaceId, flags, type)),
        [&](StoreFault fault) {
            return OpenNode(nullptr, size, entryId, interfaceId, flags, fault, type, object);
        },
        object);
}

HRESULT SessionObject::QueryIdentity(ULONG* size, LPENTRYID* entryId)
{
    return RunCall(
        Begin("QueryIdentity()"),
        [&](StoreFault fault) -> HRESULT {
            if (!size || !entryId)
                return MAPI_E_INVALID_PARAMETER;
            const NodePtr identity = TheLibrary().content.Identity();
            if (!identity)
                return MAPI_E_NOT_FOUND;
            DeliverEntryId(identity->entryId, identity->name, size, entryId);
            SpoilEntryId(fault, *size, *entryId);
            return S_OK;
        },
        size,
        entryId);
}

HRESULT SessionObject::Logoff(ULONG_PTR uiParam, ULONG flags, ULONG reserved)
{
    return RunCall(Begin("Logoff(" + std::to_string(uiParam) + ", " + FlagsText(flags) + ", " +
                         std::to_string(reserved) + ")"),
                   [](StoreFault) { return S_OK; });
}
