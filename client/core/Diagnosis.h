// What "pim doctor" says about what it found on this PC. Portable.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace pim
{
// How long the doctor waits for any one answer.
inline constexpr std::uint32_t kLongestAnswerSeconds = 10;

// The end of a call to the server: its HRESULT; none where it did not answer in time.
using Answer = std::optional<std::int32_t>;

// What is known of the server before and after it was called.
struct ServerFacts
{
    bool isRegisteredForMachine = false;
    bool isRegisteredForUser = false;
    std::wstring program; // as registered, without quotes; empty where nothing is
    bool programExists = false;
    bool isElevated = false; // pim itself
    // A server that runs already, started with other rights than those of pim.
    bool runsWithOtherRights = false;
    bool wasCalled = false; // the rest is unknown before
    Answer activation;
};

// What is known of one provider.
struct ProviderFacts
{
    std::wstring name;
    bool isInstalled = false; // among the mail clients that the server lists
    // The library that it works through; empty where none was found.
    std::wstring library;
    bool libraryExists = false;
    std::optional<std::uint16_t> libraryMachine; // none where the file is no program
    // Whether it logs on to a profile, and the user's default one; empty where there is none.
    bool needsProfile = false;
    std::wstring defaultProfile;
    bool wasStarted = false; // the rest is unknown before
    Answer start;
};

struct Finding
{
    bool isFault = false;
    std::wstring subject; // "Server", or the provider's name
    std::wstring text;    // one or more whole sentences

    bool operator==(const Finding&) const = default;
};

// Why the server cannot be reached, in the order in which it is worth looking; a single finding
// that is no fault where it can, and none where it was not called.
std::vector<Finding> DiagnoseServer(const ServerFacts& facts);

// Why the provider cannot start; a single finding that is no fault where it did, or where its
// client is not installed at all.
std::vector<Finding> DiagnoseProvider(const ProviderFacts& facts);
} // namespace pim
