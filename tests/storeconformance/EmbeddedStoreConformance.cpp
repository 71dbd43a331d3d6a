// The embedded store and address book under the conformance tests.
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

// The same with the other library.
class EmbeddedBookUnderTest final : public StoreUnderTest
{
  public:
    EmbeddedBookUnderTest() : m_setting(m_folder.File(L"store.db")) {}
    std::wstring LibraryPath() const override { return ProgramFolder() + L"PimLocalBook.dll"; }
    bool IsBook() const override { return true; }

  private:
    TempFolder m_folder;
    StoreSetting m_setting;
};

template <typename Store> std::unique_ptr<StoreUnderTest> Make()
{
    return std::make_unique<Store>();
}

} // namespace

INSTANTIATE_TEST_SUITE_P(EmbeddedStore,
                         StoreConformanceTest,
                         testing::Values(StoreUnderTestFactory{"EmbeddedStore",
                                                               Make<EmbeddedStoreUnderTest>}),
                         [](const auto& test) { return std::string(test.param.name); });

INSTANTIATE_TEST_SUITE_P(
    EmbeddedStore,
    ItemConformanceTest,
    testing::Values(StoreUnderTestFactory{"EmbeddedStore", Make<EmbeddedStoreUnderTest>},
                    StoreUnderTestFactory{"EmbeddedBook", Make<EmbeddedBookUnderTest>}),
    [](const auto& test) { return std::string(test.param.name); });
