// Names of properties.
#include "tests/storeconformance/StoreConformanceTest.h"

namespace
{
constexpr GUID kSet = {0x00062004, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr GUID kOtherSet = {0x00062008, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
constexpr GUID kStringSet = {0x00020329, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

struct Name
{
    explicit Name(const GUID& set, LONG number) : guid(set)
    {
        id.lpguid = &guid;
        id.ulKind = MNID_ID;
        id.Kind.lID = number;
    }
    explicit Name(const GUID& set, const wchar_t* text) : guid(set)
    {
        id.lpguid = &guid;
        id.ulKind = MNID_STRING;
        id.Kind.lpwstrName = const_cast<wchar_t*>(text);
    }
    Name(const Name&) = delete;
    Name& operator=(const Name&) = delete;

    GUID guid;
    MAPINAMEID id = {};
};

std::vector<ULONG> IdsOf(IMAPIProp* object,
                         const MapiFunctions& mapi,
                         std::initializer_list<Name*> names,
                         ULONG flags,
                         HRESULT wanted)
{
    std::vector<MAPINAMEID*> pointers;
    for (Name* const name : names)
        pointers.push_back(&name->id);
    SPropTagArray* tags = nullptr;
    EXPECT_EQ(wanted,
              object->GetIDsFromNames(
                  static_cast<ULONG>(pointers.size()), pointers.data(), flags, &tags));
    if (!tags)
        return {};
    const std::vector<ULONG> ids(tags->aulPropTag, tags->aulPropTag + tags->cValues);
    mapi.freeBuffer(tags);
    return ids;
}
} // namespace

TEST_P(StoreConformanceTest, CreatesNoNameThatIsOnlyAskedFor)
{
    Name name(kSet, 0x7F01);
    // Twice, since the first call must not have made it.
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(std::vector<ULONG>{PT_ERROR},
                  IdsOf(m_contacts.Get(), *m_mapi, {&name}, 0, MAPI_W_ERRORS_RETURNED));
}

TEST_P(StoreConformanceTest, CreatesNamesWhereItIsAskedTo)
{
    Name number(kSet, 0x7F01);
    Name otherSet(kOtherSet, 0x7F01);
    Name text(kStringSet, L"Keywords of a test");
    Name unknown(kStringSet, L"unknown to the store");
    const std::vector<ULONG> made =
        IdsOf(m_contacts.Get(), *m_mapi, {&number, &otherSet, &text}, MAPI_CREATE, S_OK);
    ASSERT_EQ(3u, made.size());
    for (const ULONG tag : made)
    {
        EXPECT_GE(PROP_ID(tag), 0x8000u);
        EXPECT_EQ(static_cast<ULONG>(PT_UNSPECIFIED), PROP_TYPE(tag));
    }
    EXPECT_NE(made[0], made[1]);
    EXPECT_NE(made[0], made[2]);
    EXPECT_NE(made[1], made[2]);
    // The same for every object of the store, and for each later call.
    const auto message = NewMessage(L"one");
    EXPECT_EQ((std::vector<ULONG>{made[2], PT_ERROR, made[0]}),
              IdsOf(message.Get(), *m_mapi, {&text, &unknown, &number}, 0, MAPI_W_ERRORS_RETURNED));
    EXPECT_EQ(made,
              IdsOf(m_calendar.Get(), *m_mapi, {&number, &otherSet, &text}, MAPI_CREATE, S_OK));
}

TEST_P(StoreConformanceTest, TextNamesAreExact)
{
    Name name(kStringSet, L"Exact");
    Name other(kStringSet, L"exact");
    const std::vector<ULONG> made =
        IdsOf(m_contacts.Get(), *m_mapi, {&name, &other}, MAPI_CREATE, S_OK);
    EXPECT_NE(made[0], made[1]);
}

TEST_P(StoreConformanceTest, NamedPropertiesHoldValuesLikeOthers)
{
    Name name(kSet, 0x7F01);
    const ULONG tag = IdsOf(m_contacts.Get(), *m_mapi, {&name}, MAPI_CREATE, S_OK)[0];
    const auto message = NewMessage(L"one", false);
    Set(message.Get(), {TextProp(CHANGE_PROP_TYPE(tag, PT_UNICODE), L"value")});
    Save(message.Get());
    const auto again = Open<IMessage>(EntryIdOf(message.Get()));
    // Asked for as it was given, without a type.
    const Props props = Get(again.Get(), {tag});
    ASSERT_EQ(CHANGE_PROP_TYPE(tag, PT_UNICODE), props[0].ulPropTag);
    EXPECT_STREQ(L"value", props[0].Value.lpszW);
    // And in a table.
    EXPECT_EQ(std::vector<std::wstring>{L"value"},
              Column(Contents().Get(), CHANGE_PROP_TYPE(tag, PT_UNICODE)));
}

TEST_P(StoreConformanceTest, TellsTheNamesOfIds)
{
    Name number(kSet, 0x7F01);
    Name text(kStringSet, L"Keywords of a test");
    const std::vector<ULONG> made =
        IdsOf(m_contacts.Get(), *m_mapi, {&number, &text}, MAPI_CREATE, S_OK);
    Tags tags{made[0], made[1]};
    SPropTagArray* wanted = tags.Get();
    ULONG count = 0;
    MAPINAMEID** names = nullptr;
    ASSERT_EQ(S_OK, m_contacts->GetNamesFromIDs(&wanted, nullptr, 0, &count, &names));
    ASSERT_EQ(2u, count);
    EXPECT_TRUE(IsEqualGUID(kSet, *names[0]->lpguid));
    EXPECT_EQ(static_cast<ULONG>(MNID_ID), names[0]->ulKind);
    EXPECT_EQ(0x7F01, names[0]->Kind.lID);
    EXPECT_TRUE(IsEqualGUID(kStringSet, *names[1]->lpguid));
    EXPECT_EQ(static_cast<ULONG>(MNID_STRING), names[1]->ulKind);
    EXPECT_STREQ(L"Keywords of a test", names[1]->Kind.lpwstrName);
    m_mapi->freeBuffer(names);
}

TEST_P(StoreConformanceTest, RefusesBrokenNames)
{
    SPropTagArray* tags = nullptr;
    Name name(kSet, 1);
    MAPINAMEID* names[] = {&name.id};
    EXPECT_TRUE(FAILED(m_contacts->GetIDsFromNames(1, names, 0, nullptr)));
    EXPECT_TRUE(FAILED(m_contacts->GetIDsFromNames(1, nullptr, 0, &tags)));
    EXPECT_TRUE(FAILED(m_contacts->GetIDsFromNames(0xFFFFFFFF, names, 0, &tags)));
    EXPECT_EQ(nullptr, tags);
}
