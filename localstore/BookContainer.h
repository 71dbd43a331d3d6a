// A container of the embedded address book: the root or the personal one. Its properties do not
// change; the entries of the personal one are made and deleted through it however it was opened.
#pragma once

#include "localstore/BookList.h"
#include "localstore/BookSession.h"

class BookContainerState : public FixedObject
{
  public:
    // mayWrite: whether entries may be made and deleted.
    BookContainerState(std::shared_ptr<BookSession> session,
                       std::int64_t id,
                       BookRole role,
                       bool mayWrite)
        : FixedObject(session), m_session(std::move(session)), m_id(id), m_role(role),
          m_mayWrite(mayWrite)
    {
    }

    const std::shared_ptr<BookSession>& SharedBook() const noexcept { return m_session; }
    std::int64_t Id() const noexcept { return m_id; }
    bool MayWrite() const noexcept { return m_mayWrite; }
    BookRole Role() const noexcept { return m_role; }

    PropertyMap Read(const PropertySelection& selection) override;
    bool IsComputed(std::uint16_t id) const override;

  private:
    const std::shared_ptr<BookSession> m_session;
    const std::int64_t m_id;
    const BookRole m_role;
    const bool m_mayWrite;
};

class BookContainer : public BookList<BookContainerState, IABContainer, &IID_IABContainer>
{
  public:
    explicit BookContainer(std::shared_ptr<BookContainerState> state) : BookList(std::move(state))
    {
    }

    // Inside StoreSession::Run. MAPI_E_NOT_FOUND for the ID of something else.
    static HRESULT Open(const std::shared_ptr<BookSession>& session,
                        std::span<const std::byte> entryId,
                        const IID* iid,
                        bool mayWrite,
                        ULONG& objectType,
                        IUnknown** object);

    // The entries, as they stand at this call: see StoreTable.h.
    STDMETHODIMP GetContentsTable(ULONG flags, LPMAPITABLE* table) override;
    // A new entry of the template's type, unsaved. Entries are never merged, whatever the flags say
    // of duplicates.
    STDMETHODIMP CreateEntry(ULONG templateBytes,
                             LPENTRYID templateId,
                             ULONG flags,
                             LPMAPIPROP* entry) override;
    // Deletes the entries of this container that the list names, in one transaction.
    // Returns: S_OK; MAPI_W_PARTIAL_COMPLETION where some, or all, are none of its entries.
    STDMETHODIMP DeleteEntries(LPENTRYLIST entries, ULONG flags) override;
};
