// The table engine over the embedded message store: loading and walking folders of 1,000 to 100,000
// messages, beside the bare calls that this cannot do without, and the memory of a loaded table.
// Each line shows a measured value and its target; see StoreMeasure.h. Ends with 0 also where a
// target is missed.
//
//     store_bench [LARGEST]     the number of messages in the largest folder
//
// While it runs, the user's setting for the store's place names a store of its own.
#include "BenchStore.h"
#include "StoreMeasure.h"

#include "outlook/store/ContentTable.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <vector>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr ULONG kSizes[] = {1'000, 10'000, 100'000};

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

// The same calls of the store.
ULONG BareCalls(BenchStore& store, IMAPIFolder& folder)
{
    CNProxcy& proxy = store.helper->Proxy();
    ComPtr<IMAPITable> table;
    Require(folder.GetContentsTable(MAPI_UNICODE, table.GetAddressOf()), "contents");
    const MapiRowSet rows = ReadRows(*table.Get(), kListColumns, proxy);
    for (ULONG i = 0; i < rows->cRows; ++i)
    {
        const ComPtr<IUnknown> object = OpenToRead(folder, rows->aRow[i].lpProps[0].Value.bin);
        ReadAndFree(*static_cast<IMAPIProp*>(object.Get()), kColumns, proxy);
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

std::string PropertiesOf(ULONG i)
{
    const std::string number = std::to_string(i);
    return R"({"tag": "0x001A001F", "value": "IPM.Appointment"},)"
           R"({"tag": "0x0037001F", "value": "Planning )" +
           number + R"("},{"tag": "0x000D001F", "value": "Room )" + number +
           R"("},{"tag": "0x1000001F", "value": "Bring the plan and list )" + number +
           R"("},{"tag": "0x00600040", "value": "2024-05-01T10:30:00Z"},)"
           R"({"tag": "0x00610040", "value": "2024-05-01T11:30:00Z"},)"
           R"({"tag": "0x00170003", "value": 1})";
}

void MeasureAll(const ScratchDirectory& scratch, ULONG largest)
{
    std::vector<ULONG> sizes;
    std::ranges::copy_if(
        kSizes, std::back_inserter(sizes), [=](ULONG size) { return size <= largest; });
    if (sizes.empty())
        throw std::runtime_error("the smallest folder has 1000 messages");
    FillStore(scratch, sizes, PropertiesOf);

    BenchStore store;
    std::vector<ComPtr<IMAPIFolder>> folders;
    std::vector<FolderWork> works;
    for (const ULONG size : sizes)
    {
        const ComPtr<IMAPIFolder> folder = folders.emplace_back(store.Folder(size));
        works.push_back({size,
                         [&store, folder] { return LoadAndWalk(store, *folder.Get()); },
                         [&store, folder] { return BareCalls(store, *folder.Get()); },
                         [size] { return CreateItems(CLSID_NAppointment, size); }});
    }
    MeasureFolders("loading and walking", works, 1.5, 1.3);
    MeasureMemory(
        store, folders, sizes.back(), std::accumulate(sizes.begin(), sizes.end(), ULONG{0}));
}
} // namespace

int wmain(int argc, wchar_t** argv)
{
    const ULONG largest = argc > 1 ? std::wcstoul(argv[1], nullptr, 10) : kSizes[2];
    return RunOverStore("store_bench", [largest](const ScratchDirectory& scratch) {
        MeasureAll(scratch, largest);
    });
}
