// Many items through add, read, update and delete on every type of enumerator of every back end.
// Each item is checked on its way; at the end the stores are what they were, and so are the
// server's memory and handles.
#include "endtoend/CalendarClient.h"
#include "endtoend/CalendarFolder.h"
#include "endtoend/EveryKind.h"
#include "endtoend/MessageStore.h"
#include "endtoend/PlainServer.h"
#include "endtoend/ProcessUsage.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <set>

using Microsoft::WRL::ComPtr;
using std::chrono::steady_clock;

namespace
{
// The first items let the runtime's own tables grow, and make what a store keeps for good: names
// of properties, an empty calendar file.
constexpr int kWarmUpItems = 20;
constexpr int kNumbers = 25; // that many colours a category can have
// Each change of a category writes the whole list; 10,000 at once would be writes of 150 GB.
constexpr int kMostCategories = 1000;

// The text of a time zone grows with each write where there is none.
constexpr char kOneEventInAZone[] =
    "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:N1\r\nSUMMARY:Task 1\r\n"
    "DTSTAMP:20240102T080000Z\r\nDTSTART;TZID=Oslo:20240108T100000\r\n"
    "DTEND;TZID=Oslo:20240108T110000\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";

// The same event as the server writes it: fields in its own order, zones in quotes, local times.
constexpr char kTheEventAsSaved[] =
    "BEGIN:VEVENT\r\nDTSTAMP:20240102T080000\r\n"
    "DTSTART;TZID=\"Oslo\":20240108T100000\r\nDTEND;TZID=\"Oslo\":20240108T110000\r\n"
    "SUMMARY:Task 1\r\nUID:N1\r\nEND:VEVENT\r\n";

int CountFrom(const char* variable)
{
    const char* const text = std::getenv(variable);
    return text ? std::atoi(text) : 300;
}

int ItemsOf(const Kind& kind)
{
    return CountFrom(kind.isInFiles ? "PIM_SOAK_FILE_ITEMS" : "PIM_SOAK_ITEMS");
}

// So many are stored at once; further ones follow when those are deleted.
int RoundOf(const Kind& kind, int items)
{
    return kind.type == ContactCategory ? std::min(items, kMostCategories) : items;
}

// One run of a number of items through the enumerators of a kind. The steps are taken in their
// order; each ends with the first failure.
class Soak
{
  public:
    Soak(const Kind& kind, int items) : m_kind(kind), m_items(items)
    {
        m_service = MakeInServer<INPersonalInformationService>(CLSID_NPersonalInformationService);
    }
    ~Soak() { EXPECT_EQ(S_OK, m_service->StopService()); }
    Soak(const Soak&) = delete;
    Soak& operator=(const Soak&) = delete;

    void Run()
    {
        ASSERT_EQ(S_OK, m_service->StartService(Bstr(m_kind.backEnd).Get()));
        for (const auto step :
             {&Soak::AddAll, &Soak::FindAndChangeAll, &Soak::CheckChanges, &Soak::DeleteAll})
        {
            ASSERT_NO_FATAL_FAILURE((this->*step)());
        }
    }

  private:
    // What is written, and what is read then: some types keep no number, or only the first.
    static ItemValues Written(const wchar_t* state, int index, int number)
    {
        return {state + std::to_wstring(index) + L" \u65e5", number % kNumbers};
    }
    static ItemValues WrittenFirst(int index) { return Written(L"Added ", index, index); }
    static ItemValues WrittenThen(int index) { return Written(L"Changed ", index, index + 1); }
    ItemValues Added(int index) const
    {
        ItemValues values = WrittenFirst(index);
        if (m_kind.item.numberIs == NumberIs::NotStored)
            values.number = 0;
        return values;
    }
    ItemValues Changed(int index) const
    {
        ItemValues values = WrittenThen(index);
        if (m_kind.item.numberIs != NumberIs::Stored)
            values.number = Added(index).number;
        return values;
    }

    // A new enumerator, loaded and before its first item.
    void Open(ComPtr<INEnumerator>& enumerator) const
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        ASSERT_EQ(S_OK, m_service->GetEnumerator(m_kind.type, enumerator.GetAddressOf()));
        ASSERT_TRUE(enumerator);
        ASSERT_EQ(S_OK, enumerator->ResetItem(&done));
        ASSERT_EQ(VARIANT_TRUE, done);
    }

    void AddAll()
    {
        ComPtr<INEnumerator> enumerator;
        ASSERT_NO_FATAL_FAILURE(Open(enumerator));
        for (int i = 0; i < m_items; ++i)
        {
            const auto item = MakeInServer<INEntityItem>(m_kind.item.classID);
            ASSERT_TRUE(item);
            m_kind.item.write(*item.Get(), WrittenFirst(i));
            Bstr id;
            ASSERT_EQ(S_OK, enumerator->AddItem(item.Get(), id.Put())) << i;
            m_ids.push_back(TextOf(id.Get()));
        }
        ASSERT_EQ(m_ids.size(), std::set<std::wstring>(m_ids.begin(), m_ids.end()).size());
    }

    void FindAndChangeAll()
    {
        ComPtr<INEnumerator> enumerator;
        ASSERT_NO_FATAL_FAILURE(Open(enumerator));
        for (int i = 0; i < m_items; ++i)
        {
            ComPtr<INEntityItem> item;
            ASSERT_NO_FATAL_FAILURE(Find(*enumerator.Get(), i, Added(i), item));
            m_kind.item.write(*item.Get(), WrittenThen(i));
            VARIANT_BOOL done = VARIANT_FALSE;
            ASSERT_EQ(S_OK, enumerator->UpdateItem(item.Get(), &done)) << i;
            ASSERT_EQ(VARIANT_TRUE, done) << i;
        }
    }

    void Find(INEnumerator& enumerator,
              int index,
              const ItemValues& values,
              ComPtr<INEntityItem>& item) const
    {
        ASSERT_EQ(S_OK, enumerator.GetItemByID(Bstr(m_ids[index]).Get(), item.GetAddressOf()));
        ASSERT_EQ(values, m_kind.item.read(*item.Get()));
        Bstr id;
        ASSERT_EQ(S_OK, item->get_EntityID(id.Put()));
        ASSERT_EQ(m_ids[index], TextOf(id.Get()));
    }

    void CheckChanges()
    {
        ComPtr<INEnumerator> enumerator;
        ASSERT_NO_FATAL_FAILURE(Open(enumerator));
        if (m_kind.staysInTheList)
            return Walk(*enumerator.Get(), m_items);
        for (int i = 0; i < m_items; ++i)
        {
            ComPtr<INEntityItem> item;
            ASSERT_NO_FATAL_FAILURE(Find(*enumerator.Get(), i, Changed(i), item));
        }
    }

    // The stored item, then as many of the changed ones, then the end.
    void Walk(INEnumerator& enumerator, int changed) const
    {
        ComPtr<INEntityItem> item;
        ASSERT_EQ(S_OK, enumerator.GetNextItem(item.GetAddressOf()));
        ASSERT_EQ(m_kind.stored, m_kind.item.read(*item.Get()).name);
        for (int i = 0; i < changed; ++i)
        {
            ASSERT_EQ(S_OK, enumerator.GetNextItem(item.ReleaseAndGetAddressOf())) << i;
            ASSERT_EQ(Changed(i), m_kind.item.read(*item.Get()));
        }
        ASSERT_EQ(E_FAIL, enumerator.GetNextItem(item.ReleaseAndGetAddressOf()));
    }

    void DeleteAll()
    {
        ComPtr<INEnumerator> enumerator;
        ASSERT_NO_FATAL_FAILURE(Open(enumerator));
        for (int i = 0; i < m_items; ++i)
        {
            VARIANT_BOOL done = VARIANT_FALSE;
            ASSERT_EQ(S_OK, enumerator->DeleteItem(Bstr(m_ids[i]).Get(), &done)) << i;
            ASSERT_EQ(VARIANT_TRUE, done) << i;
        }
        ComPtr<INEnumerator> another;
        ASSERT_NO_FATAL_FAILURE(Open(another));
        Walk(*another.Get(), 0);
    }

    const Kind& m_kind;
    const int m_items;
    std::vector<std::wstring> m_ids; // of the added items, in their order
    ComPtr<INPersonalInformationService> m_service;
};

// A class object and an item with the interfaces that the soak uses. While they live the runtime
// goes on listening for calls to those interfaces: Wine stops with the last object of an interface,
// and waits for ever where a call to it ends at that very moment, once in some ten thousand
// objects.
class KeptInterfaces
{
  public:
    explicit KeptInterfaces(const ItemType& type) : m_item(MakeInServer<INEntityItem>(type.classID))
    {
        EXPECT_EQ(S_OK,
                  CoGetClassObject(type.classID,
                                   CLSCTX_LOCAL_SERVER,
                                   nullptr,
                                   IID_IClassFactory,
                                   reinterpret_cast<void**>(m_factory.GetAddressOf())));
        if (m_item)
            type.write(*m_item.Get(), {});
    }

  private:
    ComPtr<IClassFactory> m_factory;
    ComPtr<INEntityItem> m_item;
};

// What the runtime itself keeps of an item that it carries: counted in a server that does nothing.
ProcessGrowth KeptByTheRuntime(int objects)
{
    const PlainServer plain;
    const auto makeMany = [](int count) {
        for (int i = 0; i < count; ++i)
        {
            ComPtr<INAppointment> appointment;
            EXPECT_EQ(S_OK, MakeInServer<INEntityItem>(kPlainAppointment).As(&appointment));
        }
    };
    makeMany(kWarmUpItems);
    return SettledGrowthOver(plain.Id(), [&] { makeMany(objects); });
}

class SoakTest : public testing::TestWithParam<Kind>
{
  protected:
    static void SetUpTestSuite()
    {
        s_store = std::make_unique<MessageStore>(RecordArrays::LeftToTheRuntime);
        s_folder = std::make_unique<CalendarFolder>();
        s_kept = KeptByTheRuntime(kPlainObjects);
    }
    static void TearDownTestSuite()
    {
        s_folder.reset();
        s_store.reset();
    }
    void SetUp() override
    {
        s_store->Load(kOneItemOfEachKind);
        s_folder->Clear();
        s_folder->Write(kFile, kOneEventInAZone);
    }

    // All that stands in the stores.
    using Contents = std::map<std::wstring, std::string>;
    static Contents Stored()
    {
        Contents stored = {{kStore, s_store->Dump()}};
        // A list of categories is one message: the time of its last change moves.
        if (GetParam().type == ContactCategory)
            EraseTimesOfChange(stored.begin()->second);
        for (const auto& entry : std::filesystem::directory_iterator(s_folder->Path()))
        {
            const std::wstring name = entry.path().filename().wstring();
            stored[name] = s_folder->Read(name);
        }
        return stored;
    }
    static void EraseTimesOfChange(std::string& dump)
    {
        constexpr std::string_view kName = "\"modified\": ";
        for (std::size_t at = 0; (at = dump.find(kName, at)) != std::string::npos;)
            dump.erase(at, dump.find('\n', at) - at);
    }

    // The items that were there before the first ones that were added; files have another form
    // since they were written for the first time.
    static void ExpectKept(const Contents& loaded, const Contents& stored)
    {
        EXPECT_EQ(loaded.at(kStore), stored.at(kStore));
        EXPECT_THAT(stored.at(kFile),
                    testing::HasSubstr(GetParam().isInFiles ? kTheEventAsSaved : kOneEventInAZone));
    }

    static void ExpectLevel(const ProcessGrowth& growth, int items)
    {
        const int rounds = (items - 1) / RoundOf(GetParam(), items) + 1;
        const int objects = items * kObjectsOfAnItem + rounds * kOtherObjects;
        ProcessGrowth kept;
        kept.sharedBlocks = s_kept.sharedBlocks * objects / kPlainObjects;
        kept.sharedBytes = s_kept.sharedBytes * objects / kPlainObjects;
        ExpectNothingLeft(growth, kept, objects);
    }

    static constexpr int kPlainObjects = 100;
    static constexpr int kObjectsOfAnItem = 3; // made, found and changed, found changed
    static constexpr int kOtherObjects = 6;    // the service and five enumerators
    static constexpr wchar_t kStore[] = L"the store";
    static constexpr wchar_t kFile[] = L"Work.ics";
    static inline std::unique_ptr<MessageStore> s_store;
    static inline std::unique_ptr<CalendarFolder> s_folder;
    static inline ProcessGrowth s_kept;
};
} // namespace

TEST_P(SoakTest, LeavesStoresMemoryAndHandlesAsTheyWere)
{
    const Kind& kind = GetParam();
    // While it lives the server does.
    const auto keeper =
        MakeInServer<INPersonalInformationService>(CLSID_NPersonalInformationService);
    const KeptInterfaces keptInterfaces(kind.item);
    const Contents loaded = Stored();
    ASSERT_NO_FATAL_FAILURE(Soak(kind, kWarmUpItems).Run());
    const auto servers = RunningServers();
    ASSERT_EQ(1u, servers.size());
    const Contents stored = Stored();
    ExpectKept(loaded, stored);

    const int items = ItemsOf(kind);
    ASSERT_GT(items, 0);
    const ProcessUsage before = UsageOf(servers[0]);
    std::chrono::duration<double> seconds{};
    const ProcessGrowth growth = SettledGrowthOver(servers[0], [&] {
        const auto began = steady_clock::now();
        for (int done = 0; done < items; done += RoundOf(kind, items))
        {
            ASSERT_NO_FATAL_FAILURE(Soak(kind, RoundOf(kind, items - done)).Run());
        }
        seconds = steady_clock::now() - began;
    });
    std::cout << kind << ": " << items << " items in " << seconds.count() << " s, "
              << items / seconds.count() << " a second; the server had " << before << " and has "
              << UsageOf(servers[0]) << ": " << growth << std::endl;
    ExpectLevel(growth, items);
    EXPECT_EQ(stored, Stored());
    EXPECT_EQ(servers, RunningServers());
}

INSTANTIATE_TEST_SUITE_P(BackEnds,
                         SoakTest,
                         testing::ValuesIn(EveryKind().begin(), EveryKind().end()),
                         [](const auto& tested) { return tested.param.name; });
