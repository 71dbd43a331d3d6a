// The contacts of the Windows Address Book.
//
// The engine of Outlook's lists runs on the book's container, whose calls have the same shape as a
// folder's. Entry IDs differ under the two names of the provider: "Outlook Express" shows them as
// they are, "Windows Mail" shows the identity that they carry as text. A picture is a path in the
// book and a file in a folder of its own, see PictureFolder.h.
#pragma once

#include "outlook/contacts/AddressTable.h"

#include <string>
#include <vector>

class CWindowsMailAddressTable : public CAddressTable
{
  public:
    //   isOutlookExpress: which of the two names.
    //   addrBook:         not held; the provider detaches this table where it ends first.
    CWindowsMailAddressTable(IMAPIContainer* container,
                             CMAPIHelper* helper,
                             bool isOutlookExpress,
                             IAddrBook* addrBook);

    std::wstring ToInternalID(const std::wstring& clientID) override;
    std::wstring ToClientID(const std::wstring& internalID) override;

    BOOL OnPropertyRow(ULONG cValues, LPSPropValue lpProps, int callType, BOOL* pContinue) override;

    void Detach() noexcept override;

  protected:
    enum CreateCallType : int
    {
        kCreateEntry = 200, // a template's entry ID; a fixed number, which no walk here has
    };

    // Opens the entry: distribution lists are no contacts.
    bool IsWantedRow(const PropertyView& row) override;
    std::vector<ULONG> GetPropertyNames() override;
    void FillItem(INEntityItem& item, const PropertyView& values) override;
    Microsoft::WRL::ComPtr<IMAPIProp> CreateEntity() override;
    PropertyArray ReadItem(INEntityItem& item, bool isNew) override;
    // Whatever container is named, entries are deleted from the personal one.
    bool DeleteEntities(ENTRYLIST& entries, IMAPIContainer* container) override;
    bool PrepareEntity() override;
    std::wstring ResolveClientID(const std::wstring& rowEntryID,
                                 const SBinary& entryID,
                                 DATE& utcLastModified) override;

  private:
    // The container under its own interface; null where it has none.
    Microsoft::WRL::ComPtr<IABContainer> BookContainer() const;
    std::wstring CurrentText(ULONG tag);
    void AddPicture(INContactItem& contact, PropertyArray& values);
    BOOL TakeAddedEntry(const SBinary& addedID);
    BOOL TakeTemplate(const SBinary& templateID);

    IAddrBook* m_pAddrBook;
    bool m_isOutlookExpress;
};
