// The contacts of Outlook's contact folders.
//
// A contact is read as one array of properties whose order ContactColumns.h tells; its notes and
// its picture come by further calls. Writing is no merge: an update first deletes every property
// that this system knows, with all attachments, and then writes what the item holds.
#pragma once

#include "outlook/contacts/AddressTable.h"
#include "outlook/store/RichEditHelper.h"
#include "service/OutlookFolderInfo.h"

#include <memory>
#include <string>
#include <vector>

class COutlookAddressTable : public CAddressTable
{
  public:
    //   container: the default contact folder, in which contacts are created.
    //   folders:   all contact folders, the default one included. Without any, the container alone
    //              is walked.
    COutlookAddressTable(IMAPIContainer* container,
                         CMAPIHelper* helper,
                         std::vector<OutlookFolderInfo> folders);

    // Adds the contacts of every folder; one whose rows cannot be had is passed over.
    void GetItemIDs() override;

    BOOL OnPropertyRow(ULONG cValues, LPSPropValue lpProps, int callType, BOOL* pContinue) override;

    void Detach() noexcept override;

  protected:
    // Rows of attachments, with kAttachmentColumns. Fixed numbers; no walk here has 210.
    enum PictureCallType : int
    {
        kReadPicture = 200,
        kWritePicture = 210,
    };

    bool IsWantedRow(const PropertyView& row) override;
    std::vector<ULONG> GetPropertyNames() override;
    void FillItem(INEntityItem& item, const PropertyView& values) override;
    PropertyArray ReadItem(INEntityItem& item, bool isNew) override;
    bool PrepareEntity() override;
    // Opens the entry and reads its own ID and time: the rows of a table may show another ID. Empty
    // where that fails.
    std::wstring ResolveClientID(const std::wstring& rowEntryID,
                                 const SBinary& entryID,
                                 DATE& utcLastModified) override;
    // The folder that the entry was found in; the default one where that is not known.
    Microsoft::WRL::ComPtr<IMAPIContainer> GetContainerForID(const std::wstring& id) override;

    // The open message; null where there is none, and where it is none.
    Microsoft::WRL::ComPtr<IMessage> CurrentMessage() const;

  private:
    void ReadPicture();
    void ReadEntryID(INContactItem& contact);
    BOOL TakePicture(const PropertyView& row, BOOL* goesOn);
    BOOL GivePicture(const PropertyView& row, BOOL* goesOn);

    std::vector<OutlookFolderInfo> m_vctContactsFolders;
    std::unique_ptr<CRichEditHelper> m_pRichEdit; // made where RTF is needed for the first time
    bool m_hasLocalDates = false;                 // of the columns asked for last
};
