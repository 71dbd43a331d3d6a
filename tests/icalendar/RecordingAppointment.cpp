#include "icalendar/RecordingAppointment.h"

#include <cstdio>

namespace
{
std::string Narrow(BSTR text)
{
    std::string result;
    for (; text && *text; ++text)
        result += *text < 0x80 ? static_cast<char>(*text) : '?';
    return text ? result : "null";
}

std::string NumberText(double value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.8g", value);
    return text;
}
} // namespace

STDMETHODIMP RecordingAppointment::QueryInterface(REFIID iid, void** result)
{
    *result = nullptr;
    if (IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_INEntityItem))
        *result = static_cast<INEntityItem*>(this);
    else if (isAppointment &&
             (IsEqualGUID(iid, IID_INAppointment) || IsEqualGUID(iid, IID_IDispatch)))
        *result = static_cast<INAppointment*>(this);
    if (!*result)
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

STDMETHODIMP_(ULONG) RecordingAppointment::Release()
{
    const ULONG left = --m_references;
    if (left == 0)
    {
        if (alive)
            *alive = false;
        delete this;
    }
    return left;
}

STDMETHODIMP RecordingAppointment::put_RecurringInfo(_tagRecurringInfo* value)
{
    recurringInfo = *value;
    return Enter("put RecurringInfo", NumberText(value->eRecurType)) ? S_OK : E_FAIL;
}

STDMETHODIMP RecordingAppointment::get_EntityID(BSTR* value)
{
    ++getEntityIdCalls;
    return GetText("EntityID", value);
}

STDMETHODIMP RecordingAppointment::put_EntityID(BSTR value)
{
    if (keepsEntityId)
        texts["EntityID"] = value;
    return PutText("EntityID", value);
}

bool RecordingAppointment::Enter(const std::string& call, const std::string& argument)
{
    if (isQuiet)
        return true;
    calls.push_back(argument.empty() ? call : call + " [" + argument + "]");
    if (onCall)
        onCall(call);
    return !failing.contains(call);
}

HRESULT RecordingAppointment::GetText(const std::string& name, BSTR* value)
{
    *value = nullptr;
    if (!Enter("get " + name))
        return E_FAIL;
    if (answers && name != "EntityID")
        return answers->Give(value);
    if (!nulls.contains(name))
        *value = SysAllocString(texts[name].c_str());
    return textResult;
}

HRESULT RecordingAppointment::PutText(const std::string& name, BSTR value)
{
    return Enter("put " + name, Narrow(value)) ? S_OK : E_FAIL;
}

HRESULT RecordingAppointment::PutNumber(const std::string& name, double value)
{
    return Enter("put " + name, NumberText(value)) ? S_OK : E_FAIL;
}
