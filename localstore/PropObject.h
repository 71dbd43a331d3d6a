// The bodies that objects of the book share for IMAPIProp: GetProps, GetPropList and GetLastError
// over a set of properties; what changes properties is not supported here.
#pragma once

#include "localstore/BookSession.h"
#include "localstore/ComObject.h"
#include "localstore/MapiValues.h"

#include <memory>
#include <utility>

template <typename Interface, const IID*... Identities>
class PropObject : public ComObject<Interface, Identities...>
{
  public:
    STDMETHODIMP GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) override
    {
        return m_session->LastError(result, flags, error);
    }
    STDMETHODIMP SaveChanges(ULONG) override { return MAPI_E_NO_SUPPORT; }
    STDMETHODIMP
    GetProps(LPSPropTagArray tagArray, ULONG flags, ULONG* count, LPSPropValue* values) override
    {
        if (!count || !values)
            return MAPI_E_INVALID_PARAMETER;
        *count = 0;
        *values = nullptr;
        if (flags & ~MAPI_UNICODE)
            return MAPI_E_UNKNOWN_FLAGS;
        return m_session->Run([&] {
            const PropertyMap properties = Properties();
            std::vector<ULONG> tags;
            if (!tagArray)
                tags = TagsOf(properties, (flags & MAPI_UNICODE) != 0);
            else if (const HRESULT result = ReadTags(tagArray, tags); FAILED(result))
                return result;
            const HRESULT result = CopyValues(properties, tags, ChainedMemory::OfLibrary(), values);
            *count = static_cast<ULONG>(tags.size());
            return result;
        });
    }
    STDMETHODIMP GetPropList(ULONG flags, LPSPropTagArray* tags) override
    {
        if (!tags)
            return MAPI_E_INVALID_PARAMETER;
        *tags = nullptr;
        if (flags & ~MAPI_UNICODE)
            return MAPI_E_UNKNOWN_FLAGS;
        return m_session->Run([&] {
            *tags = CopyTags(TagsOf(Properties(), (flags & MAPI_UNICODE) != 0),
                             ChainedMemory::OfLibrary());
            return S_OK;
        });
    }
    STDMETHODIMP OpenProperty(ULONG, LPCIID, ULONG, ULONG, LPUNKNOWN* object) override
    {
        return Refuse(object);
    }
    STDMETHODIMP SetProps(ULONG, LPSPropValue, LPSPropProblemArray* problems) override
    {
        return RefuseWithOptional(problems);
    }
    STDMETHODIMP DeleteProps(LPSPropTagArray, LPSPropProblemArray* problems) override
    {
        return RefuseWithOptional(problems);
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
        return RefuseWithOptional(problems);
    }
    STDMETHODIMP CopyProps(LPSPropTagArray,
                           ULONG,
                           LPMAPIPROGRESS,
                           LPCIID,
                           LPVOID,
                           ULONG,
                           LPSPropProblemArray* problems) override
    {
        return RefuseWithOptional(problems);
    }
    STDMETHODIMP
    GetNamesFromIDs(LPSPropTagArray*, LPGUID, ULONG, ULONG* count, LPMAPINAMEID** names) override
    {
        if (count)
            *count = 0;
        return Refuse(names);
    }
    STDMETHODIMP GetIDsFromNames(ULONG, LPMAPINAMEID*, ULONG, LPSPropTagArray* tags) override
    {
        return Refuse(tags);
    }

  protected:
    explicit PropObject(std::shared_ptr<BookSession> session) : m_session(std::move(session)) {}

    // What GetProps gives out. Called inside Session().Run.
    virtual PropertyMap Properties() = 0;

    BookSession& Session() const noexcept { return *m_session; }
    const std::shared_ptr<BookSession>& SharedSession() const noexcept { return m_session; }

    // The answer of an operation that the book does not offer; outputs are cleared.
    template <typename Output> static HRESULT Refuse(Output* output) noexcept
    {
        if (!output)
            return MAPI_E_INVALID_PARAMETER;
        *output = {};
        return MAPI_E_NO_SUPPORT;
    }
    template <typename Output> static HRESULT RefuseWithOptional(Output* output) noexcept
    {
        if (output)
            *output = {};
        return MAPI_E_NO_SUPPORT;
    }

  private:
    std::shared_ptr<BookSession> m_session;
};
