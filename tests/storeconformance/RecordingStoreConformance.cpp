// The recording store under the conformance tests.
#include "tests/recordingstore/RecordingStore.h"
#include "tests/storeconformance/StoreConformanceTest.h"

namespace
{
class RecordingStoreUnderTest final : public StoreUnderTest
{
  public:
    RecordingStoreUnderTest()
    {
        m_store.AddUsualFolders();
        m_store.AddIdentity(StoreProps().Text(PR_DISPLAY_NAME_W, L"Ann Example"));
    }
    std::wstring LibraryPath() const override { return RecordingStore::Path(); }
    std::string Complaints() const override { return m_store.Complaints(); }

  private:
    RecordingStore m_store;
};

class RecordingBookUnderTest final : public StoreUnderTest
{
  public:
    RecordingBookUnderTest() { m_store.AddBook(); }
    std::wstring LibraryPath() const override { return RecordingStore::Path(); }
    bool IsBook() const override { return true; }
    std::string Complaints() const override { return m_store.Complaints(); }

  private:
    RecordingStore m_store;
};

template <typename Store> std::unique_ptr<StoreUnderTest> Make()
{
    return std::make_unique<Store>();
}
} // namespace

INSTANTIATE_TEST_SUITE_P(RecordingStore,
                         StoreConformanceTest,
                         testing::Values(StoreUnderTestFactory{"RecordingStore",
                                                               Make<RecordingStoreUnderTest>}),
                         [](const auto& test) { return std::string(test.param.name); });

INSTANTIATE_TEST_SUITE_P(
    RecordingStore,
    ItemConformanceTest,
    testing::Values(StoreUnderTestFactory{"RecordingStore", Make<RecordingStoreUnderTest>},
                    StoreUnderTestFactory{"RecordingBook", Make<RecordingBookUnderTest>}),
    [](const auto& test) { return std::string(test.param.name); });
