#include "tests/localstore/OwnBook.h"

#include "localstore/BookEntryId.h"
#include "localstore/StoreProfile.h"

using Microsoft::WRL::ComPtr;

namespace
{
std::shared_ptr<BookSession> OpenSession(const std::wstring& path)
{
    Database database = OpenStore(path);
    EnsureDefaultProfile(database, LoggedOnUser());
    return std::make_shared<BookSession>(std::move(database));
}

LPENTRYID AsEntryId(Bytes& bytes)
{
    return bytes.empty() ? nullptr : reinterpret_cast<LPENTRYID>(bytes.data());
}
} // namespace

OwnBook::OwnBook(const std::wstring& path)
    : m_session(OpenSession(path)),
      m_container(MakeObject<BookContainer>(std::make_shared<BookContainerState>(
          m_session, m_session->ContainerOfRole(BookRole::Personal), BookRole::Personal, true)))
{
}

ComPtr<IMAPIProp> OwnBook::NewEntry()
{
    Bytes id = TemplateEntryId(MAPI_MAILUSER);
    ComPtr<IMAPIProp> entry;
    m_container->CreateEntry(
        static_cast<ULONG>(id.size()), AsEntryId(id), CREATE_REPLACE, entry.GetAddressOf());
    return entry;
}

HRESULT OwnBook::Open(const Bytes& entryId, ULONG& objectType, IUnknown** object)
{
    Bytes id = entryId;
    return m_container->OpenEntry(
        static_cast<ULONG>(id.size()), AsEntryId(id), nullptr, MAPI_MODIFY, &objectType, object);
}

HRESULT OwnBook::Delete(Bytes entryId)
{
    SBinary entry = {static_cast<ULONG>(entryId.size()), reinterpret_cast<BYTE*>(entryId.data())};
    SBinaryArray entries = {1, &entry};
    return m_container->DeleteEntries(&entries, 0);
}

Bytes EntryIdOf(IMAPIProp* entry)
{
    SPropTagArray tags{1, {PR_ENTRYID}};
    ULONG count = 0;
    SPropValue* value = nullptr;
    Bytes id;
    if (entry->GetProps(&tags, 0, &count, &value) == S_OK)
    {
        const auto* const bytes = reinterpret_cast<const std::byte*>(value->Value.bin.lpb);
        id.assign(bytes, bytes + value->Value.bin.cb);
    }
    ChainedMemory::OfLibrary().Free(value);
    return id;
}
