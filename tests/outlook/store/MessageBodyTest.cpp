#include "outlook/store/MessageBody.h"

#include "support/DebugOutputCapture.h"
#include "tests/outlook/FakeStore.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace
{
constexpr char kGetProps[] = "GetProps 1000001F, flags 80000000";
constexpr char kOpenProperty[] = "OpenProperty 10090102 IStream, options 0, flags 0";

// A stream of bytes that writes down its calls. Reads of pieces are counted, not written.
class FakeStream final : public StreamWithoutOperations
{
  public:
    explicit FakeStream(StoreCalls& calls) : m_calls(calls) {}

    std::string bytes;
    ULONG pieces = 0;
    // How reading goes wrong: after so many bytes, and whether the seek and what follows it do.
    std::size_t failsAt = SIZE_MAX;
    bool seekFails = false;
    bool readBehindSeekFails = false;
    std::size_t lostBehindSeek = 0;
    bool overstates = false;
    ULONG mostPerPiece = 1024;
    ULONG mostBehindSeek = 0xFFFFFFFF; // of one read

    STDMETHODIMP Read(void* buffer, ULONG size, ULONG* read) override
    {
        if (m_sought)
            m_calls.push_back("Read " + std::to_string(size));
        else
        {
            EXPECT_EQ(1024u, size);
            ++pieces;
        }
        *read = 0;
        if (m_position >= failsAt || (m_sought && readBehindSeekFails))
        {
            *read = size; // what a failed read tells counts nothing
            return STG_E_READFAULT;
        }
        const std::size_t end = bytes.size() - (m_sought ? lostBehindSeek : 0);
        const std::size_t left = end > m_position ? end - m_position : 0;
        const std::size_t most = std::min(size, m_sought ? mostBehindSeek : mostPerPiece);
        const std::size_t count = std::min(most, left);
        std::memcpy(buffer, bytes.data() + m_position, count);
        m_position += count;
        *read = static_cast<ULONG>(overstates && count ? count + size : count);
        return count < size ? S_FALSE : S_OK;
    }
    STDMETHODIMP Seek(LARGE_INTEGER move, DWORD origin, ULARGE_INTEGER* position) override
    {
        m_calls.push_back("Seek " + std::to_string(move.QuadPart) + " " + std::to_string(origin) +
                          (position ? " out" : " null"));
        m_sought = true;
        m_position = 0;
        return seekFails ? STG_E_SEEKERROR : S_OK;
    }

  private:
    StoreCalls& m_calls;
    std::size_t m_position = 0;
    bool m_sought = false;
};

class MessageBodyTest : public testing::Test
{
  protected:
    MessageBodyTest() : message(calls, proxy), compressed(calls), rtf(calls)
    {
        message.values = {TextValue(0x1000001F, L"plain body")};
        rtf.bytes = "{\\rtf1 from RTF}";
        message.openProperty = [this](IUnknown** object) {
            compressed.AddRef();
            *object = &compressed;
            return S_OK;
        };
        proxy.wrap = [this](IStream* stream, ULONG flags, IStream** plain) {
            calls.push_back("WrapCompressedRTFStream" + FlagText(flags));
            EXPECT_EQ(&compressed, stream);
            rtf.AddRef();
            *plain = &rtf;
            return S_OK;
        };
    }
    // The streams check that they were released when they end.

    std::wstring ReadBody(bool isPresent = true)
    {
        return ReadMessageBody(&message, isPresent, proxy, converter);
    }
    // The calls of a whole fallback to RTF of that many bytes.
    static StoreCalls RtfCalls(std::size_t size)
    {
        return {kOpenProperty,
                "WrapCompressedRTFStream, flags 00000000",
                "Seek 0 0 null",
                "Read " + std::to_string(size)};
    }

    StoreCalls calls;
    FakeStoreProxcy proxy{calls};
    FakeProp message;
    FakeStream compressed;
    FakeStream rtf;
    std::unique_ptr<CRichEditHelper> converter;
};
} // namespace

// --- The plain body ------------------------------------------------------------------------------

TEST_F(MessageBodyTest, ThePlainBodyComesFirst)
{
    EXPECT_EQ(L"plain body", ReadBody());
    EXPECT_EQ((StoreCalls{kGetProps, "FreeBuffer values"}), calls);
    EXPECT_EQ(nullptr, converter);
}

TEST_F(MessageBodyTest, ABodyOfALoneLineBreakIsEmptyAndRtfIsNotOpened)
{
    message.values = {TextValue(0x1000001F, L"\r\n")};
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(L"", ReadBody());
    EXPECT_EQ((StoreCalls{kGetProps, "FreeBuffer values"}), calls);
    EXPECT_EQ(nullptr, converter);
    EXPECT_THAT(capture.TakeLogMessages(), testing::IsEmpty());
}

TEST_F(MessageBodyTest, AnEmptyBodyEndsTheReadingToo)
{
    message.values = {TextValue(0x1000001F, L"")};
    EXPECT_EQ(L"", ReadBody());
    EXPECT_EQ((StoreCalls{kGetProps, "FreeBuffer values"}), calls);
}

TEST_F(MessageBodyTest, MoreThanALineBreakIsABody)
{
    for (const wchar_t* text : {L"\r\n\r\n", L"\r\na", L" \r\n"})
    {
        message.values = {TextValue(0x1000001F, text)};
        EXPECT_EQ(text, ReadBody());
    }
}

// --- The fallback to RTF -------------------------------------------------------------------------

TEST_F(MessageBodyTest, WithoutTheChoosingPropertyThePlainBodyIsNotAskedFor)
{
    EXPECT_EQ(L"from RTF", ReadBody(false));
    EXPECT_EQ(RtfCalls(16), calls);
}

TEST_F(MessageBodyTest, ABodyThatIsMissingGivesWayToRtf)
{
    message.values = {MissingValue(0x1000001F)};
    EXPECT_EQ(L"from RTF", ReadBody());
    StoreCalls expected = RtfCalls(16);
    expected.insert(expected.begin(), {kGetProps, "FreeBuffer values"});
    EXPECT_EQ(expected, calls);
}

TEST_F(MessageBodyTest, AnyResultButPlainSuccessGivesWayToRtf)
{
    for (const HRESULT result : {HRESULT{S_FALSE}, HRESULT{MAPI_W_ERRORS_RETURNED}})
    {
        calls.clear();
        message.getPropsResult = result;
        ReadBody();
        ASSERT_LE(3u, calls.size());
        EXPECT_EQ(kGetProps, calls[0]);
        EXPECT_EQ("FreeBuffer values", calls[1]); // nothing leaks
        EXPECT_EQ(kOpenProperty, calls[2]);
    }
}

TEST_F(MessageBodyTest, AFailedReadingOfTheBodyGivesWayToRtf)
{
    for (const StoreFailure failure : kStoreFailures)
    {
        FakeStream again(calls);
        again.bytes = rtf.bytes;
        proxy.wrap = [&again](IStream*, ULONG, IStream** plain) {
            again.AddRef();
            *plain = &again;
            return S_OK;
        };
        message.getProps = failure;
        EXPECT_EQ(L"from RTF", ReadBody());
        EXPECT_EQ(0u, proxy.Live());
    }
}

TEST_F(MessageBodyTest, AValueThatIsNoWideTextIsNotFollowed)
{
    message.values = {NumberValue(0x10000003, 16)};
    EXPECT_EQ(L"from RTF", ReadBody());
}

TEST_F(MessageBodyTest, AMessageWithoutRtfHasNoBody)
{
    message.openProperty = nullptr;
    EXPECT_EQ(L"", ReadBody(false));
    EXPECT_EQ((StoreCalls{kOpenProperty}), calls);
    EXPECT_NE(nullptr, converter);
}

TEST_F(MessageBodyTest, AFailedOpeningIsNotTouched)
{
    for (const HRESULT result : {E_OUTOFMEMORY, HRESULT{MAPI_E_CALL_FAILED}})
    {
        message.openProperty = [result](IUnknown** object) {
            *object = Rubbish<IUnknown>();
            return result;
        };
        EXPECT_EQ(L"", ReadBody(false));
    }
    message.openProperty = [](IUnknown** object) {
        *object = nullptr;
        return S_OK;
    };
    EXPECT_EQ(L"", ReadBody(false));
    EXPECT_EQ((StoreCalls{kOpenProperty, kOpenProperty, kOpenProperty}), calls);
}

TEST_F(MessageBodyTest, AStreamThatCannotBeUnwrappedIsReleased)
{
    for (const HRESULT result : {E_OUTOFMEMORY, HRESULT{MAPI_E_CALL_FAILED}})
    {
        proxy.wrap = [result](IStream*, ULONG, IStream** plain) {
            *plain = Rubbish<IStream>();
            return result;
        };
        EXPECT_EQ(L"", ReadBody(false));
        EXPECT_EQ(1u, compressed.References());
    }
    proxy.wrap = [](IStream*, ULONG, IStream** plain) {
        *plain = nullptr;
        return S_OK;
    };
    EXPECT_EQ(L"", ReadBody(false));
    EXPECT_EQ(1u, compressed.References());
}

TEST_F(MessageBodyTest, RtfOfNoBytesIsNotReadAgain)
{
    rtf.bytes.clear();
    EXPECT_EQ(L"", ReadBody(false));
    EXPECT_EQ((StoreCalls{kOpenProperty, "WrapCompressedRTFStream, flags 00000000"}), calls);
    EXPECT_EQ(1u, rtf.pieces);
}

TEST_F(MessageBodyTest, ASuccessfulWarningStillGivesTheStream)
{
    proxy.wrap = [this](IStream*, ULONG, IStream** plain) {
        rtf.AddRef();
        *plain = &rtf;
        return MAPI_W_ERRORS_RETURNED;
    };
    EXPECT_EQ(L"from RTF", ReadBody(false));
}

// Counting ends at the failure; what was counted so far is the size.
TEST_F(MessageBodyTest, AReadThatFailsEndsTheCount)
{
    rtf.bytes = "{\\rtf1 " + std::string(2041, 'a') + "}"; // 2,049 bytes
    rtf.failsAt = 2048;
    EXPECT_EQ(std::wstring(2041, L'a'), ReadBody(false));
    EXPECT_EQ(RtfCalls(2048), calls);
    EXPECT_EQ(3u, rtf.pieces);
}

TEST_F(MessageBodyTest, AFailureBehindTheCountGivesNothing)
{
    rtf.seekFails = true;
    EXPECT_EQ(L"", ReadBody(false));
    EXPECT_EQ(
        (StoreCalls{kOpenProperty, "WrapCompressedRTFStream, flags 00000000", "Seek 0 0 null"}),
        calls);
}

TEST_F(MessageBodyTest, AFailedSecondReadingGivesNothing)
{
    rtf.readBehindSeekFails = true;
    EXPECT_EQ(L"", ReadBody(false));
    EXPECT_EQ(RtfCalls(16), calls);
}

TEST_F(MessageBodyTest, AShorterSecondReadingGivesWhatItHolds)
{
    rtf.lostBehindSeek = 4; // "{\rtf1 from "
    EXPECT_EQ(L"from ", ReadBody(false));
}

// A stream may give fewer bytes than it was asked for without being at its end.
TEST_F(MessageBodyTest, ASecondReadingInPiecesIsReadToItsEnd)
{
    rtf.bytes = "{\\rtf1 " + std::string(1000, 'a') + "}"; // 1,008 bytes
    rtf.mostBehindSeek = 400;
    EXPECT_EQ(std::wstring(1000, L'a'), ReadBody(false));
    StoreCalls reads = calls;
    std::erase_if(reads, [](const std::string& call) { return !call.starts_with("Read "); });
    EXPECT_THAT(reads, ElementsAre("Read 1008", "Read 608", "Read 208"));
}

// Nor for ever.
TEST_F(MessageBodyTest, ASecondReadingThatTricklesIsCutToo)
{
    rtf.bytes = "{\\rtf1 " + std::string(70'000, 'a') + "}";
    rtf.mostBehindSeek = 1;
    EXPECT_EQ(std::wstring(65'536 - 7, L'a'), ReadBody(false));
}

TEST_F(MessageBodyTest, AStreamThatOverstatesItsReadsIsNotBelieved)
{
    rtf.overstates = true;
    EXPECT_EQ(L"from RTF", ReadBody(false));
    EXPECT_EQ(RtfCalls(1024), calls);
}

TEST_F(MessageBodyTest, BytesBehindAZeroAreNotConverted)
{
    rtf.bytes = std::string("{\\rtf1 a\0b}", 11);
    EXPECT_EQ(L"a", ReadBody(false));
}

TEST_F(MessageBodyTest, BytesAreReadInTheSystemsCodePage)
{
    ASSERT_EQ(1252u, GetACP());
    rtf.bytes = "{\\rtf1 h\xE4llo\\par {\\v hidden}\\'80}"; // byte 80 of 1252 is U+20AC
    EXPECT_EQ(L"h\x00E4llo\r\n\x20AC", ReadBody(false));
}

TEST_F(MessageBodyTest, TextThatIsNoRtfGivesNoBody)
{
    rtf.bytes = "no RTF at all";
    EXPECT_EQ(L"", ReadBody(false));
}

// 10,485,760 bytes do not pass the limit: a further read finds the end.
TEST_F(MessageBodyTest, RtfAtTheLimitIsReadWhole)
{
    rtf.bytes = "{\\rtf1 " + std::string(0xA00000 - 8, 'a') + "}";
    ASSERT_EQ(0xA00000u, rtf.bytes.size());
    EXPECT_EQ(0xA00000u - 8, ReadBody(false).size());
    EXPECT_EQ(RtfCalls(10'485'760), calls);
    EXPECT_EQ(10'241u, rtf.pieces); // 10,240 full ones and an empty one
}

// One byte more passes the limit, and is the last that is read.
TEST_F(MessageBodyTest, RtfJustBeyondTheLimitIsReadToThatByte)
{
    rtf.bytes = "{\\rtf1 " + std::string(0xA00000 - 7, 'a') + "}";
    ASSERT_EQ(0xA00001u, rtf.bytes.size());
    EXPECT_EQ(0xA00000u - 7, ReadBody(false).size());
    EXPECT_EQ(RtfCalls(10'485'761), calls);
    EXPECT_EQ(10'241u, rtf.pieces); // 10,240 full ones and one of a byte
}

// The piece that first passes the limit is the last: 10,241 of 1,024 bytes are 10,486,784. The text
// ends there, without the closing brace.
TEST_F(MessageBodyTest, RtfBeyondTheLimitIsCutAtTheCountReached)
{
    rtf.bytes = "{\\rtf1 " + std::string(0xA00000 + 5000, 'a') + "}";
    EXPECT_EQ(10'486'784u - 7, ReadBody(false).size());
    EXPECT_EQ(RtfCalls(10'486'784), calls);
    EXPECT_EQ(10'241u, rtf.pieces);
}

// One byte at a time: what comes after 65,536 of them is left where it is.
TEST_F(MessageBodyTest, RtfThatTricklesIsCutAtTheCountReached)
{
    rtf.bytes = "{\\rtf1 " + std::string(70'000, 'a') + "}";
    rtf.mostPerPiece = 1;
    EXPECT_EQ(std::wstring(65'536 - 7, L'a'), ReadBody(false));
    EXPECT_EQ(RtfCalls(65'536), calls);
    EXPECT_EQ(65'536u, rtf.pieces);
}

// --- The converter and the log -------------------------------------------------------------------

TEST_F(MessageBodyTest, TheConverterIsMadeOnceAndKept)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    ReadBody(false);
    ASSERT_NE(nullptr, converter);
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("Get note Failed, Get from PR_RTF_COMPRESSED agian",
                            "CRichEditHelper::Init",
                            "CRichEditHelper::Convert"));
    const CRichEditHelper* const first = converter.get();
    rtf.bytes.clear();
    ReadBody(false);
    EXPECT_EQ(first, converter.get());
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("Get note Failed, Get from PR_RTF_COMPRESSED agian"));
}

TEST_F(MessageBodyTest, ThePlainBodyLeavesNoLineInTheLog)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    ReadBody();
    EXPECT_THAT(capture.TakeLogMessages(), testing::IsEmpty());
}

TEST_F(MessageBodyTest, TheFallbackAloneWritesNoLineOfItsOwn)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(L"from RTF", ReadRtfBody(&message, proxy, converter));
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("CRichEditHelper::Init", "CRichEditHelper::Convert"));
}

TEST_F(MessageBodyTest, WithoutAConverterLibraryTheBodyStaysEmpty)
{
    converter = std::make_unique<CRichEditHelper>();
    converter->InitFrom(L"C:\\no such folder\\none.dll");
    EXPECT_EQ(L"", ReadBody(false));
}
