// Contacts over the embedded message store, in five folders, so that the lookup of each one's
// folder has more than one answer: time, growth and memory; see WalkBench.h.
//
//     contact_bench [LARGEST]     the number of contacts in the largest table
//
// While it runs, the user's setting for the store's place names a store of its own.
#include "BenchStore.h"
#include "StoreMeasure.h"
#include "WalkBench.h"

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
constexpr ULONG kFolders = 5;

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

std::wstring FolderKey(ULONG part)
{
    return L"0000000050530301F000000000000000000000000000000" + std::to_wstring(part);
}

std::unique_ptr<CContentTable> Open(const WalkBench::Folders& folders, CMAPIHelper& helper)
{
    std::vector<OutlookFolderInfo> infos;
    for (ULONG part = 0; part < folders.size(); ++part)
        infos.push_back({folders[part], part == 0, 0, FolderKey(part), L"Contacts"});
    return std::make_unique<COutlookAddressTable>(folders[0].Get(), &helper, std::move(infos));
}

// How many contacts came, each from its folder; the folders come one after the other.
ULONG Walk(CContentTable& table, ULONG size)
{
    std::vector<std::wstring> keys;
    for (ULONG part = 0; part < kFolders; ++part)
        keys.push_back(FolderKey(part));
    table.ResetItem();
    for (ULONG count = 0;; ++count)
    {
        table.GetNextItem();
        const auto contact = QueryItem<INContactItem>(CurrentItem(table).Get());
        if (!contact)
            return count;
        Bstr folderID;
        contact->get_ParentFolderID(folderID.Put());
        if (folderID.View() != keys.at(count / (size / kFolders)))
            throw std::runtime_error("a contact is not in its folder");
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

ULONG ReadBareFolder(const ComPtr<IMAPIFolder>& folder, CNProxcy& proxy)
{
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

ULONG BareCalls(const WalkBench::Folders& folders, CNProxcy& proxy)
{
    ULONG count = 0;
    for (const ComPtr<IMAPIFolder>& folder : folders)
        count += ReadBareFolder(folder, proxy);
    return count;
}
} // namespace

int wmain(int argc, wchar_t** argv)
{
    return RunWalkBench("contact_bench",
                        argc,
                        argv,
                        {"contacts",
                         kFolders,
                         PropertiesOf,
                         Open,
                         Walk,
                         BareCalls,
                         CLSID_NContactItem,
                         900.0,
                         1.2});
}
