// Contact folders of the recording store. Named properties have IDs that are easy to read: each
// number of Outlook's address names is known under an ID of its own value, and behind them stand
// 80E0 (account stamp, 8581), 80E1 (account name, 8580) and 80E2 (keywords).
#pragma once

#include "outlook/contacts/OutlookAddressTable.h"
#include "outlook/store/NamedTags.h"
#include "tests/outlook/store/TableFixture.h"

#include <memory>
#include <string>
#include <vector>

inline constexpr char kAddressSetText[] = "{00062004-0000-0000-C000-000000000046}";
inline constexpr char kCommonSetText[] = "{00062008-0000-0000-C000-000000000046}";
inline constexpr char kPublicSetText[] = "{00020329-0000-0000-C000-000000000046}";

// Makes the names known. The address names are those that are not left out.
inline void NameContactProperties(RecordingStore& store)
{
    for (LONG number = 0x8000; number < 0x80E0; ++number)
        store.NameProperty(kAddressNames, number);
    store.NameProperty(kCommonNames, 0x8581);
    store.NameProperty(kCommonNames, 0x8580);
    store.NameProperty(kPublicNames, L"Keywords");
}

// Compressed RTF of the text "note", which stands as it is behind a header of 16 bytes: the size of
// what follows the first field, 24; that of the text, 12; the kind "MELA"; no checksum.
inline std::vector<BYTE> RtfOfANote()
{
    const std::string bytes("\x18\0\0\0\x0C\0\0\0MELA\0\0\0\0{\\rtf1 note}", 28);
    return std::vector<BYTE>(bytes.begin(), bytes.end());
}

// "contacts" with the names known, and nothing in it.
class ContactStoreTest : public testing::Test
{
  protected:
    ContactStoreTest() { store.AddUsualFolders(); }
    ~ContactStoreTest() override
    {
        Close();
        EXPECT_TRUE(store.IsClean()) << store.Complaints();
    }

    void Open()
    {
        session = std::make_unique<StoreSession>();
        folder = session->OpenFolder(store.EntryIdOf("contacts"));
        store.ClearRecord();
    }
    void Close()
    {
        folder.Reset();
        session.reset();
    }

    // A message of the folder, open for writing.
    Microsoft::WRL::ComPtr<IMessage> OpenMessage(const char* name)
    {
        std::vector<BYTE> id = store.EntryIdOf(name);
        ULONG type = 0;
        Microsoft::WRL::ComPtr<IUnknown> object;
        folder->OpenEntry(static_cast<ULONG>(id.size()),
                          reinterpret_cast<ENTRYID*>(id.data()),
                          nullptr,
                          MAPI_BEST_ACCESS,
                          &type,
                          object.GetAddressOf());
        if (!object || type != MAPI_MESSAGE)
            throw std::runtime_error("no such message");
        return static_cast<IMessage*>(object.Get());
    }
    CNProxcy& Proxy() { return session->Helper()->Proxy(); }

    RecordingStore store;
    std::unique_ptr<StoreSession> session;
    Microsoft::WRL::ComPtr<IMAPIFolder> folder;
};
