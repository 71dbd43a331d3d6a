#include "tests/recordingstore/RecordingStore.h"

#include "service/PathHelpers.h"
#include "tests/recordingstore/RecordingStoreControl.h"

#include <cstring>
#include <deque>
#include <iterator>
#include <stdexcept>

namespace
{
HMODULE TheLibrary()
{
    static const HMODULE library = [] {
        const HMODULE loaded = LoadLibraryW(RecordingStore::Path().c_str());
        if (!loaded)
            throw std::runtime_error("recording_store.dll does not load");
        return loaded;
    }();
    return library;
}

// A text that the control takes with its terminator.
std::string Name(std::string_view name)
{
    return std::string(name);
}

void Require(bool isDone, std::string_view name)
{
    if (!isDone)
        throw std::invalid_argument("recording store: " + std::string(name));
}

void Collect(void* texts, const char* text)
{
    static_cast<std::vector<std::string>*>(texts)->emplace_back(text);
}

std::vector<BYTE> CopyBytes(const void* bytes, std::size_t size)
{
    const auto* const from = static_cast<const BYTE*>(bytes);
    return size ? std::vector<BYTE>(from, from + size) : std::vector<BYTE>();
}

// A text with its terminator.
std::vector<BYTE> TextBytes(std::wstring_view text)
{
    std::vector<BYTE> bytes = CopyBytes(text.data(), text.size() * sizeof(wchar_t));
    bytes.insert(bytes.end(), sizeof(wchar_t), 0);
    return bytes;
}

SBinary View(std::vector<BYTE>& bytes)
{
    return {static_cast<ULONG>(bytes.size()), bytes.data()};
}
} // namespace

const char* NameOf(StoreFault fault) noexcept
{
    static constexpr const char* kNames[] = {
        "None",          "OutOfMemory",     "CallFailed",     "NullOutput",  "FewerValues",
        "WrongTypes",    "ShortRows",       "FailsWithWork",  "NullArrays",  "ZeroCounts",
        "LongerArrays",  "HugeArrays",      "Reversed",       "AllErrors",   "OtherTypes",
        "NullPointers",  "NullElements",    "EmptyValues",    "HugeValues",  "OddValues",
        "FixedNames",    "OneName",         "ListedNames",    "OtherObject", "WildNumbers",
        "EndlessStream", "TricklingStream", "BreakingStream", "EmptyStream", "EndlessFolders"};
    static_assert(std::size(kNames) == static_cast<unsigned>(StoreFault::EndlessFolders) + 1);
    return kNames[static_cast<unsigned>(fault)];
}

StoreProps::Item& StoreProps::Add(ULONG tag)
{
    m_items.emplace_back().tag = tag;
    return m_items.back();
}
StoreProps& StoreProps::Text(ULONG tag, std::wstring_view text)
{
    Add(tag).bytes.push_back(TextBytes(text));
    return *this;
}
StoreProps& StoreProps::AnsiText(ULONG tag, std::string_view text)
{
    std::vector<BYTE> bytes = CopyBytes(text.data(), text.size());
    bytes.push_back(0);
    Add(tag).bytes.push_back(std::move(bytes));
    return *this;
}
StoreProps& StoreProps::Number(ULONG tag, LONG number)
{
    Add(tag).number = static_cast<ULONG>(number);
    return *this;
}
StoreProps& StoreProps::Time(ULONG tag, std::uint64_t fileTime)
{
    Add(tag).number = fileTime;
    return *this;
}
StoreProps& StoreProps::Bytes(ULONG tag, std::vector<BYTE> bytes)
{
    Add(tag).bytes.push_back(std::move(bytes));
    return *this;
}
StoreProps& StoreProps::Texts(ULONG tag, std::vector<std::wstring> texts)
{
    Item& item = Add(tag);
    for (const std::wstring& text : texts)
        item.bytes.push_back(TextBytes(text));
    return *this;
}
StoreProps& StoreProps::Binaries(ULONG tag, std::vector<std::vector<BYTE>> binaries)
{
    Add(tag).bytes = std::move(binaries);
    return *this;
}
StoreProps& StoreProps::Numbers(ULONG tag, std::vector<LONG> numbers)
{
    Add(tag).bytes.push_back(CopyBytes(numbers.data(), numbers.size() * sizeof(LONG)));
    return *this;
}
StoreProps& StoreProps::Entry(ULONG tag, std::string_view object)
{
    Add(tag).object = object;
    return *this;
}
StoreProps& StoreProps::Failing(ULONG tag, SCODE code)
{
    Item& item = Add(CHANGE_PROP_TYPE(tag, PT_ERROR));
    item.number = static_cast<ULONG>(code);
    return *this;
}

RecordingStore::RecordingStore()
{
    const auto get = reinterpret_cast<GetRecordingStoreFunction*>(
        reinterpret_cast<void*>(GetProcAddress(TheLibrary(), "GetRecordingStore")));
    if (!get)
        throw std::runtime_error("recording_store.dll has no control");
    m_control = get();
    m_control->Reset();
}

RecordingStore::~RecordingStore()
{
    m_control->Reset();
}

std::wstring RecordingStore::Path()
{
    return GetExecutableDirectory() + L"recording_store.dll";
}

FARPROC RecordingStore::Entry(const char* name) const
{
    return GetProcAddress(TheLibrary(), name);
}

void RecordingStore::Reset()
{
    m_control->Reset();
}

void RecordingStore::AddStore(std::string_view name, const StoreProps& props)
{
    Require(m_control->AddStore(Name(name).c_str()), name);
    SetProps(name, props);
}

void RecordingStore::SetDefaultStore(std::string_view store)
{
    Require(m_control->SetDefaultStore(Name(store).c_str()), store);
}

void RecordingStore::AddIdentity(const StoreProps& props)
{
    Require(m_control->AddIdentity(), "identity");
    SetProps("identity", props);
}

void RecordingStore::AddBook()
{
    Require(m_control->AddBook(), "book");
    SetProps("book",
             StoreProps()
                 .Bytes(PR_DEF_CREATE_MAILUSER, {'U', 's', 'e', 'r'})
                 .Bytes(PR_DEF_CREATE_DL, {'L', 'i', 's', 't'}));
}

void RecordingStore::AddBookEntry(std::string_view name, const StoreProps& props, ULONG objectType)
{
    Require(m_control->AddBookEntry(Name(name).c_str(), objectType), name);
    SetProps(name, props);
}

void RecordingStore::AddFolder(std::string_view name,
                               std::string_view parent,
                               std::wstring_view containerClass,
                               const StoreProps& props)
{
    Require(m_control->AddFolder(Name(name).c_str(), Name(parent).c_str()), name);
    std::wstring displayName(name.begin(), name.end());
    if (!displayName.empty() && displayName[0] >= L'a' && displayName[0] <= L'z')
        displayName[0] = static_cast<wchar_t>(displayName[0] - L'a' + L'A');
    SetProps(name, StoreProps().Text(PR_DISPLAY_NAME_W, displayName));
    if (!containerClass.empty())
        SetProps(name, StoreProps().Text(PR_CONTAINER_CLASS_W, containerClass));
    SetProps(name, props);
}

void RecordingStore::AddMessage(std::string_view name,
                                std::string_view folder,
                                const StoreProps& props,
                                bool isAssociated)
{
    Require(m_control->AddMessage(Name(name).c_str(), Name(folder).c_str(), isAssociated), name);
    SetProps(name, props);
}

ULONG RecordingStore::AddAttachment(std::string_view message, const StoreProps& props)
{
    ULONG number = 0;
    Require(m_control->AddAttachment(Name(message).c_str(), &number), message);
    SetProps(Name(message) + "#" + std::to_string(number), props);
    return number;
}

void RecordingStore::SetProps(std::string_view object, const StoreProps& props)
{
    for (StoreProps::Item item : props.m_items)
    {
        SPropValue value = {};
        value.ulPropTag = item.tag;
        std::vector<wchar_t*> texts;
        std::vector<SBinary> binaries;
        if (!item.object.empty())
            item.bytes = {EntryIdOf(item.object)};
        switch (PROP_TYPE(item.tag))
        {
        case PT_UNICODE:
            value.Value.lpszW = reinterpret_cast<wchar_t*>(item.bytes.at(0).data());
            break;
        case PT_STRING8:
            value.Value.lpszA = reinterpret_cast<char*>(item.bytes.at(0).data());
            break;
        case PT_BINARY:
            value.Value.bin = View(item.bytes.at(0));
            break;
        case PT_CLSID:
            value.Value.lpguid = reinterpret_cast<GUID*>(item.bytes.at(0).data());
            break;
        case PT_MV_UNICODE:
            for (std::vector<BYTE>& text : item.bytes)
                texts.push_back(reinterpret_cast<wchar_t*>(text.data()));
            value.Value.MVszW = {static_cast<ULONG>(texts.size()), texts.data()};
            break;
        case PT_MV_BINARY:
            for (std::vector<BYTE>& binary : item.bytes)
                binaries.push_back(View(binary));
            value.Value.MVbin = {static_cast<ULONG>(binaries.size()), binaries.data()};
            break;
        case PT_MV_LONG:
            value.Value.MVl = {static_cast<ULONG>(item.bytes.at(0).size() / sizeof(LONG)),
                               reinterpret_cast<LONG*>(item.bytes.at(0).data())};
            break;
        default:
            std::memcpy(&value.Value, &item.number, sizeof item.number);
        }
        Require(m_control->SetProps(Name(object).c_str(), 1, &value), object);
    }
}

void RecordingStore::RemoveProp(std::string_view object, ULONG tag)
{
    Require(m_control->RemoveProp(Name(object).c_str(), tag), object);
}

void RecordingStore::Remove(std::string_view object)
{
    Require(m_control->Remove(Name(object).c_str()), object);
}

void RecordingStore::SetReceiveFolder(std::wstring_view messageClass, std::string_view folder)
{
    Require(m_control->SetReceiveFolder(std::wstring(messageClass).c_str(), Name(folder).c_str()),
            folder);
}

void RecordingStore::AddUsualFolders()
{
    constexpr ULONG kSubtree = 0x35E00102;     // PR_IPM_SUBTREE_ENTRYID
    constexpr ULONG kWastebasket = 0x35E30102; // PR_IPM_WASTEBASKET_ENTRYID
    constexpr ULONG kAppointment = 0x36D00102; // PR_IPM_APPOINTMENT_ENTRYID
    constexpr ULONG kContact = 0x36D10102;     // PR_IPM_CONTACT_ENTRYID
    AddFolder("subtree", "root");
    AddFolder("inbox", "subtree", L"IPF.Note");
    AddFolder("contacts", "subtree", L"IPF.Contact");
    AddFolder("calendar", "subtree", L"IPF.Appointment");
    AddFolder("wastebasket", "subtree");
    SetReceiveFolder(L"", "inbox");
    SetProps("store", StoreProps().Entry(kSubtree, "subtree").Entry(kWastebasket, "wastebasket"));
    for (const char* const object : {"root", "inbox"})
        SetProps(object, StoreProps().Entry(kContact, "contacts").Entry(kAppointment, "calendar"));
}

ULONG RecordingStore::NameProperty(const GUID& set, LONG number)
{
    MAPINAMEID name = {};
    GUID copy = set;
    name.lpguid = &copy;
    name.ulKind = MNID_ID;
    name.Kind.lID = number;
    return m_control->NameProperty(&name);
}

ULONG RecordingStore::NameProperty(const GUID& set, std::wstring_view text)
{
    MAPINAMEID name = {};
    GUID copy = set;
    std::wstring textCopy(text);
    name.lpguid = &copy;
    name.ulKind = MNID_STRING;
    name.Kind.lpwstrName = textCopy.data();
    return m_control->NameProperty(&name);
}

void RecordingStore::SetEntryId(std::string_view object, const std::vector<BYTE>& entryId)
{
    Require(m_control->SetEntryId(
                Name(object).c_str(), static_cast<ULONG>(entryId.size()), entryId.data()),
            object);
}

void RecordingStore::SetRowEntryId(std::string_view message, const std::vector<BYTE>& entryId)
{
    Require(m_control->SetRowEntryId(
                Name(message).c_str(), static_cast<ULONG>(entryId.size()), entryId.data()),
            message);
}

std::vector<BYTE> RecordingStore::EntryIdOf(std::string_view object) const
{
    BYTE bytes[kLongestStoreEntryId] = {};
    ULONG size = 0;
    Require(m_control->EntryIdOf(Name(object).c_str(), &size, bytes), object);
    return CopyBytes(bytes, size);
}

void RecordingStore::SetClock(std::uint64_t fileTime, std::uint64_t step)
{
    m_control->SetClock(fileTime, step);
}

void RecordingStore::SetTimes(std::string_view object,
                              std::uint64_t created,
                              std::uint64_t modified)
{
    Require(m_control->SetTimes(Name(object).c_str(), created, modified), object);
}

std::vector<std::string> RecordingStore::PropsOf(std::string_view object) const
{
    std::vector<std::string> lines;
    Require(m_control->PropsOf(Name(object).c_str(), Collect, &lines), object);
    return lines;
}

std::vector<std::string> RecordingStore::ChildrenOf(std::string_view object) const
{
    std::vector<std::string> names;
    Require(m_control->ChildrenOf(Name(object).c_str(), Collect, &names), object);
    return names;
}

bool RecordingStore::Exists(std::string_view object) const
{
    return m_control->Exists(Name(object).c_str());
}

std::vector<RecordedStoreCall> RecordingStore::Record() const
{
    std::vector<RecordedStoreCall> calls;
    m_control->Record(
        [](void* context, const char* text, unsigned kind, unsigned number, HRESULT result) {
            static_cast<std::vector<RecordedStoreCall>*>(context)->push_back(
                {text, static_cast<StoreCallKind>(kind), number, result});
        },
        &calls);
    return calls;
}

std::vector<std::string> RecordingStore::Calls(unsigned kinds) const
{
    std::vector<std::string> lines;
    for (RecordedStoreCall& call : Record())
        if (call.kind & kinds)
            lines.push_back(std::move(call.text));
    return lines;
}

unsigned RecordingStore::FailableCalls() const
{
    return m_control->Books().failableCalls;
}

unsigned RecordingStore::SpoiledOutputs() const
{
    return m_control->Books().spoiledOutputs;
}

void RecordingStore::ClearRecord()
{
    m_control->ClearRecord();
}

void RecordingStore::Fail(unsigned number, StoreFault fault)
{
    m_control->Fail(number, fault);
}

void RecordingStore::FailNext(std::string_view line, StoreFault fault)
{
    m_control->FailNext(Name(line).c_str(), fault);
}

unsigned RecordingStore::LiveObjects() const
{
    return m_control->Books().liveObjects;
}
unsigned RecordingStore::LiveBuffers() const
{
    return m_control->Books().liveBuffers;
}
unsigned RecordingStore::InitialisedTimes() const
{
    return m_control->Books().initialisedTimes;
}
unsigned RecordingStore::RefusedFrees() const
{
    return m_control->Books().refusedFrees;
}

std::vector<std::string> RecordingStore::Violations() const
{
    std::vector<std::string> texts;
    m_control->Violations(Collect, &texts);
    return texts;
}

std::vector<std::string> RecordingStore::Leaks() const
{
    std::vector<std::string> texts;
    m_control->Leaks(Collect, &texts);
    return texts;
}

bool RecordingStore::IsClean() const
{
    return Complaints().empty();
}

std::string RecordingStore::Complaints() const
{
    std::string text;
    for (const std::string& leak : Leaks())
        text += "leaked: " + leak + "\n";
    for (const std::string& violation : Violations())
        text += violation + "\n";
    if (const unsigned times = InitialisedTimes())
        text += "still initialised: " + std::to_string(times) + "\n";
    return text;
}
