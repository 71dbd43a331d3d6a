#include "windowscontacts/WindowsContactWriting.h"

#include "outlook/contacts/ContactFields.h"
#include "platform/Bstr.h"
#include "platform/SafeArray.h"
#include "windowscontacts/WindowsContactColumns.h"

#include <utility>

namespace
{
using namespace WindowsContactColumn;

constexpr ULONG kDisplayName = 0x3001001F; // PR_DISPLAY_NAME
constexpr wchar_t kNoName[] = L"Untitled";

struct TextRow
{
    ContactTextGet get;
    ULONG tag;
    bool isName; // a part of the display name
};

constexpr TextRow kTexts[] = {
    {&INContactItem::get_FirstName, 0x3A06001F, true},    // PR_GIVEN_NAME
    {&INContactItem::get_LastName, 0x3A11001F, true},     // PR_SURNAME
    {&INContactItem::get_MiddleName, 0x3A44001F, true},   // PR_MIDDLE_NAME
    {&INContactItem::get_JobTitle, 0x3A17001F, false},    // PR_TITLE
    {&INContactItem::get_CompanyName, 0x3A16001F, false}, // PR_COMPANY_NAME
    {&INContactItem::get_Notes, kWindowsContactNotes, false},
};

constexpr TextRow kWebsite[] = {
    // Kept as it is: reading prefers the personal page, which writing never sets. Pinned by
    // WindowsContactUpdateTest.
    {&INContactItem::get_Website, 0x3A51001F, false}, // PR_BUSINESS_HOME_PAGE
};

constexpr TextRow kSuffixText[] = {
    {&INContactItem::get_Suffix, 0x3A05001F, true}, // PR_GENERATION
};

struct AddressRow
{
    _tagNAddressType type;
    ULONG tags[kAddressFieldCount]; // by kAddressFields
};

// Kept as it is: the post office box of the business address goes to the tag of its state, which is
// then there twice; reading looks for it at 0x3A2B001F. Pinned by WindowsContactWritingTest.
// clang-format off
constexpr AddressRow kAddresses[] = {
    {HomeAddress, {0x3A5A001F, 0x3A5C001F, 0x3A59001F, 0x3A5D001F, 0x3A5B001F, 0x3A5E001F}},
    {BusinessAddress, {0x3A26001F, 0x3A28001F, 0x3A27001F, 0x3A29001F, 0x3A2A001F, 0x3A28001F}},
    {OtherAddress, {0x3A60001F, 0x3A62001F, 0x3A5F001F, 0x3A63001F, 0x3A61001F, 0x3A64001F}},
};
// clang-format on
static_assert(std::size(kAddresses) == kAddressTypes);

struct DateRow
{
    HRESULT (STDMETHODCALLTYPE INContactItem::*get)(DATE*);
    ULONG tag;
};

constexpr DateRow kDates[] = {
    {&INContactItem::get_Birthday, 0x3A420040},    // PR_BIRTHDAY
    {&INContactItem::get_Anniversary, 0x3A410040}, // PR_WEDDING_ANNIVERSARY
};

class Writer
{
  public:
    explicit Writer(INContactItem& contact) : m_contact(contact) {}

    PropertyArray Write()
    {
        AddTexts(kTexts);
        for (ULONG type = 0; type < kPhoneTypes; ++type)
            AddText(WindowsContactTag(kFirstPhone + type),
                    PhoneIn(m_contact, static_cast<_tagNPhoneNumberType>(type)));
        AddEmails();
        AddTexts(kWebsite);
        for (const AddressRow& row : kAddresses)
            AddAddress(row);
        AddDates();
        AddTexts(kSuffixText);
        if (m_name.empty())
        {
            m_name = kNoName;
            AddText(WindowsContactTag(kFirstName), m_name);
        }
        AddText(kDisplayName, m_name);
        return std::move(m_values);
    }

  private:
    void AddText(ULONG tag, const std::wstring& text)
    {
        if (!text.empty())
            m_values.AddText(tag, text);
    }

    void AddTexts(std::span<const TextRow> rows)
    {
        for (const TextRow& row : rows)
        {
            const std::wstring text = TextIn(m_contact, row.get);
            AddText(row.tag, text);
            // Kept as it is: without a blank between the parts. Pinned by
            // WindowsContactCaseTest.GivesTheseValuesInThisOrder.
            if (row.isName)
                m_name += text;
        }
    }

    void AddEmails()
    {
        UniqueSafeArray array;
        if (FAILED(m_contact.get_Emails(array.Put())))
            return;
        const std::vector<std::wstring> addresses = TextsIn(array.Get());
        if (addresses.empty())
            return;
        m_values.AddTexts(WindowsContactTag(kEmails), addresses);
        const std::vector<std::wstring> types(addresses.size(), L"SMTP");
        m_values.AddTexts(WindowsContactTag(kEmailTypes), types);
        m_values.AddLong(WindowsContactTag(kDefaultEmail), 0); // the first
    }

    void AddAddress(const AddressRow& row)
    {
        const auto texts = AddressIn(m_contact, row.type);
        for (std::size_t i = 0; texts && i < kAddressFieldCount; ++i)
            AddText(row.tags[i], TextOf((*texts)[i].Get()));
    }

    void AddDates()
    {
        for (const DateRow& row : kDates)
        {
            DATE date = 0.0;
            FILETIME time = {};
            if (SUCCEEDED((m_contact.*row.get)(&date)) && IsContactDate(date) &&
                ToFileTime(date, time))
                m_values.AddTime(row.tag, time);
        }
    }

    INContactItem& m_contact;
    std::wstring m_name; // its parts, run together
    PropertyArray m_values;
};
} // namespace

PropertyArray WindowsContactProperties(INContactItem& contact)
{
    return Writer(contact).Write();
}
