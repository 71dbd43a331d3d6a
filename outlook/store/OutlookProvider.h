// The back end over the default store of Outlook's default profile, through Extended MAPI. Made
// empty; Logon brings it up. All its walks over tables of the store come back to its own
// OnPropertyRow. Used on the apartment thread only.
#pragma once

#include "outlook/store/MAPIHelper.h"
#include "outlook/store/OutlookLibrary.h"
#include "outlook/store/PropertyView.h"
#include "platform/WindowsHeaders.h"
#include "service/Callback.h"
#include "service/Provider.h"

#include <memory>
#include <set>
#include <string>
#include <vector>

class COutlookProvider : public IProvider, public ICallback
{
  public:
    COutlookProvider() = default;
    // Detaches what clients still hold, releases the folders and all that was opened, the library
    // last. There is no logoff.
    ~COutlookProvider() override;
    COutlookProvider(const COutlookProvider&) = delete;
    COutlookProvider& operator=(const COutlookProvider&) = delete;

    // Finds the library, logs on and opens the store with its folders. Called once. Creates the
    // calendar's category message where there is none, so that the store changes by it.
    // Returns: S_OK; MAPILogonEx's code where that gave no session;
    //          else E_FAIL.
    // The provider is of no use after a failure.
    // Throws std::bad_alloc; what was opened until then stays until the end, and every operation
    // copes with the rest.
    HRESULT Logon();
    // The same with a library that was found.
    HRESULT Logon(const OutlookLibrary& library);

    // Never null; without an identity its texts are empty.
    std::unique_ptr<UserIdentity> GetUserProperties() override;
    // Never null; their tables are loaded and stand before their first item.
    std::unique_ptr<CAddressBookHandle> GetAddressBook() override;
    std::unique_ptr<CCalendarHandle> GetCalendar() override;
    // A table that is not loaded; null for a type of no table.
    std::unique_ptr<IEnumerator> GetEnumerator(int type) override;
    // True always: a copy of what the walk found, in its order.
    bool GetContactFolders(std::vector<OutlookFolderInfo>& folders) override;
    bool GetCalendarFolders(std::vector<OutlookFolderInfo>& folders) override;

    BOOL OnPropertyRow(ULONG cValues, LPSPropValue lpProps, int callType, BOOL* pContinue) override;

  private:
    using Folders = std::vector<OutlookFolderInfo>;
    struct FolderKind;
    struct RowHandler;
    struct TableKind;
    static const FolderKind kFolderKinds[];
    static const RowHandler kRowHandlers[];
    static const TableKind kTableKinds[];

    bool GetMessageStore();
    bool GetDefaultFolders();
    bool GetCategoryMessage();
    void WalkFolders();
    void GetUserPropertyTable();

    std::unique_ptr<IEnumerator> LoadTable(int type);
    void OpenDefaultFolder(ULONG tag, Microsoft::WRL::ComPtr<IMAPIFolder>& folder);
    bool FindFoldersBelowSubtree();
    bool CreateCategoryMessage();
    void WalkBelow(IMAPIFolder* folder, const std::wstring& rowID);

    // Null where there is none; the result of the last call in *result, where one was made.
    Microsoft::WRL::ComPtr<IMAPITable> OpenSubtreeTable();
    Microsoft::WRL::ComPtr<IMAPIFolder> OpenFolder(const SBinary& entry, HRESULT& result);
    // Upper-case hex; empty where the entry ID cannot be read.
    std::wstring EntryIdHex(IMAPIProp* object);

    // What OnPropertyRow does with a row of each walk.
    BOOL OnStoreRow(const PropertyView& row, BOOL* goesOn);
    BOOL OnTopFolderRow(const PropertyView& row, BOOL* goesOn);
    BOOL OnAssociatedRow(const PropertyView& row, BOOL* goesOn);
    BOOL OnFolderRow(const PropertyView& row, BOOL* goesOn);

    int m_version = 0; // of Outlook, see OutlookLibrary
    Microsoft::WRL::ComPtr<IMAPISession> m_pMAPISession;
    Microsoft::WRL::ComPtr<IMAPIProp> m_pIdentity;
    Microsoft::WRL::ComPtr<IMsgStore> m_pMsgStore;
    Microsoft::WRL::ComPtr<IMAPIFolder> m_pContactFolder;
    Microsoft::WRL::ComPtr<IMAPIFolder> m_pCalendarFolder;
    Microsoft::WRL::ComPtr<IMAPIFolder> m_pWastebasket;
    Microsoft::WRL::ComPtr<IMessage> m_pCategoryMessage;
    std::unique_ptr<CMAPIHelper> m_pHelper;
    std::wstring m_contactFolderID; // upper-case hex, like the next two
    std::wstring m_calendarFolderID;
    std::wstring m_wastebasketID;
    Folders m_contactFolders;
    Folders m_calendarFolders;
    // Of the walk under way: the folders it went into, so that a store whose folders hold each
    // other ends it, and how deep it is.
    std::set<std::wstring> m_walked;
    int m_depth = 0;
};
