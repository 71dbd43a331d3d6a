// The two forms of a message's body in the embedded store: which of them a save makes, replaces
// and takes away.
#include "tests/localstore/StoreClient.h"

#include <gmock/gmock.h>

using testing::EndsWith;
using testing::StartsWith;

namespace
{

constexpr ULONG kRtf = 0x10090102; // PR_RTF_COMPRESSED

// Compressed RTF that is stored as it is ([MS-OXRTFCP]): the size behind the first field, the size
// of the text, "MELA", no checksum.
std::string Unpacked(const std::string& rtf)
{
    const std::size_t sizes[] = {rtf.size() + 12, rtf.size()};
    std::string bytes;
    for (const std::size_t size : sizes)
        for (int shift = 0; shift < 32; shift += 8)
            bytes += static_cast<char>(size >> shift);
    return bytes + "MELA" + std::string(4, '\0') + rtf;
}

// A caller's own document.
const std::string kRich = Unpacked("{\\rtf1\\ansi\\deff0{\\b bold} text}");

class StoreBodyTest : public StoreTest
{
  protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        m_id = AddMessage(Contacts().Get(), L"IPM.Contact", L"one");
        m_message = OpenMessage(m_id);
        ASSERT_TRUE(m_message);
    }

    void SetText(const std::wstring& text)
    {
        SPropValue value = TextValue(PR_BODY_W, text.c_str());
        ASSERT_EQ(S_OK, m_message->SetProps(1, &value, nullptr));
    }
    void SetRtf(const std::string& bytes)
    {
        SPropValue value = BinaryValue(kRtf, bytes.data(), bytes.size());
        ASSERT_EQ(S_OK, m_message->SetProps(1, &value, nullptr));
    }
    void Delete(ULONG tag)
    {
        Tags tags{tag};
        ASSERT_EQ(S_OK, m_message->DeleteProps(tags, nullptr));
    }
    void Save() { ASSERT_EQ(S_OK, m_message->SaveChanges(KEEP_OPEN_READWRITE)); }

    // As another opening of the message sees them.
    std::wstring StoredText() { return Text(OpenMessage(m_id).Get(), PR_BODY_W); }
    std::string StoredRtf()
    {
        const EntryBytes bytes = Binary(OpenMessage(m_id).Get(), kRtf);
        return {bytes.begin(), bytes.end()};
    }
    HRESULT StoredError(ULONG tag) { return ValueError(OpenMessage(m_id).Get(), tag); }
    // The document in the stored RTF; empty where there is none.
    std::string Document()
    {
        const auto message = OpenMessage(m_id);
        ComPtr<IStream> packed;
        ComPtr<IStream> plain;
        if (FAILED(message->OpenProperty(
                kRtf, &IID_IStream, 0, 0, reinterpret_cast<IUnknown**>(packed.GetAddressOf()))) ||
            FAILED(m_library.WrapRtf(packed.Get(), 0, plain.GetAddressOf())))
            return {};
        std::string document;
        char piece[1024];
        ULONG read = 0;
        while (plain->Read(piece, sizeof piece, &read) == S_OK && read != 0)
            document.append(piece, read);
        return document;
    }

    EntryBytes m_id;
    ComPtr<IMessage> m_message;
};

} // namespace

TEST_F(StoreBodyTest, TextAloneGetsItsRtf)
{
    SetText(L"Tab\there,\r\ngr\u00FC\u00DFe {\\}");
    Save();
    EXPECT_EQ(L"Tab\there,\r\ngr\u00FC\u00DFe {\\}", StoredText());
    EXPECT_EQ("{\\rtf1\\ansi\\fromtext\\deff0{\\fonttbl{\\f0\\fswiss Arial;}}\\pard\\plain\\f0"
              "\\fs20 Tab\\tab here,\\par gr\\u252?\\u223?e \\{\\\\\\}}",
              Document());
    EXPECT_EQ("LZFu", StoredRtf().substr(8, 4));
}

TEST_F(StoreBodyTest, AnEmptyTextGetsADocumentWithoutText)
{
    SetText(L"");
    Save();
    EXPECT_THAT(Document(), EndsWith("\\fs20 }"));
}

TEST_F(StoreBodyTest, NarrowTextGetsItsRtf)
{
    SPropValue value = {};
    value.ulPropTag = PR_BODY_A;
    value.Value.lpszA = const_cast<char*>("narrow");
    ASSERT_EQ(S_OK, m_message->SetProps(1, &value, nullptr));
    Save();
    EXPECT_THAT(Document(), EndsWith("\\fs20 narrow}"));
}

TEST_F(StoreBodyTest, TextOfAStreamGetsItsRtf)
{
    ComPtr<IStream> stream;
    ASSERT_EQ(S_OK,
              m_message->OpenProperty(PR_BODY_W,
                                      &IID_IStream,
                                      0,
                                      MAPI_CREATE | MAPI_MODIFY,
                                      reinterpret_cast<IUnknown**>(stream.GetAddressOf())));
    const std::wstring text = L"line\r\n\xD83D\xDE00";
    const auto bytes = static_cast<ULONG>(text.size() * sizeof(wchar_t));
    ASSERT_EQ(S_OK, stream->Write(text.data(), bytes, nullptr));
    ASSERT_EQ(S_OK, stream->Commit(0));
    Save();
    EXPECT_EQ(text, StoredText());
    EXPECT_THAT(Document(), EndsWith("\\fs20 line\\par \\u-10179?\\u-8704?}"));
}

TEST_F(StoreBodyTest, ANewTextReplacesTheRtfOfTheOldOne)
{
    SetRtf(kRich);
    Save();
    ASSERT_EQ(kRich, StoredRtf());
    SetText(L"second");
    Save();
    EXPECT_THAT(Document(), EndsWith("\\fs20 second}"));
    SetText(L"third");
    Save();
    EXPECT_THAT(Document(), EndsWith("\\fs20 third}"));
}

TEST_F(StoreBodyTest, TextGetsItsRtfWhereTheSameSaveDeletesTheOldOne)
{
    SetRtf(kRich);
    Save();
    Delete(kRtf);
    SetText(L"new");
    Save();
    EXPECT_THAT(Document(), EndsWith("\\fs20 new}"));
    SetText(L"newer");
    Delete(kRtf);
    Save();
    EXPECT_THAT(Document(), EndsWith("\\fs20 newer}"));
}

TEST_F(StoreBodyTest, BothFormsOfOneSaveStayAsTheyCame)
{
    SetText(L"text");
    SetRtf(kRich);
    Save();
    EXPECT_EQ(L"text", StoredText());
    EXPECT_EQ(kRich, StoredRtf());
    SetRtf(kRich + "!");
    SetText(L"other");
    Save();
    EXPECT_EQ(L"other", StoredText());
    EXPECT_EQ(kRich + "!", StoredRtf());
}

TEST_F(StoreBodyTest, RtfAloneLeavesTheText)
{
    SetRtf(kRich);
    Save();
    EXPECT_EQ(kRich, StoredRtf());
    EXPECT_EQ(MAPI_E_NOT_FOUND, StoredError(PR_BODY_W));
    SetText(L"text");
    Save();
    SetRtf(kRich);
    Save();
    EXPECT_EQ(L"text", StoredText());
    EXPECT_EQ(kRich, StoredRtf());
}

TEST_F(StoreBodyTest, RtfDeletedAloneIsGoneAndTheTextStays)
{
    SetText(L"text");
    Save();
    Delete(kRtf);
    Save();
    EXPECT_EQ(MAPI_E_NOT_FOUND, StoredError(kRtf));
    EXPECT_EQ(L"text", StoredText());
    // Saves that have nothing to do with the body do not bring it back.
    SPropValue value = TextValue(PR_SUBJECT_W, L"two");
    ASSERT_EQ(S_OK, m_message->SetProps(1, &value, nullptr));
    Save();
    EXPECT_EQ(MAPI_E_NOT_FOUND, StoredError(kRtf));
}

TEST_F(StoreBodyTest, ADeletedTextTakesTheRtfThatWasMadeOfIt)
{
    // Whether or not the document is many times as long as the text.
    for (const std::wstring& text : {std::wstring(L"text"), std::wstring(1'000'000, L'\x8000')})
    {
        SetText(text);
        Save();
        ASSERT_THAT(Document(), StartsWith("{\\rtf1"));
        Delete(PR_BODY_W);
        Save();
        EXPECT_EQ(MAPI_E_NOT_FOUND, StoredError(PR_BODY_W));
        EXPECT_EQ(MAPI_E_NOT_FOUND, StoredError(kRtf));
    }
}

TEST_F(StoreBodyTest, ADeletedTextLeavesACallersRtf)
{
    // What no document can be got out of is a caller's, too.
    for (const std::string& rtf : {kRich, std::string("broken"), Unpacked("")})
    {
        SetText(L"text");
        SetRtf(rtf);
        Save();
        Delete(PR_BODY_W);
        Save();
        EXPECT_EQ(MAPI_E_NOT_FOUND, StoredError(PR_BODY_W));
        EXPECT_EQ(S_OK, StoredError(kRtf));
        EXPECT_EQ(rtf, StoredRtf());
    }
    // And one that comes with the deletion.
    SetText(L"text");
    Save();
    const std::string made = StoredRtf();
    Delete(PR_BODY_W);
    SetRtf(made);
    Save();
    EXPECT_EQ(made, StoredRtf());
}

TEST_F(StoreBodyTest, AValueThatIsNoTextCountsAsADeletedText)
{
    SetText(L"text");
    Save();
    SPropValue value = LongValue(PROP_TAG(PT_LONG, 0x1000), 7);
    ASSERT_EQ(S_OK, m_message->SetProps(1, &value, nullptr));
    Save();
    EXPECT_EQ(7, Long(OpenMessage(m_id).Get(), PROP_TAG(PT_LONG, 0x1000)));
    EXPECT_EQ(MAPI_E_NOT_FOUND, StoredError(kRtf));
}

TEST_F(StoreBodyTest, ATextTooLongForRtfLosesTheRtfOfTheOldOne)
{
    constexpr std::size_t kLongest = 8u << 20;
    SetText(std::wstring(kLongest, L'x'));
    Save();
    EXPECT_EQ(S_OK, StoredError(kRtf));
    SetText(std::wstring(kLongest + 1, L'x'));
    Save();
    EXPECT_EQ(kLongest + 1, StoredText().size());
    EXPECT_EQ(MAPI_E_NOT_FOUND, StoredError(kRtf));
}

TEST_F(StoreBodyTest, AFailedSaveLeavesBothForms)
{
    SetText(L"mine");
    Save();
    const std::string made = StoredRtf();
    const auto other = OpenMessage(m_id);
    SetText(L"newer");
    Save();
    SPropValue value = TextValue(PR_BODY_W, L"late");
    ASSERT_EQ(S_OK, other->SetProps(1, &value, nullptr));
    EXPECT_EQ(MAPI_E_OBJECT_CHANGED, other->SaveChanges(0));
    EXPECT_EQ(L"newer", StoredText());
    EXPECT_THAT(Document(), EndsWith("\\fs20 newer}"));
    EXPECT_NE(made, StoredRtf());
    // By force both change.
    EXPECT_EQ(S_OK, other->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(L"late", StoredText());
    EXPECT_THAT(Document(), EndsWith("\\fs20 late}"));
}
