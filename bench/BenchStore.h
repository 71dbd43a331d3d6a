// What the benchmarks over the embedded message store share: a store of their own in the temporary
// folder, with one folder for each size, and a logon to it.
#pragma once

#include "outlook/store/MAPIHelper.h"
#include "outlook/store/MapiMemory.h"
#include "platform/WindowsHeaders.h"
#include "support/ScratchDirectory.h"

#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

// Runs a benchmark in an apartment with the server's class objects, while the user's setting for
// the store's place names a new one; prints the heading first.
//   name: the program's, for its failures
// Returns: the program's exit code.
int RunOverStore(const char* name, const std::function<void(const ScratchDirectory&)>& measure);

// Fills the store, in one transaction, with a folder of messages for each size, and prints what
// that takes.
//   properties: of the message with that number, in the form of docs/formats/store_json.md, with a
//               comma between each two
void FillStore(const ScratchDirectory& scratch,
               const std::vector<ULONG>& sizes,
               const std::function<std::string(ULONG)>& properties);

// All that follows throws std::runtime_error where a call of the store fails.

class BenchStore
{
  public:
    BenchStore();
    ~BenchStore();
    BenchStore(const BenchStore&) = delete;
    BenchStore& operator=(const BenchStore&) = delete;

    // The folder of that size.
    Microsoft::WRL::ComPtr<IMAPIFolder> Folder(ULONG count);

    std::unique_ptr<CMAPIHelper> helper;

  private:
    Microsoft::WRL::ComPtr<IMAPISession> m_session;
    Microsoft::WRL::ComPtr<IMsgStore> m_store;
    Microsoft::WRL::ComPtr<IMAPIFolder> m_root;
};

// Fills the store and measures the loading and walking of each folder beside the bare calls of the
// store that this cannot do without and one bare creation for each item; see MeasureFolders.
struct WalkBench
{
    using Work = std::function<ULONG(BenchStore&, const Microsoft::WRL::ComPtr<IMAPIFolder>&)>;

    std::vector<ULONG> sizes;
    std::function<std::string(ULONG)> properties;
    Work own;
    Work bare;
    CLSID itemClass; // what is created for each item
    double mostBesideFirst;
};
void MeasureWalks(const ScratchDirectory& scratch, const WalkBench& bench);

// --- Bare calls, as the engine makes them ---

MapiRowSet ReadRows(IMAPITable& table, std::span<const ULONG> columns, CNProxcy& proxy);
Microsoft::WRL::ComPtr<IUnknown> OpenToRead(IMAPIFolder& folder, const SBinary& entryID);
void ReadAndFree(IMAPIProp& object, std::span<const ULONG> tags, CNProxcy& proxy);
// So many of the class; gives their count.
ULONG CreateItems(REFCLSID classID, ULONG count);
