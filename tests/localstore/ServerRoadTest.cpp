// The server's provider and table engine on the built PimLocalStore.dll, bound as the server binds
// it. What they call in detail is tested on the recording store.
#include "outlook/store/ContentTable.h"
#include "outlook/store/EntryIdText.h"
#include "outlook/store/MAPIProxcy.h"
#include "outlook/store/OutlookProvider.h"
#include "service/ItemAccess.h"
#include "tests/localstore/StoreClient.h"
#include "tests/service/FakeItem.h"

#include <gmock/gmock.h>

#include <map>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace
{
using Names = std::vector<std::wstring>;

constexpr wchar_t kAppointment[] = L"IPM.Appointment";

std::wstring LibraryPath()
{
    return ProgramFolder() + L"PimLocalStore.dll";
}

std::wstring HexOf(const EntryBytes& id)
{
    return BytesToHex(id);
}

class ServerRoadTest : public StoreTest
{
  protected:
    ComPtr<IMAPIFolder> Calendar()
    {
        return OpenFolder(Binary(RootFolder().Get(), kCalendarFolder));
    }
    ComPtr<IMAPIFolder> Subtree()
    {
        return OpenFolder(Binary(m_store.Get(), PR_IPM_SUBTREE_ENTRYID));
    }
    // A new folder; without a class for null.
    ComPtr<IMAPIFolder> AddFolder(const ComPtr<IMAPIFolder>& parent,
                                  const wchar_t* name,
                                  const wchar_t* containerClass)
    {
        ComPtr<IMAPIFolder> folder;
        EXPECT_EQ(S_OK,
                  parent->CreateFolder(FOLDER_GENERIC,
                                       reinterpret_cast<LPTSTR>(const_cast<wchar_t*>(name)),
                                       nullptr,
                                       nullptr,
                                       MAPI_UNICODE,
                                       folder.GetAddressOf()));
        if (containerClass)
        {
            SPropValue value = TextValue(PR_CONTAINER_CLASS_W, containerClass);
            EXPECT_EQ(S_OK, folder->SetProps(1, &value, nullptr));
            EXPECT_EQ(S_OK, folder->SaveChanges(KEEP_OPEN_READWRITE));
        }
        return folder;
    }
};

// --- The provider --------------------------------------------------------------------------------

class ProviderOnStoreTest : public ServerRoadTest
{
  protected:
    HRESULT LogOnAnew()
    {
        provider = std::make_unique<COutlookProvider>();
        return provider->Logon(OutlookLibrary{LibraryPath(), 2010});
    }
    // The display names; a default folder has a star.
    Names NamesOf(bool (COutlookProvider::*get)(std::vector<OutlookFolderInfo>&))
    {
        std::vector<OutlookFolderInfo> folders;
        EXPECT_TRUE((provider.get()->*get)(folders));
        Names names;
        for (const OutlookFolderInfo& folder : folders)
            names.push_back(folder.displayName + (folder.isDefault ? L"*" : L""));
        return names;
    }
    std::vector<std::wstring> AssociatedClasses()
    {
        ComPtr<IMAPITable> table;
        EXPECT_EQ(
            S_OK,
            Calendar()->GetContentsTable(MAPI_UNICODE | MAPI_ASSOCIATED, table.GetAddressOf()));
        return Column(table.Get(), PR_MESSAGE_CLASS_W);
    }

    std::unique_ptr<COutlookProvider> provider;
};

// --- The table engine ----------------------------------------------------------------------------

// Appointments by their IDs alone; writes one subject.
class IdTable : public CContentTable
{
  public:
    using CContentTable::CContentTable;

    std::wstring subjectToWrite = L"written";
    std::wstring subjectRead; // of the last item that was filled

  protected:
    bool IsWantedRow(const PropertyView& row) override
    {
        return row.Binary(0) && row.Text(1) && std::wstring(row.Text(1)) == kAppointment;
    }
    std::vector<ULONG> GetPropertyNames() override { return {PR_SUBJECT_W}; }
    void FillItem(INEntityItem&, const PropertyView& values) override
    {
        subjectRead = values.Text(0) ? values.Text(0) : L"-";
    }
    ComPtr<INEntityItem> CreateItem() override { return FakeItem::Make(IID_NULL).Get(); }
    PropertyArray ReadItem(INEntityItem&, bool isNew) override
    {
        PropertyArray values;
        if (isNew)
            values.AddText(PR_MESSAGE_CLASS_W, kAppointment);
        values.AddText(PR_SUBJECT_W, subjectToWrite);
        return values;
    }
};

class TableOnStoreTest : public ServerRoadTest
{
  protected:
    void SetUp() override
    {
        ServerRoadTest::SetUp();
        for (const wchar_t* subject : {L"one", L"two", L"three"})
            ids[subject] = HexOf(AddMessage(Calendar().Get(), kAppointment, subject));
        AddMessage(Calendar().Get(), L"IPM.Appointment.Special", L"of another class");
        auto proxy = std::make_unique<CMAPIProxcy>();
        MAPIINIT_0 init = {0, 8};
        ASSERT_TRUE(proxy->Load(LibraryPath(), &init));
        helper = std::make_unique<CMAPIHelper>(std::move(proxy));
        OpenTable(Calendar());
    }
    void TearDown() override
    {
        table.reset();
        helper.reset();
    }
    void OpenTable(const ComPtr<IMAPIFolder>& folder)
    {
        table = std::make_unique<IdTable>(folder.Get(), helper.get());
        table->GetItemIDs();
        table->ResetItem();
    }

    ComPtr<INEntityItem> Current() { return CurrentItem(*table); }
    // The subject under which the current item was added; "none" without one.
    std::wstring CurrentName()
    {
        const auto item = Current();
        if (!item)
            return L"none";
        const std::wstring id = EntityIDOf(item.Get());
        for (const auto& [subject, known] : ids)
            if (known == id)
                return subject;
        return L"unknown " + id;
    }
    std::wstring Next()
    {
        table->GetNextItem();
        return CurrentName();
    }
    Names Rest()
    {
        Names names;
        for (std::wstring name = Next(); name != L"none" && names.size() < 50; name = Next())
            names.push_back(name);
        return names;
    }
    std::size_t Listed()
    {
        std::list<ItemEntry> entries;
        EXPECT_EQ(1, table->GetItemList(entries));
        return entries.size();
    }
    std::wstring StoredSubject(const wchar_t* subject)
    {
        return Text(OpenMessage(HexToBytes(ids[subject])).Get(), PR_SUBJECT_W);
    }

    std::map<std::wstring, std::wstring> ids; // by subject
    std::unique_ptr<CMAPIHelper> helper;
    std::unique_ptr<IdTable> table;
};
} // namespace

TEST_F(ProviderOnStoreTest, LogsOnAndListsTheDefaultFolders)
{
    ASSERT_EQ(S_OK, LogOnAnew());
    EXPECT_THAT(NamesOf(&COutlookProvider::GetContactFolders), ElementsAre(L"Contacts*"));
    EXPECT_THAT(NamesOf(&COutlookProvider::GetCalendarFolders), ElementsAre(L"Calendar*"));
    std::vector<OutlookFolderInfo> folders;
    ASSERT_TRUE(provider->GetContactFolders(folders));
    EXPECT_EQ(HexOf(Binary(Contacts().Get(), PR_ENTRYID)), folders.at(0).entryIDHex);
    EXPECT_EQ(0, folders.at(0).itemCount);
}

// The store changes by the first logon, and by that one alone.
TEST_F(ProviderOnStoreTest, TheFirstLogonMakesTheCategoryMessage)
{
    EXPECT_THAT(AssociatedClasses(), IsEmpty());
    for (int logon = 0; logon < 3; ++logon)
    {
        ASSERT_EQ(S_OK, LogOnAnew());
        EXPECT_THAT(AssociatedClasses(), ElementsAre(L"IPM.Configuration.CategoryList"));
    }
    ComPtr<IMAPITable> contents;
    ASSERT_EQ(S_OK, Calendar()->GetContentsTable(MAPI_UNICODE, contents.GetAddressOf()));
    EXPECT_THAT(Column(contents.Get(), PR_MESSAGE_CLASS_W), IsEmpty());
}

TEST_F(ProviderOnStoreTest, FindsNestedFoldersButNoneBelowTheWastebasket)
{
    const auto projects = AddFolder(Subtree(), L"Projects", nullptr);
    const auto partners = AddFolder(projects, L"Partners", L"IPF.Contact");
    AddMessage(partners.Get(), L"IPM.Contact", L"Ann");
    AddMessage(partners.Get(), L"IPM.Contact", L"Ben");
    AddFolder(partners, L"Former", L"IPF.Contact");
    AddFolder(projects, L"Milestones", L"IPF.Appointment");
    AddFolder(projects, L"Other", L"IPF.Contact.Other");
    const auto wastebasket = OpenFolder(Binary(m_store.Get(), PR_IPM_WASTEBASKET_ENTRYID));
    AddFolder(AddFolder(wastebasket, L"Deleted", L"IPF.Contact"), L"Deeper", L"IPF.Appointment");
    ASSERT_EQ(S_OK, LogOnAnew());
    EXPECT_THAT(NamesOf(&COutlookProvider::GetContactFolders),
                UnorderedElementsAre(L"Contacts*", L"Partners", L"Former"));
    EXPECT_THAT(NamesOf(&COutlookProvider::GetCalendarFolders),
                UnorderedElementsAre(L"Calendar*", L"Milestones"));
    std::vector<OutlookFolderInfo> folders;
    ASSERT_TRUE(provider->GetContactFolders(folders));
    for (const OutlookFolderInfo& folder : folders)
        if (folder.displayName == L"Partners")
        {
            EXPECT_EQ(2, folder.itemCount);
            EXPECT_EQ(HexOf(Binary(partners.Get(), PR_ENTRYID)), folder.entryIDHex);
        }
}

TEST_F(ProviderOnStoreTest, ReadsTheIdentityOfTheProfile)
{
    ASSERT_EQ(S_OK, LogOnAnew());
    const auto identity = provider->GetUserProperties();
    ASSERT_NE(nullptr, identity);
    wchar_t account[257] = {};
    DWORD length = 257;
    ASSERT_TRUE(GetUserNameW(account, &length));
    EXPECT_EQ(account, identity->account);
    EXPECT_NE(L"", identity->displayName);
    // The profile knows no mail address.
    EXPECT_EQ(L"", identity->addressType);
    EXPECT_EQ(L"", identity->smtpAddress);
}

// --- Walks and writes ----------------------------------------------------------------------------

TEST_F(TableOnStoreTest, WalksTheWantedMessagesInTheirOrder)
{
    EXPECT_EQ(3u, Listed());
    EXPECT_THAT(Rest(), ElementsAre(L"one", L"two", L"three"));
    EXPECT_EQ(L"three", table->subjectRead);
    EXPECT_EQ(L"none", Next());
}

TEST_F(TableOnStoreTest, AFolderWithoutMessagesIsAnEmptyWalk)
{
    OpenTable(AddFolder(Subtree(), L"Empty", L"IPF.Appointment"));
    EXPECT_EQ(0u, Listed());
    EXPECT_EQ(L"none", Next());
}

TEST_F(TableOnStoreTest, ASecondLoadShowsEveryItemTwice)
{
    table->GetItemIDs();
    table->ResetItem();
    EXPECT_THAT(Rest(), ElementsAre(L"one", L"two", L"three", L"one", L"two", L"three"));
}

TEST_F(TableOnStoreTest, ADeletedItemShowsTheOneBeforeAgain)
{
    EXPECT_EQ(L"one", Next());
    EXPECT_EQ(1, table->DeleteItem(ids[L"two"]));
    EXPECT_EQ(3u, Listed());
    EXPECT_THAT(Rest(), ElementsAre(L"one", L"three"));
}

TEST_F(TableOnStoreTest, AnAddedItemIsCurrentAndComesOnceMore)
{
    EXPECT_EQ(L"one", Next());
    const auto item = FakeItem::Make(IID_NULL, L"before");
    std::wstring folderID = L"as it was";
    const std::wstring id = table->AddItem(item.Get(), folderID);
    EXPECT_EQ(48u, id.size()); // two digits for each of 24 bytes
    EXPECT_EQ(L"", folderID);
    EXPECT_EQ(id, item->entityID);
    EXPECT_EQ(item.Get(), Current().Get());
    std::list<ItemEntry> entries;
    table->GetItemList(entries);
    ASSERT_EQ(4u, entries.size());
    EXPECT_EQ(id, entries.back().rowEntryID);
    EXPECT_EQ(0.0, entries.back().lastModified);
    ids[L"new"] = id;
    EXPECT_EQ(L"new", Next()); // opened once more, as another object
    EXPECT_NE(item.Get(), Current().Get());
    EXPECT_EQ(L"written", table->subjectRead);
    EXPECT_EQ(L"none", Next());
    // Under the same ID for whoever loads the folder next.
    OpenTable(Calendar());
    EXPECT_THAT(Rest(), ElementsAre(L"one", L"two", L"three", L"new"));
}

TEST_F(TableOnStoreTest, AnUpdatedItemKeepsItsIdAndIsUnderTheCursor)
{
    const auto item = FakeItem::Make(IID_NULL, ids[L"two"]);
    EXPECT_EQ(1, table->UpdateItem(item.Get()));
    EXPECT_EQ(L"written", StoredSubject(L"two"));
    EXPECT_EQ(item.Get(), Current().Get());
    EXPECT_THAT(Rest(), ElementsAre(L"two", L"three"));
}

TEST_F(TableOnStoreTest, AnIdThatDoesNotOpenKeepsTheCurrentItem)
{
    table->GetItemByID(L"0102");
    EXPECT_EQ(L"none", CurrentName());
    table->GetItemByID(ids[L"two"]);
    EXPECT_EQ(L"two", CurrentName());
    for (const std::wstring& id :
         {std::wstring(L"0102"), std::wstring(48, L'0'), ids[L"one"] + L"00"})
    {
        table->GetItemByID(id);
        EXPECT_EQ(L"two", CurrentName()) << id;
        EXPECT_EQ(0, table->UpdateItem(FakeItem::Make(IID_NULL, id).Get()));
    }
}

TEST_F(TableOnStoreTest, AnItemOfAnotherFolderOpensThroughTheBaseOne)
{
    ids[L"elsewhere"] = HexOf(AddMessage(Contacts().Get(), L"IPM.Contact", L"elsewhere"));
    EXPECT_EQ(L"one", Next());
    table->GetItemByID(ids[L"elsewhere"]);
    EXPECT_EQ(L"elsewhere", CurrentName());
    EXPECT_EQ(L"elsewhere", table->subjectRead);
    EXPECT_THAT(Rest(), ElementsAre(L"two", L"three"));
}
