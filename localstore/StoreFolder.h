// Folders of the embedded store. Changes to a folder's own properties last at once.
#pragma once

#include "localstore/StoreObject.h"

class FolderState : public StoredObject
{
  public:
    // storeWritable: whether the store was opened for writing, for what is opened by the folder.
    FolderState(std::shared_ptr<StoreSession> session,
                std::int64_t id,
                bool writable,
                bool storeWritable)
        : StoredObject(std::move(session), writable), m_id(id), m_storeWritable(storeWritable)
    {
    }

    std::int64_t Id() const noexcept { return m_id; }
    bool IsStoreWritable() const noexcept { return m_storeWritable; }

    PropertyMap Read(const PropertySelection& selection) override;
    HRESULT Change(PropertyChanges changes) override;
    bool IsComputed(std::uint16_t id) const override;
    HRESULT Save(ULONG flags) override;

  private:
    const std::int64_t m_id;
    const bool m_storeWritable;
};

class StoreFolder
    : public StoreObject<FolderState, IMAPIFolder, &IID_IMAPIContainer, &IID_IMAPIFolder>
{
  public:
    explicit StoreFolder(std::shared_ptr<FolderState> state) : StoreObject(std::move(state)) {}

    // Inside StoreSession::Run.
    static HRESULT Open(const std::shared_ptr<StoreSession>& session,
                        std::span<const std::byte> entryId,
                        const IID* iid,
                        bool writable,
                        bool storeWritable,
                        IUnknown** object);

    // The messages as they stand at this call: see StoreTable.h. MAPI_ASSOCIATED gives the
    // associated ones.
    STDMETHODIMP GetContentsTable(ULONG flags, LPMAPITABLE* table) override;
    // The folders directly below.
    STDMETHODIMP GetHierarchyTable(ULONG flags, LPMAPITABLE* table) override;
    // Whatever folder the object is in; an empty ID gives the root.
    STDMETHODIMP OpenEntry(ULONG entryIdBytes,
                           LPENTRYID entryId,
                           LPCIID iid,
                           ULONG flags,
                           ULONG* objectType,
                           LPUNKNOWN* object) override;
    STDMETHODIMP SetSearchCriteria(LPSRestriction restriction,
                                   LPENTRYLIST containers,
                                   ULONG flags) override;
    STDMETHODIMP GetSearchCriteria(ULONG flags,
                                   LPSRestriction* restriction,
                                   LPENTRYLIST* containers,
                                   ULONG* state) override;
    // The message comes to be when it is saved. MAPI_ASSOCIATED makes an associated one.
    STDMETHODIMP CreateMessage(LPCIID iid, ULONG flags, LPMESSAGE* message) override;
    STDMETHODIMP CopyMessages(LPENTRYLIST entries,
                              LPCIID iid,
                              LPVOID target,
                              ULONG uiParam,
                              LPMAPIPROGRESS progress,
                              ULONG flags) override;
    // Deletes the messages of this folder that the list names, in one transaction.
    // Returns: S_OK; MAPI_W_PARTIAL_COMPLETION where some, or all, are none of this folder's
    //          messages.
    STDMETHODIMP DeleteMessages(LPENTRYLIST entries,
                                ULONG uiParam,
                                LPMAPIPROGRESS progress,
                                ULONG flags) override;
    // MAPI_E_COLLISION where a folder of that name is there, unless OPEN_IF_EXISTS opens it.
    STDMETHODIMP CreateFolder(ULONG type,
                              LPTSTR name,
                              LPTSTR comment,
                              LPCIID iid,
                              ULONG flags,
                              LPMAPIFOLDER* folder) override;
    STDMETHODIMP CopyFolder(ULONG entryIdBytes,
                            LPENTRYID entryId,
                            LPCIID iid,
                            LPVOID target,
                            LPTSTR name,
                            ULONG uiParam,
                            LPMAPIPROGRESS progress,
                            ULONG flags) override;
    // Deletes a folder directly below; DEL_MESSAGES and DEL_FOLDERS take along what is in it.
    STDMETHODIMP DeleteFolder(ULONG entryIdBytes,
                              LPENTRYID entryId,
                              ULONG uiParam,
                              LPMAPIPROGRESS progress,
                              ULONG flags) override;
    STDMETHODIMP SetReadFlags(LPENTRYLIST entries,
                              ULONG uiParam,
                              LPMAPIPROGRESS progress,
                              ULONG flags) override;
    STDMETHODIMP GetMessageStatus(ULONG entryIdBytes,
                                  LPENTRYID entryId,
                                  ULONG flags,
                                  ULONG* status) override;
    STDMETHODIMP SetMessageStatus(
        ULONG entryIdBytes, LPENTRYID entryId, ULONG status, ULONG mask, ULONG* oldStatus) override;
    STDMETHODIMP SaveContentsSort(LPSSortOrderSet order, ULONG flags) override;
    STDMETHODIMP EmptyFolder(ULONG uiParam, LPMAPIPROGRESS progress, ULONG flags) override;
};
