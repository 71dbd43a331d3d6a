// Category documents that a store hands over as streams. Values, writes and failing calls are in
// Outlook2007CategoryListTest.
#include "outlook/categories/CategoryStream.h"

#include "outlook/store/StreamReads.h"
#include "service/XmlScan.h"
#include "tests/outlook/FakeStore.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace
{
constexpr ULONG kStreamTag = 0x7C080102;

// Gives its bytes in pieces of that size, or without end.
class PieceStream final : public StreamWithoutOperations
{
  public:
    std::string bytes;
    ULONG pieceBytes = 0xFFFFFFFF;
    bool isEndless = false;
    HRESULT atEnd = S_OK;
    std::size_t given = 0;

    STDMETHODIMP Read(void* buffer, ULONG size, ULONG* read) override
    {
        if (isEndless)
        {
            std::memset(buffer, ' ', size);
            given += * read = size;
            return S_OK;
        }
        const std::size_t count = std::min<std::size_t>({size, pieceBytes, bytes.size() - given});
        std::memcpy(buffer, bytes.data() + given, count);
        given += count;
        *read = static_cast<ULONG>(count);
        return count ? S_OK : atEnd;
    }
};

// A message whose value is too large.
class CategoryStreamTest : public testing::Test
{
  protected:
    CategoryStreamTest()
    {
        SPropValue value = {};
        value.ulPropTag = CHANGE_PROP_TYPE(kStreamTag, PT_ERROR);
        value.Value.err = MAPI_E_NOT_ENOUGH_MEMORY;
        message.values = {value};
        message.getPropsResult = MAPI_W_ERRORS_RETURNED;
        message.openProperty = [this](IUnknown** object) {
            stream.AddRef();
            *object = &stream;
            return S_OK;
        };
    }
    CategoryStream Read() { return ReadCategoryStream(message, proxy, text); }

    StoreCalls calls;
    FakeStoreProxcy proxy{calls};
    FakeProp message{calls, proxy};
    PieceStream stream;
    std::string text = "untouched";
};
} // namespace

TEST_F(CategoryStreamTest, ALargeDocumentIsReadToItsEnd)
{
    stream.bytes = std::string(100000, 'x') + "end";
    for (const ULONG piece : {0xFFFFFFFFul, 0x4000ul, 1000ul})
    {
        stream.pieceBytes = piece;
        stream.given = 0;
        EXPECT_EQ(CategoryStream::Read, Read());
        EXPECT_EQ(stream.bytes, text);
    }
    calls.clear();
    stream.given = 0;
    Read();
    EXPECT_THAT(calls,
                ElementsAre("GetProps 7C080102, flags 80000000",
                            "OpenProperty 7C080102 IStream, options 0, flags 0",
                            "FreeBuffer values"));
    EXPECT_EQ(1u, stream.References());
}

// 16 MiB are read whole, a byte more is too much.
TEST_F(CategoryStreamTest, ADocumentIsReadUpToTheLimit)
{
    stream.bytes.assign(16u << 20, 'x');
    EXPECT_EQ(CategoryStream::Read, Read());
    EXPECT_TRUE(stream.bytes == text);
    stream.bytes += 'x';
    stream.given = 0;
    EXPECT_EQ(CategoryStream::Unreadable, Read());
}

TEST_F(CategoryStreamTest, AStreamThatCannotBeReadIsThereAllTheSame)
{
    stream.bytes = "text";
    stream.atEnd = E_FAIL;
    EXPECT_EQ(CategoryStream::Unreadable, Read());
    stream.bytes.clear();
    stream.given = 0;
    stream.atEnd = S_OK;
    EXPECT_EQ(CategoryStream::Unreadable, Read());
    message.openProperty = [](IUnknown** object) {
        *object = Rubbish<IUnknown>();
        return E_FAIL;
    };
    EXPECT_EQ(CategoryStream::Unreadable, Read());
    message.openProperty = [](IUnknown** object) {
        *object = nullptr;
        return S_OK;
    };
    EXPECT_EQ(CategoryStream::Unreadable, Read());
    EXPECT_EQ("untouched", text);
}

// A count beside no bytes.
TEST_F(CategoryStreamTest, AValueWithoutItsBytesIsThereAllTheSame)
{
    message.getPropsResult = S_OK;
    for (const ULONG pretended : {1ul, 64ul})
    {
        message.values.front().ulPropTag = kStreamTag;
        message.values.front().Value.bin = {pretended, nullptr};
        EXPECT_EQ(CategoryStream::Unreadable, Read()) << pretended;
    }
    EXPECT_EQ("untouched", text);
}

// One byte at a time, for ever.
TEST_F(CategoryStreamTest, AStreamThatTricklesIsGivenUp)
{
    stream.bytes = std::string(kMostStreamReads + 10, 'x');
    stream.pieceBytes = 1;
    EXPECT_EQ(CategoryStream::Unreadable, Read());
    EXPECT_EQ(kMostStreamReads + 1, stream.given);
    EXPECT_EQ("untouched", text);
}

TEST_F(CategoryStreamTest, AStreamWithoutEndIsGivenUp)
{
    stream.isEndless = true;
    EXPECT_EQ(CategoryStream::Unreadable, Read());
    EXPECT_GT(stream.given, kMaxXmlBytes);
    EXPECT_LT(stream.given, 2 * kMaxXmlBytes);
    EXPECT_EQ("untouched", text);
}
