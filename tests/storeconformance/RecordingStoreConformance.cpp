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
} // namespace

INSTANTIATE_TEST_SUITE_P(RecordingStore,
                         StoreConformanceTest,
                         testing::Values(StoreUnderTestFactory{
                             "RecordingStore",
                             []() -> std::unique_ptr<StoreUnderTest> {
                                 return std::make_unique<RecordingStoreUnderTest>();
                             }}),
                         [](const auto& test) { return std::string(test.param.name); });
