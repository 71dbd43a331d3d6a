// Messages: when what is written is there, for whom, and how it is read.
#include "tests/storeconformance/StoreConformanceTest.h"

#include <cstring>
#include <functional>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr ULONG kFirstOwn = 0x6800; // IDs that belong to no published property
} // namespace

TEST_P(ItemConformanceTest, ANewMessageIsNowhereBeforeItIsSaved)
{
    const auto message = NewItem(L"one", false);
    const Props props = Get(message.Get(), {PR_ENTRYID, PR_SUBJECT_W});
    EXPECT_EQ(CHANGE_PROP_TYPE(PR_ENTRYID, PT_ERROR), props[0].ulPropTag);
    EXPECT_EQ(MAPI_E_NOT_FOUND, props[0].Value.err);
    // Its own changes it sees.
    EXPECT_STREQ(L"one", props[1].Value.lpszW);
    EXPECT_THAT(Column(Contents().Get(), PR_SUBJECT_W), IsEmpty());
}

TEST_P(ItemConformanceTest, SavingGivesEntryIdAndModificationTime)
{
    const auto message = NewItem(L"one", false);
    Save(message.Get(), FORCE_SAVE);
    const Props props = Get(message.Get(), {PR_ENTRYID, PR_LAST_MODIFICATION_TIME});
    EXPECT_EQ(PR_ENTRYID, props[0].ulPropTag);
    ASSERT_EQ(PR_LAST_MODIFICATION_TIME, props[1].ulPropTag);
    EXPECT_GT(props[1].Value.ft.dwHighDateTime, 0u);
    EXPECT_THAT(Column(Contents().Get(), PR_SUBJECT_W), ElementsAre(L"one"));
}

TEST_P(ItemConformanceTest, EntryIdsStayAndTimesGoForward)
{
    const auto message = NewItem(L"one");
    const EntryIdBytes id = EntryIdOf(message.Get());
    const FILETIME first = Get(message.Get(), {PR_LAST_MODIFICATION_TIME})[0].Value.ft;
    Set(message.Get(), {TextProp(PR_SUBJECT_W, L"two")});
    Save(message.Get());
    EXPECT_EQ(id, EntryIdOf(message.Get()));
    const auto again = OpenItem(id);
    EXPECT_EQ(id, EntryIdOf(again.Get()));
    EXPECT_EQ(L"two", TextOf(again.Get(), PR_SUBJECT_W));
    const FILETIME second = Get(again.Get(), {PR_LAST_MODIFICATION_TIME})[0].Value.ft;
    EXPECT_GE(CompareFileTime(&second, &first), 0);
}

TEST_P(StoreConformanceTest, OpensAMessageFromEveryContainer)
{
    const EntryIdBytes id = AddMessage(L"one");
    const auto check = [&](IMessage* message) {
        ASSERT_NE(nullptr, message);
        EXPECT_EQ(L"one", TextOf(message, PR_SUBJECT_W));
    };
    check(OpenFrom<IMessage>(m_contacts.Get(), id).Get());
    check(OpenFrom<IMessage>(m_calendar.Get(), id).Get());
    check(OpenFrom<IMessage>(m_store.Get(), id).Get());
    // Folders, too.
    const EntryIdBytes folder = EntryIdOf(m_contacts.Get());
    EXPECT_EQ(folder, EntryIdOf(OpenFrom<IMAPIFolder>(m_calendar.Get(), folder).Get()));
}

TEST_P(StoreConformanceTest, TellsTheTypeOfWhatItOpens)
{
    const auto typeOf = [&](EntryIdBytes id) {
        ULONG type = 0;
        Com<IUnknown> opened;
        EXPECT_EQ(S_OK,
                  m_store->OpenEntry(static_cast<ULONG>(id.size()),
                                     AsEntryId(id),
                                     nullptr,
                                     0,
                                     &type,
                                     opened.GetAddressOf()));
        return type;
    };
    EXPECT_EQ(static_cast<ULONG>(MAPI_MESSAGE), typeOf(AddMessage(L"one")));
    EXPECT_EQ(static_cast<ULONG>(MAPI_FOLDER), typeOf(EntryIdOf(m_contacts.Get())));
}

TEST_P(ItemConformanceTest, ChangesAreUnseenByOthersBeforeTheyAreSaved)
{
    const EntryIdBytes id = AddItem(L"one");
    const auto writer = OpenItem(id);
    Set(writer.Get(), {TextProp(PR_SUBJECT_W, L"two")});
    EXPECT_EQ(L"two", TextOf(writer.Get(), PR_SUBJECT_W));
    EXPECT_EQ(L"one", TextOf(OpenItem(id).Get(), PR_SUBJECT_W));
    EXPECT_THAT(Column(Contents().Get(), PR_SUBJECT_W), ElementsAre(L"one"));
    Save(writer.Get());
    EXPECT_EQ(L"two", TextOf(OpenItem(id).Get(), PR_SUBJECT_W));
}

TEST_P(ItemConformanceTest, ForgetsWhatIsNotSaved)
{
    const EntryIdBytes id = AddItem(L"one");
    {
        const auto writer = OpenItem(id);
        Set(writer.Get(), {TextProp(PR_SUBJECT_W, L"two")});
        NewItem(L"never", false);
    }
    EXPECT_EQ(L"one", TextOf(OpenItem(id).Get(), PR_SUBJECT_W));
    EXPECT_THAT(Column(Contents().Get(), PR_SUBJECT_W), ElementsAre(L"one"));
}

TEST_P(ItemConformanceTest, TellsOfAMessageThatChangedMeanwhile)
{
    const EntryIdBytes id = AddItem(L"one");
    const auto first = OpenItem(id);
    const auto second = OpenItem(id);
    Set(first.Get(), {TextProp(PR_SUBJECT_W, L"first")});
    Set(second.Get(), {TextProp(PR_SUBJECT_W, L"second")});
    Save(first.Get());
    EXPECT_EQ(MAPI_E_OBJECT_CHANGED, second->SaveChanges(KEEP_OPEN_READWRITE));
    EXPECT_EQ(L"first", TextOf(OpenItem(id).Get(), PR_SUBJECT_W));
    Save(second.Get(), FORCE_SAVE);
    EXPECT_EQ(L"second", TextOf(OpenItem(id).Get(), PR_SUBJECT_W));
}

TEST_P(ItemConformanceTest, RefusesToChangeWhatWasOpenedForReading)
{
    const EntryIdBytes id = AddItem(L"one");
    SPropValue value = TextProp(PR_SUBJECT_W, L"two");
    {
        const auto reader = OpenItem(id, 0);
        ASSERT_TRUE(reader);
        EXPECT_EQ(MAPI_E_NO_ACCESS, reader->SetProps(1, &value, nullptr));
        EXPECT_EQ(MAPI_E_NO_ACCESS, reader->DeleteProps(Tags({PR_SUBJECT_W}).Get(), nullptr));
    }
    for (const ULONG flags : {MAPI_MODIFY, MAPI_BEST_ACCESS})
    {
        const auto writer = OpenItem(id, flags);
        EXPECT_EQ(S_OK, writer->SetProps(1, &value, nullptr));
    }
}

TEST_P(ItemConformanceTest, ReadsUnderTheFlagThatListsPass)
{
    // Lists of items open their entries with the flag 2, which no rule of OpenEntry names.
    const auto message = OpenItem(AddItem(L"one"), 2);
    ASSERT_TRUE(message);
    EXPECT_EQ(L"one", TextOf(message.Get(), PR_SUBJECT_W));
}

TEST_P(ItemConformanceTest, MissingPropertiesAreErrorsUnderAWarning)
{
    const auto message = NewItem(L"one");
    Tags tags{PR_SUBJECT_W, PR_GIVEN_NAME_W, PR_SUBJECT_W};
    ULONG count = 0;
    SPropValue* values = nullptr;
    ASSERT_EQ(MAPI_W_ERRORS_RETURNED, message->GetProps(tags.Get(), MAPI_UNICODE, &count, &values));
    const auto owner = Own(values);
    // In the order of the tags, the same one as often as it was asked for.
    ASSERT_EQ(3u, count);
    EXPECT_EQ(PR_SUBJECT_W, values[0].ulPropTag);
    EXPECT_EQ(CHANGE_PROP_TYPE(PR_GIVEN_NAME_W, PT_ERROR), values[1].ulPropTag);
    EXPECT_EQ(MAPI_E_NOT_FOUND, values[1].Value.err);
    EXPECT_STREQ(L"one", values[2].Value.lpszW);

    ASSERT_EQ(S_OK, message->GetProps(Tags({PR_SUBJECT_W}).Get(), MAPI_UNICODE, &count, &values));
    EXPECT_EQ(1u, count);
    m_mapi->freeBuffer(values);
}

TEST_P(ItemConformanceTest, GivesTextInTheFormThatWasAskedFor)
{
    const auto message = NewItem(L"one", false);
    SPropValue narrow = {};
    narrow.ulPropTag = PROP_TAG(PT_STRING8, kFirstOwn);
    char text[] = "narrow";
    narrow.Value.lpszA = text;
    Set(message.Get(), {narrow});
    Save(message.Get());

    const Props props =
        Get(message.Get(), {PR_SUBJECT_A, PROP_TAG(PT_UNICODE, kFirstOwn), narrow.ulPropTag});
    ASSERT_EQ(PR_SUBJECT_A, props[0].ulPropTag);
    EXPECT_STREQ("one", props[0].Value.lpszA);
    ASSERT_EQ(PROP_TAG(PT_UNICODE, kFirstOwn), props[1].ulPropTag);
    EXPECT_STREQ(L"narrow", props[1].Value.lpszW);
    ASSERT_EQ(narrow.ulPropTag, props[2].ulPropTag);
    EXPECT_STREQ("narrow", props[2].Value.lpszA);

    // A tag without a type takes the stored one; texts follow the flag.
    const ULONG subject = PROP_TAG(PT_UNSPECIFIED, PROP_ID(PR_SUBJECT));
    EXPECT_EQ(PR_SUBJECT_W, Get(message.Get(), {subject}, MAPI_UNICODE)[0].ulPropTag);
    EXPECT_EQ(PR_SUBJECT_A, Get(message.Get(), {subject}, 0)[0].ulPropTag);
    const ULONG own = PROP_TAG(PT_UNSPECIFIED, kFirstOwn);
    EXPECT_EQ(PROP_TAG(PT_UNICODE, kFirstOwn),
              Get(message.Get(), {own}, MAPI_UNICODE)[0].ulPropTag);
}

TEST_P(ItemConformanceTest, DoesNotConvertOtherTypes)
{
    const auto message = NewItem(L"one", false);
    Set(message.Get(), {LongProp(PR_IMPORTANCE, 1)});
    Save(message.Get());
    const Props props = Get(message.Get(),
                            {CHANGE_PROP_TYPE(PR_SUBJECT_W, PT_LONG),
                             CHANGE_PROP_TYPE(PR_IMPORTANCE, PT_UNICODE),
                             CHANGE_PROP_TYPE(PR_IMPORTANCE, PT_MV_LONG)});
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(static_cast<ULONG>(PT_ERROR), PROP_TYPE(props[i].ulPropTag));
}

TEST_P(ItemConformanceTest, TellsAllProperties)
{
    const auto message = NewItem(L"one");
    const auto contains = [](const ULONG* tags, ULONG count, ULONG tag) {
        return std::find(tags, tags + count, tag) != tags + count;
    };
    for (const ULONG flags : {ULONG{MAPI_UNICODE}, ULONG{0}})
    {
        const ULONG subject = flags ? PR_SUBJECT_W : PR_SUBJECT_A;
        SPropTagArray* tags = nullptr;
        ASSERT_EQ(S_OK, message->GetPropList(flags, &tags));
        EXPECT_TRUE(contains(tags->aulPropTag, tags->cValues, subject));
        EXPECT_TRUE(contains(tags->aulPropTag, tags->cValues, PR_ENTRYID));
        EXPECT_FALSE(contains(tags->aulPropTag, tags->cValues, PR_GIVEN_NAME_W));
        m_mapi->freeBuffer(tags);

        ULONG count = 0;
        SPropValue* values = nullptr;
        ASSERT_EQ(S_OK, message->GetProps(nullptr, flags, &count, &values));
        std::vector<ULONG> found;
        for (ULONG i = 0; i < count; ++i)
            found.push_back(values[i].ulPropTag);
        EXPECT_TRUE(contains(found.data(), count, subject));
        m_mapi->freeBuffer(values);
    }
}

TEST_P(ItemConformanceTest, OnePropertyHasOneTypeAndValue)
{
    const auto message = NewItem(L"one", false);
    Set(message.Get(), {LongProp(PROP_TAG(PT_LONG, kFirstOwn), 7)});
    Save(message.Get());
    Set(message.Get(), {TextProp(PROP_TAG(PT_UNICODE, kFirstOwn), L"seven")});
    Save(message.Get());
    const auto again = OpenItem(EntryIdOf(message.Get()));
    EXPECT_EQ(L"seven", TextOf(again.Get(), PROP_TAG(PT_UNICODE, kFirstOwn)));
    EXPECT_EQ(static_cast<ULONG>(PT_ERROR),
              PROP_TYPE(Get(again.Get(), {PROP_TAG(PT_LONG, kFirstOwn)})[0].ulPropTag));
}

TEST_P(ItemConformanceTest, DeletesProperties)
{
    const auto message = NewItem(L"one", false);
    Set(message.Get(), {LongProp(PR_IMPORTANCE, 1), TextProp(PR_GIVEN_NAME_W, L"Ann")});
    Save(message.Get());
    // One of them is not there, which does no harm; the other form of a text names it too.
    SPropProblemArray* problems = nullptr;
    EXPECT_EQ(S_OK,
              message->DeleteProps(Tags({PR_IMPORTANCE, PR_SURNAME_W, PR_GIVEN_NAME_A}).Get(),
                                   &problems));
    m_mapi->freeBuffer(problems);
    EXPECT_EQ(L"(missing)", TextOf(message.Get(), PR_GIVEN_NAME_W));
    const EntryIdBytes id = EntryIdOf(message.Get());
    EXPECT_EQ(L"Ann", TextOf(OpenItem(id).Get(), PR_GIVEN_NAME_W));
    Save(message.Get());
    const Props props = Get(OpenItem(id).Get(), {PR_IMPORTANCE, PR_GIVEN_NAME_W, PR_SUBJECT_W});
    EXPECT_EQ(static_cast<ULONG>(PT_ERROR), PROP_TYPE(props[0].ulPropTag));
    EXPECT_EQ(static_cast<ULONG>(PT_ERROR), PROP_TYPE(props[1].ulPropTag));
    EXPECT_STREQ(L"one", props[2].Value.lpszW);
}

TEST_P(ItemConformanceTest, TellsWhichPropertiesCannotBeSet)
{
    const auto message = NewItem(L"one");
    const EntryIdBytes id = EntryIdOf(message.Get());
    EntryIdBytes other = {1, 2, 3};
    SPropValue values[] = {TextProp(PR_GIVEN_NAME_W, L"Ann"), BinaryProp(PR_ENTRYID, other)};
    SPropProblemArray* problems = nullptr;
    ASSERT_EQ(S_OK, message->SetProps(2, values, &problems));
    ASSERT_NE(nullptr, problems);
    ASSERT_EQ(1u, problems->cProblem);
    EXPECT_EQ(1u, problems->aProblem[0].ulIndex);
    EXPECT_EQ(PR_ENTRYID, problems->aProblem[0].ulPropTag);
    EXPECT_EQ(MAPI_E_COMPUTED, problems->aProblem[0].scode);
    m_mapi->freeBuffer(problems);
    // Nobody needs to ask for the problems.
    EXPECT_EQ(S_OK, message->SetProps(2, values, nullptr));
    Save(message.Get());
    EXPECT_EQ(id, EntryIdOf(message.Get()));
    EXPECT_EQ(L"Ann", TextOf(message.Get(), PR_GIVEN_NAME_W));
}

TEST_P(ItemConformanceTest, KeepsEveryType)
{
    // Bit patterns that lose something where a type is read as another.
    std::vector<SPropValue> values;
    ULONG id = kFirstOwn;
    const auto add = [&](ULONG type) -> SPropValue& {
        SPropValue& value = values.emplace_back();
        value = {};
        value.ulPropTag = PROP_TAG(type, id++);
        return value;
    };
    short shorts[] = {-2, 0x7FFF};
    LONG longs[] = {-3, 0x7FFFFFFF, 0};
    double doubles[] = {-0.5, 1e300};
    FILETIME times[] = {{1, 0x01DA0000}, {0xFFFFFFFF, 0}};
    GUID guids[] = {{0x01020304, 5, 6, {7, 8, 9, 10, 11, 12, 13, 14}}, {}};
    wchar_t wide[] = L"w\x00E4\xD83D\xDE00";
    wchar_t empty[] = L"";
    wchar_t* wides[] = {wide, empty};
    char narrow[] = "narrow";
    char* narrows[] = {narrow};
    BYTE bytes[] = {0, 0xFF, 0};
    SBinary binaries[] = {{3, bytes}, {0, nullptr}};
    add(PT_I2).Value.i = -2;
    add(PT_LONG).Value.l = -3;
    add(PT_R4).Value.flt = -0.5f;
    add(PT_DOUBLE).Value.dbl = 1e300;
    add(PT_CURRENCY).Value.cur.int64 = -5;
    add(PT_APPTIME).Value.at = 45000.25;
    add(PT_BOOLEAN).Value.b = 0xFFFF;
    add(PT_I8).Value.li.QuadPart = -6;
    add(PT_SYSTIME).Value.ft = times[0];
    add(PT_UNICODE).Value.lpszW = wide;
    add(PT_UNICODE).Value.lpszW = empty;
    add(PT_STRING8).Value.lpszA = narrow;
    add(PT_BINARY).Value.bin = {3, bytes};
    add(PT_BINARY).Value.bin = {0, bytes};
    add(PT_CLSID).Value.lpguid = guids;
    add(PT_MV_I2).Value.MVi = {2, shorts};
    add(PT_MV_LONG).Value.MVl = {3, longs};
    add(PT_MV_DOUBLE).Value.MVdbl = {2, doubles};
    add(PT_MV_SYSTIME).Value.MVft = {2, times};
    add(PT_MV_UNICODE).Value.MVszW = {2, wides};
    add(PT_MV_STRING8).Value.MVszA = {1, narrows};
    add(PT_MV_BINARY).Value.MVbin = {2, binaries};
    add(PT_MV_CLSID).Value.MVguid = {2, guids};

    const auto message = NewItem(L"types", false);
    Set(message.Get(), values);
    Save(message.Get());
    const auto again = OpenItem(EntryIdOf(message.Get()));
    for (IMAPIProp* const reader : {message.Get(), again.Get()})
        for (const SPropValue& wanted : values)
        {
            SCOPED_TRACE(wanted.ulPropTag);
            const Props props = Get(reader, {wanted.ulPropTag});
            const SPropValue& got = props[0];
            ASSERT_EQ(wanted.ulPropTag, got.ulPropTag);
            const auto isSame = [](const void* left, const void* right, std::size_t size) {
                return size == 0 || std::memcmp(left, right, size) == 0;
            };
            switch (PROP_TYPE(wanted.ulPropTag))
            {
            case PT_I2:
            case PT_BOOLEAN:
                EXPECT_EQ(wanted.Value.i, got.Value.i);
                break;
            case PT_LONG:
            case PT_R4:
                EXPECT_EQ(wanted.Value.l, got.Value.l);
                break;
            case PT_UNICODE:
                EXPECT_STREQ(wanted.Value.lpszW, got.Value.lpszW);
                break;
            case PT_STRING8:
                EXPECT_STREQ(wanted.Value.lpszA, got.Value.lpszA);
                break;
            case PT_BINARY:
                ASSERT_EQ(wanted.Value.bin.cb, got.Value.bin.cb);
                EXPECT_TRUE(isSame(wanted.Value.bin.lpb, got.Value.bin.lpb, got.Value.bin.cb));
                break;
            case PT_CLSID:
                EXPECT_TRUE(IsEqualGUID(*wanted.Value.lpguid, *got.Value.lpguid));
                break;
            case PT_MV_I2:
                ASSERT_EQ(2u, got.Value.MVi.cValues);
                EXPECT_TRUE(isSame(shorts, got.Value.MVi.lpi, sizeof shorts));
                break;
            case PT_MV_LONG:
                ASSERT_EQ(3u, got.Value.MVl.cValues);
                EXPECT_TRUE(isSame(longs, got.Value.MVl.lpl, sizeof longs));
                break;
            case PT_MV_DOUBLE:
                ASSERT_EQ(2u, got.Value.MVdbl.cValues);
                EXPECT_TRUE(isSame(doubles, got.Value.MVdbl.lpdbl, sizeof doubles));
                break;
            case PT_MV_SYSTIME:
                ASSERT_EQ(2u, got.Value.MVft.cValues);
                EXPECT_TRUE(isSame(times, got.Value.MVft.lpft, sizeof times));
                break;
            case PT_MV_UNICODE:
                ASSERT_EQ(2u, got.Value.MVszW.cValues);
                EXPECT_STREQ(wide, got.Value.MVszW.lppszW[0]);
                EXPECT_STREQ(L"", got.Value.MVszW.lppszW[1]);
                break;
            case PT_MV_STRING8:
                ASSERT_EQ(1u, got.Value.MVszA.cValues);
                EXPECT_STREQ(narrow, got.Value.MVszA.lppszA[0]);
                break;
            case PT_MV_BINARY:
                ASSERT_EQ(2u, got.Value.MVbin.cValues);
                ASSERT_EQ(3u, got.Value.MVbin.lpbin[0].cb);
                EXPECT_TRUE(isSame(bytes, got.Value.MVbin.lpbin[0].lpb, 3));
                EXPECT_EQ(0u, got.Value.MVbin.lpbin[1].cb);
                break;
            case PT_MV_CLSID:
                ASSERT_EQ(2u, got.Value.MVguid.cValues);
                EXPECT_TRUE(isSame(guids, got.Value.MVguid.lpguid, sizeof guids));
                break;
            default:
                EXPECT_EQ(wanted.Value.li.QuadPart, got.Value.li.QuadPart);
            }
        }
}

TEST_P(ItemConformanceTest, KeepsLongValues)
{
    const std::wstring longText(100'000, L'x');
    std::vector<BYTE> longBytes(1'000'000);
    for (std::size_t i = 0; i < longBytes.size(); ++i)
        longBytes[i] = static_cast<BYTE>(i * 7);
    const auto message = NewItem(L"one", false);
    Set(message.Get(),
        {TextProp(PR_BODY_W, longText.c_str()),
         BinaryProp(PROP_TAG(PT_BINARY, kFirstOwn), longBytes)});
    Save(message.Get());
    const auto again = OpenItem(EntryIdOf(message.Get()));
    EXPECT_EQ(longText, TextOf(again.Get(), PR_BODY_W));
    EXPECT_EQ(longBytes, EntryIdOf(again.Get(), PROP_TAG(PT_BINARY, kFirstOwn)));
}

TEST_P(ItemConformanceTest, ADeletedMessageIsGone)
{
    EntryIdBytes id = AddItem(L"one");
    AddItem(L"two");
    const auto open = OpenItem(id);
    SBinary entry = {static_cast<ULONG>(id.size()), id.data()};
    SBinaryArray list = {1, &entry};
    EXPECT_EQ(S_OK, m_items->Delete(&list));
    EXPECT_THAT(Column(Contents().Get(), PR_SUBJECT_W), ElementsAre(L"two"));
    Com<IUnknown> gone;
    EXPECT_EQ(MAPI_E_NOT_FOUND,
              m_items->Container().OpenEntry(
                  entry.cb, AsEntryId(id), nullptr, 0, nullptr, gone.GetAddressOf()));
    EXPECT_FALSE(gone);
    // Once more finds nothing to delete.
    EXPECT_NE(S_OK, m_items->Delete(&list));
    // One that is still open cannot come back.
    SPropValue value = TextProp(PR_SUBJECT_W, L"three");
    open->SetProps(1, &value, nullptr);
    EXPECT_EQ(MAPI_E_OBJECT_DELETED, open->SaveChanges(FORCE_SAVE));
    EXPECT_THAT(Column(Contents().Get(), PR_SUBJECT_W), ElementsAre(L"two"));
}

TEST_P(ItemConformanceTest, DeletesWhatItFindsOfAList)
{
    EntryIdBytes gone = AddItem(L"gone");
    EntryIdBytes there = AddItem(L"there");
    AddItem(L"stays");
    SBinary entries[] = {{static_cast<ULONG>(gone.size()), gone.data()},
                         {static_cast<ULONG>(there.size()), there.data()}};
    SBinaryArray first = {1, entries};
    ASSERT_EQ(S_OK, m_items->Delete(&first));
    SBinaryArray both = {2, entries};
    EXPECT_EQ(MAPI_W_PARTIAL_COMPLETION, m_items->Delete(&both));
    EXPECT_THAT(Column(Contents().Get(), PR_SUBJECT_W), ElementsAre(L"stays"));
}

TEST_P(StoreConformanceTest, KeepsAssociatedContentsApart)
{
    AddMessage(L"shown");
    NewMessage(L"hidden", true, MAPI_ASSOCIATED);
    EXPECT_THAT(Column(Contents().Get(), PR_SUBJECT_W), ElementsAre(L"shown"));
    EXPECT_THAT(Column(Contents(MAPI_UNICODE | MAPI_ASSOCIATED).Get(), PR_SUBJECT_W),
                ElementsAre(L"hidden"));
}

TEST_P(StoreConformanceTest, RefusesNullAndEmptyArguments)
{
    const auto message = NewMessage(L"one");
    ULONG count = 0;
    SPropValue* values = nullptr;
    EXPECT_TRUE(FAILED(message->GetProps(Tags({PR_SUBJECT_W}).Get(), 0, nullptr, &values)));
    EXPECT_TRUE(FAILED(message->GetProps(Tags({PR_SUBJECT_W}).Get(), 0, &count, nullptr)));
    EXPECT_TRUE(FAILED(message->GetProps(Tags({}).Get(), 0, &count, &values)));
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS,
              message->GetProps(Tags({PR_SUBJECT_W}).Get(), 1, &count, &values));
    SPropValue null = TextProp(PR_SUBJECT_W, nullptr);
    EXPECT_TRUE(FAILED(message->SetProps(1, nullptr, nullptr)));
    EXPECT_TRUE(FAILED(message->SetProps(0xFFFFFFFF, &null, nullptr)));
    EXPECT_TRUE(FAILED(message->DeleteProps(nullptr, nullptr)));
    EXPECT_TRUE(FAILED(message->GetPropList(0, nullptr)));
    EXPECT_TRUE(FAILED(m_contacts->GetContentsTable(0, nullptr)));
    EXPECT_TRUE(FAILED(m_contacts->CreateMessage(nullptr, 0, nullptr)));
    EXPECT_TRUE(FAILED(m_contacts->DeleteMessages(nullptr, 0, nullptr, 0)));
    SBinaryArray list = {1, nullptr};
    EXPECT_TRUE(FAILED(m_contacts->DeleteMessages(&list, 0, nullptr, 0)));
    EXPECT_TRUE(FAILED(m_store->OpenEntry(0, nullptr, nullptr, 0, nullptr, nullptr)));
    Com<IUnknown> opened;
    EXPECT_TRUE(FAILED(m_store->OpenEntry(8, nullptr, nullptr, 0, nullptr, opened.GetAddressOf())));
    m_allowedComplaint = "an ID of 8 bytes at null\n"; // which the server must not ask for
    EXPECT_TRUE(FAILED(m_session->QueryIdentity(nullptr, nullptr)));
    EXPECT_TRUE(FAILED(m_session->GetMsgStoresTable(0, nullptr)));
    // A text without an address is no text; nothing of it is kept.
    message->SetProps(1, &null, nullptr);
    EXPECT_EQ(L"one", TextOf(message.Get(), PR_SUBJECT_W));
}
