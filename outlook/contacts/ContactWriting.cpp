#include "outlook/contacts/ContactWriting.h"

#include "outlook/contacts/ContactColumns.h"
#include "outlook/contacts/ContactEmails.h"
#include "outlook/contacts/ContactNameTags.h"
#include "outlook/contacts/ContactPicture.h"
#include "outlook/store/NamedTags.h"
#include "outlook/store/StoreObjects.h"
#include "platform/Bstr.h"
#include "platform/SafeArray.h"
#include "service/ServiceManager.h"

#include <iterator>
#include <span>
#include <string>
#include <utility>
#include <vector>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr ULONG kMessageClass = 0x001A001F; // PR_MESSAGE_CLASS
constexpr ULONG kBody = 0x1000001F;         // PR_BODY
constexpr ULONG kDisplayName = 0x3001001F;  // PR_DISPLAY_NAME
constexpr ULONG kSubject = 0x0037001F;      // PR_SUBJECT
constexpr ULONG kIconIndex = 0x10800003;    // PR_ICON_INDEX
constexpr LONG kContactIcon = 0x200;

constexpr LONG kStampNames[] = {
    0x8581, // PidLidInternetAccountStamp
    0x8580, // PidLidInternetAccountName
};

// How a text is written.
enum class Rule
{
    IfAny, // not where it is empty
    Always,
};

struct TextRow
{
    ContactTextGet get;
    ULONG tag;
    Rule rule;
};

constexpr TextRow kTexts[] = {
    {&INContactItem::get_FirstName, 0x3A06001F, Rule::IfAny},    // PR_GIVEN_NAME
    {&INContactItem::get_MiddleName, 0x3A44001F, Rule::IfAny},   // PR_MIDDLE_NAME
    {&INContactItem::get_LastName, 0x3A11001F, Rule::IfAny},     // PR_SURNAME
    {&INContactItem::get_JobTitle, 0x3A17001F, Rule::Always},    // PR_TITLE
    {&INContactItem::get_CompanyName, 0x3A16001F, Rule::Always}, // PR_COMPANY_NAME
    {&INContactItem::get_Suffix, 0x3A05001F, Rule::IfAny},       // PR_GENERATION
    {&INContactItem::get_Notes, kBody, Rule::IfAny},
};

constexpr TextRow kWebsite[] = {
    {&INContactItem::get_Website, 0x3A51001F, Rule::IfAny}, // PR_BUSINESS_HOME_PAGE
};

struct DateRow
{
    HRESULT (STDMETHODCALLTYPE INContactItem::*get)(DATE*);
    ULONG utcTag;
    LONG localName;
};

constexpr DateRow kDates[] = {
    {&INContactItem::get_Birthday, 0x3A420040, 0x80DE},    // PR_BIRTHDAY
    {&INContactItem::get_Anniversary, 0x3A410040, 0x80DF}, // PR_WEDDING_ANNIVERSARY
};

class Writer
{
  public:
    Writer(INContactItem& contact, const ContactSettings& settings, const ContactTarget& target)
        : m_contact(contact), m_zoneBiasDays(settings.zoneBiasDays), m_target(target),
          m_tags(target.container, target.proxy)
    {
        const ContactNames names = {Text(&INContactItem::get_FirstName),
                                    Text(&INContactItem::get_MiddleName),
                                    Text(&INContactItem::get_LastName),
                                    Text(&INContactItem::get_Suffix),
                                    Text(&INContactItem::get_CompanyName)};
        m_displayName = DisplayNameOf(names, settings.names);
        m_fileAs = FileAsOf(names, settings.names);
    }

    PropertyArray Write(bool isNew)
    {
        if (isNew)
            m_values.AddText(kMessageClass, L"IPM.Contact");
        AddTexts(kTexts);
        AddNamedText(0x8062, Text(&INContactItem::get_InstantMessagingAddress));
        AddPhones();
        AddEmails();
        AddTexts(kWebsite);
        AddAddresses();
        AddDates();
        m_values.AddText(kDisplayName, m_displayName);
        m_values.AddText(kSubject, m_displayName);
        AddFileAs();
        AddStamp();
        AddPicture();
        m_values.AddLong(kIconIndex, kContactIcon);
        AddCategories();
        return std::move(m_values);
    }

  private:
    std::wstring Text(ContactTextGet get) { return TextIn(m_contact, get); }

    void AddTexts(std::span<const TextRow> rows)
    {
        for (const TextRow& row : rows)
            AddText(row.tag, Text(row.get), row.rule);
    }

    void AddText(ULONG tag, const std::wstring& text, Rule rule = Rule::IfAny)
    {
        if (rule == Rule::Always || !text.empty())
            m_values.AddText(tag, text);
    }

    void AddNamedText(LONG name, const std::wstring& text, Rule rule = Rule::IfAny)
    {
        if (const ULONG tag = m_tags.Of(name, PT_UNICODE))
            AddText(tag, text, rule);
    }

    void AddPhones()
    {
        for (ULONG type = 0; type < kPhoneTypes; ++type)
            AddText(FixedContactTag(ContactColumn::kFirstPhone + type),
                    PhoneIn(m_contact, static_cast<_tagNPhoneNumberType>(type)));
    }

    void AddEmails()
    {
        UniqueSafeArray array;
        if (FAILED(m_contact.get_Emails(array.Put())))
            return;
        AddContactEmails(m_values, TextsIn(array.Get()), m_displayName, m_tags);
    }

    void AddAddresses()
    {
        AddAddress(HomeAddress, [] { return FixedAddressTags(ContactColumn::kHomeAddress); });
        AddAddress(BusinessAddress, [this] {
            return FindBusinessAddressTags(m_target.message, m_target.proxy)
                .value_or(AddressTags{});
        });
        AddAddress(OtherAddress, [] { return FixedAddressTags(ContactColumn::kOtherAddress); });
    }

    static AddressTags FixedAddressTags(ULONG firstColumn)
    {
        AddressTags tags;
        for (ULONG i = 0; i < tags.size(); ++i)
            tags[i] = FixedContactTag(firstColumn + i);
        return tags;
    }

    // findTags gives zeros where there are none. An empty text is written, a null one is not.
    template <typename FindTags> void AddAddress(_tagNAddressType type, FindTags findTags)
    {
        const auto texts = AddressIn(m_contact, type);
        if (!texts)
            return;
        const AddressTags tags = findTags();
        for (std::size_t i = 0; i < kAddressFieldCount; ++i)
            if ((*texts)[i] && IsNamedTag(tags[i]))
                m_values.AddText(tags[i], TextOf((*texts)[i].Get()));
    }

    void AddDates()
    {
        for (const DateRow& row : kDates)
        {
            DATE local = 0.0;
            if (FAILED((m_contact.*row.get)(&local)) || !IsContactDate(local))
                continue;
            AddTime(row.utcTag, local + m_zoneBiasDays);
            AddTime(m_tags.Of(row.localName, PT_SYSTIME), local);
        }
    }

    void AddTime(ULONG tag, DATE date)
    {
        FILETIME time = {};
        if (tag && ToFileTime(date, time))
            m_values.AddTime(tag, time);
    }

    void AddFileAs()
    {
        AddNamedText(0x8005, m_fileAs.text, Rule::Always);
        if (const ULONG tag = m_tags.Of(0x8006, PT_LONG))
            m_values.AddLong(tag, m_fileAs.code);
    }

    // Who wrote it: read anew for each contact, by way of the manager.
    void AddStamp()
    {
        const auto user = GetServiceManager()->GetUserProperties();
        if (!user)
            return;
        const auto tags =
            TryFindNamedTags(m_target.container, m_target.proxy, kCommonNames, kStampNames);
        const std::wstring* const texts[] = {&user->emailAddress, &user->smtpAddress};
        for (std::size_t i = 0; tags && i < std::size(texts); ++i)
            if (IsNamedTag((*tags)[i]))
                AddText(WithType((*tags)[i], PT_UNICODE), *texts[i]);
    }

    // Kept as it is: a file that is no more leaves an attachment without data, and the contact is
    // marked as one with a picture all the same. Pinned by ContactWritingTest.
    void AddPicture()
    {
        const ULONG tag =
            FindNamedTag(m_target.container, m_target.proxy, kAddressNames, kHasPictureName);
        const std::wstring path = Text(&INContactItem::get_Picture);
        if (!IsNamedTag(tag) || path.empty())
            return;
        const auto message = QueryStore<IMessage>(m_target.message, IID_IMessage);
        ComPtr<IAttach> attachment;
        ULONG number = 0;
        if (!message ||
            FAILED(message->CreateAttach(nullptr, 0, &number, attachment.GetAddressOf())) ||
            !attachment)
            return;
        CreatePicture(path, attachment.Get());
        m_values.AddBool(WithType(tag, PT_BOOLEAN), true);
    }

    void AddCategories()
    {
        UniqueSafeArray array;
        if (FAILED(m_contact.get_CategoryIDs(array.Put())))
            return;
        const std::vector<std::wstring> names = TextsIn(array.Get());
        if (names.empty())
            return;
        const ULONG tag = FindKeywordsTag(m_target.container, m_target.proxy);
        if (IsNamedTag(tag))
            m_values.AddTexts(tag, names);
        m_contact.put_CategoryIDs(array.Get());
    }

    INContactItem& m_contact;
    double m_zoneBiasDays;
    const ContactTarget& m_target;
    ContactNameTags m_tags;
    std::wstring m_displayName;
    FileAs m_fileAs;
    PropertyArray m_values;
};
} // namespace

PropertyArray ContactProperties(INContactItem& contact,
                                bool isNew,
                                const ContactSettings& settings,
                                const ContactTarget& target)
{
    return Writer(contact, settings, target).Write(isNew);
}
