#include "client/core/Contact.h"

#include "client/core/ContactFields.h"
#include "client/core/NameOrder.h"

#include <cmath>

namespace pim
{
namespace
{
// Absent and empty are one to a person.
bool IsSame(const std::optional<std::wstring>& left, const std::optional<std::wstring>& right)
{
    return left.value_or(L"") == right.value_or(L"");
}

bool IsSame(const std::optional<std::vector<std::wstring>>& left,
            const std::optional<std::vector<std::wstring>>& right)
{
    const std::vector<std::wstring> none;
    return left.value_or(none) == right.value_or(none);
}

bool IsSame(const std::optional<DATE>& left, const std::optional<DATE>& right)
{
    constexpr double kHalfSecond = 0.5 / 86400;
    return std::abs(left.value_or(kNoDay) - right.value_or(kNoDay)) < kHalfSecond;
}

template <typename Value> void Lay(const std::optional<Value>& wish, std::optional<Value>& value)
{
    if (wish)
        value = wish;
}

class LostFields
{
  public:
    template <typename Value>
    void Check(const std::wstring& name,
               const std::optional<Value>& before,
               const std::optional<Value>& wanted,
               const std::optional<Value>& kept)
    {
        if (!IsSame(before, wanted) && !IsSame(kept, wanted))
            Add(name);
    }
    void Add(const std::wstring& name) { m_names.push_back(name); }
    std::vector<std::wstring> Take() { return std::move(m_names); }

  private:
    std::vector<std::wstring> m_names;
};

void CheckAddresses(const Contact& before,
                    const Contact& wanted,
                    const Contact& kept,
                    LostFields& lost)
{
    const PostalAddress none;
    for (std::size_t i = 0; i < kAddressTypeCount; ++i)
    {
        const PostalAddress& old = before.addresses[i] ? *before.addresses[i] : none;
        const PostalAddress& wish = wanted.addresses[i] ? *wanted.addresses[i] : none;
        const PostalAddress& now = kept.addresses[i] ? *kept.addresses[i] : none;
        for (const AddressPart& part : kAddressParts)
            lost.Check(std::wstring(L"address ") + kAddressTypes[i].name + L'.' + part.name,
                       old.*part.value,
                       wish.*part.value,
                       now.*part.value);
    }
}

bool HasPicture(const Contact& contact)
{
    return contact.picture && !contact.picture->empty();
}
} // namespace

std::wstring NameOf(const Contact& contact)
{
    if (contact.displayName && !contact.displayName->empty())
        return *contact.displayName;
    std::wstring name;
    for (const auto part : {&Contact::firstName, &Contact::middleName, &Contact::lastName})
    {
        if (const std::wstring text = (contact.*part).value_or(L""); !text.empty())
            name += (name.empty() ? L"" : L" ") + text;
    }
    if (name.empty())
        name = contact.company.value_or(L"");
    if (name.empty() && contact.emails && !contact.emails->empty())
        name = contact.emails->front();
    return name;
}

bool ComesBefore(const Contact& left, const Contact& right)
{
    return IsBefore(NameOf(left), left.id, NameOf(right), right.id);
}

void Apply(const Contact& wish, Contact& contact)
{
    for (const ContactText& field : kContactTexts)
        Lay(wish.*field.value, contact.*field.value);
    for (const ContactDay& field : kContactDays)
        Lay(wish.*field.value, contact.*field.value);
    for (const ContactList& field : kContactLists)
        Lay(wish.*field.value, contact.*field.value);
    Lay(wish.picture, contact.picture);
    for (std::size_t i = 0; i < kPhoneTypeCount; ++i)
        Lay(wish.phones[i], contact.phones[i]);
    for (std::size_t i = 0; i < kAddressTypeCount; ++i)
    {
        if (!wish.addresses[i])
            continue;
        if (!contact.addresses[i])
            contact.addresses[i].emplace();
        for (const AddressPart& part : kAddressParts)
            Lay((*wish.addresses[i]).*part.value, (*contact.addresses[i]).*part.value);
    }
}

std::vector<std::wstring> FieldsNotKept(const Contact& before,
                                        const Contact& wanted,
                                        const Contact& kept)
{
    LostFields lost;
    const auto checkAll = [&](const auto& fields) {
        for (const auto& field : fields)
            lost.Check(field.option, before.*field.value, wanted.*field.value, kept.*field.value);
    };
    checkAll(kContactTexts);
    checkAll(kContactDays);
    checkAll(kContactLists);
    for (std::size_t i = 0; i < kPhoneTypeCount; ++i)
        lost.Check(std::wstring(L"phone ") + kPhoneTypes[i].name,
                   before.phones[i],
                   wanted.phones[i],
                   kept.phones[i]);
    CheckAddresses(before, wanted, kept, lost);
    // Stores give their own path for a picture.
    if (!IsSame(before.picture, wanted.picture) && HasPicture(kept) != HasPicture(wanted))
        lost.Add(L"picture");
    return lost.Take();
}
} // namespace pim
