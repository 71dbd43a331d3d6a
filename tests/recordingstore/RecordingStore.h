// A store for tests: the calls of Extended MAPI over contents in memory, with every call written
// down and each of them able to fail.
//
// The library recording_store.dll exports the names that the server binds of a MAPI library
// (MAPIInitialize, MAPILogonEx, "FreeProws@4", ...), so that proxies and discovery run unchanged:
// give them RecordingStore::Path(). A test holds one RecordingStore, builds what the store holds,
// lets the server work, and reads what was called:
//
//     RecordingStore store;    // empty: a session, the store "store", its folder "root"
//     store.AddUsualFolders(); // or AddFolder, SetReceiveFolder, ... one by one
//     store.AddMessage("ann", "contacts", StoreProps().Text(0x001A001F, L"IPM.Contact"));
//     ...                      // the server's work, its teardown included
//     EXPECT_THAT(store.Calls(), ElementsAre("MAPIInitialize(0, 00000008)", ...));
//     EXPECT_TRUE(store.IsClean()) << store.Complaints();
//
// WABOpen gives the address book over the same contents and record: "address book", the IWABObject
// "wab", whose FreeBuffer is a line of the kind Memory, the container "book" and its entries. It
// initialises the library, and the last release of the IWABObject uninitialises it.
//
// Objects have logical names that the test chooses; the library's own are "session", "store",
// "root", "identity", and "new 1", "new 2", ... for messages that the server creates. Attachments
// are called "ann#0" after message and number. Calls name objects by them, wherever an object or an
// entry ID stands.
//
// One line per call:  Interface(object).Method(arguments), or Export(arguments).
//   flags       8 hexadecimal digits
//   tags        [0FFF0102 001A001F]
//   entry IDs   the object's name; the name with " (row)" behind it for the other ID of
//               SetRowEntryId; "none" for a count of 0;
//               <0A0B> for an unknown one
//   interfaces  their names; "null"
//   texts       "IPM.Note"; "null"
//   values      {001A001F "IPM.Contact", 00170003 1, 000B values in decimal, 3008.. in decimal,
//               0FFF0102 <0A0B>, 101F [..., ...]}; of binaries beyond 64 bytes those and the
//               number: <... 5120 bytes>
//   outputs     not shown, but for optional ones: "type", "class", "problems", "rows" stand there
//               where the caller passed an address
//   buffers     "props of ann", "rows of stores table", ...; "inside rows of ..." for an address in
//               the middle of one; "freed ..."; "unknown"; "null"
// Tables are called "contacts contents table", "contacts associated contents table", "contacts
// hierarchy table", "ann attachments table", "stores table"; streams "ann 10090102 stream" and
// "rtf of ann 10090102 stream".
//
// What the implementation of HrGetOneProp and HrQueryAllRows calls on the object is not written
// down. AddRef and Release are only counted; the last Release of an object is a line of its own,
// "release IMAPIFolder(contacts)", of the kind Release.
//
// Contents follow MAPI's rules (see tests/storeconformance): a missing property is PT_ERROR with
// MAPI_E_NOT_FOUND under MAPI_W_ERRORS_RETURNED; entry ID and modification time come with
// SaveChanges; named properties are only created for MAPI_CREATE. Entry IDs are 24 bytes, counted
// up from 1 in the order of creation; the clock stands at 2024-01-01 00:00 UTC and goes on by one
// second with each save.
//
// Thread: one, the one that initialised the library; calls from others are violations.
#pragma once

#include "platform/WindowsHeaders.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// How a call goes wrong.
enum class StoreFault : unsigned
{
    None,
    OutOfMemory, // E_OUTOFMEMORY; outputs null
    CallFailed,  // MAPI_E_CALL_FAILED; outputs null
    NullOutput,  // S_OK with null outputs; a call without outputs does nothing. MAPIInitialize and
                 // calls that only free do their work.
    FewerValues, // MAPI_W_ERRORS_RETURNED with one value, row or byte fewer; a call that gives no
                 // such thing does its work and returns the warning
    WrongTypes,  // as usual, but every value has another type than was asked for
    ShortRows,   // as usual, but each row has one value fewer and a value array holds none
    FailsWithWork, // does its work, outputs included, and returns MAPI_E_CALL_FAILED

    // Answers of a hostile store: the call does its work and succeeds, and what it gives is not
    // what a store may give. Which calls have which is in tests/recordingstore/HostileAnswers.h.

    // Value arrays, rows, lists of tags, entry IDs.
    NullArrays,   // counts as usual, null pointers beside them
    ZeroCounts,   // arrays as usual, counts of 0 beside them
    LongerArrays, // more values than there are tags, and each row twice
    HugeArrays,   // entry IDs of 1 MiB
    Reversed,     // the values in the order that was not asked for
    // Each value, also where there is none, by the type that was asked for.
    AllErrors,    // PT_ERROR with MAPI_E_CALL_FAILED, and S_OK
    OtherTypes,   // of another type, well-formed: narrow texts, texts for binaries, NaN for numbers
    NullPointers, // null texts, null binaries of 16 bytes, null arrays of 16 elements
    NullElements, // as multiple values, whose elements are null
    EmptyValues,  // empty texts, binaries and arrays of no bytes at null; 0
    HugeValues,   // texts of 1 MiB UTF-16 units, binaries of 1 MiB, numbers of nothing but ones
    OddValues,    // halves of pairs and control characters, binaries of 1 byte, lowest numbers
    // Named properties.
    FixedNames,  // IDs of properties that have no names
    OneName,     // one ID for all of them
    ListedNames, // tags of the type PT_MV_LONG
    // Objects.
    OtherObject, // another kind of object; its type is told
    // Numbers that calls give beside their results: as large as they can be.
    WildNumbers,
    // Streams, from the one that is opened on.
    EndlessStream,   // as many bytes as are asked for, for ever
    TricklingStream, // one byte, for ever
    BreakingStream,  // one byte, then failures
    EmptyStream,     // nothing, for ever
    // A tree of folders without an end: from the call on, each folder holds those below the subtree
    // twice, under entry IDs that are new each time.
    EndlessFolders,
};

// The four ways in which any store may fail, and those of a hostile one.
inline constexpr StoreFault kStoreFaults[] = {StoreFault::OutOfMemory,
                                              StoreFault::CallFailed,
                                              StoreFault::NullOutput,
                                              StoreFault::FewerValues};
inline constexpr StoreFault kHostileStoreFaults[] = {StoreFault::WrongTypes, StoreFault::ShortRows};

const char* NameOf(StoreFault fault) noexcept;

// What a line of the record is about; to be combined.
enum StoreCallKind : unsigned
{
    kStoreMethods = 1,  // of interfaces, but for IUnknown's
    kStoreExports = 2,  // of the library, but for memory
    kStoreQueries = 4,  // QueryInterface
    kStoreMemory = 8,   // MAPIAllocateBuffer, MAPIAllocateMore, MAPIFreeBuffer, FreeProws
    kStoreReleases = 16 // the last Release of an object
};
inline constexpr unsigned kStoreUsualCalls = kStoreMethods | kStoreExports | kStoreQueries;

struct RecordedStoreCall
{
    std::string text;
    StoreCallKind kind;
    unsigned number; // among those that can fail, from 1; 0 for the others
    HRESULT result;
};

// Values for the contents of objects, with memory of their own.
class StoreProps
{
  public:
    StoreProps& Text(ULONG tag, std::wstring_view text);
    StoreProps& AnsiText(ULONG tag, std::string_view text);
    StoreProps& Number(ULONG tag, LONG number); // PT_LONG, PT_I2, PT_BOOLEAN by the tag
    StoreProps& Time(ULONG tag, std::uint64_t fileTime);
    StoreProps& Bytes(ULONG tag, std::vector<BYTE> bytes);
    StoreProps& Texts(ULONG tag, std::vector<std::wstring> texts);
    StoreProps& Binaries(ULONG tag, std::vector<std::vector<BYTE>> binaries);
    StoreProps& Numbers(ULONG tag, std::vector<LONG> numbers);
    // The entry ID of an object of the store.
    StoreProps& Entry(ULONG tag, std::string_view object);
    // The property is there, but reading it gives PT_ERROR with that code.
    StoreProps& Failing(ULONG tag, SCODE code);

  private:
    friend class RecordingStore;
    struct Item
    {
        ULONG tag = 0;
        std::uint64_t number = 0;
        std::vector<std::vector<BYTE>> bytes;
        std::string object;
        bool isError = false;
    };
    Item& Add(ULONG tag);
    std::vector<Item> m_items;
};

struct IRecordingStore;

// The control of the one store that the library holds. Contents, record, plan and counters begin
// anew with each RecordingStore; the library stays loaded for the life of the process. Operations
// throw std::invalid_argument for a name that no object has, or that one has already.
class RecordingStore
{
  public:
    RecordingStore();
    // Forgets everything. Objects that are still held stay callable; each call is a violation.
    ~RecordingStore();
    RecordingStore(const RecordingStore&) = delete;
    RecordingStore& operator=(const RecordingStore&) = delete;

    // The library, beside the program.
    static std::wstring Path();
    // The address of an export; null where there is none.
    FARPROC Entry(const char* name) const;

    // --- Contents ---
    void Reset();
    // A further store in the table of stores, with its root "<name> root".
    void AddStore(std::string_view name, const StoreProps& props = {});
    // Which store the table of stores marks as the default; "" for none. At first "store".
    void SetDefaultStore(std::string_view store);
    // The user of the session; without it there is none.
    void AddIdentity(const StoreProps& props);
    // The personal container "book" of the address book that WABOpen gives, with the templates
    // <55736572> of mail users and <4C697374> of distribution lists; without it there is none.
    void AddBook();
    // An entry of it, by its MAPI type.
    void AddBookEntry(std::string_view name,
                      const StoreProps& props = {},
                      ULONG objectType = MAPI_MAILUSER);
    void AddFolder(std::string_view name,
                   std::string_view parent,
                   std::wstring_view containerClass = {},
                   const StoreProps& props = {});
    void AddMessage(std::string_view name,
                    std::string_view folder,
                    const StoreProps& props = {},
                    bool isAssociated = false);
    // Returns its number.
    ULONG AddAttachment(std::string_view message, const StoreProps& props = {});
    void SetProps(std::string_view object, const StoreProps& props);
    void RemoveProp(std::string_view object, ULONG tag);
    // Takes a folder, message or attachment away, as another program would.
    void Remove(std::string_view object);
    // Where messages of that class are received; "" is the class of all others.
    void SetReceiveFolder(std::wstring_view messageClass, std::string_view folder);
    // The usual store: "subtree" below "root"; below it "inbox" (the receive folder of ""),
    // "contacts", "calendar" and "wastebasket", all named by the special properties of "store",
    // "root" and "inbox"; display names are the names in capitals ("Contacts").
    void AddUsualFolders();
    // The ID of a named property, made known where it is new; from 0x8000 up in order.
    ULONG NameProperty(const GUID& set, LONG number);
    ULONG NameProperty(const GUID& set, std::wstring_view name);
    // In place of the counted ones.
    void SetEntryId(std::string_view object, const std::vector<BYTE>& entryId);
    // The ID that contents tables show for a message, where it is to differ from its own; both open
    // it.
    void SetRowEntryId(std::string_view message, const std::vector<BYTE>& entryId);
    std::vector<BYTE> EntryIdOf(std::string_view object) const;
    // The time of the next save, and what each save adds to it; 100 ns since 1601, UTC.
    void SetClock(std::uint64_t fileTime, std::uint64_t step = 10'000'000);
    // Creation and modification time of an object.
    void SetTimes(std::string_view object, std::uint64_t created, std::uint64_t modified);

    // --- What is stored ---
    // The saved properties of an object as lines "001A001F \"IPM.Contact\"", ordered by ID.
    std::vector<std::string> PropsOf(std::string_view object) const;
    // Names of what lies directly in a folder (folders, then messages) or message (attachments).
    std::vector<std::string> ChildrenOf(std::string_view object) const;
    bool Exists(std::string_view object) const;

    // --- Record ---
    std::vector<std::string> Calls(unsigned kinds = kStoreUsualCalls) const;
    std::vector<RecordedStoreCall> Record() const;
    // How many calls there were that can fail.
    unsigned FailableCalls() const;
    // How many outputs a hostile answer has changed.
    unsigned SpoiledOutputs() const;
    void ClearRecord();

    // --- Plan ---
    // The call of that number (RecordedStoreCall::number; from 1) goes wrong in that way. Counting
    // starts anew with Reset and ClearRecord.
    void Fail(unsigned number, StoreFault fault);
    // The next call whose line starts with that text goes wrong in that way.
    void FailNext(std::string_view line, StoreFault fault);

    // --- Books ---
    unsigned LiveObjects() const;      // interfaces that hold a reference
    unsigned LiveBuffers() const;      // of MAPIAllocateBuffer and of the calls' outputs
    unsigned InitialisedTimes() const; // MAPIInitialize less MAPIUninitialize
    // How often an address was to be freed that is no buffer's; it is refused without harm.
    unsigned RefusedFrees() const;
    // Calls that no caller may make: before the library was initialised or after its end, on an
    // object that has been released, a second free of a buffer, from another thread, with an ID of
    // bytes at null.
    std::vector<std::string> Violations() const;
    // Names of the live objects and buffers.
    std::vector<std::string> Leaks() const;
    // No leaks, no violations, and MAPIUninitialize was called as often as MAPIInitialize.
    bool IsClean() const;
    // What IsClean finds, one complaint per line.
    std::string Complaints() const;

  private:
    IRecordingStore* m_control;
};
