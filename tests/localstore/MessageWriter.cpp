#include "tests/localstore/MessageWriter.h"

#include "localstore/MessageStore.h"
#include "localstore/StoreFolder.h"
#include "localstore/StoreProfile.h"
#include "tests/localstore/KilledWriter.h"

#include <cstdio>

namespace
{

using Microsoft::WRL::ComPtr;

constexpr GUID kAddressSet = {0x00062004, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

bool Write(IMAPIFolder& folder, ULONG namedTag, int number, StopBefore step, int skip)
{
    ComPtr<IMessage> message;
    if (FAILED(folder.CreateMessage(nullptr, 0, message.GetAddressOf())))
        return false;
    std::wstring subject = SubjectOfWritten(number);
    std::wstring body = BodyOfWritten(number);
    SPropValue values[4]{};
    values[0].ulPropTag = PR_MESSAGE_CLASS_W;
    values[0].Value.lpszW = const_cast<wchar_t*>(L"IPM.Contact");
    values[1].ulPropTag = PR_SUBJECT_W;
    values[1].Value.lpszW = subject.data();
    values[2].ulPropTag = PR_BODY_W;
    values[2].Value.lpszW = body.data();
    values[3].ulPropTag = CHANGE_PROP_TYPE(namedTag, PT_LONG);
    values[3].Value.l = number;
    if (message->SetProps(4, values, nullptr) != S_OK)
        return false;

    ULONG attachmentNumber = 0;
    ComPtr<IAttach> attachment;
    if (FAILED(message->CreateAttach(nullptr, 0, &attachmentNumber, attachment.GetAddressOf())))
        return false;
    std::string bytes = AttachmentOfWritten(number);
    SPropValue data{};
    data.ulPropTag = PR_ATTACH_DATA_BIN;
    data.Value.bin = {static_cast<ULONG>(bytes.size()), reinterpret_cast<BYTE*>(bytes.data())};
    if (attachment->SetProps(1, &data, nullptr) != S_OK || attachment->SaveChanges(0) != S_OK)
        return false;

    ArmStop(step, skip);
    const HRESULT saved = message->SaveChanges(FORCE_SAVE);
    DisarmStop();
    if (FAILED(saved))
        return false;

    SPropTagArray tags{1, {PR_ENTRYID}};
    ULONG count = 0;
    SPropValue* id = nullptr;
    if (message->GetProps(&tags, 0, &count, &id) != S_OK)
        return false;
    TellDone("saved", number, id->Value.bin);
    ChainedMemory::OfLibrary().Free(id);
    return true;
}

} // namespace

std::wstring SubjectOfWritten(int number)
{
    return L"Message " + std::to_wstring(number);
}

std::wstring BodyOfWritten(int number)
{
    return std::wstring(6000 + static_cast<size_t>(number % 7) * 500,
                        static_cast<wchar_t>(L'a' + number % 26));
}

std::string AttachmentOfWritten(int number)
{
    return std::string(3000, static_cast<char>('A' + number % 26));
}

int RunMessageWriter(
    const std::wstring& path, int first, int step, int skip, int armAfter, int checkpoint)
{
    try
    {
        InstallStoppingVfs();
        Database database = OpenStore(path);
        EnsureDefaultProfile(database, LoggedOnUser());
        database.Execute("PRAGMA wal_autocheckpoint = " + std::to_string(checkpoint));
        const auto contacts = FolderOfRole(database, *FindFolderRole("contacts"));
        const auto session = std::make_shared<StoreSession>(std::move(database));
        const auto folder = MakeObject<StoreFolder>(
            std::make_shared<FolderState>(session, contacts.value(), true, true));
        GUID set = kAddressSet;
        MAPINAMEID name{};
        name.lpguid = &set;
        name.ulKind = MNID_ID;
        name.Kind.lID = kNamedNumberOfWritten;
        MAPINAMEID* names[] = {&name};
        SPropTagArray* tags = nullptr;
        if (folder->GetIDsFromNames(1, names, MAPI_CREATE, &tags) != S_OK)
            return 1;
        const ULONG namedTag = tags->aulPropTag[0];
        ChainedMemory::OfLibrary().Free(tags);
        for (int i = 0;; ++i)
        {
            const auto stop = i < armAfter ? StopBefore::Nothing : static_cast<StopBefore>(step);
            if (!Write(*folder.Get(), namedTag, first + i, stop, skip))
                return 1;
        }
    }
    catch (const std::exception& error)
    {
        std::printf("failed: %s\n", error.what());
        std::fflush(stdout);
        return 1;
    }
}
