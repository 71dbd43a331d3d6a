// A provider of the server that is logged on to the built PimLocalStore.dll, with the server's item
// objects.
#pragma once

#include "automation/ClassObjects.h"
#include "outlook/store/OutlookLibrary.h"
#include "outlook/store/OutlookProvider.h"
#include "support/TestModule.h"
#include "tests/localstore/StoreClient.h"

#include <memory>

class StoreProviderTest : public StoreTest
{
  protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        ASSERT_EQ(S_OK,
                  m_classes.Register(GetObjectMap(), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE));
    }
    void TearDown() override { provider.reset(); }

    // Anew; tables of an earlier one are dead from then on.
    void LogOnProvider()
    {
        provider = std::make_unique<COutlookProvider>();
        ASSERT_EQ(S_OK,
                  provider->Logon(OutlookLibrary{ProgramFolder() + L"PimLocalStore.dll", 2010}));
    }
    // A table of the provider, loaded and before its first item.
    std::unique_ptr<IEnumerator> LoadTable(int type)
    {
        std::unique_ptr<IEnumerator> table = provider->GetEnumerator(type);
        table->GetItemIDs();
        table->ResetItem();
        return table;
    }

    std::unique_ptr<COutlookProvider> provider;

  private:
    TestModule m_module;
    ClassObjects m_classes;
};
