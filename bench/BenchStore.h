// What the benchmarks over the embedded message store share: a store of their own in the temporary
// folder, with folders for each size, and a logon to it.
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
// the store's place names a new one.
//   name: the program's, for its failures
// Returns: the program's exit code.
int RunOverStore(const char* name, const std::function<void(const ScratchDirectory&)>& measure);

// Fills the store, in one transaction, with messages for each size, shared out to so many folders,
// and prints what that takes.
//   properties: of the message with that number, in the form of docs/formats/store_json.md, with a
//               comma between each two
void FillStore(const ScratchDirectory& scratch,
               const std::vector<ULONG>& sizes,
               ULONG parts,
               const std::function<std::string(ULONG)>& properties);

// All that follows throws std::runtime_error where a call of the store fails.

class BenchStore
{
  public:
    BenchStore();
    ~BenchStore();
    BenchStore(const BenchStore&) = delete;
    BenchStore& operator=(const BenchStore&) = delete;

    // The folders that FillStore made for that size.
    std::vector<Microsoft::WRL::ComPtr<IMAPIFolder>> Folders(ULONG size, ULONG parts);

    std::unique_ptr<CMAPIHelper> helper;

  private:
    Microsoft::WRL::ComPtr<IMAPISession> m_session;
    Microsoft::WRL::ComPtr<IMsgStore> m_store;
    Microsoft::WRL::ComPtr<IMAPIFolder> m_root;
};

// --- Bare calls, as the engine makes them ---

MapiRowSet ReadRows(IMAPITable& table, std::span<const ULONG> columns, CNProxcy& proxy);
Microsoft::WRL::ComPtr<IUnknown> OpenToRead(IMAPIFolder& folder, const SBinary& entryID);
void ReadAndFree(IMAPIProp& object, std::span<const ULONG> tags, CNProxcy& proxy);
// So many of the class.
void CreateItems(REFCLSID classID, ULONG count);
