#include "automation/PersonalInformationService.h"

#include "automation/RecordArray.h"
#include "platform/Bstr.h"
#include "service/OwnObject.h"
#include "service/ServiceManager.h"

#include <string>
#include <vector>

using Microsoft::WRL::ComPtr;

HRESULT CNPersonalInformationService::GetProviders(SAFEARRAY** arrProviders)
{
    return Guard(this, [&]() -> HRESULT {
        if (!arrProviders)
            return E_POINTER;
        std::vector<std::wstring> names;
        GetServiceManager()->GetProviders(names);
        if (names.empty())
            return S_OK;

        SAFEARRAYBOUND bound = {static_cast<ULONG>(names.size()), 0};
        UniqueSafeArray array(SafeArrayCreate(VT_BSTR, 1, &bound));
        if (const SafeArrayAccess<BSTR> texts(array.Get()); texts)
        {
            for (std::size_t i = 0; i < names.size(); ++i)
                texts.Data()[i] = NewText(names[i]);
        }
        *arrProviders = array.Detach();
        return S_OK;
    });
}

HRESULT CNPersonalInformationService::GetDefaultProvider(BSTR* bstrProvider)
{
    return Guard(this, [&]() -> HRESULT {
        if (!bstrProvider)
            return E_POINTER;
        *bstrProvider = NewText(GetServiceManager()->GetDefaultProvider());
        return S_OK;
    });
}

HRESULT CNPersonalInformationService::StartService(BSTR bstrProvider)
{
    return Guard(this, [&]() -> HRESULT {
        if (!bstrProvider)
            return E_POINTER;
        return GetServiceManager()->StartService(TextOf(bstrProvider));
    });
}

HRESULT CNPersonalInformationService::StopService()
{
    return Guard(this, [&]() -> HRESULT {
        GetServiceManager()->StopService();
        return S_OK;
    });
}

HRESULT CNPersonalInformationService::GetUserProperties(INUserProperties** ppUserProperties)
{
    return Guard(this, [&]() -> HRESULT {
        if (!ppUserProperties)
            return E_POINTER;
        *ppUserProperties = CreateOwn<INUserProperties>(CLSID_NUserProperties).Detach();
        return S_OK;
    });
}

HRESULT CNPersonalInformationService::GetAddressBook(INAddressBook** ppAddressbook)
{
    return Guard(this, [&]() -> HRESULT {
        if (!ppAddressbook)
            return E_POINTER;
        *ppAddressbook = CreateOwn<INAddressBook>(CLSID_NAddressBook).Detach();
        return S_OK;
    });
}

HRESULT CNPersonalInformationService::GetCalendar(INCalendar** ppCalendar)
{
    return Guard(this, [&]() -> HRESULT {
        if (!ppCalendar)
            return E_POINTER;
        *ppCalendar = CreateOwn<INCalendar>(CLSID_NCalendar).Detach();
        return S_OK;
    });
}

HRESULT CNPersonalInformationService::GetEnumerator(_tagNEnumeratorType eType,
                                                    INEnumerator** ppEnumerator)
{
    return Guard(this, [&]() -> HRESULT {
        if (!ppEnumerator)
            return E_POINTER;
        // The manager keeps the type for the creator. With Default it means the last type and
        // builds a table already here, which is dropped.
        GetServiceManager()->GetEnumerator(eType);
        if (ComPtr<INEnumerator> enumerator = CreateOwn<INEnumerator>(CLSID_NEnumerator))
            *ppEnumerator = enumerator.Detach();
        return S_OK;
    });
}

HRESULT CNPersonalInformationService::GetAddressBookRootFolders(SAFEARRAY** arrFolders)
{
    return Guard(this, [&]() -> HRESULT {
        if (!arrFolders)
            return E_INVALIDARG;
        std::vector<OutlookFolderInfo> folders;
        GetServiceManager()->GetContactFolders(folders);
        UniqueSafeArray array = MakeRecordArray<_tagFolderInfo>(
            kFolderInfoRecord,
            folders,
            [](_tagFolderInfo& record, const OutlookFolderInfo& folder) {
                record.bstrEntryID = NewText(folder.entryIDHex);
                record.bstrDisplayName = NewText(folder.displayName);
                record.lItemCount = folder.itemCount;
                record.vbIsDefault = folder.isDefault ? VARIANT_TRUE : VARIANT_FALSE;
            });
        *arrFolders = array.Detach();
        return S_OK;
    });
}

HRESULT CNPersonalInformationService::GetCalendarRootFolders(SAFEARRAY**)
{
    return E_NOTIMPL;
}
