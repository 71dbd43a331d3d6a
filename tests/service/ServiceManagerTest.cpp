#include "service/ServiceManager.h"

#include "service/CallScope.h"
#include "support/DebugOutputCapture.h"
#include "support/ScopedRegistryValue.h"
#include "tests/service/FakeBackEnds.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace
{
// The messages of the log, as the manager's contract spells them.
constexpr char kSucceeded[] = "=========CServiceManager::StartService::succeeded!\r\n";
constexpr char kFailed[] = "=========CServiceManager::StartService::failed!\r\n";
constexpr char kCaught[] = "=========CServiceManager::StartService::caught!\r\n";
constexpr char kUnknown[] = "=========CServiceManager::StartService::invalidate provider!\r\n";
constexpr char kStop[] = "=========CServiceManager::StopService !\r\n";

std::string Starting(const std::string& name)
{
    return "=========CServiceManager::StartService:: " + name + "!\r\n";
}

using Lines = std::vector<std::string>;

// The log is on and its messages are kept.
struct LogOutput
{
    ScopedLogSettings on;
    DebugOutputCapture capture;
};

class ServiceManagerTest : public testing::Test
{
  protected:
    FakeBackEnds backEnds;
    CServiceManager& manager = backEnds.manager;
    CallLog& log = backEnds.log;
};

// The process-wide table of back ends.
class RealBackEndsTest : public testing::Test
{
  protected:
    CServiceManager manager;
};
} // namespace

TEST_F(ServiceManagerTest, StartsTheNamedProvider)
{
    LogOutput output;
    EXPECT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    EXPECT_EQ((CallLog{L"start Windows Mail"}), log);
    EXPECT_EQ((Lines{Starting("Windows Mail"), kSucceeded}), output.capture.TakeLogMessages());
}

TEST_F(ServiceManagerTest, ComparesNamesWithoutRegardToCase)
{
    LogOutput output;
    EXPECT_EQ(S_OK, manager.StartService(L"microsoft outlook"));
    EXPECT_EQ((CallLog{L"start Microsoft Outlook"}), log);
    EXPECT_EQ((Lines{Starting("microsoft outlook"), kSucceeded}), output.capture.TakeLogMessages());
}

TEST_F(ServiceManagerTest, ASecondStartReportsSuccessAndChangesNothing)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Microsoft Outlook"));
    LogOutput output;
    EXPECT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    EXPECT_EQ(S_OK, manager.StartService(L"no such provider"));
    EXPECT_EQ((CallLog{L"start Microsoft Outlook"}), log);
    EXPECT_EQ(Lines{}, output.capture.TakeLogMessages());
}

TEST_F(ServiceManagerTest, RefusesAnUnknownName)
{
    LogOutput output;
    EXPECT_EQ(E_FAIL, manager.StartService(L"Windows Mail "));
    EXPECT_EQ((Lines{Starting("Windows Mail "), kUnknown, kFailed}),
              output.capture.TakeLogMessages());
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(ServiceManagerTest, TakesAnEmptyNameForAnUnknownOne)
{
    LogOutput output;
    EXPECT_EQ(E_FAIL, manager.StartService(L""));
    EXPECT_EQ((Lines{Starting(""), kUnknown, kFailed}), output.capture.TakeLogMessages());
}

TEST_F(ServiceManagerTest, AFailedLogonDropsTheProviderAndGivesItsCode)
{
    // MAPI_E_LOGON_FAILED
    constexpr HRESULT kLogonFailed = static_cast<HRESULT>(0x80040111);
    backEnds.start = [&](std::unique_ptr<IProvider>& slot) {
        slot = backEnds.MakeProvider();
        return kLogonFailed;
    };
    LogOutput output;
    EXPECT_EQ(kLogonFailed, manager.StartService(L"Microsoft Outlook"));
    EXPECT_EQ((CallLog{L"start Microsoft Outlook", L"provider delete"}), log);
    EXPECT_EQ((Lines{Starting("Microsoft Outlook"), kFailed}), output.capture.TakeLogMessages());
    EXPECT_EQ(nullptr, manager.GetCalendar());
}

TEST_F(ServiceManagerTest, ANonNegativeLogonCodeCountsAsPlainSuccess)
{
    // MAPI_W_ERRORS_RETURNED
    backEnds.start = [&](std::unique_ptr<IProvider>& slot) {
        slot = backEnds.MakeProvider();
        return static_cast<HRESULT>(0x00040380);
    };
    EXPECT_EQ(S_OK, manager.StartService(L"Microsoft Outlook"));
    EXPECT_NE(nullptr, manager.GetCalendar());
}

TEST_F(ServiceManagerTest, AThrowingConstructionLeavesTheManagerStopped)
{
    backEnds.start = [](std::unique_ptr<IProvider>&) -> HRESULT { throw std::exception(); };
    LogOutput output;
    EXPECT_EQ(E_FAIL, manager.StartService(L"Windows Mail"));
    EXPECT_EQ((Lines{Starting("Windows Mail"), kCaught, kFailed}),
              output.capture.TakeLogMessages());
    EXPECT_EQ(nullptr, manager.GetCalendar());
}

TEST_F(ServiceManagerTest, CatchesWhatIsNoStandardException)
{
    backEnds.start = [](std::unique_ptr<IProvider>&) -> HRESULT { throw 1; };
    EXPECT_EQ(E_FAIL, manager.StartService(L"Windows Mail"));
}

TEST_F(ServiceManagerTest, AThrowingLogonLeavesTheStoredProviderInPlace)
{
    backEnds.start = [&](std::unique_ptr<IProvider>& slot) -> HRESULT {
        slot = backEnds.MakeProvider();
        throw std::runtime_error("logon");
    };
    LogOutput output;
    EXPECT_EQ(S_OK, manager.StartService(L"Microsoft Outlook"));
    EXPECT_EQ((Lines{Starting("Microsoft Outlook"), kCaught, kSucceeded}),
              output.capture.TakeLogMessages());
    EXPECT_NE(nullptr, manager.GetCalendar());
}

TEST_F(ServiceManagerTest, StartsAnewAfterAFailure)
{
    ASSERT_EQ(E_FAIL, manager.StartService(L""));
    LogOutput output;
    EXPECT_EQ(S_OK, manager.StartService(L"Outlook Express"));
    EXPECT_EQ((Lines{Starting("Outlook Express"), kSucceeded}), output.capture.TakeLogMessages());
}

TEST_F(ServiceManagerTest, StopDeletesTheProvider)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    log.clear();
    LogOutput output;
    manager.StopService();
    EXPECT_EQ((CallLog{L"provider delete"}), log);
    EXPECT_EQ((Lines{kStop}), output.capture.TakeLogMessages());
    EXPECT_EQ(nullptr, manager.GetCalendar());
}

TEST_F(ServiceManagerTest, TwoStopsInARowAreHarmless)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    manager.StopService();
    log.clear();
    LogOutput output;
    manager.StopService();
    EXPECT_EQ((Lines{kStop}), output.capture.TakeLogMessages());
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(ServiceManagerTest, StartsAnotherProviderAfterAStop)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    manager.StopService();
    EXPECT_EQ(S_OK, manager.StartService(L"Outlook Express"));
    EXPECT_EQ((CallLog{L"start Windows Mail", L"provider delete", L"start Outlook Express"}), log);
}

TEST_F(ServiceManagerTest, ForwardersGiveNothingWithoutAProvider)
{
    LogOutput output;
    std::vector<OutlookFolderInfo> folders(1);
    EXPECT_EQ(nullptr, manager.GetUserProperties());
    EXPECT_EQ(nullptr, manager.GetAddressBook());
    EXPECT_EQ(nullptr, manager.GetCalendar());
    EXPECT_FALSE(manager.GetContactFolders(folders));
    EXPECT_EQ(1u, folders.size());
    EXPECT_EQ(Lines{}, output.capture.TakeLogMessages());
}

TEST_F(ServiceManagerTest, ForwardersReachTheProvider)
{
    backEnds.prepareProvider = [](FakeProvider& provider) {
        provider.folders.resize(2);
        provider.folders[1].displayName = L"Contacts";
    };
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    log.clear();
    const auto identity = manager.GetUserProperties();
    EXPECT_NE(nullptr, identity);
    const auto addressBook = manager.GetAddressBook();
    EXPECT_NE(nullptr, addressBook);
    const auto calendar = manager.GetCalendar();
    EXPECT_NE(nullptr, calendar);
    std::vector<OutlookFolderInfo> folders;
    EXPECT_TRUE(manager.GetContactFolders(folders));
    ASSERT_EQ(2u, folders.size());
    EXPECT_EQ(L"Contacts", folders[1].displayName);
    EXPECT_EQ((CallLog{L"provider GetUserProperties",
                       L"provider GetAddressBook",
                       L"provider GetCalendar",
                       L"provider GetContactFolders"}),
              log);
}

TEST_F(ServiceManagerTest, GetEnumeratorRemembersTheTypeAndBuildsItForDefault)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    log.clear();
    EXPECT_EQ(nullptr, manager.GetEnumerator(AddressBook));
    EXPECT_EQ(CallLog{}, log);
    EXPECT_NE(nullptr, manager.GetEnumerator(Default));
    EXPECT_EQ((CallLog{L"provider GetEnumerator 3", L"3 delete"}), log);
}

TEST_F(ServiceManagerTest, GetEnumeratorKeepsTheTypeForTheNextOne)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    manager.GetEnumerator(Calendar);
    EXPECT_NE(nullptr, manager.GetEnumerator(Default));
    EXPECT_NE(nullptr, manager.GetEnumerator(Default));
}

TEST_F(ServiceManagerTest, GetEnumeratorWithDefaultAloneReachesNoProvider)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    log.clear();
    EXPECT_EQ(nullptr, manager.GetEnumerator(Default));
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(ServiceManagerTest, TheRememberedTypeSurvivesAStop)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    manager.GetEnumerator(ContactGroup);
    manager.StopService();
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    log.clear();
    EXPECT_NE(nullptr, manager.GetEnumerator(Default));
    EXPECT_EQ(L"provider GetEnumerator 2", log.front());
}

TEST_F(ServiceManagerTest, DefaultWithoutAProviderForgetsTheRememberedType)
{
    EXPECT_EQ(nullptr, manager.GetEnumerator(ContactGroup));
    EXPECT_EQ(nullptr, manager.GetEnumerator(Default));
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    EXPECT_EQ(nullptr, manager.GetEnumerator(Default));
}

TEST_F(ServiceManagerTest, PassesATypeThatNoBackEndHasOn)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    manager.GetEnumerator(static_cast<_tagNEnumeratorType>(7));
    log.clear();
    EXPECT_EQ(nullptr, manager.GetEnumerator(Default));
    EXPECT_EQ((CallLog{L"provider GetEnumerator 7"}), log);
}

// --- Calls inside calls --------------------------------------------------------------------------

TEST_F(ServiceManagerTest, AStopInTheOnlyCallTakesEffectAtOnce)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    log.clear();
    CallScope call;
    manager.StopService();
    EXPECT_EQ((CallLog{L"provider delete"}), log);
}

TEST_F(ServiceManagerTest, AStopInsideAnotherCallWaitsForItsEnd)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    log.clear();
    {
        CallScope outer;
        {
            CallScope inner;
            LogOutput output;
            manager.StopService();
            EXPECT_EQ((Lines{kStop}), output.capture.TakeLogMessages());
        }
        EXPECT_EQ(CallLog{}, log);
    }
    EXPECT_EQ((CallLog{L"provider delete"}), log);
    EXPECT_EQ(S_OK, manager.StartService(L"Windows Mail"));
}

TEST_F(ServiceManagerTest, NothingNewIsHandedOutWhileAStopWaits)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    manager.GetEnumerator(Calendar);
    log.clear();
    CallScope outer;
    CallScope inner;
    manager.StopService();
    std::vector<OutlookFolderInfo> folders;
    EXPECT_EQ(nullptr, manager.GetUserProperties());
    EXPECT_EQ(nullptr, manager.GetAddressBook());
    EXPECT_EQ(nullptr, manager.GetCalendar());
    EXPECT_EQ(nullptr, manager.GetEnumerator(Default));
    EXPECT_FALSE(manager.GetContactFolders(folders));
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(ServiceManagerTest, AStartFailsWhileAStopWaits)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    log.clear();
    {
        CallScope outer;
        CallScope inner;
        manager.StopService();
        LogOutput output;
        EXPECT_EQ(E_FAIL, manager.StartService(L"Windows Mail"));
        EXPECT_EQ((Lines{Starting("Windows Mail"), kFailed}), output.capture.TakeLogMessages());
    }
    EXPECT_EQ((CallLog{L"provider delete"}), log);
}

TEST_F(ServiceManagerTest, TwoStopsInsideAnotherCallEndTheProviderOnce)
{
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    log.clear();
    {
        CallScope outer;
        CallScope inner;
        manager.StopService();
        manager.StopService();
    }
    EXPECT_EQ((CallLog{L"provider delete"}), log);
    EXPECT_EQ(S_OK, manager.StartService(L"Outlook Express"));
}

TEST_F(ServiceManagerTest, AStopDuringTheLogonEndsTheProviderAfterIt)
{
    backEnds.start = [&](std::unique_ptr<IProvider>& slot) {
        slot = backEnds.MakeProvider();
        CallScope reentrant;
        manager.StopService();
        return S_OK;
    };
    {
        CallScope call;
        EXPECT_EQ(S_OK, manager.StartService(L"Microsoft Outlook"));
        EXPECT_EQ((CallLog{L"start Microsoft Outlook"}), log);
    }
    EXPECT_EQ((CallLog{L"start Microsoft Outlook", L"provider delete"}), log);
    EXPECT_EQ(nullptr, manager.GetCalendar());
}

TEST_F(ServiceManagerTest, AStopDuringALogonThatFailsLeavesTheManagerReady)
{
    backEnds.start = [&](std::unique_ptr<IProvider>& slot) {
        slot = backEnds.MakeProvider();
        CallScope reentrant;
        manager.StopService();
        return E_ACCESSDENIED;
    };
    {
        CallScope call;
        EXPECT_EQ(E_ACCESSDENIED, manager.StartService(L"Microsoft Outlook"));
    }
    backEnds.start = [&](std::unique_ptr<IProvider>& slot) {
        slot = backEnds.MakeProvider();
        return S_OK;
    };
    EXPECT_EQ(S_OK, manager.StartService(L"Microsoft Outlook"));
}

TEST_F(ServiceManagerTest, AStartInsideAStartMakesNoSecondProvider)
{
    HRESULT inner = S_OK;
    backEnds.start = [&](std::unique_ptr<IProvider>& slot) {
        CallScope reentrant;
        inner = manager.StartService(L"Outlook Express");
        slot = backEnds.MakeProvider();
        return S_OK;
    };
    EXPECT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    EXPECT_EQ(E_FAIL, inner);
    EXPECT_EQ((CallLog{L"start Windows Mail"}), log);
}

TEST_F(ServiceManagerTest, AStartFailsWhileTheProviderEnds)
{
    HRESULT inner = S_OK;
    backEnds.prepareProvider = [&](FakeProvider& provider) {
        provider.duringDelete = [&] { inner = manager.StartService(L"Windows Mail"); };
    };
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    manager.StopService();
    EXPECT_EQ(E_FAIL, inner);
    backEnds.prepareProvider = nullptr;
    EXPECT_EQ(S_OK, manager.StartService(L"Windows Mail"));
}

// --- The process-wide manager --------------------------------------------------------------------

TEST_F(ServiceManagerTest, AScopedManagerStandsForTheProcessWideOne)
{
    EXPECT_EQ(&manager, GetServiceManager());
    CServiceManager other;
    {
        const ScopedServiceManager scoped(other);
        EXPECT_EQ(&other, GetServiceManager());
    }
    EXPECT_EQ(&manager, GetServiceManager());
}

TEST(ServiceManagerSingletonTest, IsMadeOnFirstUseAndStays)
{
    CServiceManager* const first = GetServiceManager();
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(first, GetServiceManager());
}

TEST_F(RealBackEndsTest, OutlookFailsAsAFailedLogonDoesWhereItIsNotInstalled)
{
    ScopedRegistryValue component(
        HKEY_LOCAL_MACHINE, L"Software\\Clients\\Mail\\Microsoft Outlook", L"MSIComponentID");
    component.Remove();
    LogOutput output;
    EXPECT_EQ(E_FAIL, manager.StartService(L"microsoft outlook"));
    EXPECT_EQ((Lines{Starting("microsoft outlook"), kFailed}), output.capture.TakeLogMessages());
}
