// Items that a client implements itself, lent to every function that takes items, from another
// process: their getters answer wrong, or use the server in the middle of their own write.
#include "endtoend/ItemCollection.h"
#include "endtoend/StoredItemsTest.h"
#include "hostileclient/OwnItems.h"

using Microsoft::WRL::ComPtr;

namespace
{
struct LentTo
{
    const Kind& kind;
    CollectionType collection;
};

std::ostream& operator<<(std::ostream& out, const LentTo& to)
{
    return out << to.kind << ' ' << to.collection.name;
}

std::vector<LentTo> EveryCollection()
{
    std::vector<LentTo> all;
    for (const Kind& kind : EveryKind())
        for (const CollectionType& collection : CollectionsOf(kind))
            // Both back ends of Windows share an address book.
            if (kind.backEnd != kOutlookExpress || collection.open == &OpenEnumerator)
                all.push_back({kind, collection});
    return all;
}

class OwnItemsTest : public StoredItemsTest, public testing::WithParamInterface<LentTo>
{
  protected:
    void SetUp() override
    {
        StoredItemsTest::SetUp();
        service = StartBackEnd(kind.backEnd);
        ASSERT_TRUE(service);
        servers = RunningServers();
        ASSERT_EQ(1u, servers.size());
        Open();
        stored = First();
        ASSERT_TRUE(stored);
        EXPECT_EQ(S_OK, stored->get_EntityID(storedId.Put()));
    }
    void TearDown() override
    {
        EXPECT_EQ(servers, RunningServers());
        if (service)
        {
            EXPECT_EQ(S_OK, service->StopService());
        }
    }

    void Open()
    {
        collection = GetParam().collection.open(*service.Get(), kind.type);
        ASSERT_TRUE(collection);
    }
    ComPtr<INEntityItem> First()
    {
        ComPtr<INEntityItem> item;
        EXPECT_EQ(S_OK, collection->Reset());
        EXPECT_EQ(S_OK, collection->Next(item));
        return item;
    }

    ComPtr<INEntityItem> NewItem(const wchar_t* name) const
    {
        const auto item = MakeInServer<INEntityItem>(kind.item.classID);
        kind.item.write(*item.Get(), {name});
        return item;
    }

    void Write(bool isUpdate, const OwnItemConduct& conduct)
    {
        const ComPtr<INEntityItem> inner = isUpdate ? stored : NewItem(L"Own");
        const auto own = OwnItem(kind.type, inner.Get(), conduct);
        Bstr id;
        const HRESULT result =
            isUpdate ? collection->Update(*own.Get()) : collection->Add(*own.Get(), id);
        EXPECT_TRUE(result == S_OK || result == E_FAIL) << std::hex << result;
    }
    // A write that acts in each of its calls from that one on, from 1. The item is as it was.
    void WriteActing(bool isUpdate, int firstCall, const std::function<void()>& action)
    {
        int calls = 0;
        Write(isUpdate, {[&] {
                  if (++calls >= firstCall)
                      action();
              }});
        if (isUpdate || GetParam().collection.addsItsItems)
        {
            EXPECT_LE(firstCall, calls);
        }
    }

    void Restart()
    {
        ASSERT_EQ(S_OK, service->StartService(Bstr(kind.backEnd).Get()));
        Open();
    }
    // What was stored is there, and the server takes another item and gives it back.
    void ExpectServes()
    {
        Restart();
        ComPtr<INEntityItem> item;
        EXPECT_EQ(S_OK, collection->Reset());
        EXPECT_EQ(S_OK, collection->Find(storedId, item));
        Bstr id;
        const auto good = NewItem(L"Good");
        ASSERT_EQ(S_OK, OpenEnumerator(*service.Get(), kind.type)->Add(*good.Get(), id));
        ASSERT_EQ(S_OK, OpenEnumerator(*service.Get(), kind.type)->Find(id, item));
        EXPECT_EQ(L"Good", kind.item.read(*item.Get()).name);
    }

    const Kind& kind = GetParam().kind;
    ComPtr<INPersonalInformationService> service;
    std::vector<DWORD> servers;
    std::unique_ptr<ItemCollection> collection;
    ComPtr<INEntityItem> stored;
    Bstr storedId;
};

INSTANTIATE_TEST_SUITE_P(
    EveryCollection, OwnItemsTest, testing::ValuesIn(EveryCollection()), [](const auto& tested) {
        return std::string(tested.param.kind.name) + tested.param.collection.name;
    });
} // namespace

TEST_P(OwnItemsTest, GettersThatAnswerWrongAreWrittenOrRefused)
{
    for (const WrongManner manner : kWrongManners)
    {
        const WrongAnswers answers(manner);
        Write(false, {nullptr, &answers});
    }
    ExpectServes();
    for (const WrongManner manner : kWrongManners)
    {
        const WrongAnswers answers(manner);
        Write(true, {nullptr, &answers});
    }
    EXPECT_EQ(S_OK, collection->Reset());
}

TEST_P(OwnItemsTest, AStopAResetAndADeletionInsideTheCallsTakeNothingAway)
{
    // The address book converts the ID, by two calls, before its write begins.
    constexpr int kWriting = 3;
    for (const bool isUpdate : {false, true})
    {
        WriteActing(isUpdate, 1, [&] { EXPECT_EQ(S_OK, collection->Reset()); });
        WriteActing(isUpdate, kWriting, [&] { EXPECT_EQ(E_FAIL, collection->Delete(storedId)); });
        WriteActing(isUpdate, 1, [&] { EXPECT_EQ(S_OK, service->StopService()); });
        Restart();
    }
    ExpectServes();
}
