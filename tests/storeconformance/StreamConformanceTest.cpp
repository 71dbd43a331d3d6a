// Properties as streams, attachments, compressed RTF.
#include "support/TestPaths.h"
#include "tests/storeconformance/StoreConformanceTest.h"

#include <fstream>
#include <iterator>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
constexpr ULONG kBytes = PROP_TAG(PT_BINARY, 0x6800);
constexpr ULONG kRtf = 0x10090102; // PR_RTF_COMPRESSED

HRESULT OpenStream(IMAPIProp* object, ULONG tag, ULONG flags, IStream** stream)
{
    return object->OpenProperty(tag, &IID_IStream, 0, flags, reinterpret_cast<IUnknown**>(stream));
}

std::vector<BYTE> ReadAll(IStream* stream)
{
    std::vector<BYTE> bytes;
    BYTE piece[7]; // small, so that reading takes several calls
    ULONG read = 0;
    while (stream && SUCCEEDED(stream->Read(piece, sizeof piece, &read)) && read)
        bytes.insert(bytes.end(), piece, piece + read);
    return bytes;
}

void Rewind(IStream* stream)
{
    EXPECT_EQ(S_OK, stream->Seek({}, STREAM_SEEK_SET, nullptr));
}

std::vector<BYTE> DataFile(const std::string& name)
{
    std::ifstream file(TestData() / "compressed_rtf" / name, std::ios::binary);
    EXPECT_TRUE(file.is_open()) << name;
    return std::vector<BYTE>(std::istreambuf_iterator<char>(file), {});
}
} // namespace

TEST_P(ItemConformanceTest, StreamsReadWhatIsStored)
{
    std::vector<BYTE> bytes(20);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<BYTE>(i + 1);
    const auto message = NewItem(L"one", false);
    Set(message.Get(), {BinaryProp(kBytes, bytes), TextProp(PR_BODY_W, L"ab")});
    Save(message.Get());
    const auto reader = OpenItem(EntryIdOf(message.Get()), 0);

    Com<IStream> stream;
    ASSERT_EQ(S_OK, OpenStream(reader.Get(), kBytes, 0, stream.GetAddressOf()));
    EXPECT_EQ(bytes, ReadAll(stream.Get()));
    Rewind(stream.Get());
    EXPECT_EQ(bytes, ReadAll(stream.Get()));
    STATSTG state = {};
    EXPECT_EQ(S_OK, stream->Stat(&state, STATFLAG_NONAME));
    EXPECT_EQ(20u, state.cbSize.QuadPart);
    LARGE_INTEGER move = {};
    move.QuadPart = -3;
    ULARGE_INTEGER position = {};
    EXPECT_EQ(S_OK, stream->Seek(move, STREAM_SEEK_END, &position));
    EXPECT_EQ(17u, position.QuadPart);
    EXPECT_THAT(ReadAll(stream.Get()), ElementsAre(18, 19, 20));
    ULONG written = 0;
    EXPECT_TRUE(FAILED(stream->Write("x", 1, &written)));

    // Wide text is its code units.
    Com<IStream> body;
    ASSERT_EQ(S_OK, OpenStream(reader.Get(), PR_BODY_W, 0, body.GetAddressOf()));
    const std::vector<BYTE> units = ReadAll(body.Get());
    ASSERT_GE(units.size(), 4u);
    EXPECT_THAT(std::vector<BYTE>(units.begin(), units.begin() + 4), ElementsAre('a', 0, 'b', 0));
}

TEST_P(ItemConformanceTest, AMissingPropertyIsNoStream)
{
    const auto message = NewItem(L"one");
    Com<IStream> stream;
    EXPECT_EQ(MAPI_E_NOT_FOUND, OpenStream(message.Get(), kRtf, 0, stream.GetAddressOf()));
    EXPECT_FALSE(stream);
    EXPECT_TRUE(FAILED(message->OpenProperty(PR_SUBJECT_W, &IID_IMAPITable, 0, 0, nullptr)));
    Com<IUnknown> other;
    EXPECT_TRUE(
        FAILED(message->OpenProperty(PR_SUBJECT_W, &IID_IMAPITable, 0, 0, other.GetAddressOf())));
    EXPECT_FALSE(other);
}

TEST_P(ItemConformanceTest, StreamsWriteWithCommitAndSave)
{
    const auto message = NewItem(L"one");
    const EntryIdBytes id = EntryIdOf(message.Get());
    Com<IStream> stream;
    ASSERT_EQ(S_OK,
              OpenStream(message.Get(), kBytes, MAPI_CREATE | MAPI_MODIFY, stream.GetAddressOf()));
    ULONG written = 0;
    EXPECT_EQ(S_OK, stream->Write("hello", 5, &written));
    EXPECT_EQ(5u, written);
    LARGE_INTEGER move = {};
    move.QuadPart = 1;
    EXPECT_EQ(S_OK, stream->Seek(move, STREAM_SEEK_SET, nullptr));
    EXPECT_EQ(S_OK, stream->Write("a", 1, nullptr));
    EXPECT_EQ(S_OK, stream->Commit(0));
    stream.Reset();
    const auto stored = [&] {
        const auto reader = OpenItem(id, 0);
        Com<IStream> again;
        OpenStream(reader.Get(), kBytes, 0, again.GetAddressOf());
        return ReadAll(again.Get());
    };
    EXPECT_THAT(stored(), IsEmpty());
    Save(message.Get());
    EXPECT_THAT(stored(), ElementsAre('h', 'a', 'l', 'l', 'o'));

    // A new one of the same property starts empty.
    ASSERT_EQ(S_OK,
              OpenStream(message.Get(), kBytes, MAPI_CREATE | MAPI_MODIFY, stream.GetAddressOf()));
    EXPECT_EQ(S_OK, stream->Write("x", 1, nullptr));
    EXPECT_EQ(S_OK, stream->Commit(0));
    stream.Reset();
    Save(message.Get());
    EXPECT_THAT(stored(), ElementsAre('x'));
}

TEST_P(ItemConformanceTest, OpensNoStreamForWritingOnAMessageForReading)
{
    const auto reader = OpenItem(AddItem(L"one"), 0);
    Com<IStream> stream;
    EXPECT_EQ(MAPI_E_NO_ACCESS,
              OpenStream(reader.Get(), kBytes, MAPI_CREATE | MAPI_MODIFY, stream.GetAddressOf()));
    EXPECT_FALSE(stream);
}

TEST_P(StoreConformanceTest, AttachmentsComeWithTheSavesOfBoth)
{
    const auto message = NewMessage(L"one");
    const EntryIdBytes id = EntryIdOf(message.Get());
    ULONG number = 99;
    Com<IAttach> attachment;
    ASSERT_EQ(S_OK, message->CreateAttach(nullptr, 0, &number, attachment.GetAddressOf()));
    ASSERT_TRUE(attachment);
    Set(attachment.Get(),
        {TextProp(PR_ATTACH_LONG_FILENAME_W, L"a.txt"), LongProp(PR_RENDERING_POSITION, -1)});
    Com<IStream> stream;
    ASSERT_EQ(S_OK,
              OpenStream(attachment.Get(),
                         PR_ATTACH_DATA_BIN,
                         MAPI_CREATE | MAPI_MODIFY,
                         stream.GetAddressOf()));
    EXPECT_EQ(S_OK, stream->Write("data", 4, nullptr));
    EXPECT_EQ(S_OK, stream->Commit(0));
    stream.Reset();

    const auto names = [&](IMessage* reader) {
        Com<IMAPITable> table;
        EXPECT_EQ(S_OK, reader->GetAttachmentTable(MAPI_UNICODE, table.GetAddressOf()));
        return Column(table.Get(), PR_ATTACH_LONG_FILENAME_W);
    };
    Save(attachment.Get(), FORCE_SAVE);
    attachment.Reset();
    EXPECT_THAT(names(Open<IMessage>(id).Get()), IsEmpty());
    Save(message.Get());
    const auto reader = Open<IMessage>(id);
    EXPECT_THAT(names(reader.Get()), ElementsAre(L"a.txt"));
    EXPECT_TRUE(Get(reader.Get(), {PR_HASATTACH})[0].Value.b);

    Com<IMAPITable> table;
    ASSERT_EQ(S_OK, reader->GetAttachmentTable(MAPI_UNICODE, table.GetAddressOf()));
    const Rows rows = AllRows(table.Get(), {PR_ATTACH_NUM, PR_RENDERING_POSITION});
    ASSERT_EQ(1u, rows->cRows);
    EXPECT_EQ(static_cast<LONG>(number), rows->aRow[0].lpProps[0].Value.l);
    EXPECT_EQ(-1, rows->aRow[0].lpProps[1].Value.l);
    Com<IAttach> again;
    ASSERT_EQ(S_OK, reader->OpenAttach(number, nullptr, 0, again.GetAddressOf()));
    ASSERT_EQ(S_OK, OpenStream(again.Get(), PR_ATTACH_DATA_BIN, 0, stream.GetAddressOf()));
    EXPECT_THAT(ReadAll(stream.Get()), ElementsAre('d', 'a', 't', 'a'));
}

TEST_P(StoreConformanceTest, ForgetsAttachmentsThatAreNotSaved)
{
    const auto message = NewMessage(L"one");
    {
        ULONG number = 0;
        Com<IAttach> attachment;
        ASSERT_EQ(S_OK, message->CreateAttach(nullptr, 0, &number, attachment.GetAddressOf()));
        Set(attachment.Get(), {TextProp(PR_ATTACH_LONG_FILENAME_W, L"a.txt")});
    }
    Save(message.Get());
    Com<IMAPITable> table;
    ASSERT_EQ(S_OK, message->GetAttachmentTable(MAPI_UNICODE, table.GetAddressOf()));
    EXPECT_THAT(Column(table.Get(), PR_ATTACH_LONG_FILENAME_W), IsEmpty());
}

TEST_P(StoreConformanceTest, DeletesAttachmentsWithTheSave)
{
    const auto message = NewMessage(L"one", false);
    ULONG numbers[2] = {};
    const wchar_t* const files[] = {L"a.txt", L"b.txt"};
    for (int i = 0; i < 2; ++i)
    {
        Com<IAttach> attachment;
        ASSERT_EQ(S_OK, message->CreateAttach(nullptr, 0, &numbers[i], attachment.GetAddressOf()));
        Set(attachment.Get(), {TextProp(PR_ATTACH_LONG_FILENAME_W, files[i])});
        Save(attachment.Get());
    }
    EXPECT_NE(numbers[0], numbers[1]);
    Save(message.Get());
    const EntryIdBytes id = EntryIdOf(message.Get());
    const auto names = [&] {
        const auto reader = Open<IMessage>(id);
        Com<IMAPITable> table;
        EXPECT_EQ(S_OK, reader->GetAttachmentTable(MAPI_UNICODE, table.GetAddressOf()));
        return Column(table.Get(), PR_ATTACH_LONG_FILENAME_W);
    };
    EXPECT_EQ(S_OK, message->DeleteAttach(numbers[0], 0, nullptr, 0));
    Com<IAttach> gone;
    EXPECT_EQ(MAPI_E_NOT_FOUND, message->OpenAttach(numbers[0], nullptr, 0, gone.GetAddressOf()));
    EXPECT_FALSE(gone);
    EXPECT_EQ(MAPI_E_NOT_FOUND, message->DeleteAttach(numbers[0], 0, nullptr, 0));
    EXPECT_THAT(names(), ElementsAre(L"a.txt", L"b.txt"));
    Save(message.Get());
    EXPECT_THAT(names(), ElementsAre(L"b.txt"));
}

TEST_P(StoreConformanceTest, UnpacksCompressedRtf)
{
    // The examples of [MS-OXRTFCP] and the smallest value of the plain kind.
    for (const std::string name : {"hello", "overlap", "unpacked"})
    {
        std::vector<BYTE> packed = DataFile(name + ".lzfu");
        const auto message = NewMessage(L"one", false);
        Set(message.Get(), {BinaryProp(kRtf, packed)});
        Save(message.Get());
        Com<IStream> compressed;
        ASSERT_EQ(S_OK, OpenStream(message.Get(), kRtf, 0, compressed.GetAddressOf()));
        Com<IStream> plain;
        ASSERT_EQ(S_OK, m_mapi->wrapCompressedRtfStream(compressed.Get(), 0, plain.GetAddressOf()));
        ASSERT_TRUE(plain);
        EXPECT_EQ(DataFile(name + ".rtf"), ReadAll(plain.Get())) << name;
        Rewind(plain.Get());
        EXPECT_EQ(DataFile(name + ".rtf"), ReadAll(plain.Get())) << name;
    }
}

TEST_P(StoreConformanceTest, RefusesRtfThatIsNone)
{
    std::vector<BYTE> garbage(40, 0xEE);
    const auto message = NewMessage(L"one", false);
    Set(message.Get(), {BinaryProp(kRtf, garbage)});
    Com<IStream> compressed;
    ASSERT_EQ(S_OK, OpenStream(message.Get(), kRtf, 0, compressed.GetAddressOf()));
    Com<IStream> plain;
    // Either the stream is refused or reading gives nothing.
    if (SUCCEEDED(m_mapi->wrapCompressedRtfStream(compressed.Get(), 0, plain.GetAddressOf())))
    {
        EXPECT_THAT(ReadAll(plain.Get()), IsEmpty());
    }
    EXPECT_TRUE(FAILED(m_mapi->wrapCompressedRtfStream(nullptr, 0, plain.GetAddressOf())));
}
