// What the doctor says, for each state of the server and of a provider.
#include "client/core/Diagnosis.h"

#include "client/core/ProgramImage.h"

#include <gmock/gmock.h>

namespace pim
{
namespace
{
using testing::ElementsAre;

ServerFacts HealthyServer()
{
    ServerFacts facts;
    facts.isRegisteredForMachine = true;
    facts.program = L"C:\\Pim\\PimStoreBridge.exe";
    facts.programExists = true;
    facts.wasCalled = true;
    facts.activation = 0;
    return facts;
}

ProviderFacts HealthyProvider()
{
    ProviderFacts facts;
    facts.name = L"Microsoft Outlook";
    facts.isInstalled = true;
    facts.library = L"C:\\Office\\msmapi32.dll";
    facts.libraryExists = true;
    facts.libraryMachine = kMachineX64;
    facts.needsProfile = true;
    facts.defaultProfile = L"Outlook";
    facts.wasStarted = true;
    facts.start = 0;
    return facts;
}

constexpr std::int32_t Result(std::uint32_t bits)
{
    return static_cast<std::int32_t>(bits);
}

// The texts of findings that all are faults.
std::vector<std::wstring> Faults(const std::vector<Finding>& findings)
{
    std::vector<std::wstring> texts;
    for (const Finding& finding : findings)
    {
        EXPECT_TRUE(finding.isFault);
        texts.push_back(finding.text);
    }
    return texts;
}
} // namespace

TEST(DiagnosisTest, AServerThatAnswersIsWell)
{
    EXPECT_THAT(DiagnoseServer(HealthyServer()),
                ElementsAre(Finding{false, L"Server", L"It answers: C:\\Pim\\PimStoreBridge.exe"}));
}

TEST(DiagnosisTest, AServerThatIsNotRegisteredIsToldAlone)
{
    ServerFacts facts = HealthyServer();
    facts.isRegisteredForMachine = false;
    facts.programExists = false;
    EXPECT_THAT(Faults(DiagnoseServer(facts)),
                ElementsAre(L"It is not registered on this PC. Run: pim register, or without an "
                            L"administrator's rights: pim register --user"));
}

TEST(DiagnosisTest, AnElevatedConsoleDoesNotSeeTheUsersRegistration)
{
    ServerFacts facts = HealthyServer();
    facts.isRegisteredForUser = true;
    facts.isElevated = true;
    EXPECT_FALSE(DiagnoseServer(facts).front().isFault);
    facts.isRegisteredForMachine = false;
    facts.activation = Result(0x80040154);
    EXPECT_THAT(
        Faults(DiagnoseServer(facts)),
        ElementsAre(L"It is registered for the user alone, and programs with an administrator's "
                    L"rights do not see that. Use a plain console, or run: pim register",
                    L"It could not be reached (0x80040154). Windows does not know the server. Run: "
                    L"pim register"));
    facts.isElevated = false;
    facts.activation = 0;
    EXPECT_FALSE(DiagnoseServer(facts).front().isFault);
}

TEST(DiagnosisTest, AProgramThatWasMovedIsNamed)
{
    ServerFacts facts = HealthyServer();
    facts.programExists = false;
    facts.activation = Result(0x80080005);
    EXPECT_THAT(
        Faults(DiagnoseServer(facts)),
        ElementsAre(L"Its program is not where it was registered: C:\\Pim\\PimStoreBridge.exe. Run "
                    L"pim register from the folder where it is now.",
                    L"It could not be reached (0x80080005). Its program starts but does not serve; "
                    L"a virus scanner or a missing file may be in the way."));
}

TEST(DiagnosisTest, AServerWithOtherRightsIsToldFromBothSides)
{
    ServerFacts facts = HealthyServer();
    facts.runsWithOtherRights = true;
    const auto text = [](const wchar_t* rights) {
        return std::wstring(L"One runs already with ") + rights +
               L". Clients with different rights do not share a server, and may get in each "
               L"other's "
               L"way in one store: end one of them.";
    };
    EXPECT_THAT(Faults(DiagnoseServer(facts)), ElementsAre(text(L"an administrator's rights")));
    facts.isElevated = true;
    EXPECT_THAT(Faults(DiagnoseServer(facts)),
                ElementsAre(text(L"fewer rights than this console")));
}

TEST(DiagnosisTest, AServerThatDoesNotAnswerIsToldWithTheLimit)
{
    ServerFacts facts = HealthyServer();
    facts.activation = std::nullopt;
    EXPECT_THAT(Faults(DiagnoseServer(facts)),
                ElementsAre(L"It did not answer within 10 seconds. It may be waiting for an answer "
                            L"in a window that nobody sees: end PimStoreBridge.exe in the Task "
                            L"Manager, start the mail client once by hand and try again."));
    facts.wasCalled = false;
    EXPECT_TRUE(DiagnoseServer(facts).empty());
}

TEST(DiagnosisTest, ResultsWithoutAMeaningAreToldByNumber)
{
    ServerFacts facts = HealthyServer();
    facts.activation = Result(0x8007000E);
    EXPECT_THAT(Faults(DiagnoseServer(facts)),
                ElementsAre(L"It could not be reached (0x8007000E)."));
}

TEST(DiagnosisTest, AProviderThatStartsIsWellWhateverElseIsKnown)
{
    ProviderFacts facts = HealthyProvider();
    facts.library.clear();
    facts.defaultProfile.clear();
    EXPECT_THAT(DiagnoseProvider(facts),
                ElementsAre(Finding{false, L"Microsoft Outlook", L"It starts."}));
}

TEST(DiagnosisTest, AClientThatIsNotInstalledIsNoFault)
{
    ProviderFacts facts;
    facts.name = L"Windows Mail";
    EXPECT_THAT(DiagnoseProvider(facts),
                ElementsAre(Finding{false, L"Windows Mail", L"It is not installed on this PC."}));
}

TEST(DiagnosisTest, EachReasonOfAFailedStartIsNamed)
{
    const std::wstring failed = L"It does not start (0x80004005).";
    ProviderFacts facts = HealthyProvider();
    facts.start = Result(0x80004005);
    EXPECT_THAT(Faults(DiagnoseProvider(facts)), ElementsAre(failed));

    facts.library.clear();
    EXPECT_THAT(
        Faults(DiagnoseProvider(facts)),
        ElementsAre(L"Its library was not found. Repair the installation of the mail client.",
                    failed));

    facts.library = L"C:\\Office\\msmapi32.dll";
    facts.libraryExists = false;
    EXPECT_THAT(Faults(DiagnoseProvider(facts)),
                ElementsAre(L"Its library is not there: C:\\Office\\msmapi32.dll. Repair the "
                            L"installation of the mail client.",
                            failed));

    facts.libraryExists = true;
    const struct
    {
        std::optional<std::uint16_t> machine;
        const wchar_t* text;
    } machines[] = {
        {kMachineX86, L"made for 32 bits"},
        {kMachineArm64, L"made for ARM processors"},
        {0x0200, L"made for another processor"},
        {std::nullopt, L"no program library"},
    };
    for (const auto& row : machines)
    {
        facts.libraryMachine = row.machine;
        EXPECT_THAT(Faults(DiagnoseProvider(facts)),
                    ElementsAre(std::wstring(L"Its library is ") + row.text +
                                    L": C:\\Office\\msmapi32.dll. This server needs the 64-bit "
                                    L"edition of the mail client.",
                                failed));
    }

    facts.libraryMachine = kMachineX64;
    facts.defaultProfile.clear();
    EXPECT_THAT(
        Faults(DiagnoseProvider(facts)),
        ElementsAre(L"This user has no default mail profile. Start the mail client once, or "
                    L"make one under Mail in the Control Panel.",
                    failed));
    facts.needsProfile = false;
    EXPECT_THAT(Faults(DiagnoseProvider(facts)), ElementsAre(failed));
}

TEST(DiagnosisTest, AFailedLogonAndAStartWithoutAnAnswerAreTold)
{
    ProviderFacts facts = HealthyProvider();
    facts.start = Result(0x80040111);
    EXPECT_THAT(
        Faults(DiagnoseProvider(facts)),
        ElementsAre(L"It does not start (0x80040111). The logon to the mail profile failed; "
                    L"a password may be wanted."));
    facts.start = std::nullopt;
    EXPECT_THAT(Faults(DiagnoseProvider(facts)),
                ElementsAre(L"Its start did not answer within 10 seconds. It may be waiting for an "
                            L"answer in a window that nobody sees: end PimStoreBridge.exe in the "
                            L"Task Manager, start the mail client once by hand and try again."));
}

TEST(DiagnosisTest, AProviderThatWasNotTriedTellsWhatCanBeSeen)
{
    ProviderFacts facts = HealthyProvider();
    facts.wasStarted = false;
    EXPECT_TRUE(DiagnoseProvider(facts).empty());
    facts.libraryMachine = kMachineX86;
    EXPECT_EQ(1u, Faults(DiagnoseProvider(facts)).size());
}
} // namespace pim
