// The embedded store under the conformance tests.
#include "tests/localstore/LocalStoreSupport.h"
#include "tests/storeconformance/StoreConformanceTest.h"

namespace
{

// The library finds its store by the user's setting and makes it with the usual folders.
class EmbeddedStoreUnderTest final : public StoreUnderTest
{
  public:
    EmbeddedStoreUnderTest() : m_setting(m_folder.File(L"store.db")) {}
    std::wstring LibraryPath() const override { return ProgramFolder() + L"PimLocalStore.dll"; }

  private:
    TempFolder m_folder;
    StoreSetting m_setting;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(EmbeddedStore,
                         StoreConformanceTest,
                         testing::Values(StoreUnderTestFactory{
                             "EmbeddedStore",
                             []() -> std::unique_ptr<StoreUnderTest> {
                                 return std::make_unique<EmbeddedStoreUnderTest>();
                             }}),
                         [](const auto& test) { return std::string(test.param.name); });
