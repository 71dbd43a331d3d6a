#include "automation/ContactGroup.h"

STDMETHODIMP CNContactGroup::get_GroupID(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_groupID, pVal); });
}

STDMETHODIMP CNContactGroup::put_GroupID(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_groupID, newVal); });
}

STDMETHODIMP CNContactGroup::get_CategoryIDs(SAFEARRAY** pVal)
{
    return Guard(this, [&] { return GetArray(m_categoryIDs, pVal); });
}

STDMETHODIMP CNContactGroup::put_CategoryIDs(SAFEARRAY* newVal)
{
    return Guard(this, [&] { return newVal ? PutArray(m_categoryIDs, newVal) : E_POINTER; });
}

STDMETHODIMP CNContactGroup::get_Name(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_name, pVal); });
}

STDMETHODIMP CNContactGroup::put_Name(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_name, newVal); });
}

STDMETHODIMP CNContactGroup::get_Items(LONG bSubGroup, SAFEARRAY** pVal)
{
    return Guard(this, [&] { return GetArrayIfAny(ItemsOf(bSubGroup), pVal); });
}

STDMETHODIMP CNContactGroup::put_Items(LONG bSubGroup, SAFEARRAY* newVal)
{
    return Guard(this, [&] { return PutArrayIfAny(ItemsOf(bSubGroup), newVal); });
}

STDMETHODIMP CNContactGroup::get_EntityID(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_entityID, pVal); });
}

STDMETHODIMP CNContactGroup::put_EntityID(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_entityID, newVal); });
}

STDMETHODIMP CNContactGroup::get_LastModificationTime(DATE* pVal)
{
    return Guard(this, [&] { return GetValue(m_lastModificationTime, pVal); });
}

STDMETHODIMP CNContactGroup::put_LastModificationTime(DATE newVal)
{
    return Guard(this, [&] { return PutValue(m_lastModificationTime, newVal); });
}

STDMETHODIMP CNContactGroup::get_FolderID(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_folderID, pVal); });
}

STDMETHODIMP CNContactGroup::put_FolderID(BSTR newVal)
{
    return Guard(this, [&] { return PutOrClearText(m_folderID, newVal); });
}
