// Messages, attachments and their streams of the embedded store, beyond what every store has to
// keep to (tests/storeconformance).
#include "localstore/StoreDump.h"
#include "localstore/StoreSchema.h"
#include "tests/localstore/StoreClient.h"

#include <gmock/gmock.h>

#include <cstring>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{

constexpr ULONG kBytes = PROP_TAG(PT_BINARY, 0x6800);
constexpr ULONG kNarrow = PROP_TAG(PT_STRING8, 0x6801);

class StoreMessageTest : public StoreTest
{
  protected:
    ComPtr<IMessage> NewMessage()
    {
        ComPtr<IMessage> message;
        EXPECT_EQ(S_OK, Contacts()->CreateMessage(nullptr, 0, message.GetAddressOf()));
        return message;
    }
    // An attachment that its message has not saved yet.
    ComPtr<IAttach> NewAttachment(IMessage* message, ULONG number, const wchar_t* name = L"file")
    {
        ULONG given = 99;
        ComPtr<IAttach> attachment;
        EXPECT_EQ(S_OK, message->CreateAttach(nullptr, 0, &given, attachment.GetAddressOf()));
        EXPECT_EQ(number, given);
        SPropValue value = TextValue(PR_ATTACH_FILENAME_W, name);
        EXPECT_EQ(S_OK, attachment->SetProps(1, &value, nullptr));
        EXPECT_EQ(S_OK, attachment->SaveChanges(KEEP_OPEN_READWRITE));
        return attachment;
    }
    static HRESULT OpenStream(
        IMAPIProp* object, ULONG tag, ULONG flags, IStream** stream, ULONG options = 0)
    {
        return object->OpenProperty(
            tag, &IID_IStream, options, flags, reinterpret_cast<IUnknown**>(stream));
    }
    static std::string Whole(IStream* stream)
    {
        std::string text;
        char piece[5];
        ULONG read = 0;
        while (stream->Read(piece, sizeof piece, &read) == S_OK && read != 0)
            text.append(piece, read);
        return text;
    }
};

} // namespace

TEST_F(StoreMessageTest, ASaveThatChangesNothingLeavesTheModificationTime)
{
    const auto message = OpenMessage(AddMessage(Contacts().Get(), L"IPM.Contact", L"one"));
    const LONGLONG before = Time(message.Get(), PR_LAST_MODIFICATION_TIME);
    EXPECT_GT(before, 0);
    EXPECT_EQ(S_OK, message->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(before, Time(message.Get(), PR_LAST_MODIFICATION_TIME));
    SPropValue value = TextValue(PR_SUBJECT_W, L"two");
    EXPECT_EQ(S_OK, message->SetProps(1, &value, nullptr));
    EXPECT_EQ(S_OK, message->SaveChanges(FORCE_SAVE));
    EXPECT_GT(Time(message.Get(), PR_LAST_MODIFICATION_TIME), before)
        << "each save is later than the one before, however coarse the clock is";
}

TEST_F(StoreMessageTest, AMessageThatOthersChangedIsOverwrittenOnlyByForce)
{
    const EntryBytes id = AddMessage(Contacts().Get(), L"IPM.Contact", L"one");
    const auto mine = OpenMessage(id);
    // Another logon, as another process would have.
    const auto session = LogOn();
    const auto store = OpenDefaultStore(session.Get());
    ComPtr<IUnknown> object;
    ASSERT_EQ(S_OK, Open(store.Get(), id, MAPI_MODIFY, object.GetAddressOf()));
    auto* theirs = static_cast<IMessage*>(object.Get());
    SPropValue value = TextValue(PR_SUBJECT_W, L"theirs");
    ASSERT_EQ(S_OK, theirs->SetProps(1, &value, nullptr));
    ASSERT_EQ(S_OK, theirs->SaveChanges(0));

    value = TextValue(PR_SUBJECT_W, L"mine");
    ASSERT_EQ(S_OK, mine->SetProps(1, &value, nullptr));
    EXPECT_EQ(MAPI_E_OBJECT_CHANGED, mine->SaveChanges(KEEP_OPEN_READWRITE));
    EXPECT_EQ(L"theirs", Text(OpenMessage(id).Get(), PR_SUBJECT_W));
    EXPECT_EQ(L"mine", Text(mine.Get(), PR_SUBJECT_W)) << "what waits goes on waiting";
    EXPECT_EQ(S_OK, mine->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(L"mine", Text(OpenMessage(id).Get(), PR_SUBJECT_W));
}

TEST_F(StoreMessageTest, AMessageOfADeletedFolderIsNotSaved)
{
    ComPtr<IMAPIFolder> folder;
    ASSERT_EQ(S_OK, MakeSubfolder(Contacts().Get(), L"Sub", folder));
    ComPtr<IMessage> message;
    ASSERT_EQ(S_OK, folder->CreateMessage(nullptr, 0, message.GetAddressOf()));
    ASSERT_EQ(S_OK, DeleteSubfolder(Contacts().Get(), Binary(folder.Get(), PR_ENTRYID), 0));
    EXPECT_EQ(MAPI_E_OBJECT_DELETED, message->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(MAPI_E_OBJECT_DELETED, ValueError(folder.Get(), PR_DISPLAY_NAME_W));
    EXPECT_EQ(MAPI_E_OBJECT_DELETED,
              folder->CreateMessage(nullptr, 0, message.ReleaseAndGetAddressOf()));
    SPropValue value = TextValue(PR_DISPLAY_NAME_W, L"x");
    EXPECT_EQ(MAPI_E_OBJECT_DELETED, folder->SetProps(1, &value, nullptr));
}

TEST_F(StoreMessageTest, ReadingADeletedMessageSaysSo)
{
    const EntryBytes id = AddMessage(Contacts().Get(), L"IPM.Contact", L"one");
    const auto message = OpenMessage(id);
    SBinary entry{static_cast<ULONG>(id.size()), const_cast<BYTE*>(id.data())};
    SBinaryArray list{1, &entry};
    ASSERT_EQ(S_OK, Contacts()->DeleteMessages(&list, 0, nullptr, 0));
    EXPECT_EQ(MAPI_E_OBJECT_DELETED, ValueError(message.Get(), PR_SUBJECT_W));
}

TEST_F(StoreMessageTest, DeletesOnlyMessagesOfItsOwnFolder)
{
    const EntryBytes id = AddMessage(Contacts().Get(), L"IPM.Contact", L"one");
    SBinary entry{static_cast<ULONG>(id.size()), const_cast<BYTE*>(id.data())};
    SBinaryArray list{1, &entry};
    EXPECT_EQ(MAPI_W_PARTIAL_COMPLETION, RootFolder()->DeleteMessages(&list, 0, nullptr, 0));
    EXPECT_EQ(1, Long(Contacts().Get(), PR_CONTENT_COUNT));
    // Broken IDs beside a good one: what can go goes.
    BYTE bytes[4096] = {};
    SBinary entries[] = {{0, nullptr}, {3, bytes}, {4096, bytes}, entry, {24, nullptr}};
    SBinaryArray all{5, entries};
    EXPECT_EQ(MAPI_W_PARTIAL_COMPLETION, Contacts()->DeleteMessages(&all, 0, nullptr, 0));
    EXPECT_EQ(0, Long(Contacts().Get(), PR_CONTENT_COUNT));
    SBinaryArray huge{0xFFFFFFFF, entries};
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, Contacts()->DeleteMessages(&huge, 0, nullptr, 0));
}

TEST_F(StoreMessageTest, AMessageOpenedForReadingRefusesChanges)
{
    const EntryBytes id = AddMessage(Contacts().Get(), L"IPM.Contact", L"one");
    // 2 is what the server opens items with.
    const auto message = OpenMessage(id, 2);
    SPropValue value = TextValue(PR_SUBJECT_W, L"two");
    EXPECT_EQ(MAPI_E_NO_ACCESS, message->SetProps(1, &value, nullptr));
    Tags tags{PR_SUBJECT_W};
    EXPECT_EQ(MAPI_E_NO_ACCESS, message->DeleteProps(tags, nullptr));
    ULONG number = 0;
    ComPtr<IAttach> attachment;
    EXPECT_EQ(MAPI_E_NO_ACCESS,
              message->CreateAttach(nullptr, 0, &number, attachment.GetAddressOf()));
    EXPECT_EQ(MAPI_E_NO_ACCESS, message->DeleteAttach(0, 0, nullptr, 0));
    EXPECT_EQ(L"one", Text(message.Get(), PR_SUBJECT_W));
    // KEEP_OPEN_READONLY ends writing.
    const auto writer = OpenMessage(id);
    ASSERT_EQ(S_OK, writer->SetProps(1, &value, nullptr));
    ASSERT_EQ(S_OK, writer->SaveChanges(KEEP_OPEN_READONLY));
    EXPECT_EQ(MAPI_E_NO_ACCESS, writer->SetProps(1, &value, nullptr));
}

TEST_F(StoreMessageTest, AStoreOpenedForReadingGivesNothingToWrite)
{
    const EntryBytes id = AddMessage(Contacts().Get(), L"IPM.Contact", L"one");
    const auto store = OpenDefaultStore(m_session.Get(), MAPI_DEFERRED_ERRORS);
    ASSERT_TRUE(store);
    ComPtr<IUnknown> object;
    EXPECT_EQ(MAPI_E_NO_ACCESS, Open(store.Get(), id, MAPI_MODIFY, object.GetAddressOf()));
    EXPECT_FALSE(object);
    ASSERT_EQ(S_OK, Open(store.Get(), {}, MAPI_BEST_ACCESS, object.GetAddressOf()));
    ComPtr<IMessage> message;
    EXPECT_EQ(
        MAPI_E_NO_ACCESS,
        static_cast<IMAPIFolder*>(object.Get())->CreateMessage(nullptr, 0, message.GetAddressOf()));
    SPropValue value = TextValue(PR_DISPLAY_NAME_W, L"x");
    EXPECT_EQ(MAPI_E_NO_ACCESS, store->SetProps(1, &value, nullptr));
}

TEST_F(StoreMessageTest, ProblemsOfSingleValuesLeaveTheOthers)
{
    const auto message = NewMessage();
    SPropValue broken[7] = {
        TextValue(PR_SUBJECT_W, nullptr),
        BinaryValue(kBytes, nullptr, 5),
        LongValue(PROP_TAG(PT_LONG, 0), 1),
        LongValue(PROP_TAG(PT_OBJECT, 0x6802), 1),
        // No name stands behind that ID.
        LongValue(PROP_TAG(PT_LONG, 0xA123), 1),
        LongValue(PROP_TAG(PT_ERROR, 0x6803), 1),
        LongValue(PR_IMPORTANCE, 2),
    };
    SPropProblemArray* problems = nullptr;
    ASSERT_EQ(S_OK, message->SetProps(7, broken, &problems));
    ASSERT_NE(nullptr, problems);
    ASSERT_EQ(5u, problems->cProblem);
    const SCODE results[] = {MAPI_E_INVALID_PARAMETER,
                             MAPI_E_INVALID_PARAMETER,
                             MAPI_E_INVALID_PARAMETER,
                             MAPI_E_INVALID_TYPE,
                             MAPI_E_NOT_FOUND};
    for (ULONG i = 0; i < 5; ++i)
    {
        EXPECT_EQ(i, problems->aProblem[i].ulIndex);
        EXPECT_EQ(broken[i].ulPropTag, problems->aProblem[i].ulPropTag);
        EXPECT_EQ(results[i], problems->aProblem[i].scode) << i;
    }
    EXPECT_EQ(0u, m_library.FreeBuffer(problems));
    EXPECT_EQ(2, Long(message.Get(), PR_IMPORTANCE));
    EXPECT_EQ(MAPI_E_NOT_FOUND, ValueError(message.Get(), PR_SUBJECT_W));

    SPropValue tooBig = BinaryValue(kBytes, L"", 0);
    tooBig.Value.bin.cb = 0xFFFFFFFF;
    SPropValue tooMany{};
    tooMany.ulPropTag = PROP_TAG(PT_MV_LONG, 0x6804);
    LONG number = 1;
    tooMany.Value.MVl = {0xFFFFFFFF, &number};
    for (SPropValue* value : {&tooBig, &tooMany})
    {
        ASSERT_EQ(S_OK, message->SetProps(1, value, &problems));
        ASSERT_NE(nullptr, problems);
        EXPECT_EQ(MAPI_E_TOO_BIG, problems->aProblem[0].scode);
        m_library.FreeBuffer(problems);
    }
}

// The store makes the number of an attachment and the time of creation of a message; a client may
// keep its own under the same tags of the other.
TEST_F(StoreMessageTest, WhatAClientStoresStandsInADumpWhateverOtherObjectsHaveUnderItsTag)
{
    const auto message = NewMessage();
    SPropValue number = LongValue(PR_ATTACH_NUM, 7);
    SPropProblemArray* problems = nullptr;
    ASSERT_EQ(S_OK, message->SetProps(1, &number, &problems));
    EXPECT_EQ(nullptr, problems);
    ULONG attachmentNumber = 0;
    ComPtr<IAttach> attachment;
    ASSERT_EQ(S_OK,
              message->CreateAttach(nullptr, 0, &attachmentNumber, attachment.GetAddressOf()));
    SPropValue created{};
    created.ulPropTag = PR_CREATION_TIME;
    ASSERT_EQ(S_OK, attachment->SetProps(1, &created, &problems));
    EXPECT_EQ(nullptr, problems);
    ASSERT_EQ(S_OK, attachment->SaveChanges(0));
    ASSERT_EQ(S_OK, message->SaveChanges(0));
    EXPECT_EQ(7, Long(OpenMessage(Binary(message.Get(), PR_ENTRYID)).Get(), PR_ATTACH_NUM));

    Database database = OpenStore(m_path);
    std::string dump;
    DumpStore(database, [&](std::string_view piece) { dump += piece; });
    EXPECT_THAT(dump, HasSubstr(R"({"tag": "0x0E210003", "value": 7})"));
    EXPECT_THAT(dump, HasSubstr(R"({"tag": "0x30070040", "value": "1601-01-01T00:00:00Z"})"));
}

TEST_F(StoreMessageTest, TextWithoutATypeComesInTheFormThatWasAskedFor)
{
    const auto message = OpenMessage(AddMessage(Contacts().Get(), L"IPM.Contact", L"one"));
    const auto typeOf = [&](ULONG flags) {
        Tags tags{PROP_TAG(PT_UNSPECIFIED, PROP_ID(PR_SUBJECT_W))};
        ULONG count = 0;
        SPropValue* values = nullptr;
        EXPECT_EQ(S_OK, message->GetProps(tags, flags, &count, &values));
        const ULONG type = PROP_TYPE(values->ulPropTag);
        m_library.FreeBuffer(values);
        return type;
    };
    EXPECT_EQ(static_cast<ULONG>(PT_UNICODE), typeOf(MAPI_UNICODE));
    EXPECT_EQ(static_cast<ULONG>(PT_STRING8), typeOf(0));
}

TEST_F(StoreMessageTest, ListsEveryPropertyItHas)
{
    const auto message = OpenMessage(AddMessage(Contacts().Get(), L"IPM.Contact", L"one"));
    LPSPropTagArray tags = nullptr;
    ASSERT_EQ(S_OK, message->GetPropList(MAPI_UNICODE, &tags));
    const std::vector<ULONG> list(tags->aulPropTag, tags->aulPropTag + tags->cValues);
    m_library.FreeBuffer(tags);
    EXPECT_THAT(list, testing::IsSupersetOf({PR_SUBJECT_W, PR_MESSAGE_CLASS_W, PR_ENTRYID}));
    ULONG count = 0;
    SPropValue* values = nullptr;
    ASSERT_EQ(S_OK, message->GetProps(nullptr, MAPI_UNICODE, &count, &values));
    ASSERT_EQ(list.size(), count);
    for (ULONG i = 0; i < count; ++i)
        EXPECT_EQ(list[i], values[i].ulPropTag);
    m_library.FreeBuffer(values);
}

TEST_F(StoreMessageTest, ValuesOf60TagsComeInTheirOrder)
{
    const auto message = NewMessage();
    std::vector<ULONG> tags;
    for (ULONG i = 0; i < 60; ++i)
    {
        tags.push_back(PROP_TAG(PT_LONG, 0x6859 - i));
        SPropValue value = LongValue(tags.back(), static_cast<LONG>(i));
        if (i % 3 != 0)
        {
            ASSERT_EQ(S_OK, message->SetProps(1, &value, nullptr));
        }
    }
    ASSERT_EQ(S_OK, message->SaveChanges(0));
    const auto again = OpenMessage(Binary(message.Get(), PR_ENTRYID), 2);
    ULONG count = 0;
    SPropValue* values = nullptr;
    Tags wanted(tags);
    ASSERT_EQ(MAPI_W_ERRORS_RETURNED, again->GetProps(wanted, MAPI_UNICODE, &count, &values));
    ASSERT_EQ(60u, count);
    for (ULONG i = 0; i < 60; ++i)
    {
        if (i % 3 == 0)
            EXPECT_EQ(PROP_TAG(PT_ERROR, 0x6859 - i), values[i].ulPropTag);
        else
            EXPECT_EQ(static_cast<LONG>(i), values[i].Value.l);
    }
    m_library.FreeBuffer(values);
}

TEST_F(StoreMessageTest, StreamsKeepToTheirBounds)
{
    const auto message = NewMessage();
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK,
              OpenStream(message.Get(), kBytes, MAPI_CREATE | MAPI_MODIFY, stream.GetAddressOf()));
    EXPECT_EQ(STG_E_INVALIDPOINTER, stream->Write(nullptr, 4, nullptr));
    EXPECT_EQ(STG_E_INVALIDPOINTER, stream->Read(nullptr, 4, nullptr));
    EXPECT_EQ(STG_E_INVALIDPOINTER, stream->Stat(nullptr, 0));
    EXPECT_EQ(STG_E_INVALIDPOINTER, stream->Clone(nullptr));
    EXPECT_EQ(STG_E_INVALIDPOINTER, stream->CopyTo(nullptr, {}, nullptr, nullptr));
    LARGE_INTEGER move{};
    move.QuadPart = -1;
    EXPECT_EQ(STG_E_INVALIDFUNCTION, stream->Seek(move, STREAM_SEEK_SET, nullptr));
    EXPECT_EQ(STG_E_INVALIDFUNCTION, stream->Seek({}, 77, nullptr));
    move.QuadPart = 0x7FFFFFFFFFFFFFFF;
    EXPECT_EQ(S_OK, stream->Seek(move, STREAM_SEEK_SET, nullptr));
    EXPECT_EQ(STG_E_INVALIDFUNCTION, stream->Seek(move, STREAM_SEEK_CUR, nullptr));
    ULONG done = 7;
    char letter = 'x';
    EXPECT_EQ(S_OK, stream->Read(&letter, 1, &done));
    EXPECT_EQ(0u, done);
    EXPECT_EQ(STG_E_MEDIUMFULL, stream->Write(&letter, 1, &done));
    ULARGE_INTEGER size{};
    size.QuadPart = 0x7FFFFFFFFFFFFFFF;
    EXPECT_EQ(STG_E_MEDIUMFULL, stream->SetSize(size));
    // A write behind the end fills with zeros.
    move.QuadPart = 3;
    ASSERT_EQ(S_OK, stream->Seek(move, STREAM_SEEK_SET, nullptr));
    ASSERT_EQ(S_OK, stream->Write("ab", 2, &done));
    ASSERT_EQ(S_OK, stream->Seek({}, STREAM_SEEK_SET, nullptr));
    EXPECT_EQ(std::string("\0\0\0ab", 5), Whole(stream.Get()));
    size.QuadPart = 4;
    ASSERT_EQ(S_OK, stream->SetSize(size));
    ASSERT_EQ(S_OK, stream->Seek({}, STREAM_SEEK_SET, nullptr));
    EXPECT_EQ(std::string("\0\0\0a", 4), Whole(stream.Get()));
}

TEST_F(StoreMessageTest, StreamsCopyCloneAndRevert)
{
    const auto message = NewMessage();
    SPropValue value = BinaryValue(kBytes, "hello", 5);
    ASSERT_EQ(S_OK, message->SetProps(1, &value, nullptr));
    ComPtr<IStream> source;
    ASSERT_EQ(S_OK, OpenStream(message.Get(), kBytes, MAPI_MODIFY, source.GetAddressOf()));
    ComPtr<IStream> target;
    ASSERT_EQ(S_OK,
              OpenStream(message.Get(),
                         PROP_TAG(PT_BINARY, 0x6802),
                         MAPI_CREATE | MAPI_MODIFY,
                         target.GetAddressOf()));
    ULARGE_INTEGER size{};
    size.QuadPart = 3;
    ULARGE_INTEGER read{};
    ULARGE_INTEGER written{};
    ASSERT_EQ(S_OK, source->CopyTo(target.Get(), size, &read, &written));
    EXPECT_EQ(3u, read.QuadPart);
    EXPECT_EQ(3u, written.QuadPart);
    ComPtr<IStream> clone;
    ASSERT_EQ(S_OK, source->Clone(clone.GetAddressOf()));
    EXPECT_EQ("lo", Whole(clone.Get())) << "a clone begins where its origin stands";
    EXPECT_EQ("lo", Whole(source.Get())) << "each has a position of its own";
    ASSERT_EQ(S_OK, target->Seek({}, STREAM_SEEK_SET, nullptr));
    EXPECT_EQ("hel", Whole(target.Get()));

    ASSERT_EQ(S_OK, source->Write("!", 1, nullptr));
    ASSERT_EQ(S_OK, source->Revert());
    ASSERT_EQ(S_OK, source->Seek({}, STREAM_SEEK_SET, nullptr));
    EXPECT_EQ("hello", Whole(source.Get()));
    EXPECT_EQ(STG_E_INVALIDFUNCTION, source->LockRegion({}, size, LOCK_WRITE));
}

TEST_F(StoreMessageTest, AStreamReleasedWithoutCommitIsKeptUnlessItWasTransacted)
{
    const auto message = NewMessage();
    for (const ULONG options : {0ul, static_cast<ULONG>(STGM_TRANSACTED)})
    {
        SPropValue value = BinaryValue(kBytes, "old", 3);
        ASSERT_EQ(S_OK, message->SetProps(1, &value, nullptr));
        ComPtr<IStream> stream;
        ASSERT_EQ(S_OK,
                  OpenStream(message.Get(), kBytes, MAPI_MODIFY, stream.GetAddressOf(), options));
        ASSERT_EQ(S_OK, stream->Write("new", 3, nullptr));
        stream.Reset();
        const EntryBytes bytes = Binary(message.Get(), kBytes);
        EXPECT_EQ(options ? "old" : "new", std::string(bytes.begin(), bytes.end()));
    }
}

TEST_F(StoreMessageTest, StreamsOfTextFollowTheTypeOfTheTag)
{
    const auto message = NewMessage();
    SPropValue value = TextValue(PR_BODY_W, L"a\u00E4");
    ASSERT_EQ(S_OK, message->SetProps(1, &value, nullptr));
    ComPtr<IStream> wide;
    ASSERT_EQ(S_OK, OpenStream(message.Get(), PR_BODY_W, 0, wide.GetAddressOf()));
    EXPECT_EQ(std::string("a\0\xE4\0", 4), Whole(wide.Get()));
    ComPtr<IStream> narrow;
    ASSERT_EQ(S_OK, OpenStream(message.Get(), PR_BODY_A, 0, narrow.GetAddressOf()));
    const std::string text = Whole(narrow.Get());
    EXPECT_EQ('a', text.at(0));
    // Half a code unit at the end is dropped.
    ComPtr<IStream> odd;
    ASSERT_EQ(S_OK,
              OpenStream(message.Get(), PR_BODY_W, MAPI_CREATE | MAPI_MODIFY, odd.GetAddressOf()));
    ASSERT_EQ(S_OK, odd->Write("b\0c", 3, nullptr));
    ASSERT_EQ(S_OK, odd->Commit(0));
    EXPECT_EQ(L"b", Text(message.Get(), PR_BODY_W));
    ComPtr<IStream> stream;
    EXPECT_EQ(MAPI_E_NO_SUPPORT,
              OpenStream(message.Get(), PR_IMPORTANCE, MAPI_CREATE, stream.GetAddressOf()));
    EXPECT_EQ(MAPI_E_COMPUTED,
              OpenStream(message.Get(), PR_ENTRYID, MAPI_MODIFY, stream.GetAddressOf()));
    EXPECT_EQ(MAPI_E_NOT_FOUND,
              OpenStream(message.Get(), kNarrow, MAPI_MODIFY, stream.GetAddressOf()));
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS,
              OpenStream(message.Get(), PR_BODY_W, 0x4000, stream.GetAddressOf()));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, message->OpenProperty(PR_BODY_W, nullptr, 0, 0, nullptr));
}

TEST_F(StoreMessageTest, AttachmentNumbersAreNotUsedAgain)
{
    const auto message = NewMessage();
    std::vector<ULONG> numbers;
    for (int i = 0; i < 3; ++i)
    {
        ULONG number = 99;
        ComPtr<IAttach> attachment;
        ASSERT_EQ(S_OK, message->CreateAttach(nullptr, 0, &number, attachment.GetAddressOf()));
        ASSERT_EQ(S_OK, attachment->SaveChanges(0));
        numbers.push_back(number);
        if (i == 1)
        {
            ASSERT_EQ(S_OK, message->DeleteAttach(number, 0, nullptr, 0));
        }
    }
    EXPECT_THAT(numbers, ElementsAre(0, 1, 2));
    ASSERT_EQ(S_OK, message->SaveChanges(0));
    ComPtr<IMAPITable> table;
    ASSERT_EQ(S_OK, message->GetAttachmentTable(MAPI_DEFERRED_ERRORS, table.GetAddressOf()));
    ULONG count = 0;
    EXPECT_EQ(S_OK, table->GetRowCount(0, &count));
    EXPECT_EQ(2u, count);
}

// The number of a deleted one stays its own behind the save: an object that is still open for it
// must not read or write another.
TEST_F(StoreMessageTest, ANumberIsNotUsedAgainBehindTheSaveThatDeletes)
{
    const auto message = NewMessage();
    const auto first = NewAttachment(message.Get(), 0);
    const auto last = NewAttachment(message.Get(), 1);
    ASSERT_EQ(S_OK, message->SaveChanges(KEEP_OPEN_READWRITE));
    ASSERT_EQ(S_OK, message->DeleteAttach(1, 0, nullptr, 0));
    ASSERT_EQ(S_OK, message->SaveChanges(KEEP_OPEN_READWRITE));
    const auto another = NewAttachment(message.Get(), 2);
    EXPECT_EQ(MAPI_E_OBJECT_DELETED, ValueError(last.Get(), PR_ATTACH_FILENAME_W));
}

TEST_F(StoreMessageTest, ANewAttachmentNeverMixesWithOneThatOthersMade)
{
    const EntryBytes id = AddMessage(Contacts().Get(), L"IPM.Contact", L"1");
    const auto mine = OpenMessage(id);
    const auto theirs = OpenMessage(id);
    const auto made = NewAttachment(mine.Get(), 0, L"mine");
    NewAttachment(theirs.Get(), 0, L"theirs");
    ASSERT_EQ(S_OK, theirs->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(MAPI_E_OBJECT_CHANGED, mine->SaveChanges(FORCE_SAVE));
    ComPtr<IAttach> stored;
    ASSERT_EQ(S_OK, OpenMessage(id)->OpenAttach(0, nullptr, 0, stored.GetAddressOf()));
    EXPECT_EQ(L"theirs", Text(stored.Get(), PR_ATTACH_FILENAME_W));
}

TEST_F(StoreMessageTest, AChangeDoesNotBringBackAnAttachmentThatOthersDeleted)
{
    const EntryBytes id = AddMessage(Contacts().Get(), L"IPM.Contact", L"1");
    const auto mine = OpenMessage(id);
    NewAttachment(mine.Get(), 0, L"old");
    ASSERT_EQ(S_OK, mine->SaveChanges(KEEP_OPEN_READWRITE | FORCE_SAVE));
    ComPtr<IAttach> attachment;
    ASSERT_EQ(S_OK, mine->OpenAttach(0, nullptr, MAPI_MODIFY, attachment.GetAddressOf()));
    SPropValue value = TextValue(PR_ATTACH_FILENAME_W, L"new");
    ASSERT_EQ(S_OK, attachment->SetProps(1, &value, nullptr));
    ASSERT_EQ(S_OK, attachment->SaveChanges(0));
    const auto theirs = OpenMessage(id);
    ASSERT_EQ(S_OK, theirs->DeleteAttach(0, 0, nullptr, 0));
    ASSERT_EQ(S_OK, theirs->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(S_OK, mine->SaveChanges(FORCE_SAVE));
    ComPtr<IAttach> stored;
    EXPECT_EQ(MAPI_E_NOT_FOUND, OpenMessage(id)->OpenAttach(0, nullptr, 0, stored.GetAddressOf()));
}

TEST_F(StoreMessageTest, AnAttachmentDeletedUnderItsObjectIsGone)
{
    const auto message = NewMessage();
    ULONG number = 0;
    ComPtr<IAttach> attachment;
    ASSERT_EQ(S_OK, message->CreateAttach(nullptr, 0, &number, attachment.GetAddressOf()));
    ASSERT_EQ(S_OK, attachment->SaveChanges(0));
    ASSERT_EQ(S_OK, message->SaveChanges(KEEP_OPEN_READWRITE));
    ASSERT_EQ(S_OK, message->DeleteAttach(number, 0, nullptr, 0));
    EXPECT_EQ(MAPI_E_OBJECT_DELETED, ValueError(attachment.Get(), PR_ATTACH_FILENAME_W));
    SPropValue value = TextValue(PR_ATTACH_FILENAME_W, L"x");
    ASSERT_EQ(S_OK, attachment->SetProps(1, &value, nullptr));
    EXPECT_EQ(MAPI_E_OBJECT_DELETED, attachment->SaveChanges(0));
}

TEST_F(StoreMessageTest, WritesRtfThatReadsBack)
{
    // Text with repetitions, beyond the dictionary's size.
    std::string rtf = "{\\rtf1 ";
    for (int i = 0; i < 2000; ++i)
        rtf += "line " + std::to_string(i) + "\\par ";
    rtf += "}";
    for (const ULONG flags : {MAPI_MODIFY, MAPI_MODIFY | STORE_UNCOMPRESSED_RTF})
    {
        const auto message = NewMessage();
        ComPtr<IStream> packed;
        ASSERT_EQ(S_OK,
                  OpenStream(
                      message.Get(), 0x10090102, MAPI_CREATE | MAPI_MODIFY, packed.GetAddressOf()));
        ComPtr<IStream> plain;
        ASSERT_EQ(S_OK, m_library.WrapRtf(packed.Get(), flags, plain.GetAddressOf()));
        ASSERT_EQ(S_OK, plain->Write(rtf.data(), static_cast<ULONG>(rtf.size()), nullptr));
        ASSERT_EQ(S_OK, plain->Commit(0));
        plain.Reset();
        packed.Reset();
        ASSERT_EQ(S_OK, message->SaveChanges(0));
        const EntryBytes stored = Binary(message.Get(), 0x10090102);
        ASSERT_GT(stored.size(), 16u);
        EXPECT_EQ((flags & STORE_UNCOMPRESSED_RTF) ? "MELA" : "LZFu",
                  std::string(stored.begin() + 8, stored.begin() + 12));

        const auto reader = OpenMessage(Binary(message.Get(), PR_ENTRYID), 2);
        ASSERT_EQ(S_OK, OpenStream(reader.Get(), 0x10090102, 0, packed.GetAddressOf()));
        ASSERT_EQ(S_OK, m_library.WrapRtf(packed.Get(), 0, plain.GetAddressOf()));
        EXPECT_EQ(rtf, Whole(plain.Get()));
    }
}

TEST_F(StoreMessageTest, RtfWithoutBytesIsAnEmptyText)
{
    const auto message = NewMessage();
    SPropValue value = BinaryValue(0x10090102, "", 0);
    ASSERT_EQ(S_OK, message->SetProps(1, &value, nullptr));
    ComPtr<IStream> packed;
    ASSERT_EQ(S_OK, OpenStream(message.Get(), 0x10090102, 0, packed.GetAddressOf()));
    ComPtr<IStream> plain;
    ASSERT_EQ(S_OK, m_library.WrapRtf(packed.Get(), 0, plain.GetAddressOf()));
    EXPECT_EQ("", Whole(plain.Get()));
    EXPECT_EQ(STG_E_ACCESSDENIED, plain->Write("x", 1, nullptr));
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, m_library.WrapRtf(packed.Get(), 0x40, plain.GetAddressOf()));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, m_library.WrapRtf(packed.Get(), 0, nullptr));
    // A header that promises more than its bytes can give is refused before memory is taken.
    const unsigned char header[] = {0x10, 0,   0, 0, 0xFF, 0xFF, 0xFF, 0x7F, 'L', 'Z',
                                    'F',  'u', 0, 0, 0,    0,    0,    0,    0,   0};
    value = BinaryValue(0x10090102, header, sizeof header);
    ASSERT_EQ(S_OK, message->SetProps(1, &value, nullptr));
    ASSERT_EQ(S_OK, OpenStream(message.Get(), 0x10090102, 0, packed.ReleaseAndGetAddressOf()));
    EXPECT_TRUE(FAILED(m_library.WrapRtf(packed.Get(), 0, plain.ReleaseAndGetAddressOf())));
}
