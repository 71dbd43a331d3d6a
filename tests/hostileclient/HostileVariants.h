// Arguments of late-bound calls that fit no operation, or that are broken in themselves.
#pragma once

#include "hostileclient/HostileItem.h"
#include "platform/SafeArray.h"

#include <string>
#include <vector>

class HostileVariants
{
  public:
    HostileVariants();
    ~HostileVariants() { ClearOutputs(); }
    HostileVariants(const HostileVariants&) = delete;
    HostileVariants& operator=(const HostileVariants&) = delete;

    struct Named
    {
        std::string name;
        VARIANT value; // belongs to this object
    };
    const std::vector<Named>& All() const noexcept { return m_all; }
    // Frees what calls wrote through the references, and makes these what they were.
    void ClearOutputs();
    const HostileItem& OwnItem() const noexcept { return m_item; }

  private:
    // Adds a variant of that type with nothing in it; the pointers of that type are null.
    VARIANT& Add(const std::string& name, int type);

    Bstr m_text;
    UniqueSafeArray m_twoDimensions;
    UniqueSafeArray m_numbers;
    HostileItem m_item{HostileItem::Query::Refuses, HostileItem::Text::Fails};
    // What the references lead to.
    Bstr m_givenText;
    Microsoft::WRL::ComPtr<IUnknown> m_givenObject;
    VARIANT m_given{};
    VARIANT m_reference{};
    VARIANT m_itself{};
    std::vector<Named> m_all;
};
