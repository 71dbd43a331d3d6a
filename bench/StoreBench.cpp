// The table engine over the embedded message store: loading and walking folders of 1,000 to 100,000
// messages, beside the bare calls that this cannot do without, and the memory of a loaded table.
// Each line shows a measured value and its target. Ratios are those of processor time within one
// run, medians of interleaved rounds, so that other programs on the machine matter little; what the
// system does in other processes, as Wine's server does for file locks, is in the plain times
// alone. Ends with 0 also where a target is missed.
//
//     store_bench [LARGEST]     the number of messages in the largest folder
//
// Fills a store of its own in the temporary folder; while it runs, the user's setting for the
// store's place names that one.
#include "automation/ClassObjects.h"
#include "localstore/StoreLoad.h"
#include "localstore/StorePath.h"
#include "localstore/StoreSchema.h"
#include "outlook/store/ContentTable.h"
#include "outlook/store/MAPIProxcy.h"
#include "outlook/store/MapiMemory.h"
#include "outlook/store/TagArray.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "service/PathHelpers.h"
#include "support/ScopedRegistryValue.h"
#include "support/ScratchDirectory.h"
#include "support/TestModule.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <utility>
#include <vector>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr ULONG kSizes[] = {1'000, 10'000, 100'000};
constexpr int kRounds = 5;
constexpr ULONG kUnicode = MAPI_UNICODE;
constexpr ULONG kReadFlags = 2;

// As many columns as an appointment has, of the usual types.
constexpr ULONG kColumns[] = {PR_LAST_MODIFICATION_TIME,
                              PR_SUBJECT_W,
                              PR_LOCATION_W,
                              PR_BODY_W,
                              PR_START_DATE,
                              PR_END_DATE,
                              PR_IMPORTANCE,
                              PR_SENSITIVITY,
                              PR_MESSAGE_CLASS_W,
                              PR_CONVERSATION_TOPIC_W,
                              PR_SENDER_NAME_W,
                              PR_SENT_REPRESENTING_NAME_W,
                              PR_DISPLAY_TO_W,
                              PR_NORMALIZED_SUBJECT_W,
                              PR_CLIENT_SUBMIT_TIME,
                              PR_MESSAGE_DELIVERY_TIME};
constexpr ULONG kListColumns[] = {PR_ENTRYID, PR_MESSAGE_CLASS_W, PR_LAST_MODIFICATION_TIME};

void Require(HRESULT result, const char* what)
{
    if (FAILED(result))
    {
        char text[100];
        std::snprintf(text, sizeof text, "%s: %08lX", what, static_cast<unsigned long>(result));
        throw std::runtime_error(text);
    }
}

// What work took, in milliseconds.
struct Times
{
    double elapsed = 0.0;
    double processor = 0.0; // of this process alone, in steps of about 10 ms
};

double ProcessorMilliseconds()
{
    FILETIME unused{};
    FILETIME kernel{};
    FILETIME user{};
    GetProcessTimes(GetCurrentProcess(), &unused, &unused, &kernel, &user);
    const auto ticks = [](FILETIME time) {
        return static_cast<double>(
            ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart);
    };
    return (ticks(kernel) + ticks(user)) / 10'000.0;
}

Times TimesOf(const std::function<void()>& work)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    const double processorStart = ProcessorMilliseconds();
    work();
    return {std::chrono::duration<double, std::milli>(Clock::now() - start).count(),
            ProcessorMilliseconds() - processorStart};
}

double MedianOf(std::vector<double> values)
{
    std::ranges::sort(values);
    return values[values.size() / 2];
}

void PrintRow(const std::string& what, double value, const char* unit, double most = 0.0)
{
    std::printf("%-58s %9.2f %-3s", what.c_str(), value, unit);
    if (most != 0.0)
        std::printf(" %9.2f   %s", most, value <= most ? "pass" : "MISS");
    std::printf("\n");
    std::fflush(stdout);
}

// --- The store ---------------------------------------------------------------------------------

std::string FolderName(ULONG count)
{
    return "Folder of " + std::to_string(count);
}

// Fills the store with a folder of appointments for each size, in one transaction.
void FillStore(const ScratchDirectory& scratch, const std::vector<ULONG>& sizes)
{
    const std::wstring path = scratch.File(L"store.json");
    {
        std::ofstream text(std::filesystem::path(path), std::ios::binary);
        text << R"({"format": "PimStoreBridge store", "version": 1, "root": {"folders": [)";
        const char* folderSeparator = "";
        for (const ULONG size : sizes)
        {
            text << std::exchange(folderSeparator, ",") << "\n{\"name\": \"" << FolderName(size)
                 << "\", \"messages\": [";
            for (ULONG i = 0; i < size; ++i)
                text << (i ? "," : "") << R"({"properties": [)"
                     << R"({"tag": "0x001A001F", "value": "IPM.Appointment"},)"
                     << R"({"tag": "0x0037001F", "value": "Planning )" << i << R"("},)"
                     << R"({"tag": "0x000D001F", "value": "Room )" << i << R"("},)"
                     << R"({"tag": "0x1000001F", "value": "Bring the plan and list )" << i
                     << R"("},)"
                     << R"({"tag": "0x00600040", "value": "2024-05-01T10:30:00Z"},)"
                     << R"({"tag": "0x00610040", "value": "2024-05-01T11:30:00Z"},)"
                     << R"({"tag": "0x00170003", "value": 1}]})" << '\n';
            text << "]}";
        }
        text << "]}}";
    }
    JsonFile file;
    DWORD reason = 0;
    if (!file.Open(path, reason))
        throw std::runtime_error("the store's contents cannot be read");
    Database database = OpenStore(StorePath());
    // A run that was killed may have left contents under this name.
    LoadStore(database, file, LoadMode::Replace);
}

class BenchStore
{
  public:
    BenchStore()
    {
        auto proxy = std::make_unique<CMAPIProxcy>();
        constexpr ULONG kNoCoInit = 8;
        MAPIINIT_0 init = {0, kNoCoInit};
        if (!proxy->Load(ProgramDirectory() + L"PimLocalStore.dll", &init))
            throw std::runtime_error("PimLocalStore.dll does not load");
        helper = std::make_unique<CMAPIHelper>(std::move(proxy));
        CNProxcy& calls = helper->Proxy();
        constexpr ULONG kLogon = MAPI_NEW_SESSION | MAPI_EXTENDED | MAPI_USE_DEFAULT;
        Require(calls.MAPILogonEx(0, nullptr, nullptr, kLogon, m_session.GetAddressOf()), "logon");
        ComPtr<IMAPITable> stores;
        Require(m_session->GetMsgStoresTable(0, stores.GetAddressOf()), "stores");
        constexpr ULONG kId[] = {PR_ENTRYID};
        TagArray tags(kId);
        SRowSet* delivered = nullptr;
        Require(calls.HrQueryAllRows(stores.Get(), tags.Get(), nullptr, nullptr, 0, &delivered),
                "rows of stores");
        const MapiRowSet rows = AdoptMapiRowSet(delivered, calls);
        const SBinary& id = rows->aRow[0].lpProps[0].Value.bin;
        constexpr ULONG kWrite = 4; // MDB_WRITE
        Require(m_session->OpenMsgStore(0,
                                        id.cb,
                                        reinterpret_cast<ENTRYID*>(id.lpb),
                                        nullptr,
                                        kWrite,
                                        m_store.GetAddressOf()),
                "store");
        ULONG type = 0;
        ComPtr<IUnknown> root;
        Require(
            m_store->OpenEntry(0, nullptr, nullptr, MAPI_BEST_ACCESS, &type, root.GetAddressOf()),
            "root");
        m_root = static_cast<IMAPIFolder*>(root.Get());
    }
    ~BenchStore()
    {
        helper->Live().DetachAll();
        m_root.Reset();
        m_store.Reset();
        m_session.Reset();
    }
    BenchStore(const BenchStore&) = delete;
    BenchStore& operator=(const BenchStore&) = delete;

    ComPtr<IMAPIFolder> Folder(ULONG count)
    {
        ComPtr<IMAPIFolder> folder;
        std::string name = FolderName(count);
        Require(m_root->CreateFolder(FOLDER_GENERIC,
                                     reinterpret_cast<LPTSTR>(name.data()),
                                     nullptr,
                                     nullptr,
                                     OPEN_IF_EXISTS,
                                     folder.GetAddressOf()),
                "folder");
        return folder;
    }

    std::unique_ptr<CMAPIHelper> helper;

  private:
    static std::wstring ProgramDirectory()
    {
        wchar_t path[MAX_PATH] = {};
        GetModuleFileNameW(nullptr, path, MAX_PATH);
        return std::filesystem::path(path).parent_path().wstring() + L'\\';
    }
    ComPtr<IMAPISession> m_session;
    ComPtr<IMsgStore> m_store;
    ComPtr<IMAPIFolder> m_root;
};

// --- The work and its peer ---------------------------------------------------------------------

class BenchTable : public CContentTable
{
  public:
    using CContentTable::CContentTable;
    using CContentTable::LoadFolder;

  protected:
    bool IsWantedRow(const PropertyView& row) override
    {
        const wchar_t* const text = row.Text(1);
        return text && std::wstring_view(text) == L"IPM.Appointment";
    }
    std::vector<ULONG> GetPropertyNames() override
    {
        return {std::begin(kColumns), std::end(kColumns)};
    }
    ComPtr<INEntityItem> CreateItem() override { return NewItem(CLSID_NAppointment); }
    PropertyArray ReadItem(INEntityItem&, bool) override { return {}; }
    void FillItem(INEntityItem& item, const PropertyView& values) override
    {
        const auto appointment = QueryItem<INAppointment>(&item);
        if (const FILETIME* const time = values.Time(0))
            item.put_LastModificationTime(CMAPIHelper::FileTimeToDate(*time));
        if (const wchar_t* const text = values.Text(1))
            appointment->put_Subject(Bstr(text).Get());
        if (const wchar_t* const text = values.Text(2))
            appointment->put_Place(Bstr(text).Get());
        if (const wchar_t* const text = values.Text(3))
            appointment->put_Description(Bstr(text).Get());
        if (const FILETIME* const time = values.Time(4))
            appointment->put_StartTime(CMAPIHelper::FileTimeToDate(*time));
        if (const FILETIME* const time = values.Time(5))
            appointment->put_EndTime(CMAPIHelper::FileTimeToDate(*time));
        appointment->put_Reminder(0xFFFFFFFF);
        appointment->put_IsBusy(VARIANT_TRUE);
    }
};

// How many items came.
ULONG LoadAndWalk(BenchStore& store, IMAPIFolder& folder)
{
    BenchTable table(&folder, store.helper.get());
    table.GetItemIDs();
    table.ResetItem();
    ULONG count = 0;
    for (;; ++count)
    {
        table.GetNextItem();
        ComPtr<INEntityItem> item;
        table.GetCurrentItem(item.GetAddressOf());
        if (!item)
            return count;
    }
}

// The same calls of the store, and one bare creation per item.
ULONG BareCalls(BenchStore& store, IMAPIFolder& folder)
{
    CNProxcy& proxy = store.helper->Proxy();
    ComPtr<IMAPITable> table;
    Require(folder.GetContentsTable(kUnicode, table.GetAddressOf()), "contents");
    TagArray listColumns(kListColumns);
    Require(table->SetColumns(listColumns.Get(), 0), "columns");
    ULONG count = 0;
    Require(table->GetRowCount(0, &count), "count");
    SRowSet* delivered = nullptr;
    Require(table->QueryRows(static_cast<LONG>(count), 0, &delivered), "rows");
    const MapiRowSet rows = AdoptMapiRowSet(delivered, proxy);
    TagArray columns(kColumns);
    for (ULONG i = 0; i < rows->cRows; ++i)
    {
        const SBinary& id = rows->aRow[i].lpProps[0].Value.bin;
        ULONG type = 0;
        ComPtr<IUnknown> object;
        Require(folder.OpenEntry(id.cb,
                                 reinterpret_cast<ENTRYID*>(id.lpb),
                                 nullptr,
                                 kReadFlags,
                                 &type,
                                 object.GetAddressOf()),
                "message");
        ULONG valueCount = 0;
        SPropValue* values = nullptr;
        Require(static_cast<IMAPIProp*>(object.Get())
                    ->GetProps(columns.Get(), kUnicode, &valueCount, &values),
                "values");
        proxy.FreeBuffer(values);
        ComPtr<INEntityItem> item;
        CoCreateInstance(CLSID_NAppointment,
                         nullptr,
                         CLSCTX_ALL,
                         IID_INEntityItem,
                         reinterpret_cast<void**>(item.GetAddressOf()));
    }
    return rows->cRows;
}

// --- Memory ------------------------------------------------------------------------------------

// Every block in use of every heap of the process, with the heap's own part of it.
double MemoryInUse()
{
    constexpr SIZE_T kBlockOverhead = 16; // of a 64-bit process
    HANDLE heaps[64];
    const DWORD count = std::min<DWORD>(GetProcessHeaps(std::size(heaps), heaps), std::size(heaps));
    SIZE_T bytes = 0;
    for (DWORD i = 0; i < count; ++i)
    {
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heaps[i], &entry))
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)
                bytes += entry.cbData + kBlockOverhead;
    }
    return static_cast<double>(bytes);
}

void PrintMemory(const std::string& what,
                 ULONG entries,
                 double most,
                 const std::function<void()>& load)
{
    const double before = MemoryInUse();
    load();
    PrintRow("memory of " + what, (MemoryInUse() - before) / entries, "B", most);
}

// An entry ID as Outlook makes them, 70 bytes, in text.
std::wstring LongEntryID(const wchar_t* kind, ULONG number)
{
    wchar_t tail[20];
    std::swprintf(tail, 20, L"%ls%08lX", kind, number);
    return std::wstring(140 - std::wcslen(tail), L'0') + tail;
}

void MeasureMemory(BenchStore& store,
                   const std::vector<ComPtr<IMAPIFolder>>& folders,
                   ULONG count,
                   ULONG all)
{
    std::optional<BenchTable> table;
    PrintMemory("one appointment", count, 600.0, [&] {
        table.emplace(folders.back().Get(), store.helper.get()).GetItemIDs();
    });
    table.reset();
    PrintMemory("one contact, over all folders", all, 900.0, [&] {
        table.emplace(nullptr, store.helper.get());
        for (ULONG i = 0; i < folders.size(); ++i)
            table->LoadFolder(*folders[i].Get(), LongEntryID(L"F", i));
    });
    table.reset();
    std::optional<EntryList> list;
    PrintMemory("one appointment with IDs of 70 bytes", count, 600.0, [&] {
        list.emplace();
        for (ULONG i = 0; i < count; ++i)
            list->Append({}, LongEntryID(L"A", i), LongEntryID(L"A", i), 0.0);
    });
    list.reset();
    PrintMemory("one contact with two such IDs, in folders", count, 900.0, [&] {
        list.emplace();
        for (ULONG i = 0; i < count; ++i)
            list->Append(LongEntryID(L"F", i % 5), LongEntryID(L"A", i), LongEntryID(L"B", i), 0.0);
    });
}

// --- Time --------------------------------------------------------------------------------------

// So many in each measurement that the steps of the processor time matter little.
constexpr ULONG kLeastItems = 10'000;

// One value for each round, by item.
struct Measured
{
    void Add(const Times& times, ULONG items)
    {
        elapsedMicroseconds.push_back(times.elapsed * 1000.0 / items);
        processorMicroseconds.push_back(times.processor * 1000.0 / items);
    }
    std::vector<double> elapsedMicroseconds;
    std::vector<double> processorMicroseconds;
};

void MeasureAll(const ScratchDirectory& scratch, ULONG largest)
{
    std::vector<ULONG> sizes;
    std::ranges::copy_if(
        kSizes, std::back_inserter(sizes), [=](ULONG size) { return size <= largest; });
    if (sizes.empty())
        throw std::runtime_error("the smallest folder has 1000 messages");
    const ULONG all = std::accumulate(sizes.begin(), sizes.end(), ULONG{0});
    const Times filling = TimesOf([&] { FillStore(scratch, sizes); });
    PrintRow("filling the store, each message", filling.elapsed * 1000.0 / all, "us");

    BenchStore store;
    std::vector<ComPtr<IMAPIFolder>> folders;
    std::ranges::transform(
        sizes, std::back_inserter(folders), [&](ULONG size) { return store.Folder(size); });

    std::vector<Measured> own(sizes.size());
    std::vector<Measured> bare(sizes.size());
    for (int round = 0; round <= kRounds; ++round)
        for (std::size_t i = 0; i < sizes.size(); ++i)
        {
            const auto measure = [&](Measured& measured, auto& work) {
                const ULONG runs = std::max(kLeastItems / sizes[i], ULONG{1});
                ULONG came = 0;
                const Times times = TimesOf([&] {
                    for (ULONG run = 0; run < runs; ++run)
                        came += work(store, *folders[i].Get());
                });
                if (came != runs * sizes[i])
                    throw std::runtime_error("not every message came");
                // The first round warms up.
                if (round > 0)
                    measured.Add(times, came);
            };
            measure(own[i], LoadAndWalk);
            measure(bare[i], BareCalls);
        }
    for (std::size_t i = 0; i < sizes.size(); ++i)
    {
        const std::string size = std::to_string(sizes[i]);
        PrintRow("bare calls and creations for " + size + ", each item",
                 MedianOf(bare[i].elapsedMicroseconds),
                 "us");
        PrintRow("loading and walking " + size + ", each item",
                 MedianOf(own[i].elapsedMicroseconds),
                 "us");
        const double processor = MedianOf(own[i].processorMicroseconds);
        PrintRow("  of which this process works", processor, "us");
        PrintRow("  beside the bare ones",
                 processor / MedianOf(bare[i].processorMicroseconds),
                 "x",
                 1.5);
        if (i > 0)
            PrintRow("  beside each item of " + std::to_string(sizes[0]),
                     processor / MedianOf(own[0].processorMicroseconds),
                     "x",
                     1.3);
    }
    MeasureMemory(
        store, folders, sizes.back(), std::accumulate(sizes.begin(), sizes.end(), ULONG{0}));
}
} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (FAILED(CoInitialize(nullptr)))
        return 2;
    int status = 0;
    try
    {
        TestModule module;
        ClassObjects classObjects;
        Require(classObjects.Register(GetObjectMap(), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE),
                "class objects");
        const ScratchDirectory folder;
        ScopedRegistryValue place(HKEY_CURRENT_USER, kSettingsKey, kStoreValue);
        place.Set(folder.File(L"store.db"));
        std::printf("%-58s %12s %10s\n", "", "measured", "target");
        MeasureAll(folder, argc > 1 ? std::wcstoul(argv[1], nullptr, 10) : kSizes[2]);
    }
    catch (const std::exception& failure)
    {
        std::fprintf(stderr, "store_bench: %s\n", failure.what());
        status = 1;
    }
    CoUninitialize();
    return status;
}
