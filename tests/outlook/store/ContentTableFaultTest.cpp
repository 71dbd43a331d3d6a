// Every call that an operation of a table makes, going wrong in each of the four ways in which a
// store may fail: the result, the log, and that nothing stays behind.
#include "outlook/store/TableFixture.h"
#include "support/DebugOutputCapture.h"

#include <iterator>

using Microsoft::WRL::ComPtr;
using Lines = std::vector<std::string>;

namespace
{
// The code of the call that fails, in a line of the log.
constexpr char kCode[] = "{code}";

std::string CodeOf(StoreFault fault)
{
    switch (fault)
    {
    case StoreFault::OutOfMemory:
        return "000000008007000E";
    case StoreFault::CallFailed:
        return "0000000080004005";
    case StoreFault::FewerValues:
        return "0000000000040380";
    default:
        return "0000000000000000";
    }
}

std::string Narrow(const std::wstring& text)
{
    return std::string(text.begin(), text.end());
}

// What comes of one call that goes wrong in one way.
struct Expected
{
    std::string outcome;
    Lines log;
};

// One call of an operation, in the order of kStoreFaults.
struct FaultRow
{
    std::string call;
    Expected expected[4];
};

class ContentTableFaultTest : public TableTest
{
  protected:
    // prepare runs before the record begins, act is the operation, outcome tells what came of it.
    void Run(const std::function<void()>& prepare,
             const std::function<void()>& act,
             const std::function<std::string()>& outcome,
             const std::vector<FaultRow>& rows)
    {
        const ScopedLogSettings settings;
        DebugOutputCapture capture;
        unsigned runs = 0;
        for (unsigned number = 1; number <= rows.size(); ++number)
        {
            for (std::size_t way = 0; way < std::size(kStoreFaults); ++way)
            {
                const StoreFault fault = kStoreFaults[way];
                const FaultRow& row = rows[number - 1];
                SCOPED_TRACE(row.call + ": " + NameOf(fault));
                Rebuild();
                prepare();
                store.ClearRecord();
                capture.TakeLogMessages();
                store.Fail(number, fault);
                act();

                Lines calls;
                for (const RecordedStoreCall& call : store.Record())
                    if (call.number == number)
                        calls.push_back(call.text);
                EXPECT_EQ(Lines{row.call}, calls);
                Lines log = row.expected[way].log;
                for (std::string& line : log)
                    if (const auto at = line.find(kCode); at != std::string::npos)
                        line.replace(at, std::size(kCode) - 1, CodeOf(fault));
                EXPECT_EQ(log, capture.TakeLogMessages());
                EXPECT_FALSE(table->m_pCurrentEntity);
                EXPECT_EQ(row.expected[way].outcome, outcome());
                Close();
                EXPECT_TRUE(store.IsClean()) << store.Complaints();
                ++runs;
            }
        }
        // All calls of the operation that can fail are in the table.
        Rebuild();
        prepare();
        store.ClearRecord();
        act();
        EXPECT_EQ(rows.size(), store.FailableCalls());
        std::printf("[   CALLS  ] %zu calls, %u runs\n", rows.size(), runs);
    }

    void Rebuild()
    {
        Close();
        store.Reset();
        Fill();
        Open();
    }

    std::string StoredSubject(const char* name)
    {
        for (const std::string& line : store.PropsOf(name))
            if (line.starts_with("0037001F "))
                return line.substr(10, line.size() - 11);
        return "none";
    }
    std::string Count() { return std::to_string(Entries().size()); }

    ComPtr<INEntityItem> item;
    BOOL result = 0;
    std::wstring id;
    std::wstring folderID;
};

const std::string kRows3 = "==========pTable->QueryRows()! Rows = 3\r\n";
const std::string kRows2 = "==========pTable->QueryRows()! Rows = 2\r\n";
const std::string kOpened = "===============CContentTable::GetItemByID hr = 0000000000000000! \r\n";
const std::string kOpenedCode = "===============CContentTable::GetItemByID hr = {code}! \r\n";
const std::string kNames =
    "===============CContentTable::GetPropertyNames cPropertyNames = 2! \r\n";
const std::string kRead =
    "==========EnumerateProperties pMAPIProperty->GetProps, hr = (0X0000000000000000)! \r\n";
const std::string kReadCode =
    "==========EnumerateProperties pMAPIProperty->GetProps, hr = (0X{code})! \r\n";
const std::string kReadNothing = "==========Failed: All Properties: \r\n";
const std::string kTime0 = "=========Index:0, Name:30080040";
const std::string kSubject1 = "=========Index:1, Name:37001F";
const std::string kId0 = "=========Index:0, Name:FFF0102";
const std::string kTime1 = "=========Index:1, Name:30080040";
} // namespace

TEST_F(ContentTableFaultTest, Load)
{
    const std::string rows = "IMAPITable(calendar contents table)";
    const Expected none = {"0", {}};
    const Expected all = {"3", {kRows3}};
    Run([] {},
        [&] { table->GetItemIDs(); },
        [&] { return Count(); },
        {
            {"IMAPIFolder(calendar).GetContentsTable(80000000)", {none, none, none, all}},
            // Without its columns the table has others, in which no row looks wanted.
            {rows + ".SetColumns([0FFF0102 001A001F 30080040], 00000000)",
             {none, none, {"0", {kRows3}}, all}},
            {rows + ".GetRowCount(00000000)", {none, none, none, {"2", {kRows2}}}},
            {rows + ".QueryRows(3, 00000000)", {none, none, none, {"2", {kRows2}}}},
        });
}

// The rows of before stay, once each.
TEST_F(ContentTableFaultTest, Refresh)
{
    const std::string rows = "IMAPITable(calendar contents table)";
    const Expected before = {"3 One", {}};
    const Expected twice = {"6 One", {kRows3}};
    Run([&] { Load(); },
        [&] { table->GetItemIDs(); },
        [&] { return Count() + " " + Narrow(Next()); },
        {
            {"IMAPIFolder(calendar).GetContentsTable(80000000)", {before, before, before, twice}},
            {rows + ".SetColumns([0FFF0102 001A001F 30080040], 00000000)",
             {before, before, {"3 One", {kRows3}}, twice}},
            {rows + ".GetRowCount(00000000)", {before, before, before, {"5 One", {kRows2}}}},
            {rows + ".QueryRows(3, 00000000)", {before, before, before, {"5 One", {kRows2}}}},
        });
}

// Whatever happens, the next step is at the next item.
TEST_F(ContentTableFaultTest, Step)
{
    const Expected notOpened = {"none Two", {kOpenedCode}};
    const Expected notRead = {"null Two",
                              {kOpened, kNames, kReadCode, kReadNothing, kTime0, kSubject1}};
    Run([&] { Load(); },
        [&] { table->GetNextItem(); },
        [&] {
            const std::string now = Narrow(CurrentSubject());
            return now + " " + Narrow(Next());
        },
        {
            {"IMAPIFolder(calendar).OpenEntry(one, null, 00000002, type)",
             {notOpened, notOpened, notOpened, {"One Two", {kOpenedCode, kNames, kRead}}}},
            {"IMessage(one).GetProps([30080040 0037001F], 80000000)",
             {notRead, notRead, notRead, {"null Two", {kOpened, kNames, kReadCode}}}},
        });
}

TEST_F(ContentTableFaultTest, Fetch)
{
    // Not opened, the item before stays, and so does the cursor.
    const Expected notOpened = {"One Two", {kOpenedCode}};
    const Expected notRead = {"null Three",
                              {kOpened, kNames, kReadCode, kReadNothing, kTime0, kSubject1}};
    Run(
        [&] {
            Load();
            Next();
        },
        [&] { table->GetItemByID(IdOf("three")); },
        [&] {
            const std::string now = Narrow(CurrentSubject());
            return now + " " + Narrow(Next());
        },
        {
            {"IMAPIFolder(calendar).OpenEntry(three, null, 00000002, type)",
             {notOpened, notOpened, notOpened, {"Three Three", {kOpenedCode, kNames, kRead}}}},
            {"IMessage(three).GetProps([30080040 0037001F], 80000000)",
             {notRead, notRead, notRead, {"null Three", {kOpened, kNames, kReadCode}}}},
        });
}

// The outcome: result, stored subject, days from the entry's first time to the one it shows.
TEST_F(ContentTableFaultTest, Update)
{
    const std::string set = "=========pCurrentEntity->SetProps hr= 0000000000000000! \r\n";
    const std::string setCode = "=========pCurrentEntity->SetProps hr= {code}! \r\n";
    const std::string saved =
        "=========pCurrentEntity->SaveChanges(FORCE_SAVE) hr= 0000000000000000! \r\n";
    const std::string savedCode =
        "=========pCurrentEntity->SaveChanges(FORCE_SAVE) hr= {code}! \r\n";
    const std::string failed = "==========CContentTable::UpdateItem::failed\r\n";
    const Expected notOpened = {"0 One 0", {}};
    const Expected notSet = {"1 One 9", {setCode, saved, kRead}};
    const Expected notSaved = {"0 One 0", {set, savedCode, failed}};
    const Expected notReadBack = {"1 Changed 0",
                                  {set, saved, kReadCode, kReadNothing, kId0, kTime1}};
    Run(
        [&] {
            Load();
            item = NewAppointment(IdOf("one"), L"Changed");
        },
        [&] { result = table->UpdateItem(item.Get()); },
        [&] {
            return std::to_string(result) + " " + StoredSubject("one") + " " +
                   std::to_string(static_cast<int>(Entries().front().lastModified - kFirstDay));
        },
        {
            {"IMAPIFolder(calendar).OpenEntry(one, null, 00000001, type)",
             {notOpened, notOpened, notOpened, {"1 Changed 9", {set, saved, kRead}}}},
            {"IMessage(one).SetProps({0037001F \"Changed\"}, problems)",
             {notSet, notSet, notSet, notSet}},
            // A store that says it saved and did not is believed.
            {"IMessage(one).SaveChanges(00000004)",
             {notSaved,
              notSaved,
              {"1 One 0", {set, savedCode, kRead}},
              {"1 Changed 9", {set, savedCode, kRead}}}},
            {"IMessage(one).GetProps([0FFF0102 30080040], 80000000)",
             {notReadBack, notReadBack, notReadBack, {"1 Changed 0", {set, saved, kReadCode}}}},
        });
}

// The outcome: whether an ID came, stored messages, listed entries, current item.
TEST_F(ContentTableFaultTest, Add)
{
    const std::string set = "=========m_pCurrentEntity->SetProps hr= 0000000000000000! \r\n";
    const std::string setCode = "=========m_pCurrentEntity->SetProps hr= {code}! \r\n";
    const std::string saved =
        "=========m_pCurrentEntity->SaveChanges(FORCE_SAVE) hr= 0000000000000000! \r\n";
    const std::string savedCode =
        "=========m_pCurrentEntity->SaveChanges(FORCE_SAVE) hr= {code}! \r\n";
    const std::string class0 = "======== index[0], ulPropTag[1a001f]\r\n";
    const std::string subject1 = "======== index[1], ulPropTag[37001f]\r\n";
    const Expected notMade = {"no, 3, 3, none", {}};
    const Expected made = {"ID, 4, 4, New", {set, saved, kRead}};
    const Expected notSet = {"ID, 4, 4, New", {class0, subject1, setCode, saved, kRead}};
    const Expected notSaved = {"no, 3, 3, none", {set, savedCode}};
    const Expected notReadBack = {"no, 4, 3, New",
                                  {set, saved, kReadCode, kReadNothing, kId0, kTime1}};
    Run(
        [&] {
            Load();
            item = NewAppointment(L"", L"New");
        },
        [&] { id = table->AddItem(item.Get(), folderID); },
        [&] {
            return std::string(id.empty() ? "no" : "ID") + ", " +
                   std::to_string(store.ChildrenOf("calendar").size()) + ", " + Count() + ", " +
                   Narrow(CurrentSubject());
        },
        {
            {"IMAPIFolder(calendar).QueryInterface(IMAPIFolder)",
             {notMade, notMade, notMade, made}},
            {"IMAPIFolder(calendar).CreateMessage(null, 00000000)",
             {notMade, notMade, notMade, made}},
            {"IMessage(new 1).QueryInterface(IMAPIProp)", {notMade, notMade, notMade, made}},
            {"IMessage(new 1).SetProps({001A001F \"IPM.Appointment\", 0037001F \"New\"}, problems)",
             {notSet, notSet, made, {"ID, 4, 4, New", {setCode, saved, kRead}}}},
            // A message that was not saved has no ID to read back.
            {"IMessage(new 1).SaveChanges(00000004)",
             {notSaved,
              notSaved,
              {"no, 3, 3, New",
               {set,
                saved,
                "==========EnumerateProperties pMAPIProperty->GetProps, "
                "hr = (0X0000000000040380)! \r\n"}},
              {"ID, 4, 4, New", {set, savedCode, kRead}}}},
            {"IMessage(new 1).GetProps([0FFF0102 30080040], 80000000)",
             {notReadBack, notReadBack, notReadBack, {"no, 4, 3, New", {set, saved, kReadCode}}}},
        });
}

TEST_F(ContentTableFaultTest, Delete)
{
    const std::string deletedCode = "=========m_pContainer->DeleteMessages hr= {code}! \r\n";
    const Expected failed = {"0 3", {deletedCode}};
    Run([&] { Load(); },
        [&] { result = table->DeleteItem(IdOf("two")); },
        [&] {
            return std::to_string(result) + " " +
                   std::to_string(store.ChildrenOf("calendar").size());
        },
        {
            // A container that answers with no folder is none.
            {"IMAPIFolder(calendar).QueryInterface(IMAPIFolder)",
             {failed,
              failed,
              {"0 3", {"=========m_pContainer->DeleteMessages hr= 0000000080004002! \r\n"}},
              {"1 2", {"=========m_pContainer->DeleteMessages hr= 0000000000000000! \r\n"}}}},
            {"IMAPIFolder(calendar).DeleteMessages([two], 0, null, 00000000)",
             {failed, failed, {"1 3", {deletedCode}}, {"1 2", {deletedCode}}}},
        });
}

// What a hostile store delivers instead of the values: other types, or rows without them.
TEST_F(ContentTableFaultTest, HostileValuesHarmNothing)
{
    unsigned runs = 0;
    for (const StoreFault fault : kHostileStoreFaults)
    {
        for (unsigned number = 1;; ++number)
        {
            SCOPED_TRACE(std::string(NameOf(fault)) + " " + std::to_string(number));
            Rebuild();
            store.Fail(number, fault);
            table->GetItemIDs();
            table->ResetItem();
            Rest();
            item = NewAppointment(IdOf("one"), L"Changed");
            table->UpdateItem(item.Get());
            table->AddItem(item.Get(), folderID);
            table->DeleteItem(IdOf("two"));
            const unsigned calls = store.FailableCalls();
            Close();
            EXPECT_TRUE(store.IsClean()) << store.Complaints();
            ++runs;
            if (number > calls)
                break;
        }
    }
    std::printf("[   CALLS  ] %u hostile runs\n", runs);
}
