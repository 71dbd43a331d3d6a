// Clients whose own item never answers while the server writes it, for every kind of item. The
// server goes on serving the others, and once the client is ended it stops and starts as before.
#include "endtoend/ItemCollection.h"
#include "endtoend/StoredItemsTest.h"
#include "hostileclient/OwnItems.h"

#include <algorithm>

using Microsoft::WRL::ComPtr;

namespace
{
// Writes an own item and hangs in one of its calls. Arguments: the name of the kind, "add" or
// "update", the number of the call from 1, and the signal that it hangs now.
int WriteAndHang(const std::vector<std::wstring>& arguments)
{
    const std::wstring& name = arguments.at(0);
    const auto kinds = EveryKind();
    const auto kind = std::find_if(kinds.begin(), kinds.end(), [&](const Kind& one) {
        return name == std::wstring(one.name, one.name + std::strlen(one.name));
    });
    if (kind == kinds.end())
        return 1;
    const bool isUpdate = arguments.at(1) == L"update";
    const auto service = StartBackEnd(kind->backEnd);
    const auto items = service ? OpenEnumerator(*service.Get(), kind->type) : nullptr;
    ComPtr<INEntityItem> inner;
    if (!items || (isUpdate && items->Next(inner) != S_OK))
        return 2;
    if (!isUpdate)
        inner = MakeInServer<INEntityItem>(kind->item.classID);
    int callsLeft = std::stoi(arguments.at(2));
    const auto own = OwnItem(kind->type, inner.Get(), {[&] {
                                 if (--callsLeft != 0)
                                     return;
                                 Signal(arguments.at(3)).Set();
                                 Sleep(INFINITE);
                             }});
    Bstr id;
    const HRESULT result = isUpdate ? items->Update(*own.Get()) : items->Add(*own.Get(), id);
    return SUCCEEDED(result) ? 0 : 3;
}
const RegisterRole writeAndHang(L"write-and-hang", &WriteAndHang);

class HangingItemsTest : public StoredItemsTest, public testing::WithParamInterface<Kind>
{
  protected:
    // Some runtimes never take a dead client's references back: do not leave that server behind.
    void TearDown() override { EndServers(); }

    static StartedProgram StartWriter(const wchar_t* write, int call)
    {
        const std::string name = GetParam().name;
        const Signal hangs(L"hangs");
        StartedProgram client =
            StartProgram(RoleCommandLine(L"write-and-hang",
                                         std::wstring(name.begin(), name.end()) + L' ' + write +
                                             L' ' + std::to_wstring(call) + L" hangs"));
        EXPECT_TRUE(hangs.Wait());
        return client;
    }

    // Which call of an update, from 1, reads something to be stored. The name of a group, which is
    // all that it has, comes second.
    static int CallThatReads() { return GetParam().type == ContactGroup ? 2 : 3; }

    // The stored item is as it was, and another one is added, read and deleted.
    void ExpectServes()
    {
        const Kind& kind = GetParam();
        auto items = OpenEnumerator(*service.Get(), kind.type);
        ASSERT_TRUE(items);
        ComPtr<INEntityItem> item;
        ASSERT_EQ(S_OK, items->Next(item));
        // What an update clears of a contact is stored before the new values come.
        if (kind.name != std::string_view("OutlookContacts"))
        {
            EXPECT_EQ(kind.stored, kind.item.read(*item.Get()).name);
        }
        item = MakeInServer<INEntityItem>(kind.item.classID);
        kind.item.write(*item.Get(), {L"Good", 7});
        Bstr id;
        ASSERT_EQ(S_OK, items->Add(*item.Get(), id));
        items = OpenEnumerator(*service.Get(), kind.type);
        ASSERT_TRUE(items);
        ASSERT_EQ(S_OK, items->Find(id, item));
        EXPECT_EQ(L"Good", kind.item.read(*item.Get()).name);
        EXPECT_EQ(S_OK, items->Delete(id));
    }

    ComPtr<INPersonalInformationService> service;
};

INSTANTIATE_TEST_SUITE_P(BackEnds,
                         HangingItemsTest,
                         testing::ValuesIn(EveryKind().begin(), EveryKind().end()),
                         [](const auto& tested) { return tested.param.name; });
} // namespace

TEST_P(HangingItemsTest, TheServerServesOthersAndStopsOnceTheClientsAreEnded)
{
    service = StartBackEnd(GetParam().backEnd);
    ASSERT_TRUE(service);
    const auto servers = RunningServers();
    ASSERT_EQ(1u, servers.size());
    const StartedProgram first = StartWriter(L"update", CallThatReads());
    ExpectServes();
    const StartedProgram second = StartWriter(L"add", 1);
    ExpectServes();

    // A stop waits for the calls that are under way; until then nothing is handed out.
    EXPECT_EQ(S_OK, service->StopService());
    EXPECT_FALSE(OpenEnumerator(*service.Get(), GetParam().type));
    EXPECT_EQ(E_FAIL, service->StartService(Bstr(GetParam().backEnd).Get()));

    // In the order of their calls, so that the later one ends inside the earlier one's wait.
    KillPrograms({&first, &second});
    ASSERT_EQ(S_OK, StartAfterStop(*service.Get(), GetParam().backEnd));
    ExpectServes();
    EXPECT_EQ(servers, RunningServers());
}
