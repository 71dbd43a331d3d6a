// The road of a client to Outlook: service manager and automation objects over the real discovery
// and the recording store.
#include "outlook/store/EntryIdText.h"
#include "outlook/store/OutlookProvider.h"
#include "platform/SafeArray.h"
#include "service/ServiceManager.h"
#include "support/DebugOutputCapture.h"
#include "support/RegistrySandbox.h"
#include "support/TypeLibraryRegistration.h"
#include "tests/automation/CollectionFixture.h"
#include "tests/outlook/FakeAddressBook.h"
#include "tests/outlook/OutlookInstallation.h"
#include "tests/outlook/store/OutlookStoreLines.h"
#include "tests/recordingstore/RecordingStore.h"
#include "tests/recordingstore/StoreInterruption.h"

#include <gmock/gmock.h>

#include <iterator>

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

namespace
{
constexpr char kStarting[] = "=========CServiceManager::StartService:: Microsoft Outlook!\r\n";
constexpr char kFailed[] = "=========CServiceManager::StartService::failed!\r\n";
constexpr char kSucceeded[] = "=========CServiceManager::StartService::succeeded!\r\n";
constexpr char kCaught[] = "=========CServiceManager::StartService::caught!\r\n";

// One text of the identity: where the store has it and how a client reads it.
struct IdentityText
{
    ULONG tag;
    HRESULT (STDMETHODCALLTYPE INUserProperties::*get)(BSTR*);
};

constexpr IdentityText kIdentityTexts[] = {
    {0x3A00001F, &INUserProperties::get_Account},
    {0x3002001F, &INUserProperties::get_AddressType},
    {0x3001001F, &INUserProperties::get_DisplayName},
    {0x3A16001F, &INUserProperties::get_Company},
    {0x3003001F, &INUserProperties::get_EmailAddress},
    {0x3A06001F, &INUserProperties::get_FirstName},
    {0x3A11001F, &INUserProperties::get_LastName},
    {0x3A19001F, &INUserProperties::get_OfficeLocation},
    {0x39FE001F, &INUserProperties::get_SMTPAddress},
    {0x3A20001F, &INUserProperties::get_TransmitableDisplayName},
};

class OutlookServiceTest : public testing::Test
{
  protected:
    OutlookServiceTest() { Fill(); }
    ~OutlookServiceTest() override
    {
        manager.StopService();
        EXPECT_EQ("", store.Complaints());
    }
    void Fill()
    {
        store.AddUsualFolders();
        StoreProps identity;
        for (std::size_t i = 0; i < std::size(kIdentityTexts); ++i)
            identity.Text(kIdentityTexts[i].tag, L"text " + std::to_wstring(i));
        store.AddIdentity(identity);
    }
    // As a client does.
    HRESULT Start(const wchar_t* name) { return service->StartService(Bstr(name).Get()); }

    RecordingStore store;
    OutlookInstallation installation{RecordingStore::Path()};
    CServiceManager manager;
    const ScopedServiceManager current{manager};
    ComPtr<INPersonalInformationService> service =
        CreateObject<INPersonalInformationService>(CLSID_NPersonalInformationService);
};
} // namespace

// --- Starting and stopping -----------------------------------------------------------------------

TEST_F(OutlookServiceTest, StartsByItsNameInAnyLetterCase)
{
    for (const wchar_t* const name :
         {L"Microsoft Outlook", L"microsoft outlook", L"MICROSOFT OUTLOOK"})
    {
        store.ClearRecord();
        EXPECT_EQ(S_OK, manager.StartService(name));
        EXPECT_EQ("MAPIInitialize(0, 00000008)", store.Calls().front());
        EXPECT_EQ(kOpenIdentity, store.Calls().back());
        manager.StopService();
        EXPECT_EQ("MAPIUninitialize()", store.Calls().back());
        EXPECT_EQ("", store.Complaints());
    }
}

TEST_F(OutlookServiceTest, AnOlderOutlookAsksForThreadsOfNotifications)
{
    const OutlookInstallation older(RecordingStore::Path(), L"Microsoft\\Office\\11.0\\Outlook");
    EXPECT_EQ(S_OK, manager.StartService(L"Microsoft Outlook"));
    EXPECT_EQ("MAPIInitialize(0, 00000009)", store.Calls().front());
}

TEST_F(OutlookServiceTest, Outlook2007CountsAsAnOldOneOfNoVersion)
{
    const OutlookInstallation other(RecordingStore::Path(), L"Microsoft\\Office\\12.0\\Outlook");
    EXPECT_EQ(S_OK, manager.StartService(L"Microsoft Outlook"));
    EXPECT_EQ("MAPIInitialize(0, 00000008)", store.Calls().front());
}

TEST_F(OutlookServiceTest, AnotherNameChangesNothingWhileItRuns)
{
    ASSERT_EQ(S_OK, Start(L"Microsoft Outlook"));
    store.ClearRecord();
    FakeAddressBook book;
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    for (const wchar_t* const name :
         {L"Windows Mail", L"Outlook Express", L"Microsoft Outlook", L"no such name", L""})
        EXPECT_EQ(S_OK, Start(name));
    EXPECT_EQ(StoreLines{}, capture.TakeLogMessages());
    EXPECT_EQ(StoreLines{}, store.Calls());
    EXPECT_EQ(StoreLines{}, book.Calls());
    const auto identity = manager.GetUserProperties();
    ASSERT_NE(nullptr, identity); // Outlook's: the other has none
    EXPECT_EQ(L"text 0", identity->account);
}

TEST_F(OutlookServiceTest, AFailedLogonGivesItsCodeAndLeavesNothing)
{
    // Another code than that of every other failure.
    store.FailNext("MAPILogonEx", StoreFault::OutOfMemory);
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(E_OUTOFMEMORY, Start(L"Microsoft Outlook"));
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre(kStarting, LogonLog("000000008007000E"), kFailed));
    EXPECT_EQ("", store.Complaints());
    EXPECT_EQ(nullptr, manager.GetUserProperties());
    EXPECT_EQ(S_OK, Start(L"Microsoft Outlook"));
    EXPECT_NE(nullptr, manager.GetUserProperties());
}

TEST_F(OutlookServiceTest, AFailingStepIsAFailure)
{
    store.SetDefaultStore("");
    EXPECT_EQ(E_FAIL, Start(L"Microsoft Outlook"));
    EXPECT_EQ("", store.Complaints());
    store.SetDefaultStore("store");
    EXPECT_EQ(S_OK, Start(L"Microsoft Outlook"));
}

TEST_F(OutlookServiceTest, LogsTheStartAroundTheLogon)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    ASSERT_EQ(S_OK, Start(L"Microsoft Outlook"));
    const StoreLines messages = capture.TakeLogMessages();
    ASSERT_LE(3u, messages.size());
    EXPECT_EQ(kStarting, messages[0]);
    EXPECT_EQ(LogonLog(), messages[1]);
    EXPECT_EQ(kSucceeded, messages.back());
}

TEST_F(OutlookServiceTest, AnExceptionOutOfTheLogonLeavesTheProviderHalfSetUp)
{
    // As where memory runs out, before the first step and after the last one.
    static const ProviderRow rows[] = {{L"before",
                                        [](std::unique_ptr<IProvider>& slot) -> HRESULT {
                                            slot = std::make_unique<COutlookProvider>();
                                            throw std::bad_alloc();
                                        }},
                                       {L"after", [](std::unique_ptr<IProvider>& slot) -> HRESULT {
                                            auto provider = std::make_unique<COutlookProvider>();
                                            COutlookProvider& stored = *provider;
                                            slot = std::move(provider);
                                            stored.Logon();
                                            throw std::bad_alloc();
                                        }}};
    const std::pair<const wchar_t*, const wchar_t*> cases[] = {{L"before", L""},
                                                               {L"after", L"text 0"}};
    for (const auto& [name, account] : cases)
    {
        CServiceManager throwing(rows);
        const ScopedLogSettings settings;
        DebugOutputCapture capture;
        EXPECT_EQ(S_OK, throwing.StartService(name));
        const StoreLines messages = capture.TakeLogMessages();
        ASSERT_LE(2u, messages.size());
        EXPECT_EQ(kCaught, messages[messages.size() - 2]);
        EXPECT_EQ(kSucceeded, messages.back());
        const auto identity = throwing.GetUserProperties();
        ASSERT_NE(nullptr, identity);
        EXPECT_EQ(account, identity->account);
        std::vector<OutlookFolderInfo> folders;
        EXPECT_TRUE(throwing.GetContactFolders(folders));
        folders.clear();
        throwing.StopService();
        EXPECT_EQ("", store.Complaints());
    }
}

// --- Calls that a store's dialog lets in ---------------------------------------------------------

namespace
{
// Calls of a logon, from its first to its last.
constexpr const char* kLogonCalls[] = {"MAPIInitialize",
                                       "MAPILogonEx",
                                       "IMAPISession(session).GetMsgStoresTable",
                                       "IMAPISession(session).OpenMsgStore",
                                       "IMsgStore(store).GetReceiveFolder",
                                       "IMAPIFolder(calendar).CreateMessage",
                                       "IMAPITable(subtree hierarchy table).QueryRows",
                                       "HrGetOneProp(IMAPIFolder(contacts)",
                                       "IMAPISession(session).QueryIdentity",
                                       "IMAPISession(session).OpenEntry"};
} // namespace

TEST_F(OutlookServiceTest, ClientsMayCallInDuringTheLogon)
{
    for (const char* const line : kLogonCalls)
    {
        SCOPED_TRACE(line);
        store.Reset();
        Fill();
        ComPtr<INUserProperties> early;
        ComPtr<INCalendar> calendar;
        const StoreInterruption dialog(store, line, [&] {
            const StoreLines before = store.Calls();
            EXPECT_EQ(S_OK, Start(L"Windows Mail")); // the one that starts is there already
            EXPECT_EQ(S_OK, service->GetUserProperties(early.GetAddressOf()));
            std::vector<OutlookFolderInfo> folders;
            EXPECT_TRUE(manager.GetContactFolders(folders));
            EXPECT_EQ(before, store.Calls());
            // As long as there is no calendar folder, a calendar without appointments.
            EXPECT_EQ(S_OK, service->GetCalendar(calendar.GetAddressOf()));
        });
        EXPECT_EQ(S_OK, Start(L"Microsoft Outlook"));
        EXPECT_TRUE(dialog.HasCome());
        // The identity came last: who asked before it has an object without texts.
        ASSERT_TRUE(early);
        Bstr text;
        EXPECT_EQ(S_OK, early->get_Account(text.Put()));
        EXPECT_EQ(L"", text.View());
        ComPtr<INUserProperties> user;
        EXPECT_EQ(S_OK, service->GetUserProperties(user.GetAddressOf()));
        ASSERT_TRUE(user);
        EXPECT_EQ(S_OK, user->get_Account(text.Put()));
        EXPECT_EQ(L"text 0", text.View());
        ASSERT_TRUE(calendar);
        ComPtr<INAppointment> appointment;
        EXPECT_EQ(E_FAIL, calendar->GetNextAppointment(appointment.GetAddressOf()));
        EXPECT_EQ(S_OK, service->StopService());
        EXPECT_EQ("", store.Complaints());
        EXPECT_EQ(S_OK, calendar->Refresh());
        EXPECT_EQ(E_FAIL, calendar->GetNextAppointment(appointment.GetAddressOf()));
        EXPECT_EQ("MAPIUninitialize()", store.Calls().back());
    }
}

TEST_F(OutlookServiceTest, AStopDuringTheLogonEndsTheServiceAfterIt)
{
    for (const char* const line : kLogonCalls)
    {
        SCOPED_TRACE(line);
        store.Reset();
        Fill();
        const StoreInterruption dialog(store, line, [&] {
            EXPECT_EQ(S_OK, service->StopService());
            EXPECT_EQ(S_OK, service->StopService());
            // From here on there is nothing to be had, and no new start.
            EXPECT_EQ(E_FAIL, Start(L"Microsoft Outlook"));
            INUserProperties* none = reinterpret_cast<INUserProperties*>(1);
            EXPECT_EQ(S_OK, service->GetUserProperties(&none));
            EXPECT_EQ(nullptr, none);
            EXPECT_THAT(store.Calls(), testing::Not(Contains("MAPIUninitialize()")));
        });
        Start(L"Microsoft Outlook");
        EXPECT_TRUE(dialog.HasCome());
        EXPECT_EQ("MAPIUninitialize()", store.Calls().back());
        EXPECT_EQ("", store.Complaints());
        EXPECT_EQ(nullptr, manager.GetUserProperties());
        EXPECT_EQ(S_OK, Start(L"Microsoft Outlook"));
        EXPECT_NE(nullptr, manager.GetUserProperties());
        EXPECT_EQ(S_OK, service->StopService());
    }
}

TEST_F(OutlookServiceTest, AStopWhileTheIdentityIsReadTakesEffectAfterIt)
{
    ASSERT_EQ(S_OK, Start(L"Microsoft Outlook"));
    const StoreInterruption dialog(store, "IMailUser(identity).GetProps", [&] {
        EXPECT_EQ(S_OK, service->StopService());
        EXPECT_EQ(1u, store.InitialisedTimes());
    });
    ComPtr<INUserProperties> user;
    EXPECT_EQ(S_OK, service->GetUserProperties(user.GetAddressOf()));
    EXPECT_TRUE(dialog.HasCome());
    EXPECT_EQ("", store.Complaints()); // the service has ended, and nothing of the store is held
    ASSERT_TRUE(user);
    Bstr text;
    EXPECT_EQ(S_OK, user->get_Account(text.Put()));
    EXPECT_EQ(L"text 0", text.View());
}

TEST_F(OutlookServiceTest, ClientsMayCallInWhileTheServiceEnds)
{
    for (const char* const line : {"release IMAPIFolder(contacts)",
                                   "release IMsgStore(store)",
                                   "release IMAPISession(session)",
                                   "MAPIUninitialize"})
    {
        SCOPED_TRACE(line);
        ASSERT_EQ(S_OK, Start(L"Microsoft Outlook"));
        const StoreInterruption dialog(store, line, [&] {
            EXPECT_EQ(E_FAIL, Start(L"Microsoft Outlook"));
            INUserProperties* none = reinterpret_cast<INUserProperties*>(1);
            EXPECT_EQ(S_OK, service->GetUserProperties(&none));
            EXPECT_EQ(nullptr, none);
            std::vector<OutlookFolderInfo> folders;
            EXPECT_FALSE(manager.GetContactFolders(folders));
            EXPECT_EQ(S_OK, service->StopService());
        });
        EXPECT_EQ(S_OK, service->StopService());
        EXPECT_TRUE(dialog.HasCome());
        EXPECT_EQ("", store.Complaints());
    }
}

// --- Through the automation objects --------------------------------------------------------------

TEST_F(OutlookServiceTest, AClientReadsTheIdentity)
{
    ASSERT_EQ(S_OK, Start(L"Microsoft Outlook"));
    ComPtr<INUserProperties> user;
    EXPECT_EQ(S_OK, service->GetUserProperties(user.GetAddressOf()));
    ASSERT_TRUE(user);
    for (std::size_t i = 0; i < std::size(kIdentityTexts); ++i)
    {
        Bstr text;
        EXPECT_EQ(S_OK, (user.Get()->*kIdentityTexts[i].get)(text.Put()));
        EXPECT_EQ(L"text " + std::to_wstring(i), text.View());
    }
}

TEST_F(OutlookServiceTest, AnIdentityNeedsTheProviderAndOutlivesIt)
{
    INUserProperties* none = reinterpret_cast<INUserProperties*>(1);
    EXPECT_EQ(S_OK, service->GetUserProperties(&none));
    EXPECT_EQ(nullptr, none);
    EXPECT_FALSE(CreateObject<INUserProperties>(CLSID_NUserProperties));

    ASSERT_EQ(S_OK, Start(L"Microsoft Outlook"));
    const auto user = CreateObject<INUserProperties>(CLSID_NUserProperties);
    ASSERT_TRUE(user);
    EXPECT_EQ(S_OK, service->StopService());
    EXPECT_EQ("", store.Complaints()); // nothing of the store is held
    store.ClearRecord();
    for (int round = 0; round < 2; ++round)
    {
        for (std::size_t i = 0; i < std::size(kIdentityTexts); ++i)
        {
            Bstr text;
            EXPECT_EQ(S_OK, (user.Get()->*kIdentityTexts[i].get)(text.Put()));
            EXPECT_EQ(L"text " + std::to_wstring(i), text.View());
        }
        EXPECT_EQ(S_OK, Start(L"Microsoft Outlook")); // also over a new start
    }
}

// A second object reads anew; the first keeps the texts of its own moment.
TEST_F(OutlookServiceTest, EachIdentityIsThatOfItsMoment)
{
    ASSERT_EQ(S_OK, Start(L"Microsoft Outlook"));
    store.ClearRecord();
    const auto first = CreateObject<INUserProperties>(CLSID_NUserProperties);
    store.SetProps("identity", StoreProps().Text(0x3A00001F, L"changed"));
    // Of another service object, which never started anything.
    const auto other =
        CreateObject<INPersonalInformationService>(CLSID_NPersonalInformationService);
    ComPtr<INUserProperties> second;
    ASSERT_EQ(S_OK, other->GetUserProperties(second.GetAddressOf()));
    ASSERT_TRUE(first && second);
    EXPECT_EQ(2u, store.Calls().size()); // one reading each
    Bstr before;
    EXPECT_EQ(S_OK, first->get_Account(before.Put()));
    EXPECT_EQ(L"text 0", before.View());
    Bstr after;
    EXPECT_EQ(S_OK, second->get_Account(after.Put()));
    EXPECT_EQ(L"changed", after.View());
    EXPECT_EQ(2u, store.Calls().size());
}

TEST_F(OutlookServiceTest, TheIdentityIsReleasedWhenItsObjectIs)
{
    ASSERT_EQ(S_OK, Start(L"Microsoft Outlook"));
    const unsigned before = store.LiveObjects();
    auto user = CreateObject<INUserProperties>(CLSID_NUserProperties);
    user.Reset();
    EXPECT_EQ(before, store.LiveObjects());
    EXPECT_EQ(0u, store.LiveBuffers());
}

TEST_F(OutlookServiceTest, ASessionWithoutIdentityStillGivesAnObject)
{
    store.Reset();
    store.AddUsualFolders();
    ASSERT_EQ(S_OK, Start(L"Microsoft Outlook"));
    const auto user = CreateObject<INUserProperties>(CLSID_NUserProperties);
    ASSERT_TRUE(user);
    for (const IdentityText& one : kIdentityTexts)
    {
        Bstr text;
        EXPECT_EQ(S_OK, (user.Get()->*one.get)(text.Put()));
        EXPECT_TRUE(text);
        EXPECT_EQ(L"", text.View());
    }
}

TEST_F(OutlookServiceTest, AClientReadsOneRecordPerContactFolder)
{
    store.AddFolder("family", "contacts", L"IPF.Contact");
    store.AddMessage("ann", "family");
    ASSERT_EQ(S_OK, Start(L"Microsoft Outlook"));
    const RegistrySandbox classes(HKEY_CLASSES_ROOT); // for the type library alone
    const TypeLibraryRegistration registration;
    ASSERT_EQ(S_OK, registration.Result());
    {
        UniqueSafeArray array;
        EXPECT_EQ(S_OK, service->GetAddressBookRootFolders(array.Put()));
        ASSERT_TRUE(array);
        ASSERT_EQ(2u, array.Get()->rgsabound[0].cElements);
        const SafeArrayAccess<_tagFolderInfo> records(array.Get());
        const _tagFolderInfo& first = records.Data()[0];
        EXPECT_EQ(BytesToHex(store.EntryIdOf("contacts")), first.bstrEntryID);
        EXPECT_STREQ(L"Contacts", first.bstrDisplayName);
        EXPECT_EQ(0, first.lItemCount);
        EXPECT_EQ(VARIANT_TRUE, first.vbIsDefault);
        const _tagFolderInfo& second = records.Data()[1];
        EXPECT_EQ(BytesToHex(store.EntryIdOf("family")), second.bstrEntryID);
        EXPECT_STREQ(L"Family", second.bstrDisplayName);
        EXPECT_EQ(1, second.lItemCount);
        EXPECT_EQ(VARIANT_FALSE, second.vbIsDefault);
    }
    SAFEARRAY* const mine = reinterpret_cast<SAFEARRAY*>(1);
    SAFEARRAY* untouched = mine;
    EXPECT_EQ(E_NOTIMPL, service->GetCalendarRootFolders(&untouched));
    EXPECT_EQ(mine, untouched);
    EXPECT_EQ(S_OK, service->StopService());
    UniqueSafeArray stopped;
    EXPECT_EQ(S_OK, service->GetAddressBookRootFolders(stopped.Put()));
    ASSERT_TRUE(stopped);
    EXPECT_EQ(0u, stopped.Get()->rgsabound[0].cElements);
}

TEST_F(OutlookServiceTest, EveryKindOfEnumeratorCanBeCreatedButTheDefaultOne)
{
    ASSERT_EQ(S_OK, Start(L"Microsoft Outlook"));
    INEnumerator* const mine = reinterpret_cast<INEnumerator*>(1);
    INEnumerator* untouched = mine;
    EXPECT_EQ(S_OK, service->GetEnumerator(Default, &untouched));
    EXPECT_EQ(mine, untouched);
    for (const auto type : {ContactCategory, ContactGroup, AddressBook, Calendar})
    {
        ComPtr<INEnumerator> enumerator;
        EXPECT_EQ(S_OK, service->GetEnumerator(type, enumerator.GetAddressOf()));
        EXPECT_TRUE(enumerator) << type;
    }
}
