// The base of the store's COM objects with properties: IMAPIProp over a StoredObject.
#pragma once

#include "localstore/ComObject.h"
#include "localstore/StoredObject.h"

#include <mapiguid.h>

template <typename Object, typename Interface, const IID*... Identities>
class StoreObject : public ComObject<Interface, &IID_IMAPIProp, Identities...>
{
  public:
    STDMETHODIMP GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) override
    {
        return Session().LastError(result, flags, error);
    }
    STDMETHODIMP SaveChanges(ULONG flags) override { return SaveObject(*m_object, flags); }
    STDMETHODIMP
    GetProps(LPSPropTagArray tags, ULONG flags, ULONG* count, LPSPropValue* values) override
    {
        return GetObjectProps(*m_object, tags, flags, count, values);
    }
    STDMETHODIMP GetPropList(ULONG flags, LPSPropTagArray* tags) override
    {
        return GetObjectPropList(*m_object, flags, tags);
    }
    STDMETHODIMP OpenProperty(
        ULONG tag, LPCIID iid, ULONG interfaceOptions, ULONG flags, LPUNKNOWN* object) override
    {
        return OpenObjectProperty(m_object, tag, iid, interfaceOptions, flags, object);
    }
    STDMETHODIMP
    SetProps(ULONG count, LPSPropValue values, LPSPropProblemArray* problems) override
    {
        return SetObjectProps(*m_object, count, values, problems);
    }
    STDMETHODIMP DeleteProps(LPSPropTagArray tags, LPSPropProblemArray* problems) override
    {
        return DeleteObjectProps(*m_object, tags, problems);
    }
    STDMETHODIMP CopyTo(ULONG,
                        LPCIID,
                        LPSPropTagArray,
                        ULONG,
                        LPMAPIPROGRESS,
                        LPCIID,
                        LPVOID,
                        ULONG,
                        LPSPropProblemArray* problems) override
    {
        return RefuseWith(problems);
    }
    STDMETHODIMP CopyProps(LPSPropTagArray,
                           ULONG,
                           LPMAPIPROGRESS,
                           LPCIID,
                           LPVOID,
                           ULONG,
                           LPSPropProblemArray* problems) override
    {
        return RefuseWith(problems);
    }
    STDMETHODIMP GetNamesFromIDs(
        LPSPropTagArray* tags, LPGUID set, ULONG flags, ULONG* count, LPMAPINAMEID** names) override
    {
        return GetObjectNamesFromIds(Session(), tags, set, flags, count, names);
    }
    STDMETHODIMP GetIDsFromNames(ULONG count,
                                 LPMAPINAMEID* names,
                                 ULONG flags,
                                 LPSPropTagArray* tags) override
    {
        return GetObjectIdsFromNames(Session(), m_object->IsWritable(), count, names, flags, tags);
    }

  protected:
    explicit StoreObject(std::shared_ptr<Object> object) : m_object(std::move(object)) {}

    Object& State() const noexcept { return *m_object; }
    const std::shared_ptr<Object>& SharedState() const noexcept { return m_object; }
    StoreSession& Session() const noexcept { return m_object->Session(); }

  private:
    std::shared_ptr<Object> m_object;
};
