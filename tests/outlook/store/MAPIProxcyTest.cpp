#include "outlook/store/MAPIProxcy.h"

#include "tests/outlook/ExportNames.h"
#include "tests/outlook/FakeMapi.h"

#include <gtest/gtest.h>

#include <optional>

using Calls = std::vector<std::string>;

namespace
{
// A pointer that the fake library writes down as that number; nothing follows it.
template <typename T> T* Marker(std::uintptr_t number)
{
    return reinterpret_cast<T*>(number);
}

bool IsLoaded(const std::wstring& path)
{
    return GetModuleHandleW(path.c_str()) != nullptr;
}

class MAPIProxcyTest : public testing::Test
{
  protected:
    // Every operation that has a result fails, and every output stays as it was.
    void ExpectNothingWorks()
    {
        LPMAPISESSION session = Marker<IMAPISession>(1);
        EXPECT_EQ(E_FAIL, proxy.MAPILogonEx(0, nullptr, nullptr, 0, &session));
        EXPECT_EQ(Marker<IMAPISession>(1), session);
        void* buffer = Marker<void>(1);
        proxy.AllocateBuffer(16, &buffer);
        EXPECT_EQ(Marker<void>(1), buffer);
        proxy.AllocateMore(16, Marker<void>(2), &buffer);
        EXPECT_EQ(Marker<void>(1), buffer);
        proxy.FreeBuffer(Marker<void>(1));
        proxy.FreeProws(Marker<SRowSet>(1));
        IStream* stream = Marker<IStream>(1);
        EXPECT_EQ(E_FAIL, proxy.WrapCompressedRTFStream(nullptr, 0, &stream));
        EXPECT_EQ(Marker<IStream>(1), stream);
        SPropValue* value = Marker<SPropValue>(1);
        EXPECT_EQ(E_FAIL, proxy.HrGetOneProp(nullptr, PR_ENTRYID, &value));
        EXPECT_EQ(Marker<SPropValue>(1), value);
        SRowSet* rows = Marker<SRowSet>(1);
        EXPECT_EQ(E_FAIL, proxy.HrQueryAllRows(nullptr, nullptr, nullptr, nullptr, 0, &rows));
        EXPECT_EQ(Marker<SRowSet>(1), rows);
    }

    FakeMapi mapi;
    MAPIINIT_0 init = {3, 8};
    CMAPIProxcy proxy;
};

// Over the library that decorates its names the other way round. It refuses to be initialised, so
// that it is not kept in the process and each test finds it anew.
class MAPIProxcyPlainNamesTest : public testing::Test
{
  protected:
    void SetUp() override
    {
        ASSERT_FALSE(IsLoaded(FakeMapi::PlainNamesPath()));
        proxy.emplace();
        EXPECT_FALSE(proxy->Load(FakeMapi::PlainNamesPath(), nullptr));
        ASSERT_EQ((Calls{"MAPIInitialize null"}), mapi.Calls());
        mapi.Calls().clear();
    }
    void TearDown() override
    {
        proxy.reset();
        // The one reference that is left.
        ASSERT_TRUE(FreeLibrary(GetModuleHandleW(FakeMapi::PlainNamesPath().c_str())));
        EXPECT_FALSE(IsLoaded(FakeMapi::PlainNamesPath()));
    }

    FakeMapi mapi{E_ACCESSDENIED};
    std::optional<CMAPIProxcy> proxy;
};
} // namespace

// --- Load and unload -----------------------------------------------------------------------------

TEST_F(MAPIProxcyTest, LoadInitialisesTheLibraryWithTheGivenRecord)
{
    EXPECT_TRUE(proxy.Load(FakeMapi::Path(), &init));
    EXPECT_EQ((Calls{"MAPIInitialize 3 8"}), mapi.Calls());
}

TEST_F(MAPIProxcyTest, ANullRecordIsPassedOn)
{
    EXPECT_TRUE(proxy.Load(FakeMapi::Path(), nullptr));
    EXPECT_EQ((Calls{"MAPIInitialize null"}), mapi.Calls());
}

TEST_F(MAPIProxcyTest, LoadFailsWithoutALibrary)
{
    EXPECT_FALSE(proxy.Load(L"", &init));
    EXPECT_FALSE(proxy.Load(FakeMapi::Path() + L".none", &init));
    EXPECT_EQ(Calls{}, mapi.Calls());
    ExpectNothingWorks();
}

TEST_F(MAPIProxcyTest, LoadFailsOverALibraryThatCannotBeInitialised)
{
    EXPECT_FALSE(proxy.Load(FakeMapi::BarePath(), &init));
    EXPECT_EQ(Calls{}, mapi.Calls());
}

TEST(MAPIProxcyLoadTest, AnyResultThatIsNoFailureCountsAsInitialised)
{
    const FakeMapi mapi(S_FALSE);
    CMAPIProxcy proxy;
    EXPECT_TRUE(proxy.Load(FakeMapi::Path(), nullptr));
}

TEST_F(MAPIProxcyPlainNamesTest, ALibraryThatCannotBeUninitialisedStaysLoaded)
{
    EXPECT_FALSE(proxy->Unload());
    // It is still bound.
    EXPECT_NE(nullptr, proxy->FindEntry("HrQueryAllRows"));
    proxy.reset();
    EXPECT_TRUE(IsLoaded(FakeMapi::PlainNamesPath()));
    EXPECT_EQ(Calls{}, mapi.Calls());
}

TEST_F(MAPIProxcyTest, UnloadUninitialisesAndForgetsTheLibrary)
{
    ASSERT_TRUE(proxy.Load(FakeMapi::Path(), &init));
    ASSERT_NE(nullptr, proxy.FindEntry("MAPILogonEx"));
    mapi.Calls().clear();
    EXPECT_TRUE(proxy.Unload());
    EXPECT_EQ((Calls{"MAPIUninitialize"}), mapi.Calls());
    EXPECT_EQ(nullptr, proxy.FindEntry("MAPILogonEx"));
    mapi.Calls().clear();
    ExpectNothingWorks();
    EXPECT_FALSE(proxy.Unload());
    EXPECT_EQ(Calls{}, mapi.Calls());
}

TEST_F(MAPIProxcyTest, UnloadWithoutALibraryIsFalse)
{
    EXPECT_FALSE(proxy.Unload());
    EXPECT_EQ(Calls{}, mapi.Calls());
}

// An object of the library that a client releases late must still find its code.
TEST_F(MAPIProxcyTest, AnInitialisedLibraryStaysInTheProcess)
{
    ASSERT_TRUE(proxy.Load(FakeMapi::Path(), &init));
    ASSERT_TRUE(proxy.Unload());
    EXPECT_TRUE(IsLoaded(FakeMapi::Path()));
    EXPECT_EQ((Calls{"MAPIInitialize 3 8", "MAPIUninitialize"}), mapi.Calls());
    mapi.Calls().clear();
    // It is initialised anew the next time.
    EXPECT_TRUE(proxy.Load(FakeMapi::Path(), &init));
    EXPECT_EQ((Calls{"MAPIInitialize 3 8"}), mapi.Calls());
}

// --- Lookup --------------------------------------------------------------------------------------

TEST_F(MAPIProxcyTest, NothingWorksBeforeLoadAndNoLookupIsStored)
{
    EXPECT_EQ(nullptr, proxy.FindEntry("MAPIUninitialize"));
    ExpectNothingWorks();
    EXPECT_EQ(Calls{}, mapi.Calls());
    EXPECT_FALSE(proxy.Unload());
    ASSERT_TRUE(proxy.Load(FakeMapi::Path(), &init));
    for (const char* name : {"MAPIInitialize",
                             "MAPIUninitialize",
                             "MAPILogonEx",
                             "FreeProws@4",
                             "MAPIFreeBuffer",
                             "MAPIAllocateBuffer",
                             "MAPIAllocateMore",
                             "WrapCompressedRTFStream",
                             "HrGetOneProp",
                             "HrQueryAllRows@24"})
        EXPECT_NE(nullptr, proxy.FindEntry(name)) << name;
    SPropValue* value = nullptr;
    EXPECT_EQ(MAPI_E_NOT_FOUND, proxy.HrGetOneProp(nullptr, PR_ENTRYID, &value));
}

TEST_F(MAPIProxcyTest, NothingWorksOverALibraryWithoutTheNames)
{
    ASSERT_FALSE(proxy.Load(FakeMapi::BarePath(), &init));
    ExpectNothingWorks();
    EXPECT_EQ(Calls{}, mapi.Calls());
}

TEST_F(MAPIProxcyTest, FindEntryTakesExactNames)
{
    ASSERT_TRUE(proxy.Load(FakeMapi::Path(), &init));
    EXPECT_NE(nullptr, proxy.FindEntry("FreeProws@4"));
    EXPECT_NE(proxy.FindEntry("FreeProws"), proxy.FindEntry("FreeProws@4"));
    EXPECT_EQ(nullptr, proxy.FindEntry("freeprows@4"));
    EXPECT_EQ(nullptr, proxy.FindEntry("MAPIFreeBuffer@4"));
    EXPECT_EQ(nullptr, proxy.FindEntry(""));
    EXPECT_EQ(nullptr, proxy.FindEntry(nullptr));
}

TEST_F(MAPIProxcyTest, FoundAndMissedLookupsAreRemembered)
{
    ASSERT_TRUE(proxy.Load(FakeMapi::Path(), &init));
    SRowSet* rows = nullptr;
    ASSERT_EQ(MAPI_E_TABLE_TOO_BIG,
              proxy.HrQueryAllRows(nullptr, nullptr, nullptr, nullptr, 0, &rows));
    SPropValue* value = nullptr;
    {
        const HiddenExport query(FakeMapi::Path(), "HrQueryAllRows@24");
        const HiddenExport property(FakeMapi::Path(), "HrGetOneProp");
        ASSERT_TRUE(query.IsHidden() && property.IsHidden());
        EXPECT_EQ(MAPI_E_TABLE_TOO_BIG,
                  proxy.HrQueryAllRows(nullptr, nullptr, nullptr, nullptr, 0, &rows));
        EXPECT_EQ(E_FAIL, proxy.HrGetOneProp(nullptr, PR_ENTRYID, &value));
    }
    EXPECT_EQ(E_FAIL, proxy.HrGetOneProp(nullptr, PR_ENTRYID, &value));
    CMAPIProxcy other;
    ASSERT_TRUE(other.Load(FakeMapi::Path(), &init));
    EXPECT_EQ(MAPI_E_NOT_FOUND, other.HrGetOneProp(nullptr, PR_ENTRYID, &value));
}

// --- The operations ------------------------------------------------------------------------------

TEST_F(MAPIProxcyTest, EachOperationCallsItsNameWithItsArguments)
{
    ASSERT_TRUE(proxy.Load(FakeMapi::Path(), &init));
    mapi.Calls().clear();
    wchar_t profile[] = L"profile";
    wchar_t password[] = L"password";
    LPMAPISESSION session = nullptr;
    EXPECT_EQ(MAPI_W_ERRORS_RETURNED, proxy.MAPILogonEx(7, profile, password, 3, &session));
    EXPECT_EQ(Marker<IMAPISession>(11), session);
    proxy.FreeProws(Marker<SRowSet>(21));
    proxy.FreeBuffer(Marker<void>(22));
    void* buffer = nullptr;
    proxy.AllocateBuffer(16, &buffer);
    EXPECT_EQ(Marker<void>(12), buffer);
    proxy.AllocateMore(17, Marker<void>(23), &buffer);
    EXPECT_EQ(Marker<void>(13), buffer);
    IStream* stream = nullptr;
    EXPECT_EQ(MAPI_W_PARTIAL_COMPLETION,
              proxy.WrapCompressedRTFStream(Marker<IStream>(24), 2, &stream));
    EXPECT_EQ(Marker<IStream>(14), stream);
    SPropValue* value = nullptr;
    EXPECT_EQ(MAPI_E_NOT_FOUND, proxy.HrGetOneProp(Marker<IMAPIProp>(25), 0x0FFF0102, &value));
    EXPECT_EQ(Marker<SPropValue>(15), value);
    SRowSet* rows = nullptr;
    EXPECT_EQ(MAPI_E_TABLE_TOO_BIG,
              proxy.HrQueryAllRows(Marker<IMAPITable>(26),
                                   Marker<SPropTagArray>(27),
                                   Marker<SRestriction>(28),
                                   Marker<SSortOrderSet>(29),
                                   30,
                                   &rows));
    EXPECT_EQ(Marker<SRowSet>(16), rows);
    EXPECT_EQ((Calls{"MAPILogonEx 7 profile password 3",
                     "FreeProws@4 21",
                     "MAPIFreeBuffer 22",
                     "MAPIAllocateBuffer 16",
                     "MAPIAllocateMore 17 23",
                     "WrapCompressedRTFStream 24 2",
                     "HrGetOneProp 25 0FFF0102",
                     "HrQueryAllRows@24 26 27 28 29 30"}),
              mapi.Calls());
}

// A row set leaks over a library without the decorated name, and the caller carries on; the plain
// name stands in for the query alone.
TEST_F(MAPIProxcyPlainNamesTest, ThePlainNameServesTheQueryAndNotTheFreeing)
{
    ASSERT_NE(nullptr, proxy->FindEntry("FreeProws"));
    proxy->FreeProws(Marker<SRowSet>(21));
    EXPECT_EQ(Calls{}, mapi.Calls());
    SRowSet* rows = nullptr;
    EXPECT_EQ(MAPI_E_BUSY,
              proxy->HrQueryAllRows(Marker<IMAPITable>(26),
                                    Marker<SPropTagArray>(27),
                                    Marker<SRestriction>(28),
                                    Marker<SSortOrderSet>(29),
                                    30,
                                    &rows));
    EXPECT_EQ(Marker<SRowSet>(17), rows);
    EXPECT_EQ((Calls{"HrQueryAllRows 26 27 28 29 30"}), mapi.Calls());
}

TEST_F(MAPIProxcyPlainNamesTest, NoDecoratedNameServesTheReadingOfAProperty)
{
    ASSERT_NE(nullptr, proxy->FindEntry("HrGetOneProp@12"));
    SPropValue* value = Marker<SPropValue>(1);
    EXPECT_EQ(E_FAIL, proxy->HrGetOneProp(nullptr, PR_ENTRYID, &value));
    EXPECT_EQ(Marker<SPropValue>(1), value);
    EXPECT_EQ(Calls{}, mapi.Calls());
}

TEST_F(MAPIProxcyTest, NoValueCanBeSet)
{
    EXPECT_FALSE(proxy.SetValue(0x101, &proxy));
    EXPECT_FALSE(proxy.SetValue(0, nullptr));
}
