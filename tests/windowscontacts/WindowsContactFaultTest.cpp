// Every call that loading, reading, adding, updating and deleting of Windows contacts make, going
// wrong in each way in which a store may.
#include "windowscontacts/WindowsContactFixture.h"

#include "tests/recordingstore/FaultHarness.h"

#include <functional>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr StoreFault kAllFaults[] = {StoreFault::OutOfMemory,
                                     StoreFault::CallFailed,
                                     StoreFault::NullOutput,
                                     StoreFault::FewerValues,
                                     StoreFault::WrongTypes,
                                     StoreFault::ShortRows};

// The harness has stores of its own, one at a time.
class WindowsContactFaultTest : public testing::Test
{
  protected:
    void Run(const char* name, const std::function<void(CWindowsMailAddressTable&)>& work)
    {
        for (const bool isOutlookExpress : {false, true})
        {
            const FaultTotals totals =
                RunFaults({.name = name,
                           .setUp =
                               [this](RecordingStore& store) {
                                   store.AddBook();
                                   store.AddBookEntry("ann",
                                                      StoreProps()
                                                          .Text(0x3A06001F, L"Ann")
                                                          .Texts(0x3A56101F, {L"a@x"})
                                                          .Text(0x3A50001F, L"http://own")
                                                          .Text(0x3A26001F, L"Norway")
                                                          .Time(0x3A420040, 116444736000000000)
                                                          .Text(0x3004001F, L"note")
                                                          .Text(0x660E001F, L"C:\\a.jpg"));
                                   store.AddBookEntry("choir", {}, MAPI_DISTLIST);
                                   annID = HexOf(store.EntryIdOf("ann"));
                               },
                           .action =
                               [&] {
                                   const BookSession session;
                                   if (!session.Container())
                                       return; // the failing call was the session's own
                                   CWindowsMailAddressTable table(session.Container(),
                                                                  session.Helper(),
                                                                  isOutlookExpress,
                                                                  session.Book());
                                   work(table);
                               },
                           .check = {}},
                          kAllFaults);
            EXPECT_GT(totals.runs, 30u);
        }
    }

    ComPtr<INContactItem> Ann()
    {
        // Without a picture, whose path is another each time.
        auto contact = ContactOf(LinesOf(R"(
            FirstName "Ann"
            Email "a@x"
            Business.City "Bonn"
            Birthday 25569)"));
        contact->put_PersistentID(Bstr(std::wstring_view(annID)).Get());
        return contact;
    }

    std::wstring annID;
};
} // namespace

TEST_F(WindowsContactFaultTest, LoadingAndReading)
{
    Run("load and read", [](CWindowsMailAddressTable& table) {
        table.GetItemIDs();
        table.ResetItem();
        table.GetNextItem();
        table.GetNextItem();
        EXPECT_FALSE(CurrentItem(table));
    });
}

TEST_F(WindowsContactFaultTest, Adding)
{
    Run("add", [&](CWindowsMailAddressTable& table) {
        std::wstring folderID;
        const auto contact = Ann();
        table.AddItem(QueryItem<INEntityItem>(contact.Get()).Get(), folderID);
        EXPECT_EQ(L"", folderID);
    });
}

TEST_F(WindowsContactFaultTest, Updating)
{
    Run("update", [&](CWindowsMailAddressTable& table) {
        table.GetItemIDs();
        table.ResetItem();
        const auto contact = Ann();
        table.UpdateItem(QueryItem<INEntityItem>(contact.Get()).Get());
    });
}

TEST_F(WindowsContactFaultTest, Deleting)
{
    Run("delete", [this](CWindowsMailAddressTable& table) {
        table.GetItemIDs();
        table.DeleteItem(annID);
    });
}
