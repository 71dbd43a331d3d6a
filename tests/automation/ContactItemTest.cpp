// The contact object: every property in each of its forms, by vtable and late bound.
#include "automation/ContactItem.h"
#include "automation/base/ServerModule.h"
#include "support/Dispatch.h"
#include "tests/automation/CollectionFixture.h"
#include "tests/automation/TextProperties.h"

#include <gmock/gmock.h>

#include <cstring>
#include <limits>

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
using Contact = TextProperty<INContactItem>;

// All texts that a put of null empties.
const Contact kTexts[] = {
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
const Contact kPersistentID = {
    "PersistentID", &INContactItem::get_PersistentID, &INContactItem::put_PersistentID};
const TextProperty<INEntityItem> kEntityID = {
    "EntityID", &INEntityItem::get_EntityID, &INEntityItem::put_EntityID};
const TextProperty<INEntityItem> kFolderID = {
    "FolderID", &INEntityItem::get_FolderID, &INEntityItem::put_FolderID};

const Contact& TextNamed(const std::string& name)
{
    for (const Contact& property : kTexts)
        if (property.name == name)
            return property;
    EXPECT_EQ("PersistentID", name);
    return kPersistentID;
}

template <typename Interface> struct DateProperty
{
    const char* name;
    HRESULT (STDMETHODCALLTYPE Interface::*get)(DATE*);
    HRESULT (STDMETHODCALLTYPE Interface::*put)(DATE);
};
const DateProperty<INContactItem> kBirthday = {
    "Birthday", &INContactItem::get_Birthday, &INContactItem::put_Birthday};
const DateProperty<INContactItem> kAnniversary = {
    "Anniversary", &INContactItem::get_Anniversary, &INContactItem::put_Anniversary};
const DateProperty<INEntityItem> kModified = {"LastModificationTime",
                                              &INEntityItem::get_LastModificationTime,
                                              &INEntityItem::put_LastModificationTime};

template <typename Interface> DATE Get(const DateProperty<Interface>& property, Interface* object)
{
    DATE value = -77.0;
    EXPECT_EQ(S_OK, (object->*property.get)(&value)) << property.name;
    return value;
}

// Zero at first; then every value comes back bit by bit.
template <typename Interface>
void ExpectDateForm(const DateProperty<Interface>& property, Interface* object)
{
    SCOPED_TRACE(property.name);
    EXPECT_EQ(0.0, Get(property, object));
    EXPECT_EQ(E_POINTER, (object->*property.get)(nullptr));
    for (const DATE value : {std::numeric_limits<DATE>::quiet_NaN(), 1e300, -1.5, 45000.25})
    {
        EXPECT_EQ(S_OK, (object->*property.put)(value));
        const DATE got = Get(property, object);
        EXPECT_EQ(0, std::memcmp(&value, &got, sizeof(value)));
    }
}

struct ArrayProperty
{
    const char* name;
    HRESULT (STDMETHODCALLTYPE INContactItem::*get)(SAFEARRAY**);
    HRESULT (STDMETHODCALLTYPE INContactItem::*put)(SAFEARRAY*);
};
const ArrayProperty kArrays[] = {
    {"Emails", &INContactItem::get_Emails, &INContactItem::put_Emails},
    {"CategoryIDs", &INContactItem::get_CategoryIDs, &INContactItem::put_CategoryIDs},
};

// What each type of phone number has as its number; 13 and the rest are none of the contract's.
constexpr LONG kPhoneTypes[] = {
    0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, -1, 0x7FFFFFFF, static_cast<LONG>(0x80000000)};

_tagNPhoneNumberType Phone(LONG type)
{
    _tagNPhoneNumberType value = Company;
    std::memcpy(&value, &type, sizeof(value));
    return value;
}

_tagNAddressType AddressType(LONG type)
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

// A variant that refers to a variable of the caller's, as scripts pass output arguments.
Variant ByReference(VARTYPE type, void* target)
{
    Variant reference;
    reference.Get()->vt = static_cast<VARTYPE>(VT_BYREF | type);
    reference.Get()->byref = target;
    return reference;
}

class ContactItemTest : public testing::Test
{
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_contact);
        ASSERT_EQ(S_OK, m_contact.As(&m_entity));
    }
    Bstr TextAt(LONG index)
    {
        BSTR text = nullptr;
        EXPECT_EQ(S_OK, m_contact->GetStringByIndex(index, &text)) << std::hex << index;
        return Bstr::Adopt(text);
    }

    ComPtr<INContactItem> m_contact = CreateObject<INContactItem>(CLSID_NContactItem);
    ComPtr<INEntityItem> m_entity;
};

// What each string index stands for, in the numbers that clients use.
const struct
{
    LONG index;
    const char* property;
    bool settable;
} kStringIndexes[] = {
    {0x436F6D70, "CompanyName", true},
    {0x456E7472, "PersistentID", false},
    {0x46697273, "FirstName", true},
    {0x47726F75, "GroupID", true},
    {0x496E7374, "InstantMessagingAddress", true},
    {0x4A6F6254, "JobTitle", true},
    {0x4B657949, "PersistentID", true},
    {0x4C617374, "LastName", true},
    {0x4D696464, "MiddleName", true},
    {0x4E6F7465, "Notes", true},
    {0x50657273, "PersistentID", true},
    {0x50696374, "Picture", true},
    {0x53756666, "Suffix", true},
    {0x57656273, "Website", true},
};

// None of them is an index: zero, "Disp", "Pare", "comp", "COMP", "Comq", "pmoC", "Anni", "Birt",
// and the highest and lowest numbers.
constexpr LONG kNoStringIndexes[] = {0,
                                     0x44697370,
                                     0x50617265,
                                     0x636F6D70,
                                     0x434F4D50,
                                     0x436F6D71,
                                     0x706D6F43,
                                     0x416E6E69,
                                     0x42697274,
                                     0x7FFFFFFF,
                                     static_cast<LONG>(0x80000000),
                                     -1};

constexpr LONG kCompany = 0x436F6D70;
constexpr LONG kAnni = 0x416E6E69;
constexpr LONG kBirt = 0x42697274;
constexpr LONG kLast = 0x4C617374;
constexpr LONG kEntr = 0x456E7472;
constexpr LONG kPers = 0x50657273;
} // namespace

TEST_F(ContactItemTest, AnswersForItsTwoInterfacesAndDispatch)
{
    ExpectInterfaces(m_contact.Get(),
                     {IID_IUnknown, IID_IDispatch, IID_INContactItem, IID_INEntityItem});
    ComPtr<IDispatch> dispatch;
    ASSERT_EQ(S_OK, m_entity.As(&dispatch));
    EXPECT_EQ(static_cast<IDispatch*>(m_contact.Get()), dispatch.Get());
}

TEST_F(ContactItemTest, EveryTextPropertyCopiesInAndOut)
{
    for (const Contact& property : kTexts)
        ExpectTextForm(property, m_contact.Get());
    ExpectTextForm(kPersistentID, m_contact.Get());
}

TEST_F(ContactItemTest, TheTextsOfTheEntityHaveTheSameForm)
{
    ExpectTextForm(kEntityID, m_entity.Get());
    ExpectTextForm(kFolderID, m_entity.Get());
}

TEST_F(ContactItemTest, EveryTextPropertyHasAFieldOfItsOwn)
{
    PutOwnTexts(kTexts, m_contact.Get());
    PutOwnTexts(std::initializer_list<Contact>{kPersistentID}, m_contact.Get());
    ExpectOwnTexts(kTexts, m_contact.Get());
    ExpectOwnTexts(std::initializer_list<Contact>{kPersistentID}, m_contact.Get());
}

TEST_F(ContactItemTest, ANullPutEmptiesEveryTextButThePersistentId)
{
    for (const Contact& property : kTexts)
        ExpectNullClears(property, m_contact.Get());
    ExpectNullClears(kEntityID, m_entity.Get());
    ExpectNullClears(kFolderID, m_entity.Get());
}

TEST_F(ContactItemTest, ThePersistentIdRefusesNullWhereTheEntityIdIsCleared)
{
    EXPECT_EQ(E_POINTER, m_contact->put_PersistentID(nullptr));
    EXPECT_FALSE(Get(kPersistentID, m_contact.Get()));
    ExpectNullRefused(kPersistentID, m_contact.Get());
    EXPECT_EQ(S_OK, m_entity->put_EntityID(nullptr));
    EXPECT_FALSE(Get(kPersistentID, m_contact.Get()));
}

TEST_F(ContactItemTest, BothInterfacesShowOneIdAndOneFolder)
{
    EXPECT_EQ(S_OK, m_contact->put_PersistentID(Bstr(L"id 1").Get()));
    EXPECT_EQ(L"id 1", Get(kEntityID, m_entity.Get()).View());
    EXPECT_EQ(S_OK, m_entity->put_EntityID(Bstr(L"id 2").Get()));
    EXPECT_EQ(L"id 2", Get(kPersistentID, m_contact.Get()).View());

    const Contact& parent = TextNamed("ParentFolderID");
    EXPECT_EQ(S_OK, m_contact->put_ParentFolderID(Bstr(L"folder 1").Get()));
    EXPECT_EQ(L"folder 1", Get(kFolderID, m_entity.Get()).View());
    EXPECT_EQ(S_OK, m_entity->put_FolderID(Bstr(L"folder 2").Get()));
    EXPECT_EQ(L"folder 2", Get(parent, m_contact.Get()).View());
    EXPECT_EQ(S_OK, m_contact->put_ParentFolderID(nullptr));
    EXPECT_FALSE(Get(kFolderID, m_entity.Get()));
    EXPECT_EQ(L"id 2", Get(kEntityID, m_entity.Get()).View());
}

TEST_F(ContactItemTest, DatesKeepEveryBit)
{
    ExpectDateForm(kBirthday, m_contact.Get());
    ExpectDateForm(kAnniversary, m_contact.Get());
    ExpectDateForm(kModified, m_entity.Get());
    // Three fields, not one.
    EXPECT_EQ(S_OK, m_contact->put_Birthday(1.0));
    EXPECT_EQ(S_OK, m_contact->put_Anniversary(2.0));
    EXPECT_EQ(S_OK, m_entity->put_LastModificationTime(3.0));
    EXPECT_EQ(1.0, Get(kBirthday, m_contact.Get()));
    EXPECT_EQ(2.0, Get(kAnniversary, m_contact.Get()));
    EXPECT_EQ(3.0, Get(kModified, m_entity.Get()));
}

TEST_F(ContactItemTest, AnArrayThatWasNeverPutFailsAndLeavesTheOutput)
{
    for (const ArrayProperty& property : kArrays)
    {
        SCOPED_TRACE(property.name);
        const UniqueSafeArray sentinel = ArrayOf({L"sentinel"});
        SAFEARRAY* out = sentinel.Get();
        EXPECT_EQ(E_FAIL, (m_contact.Get()->*property.get)(&out));
        EXPECT_EQ(sentinel.Get(), out);
        EXPECT_EQ(E_POINTER, (m_contact.Get()->*property.get)(nullptr));
    }
}

TEST_F(ContactItemTest, ArraysAreCopiedInAndOut)
{
    for (const ArrayProperty& property : kArrays)
    {
        SCOPED_TRACE(property.name);
        const auto put = [&](SAFEARRAY* array) { return (m_contact.Get()->*property.put)(array); };
        const auto get = [&] {
            UniqueSafeArray out;
            EXPECT_EQ(S_OK, (m_contact.Get()->*property.get)(out.Put()));
            return out;
        };
        {
            const UniqueSafeArray given = ArrayOf({L"a@b.example", L"", L"c"});
            EXPECT_EQ(S_OK, put(given.Get()));
            const SafeArrayAccess<BSTR> elements(given.Get());
            elements.Data()[0][0] = L'?'; // changes the client's array only
        }
        const UniqueSafeArray first = get();
        const UniqueSafeArray second = get();
        EXPECT_NE(first.Get(), second.Get());
        EXPECT_THAT(TextsOf(first.Get()), ElementsAre(L"a@b.example", L"", L"c"));
        {
            const SafeArrayAccess<BSTR> elements(first.Get());
            elements.Data()[0][0] = L'!'; // changes this copy only
        }
        EXPECT_THAT(TextsOf(second.Get()), ElementsAre(L"a@b.example", L"", L"c"));
        EXPECT_THAT(TextsOf(get().Get()), ElementsAre(L"a@b.example", L"", L"c"));

        // Another array takes its place whole; one of no elements is an array too.
        EXPECT_EQ(S_OK, put(ArrayOf({L"only"}).Get()));
        EXPECT_THAT(TextsOf(get().Get()), ElementsAre(L"only"));
        EXPECT_EQ(S_OK, put(ArrayOf({}).Get()));
        EXPECT_THAT(TextsOf(get().Get()), IsEmpty());
        EXPECT_EQ(E_POINTER, (m_contact.Get()->*property.get)(nullptr));
    }
}

TEST_F(ContactItemTest, ArraysDoNotShareAField)
{
    EXPECT_EQ(S_OK, m_contact->put_Emails(ArrayOf({L"mail"}).Get()));
    EXPECT_EQ(S_OK, m_contact->put_CategoryIDs(ArrayOf({L"category"}).Get()));
    UniqueSafeArray emails;
    UniqueSafeArray categories;
    EXPECT_EQ(S_OK, m_contact->get_Emails(emails.Put()));
    EXPECT_EQ(S_OK, m_contact->get_CategoryIDs(categories.Put()));
    EXPECT_THAT(TextsOf(emails.Get()), ElementsAre(L"mail"));
    EXPECT_THAT(TextsOf(categories.Get()), ElementsAre(L"category"));
}

// The result of such a put is what the system's copy of no array gives.
TEST_F(ContactItemTest, APutOfNoArrayEmptiesTheField)
{
    SAFEARRAY* copyOfNone = nullptr;
    const HRESULT result = SafeArrayCopy(nullptr, &copyOfNone);
    for (const ArrayProperty& property : kArrays)
    {
        SCOPED_TRACE(property.name);
        EXPECT_EQ(S_OK, (m_contact.Get()->*property.put)(ArrayOf({L"x"}).Get()));
        EXPECT_EQ(result, (m_contact.Get()->*property.put)(nullptr));
        SAFEARRAY* out = nullptr;
        EXPECT_EQ(E_FAIL, (m_contact.Get()->*property.get)(&out));
        EXPECT_EQ(result, (m_contact.Get()->*property.put)(nullptr));
    }
}

TEST_F(ContactItemTest, ArraysOfAnyShapeComeBackAsTheyWere)
{
    SAFEARRAYBOUND plane[] = {{2, -5}, {3, 7}};
    SAFEARRAYBOUND negative[] = {{2, -2147483647}};
    const UniqueSafeArray arrays[] = {
        UniqueSafeArray(SafeArrayCreate(VT_BSTR, 2, plane)),
        UniqueSafeArray(SafeArrayCreate(VT_BSTR, 1, negative)),
        UniqueSafeArray(SafeArrayCreateVector(VT_I4, 3, 4)),
        UniqueSafeArray(SafeArrayCreateVector(VT_VARIANT, 0, 2)),
        UniqueSafeArray(SafeArrayCreateVector(VT_UNKNOWN, 0, 1)),
    };
    for (const UniqueSafeArray& array : arrays)
    {
        ASSERT_TRUE(array);
        EXPECT_EQ(S_OK, m_contact->put_Emails(array.Get()));
        UniqueSafeArray out;
        ASSERT_EQ(S_OK, m_contact->get_Emails(out.Put()));
        VARTYPE given = VT_EMPTY;
        VARTYPE got = VT_EMPTY;
        EXPECT_EQ(S_OK, SafeArrayGetVartype(array.Get(), &given));
        EXPECT_EQ(S_OK, SafeArrayGetVartype(out.Get(), &got));
        EXPECT_EQ(given, got);
        ASSERT_EQ(SafeArrayGetDim(array.Get()), SafeArrayGetDim(out.Get()));
        for (UINT dimension = 1; dimension <= SafeArrayGetDim(array.Get()); ++dimension)
        {
            LONG bounds[4] = {1, 2, 3, 4};
            EXPECT_EQ(S_OK, SafeArrayGetLBound(array.Get(), dimension, &bounds[0]));
            EXPECT_EQ(S_OK, SafeArrayGetLBound(out.Get(), dimension, &bounds[1]));
            EXPECT_EQ(S_OK, SafeArrayGetUBound(array.Get(), dimension, &bounds[2]));
            EXPECT_EQ(S_OK, SafeArrayGetUBound(out.Get(), dimension, &bounds[3]));
            EXPECT_EQ(bounds[0], bounds[1]);
            EXPECT_EQ(bounds[2], bounds[3]);
        }
    }
}

TEST_F(ContactItemTest, AnArrayThatCannotBeCopiedLeavesNone)
{
    const UniqueSafeArray array = ArrayOf({LongTextsFail::Text()});
    for (const ArrayProperty& property : kArrays)
    {
        SCOPED_TRACE(property.name);
        EXPECT_EQ(S_OK, (m_contact.Get()->*property.put)(array.Get()));
        SAFEARRAY* out = nullptr;
        {
            const LongTextsFail fail;
            EXPECT_EQ(E_OUTOFMEMORY, (m_contact.Get()->*property.get)(&out));
            EXPECT_EQ(nullptr, out);
            EXPECT_EQ(E_OUTOFMEMORY, (m_contact.Get()->*property.put)(array.Get()));
        }
        EXPECT_EQ(E_FAIL, (m_contact.Get()->*property.get)(&out));
    }
}

namespace
{
// An element that puts other arrays while the contact lets go of it, and counts its references.
class MeddlingElement final : public IUnknown
{
  public:
    explicit MeddlingElement(INContactItem* contact) : m_contact(contact) {}
    int puts = 0;
    ULONG references = 1;

    STDMETHODIMP QueryInterface(REFIID, void** result) override
    {
        *result = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override
    {
        Meddle();
        return ++references;
    }
    STDMETHODIMP_(ULONG) Release() override
    {
        Meddle();
        return --references;
    }

  private:
    void Meddle()
    {
        if (puts >= 20)
            return;
        ++puts;
        m_contact->put_Emails(puts % 2 ? ArrayOf({L"meddled"}).Get() : nullptr);
    }

    INContactItem* m_contact;
};
} // namespace

TEST_F(ContactItemTest, AnArrayWhoseElementsCallBackIsDestroyedOnce)
{
    MeddlingElement element(m_contact.Get());
    {
        UniqueSafeArray array(SafeArrayCreateVector(VT_UNKNOWN, 0, 1));
        {
            const SafeArrayAccess<IUnknown*> elements(array.Get());
            elements.Data()[0] = &element;
            ++element.references;
        }
        for (int i = 0; i < 3; ++i)
        {
            EXPECT_EQ(S_OK, m_contact->put_Emails(array.Get()));
            UniqueSafeArray out;
            m_contact->get_Emails(out.Put());
        }
    }
    EXPECT_GT(element.puts, 3);
    m_contact.Reset();
    m_entity.Reset();
    EXPECT_EQ(1u, element.references);
}

TEST_F(ContactItemTest, EachPhoneNumberTypeIsAnEntryOfItsOwn)
{
    for (const LONG type : kPhoneTypes)
    {
        const Bstr leftOver(L"left over");
        BSTR out = leftOver.Get();
        EXPECT_EQ(E_FAIL, m_contact->get_PhoneNumber(Phone(type), &out)) << type;
        EXPECT_EQ(leftOver.Get(), out);
        EXPECT_EQ(E_POINTER, m_contact->get_PhoneNumber(Phone(type), nullptr)) << type;
        EXPECT_EQ(S_OK, m_contact->put_PhoneNumber(Phone(type), Bstr(std::to_wstring(type)).Get()));
        EXPECT_EQ(E_POINTER, m_contact->get_PhoneNumber(Phone(type), nullptr)) << type;
    }
    for (const LONG type : kPhoneTypes)
    {
        Bstr out;
        EXPECT_EQ(S_OK, m_contact->get_PhoneNumber(Phone(type), out.Put()));
        EXPECT_EQ(std::to_wstring(type), out.View());
    }
}

TEST_F(ContactItemTest, ANullPhoneNumberIsAnEntryWithoutText)
{
    const Bstr leftOver(L"left over");
    BSTR out = leftOver.Get();
    EXPECT_EQ(E_FAIL, m_contact->get_PhoneNumber(Pager, &out));
    EXPECT_EQ(S_OK, m_contact->put_PhoneNumber(Pager, nullptr));
    EXPECT_EQ(S_OK, m_contact->get_PhoneNumber(Pager, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(E_FAIL, m_contact->get_PhoneNumber(Car, &out)); // the others still have none

    EXPECT_EQ(S_OK, m_contact->put_PhoneNumber(Pager, Bstr(L"+49 30").Get()));
    EXPECT_EQ(S_OK, m_contact->put_PhoneNumber(Pager, nullptr));
    EXPECT_EQ(S_OK, m_contact->get_PhoneNumber(Pager, &out));
    EXPECT_EQ(nullptr, out);
}

TEST_F(ContactItemTest, PhoneNumbersFollowTheFormOfTexts)
{
    const auto read = [&] {
        BSTR out = nullptr;
        EXPECT_EQ(S_OK, m_contact->get_PhoneNumber(Mobile, &out));
        return Bstr::Adopt(out);
    };
    EXPECT_EQ(S_OK, m_contact->put_PhoneNumber(Mobile, Bstr({L"12\0 34", 6}).Get()));
    const Bstr first = read();
    EXPECT_EQ(L"12", first.View());
    EXPECT_NE(first.Get(), read().Get());
    EXPECT_EQ(S_OK, m_contact->put_PhoneNumber(Mobile, Bstr(std::wstring_view()).Get()));
    const Bstr empty = read();
    EXPECT_TRUE(empty);
    EXPECT_EQ(L"", empty.View());
}

TEST_F(ContactItemTest, AnAddressThatWasNeverPutFailsAndLeavesTheOutput)
{
    const _tagNAddress sentinel = {reinterpret_cast<BSTR>(0x11),
                                   reinterpret_cast<BSTR>(0x22),
                                   reinterpret_cast<BSTR>(0x33),
                                   reinterpret_cast<BSTR>(0x44),
                                   reinterpret_cast<BSTR>(0x55),
                                   reinterpret_cast<BSTR>(0x66)};
    EXPECT_EQ(S_OK, m_contact->put_Address(HomeAddress, Address({L"Home"}).Value()));
    for (const LONG type : {1L, 2L, 3L, -1L})
    {
        _tagNAddress out = sentinel;
        EXPECT_EQ(E_FAIL, m_contact->get_Address(AddressType(type), &out)) << type;
        EXPECT_EQ(0, std::memcmp(&sentinel, &out, sizeof(out))) << type;
        EXPECT_EQ(E_POINTER, m_contact->get_Address(AddressType(type), nullptr)) << type;
    }
    EXPECT_EQ(E_POINTER, m_contact->get_Address(HomeAddress, nullptr));
}

TEST_F(ContactItemTest, EveryFieldOfAnAddressIsCopiedInAndOut)
{
    Address given({L"Country", L"State", L"City", L"Street", L"Box", L"Code"});
    EXPECT_EQ(S_OK, m_contact->put_Address(BusinessAddress, given.Value()));
    given.Field(0)[0] = L'?'; // changes the client's record only
    Address first;
    Address second;
    EXPECT_EQ(S_OK, m_contact->get_Address(BusinessAddress, first.Put()));
    EXPECT_EQ(S_OK, m_contact->get_Address(BusinessAddress, second.Put()));
    EXPECT_THAT(first.Texts(),
                ElementsAre(L"Country", L"State", L"City", L"Street", L"Box", L"Code"));
    for (std::size_t i = 0; i < 6; ++i)
        EXPECT_NE(first.Field(i), second.Field(i));
}

TEST_F(ContactItemTest, APutOfAnAddressReplacesTheWholeRecord)
{
    EXPECT_EQ(S_OK,
              m_contact->put_Address(OtherAddress,
                                     Address({L"1", L"2", L"3", L"4", L"5", L"6"}).Value()));
    // Null stays null, an empty text stays one, and a text ends at its first zero.
    Address next({nullptr, L"", nullptr, nullptr, L"new", nullptr});
    next.Field(2) = Bstr({L"ab\0c", 4}).Detach();
    EXPECT_EQ(S_OK, m_contact->put_Address(OtherAddress, next.Value()));
    Address out;
    EXPECT_EQ(S_OK, m_contact->get_Address(OtherAddress, out.Put()));
    EXPECT_THAT(out.Texts(), ElementsAre(L"(null)", L"", L"ab", L"(null)", L"new", L"(null)"));
    EXPECT_EQ(2u, SysStringLen(out.Field(2)));

    // A record of nothing is a record all the same.
    EXPECT_EQ(S_OK, m_contact->put_Address(OtherAddress, Address().Value()));
    EXPECT_EQ(S_OK, m_contact->get_Address(OtherAddress, out.Put()));
    EXPECT_THAT(out.Texts(), testing::Each(L"(null)"));
}

TEST_F(ContactItemTest, EachAddressTypeIsARecordOfItsOwn)
{
    const LONG types[] = {0, 1, 2, 3, -1, 0x7FFFFFFF};
    for (const LONG type : types)
        EXPECT_EQ(S_OK,
                  m_contact->put_Address(AddressType(type),
                                         Address({std::to_wstring(type).c_str()}).Value()));
    for (const LONG type : types)
    {
        Address out;
        EXPECT_EQ(S_OK, m_contact->get_Address(AddressType(type), out.Put())) << type;
        EXPECT_EQ(std::to_wstring(type), out.Texts()[0]);
    }
}

TEST_F(ContactItemTest, ATextThatFindsNoMemoryIsOutOfMemory)
{
    const Bstr text(LongTextsFail::Text());
    const Bstr held(LongTextsFail::Text() + L"y");
    const Address address({nullptr, L"short", nullptr, nullptr, nullptr, text.Get()});
    EXPECT_EQ(S_OK, m_contact->put_FirstName(held.Get()));
    EXPECT_EQ(S_OK, m_contact->put_PersistentID(held.Get()));
    EXPECT_EQ(S_OK, m_contact->put_Address(HomeAddress, address.Value()));
    BSTR out = text.Get();
    Address noAddress({L"stays"});
    _tagNAddress untouched = noAddress.Value();
    {
        const LongTextsFail fail;
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->put_FirstName(text.Get()));
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->put_PersistentID(text.Get()));
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->put_PhoneNumber(Home1, text.Get()));
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->SetStringByIndex(kPers, text.Get()));
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->put_Address(BusinessAddress, address.Value()));
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->get_Address(HomeAddress, &untouched));
        EXPECT_EQ(E_OUTOFMEMORY, m_contact->get_FirstName(&out));
    }
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(0, std::memcmp(&noAddress.Value(), &untouched, sizeof(untouched)));
    EXPECT_EQ(held.View(), Get(TextNamed("FirstName"), m_contact.Get()).View());
    EXPECT_EQ(held.View(), Get(kPersistentID, m_contact.Get()).View());
    // The entry of a phone number comes before its text; an address comes whole or not at all.
    EXPECT_EQ(S_OK, m_contact->get_PhoneNumber(Home1, &out));
    EXPECT_EQ(nullptr, out);
    EXPECT_EQ(E_FAIL, m_contact->get_Address(BusinessAddress, &untouched));
}

TEST_F(ContactItemTest, APictureStreamNeverComesOut)
{
    const ComPtr<INContactItem> stream = CreateObject<INContactItem>(CLSID_NContactItem);
    IUnknown* const sentinel = reinterpret_cast<IUnknown*>(0x1234);
    for (IUnknown* put : {static_cast<IUnknown*>(nullptr), static_cast<IUnknown*>(stream.Get())})
    {
        IUnknown* out = sentinel;
        EXPECT_EQ(S_OK, m_contact->get_PictureStream(&out));
        EXPECT_EQ(sentinel, out);
        EXPECT_EQ(E_POINTER, m_contact->get_PictureStream(nullptr));
        EXPECT_EQ(S_OK, m_contact->put_PictureStream(put));
        EXPECT_EQ(S_OK, m_contact->get_PictureStream(&out));
        EXPECT_EQ(sentinel, out);
        EXPECT_EQ(E_POINTER, m_contact->get_PictureStream(nullptr));
    }
    // No reference was taken, and none is given back.
    EXPECT_EQ(1u, ReferenceCount(stream.Get()));
    m_contact.Reset();
    m_entity.Reset();
    EXPECT_EQ(1u, ReferenceCount(stream.Get()));
}

TEST_F(ContactItemTest, EveryStringIndexGivesItsProperty)
{
    PutOwnTexts(kTexts, m_contact.Get());
    PutOwnTexts(std::initializer_list<Contact>{kPersistentID}, m_contact.Get());
    for (const auto& row : kStringIndexes)
    {
        const std::string name = row.property;
        EXPECT_EQ(L"only " + std::wstring(name.begin(), name.end()), TextAt(row.index).View());
    }
}

TEST_F(ContactItemTest, EveryStringIndexSetsItsPropertyAndNoOther)
{
    for (const auto& row : kStringIndexes)
    {
        SCOPED_TRACE(row.property);
        PutOwnTexts(kTexts, m_contact.Get());
        PutOwnTexts(std::initializer_list<Contact>{kPersistentID}, m_contact.Get());
        const Contact& target = TextNamed(row.property);
        const Bstr value({L"set\0cut", 7});
        if (!row.settable)
        {
            EXPECT_EQ(E_NOTIMPL, m_contact->SetStringByIndex(row.index, value.Get()));
            EXPECT_EQ(E_NOTIMPL, m_contact->SetStringByIndex(row.index, nullptr));
        }
        else
        {
            EXPECT_EQ(S_OK, m_contact->SetStringByIndex(row.index, value.Get()));
            EXPECT_EQ(L"set", Get(target, m_contact.Get()).View());
            // Null stands for an empty text, also where the property itself refuses null.
            EXPECT_EQ(S_OK, m_contact->SetStringByIndex(row.index, nullptr));
            const Bstr empty = Get(target, m_contact.Get());
            EXPECT_TRUE(empty);
            EXPECT_EQ(L"", empty.View());
            PutOwnTexts(std::initializer_list<Contact>{target}, m_contact.Get());
        }
        ExpectOwnTexts(kTexts, m_contact.Get());
        ExpectOwnTexts(std::initializer_list<Contact>{kPersistentID}, m_contact.Get());
    }
}

TEST_F(ContactItemTest, TheEntryIdCanBeReadByIndexButNotSet)
{
    EXPECT_EQ(S_OK, m_entity->put_EntityID(Bstr(L"id").Get()));
    EXPECT_EQ(L"id", TextAt(kEntr).View());
    EXPECT_EQ(E_NOTIMPL, m_contact->SetStringByIndex(kEntr, Bstr(L"other").Get()));
    EXPECT_EQ(L"id", TextAt(kEntr).View());
}

TEST_F(ContactItemTest, ATextThatIsNullIsNullByIndexToo)
{
    for (const auto& row : kStringIndexes)
        EXPECT_FALSE(TextAt(row.index)) << row.property;
}

TEST_F(ContactItemTest, StringIndexesThatAreNoneAreRefused)
{
    for (const LONG index : kNoStringIndexes)
    {
        const Bstr leftOver(L"left over");
        BSTR out = leftOver.Get();
        EXPECT_EQ(E_NOTIMPL, m_contact->GetStringByIndex(index, &out)) << std::hex << index;
        EXPECT_EQ(leftOver.Get(), out);
        EXPECT_EQ(E_NOTIMPL, m_contact->SetStringByIndex(index, leftOver.Get()))
            << std::hex << index;
    }
    EXPECT_EQ(E_INVALIDARG, m_contact->GetStringByIndex(kCompany, nullptr));
}

TEST_F(ContactItemTest, ValueIndexesReadAndSetTheDates)
{
    EXPECT_EQ(S_OK, m_contact->put_Anniversary(1.5));
    EXPECT_EQ(S_OK, m_contact->put_Birthday(2.5));
    EXPECT_EQ(S_OK, m_entity->put_LastModificationTime(3.5));
    const struct
    {
        LONG index;
        DATE before;
        DATE after;
    } rows[] = {{kAnni, 1.5, 10.25}, {kBirt, 2.5, 20.25}, {kLast, 3.5, 30.25}};
    for (const auto& row : rows)
    {
        Variant value;
        EXPECT_EQ(S_OK, m_contact->GetPropertyValue(row.index, value.Get()));
        EXPECT_EQ(VT_DATE, value.Type());
        EXPECT_EQ(row.before, value.Value().date);
        value.Get()->date = row.after;
        EXPECT_EQ(S_OK, m_contact->SetPropertyValue(row.index, value.Get()));
    }
    EXPECT_EQ(10.25, Get(kAnniversary, m_contact.Get()));
    EXPECT_EQ(20.25, Get(kBirthday, m_contact.Get()));
    EXPECT_EQ(30.25, Get(kModified, m_entity.Get()));
}

TEST_F(ContactItemTest, TheIndexOfTheLastNameIsAlsoThatOfTheModificationTime)
{
    EXPECT_EQ(S_OK, m_contact->put_LastName(Bstr(L"Ng").Get()));
    EXPECT_EQ(S_OK, m_entity->put_LastModificationTime(4.0));
    EXPECT_EQ(L"Ng", TextAt(kLast).View());
    Variant value;
    EXPECT_EQ(S_OK, m_contact->GetPropertyValue(kLast, value.Get()));
    EXPECT_EQ(4.0, value.Value().date);
}

TEST_F(ContactItemTest, ValueIndexesThatAreNoneAreRefused)
{
    for (const LONG index : {0L, kCompany, kPers, kAnni + 1, 0x616E6E69L, 0x7FFFFFFFL, -1L})
    {
        Variant value = Variant::Date(9.0);
        EXPECT_EQ(E_NOTIMPL, m_contact->GetPropertyValue(index, value.Get())) << std::hex << index;
        EXPECT_EQ(E_NOTIMPL, m_contact->SetPropertyValue(index, value.Get())) << std::hex << index;
        EXPECT_EQ(9.0, value.Value().date);
        Variant number(5L);
        EXPECT_EQ(E_NOTIMPL, m_contact->GetPropertyValue(index, number.Get()));
        EXPECT_EQ(VT_I4, number.Type()); // an output is written on success only
    }
}

TEST_F(ContactItemTest, ADateMustComeAsADate)
{
    EXPECT_EQ(S_OK, m_contact->put_Birthday(2.5));
    DATE date = 9.0;
    Variant wrong[] = {Variant(L"2.5.1970"),
                       Variant(9.0),
                       Variant(9L),
                       Variant(),
                       ByReference(VT_DATE, &date),
                       ByReference(VT_VARIANT, Variant::Date(9.0).Get())};
    for (Variant& value : wrong)
        for (const LONG index : {kAnni, kBirt, kLast})
            EXPECT_EQ(E_INVALIDARG, m_contact->SetPropertyValue(index, value.Get()))
                << value.Type();
    for (const LONG index : {kAnni, kBirt, kLast})
    {
        EXPECT_EQ(E_INVALIDARG, m_contact->SetPropertyValue(index, nullptr));
        EXPECT_EQ(E_INVALIDARG, m_contact->GetPropertyValue(index, nullptr));
    }
    EXPECT_EQ(2.5, Get(kBirthday, m_contact.Get()));
    EXPECT_EQ(0.0, Get(kAnniversary, m_contact.Get()));
    EXPECT_EQ(0.0, Get(kModified, m_entity.Get()));
}

TEST_F(ContactItemTest, LateBoundCallsReachEveryText)
{
    const auto wide = [](const char* name) { return std::wstring(name, name + std::strlen(name)); };
    std::vector<std::string> names = {"PersistentID"};
    for (const Contact& property : kTexts)
        names.push_back(property.name);
    for (const std::string& name : names)
        EXPECT_EQ(S_OK,
                  DispatchPut(m_contact.Get(),
                              wide(name.c_str()).c_str(),
                              {Variant(wide(name.c_str()).c_str())})
                      .result)
            << name;
    for (const std::string& name : names)
    {
        EXPECT_EQ(wide(name.c_str()), Get(TextNamed(name), m_contact.Get()).View());
        const DispatchResult got = DispatchGet(m_contact.Get(), wide(name.c_str()).c_str());
        EXPECT_EQ(S_OK, got.result) << name;
        EXPECT_EQ(wide(name.c_str()), got.value.Text());
    }
    EXPECT_EQ(S_OK, DispatchPut(m_entity.Get(), L"EntityID", {Variant(L"id")}).result);
    EXPECT_EQ(S_OK, DispatchPut(m_entity.Get(), L"folderid", {Variant(L"folder")}).result);
    EXPECT_EQ(L"id", DispatchGet(m_contact.Get(), L"PersistentID").value.Text());
    EXPECT_EQ(L"folder", DispatchGet(m_contact.Get(), L"ParentFolderID").value.Text());
}

TEST_F(ContactItemTest, LateBoundCallsReachDatesAndNumbers)
{
    EXPECT_EQ(S_OK, DispatchPut(m_contact.Get(), L"Birthday", {Variant::Date(1.5)}).result);
    EXPECT_EQ(S_OK, DispatchPut(m_contact.Get(), L"anniversary", {Variant(2L)}).result);
    EXPECT_EQ(S_OK,
              DispatchPut(m_entity.Get(), L"LastModificationTime", {Variant::Date(3.5)}).result);
    const DispatchResult birthday = DispatchGet(m_contact.Get(), L"Birthday");
    EXPECT_EQ(VT_DATE, birthday.value.Type());
    EXPECT_EQ(1.5, birthday.value.Value().date);
    EXPECT_EQ(2.0, DispatchGet(m_contact.Get(), L"Anniversary").value.Value().date);
    EXPECT_EQ(3.5, DispatchGet(m_entity.Get(), L"LastModificationTime").value.Value().date);

    const Variant mobile(1L);
    EXPECT_EQ(S_OK,
              DispatchPut(m_contact.Get(), L"PhoneNumber", {mobile, Variant(L"+49 170")}).result);
    Bstr number;
    EXPECT_EQ(S_OK, m_contact->get_PhoneNumber(Mobile, number.Put()));
    EXPECT_EQ(L"+49 170", number.View());
    EXPECT_EQ(L"+49 170", DispatchGet(m_contact.Get(), L"PhoneNumber", {mobile}).value.Text());
    const DispatchResult none = DispatchGet(m_contact.Get(), L"PhoneNumber", {Variant(2L)});
    EXPECT_EQ(DISP_E_EXCEPTION, none.result);
    EXPECT_EQ(E_FAIL, none.exceptionCode);
}

TEST_F(ContactItemTest, LateBoundCallsReachTheArrays)
{
    for (const wchar_t* name : {L"Emails", L"CategoryIDs"})
    {
        const DispatchResult none = DispatchGet(m_contact.Get(), name);
        EXPECT_EQ(DISP_E_EXCEPTION, none.result);
        EXPECT_EQ(E_FAIL, none.exceptionCode);
        Variant array;
        array.Get()->vt = VT_ARRAY | VT_BSTR;
        array.Get()->parray = ArrayOf({name, L"second"}).Detach();
        EXPECT_EQ(S_OK, DispatchPut(m_contact.Get(), name, {array}).result);
        const DispatchResult got = DispatchGet(m_contact.Get(), name);
        EXPECT_EQ(S_OK, got.result);
        ASSERT_EQ(VT_ARRAY | VT_BSTR, got.value.Type());
        EXPECT_THAT(TextsOf(got.value.Value().parray), ElementsAre(name, L"second"));
    }
}

TEST_F(ContactItemTest, LateBoundCallsReachTheIndexes)
{
    EXPECT_EQ(S_OK,
              DispatchCall(m_contact.Get(), L"SetStringByIndex", {Variant(kLast), Variant(L"Ng")})
                  .result);
    BSTR text = nullptr;
    EXPECT_EQ(S_OK,
              DispatchCall(m_contact.Get(),
                           L"GetStringByIndex",
                           {Variant(kLast), ByReference(VT_BSTR, &text)})
                  .result);
    EXPECT_EQ(L"Ng", Bstr::Adopt(text).View());

    Variant date = Variant::Date(7.5);
    EXPECT_EQ(S_OK,
              DispatchCall(m_contact.Get(),
                           L"SetPropertyValue",
                           {Variant(kBirt), ByReference(VT_VARIANT, date.Get())})
                  .result);
    EXPECT_EQ(7.5, Get(kBirthday, m_contact.Get()));
    Variant out;
    EXPECT_EQ(S_OK,
              DispatchCall(m_contact.Get(),
                           L"GetPropertyValue",
                           {Variant(kBirt), ByReference(VT_VARIANT, out.Get())})
                  .result);
    EXPECT_EQ(VT_DATE, out.Type());
    EXPECT_EQ(7.5, out.Value().date);

    const DispatchResult noIndex =
        DispatchCall(m_contact.Get(), L"SetStringByIndex", {Variant(kEntr), Variant(L"x")});
    EXPECT_EQ(DISP_E_EXCEPTION, noIndex.result);
    EXPECT_EQ(E_NOTIMPL, noIndex.exceptionCode);
    Variant wrong(L"1.1.1970");
    const DispatchResult noDate =
        DispatchCall(m_contact.Get(),
                     L"SetPropertyValue",
                     {Variant(kBirt), ByReference(VT_VARIANT, wrong.Get())});
    EXPECT_EQ(DISP_E_EXCEPTION, noDate.result);
    EXPECT_EQ(E_INVALIDARG, noDate.exceptionCode);
}

TEST_F(ContactItemTest, ALateBoundPictureStreamIsNothing)
{
    const ComPtr<INContactItem> stream = CreateObject<INContactItem>(CLSID_NContactItem);
    EXPECT_EQ(
        S_OK,
        DispatchPut(m_contact.Get(), L"PictureStream", {Variant::Object(stream.Get())}).result);
    EXPECT_EQ(1u, ReferenceCount(stream.Get()));
    const DispatchResult got = DispatchGet(m_contact.Get(), L"PictureStream");
    EXPECT_EQ(S_OK, got.result);
    EXPECT_EQ(VT_UNKNOWN, got.value.Type());
    EXPECT_EQ(nullptr, got.value.Value().punkVal);
}

TEST_F(ContactItemTest, EachInterfaceDispatchesItsOwnNamesOnly)
{
    EXPECT_EQ(DISP_E_UNKNOWNNAME, DispatchGet(m_contact.Get(), L"EntityID").result);
    EXPECT_EQ(DISP_E_UNKNOWNNAME, DispatchGet(m_entity.Get(), L"FirstName").result);
    EXPECT_EQ(DISP_E_UNKNOWNNAME, DispatchGet(m_contact.Get(), L"NoSuchName").result);
}

TEST_F(ContactItemTest, ALateBoundFailureArrivesAsAnException)
{
    Variant null;
    null.Get()->vt = VT_BSTR;
    null.Get()->bstrVal = nullptr;
    const DispatchResult put = DispatchPut(m_contact.Get(), L"PersistentID", {null});
    EXPECT_EQ(DISP_E_EXCEPTION, put.result);
    EXPECT_EQ(E_POINTER, put.exceptionCode);
    EXPECT_EQ(DISP_E_TYPEMISMATCH,
              DispatchPut(m_contact.Get(), L"Birthday", {Variant(L"soon")}).result);
}

// The record of an address has no GUID, so that no variant can carry it and what becomes of a
// late-bound call is the platform's affair: the same call straight through the type information is
// the measure. The value is never half taken.
TEST_F(ContactItemTest, ALateBoundAddressGivesWhatTheTypeInformationGives)
{
    EXPECT_EQ(S_OK, m_contact->put_Address(HomeAddress, Address({L"before"}).Value()));
    ComPtr<ITypeInfo> info;
    ASSERT_EQ(S_OK, m_contact->GetTypeInfo(0, 0, info.GetAddressOf()));
    Address given({L"after"});
    DISPID put = DISPID_PROPERTYPUT;
    for (const WORD flags : {WORD{DISPATCH_PROPERTYGET}, WORD{DISPATCH_PROPERTYPUT}})
    {
        const bool isPut = flags == DISPATCH_PROPERTYPUT;
        VARIANTARG arguments[2]; // the last one first; the record is borrowed
        VariantInit(&arguments[0]);
        VariantInit(&arguments[1]);
        arguments[0].vt = isPut ? VARTYPE{VT_RECORD} : VARTYPE{VT_I4};
        if (isPut)
        {
            arguments[0].pvRecord = const_cast<_tagNAddress*>(&given.Value());
            arguments[0].pRecInfo = nullptr;
            arguments[1].vt = VT_I4;
        }
        arguments[isPut].lVal = HomeAddress;
        DISPPARAMS parameters{arguments, isPut ? &put : nullptr, isPut ? 2u : 1u, isPut ? 1u : 0u};
        VARIANT* const noResult = nullptr;
        Variant direct;
        Variant ours;
        const HRESULT expected = info->Invoke(m_contact.Get(),
                                              12,
                                              flags,
                                              &parameters,
                                              isPut ? noResult : direct.Get(),
                                              nullptr,
                                              nullptr);
        EXPECT_EQ(expected,
                  m_contact->Invoke(12,
                                    IID_NULL,
                                    LOCALE_USER_DEFAULT,
                                    flags,
                                    &parameters,
                                    isPut ? noResult : ours.Get(),
                                    nullptr,
                                    nullptr))
            << flags;
        EXPECT_EQ(direct.Type(), ours.Type());
        Address out;
        EXPECT_EQ(S_OK, m_contact->get_Address(HomeAddress, out.Put()));
        EXPECT_EQ(isPut && SUCCEEDED(expected) ? L"after" : L"before", out.Texts()[0]);
    }
}

TEST_F(ContactItemTest, TheObjectLocksTheServerFromMakingToRelease)
{
    CServerModule* module = CServerModule::Current();
    const LONG before = module->GetLockCount();
    ComPtr<INContactItem> another = CreateObject<INContactItem>(CLSID_NContactItem);
    EXPECT_EQ(before + 1, module->GetLockCount());
    EXPECT_EQ(1u, ReferenceCount(another.Get()));
    another.Reset();
    EXPECT_EQ(before, module->GetLockCount());
}

TEST(ContactItemAggregationTest, LivesInsideAnOuterObject)
{
    CServerModule* module = CServerModule::Current();
    const LONG before = module->GetLockCount();
    TestOuter outer;
    ASSERT_EQ(S_OK, outer.Aggregate(CLSID_NContactItem));
    EXPECT_EQ(before + 1, module->GetLockCount());
    {
        ComPtr<INContactItem> contact;
        ASSERT_EQ(S_OK,
                  outer.QueryInterface(IID_INContactItem,
                                       reinterpret_cast<void**>(contact.GetAddressOf())));
        ComPtr<INEntityItem> entity;
        ASSERT_EQ(S_OK, contact.As(&entity));
        EXPECT_EQ(3u, outer.References());
        ComPtr<IPersist> outerOnly;
        EXPECT_EQ(S_OK, entity.As(&outerOnly)); // an interface of the outer object alone
        EXPECT_EQ(S_OK, contact->put_PersistentID(Bstr(L"inside").Get()));
        EXPECT_EQ(L"inside", DispatchGet(entity.Get(), L"EntityID").value.Text());
    }
    EXPECT_EQ(1u, outer.References());
    outer.DropInner();
    EXPECT_EQ(before, module->GetLockCount());
}

TEST(ContactItemAggregationTest, AnOuterObjectMayAskForTheInnerUnknownOnly)
{
    TestOuter outer;
    void* result = &outer;
    EXPECT_EQ(
        CLASS_E_NOAGGREGATION,
        CoCreateInstance(CLSID_NContactItem, &outer, kServerContext, IID_INContactItem, &result));
    EXPECT_EQ(nullptr, result);
    EXPECT_EQ(1u, outer.References());
}
