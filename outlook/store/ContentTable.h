// The engine behind every list of items of a store: Outlook's contacts, groups and appointments,
// and the contacts of the Windows Address Book. Loading a table brings a light list of IDs into
// memory; an item's properties are fetched when the client asks for that item, and its store
// object is released again at the end of the operation.
//
// What is particular to a kind of item stands in the hooks. No operation reports more than its
// result: failing calls go to the log. Throws std::bad_alloc only.
// Thread: the apartment thread.
#pragma once

#include "outlook/store/EntryList.h"
#include "outlook/store/LiveObjects.h"
#include "outlook/store/MAPIHelper.h"
#include "outlook/store/PropertyArray.h"
#include "outlook/store/PropertyView.h"
#include "platform/WindowsHeaders.h"
#include "service/Callback.h"
#include "service/Enumerator.h"
#include "service/TableUse.h"

#include "PimStoreBridge.h"

#include <string>
#include <string_view>
#include <vector>

class CContentTable : public IEnumerator, public ICallback, public LiveObject
{
  public:
    //   container: the base folder, or a container of the address book; held by one reference.
    //   helper:    not owned; detaches this table where it ends first.
    // Without one of them the table is dead, as after Detach. Nothing is read before GetItemIDs.
    CContentTable(IMAPIContainer* container, CMAPIHelper* helper);
    ~CContentTable() override;

    // Adds the rows of the container to the list.
    // Kept as it is: the list is not cleared first and the cursor stays, so that a second load
    // shows every row twice. Pinned by ContentTableTest.
    void GetItemIDs() override;
    // The cursor has no place before the first ResetItem, which counts as the end.
    void ResetItem() override;
    // Kept as it is: an item that cannot be opened does not stop a walk. The cursor advances and
    // the item before stays current. Pinned by ContentTableTest.
    void GetNextItem() override;
    // Always opens through the base container, which resolves the IDs of other folders too. Where
    // the cursor stands on another entry it moves to the first one with this ID.
    void GetItemByID(const std::wstring& id) override;
    void GetCurrentItem(INEntityItem** item) override;
    // The item becomes current and the cursor goes to its entry; to the end where the store gives
    // it an ID that is not in the list.
    BOOL UpdateItem(INEntityItem* item) override;
    // The item becomes current and the cursor goes to its entry, which is new at the end of the
    // list, without folder key and time. folderID receives the key of the folder under load, which
    // is empty unless a derived table has set it.
    std::wstring AddItem(INEntityItem* item, std::wstring& folderID) override;
    // Kept as it is: the entry stays in the list. Pinned by ContentTableTest.
    BOOL DeleteItem(const std::wstring& id) override;
    BOOL GetItemList(std::list<ItemEntry>& entries) override;

    // The walkers' results, by CallType.
    BOOL OnPropertyRow(ULONG cValues, LPSPropValue lpProps, int callType, BOOL* pContinue) override;

    // Drops the current item too. Not while an operation of this table is under way; a stop of the
    // service waits for the end of the outermost call.
    void Detach() noexcept override;

  protected:
    // Which walk a result belongs to; derived tables add numbers of their own.
    enum CallType : int
    {
        kListRow = 0,         // PR_ENTRYID, PR_MESSAGE_CLASS_W, PR_LAST_MODIFICATION_TIME
        kItemProperties = 10, // what GetPropertyNames told
        kAfterAdd = 20,       // kEntryTags
        kAfterUpdate = 30,    // the same
    };

    // An entry's own ID and time.
    static constexpr ULONG kEntryTags[] = {PR_ENTRYID, PR_LAST_MODIFICATION_TIME};

    // For one operation: while the table is in use, whatever would reload it, write, or open
    // another item fails.
    class Use : public TableUse
    {
      public:
        explicit Use(CContentTable& table) noexcept : TableUse(table.m_uses) {}
    };

    // --- Hooks. Those that reach the store run with a helper, m_pCurrentEntity as stated.

    // Whether a kListRow belongs into this table.
    virtual bool IsWantedRow(const PropertyView& row) = 0;
    // The tags to read for one item; m_pCurrentEntity is open. None: nothing is read.
    virtual std::vector<ULONG> GetPropertyNames() = 0;
    // Puts the values, by the positions of GetPropertyNames, into the item; m_pCurrentEntity is
    // open.
    virtual void FillItem(INEntityItem& item, const PropertyView& values) = 0;
    // A new item object; null where there can't be one.
    virtual Microsoft::WRL::ComPtr<INEntityItem> CreateItem() = 0;
    // A new object in the store, unsaved; null where there can't be one. By default a message in
    // the base folder.
    virtual Microsoft::WRL::ComPtr<IMAPIProp> CreateEntity();
    // The item's values to write; m_pCurrentEntity is open. None: the write fails.
    virtual PropertyArray ReadItem(INEntityItem& item, bool isNew) = 0;
    // Deletes the listed objects from the container, or from the base one for null; by default
    // messages.
    virtual bool DeleteEntities(ENTRYLIST& entries, IMAPIContainer* container);
    // Whether the item is of a kind that this table writes. Asked before an update changes
    // anything.
    virtual bool IsWritable(INEntityItem&) { return true; }
    // Makes m_pCurrentEntity ready for an update. The update goes on whatever this returns.
    virtual bool PrepareEntity() { return true; }
    // The ID under which clients know an entry; by default its own. utcLastModified comes as 0.0
    // and stays so where this does not learn the time.
    virtual std::wstring ResolveClientID(const std::wstring& rowEntryID,
                                         const SBinary& entryID,
                                         DATE& utcLastModified);
    // The container that an item is updated in or deleted from; by default the base one.
    virtual Microsoft::WRL::ComPtr<IMAPIContainer> GetContainerForID(const std::wstring& id);

    // --- For derived tables.

    // Whether a kListRow has an ID and exactly that message class.
    static bool HasClass(const PropertyView& row, std::wstring_view messageClass);
    // Adds the rows of a folder to the list, under that key. Wants a helper.
    void LoadFolder(IMAPIContainer& folder, const std::wstring& folderKey);
    // What follows on AddItem: the current item learns its ID and time, and a new entry at the end
    // of the list is under the cursor.
    void AppendAdded(const std::wstring& rowEntryID,
                     const std::wstring& clientEntryID,
                     DATE utcLastModified);
    // A new item of a class of the contract; null on failure.
    static Microsoft::WRL::ComPtr<INEntityItem> NewItem(REFCLSID classID);

    Microsoft::WRL::ComPtr<IMAPIContainer> m_pContainer;
    EntryList m_entries;
    // Open during one operation, null between them.
    Microsoft::WRL::ComPtr<IMAPIProp> m_pCurrentEntity;
    std::wstring m_folderKey; // of the folder under load; else empty
    EntryList::Position m_cursor = m_entries.End();
    Microsoft::WRL::ComPtr<INEntityItem> m_pCurrentItem;
    CMAPIHelper* m_pHelper;

  private:
    BOOL TakeListRow(const PropertyView& row);
    BOOL TakeAdded(const PropertyView& values);
    BOOL TakeUpdated(const PropertyView& values);
    void RepairCursor(const std::wstring& rowEntryID);
    HRESULT SetValues(IMAPIProp& entity, PropertyArray& values);

    int m_uses = 0;
};
