#include "automation/ContactCategory.h"

STDMETHODIMP CNContactCategory::get_Name(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_name, pVal); });
}

STDMETHODIMP CNContactCategory::put_Name(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_name, newVal); });
}

STDMETHODIMP CNContactCategory::get_Color(LONG* pVal)
{
    return Guard(this, [&] { return GetValue(m_color, pVal); });
}

STDMETHODIMP CNContactCategory::put_Color(LONG newVal)
{
    return Guard(this, [&] { return PutValue(m_color, newVal); });
}

STDMETHODIMP CNContactCategory::get_Items(SAFEARRAY** pVal)
{
    return Guard(this, [&] { return GetArrayIfAny(m_items, pVal); });
}

STDMETHODIMP CNContactCategory::put_Items(SAFEARRAY* newVal)
{
    return Guard(this, [&] { return PutArrayIfAny(m_items, newVal); });
}

STDMETHODIMP CNContactCategory::get_EntityID(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_entityID, pVal); });
}

STDMETHODIMP CNContactCategory::put_EntityID(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_entityID, newVal); });
}

STDMETHODIMP CNContactCategory::get_LastModificationTime(DATE* pVal)
{
    return Guard(this, [&] { return GetValue(m_lastModificationTime, pVal); });
}

STDMETHODIMP CNContactCategory::put_LastModificationTime(DATE newVal)
{
    return Guard(this, [&] { return PutValue(m_lastModificationTime, newVal); });
}

STDMETHODIMP CNContactCategory::get_FolderID(BSTR* pVal)
{
    return Guard(this, [&] { return GetText(m_folderID, pVal); });
}

STDMETHODIMP CNContactCategory::put_FolderID(BSTR newVal)
{
    return Guard(this, [&] { return PutOrClearText(m_folderID, newVal); });
}
