// The one further export of recording_store.dll: what RecordingStore is made of. Only plain types
// cross the library's boundary; nothing throws.
#pragma once

#include "platform/WindowsHeaders.h"

#include <cstddef>
#include <cstdint>

enum class StoreFault : unsigned;

// IDs of the address book are texts.
inline constexpr std::size_t kLongestStoreEntryId = 1024;

// Gets texts one by one.
using StoreTextSink = void (*)(void* context, const char* text);
using StoreCallSink =
    void (*)(void* context, const char* text, unsigned kind, unsigned number, HRESULT result);
// Runs while a call is under way.
using StoreInterruptionSink = void (*)(void* context);

struct StoreBooks
{
    unsigned liveObjects;
    unsigned liveBuffers;
    unsigned initialisedTimes;
    unsigned refusedFrees;
    unsigned failableCalls;
    unsigned spoiledOutputs;
};

// False stands for an unknown name, or one that is taken.
struct IRecordingStore
{
    virtual void Reset() noexcept = 0;
    virtual bool AddStore(const char* name) noexcept = 0;
    virtual bool SetDefaultStore(const char* name) noexcept = 0;
    virtual bool AddIdentity() noexcept = 0;
    virtual bool AddBook() noexcept = 0;
    virtual bool AddBookEntry(const char* name, ULONG objectType) noexcept = 0;
    virtual bool AddFolder(const char* name, const char* parent) noexcept = 0;
    virtual bool AddMessage(const char* name, const char* folder, bool isAssociated) noexcept = 0;
    virtual bool AddAttachment(const char* message, ULONG* number) noexcept = 0;
    virtual bool SetProps(const char* object, ULONG count, const SPropValue* values) noexcept = 0;
    virtual bool RemoveProp(const char* object, ULONG tag) noexcept = 0;
    virtual bool Remove(const char* object) noexcept = 0;
    virtual bool SetReceiveFolder(const wchar_t* messageClass, const char* folder) noexcept = 0;
    virtual ULONG NameProperty(const MAPINAMEID* name) noexcept = 0;
    virtual bool SetEntryId(const char* object, ULONG size, const BYTE* bytes) noexcept = 0;
    virtual bool SetRowEntryId(const char* message, ULONG size, const BYTE* bytes) noexcept = 0;
    // Writes at most kLongestStoreEntryId bytes and their count.
    virtual bool EntryIdOf(const char* object, ULONG* size, BYTE* bytes) noexcept = 0;
    virtual void SetClock(std::uint64_t fileTime, std::uint64_t step) noexcept = 0;
    virtual bool SetTimes(const char* object,
                          std::uint64_t created,
                          std::uint64_t modified) noexcept = 0;

    virtual bool PropsOf(const char* object, StoreTextSink sink, void* context) noexcept = 0;
    virtual bool ChildrenOf(const char* object, StoreTextSink sink, void* context) noexcept = 0;
    virtual bool Exists(const char* object) noexcept = 0;

    virtual void Record(StoreCallSink sink, void* context) noexcept = 0;
    virtual void ClearRecord() noexcept = 0;
    virtual void Fail(unsigned number, StoreFault fault) noexcept = 0;
    virtual void FailNext(const char* line, StoreFault fault) noexcept = 0;
    // Once, in the next call whose line starts with that text; see StoreInterruption.
    virtual void Interrupt(const char* line,
                           StoreInterruptionSink sink,
                           void* context) noexcept = 0;
    virtual void Uninterrupt(void* context) noexcept = 0;
    virtual StoreBooks Books() noexcept = 0;
    virtual void Violations(StoreTextSink sink, void* context) noexcept = 0;
    virtual void Leaks(StoreTextSink sink, void* context) noexcept = 0;

  protected:
    ~IRecordingStore() = default;
};

// The export "GetRecordingStore".
using GetRecordingStoreFunction = IRecordingStore* WINAPI();
