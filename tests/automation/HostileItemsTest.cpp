// Items that a client implements itself and that use the server in the middle of their own write:
// each call that a table makes to them stops the service, reloads the table, deletes the item, adds
// another one, walks, or lets go of the table. And items whose contents no store can hold.
#include "hostileclient/OwnItems.h"
#include "tests/automation/HostileFixture.h"

#include <algorithm>

using Microsoft::WRL::ComPtr;

namespace
{
using Action = std::function<void()>;

struct TableOfItems
{
    const wchar_t* backEnd;
    _tagNEnumeratorType type;
    const CLSID& item;
    bool listsWhatItAdds = true;
};
const TableOfItems kTables[] = {{kOutlookName, ContactCategory, CLSID_NContactCategory},
                                {kOutlookName, ContactGroup, CLSID_NContactGroup, false},
                                {kOutlookName, AddressBook, CLSID_NContactItem},
                                {kOutlookName, Calendar, CLSID_NAppointment},
                                {kWindowsMailName, AddressBook, CLSID_NContactItem},
                                {kWindowsMailName, Calendar, CLSID_NAppointment}};

class HostileItemsTest : public HostileFixture, public testing::WithParamInterface<TableOfItems>
{
  protected:
    void SetUp() override { Restart(); }
    void TearDown() override { table.Reset(); }

    void Restart()
    {
        table.Reset();
        Start(GetParam().backEnd);
        OpenTable();
    }
    void OpenTable()
    {
        ASSERT_EQ(S_OK, service->GetEnumerator(GetParam().type, table.ReleaseAndGetAddressOf()));
        ASSERT_TRUE(table);
    }
    ComPtr<INEntityItem> NewItem() const { return CreateObject<INEntityItem>(GetParam().item); }
    // The first item that is stored; a new one where there is none.
    ComPtr<INEntityItem> FirstItem()
    {
        ComPtr<INEntityItem> item;
        VARIANT_BOOL reset = VARIANT_FALSE;
        EXPECT_EQ(S_OK, table->ResetItem(&reset));
        if (FAILED(table->GetNextItem(item.GetAddressOf())))
            return NewItem();
        return item;
    }

    // One write of an own item that acts at the call of that number, from 1, and not again inside
    // of what it does. Gives how many calls the table made outside of the action.
    int WriteActingAt(bool isUpdate, int number, const Action& action)
    {
        int calls = 0;
        bool isActing = false;
        const ComPtr<INEntityItem> own =
            OwnItem(GetParam().type, (isUpdate ? FirstItem() : NewItem()).Get(), {[&] {
                        if (isActing || ++calls != number)
                            return;
                        isActing = true;
                        action();
                        isActing = false;
                    }});
        Write(isUpdate, own.Get());
        return calls;
    }
    void Write(bool isUpdate, INEntityItem* item)
    {
        // The client's own reference may go inside the call.
        INEnumerator* const written = table.Get();
        Bstr id;
        VARIANT_BOOL updated = VARIANT_FALSE;
        const HRESULT result =
            isUpdate ? written->UpdateItem(item, &updated) : written->AddItem(item, id.Put());
        EXPECT_TRUE(result == S_OK || result == E_FAIL) << std::hex << result;
    }

    // Lets an add and an update act at each of their calls in turn, or at each of so many.
    void ActAtEachCall(
        const Action& action, const Action& mend = [] {}, int step = 1)
    {
        for (const bool isUpdate : {false, true})
        {
            const int calls = WriteActingAt(isUpdate, 0, action);
            for (int number = 1; number <= calls; number += step)
            {
                WriteActingAt(isUpdate, number, action);
                mend();
            }
            EXPECT_LT(0, calls);
        }
        ExpectServes();
    }

    // What was stored before is there, and a table takes an item and gives it back.
    void ExpectServes()
    {
        Restart();
        for (const char* const object : {"ann", "friends", "meeting", "carl"})
            EXPECT_TRUE(store.Exists(object)) << object;
        const int before = CountItems();
        Bstr id;
        if (SUCCEEDED(table->AddItem(NewItem().Get(), id.Put())))
        {
            OpenTable();
            EXPECT_EQ(before + (GetParam().listsWhatItAdds ? 1 : 0), CountItems());
        }
    }
    int CountItems()
    {
        int count = 0;
        ComPtr<INEntityItem> item;
        while (count < 10'000 && SUCCEEDED(table->GetNextItem(item.ReleaseAndGetAddressOf())))
            ++count;
        return count;
    }

    ComPtr<INEnumerator> table;
};

class CarelessContactTest : public HostileFixture
{
};

INSTANTIATE_TEST_SUITE_P(EveryTable, HostileItemsTest, testing::ValuesIn(kTables));
} // namespace

TEST_P(HostileItemsTest, AStopInsideAnyCallEndsTheServiceLater)
{
    // A contact has more than a hundred calls, and a start takes its time.
    const int step = GetParam().type == AddressBook ? 7 : 1;
    ActAtEachCall([&] { EXPECT_EQ(S_OK, service->StopService()); }, [&] { Restart(); }, step);
}

TEST_P(HostileItemsTest, AReloadInsideAnyCallHarmsNothing)
{
    ActAtEachCall([&] { EXPECT_EQ(S_OK, table->Refresh()); });
}

TEST_P(HostileItemsTest, ADeletionInsideAnyCallTakesNothingAway)
{
    Bstr id;
    FirstItem()->get_EntityID(id.Put());
    ActAtEachCall([&] {
        VARIANT_BOOL deleted = VARIANT_FALSE;
        if (id)
        {
            EXPECT_EQ(E_FAIL, table->DeleteItem(id.Get(), &deleted));
        }
    });
}

TEST_P(HostileItemsTest, AWriteInsideAnyCallIsRefused)
{
    const auto stored = FirstItem();
    ActAtEachCall([&] {
        Bstr id;
        VARIANT_BOOL updated = VARIANT_FALSE;
        EXPECT_EQ(E_FAIL, table->AddItem(NewItem().Get(), id.Put()));
        EXPECT_EQ(E_FAIL, table->UpdateItem(stored.Get(), &updated));
    });
}

TEST_P(HostileItemsTest, AWalkInsideAnyCallEnds)
{
    ActAtEachCall([&] {
        VARIANT_BOOL reset = VARIANT_FALSE;
        EXPECT_EQ(S_OK, table->ResetItem(&reset));
        EXPECT_GT(10'000, CountItems());
    });
}

TEST_P(HostileItemsTest, ATableReleasedInsideAnyCallLivesUntilItsEnd)
{
    ActAtEachCall([&] { table.Reset(); }, [&] { OpenTable(); });
}

TEST_P(HostileItemsTest, GettersThatAnswerWrongAreWrittenOrRefused)
{
    for (const WrongManner manner : kWrongManners)
        for (const bool isUpdate : {false, true})
        {
            const WrongAnswers answers(manner);
            const ComPtr<INEntityItem> inner = isUpdate ? FirstItem() : NewItem();
            Write(isUpdate, OwnItem(GetParam().type, inner.Get(), {nullptr, &answers}).Get());
        }
    ExpectServes();
}

// Items of the server's own with what a table cannot store: it writes what it can, or fails.
TEST_P(HostileItemsTest, ContentsThatFitNoStoreAreTakenOrRefused)
{
    const TypeLibraryRegistration registration;
    const std::vector<LibraryInterface> interfaces = ContractInterfaces();
    HostileArguments values;
    int written = 0;
    const auto write = [&](INEntityItem* item) {
        Bstr id;
        const HRESULT result = table->AddItem(item, id.Put());
        EXPECT_TRUE(result == S_OK || result == E_FAIL) << std::hex << result;
        // An ID that the item brought may be one that no list finds again.
        VARIANT_BOOL done = VARIANT_FALSE;
        if (result == S_OK)
            table->DeleteItem(id.Get(), &done);
        store.ClearRecord();
        ++written;
    };
    int puts = 0;
    for (const LibraryInterface& one : interfaces)
        for (const LibraryOperation& operation : one.operations)
        {
            const ComPtr<INEntityItem> item = NewItem();
            ComPtr<IUnknown> object;
            if (!operation.name.starts_with("put_") || operation.name == "put_PictureStream" ||
                FAILED(
                    item->QueryInterface(one.iid, reinterpret_cast<void**>(object.GetAddressOf()))))
                continue;
            // Texts are all stored in one way: each property is written with another one of them.
            constexpr int kTexts = 10;
            const bool isText = operation.parameters.back().type == VT_BSTR;
            int calls = ++puts;
            CallWithEveryValue(object.Get(), operation, values, [&](const HostileCall& call) {
                if (SUCCEEDED(call.result) && (!isText || calls++ % kTexts == 0))
                    write(item.Get());
            });
        }
    EXPECT_LT(10, written);
    ExpectServes();
}

// An array that has elements and no memory for them, out of a client's own contact.
TEST_F(CarelessContactTest, AnArrayWithoutMemoryCountsAsNone)
{
    for (const wchar_t* const backEnd : {kOutlookName, kWindowsMailName})
    {
        Start(backEnd);
        ComPtr<INAddressBook> book;
        ASSERT_EQ(S_OK, service->GetAddressBook(book.GetAddressOf()));
        const auto own = OwnContact::Make(CreateObject<INContactItem>(CLSID_NContactItem));
        SAFEARRAY* array = nullptr;
        ASSERT_EQ(S_OK, SafeArrayAllocDescriptorEx(VT_BSTR, 1, &array));
        array->rgsabound[0].cElements = 3;
        own->emails = array;
        Bstr id;
        EXPECT_EQ(S_OK, book->AddItem(own.Get(), id.Put()));
        EXPECT_EQ(nullptr, own->emails);
        book.Reset();
        service->StopService();
    }
}
