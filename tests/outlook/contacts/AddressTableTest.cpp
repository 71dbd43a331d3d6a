#include "outlook/contacts/AddressTable.h"

#include "outlook/FakeStore.h"
#include "outlook/contacts/PictureCopy.h"
#include "support/BriefPipe.h"
#include "support/ScratchDirectory.h"

#include <gmock/gmock.h>

#include <fstream>

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
// Opens what derived tables use.
class OpenAddressTable : public CAddressTable
{
  public:
    OpenAddressTable() : CAddressTable(nullptr, nullptr) {}
    using CAddressTable::CreateItem;
    using CAddressTable::SavePicture;

  protected:
    bool IsWantedRow(const PropertyView&) override { return true; }
    std::vector<ULONG> GetPropertyNames() override { return {}; }
    void FillItem(INEntityItem&, const PropertyView&) override {}
    PropertyArray ReadItem(INEntityItem&, bool) override { return {}; }
};

// Takes bytes and writes down in which portions they came.
class TakingStream : public StreamWithoutOperations
{
  public:
    std::string bytes;
    std::vector<ULONG> portions;
    std::size_t shortAt = 0; // number of the write that takes one byte fewer; from 1
    std::size_t failAt = 0;  // and of the one that fails though it took all

    STDMETHODIMP Write(const void* data, ULONG size, ULONG* written) override
    {
        portions.push_back(size);
        *written = portions.size() == shortAt ? size - 1 : size;
        bytes.append(static_cast<const char*>(data), *written);
        return portions.size() == failAt ? STG_E_MEDIUMFULL : S_OK;
    }
};

class AddressTablePictureTest : public testing::Test
{
  protected:
    // A file of that many bytes with changing content.
    std::wstring FileOf(std::size_t size)
    {
        for (std::size_t i = 0; i < size; ++i)
            m_content += static_cast<char>('A' + i % 57);
        const std::wstring path = m_scratch.File(L"picture.jpg");
        std::ofstream(std::filesystem::path(path), std::ios::binary) << m_content;
        return path;
    }

    ScratchDirectory m_scratch;
    std::string m_content;
    TakingStream m_stream;
};
} // namespace

TEST(AddressTableTest, ItsItemsAreContacts)
{
    OpenAddressTable table;
    const ComPtr<INEntityItem> item = table.CreateItem();
    ASSERT_TRUE(item);
    ComPtr<INContactItem> contact;
    EXPECT_EQ(S_OK, item.As(&contact));
}

TEST_F(AddressTablePictureTest, CopiesAFileInPortions)
{
    const std::wstring path = FileOf(0x4000 + 0x4000 + 5);
    EXPECT_EQ(0x8005u, OpenAddressTable::SavePicture(path.c_str(), &m_stream));
    EXPECT_THAT(m_stream.portions, ElementsAre(0x4000, 0x4000, 5));
    EXPECT_EQ(m_content, m_stream.bytes);
}

TEST_F(AddressTablePictureTest, CopiesNothingOfAnEmptyFile)
{
    const std::wstring path = FileOf(0);
    EXPECT_EQ(0u, OpenAddressTable::SavePicture(path.c_str(), &m_stream));
    EXPECT_THAT(m_stream.portions, IsEmpty());
}

TEST_F(AddressTablePictureTest, LeavesTheFileAsItWas)
{
    const std::wstring path = FileOf(100);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(100u, OpenAddressTable::SavePicture(path.c_str(), &m_stream));
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    EXPECT_EQ(100u, std::filesystem::file_size(path));
}

TEST_F(AddressTablePictureTest, NullArgumentsAndAMissingFileGiveZero)
{
    const std::wstring path = FileOf(10);
    EXPECT_EQ(0u, OpenAddressTable::SavePicture(nullptr, &m_stream));
    EXPECT_EQ(0u, OpenAddressTable::SavePicture(path.c_str(), nullptr));
    EXPECT_EQ(0u, OpenAddressTable::SavePicture(L"", &m_stream));
    EXPECT_EQ(0u, OpenAddressTable::SavePicture(m_scratch.File(L"none.jpg").c_str(), &m_stream));
    EXPECT_EQ(0u, OpenAddressTable::SavePicture(m_scratch.Path().c_str(), &m_stream));
    EXPECT_THAT(m_stream.portions, IsEmpty());
}

TEST_F(AddressTablePictureTest, AWriteThatFallsShortEndsTheCopy)
{
    m_stream.shortAt = 1;
    const std::wstring path = FileOf(0x4001);
    EXPECT_EQ(0x3FFFu, OpenAddressTable::SavePicture(path.c_str(), &m_stream));
    EXPECT_THAT(m_stream.portions, ElementsAre(0x4000));
}

TEST_F(AddressTablePictureTest, AWriteThatFailsEndsTheCopyWithWhatWasTaken)
{
    m_stream.failAt = 2;
    const std::wstring path = FileOf(0x4000 * 3);
    EXPECT_EQ(0x8000u, OpenAddressTable::SavePicture(path.c_str(), &m_stream));
    EXPECT_THAT(m_stream.portions, ElementsAre(0x4000, 0x4000));
}

TEST_F(AddressTablePictureTest, TheCopyStopsAtItsLimit)
{
    const std::wstring path = FileOf(0);
    std::filesystem::resize_file(path, kLongestPictureBytes + 1);
    EXPECT_EQ(64u * 1024 * 1024, OpenAddressTable::SavePicture(path.c_str(), &m_stream));
    EXPECT_EQ(64u * 1024 * 1024, m_stream.bytes.size());
}

TEST_F(AddressTablePictureTest, ADeviceIsNoPicture)
{
    EXPECT_EQ(0u, OpenAddressTable::SavePicture(L"NUL", &m_stream));
    EXPECT_EQ(0u, OpenAddressTable::SavePicture(L"\\\\.\\NUL", &m_stream));
    EXPECT_THAT(m_stream.portions, IsEmpty());
}

// Its other end may never write.
TEST_F(AddressTablePictureTest, APipeIsNoPicture)
{
    BriefPipe pipe;
    ASSERT_TRUE(pipe);
    EXPECT_EQ(0u, OpenAddressTable::SavePicture(pipe.Path(), &m_stream));
    pipe.Join();
    EXPECT_THAT(m_stream.portions, IsEmpty());
}
