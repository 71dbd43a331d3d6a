// The embedded message store, lent to tests: a database of the tests' own, the library where the
// server looks for it, and the proxy library that carries arrays of records between processes. What
// stands there before comes back.
//
// With the proxy library, calls to the server are for the client of StoreClient.h and for other
// programs: which marshaller a process uses is settled with its first call, and this process keeps
// the one that it has.
#pragma once

#include "endtoend/ServerFixture.h"
#include "support/ScopedRegistryValue.h"
#include "support/ScratchDirectory.h"

#include <filesystem>
#include <string>

enum class RecordArrays
{
    Carried,
    LeftToTheRuntime
};

class MessageStore
{
  public:
    explicit MessageStore(RecordArrays arrays = RecordArrays::Carried);
    ~MessageStore();
    MessageStore(const MessageStore&) = delete;
    MessageStore& operator=(const MessageStore&) = delete;

    // Loads a text or a file in the form of docs/formats/store_json.md in place of all that is
    // there, through pimstore.
    void Load(const std::string& json) const;
    void LoadFile(const std::filesystem::path& path) const;
    // What pimstore dumps.
    std::string Dump() const;

    std::filesystem::path DatabasePath() const { return m_folder.Path() / L"store.db"; }

  private:
    ScratchDirectory m_folder;
    ScopedRegistryValue m_store{HKEY_CURRENT_USER, L"Software\\PimStoreBridge", L"Store"};
    ScopedRegistryValue m_defaultClient{HKEY_LOCAL_MACHINE, L"Software\\Clients\\Mail", L""};
    bool m_hasOwnLibrary = false;
    bool m_hasOwnProxy = false;
};

// Where the server's discovery finds the library that pimstore installed.
std::filesystem::path InstalledStoreLibrary();
