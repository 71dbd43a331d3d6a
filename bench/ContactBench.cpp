// Contacts over the embedded message store: loading and walking folders of 1,000 and 10,000 of
// them, each with the lookup of its folder, beside the bare calls of the store that this cannot do
// without and one bare creation for each. Each line shows a measured value and its target; see
// StoreMeasure.h. Ends with 0 also where a target is missed.
//
// While it runs, the user's setting for the store's place names a store of its own.
#include "BenchStore.h"
#include "StoreMeasure.h"

#include "outlook/contacts/ContactColumns.h"
#include "outlook/contacts/OutlookAddressTable.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"

#include <stdexcept>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr ULONG kListColumns[] = {PR_ENTRYID, PR_MESSAGE_CLASS_W, PR_LAST_MODIFICATION_TIME};
constexpr ULONG kOwnId[] = {PR_ENTRYID, PR_LAST_MODIFICATION_TIME};
constexpr ULONG kIdentity[] = {PR_ENTRYID, PR_MESSAGE_CLASS_W};
constexpr ULONG kBody[] = {PR_BODY_W};
constexpr ULONG kAttachmentColumns[] = {PR_ATTACH_NUM, 0x3704001F, 0x3703001F, 0x7FFF000B};
constexpr wchar_t kFolderKey[] = L"0000000050530301F0000000000000000000000000000009";

// As much as many contacts have: names, three numbers, an address of either kind, one mail address,
// a note, a keyword.
std::string PropertiesOf(ULONG i)
{
    const std::string number = std::to_string(i);
    const auto text = [&](const char* tag, const std::string& value) {
        return R"({"tag": ")" + std::string(tag) + R"(", "value": ")" + value + number + R"("},)";
    };
    const auto named = [&](const char* name, const std::string& value) {
        return R"({"set": "PSETID_Address", "id": ")" + std::string(name) +
               R"(", "type": "PT_UNICODE", "value": ")" + value + number + R"("},)";
    };
    return R"({"tag": "0x001A001F", "value": "IPM.Contact"},)" + text("0x3A06001F", "Oda ") +
           text("0x3A11001F", "Bakken ") + text("0x3001001F", "Oda Bakken ") +
           text("0x3A16001F", "Fjord ") + text("0x3A08001F", "+47 22 ") +
           text("0x3A09001F", "+47 23 ") + text("0x3A1C001F", "+47 90 ") +
           text("0x3A59001F", "Moss ") + text("0x3A5D001F", "Storgata ") +
           text("0x1000001F", "Meets on Mondays ") + named("0x8045", "Kaia ") +
           named("0x8046", "Oslo ") + named("0x8083", "oda@example.org ") +
           R"({"set": "PS_PUBLIC_STRINGS", "name": "Keywords", "type": "PT_MV_UNICODE",)"
           R"( "value": ["Friends"]},)"
           R"({"tag": "0x10090102", "value": {"hex": ""}})";
}

// How many contacts came, each from the folder.
ULONG LoadAndWalk(BenchStore& store, const ComPtr<IMAPIFolder>& folder)
{
    COutlookAddressTable table(
        folder.Get(), store.helper.get(), {{folder, true, 0, kFolderKey, L"Contacts"}});
    table.GetItemIDs();
    table.ResetItem();
    for (ULONG count = 0;; ++count)
    {
        table.GetNextItem();
        const auto contact = QueryItem<INContactItem>(CurrentItem(table).Get());
        if (!contact)
            return count;
        Bstr folderID;
        contact->get_ParentFolderID(folderID.Put());
        if (folderID.View() != kFolderKey)
            throw std::runtime_error("a contact has no folder");
    }
}

// What reading one contact asks of the store.
void ReadBare(IMAPIFolder& folder, const SBinary& entryID, CNProxcy& proxy)
{
    const ComPtr<IUnknown> object = OpenToRead(folder, entryID);
    IMessage& message = *static_cast<IMessage*>(object.Get());
    // Asks for the names too; what it does beside that is next to nothing.
    const ContactColumnTags columns = FindContactColumns(folder, &message, proxy);
    ReadAndFree(message, columns.tags, proxy);
    ComPtr<IMAPITable> attachments;
    Require(message.GetAttachmentTable(MAPI_DEFERRED_ERRORS, attachments.GetAddressOf()),
            "attachments");
    ReadRows(*attachments.Get(), kAttachmentColumns, proxy);
    ReadAndFree(message, kIdentity, proxy);
    ReadAndFree(message, kBody, proxy);
}

ULONG BareCalls(BenchStore& store, const ComPtr<IMAPIFolder>& folder)
{
    CNProxcy& proxy = store.helper->Proxy();
    ComPtr<IMAPITable> table;
    Require(folder->GetContentsTable(MAPI_UNICODE, table.GetAddressOf()), "contents");
    const MapiRowSet rows = ReadRows(*table.Get(), kListColumns, proxy);
    for (ULONG i = 0; i < rows->cRows; ++i)
        ReadAndFree(*static_cast<IMAPIProp*>(
                        OpenToRead(*folder.Get(), rows->aRow[i].lpProps[0].Value.bin).Get()),
                    kOwnId,
                    proxy);
    for (ULONG i = 0; i < rows->cRows; ++i)
        ReadBare(*folder.Get(), rows->aRow[i].lpProps[0].Value.bin, proxy);
    return rows->cRows;
}

void MeasureAll(const ScratchDirectory& scratch)
{
    MeasureWalks(scratch,
                 {{1'000, 10'000}, PropertiesOf, LoadAndWalk, BareCalls, CLSID_NContactItem, 1.2});
}
} // namespace

int wmain()
{
    return RunOverStore("contact_bench", MeasureAll);
}
