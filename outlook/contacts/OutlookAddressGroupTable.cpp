#include "outlook/contacts/OutlookAddressGroupTable.h"

#include "outlook/contacts/ContactFields.h"
#include "outlook/contacts/GroupMembers.h"
#include "outlook/store/NamedTags.h"
#include "platform/Bstr.h"
#include "platform/SafeArray.h"
#include "service/ItemAccess.h"

#include <string_view>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr std::wstring_view kGroupClass = L"IPM.DistList";
constexpr std::wstring_view kWrittenClass = L"IPM.Appointment";

// Numbers of named properties.
constexpr LONG kGroupID = 0x85BD; // of kCommonNames, the others of kAddressNames
constexpr LONG kName = 0x8053;    // PidLidDistributionListName
constexpr LONG kMembers = 0x8055; // PidLidDistributionListMembers

// Where the values of an item stand; the last column only where the store knows its name.
enum Column : ULONG
{
    kModifiedColumn,
    kNameColumn,
    kMembersColumn,
    kGroupIDColumn
};

// Hands over the IDs of a kind; without any, nothing is put.
void PutItems(INContactGroup& group, LONG subGroups, std::span<const std::wstring> ids)
{
    if (ids.empty())
        return;
    const UniqueSafeArray array(NewTextArray(ids));
    if (array)
        group.put_Items(subGroups, array.Get());
}

void PutMembers(INContactGroup& group, std::span<const SBinary> members)
{
    std::vector<std::wstring> contacts;
    std::vector<std::wstring> subGroups;
    for (const SBinary& member : members)
    {
        if (!member.lpb)
            continue;
        if (auto known = ReadGroupMember({member.lpb, member.cb}))
            (known->kind == GroupMemberKind::SubGroup ? subGroups : contacts)
                .push_back(std::move(known->entryID));
    }
    PutItems(group, 1, subGroups);
    PutItems(group, 0, contacts);
}
} // namespace

bool COutlookAddressGroupTable::IsWantedRow(const PropertyView& row)
{
    return HasClass(row, kGroupClass);
}

std::vector<ULONG> COutlookAddressGroupTable::GetPropertyNames()
{
    CNProxcy& proxy = m_pHelper->Proxy();
    const ULONG groupID =
        FindNamedTags(*m_pContainer.Get(), proxy, kCommonNames, {&kGroupID, 1})[0];
    constexpr LONG kNumbers[] = {kName, kMembers};
    const auto listTags = FindNamedTags(*m_pContainer.Get(), proxy, kAddressNames, kNumbers);
    std::vector<ULONG> tags = {PR_LAST_MODIFICATION_TIME, listTags[0], listTags[1]};
    if (PROP_TYPE(groupID) != PT_ERROR)
        tags.push_back(groupID);
    return tags;
}

ComPtr<INEntityItem> COutlookAddressGroupTable::CreateItem()
{
    return NewItem(CLSID_NContactGroup);
}

void COutlookAddressGroupTable::FillItem(INEntityItem& item, const PropertyView& values)
{
    const ComPtr<INContactGroup> group = QueryItem<INContactGroup>(&item);
    if (!group)
        return;
    if (const FILETIME* const time = values.Time(kModifiedColumn))
        item.put_LastModificationTime(CMAPIHelper::FileTimeToDate(*time));
    if (const SBinary* const groupID = values.Binary(kGroupIDColumn))
        group->put_GroupID(Bstr(CMAPIHelper::BinaryToHex(*groupID)).Get());
    if (const wchar_t* const name = values.Text(kNameColumn))
        group->put_Name(Bstr(name).Get());
    PutMembers(*group.Get(), values.Binaries(kMembersColumn));
}

PropertyArray COutlookAddressGroupTable::ReadItem(INEntityItem& item, bool)
{
    PropertyArray values;
    const ComPtr<INContactGroup> group = QueryItem<INContactGroup>(&item);
    if (!group || !m_pContainer)
        return values;
    const ULONG nameTag =
        FindNamedTags(*m_pContainer.Get(), m_pHelper->Proxy(), kAddressNames, {&kName, 1})[0];
    values.AddText(PR_MESSAGE_CLASS_W, kWrittenClass);
    Bstr name;
    if (SUCCEEDED(group->get_Name(name.Put())) && name)
        values.AddText(WithType(nameTag, PT_UNICODE), TextOf(name.Get()));
    return values;
}
