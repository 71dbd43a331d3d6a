// The values of some tags of a store object, read in one call, with their owner.
#pragma once

#include "outlook/store/MapiMemory.h"
#include "outlook/store/PropertyView.h"
#include "outlook/store/TagArray.h"

#include <span>

class ReadValues
{
  public:
    // flags: those of GetProps. The proxy must outlive this. Throws std::bad_alloc.
    ReadValues(IMAPIProp& object,
               std::span<const ULONG> tags,
               CNProxcy& proxy,
               ULONG flags = MAPI_UNICODE)
    {
        TagArray wanted(tags);
        SPropValue* delivered = nullptr;
        m_result = object.GetProps(wanted.Get(), flags, &m_count, &delivered);
        // What a failed call left in its outputs is nobody's.
        m_values = AdoptMapiBuffer(SUCCEEDED(m_result) ? delivered : nullptr, proxy);
    }

    // Of the call, for those to whom a warning counts as a failure.
    HRESULT Result() const noexcept { return m_result; }

    // In the order of the tags; empty where the call failed. Valid as long as this object.
    PropertyView View() const noexcept { return {m_count, m_values.get()}; }

  private:
    HRESULT m_result = S_OK;
    ULONG m_count = 0;
    MapiBuffer<SPropValue> m_values;
};
