#include "localstore/KnownProperties.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace
{

struct TagName
{
    std::string_view name;
    ULONG tag;
};

struct TypeName
{
    std::string_view name;
    std::uint16_t type;
};

struct SetName
{
    std::string_view name;
    GUID set;
};

// clang-format off
constexpr TagName kTags[] = {
    {"PR_ACCOUNT_W", 0x3A00001F},
    {"PR_ADDRTYPE_W", 0x3002001F},
    {"PR_ASSISTANT_TELEPHONE_NUMBER_W", 0x3A2E001F},
    {"PR_ATTACHMENT_CONTACTPHOTO", 0x7FFF000B},
    {"PR_ATTACHMENT_FLAGS", 0x7FFD0003},
    {"PR_ATTACHMENT_HIDDEN", 0x7FFE000B},
    {"PR_ATTACHMENT_LINKID", 0x7FFA0003},
    {"PR_ATTACH_DATA_BIN", 0x37010102},
    {"PR_ATTACH_ENCODING", 0x37020102},
    {"PR_ATTACH_EXTENSION_W", 0x3703001F},
    {"PR_ATTACH_FILENAME_W", 0x3704001F},
    {"PR_ATTACH_FLAGS", 0x37140003},
    {"PR_ATTACH_LONG_FILENAME_W", 0x3707001F},
    {"PR_ATTACH_METHOD", 0x37050003},
    {"PR_ATTACH_MIME_TAG_W", 0x370E001F},
    {"PR_ATTACH_SIZE", 0x0E200003},
    {"PR_BIRTHDAY", 0x3A420040},
    {"PR_BODY_W", 0x1000001F},
    {"PR_BUSINESS2_TELEPHONE_NUMBER_W", 0x3A1B001F},
    {"PR_BUSINESS_FAX_NUMBER_W", 0x3A24001F},
    {"PR_BUSINESS_HOME_PAGE_W", 0x3A51001F},
    {"PR_BUSINESS_TELEPHONE_NUMBER_W", 0x3A08001F},
    {"PR_CALLBACK_TELEPHONE_NUMBER_W", 0x3A02001F},
    {"PR_CAR_TELEPHONE_NUMBER_W", 0x3A1E001F},
    {"PR_CLIENT_SUBMIT_TIME", 0x00390040},
    {"PR_COMMENT_W", 0x3004001F},
    {"PR_COMPANY_MAIN_PHONE_NUMBER_W", 0x3A57001F},
    {"PR_COMPANY_NAME_W", 0x3A16001F},
    {"PR_CONTAINER_CLASS_W", 0x3613001F},
    {"PR_CONVERSATION_TOPIC_W", 0x0070001F},
    {"PR_COUNTRY_W", 0x3A26001F},
    {"PR_DELETE_AFTER_SUBMIT", 0x0E01000B},
    {"PR_DEPARTMENT_NAME_W", 0x3A18001F},
    {"PR_DISPLAY_NAME_PREFIX_W", 0x3A45001F},
    {"PR_DISPLAY_NAME_W", 0x3001001F},
    {"PR_EMAIL_ADDRESS_W", 0x3003001F},
    {"PR_GENERATION_W", 0x3A05001F},
    {"PR_GIVEN_NAME_W", 0x3A06001F},
    {"PR_HOBBIES_W", 0x3A43001F},
    {"PR_HOME2_TELEPHONE_NUMBER_W", 0x3A2F001F},
    {"PR_HOME_ADDRESS_CITY_W", 0x3A59001F},
    {"PR_HOME_ADDRESS_COUNTRY_W", 0x3A5A001F},
    {"PR_HOME_ADDRESS_POSTAL_CODE_W", 0x3A5B001F},
    {"PR_HOME_ADDRESS_POST_OFFICE_BOX_W", 0x3A5E001F},
    {"PR_HOME_ADDRESS_STATE_OR_PROVINCE_W", 0x3A5C001F},
    {"PR_HOME_ADDRESS_STREET_W", 0x3A5D001F},
    {"PR_HOME_FAX_NUMBER_W", 0x3A25001F},
    {"PR_HOME_TELEPHONE_NUMBER_W", 0x3A09001F},
    {"PR_ICON_INDEX", 0x10800003},
    {"PR_IMPORTANCE", 0x00170003},
    {"PR_INTERNET_CPID", 0x3FDE0003},
    {"PR_INTERNET_MESSAGE_ID_W", 0x1035001F},
    {"PR_IPM_APPOINTMENT_ENTRYID", 0x36D00102},
    {"PR_IPM_CONTACT_ENTRYID", 0x36D10102},
    {"PR_IPM_DRAFTS_ENTRYID", 0x36D70102},
    {"PR_IPM_JOURNAL_ENTRYID", 0x36D20102},
    {"PR_IPM_NOTE_ENTRYID", 0x36D30102},
    {"PR_IPM_OUTBOX_ENTRYID", 0x35E20102},
    {"PR_IPM_SENTMAIL_ENTRYID", 0x35E40102},
    {"PR_IPM_SUBTREE_ENTRYID", 0x35E00102},
    {"PR_IPM_TASK_ENTRYID", 0x36D40102},
    {"PR_IPM_WASTEBASKET_ENTRYID", 0x35E30102},
    {"PR_LOCALITY_W", 0x3A27001F},
    {"PR_MESSAGE_CLASS_W", 0x001A001F},
    {"PR_MESSAGE_DELIVERY_TIME", 0x0E060040},
    {"PR_MESSAGE_FLAGS", 0x0E070003},
    {"PR_MIDDLE_NAME_W", 0x3A44001F},
    {"PR_MOBILE_TELEPHONE_NUMBER_W", 0x3A1C001F},
    {"PR_NICKNAME_W", 0x3A4F001F},
    {"PR_NORMALIZED_SUBJECT_W", 0x0E1D001F},
    {"PR_OFFICE_LOCATION_W", 0x3A19001F},
    {"PR_OTHER_ADDRESS_CITY_W", 0x3A5F001F},
    {"PR_OTHER_ADDRESS_COUNTRY_W", 0x3A60001F},
    {"PR_OTHER_ADDRESS_POSTAL_CODE_W", 0x3A61001F},
    {"PR_OTHER_ADDRESS_POST_OFFICE_BOX_W", 0x3A64001F},
    {"PR_OTHER_ADDRESS_STATE_OR_PROVINCE_W", 0x3A62001F},
    {"PR_OTHER_ADDRESS_STREET_W", 0x3A63001F},
    {"PR_OTHER_TELEPHONE_NUMBER_W", 0x3A1F001F},
    {"PR_PAGER_TELEPHONE_NUMBER_W", 0x3A21001F},
    {"PR_PERSONAL_HOME_PAGE_W", 0x3A50001F},
    {"PR_POSTAL_CODE_W", 0x3A2A001F},
    {"PR_POST_OFFICE_BOX_W", 0x3A2B001F},
    {"PR_PRIORITY", 0x00260003},
    {"PR_RADIO_TELEPHONE_NUMBER_W", 0x3A1D001F},
    {"PR_RENDERING_POSITION", 0x370B0003},
    {"PR_RESPONSE_REQUESTED", 0x0063000B},
    {"PR_RTF_COMPRESSED", 0x10090102},
    {"PR_RTF_IN_SYNC", 0x0E1F000B},
    {"PR_SENDER_ADDRTYPE_W", 0x0C1E001F},
    {"PR_SENDER_EMAIL_ADDRESS_W", 0x0C1F001F},
    {"PR_SENDER_NAME_W", 0x0C1A001F},
    {"PR_SENSITIVITY", 0x00360003},
    {"PR_SENT_REPRESENTING_NAME_W", 0x0042001F},
    {"PR_SMTP_ADDRESS_W", 0x39FE001F},
    {"PR_SPOUSE_NAME_W", 0x3A48001F},
    {"PR_STATE_OR_PROVINCE_W", 0x3A28001F},
    {"PR_STREET_ADDRESS_W", 0x3A29001F},
    {"PR_SUBJECT_PREFIX_W", 0x003D001F},
    {"PR_SUBJECT_W", 0x0037001F},
    {"PR_SURNAME_W", 0x3A11001F},
    {"PR_TITLE_W", 0x3A17001F},
    {"PR_TRANSMITABLE_DISPLAY_NAME_W", 0x3A20001F},
    {"PR_WEDDING_ANNIVERSARY", 0x3A410040},
};

// The types that can be stored; each multi-valued one is the single one with MV_FLAG.
constexpr TypeName kTypes[] = {
    {"PT_I2",          PT_I2},
    {"PT_LONG",        PT_LONG},
    {"PT_R4",          PT_R4},
    {"PT_DOUBLE",      PT_DOUBLE},
    {"PT_CURRENCY",    PT_CURRENCY},
    {"PT_APPTIME",     PT_APPTIME},
    {"PT_BOOLEAN",     PT_BOOLEAN},
    {"PT_I8",          PT_I8},
    {"PT_STRING8",     PT_STRING8},
    {"PT_UNICODE",     PT_UNICODE},
    {"PT_SYSTIME",     PT_SYSTIME},
    {"PT_CLSID",       PT_CLSID},
    {"PT_BINARY",      PT_BINARY},
    {"PT_MV_I2",       PT_MV_I2},
    {"PT_MV_LONG",     PT_MV_LONG},
    {"PT_MV_R4",       PT_MV_R4},
    {"PT_MV_DOUBLE",   PT_MV_DOUBLE},
    {"PT_MV_CURRENCY", PT_MV_CURRENCY},
    {"PT_MV_APPTIME",  PT_MV_APPTIME},
    {"PT_MV_BOOLEAN",  MV_FLAG | PT_BOOLEAN},
    {"PT_MV_I8",       PT_MV_I8},
    {"PT_MV_STRING8",  PT_MV_STRING8},
    {"PT_MV_UNICODE",  PT_MV_UNICODE},
    {"PT_MV_SYSTIME",  PT_MV_SYSTIME},
    {"PT_MV_CLSID",    PT_MV_CLSID},
    {"PT_MV_BINARY",   PT_MV_BINARY},
};

constexpr SetName kSets[] = {
    {"PS_PUBLIC_STRINGS",  {0x00020329, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}},
    {"PSETID_Appointment", {0x00062002, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}},
    {"PSETID_Address",     {0x00062004, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}},
    {"PSETID_Common",      {0x00062008, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}},
};
// clang-format on

// The same rows by their tags.
constexpr auto kByTag = [] {
    auto rows = std::to_array(kTags);
    std::sort(rows.begin(), rows.end(), [](const TagName& left, const TagName& right) {
        return left.tag < right.tag;
    });
    return rows;
}();

static_assert(std::is_sorted(std::begin(kTags),
                             std::end(kTags),
                             [](const TagName& left, const TagName& right) {
                                 return left.name < right.name;
                             }),
              "names are searched by halves");

} // namespace

std::string_view NameOfTag(ULONG tag)
{
    const auto* const found =
        std::lower_bound(kByTag.begin(), kByTag.end(), tag, [](const TagName& row, ULONG wanted) {
            return row.tag < wanted;
        });
    return found != kByTag.end() && found->tag == tag ? found->name : std::string_view();
}

std::optional<ULONG> TagOfName(std::string_view name)
{
    const auto* const found = std::lower_bound(
        std::begin(kTags), std::end(kTags), name, [](const TagName& row, std::string_view wanted) {
            return row.name < wanted;
        });
    if (found == std::end(kTags) || found->name != name)
        return std::nullopt;
    return found->tag;
}

std::string_view NameOfType(std::uint16_t type)
{
    for (const TypeName& row : kTypes)
    {
        if (row.type == type)
            return row.name;
    }
    return {};
}

std::optional<std::uint16_t> TypeOfName(std::string_view name)
{
    for (const TypeName& row : kTypes)
    {
        if (row.name == name)
            return row.type;
    }
    return std::nullopt;
}

std::string_view NameOfSet(const GUID& set)
{
    for (const SetName& row : kSets)
    {
        if (IsEqualGUID(row.set, set))
            return row.name;
    }
    return {};
}

std::optional<GUID> SetOfName(std::string_view name)
{
    for (const SetName& row : kSets)
    {
        if (row.name == name)
            return row.set;
    }
    return std::nullopt;
}
