// One text of 64 MiB, as every kind of parameter that carries texts takes it.
#pragma once

#include "hostileclient/HostileArguments.h"

#include <optional>

class HugeArguments
{
  public:
    static constexpr std::size_t kCharacters = 32 * 1024 * 1024;

    HugeArguments() : m_text(std::wstring(kCharacters, L'A'))
    {
        m_address.Street = m_text.Get();
        m_array.Reset(SafeArrayCreateVector(VT_BSTR, 0, 1));
        const SafeArrayAccess<BSTR> elements(m_array.Get());
        elements.Data()[0] = Bstr::CopyOf(m_text.Get()).Detach();
    }

    // Empty for a parameter that carries no text into the call.
    std::optional<HostileValue> For(const ParameterType& parameter) const
    {
        if (parameter.isOut || parameter.pointers != 0)
            return std::nullopt;
        if (parameter.type == VT_BSTR)
            return HostileArguments::Pointer("64 MiB", m_text.Get());
        if (parameter.type == VT_SAFEARRAY)
            return HostileArguments::Pointer("an array of 64 MiB", m_array.Get());
        if (parameter.recordName == "_tagNAddress")
            return HostileArguments::Pointer("an address of 64 MiB", &m_address);
        return std::nullopt;
    }

    BSTR Text() const noexcept { return m_text.Get(); }

  private:
    Bstr m_text;
    UniqueSafeArray m_array;
    _tagNAddress m_address{};
};
