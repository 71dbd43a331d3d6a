// IMAPIProp of every object, over its property bag.
#pragma once

#include "tests/recordingstore/library/PropertyBag.h"
#include "tests/recordingstore/library/RecordedObject.h"

// What the operations do once they were written down; name is the object's.
HRESULT DoGetProps(const PropertyBag& bag,
                   const std::string& name,
                   StoreFault fault,
                   const SPropTagArray* tags,
                   ULONG flags,
                   ULONG* count,
                   SPropValue** values);
HRESULT DoGetPropList(const PropertyBag& bag,
                      const std::string& name,
                      ULONG flags,
                      SPropTagArray** tags);
HRESULT DoSetProps(PropertyBag& bag,
                   const std::string& name,
                   StoreFault fault,
                   ULONG count,
                   const SPropValue* values,
                   SPropProblemArray** problems);
HRESULT DoDeleteProps(PropertyBag& bag,
                      const std::string& name,
                      StoreFault fault,
                      const SPropTagArray* tags,
                      SPropProblemArray** problems);
HRESULT DoOpenProperty(const std::shared_ptr<PropertyBag>& bag,
                       const std::string& name,
                       StoreFault fault,
                       ULONG tag,
                       LPCIID interfaceId,
                       ULONG flags,
                       IUnknown** object);
HRESULT DoGetIDsFromNames(const std::string& name,
                          StoreFault fault,
                          ULONG count,
                          MAPINAMEID** names,
                          ULONG flags,
                          SPropTagArray** tags);
HRESULT DoGetNamesFromIDs(const std::string& name,
                          SPropTagArray** tags,
                          ULONG* count,
                          MAPINAMEID*** names);

// Base: a RecordedObject whose interface has no operation yet but "not offered".
template <typename Base> class PropObject : public Base
{
  public:
    STDMETHODIMP SaveChanges(ULONG flags) override
    {
        return RunCall(this->Begin("SaveChanges(" + FlagsText(flags) + ")"),
                       [&](StoreFault) { return m_bag->Save(flags); });
    }
    STDMETHODIMP
    GetProps(LPSPropTagArray tags, ULONG flags, ULONG* count, LPSPropValue* values) override
    {
        return RunCall(
            this->Begin("GetProps(" + TagsText(tags) + ", " + FlagsText(flags) + ")"),
            [&](StoreFault fault) {
                return DoGetProps(*m_bag, this->Name(), fault, tags, flags, count, values);
            },
            count,
            values);
    }
    STDMETHODIMP GetPropList(ULONG flags, LPSPropTagArray* tags) override
    {
        return RunCall(
            this->Begin("GetPropList(" + FlagsText(flags) + ")"),
            [&](StoreFault) { return DoGetPropList(*m_bag, this->Name(), flags, tags); },
            tags);
    }
    STDMETHODIMP OpenProperty(
        ULONG tag, LPCIID interfaceId, ULONG options, ULONG flags, LPUNKNOWN* object) override
    {
        return RunCall(
            this->Begin("OpenProperty(" + TagText(tag) + ", " + InterfaceText(interfaceId) + ", " +
                        std::to_string(options) + ", " + FlagsText(flags) + ")"),
            [&](StoreFault fault) {
                return DoOpenProperty(m_bag, this->Name(), fault, tag, interfaceId, flags, object);
            },
            object);
    }
    STDMETHODIMP
    SetProps(ULONG count, LPSPropValue values, LPSPropProblemArray* problems) override
    {
        return RunCall(
            this->Begin("SetProps(" + ValuesText(count, values) + (problems ? ", problems)" : ")")),
            [&](StoreFault fault) {
                return DoSetProps(*m_bag, this->Name(), fault, count, values, problems);
            },
            problems);
    }
    STDMETHODIMP DeleteProps(LPSPropTagArray tags, LPSPropProblemArray* problems) override
    {
        return RunCall(
            this->Begin("DeleteProps(" + TagsText(tags) + (problems ? ", problems)" : ")")),
            [&](StoreFault fault) {
                return DoDeleteProps(*m_bag, this->Name(), fault, tags, problems);
            },
            problems);
    }
    STDMETHODIMP GetIDsFromNames(ULONG count,
                                 LPMAPINAMEID* names,
                                 ULONG flags,
                                 LPSPropTagArray* tags) override
    {
        return RunCall(
            this->Begin("GetIDsFromNames(" + NamesText(count, names) + ", " + FlagsText(flags) +
                        ")"),
            [&](StoreFault fault) {
                return DoGetIDsFromNames(this->Name(), fault, count, names, flags, tags);
            },
            tags);
    }
    STDMETHODIMP GetNamesFromIDs(
        LPSPropTagArray* tags, LPGUID set, ULONG flags, ULONG* count, LPMAPINAMEID** names) override
    {
        return RunCall(
            this->Begin("GetNamesFromIDs(" + TagsText(tags ? *tags : nullptr) +
                        (set ? ", set, " : ", null, ") + FlagsText(flags) + ")"),
            [&](StoreFault) { return DoGetNamesFromIDs(this->Name(), tags, count, names); },
            count,
            names);
    }

  protected:
    PropObject(const char* interfaceName, std::string name, std::shared_ptr<PropertyBag> bag)
        : Base(interfaceName, std::move(name)), m_bag(std::move(bag))
    {
    }

  private:
    std::shared_ptr<PropertyBag> m_bag;
};
