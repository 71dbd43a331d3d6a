// What the tests of the contact object share: its properties, records of addresses, a contact.
#pragma once

#include "tests/automation/CollectionFixture.h"
#include "tests/automation/ItemProperties.h"

#include <array>
#include <cstring>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "PimStoreBridge.h"

using Contact = TextProperty<INContactItem>;

// All texts that a put of null empties.
inline const Contact kTexts[] = {
    {"GroupID", &INContactItem::get_GroupID, &INContactItem::put_GroupID},
    {"FirstName", &INContactItem::get_FirstName, &INContactItem::put_FirstName},
    {"LastName", &INContactItem::get_LastName, &INContactItem::put_LastName},
    {"JobTitle", &INContactItem::get_JobTitle, &INContactItem::put_JobTitle},
    {"CompanyName", &INContactItem::get_CompanyName, &INContactItem::put_CompanyName},
    {"InstantMessagingAddress",
     &INContactItem::get_InstantMessagingAddress,
     &INContactItem::put_InstantMessagingAddress},
    {"Picture", &INContactItem::get_Picture, &INContactItem::put_Picture},
    {"Website", &INContactItem::get_Website, &INContactItem::put_Website},
    {"Notes", &INContactItem::get_Notes, &INContactItem::put_Notes},
    {"Suffix", &INContactItem::get_Suffix, &INContactItem::put_Suffix},
    {"MiddleName", &INContactItem::get_MiddleName, &INContactItem::put_MiddleName},
    {"DisplayName", &INContactItem::get_DisplayName, &INContactItem::put_DisplayName},
    {"ParentFolderID", &INContactItem::get_ParentFolderID, &INContactItem::put_ParentFolderID},
};
inline const Contact kPersistentID = {
    "PersistentID", &INContactItem::get_PersistentID, &INContactItem::put_PersistentID};
inline const TextProperty<INEntityItem> kEntityID = {
    "EntityID", &INEntityItem::get_EntityID, &INEntityItem::put_EntityID};
inline const TextProperty<INEntityItem> kFolderID = {
    "FolderID", &INEntityItem::get_FolderID, &INEntityItem::put_FolderID};

inline const Contact& TextNamed(const std::string& name)
{
    for (const Contact& property : kTexts)
        if (property.name == name)
            return property;
    EXPECT_EQ("PersistentID", name);
    return kPersistentID;
}

inline const DateProperty<INContactItem> kBirthday = {
    "Birthday", &INContactItem::get_Birthday, &INContactItem::put_Birthday};
inline const DateProperty<INContactItem> kAnniversary = {
    "Anniversary", &INContactItem::get_Anniversary, &INContactItem::put_Anniversary};
inline const DateProperty<INEntityItem> kModified = {"LastModificationTime",
                                                     &INEntityItem::get_LastModificationTime,
                                                     &INEntityItem::put_LastModificationTime};

// What each type of phone number has as its number; 13 and the rest are none of the contract's.
inline constexpr LONG kPhoneTypes[] = {
    0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, -1, 0x7FFFFFFF, static_cast<LONG>(0x80000000)};

// Any number as a type.
inline _tagNPhoneNumberType Phone(LONG type)
{
    _tagNPhoneNumberType value = Company;
    std::memcpy(&value, &type, sizeof(value));
    return value;
}

inline _tagNAddressType AddressType(LONG type)
{
    _tagNAddressType value = HomeAddress;
    std::memcpy(&value, &type, sizeof(value));
    return value;
}

// Owner of the texts of a record, which the contract's record itself does not free.
class Address
{
  public:
    Address() = default;
    // Null stands for a text that is missing.
    explicit Address(std::initializer_list<const wchar_t*> texts)
    {
        std::size_t i = 0;
        for (const wchar_t* text : texts)
            Field(i++) = SysAllocString(text);
    }
    Address(const Address&) = delete;
    Address& operator=(const Address&) = delete;
    ~Address() { Clear(); }

    _tagNAddress* Put()
    {
        Clear();
        return &m_record;
    }
    const _tagNAddress& Value() const { return m_record; }
    BSTR& Field(std::size_t i) { return *Fields()[i]; }
    // In the order of the record; "(null)" for a missing one.
    std::vector<std::wstring> Texts()
    {
        std::vector<std::wstring> texts;
        for (BSTR* field : Fields())
            texts.push_back(*field ? TextOf(*field) : L"(null)");
        return texts;
    }

  private:
    std::array<BSTR*, 6> Fields()
    {
        return {&m_record.Country,
                &m_record.StateOrProvince,
                &m_record.City,
                &m_record.Street,
                &m_record.PostOfficeBox,
                &m_record.PostalCode};
    }
    void Clear()
    {
        for (BSTR* field : Fields())
            SysFreeString(std::exchange(*field, nullptr));
    }

    _tagNAddress m_record{};
};

class ContactFixture : public testing::Test
{
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_contact);
        ASSERT_EQ(S_OK, m_contact.As(&m_entity));
    }
    Microsoft::WRL::ComPtr<INContactItem> m_contact =
        CreateObject<INContactItem>(CLSID_NContactItem);
    Microsoft::WRL::ComPtr<INEntityItem> m_entity;
};

// Gives every text of the contact a text of its own.
inline void PutOwnTexts(INContactItem* contact)
{
    PutOwnTexts(kTexts, contact);
    PutOwnTexts(std::initializer_list<Contact>{kPersistentID}, contact);
}

// Each still has it.
inline void ExpectOwnTexts(INContactItem* contact)
{
    ExpectOwnTexts(kTexts, contact);
    ExpectOwnTexts(std::initializer_list<Contact>{kPersistentID}, contact);
}
