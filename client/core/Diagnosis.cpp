#include "client/core/Diagnosis.h"

#include "client/core/ProgramImage.h"
#include "client/core/ResultText.h"

#include <iterator>

namespace pim
{
namespace
{
// HRESULTs that have a plain meaning here; others are told by their number.
constexpr auto kClassNotRegistered = static_cast<std::int32_t>(0x80040154);
constexpr auto kAccessDenied = static_cast<std::int32_t>(0x80070005);
constexpr auto kServerNotStarted = static_cast<std::int32_t>(0x80080005);
constexpr auto kNeedsElevation = static_cast<std::int32_t>(0x800702E4);
constexpr auto kBadImage = static_cast<std::int32_t>(0x800700C1);
constexpr auto kLogonFailed = static_cast<std::int32_t>(0x80040111);

struct Meaning
{
    std::int32_t result;
    const wchar_t* text;
};

constexpr Meaning kActivationMeanings[] = {
    {kClassNotRegistered, L"Windows does not know the server. Run: pim register"},
    {kAccessDenied, L"Windows does not let this user start it. Ask who looks after this PC."},
    {kServerNotStarted,
     L"Its program starts but does not serve; a virus scanner or a missing file may be in the "
     L"way."},
    {kNeedsElevation,
     L"Its program demands an administrator's rights: look at its compatibility settings."},
    {kBadImage, L"Its program is damaged or made for another processor. Install it again."},
};

constexpr Meaning kStartMeanings[] = {
    {kLogonFailed, L"The logon to the mail profile failed; a password may be wanted."},
    {kAccessDenied, L"This user may not open the store."},
};

template <std::size_t count>
std::wstring Told(const Meaning (&meanings)[count], std::int32_t result)
{
    for (const Meaning& meaning : meanings)
        if (meaning.result == result)
            return std::wstring(L" ") + meaning.text;
    return {};
}

std::wstring NoAnswerText(const wchar_t* what)
{
    return std::wstring(what) + L" did not answer within " +
           std::to_wstring(kLongestAnswerSeconds) +
           L" seconds. It may be waiting for an answer in a window that nobody sees: end "
           L"PimStoreBridge.exe in the Task Manager, start the mail client once by hand and try "
           L"again.";
}

std::wstring MachineText(std::optional<std::uint16_t> machine)
{
    if (!machine)
        return L"no program library";
    if (*machine == kMachineX86)
        return L"made for 32 bits";
    if (*machine == kMachineArm64)
        return L"made for ARM processors";
    return L"made for another processor";
}
} // namespace

std::vector<Finding> DiagnoseServer(const ServerFacts& facts)
{
    std::vector<Finding> findings;
    const auto add = [&](bool isFault, std::wstring text) {
        findings.push_back({isFault, L"Server", std::move(text)});
    };
    if (!facts.isRegisteredForMachine && !facts.isRegisteredForUser)
    {
        add(true,
            L"It is not registered on this PC. Run: pim register, or without an administrator's "
            L"rights: pim register --user");
        return findings;
    }
    if (facts.isElevated && !facts.isRegisteredForMachine)
        add(true,
            L"It is registered for the user alone, and programs with an administrator's rights do "
            L"not see that. Use a plain console, or run: pim register");
    if (!facts.programExists)
        add(true,
            L"Its program is not where it was registered: " + facts.program +
                L". Run pim register from the folder where it is now.");
    if (facts.runsWithOtherRights)
        add(true,
            L"One runs already with " +
                std::wstring(facts.isElevated ? L"fewer rights than this console"
                                              : L"an administrator's rights") +
                L". Clients with different rights do not share a server, and may get in each "
                L"other's way in one store: end one of them.");
    if (!facts.wasCalled)
        return findings;
    if (!facts.activation)
        add(true, NoAnswerText(L"It"));
    else if (*facts.activation < 0)
        add(true,
            L"It could not be reached (" + ResultText(*facts.activation) + L")." +
                Told(kActivationMeanings, *facts.activation));
    if (findings.empty())
        add(false, L"It answers: " + facts.program);
    return findings;
}

std::vector<Finding> DiagnoseProvider(const ProviderFacts& facts)
{
    std::vector<Finding> findings;
    const auto add = [&](bool isFault, std::wstring text) {
        findings.push_back({isFault, facts.name, std::move(text)});
    };
    if (!facts.isInstalled)
    {
        add(false, L"It is not installed on this PC.");
        return findings;
    }
    if (facts.wasStarted && facts.start && *facts.start >= 0)
    {
        add(false, L"It starts.");
        return findings;
    }
    if (facts.library.empty())
        add(true, L"Its library was not found. Repair the installation of the mail client.");
    else if (!facts.libraryExists)
        add(true,
            L"Its library is not there: " + facts.library +
                L". Repair the installation of the mail client.");
    else if (facts.libraryMachine != kMachineX64)
        add(true,
            L"Its library is " + MachineText(facts.libraryMachine) + L": " + facts.library +
                L". This server needs the 64-bit edition of the mail client.");
    if (facts.needsProfile && facts.defaultProfile.empty())
        add(true,
            L"This user has no default mail profile. Start the mail client once, or make one under "
            L"Mail in the Control Panel.");
    if (!facts.wasStarted)
        return findings;
    if (!facts.start)
        add(true, NoAnswerText(L"Its start"));
    else
        add(true,
            L"It does not start (" + ResultText(*facts.start) + L")." +
                Told(kStartMeanings, *facts.start));
    return findings;
}
} // namespace pim
