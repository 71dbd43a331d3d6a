// Every call of the registry that the 2003 category list makes: in which order, with which
// arguments, and what becomes of the list and of what is stored where one of them fails.
#include "outlook/categories/Outlook2003CategoryList.h"

#include "platform/GuidSource.h"
#include "support/LargeNewFails.h"
#include "tests/outlook/categories/CategoryItems.h"
#include "tests/outlook/categories/RecordedRegistry.h"

#include <gmock/gmock.h>

#include <new>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
// What a call may answer where it does not do its work.
constexpr LSTATUS kErrors[] = {ERROR_ACCESS_DENIED,
                               ERROR_NOT_ENOUGH_MEMORY,
                               ERROR_KEY_DELETED,
                               ERROR_NO_SYSTEM_RESOURCES,
                               ERROR_FILE_NOT_FOUND};

constexpr char kOpenToRead[] =
    "open HKCU\\Software\\Microsoft\\Office\\11.0\\Outlook\\Categories 0 20019";
constexpr char kOpenToWrite[] =
    "open HKCU\\Software\\Microsoft\\Office\\11.0\\Outlook\\Categories 0 2001F";

// New IDs are "{1}", "{2}", ... Outlook's key holds "One;Two;", which are 18 bytes with the
// terminator.
class MasterListFaultTest : public testing::Test
{
  protected:
    MasterListFaultTest() { registry.SetText(kCategoriesKey, L"One;Two;"); }
    ~MasterListFaultTest() override { EXPECT_EQ(0u, registry.OpenKeys()); }

    // The text of a value; "(none)" without one.
    std::wstring Stored(const wchar_t* key = kCategoriesKey) const
    {
        const auto found = registry.keys.find(key);
        if (found == registry.keys.end() || !found->second)
            return L"(none)";
        const std::vector<BYTE>& bytes = found->second->bytes;
        return {reinterpret_cast<const wchar_t*>(bytes.data()), bytes.size() / 2 - 1};
    }
    void Load()
    {
        list.GetItemIDs();
        registry.ClearLines();
    }
    std::wstring Add(const wchar_t* name)
    {
        std::wstring folderID;
        return list.AddItem(CategoryOf(name).Get(), folderID);
    }

    RecordedRegistry registry;
    int guids = 0;
    ScopedGuidSource source{[this] { return L"{" + std::to_wstring(++guids) + L"}"; }};
    COutlook2003CategoryList list{registry};
};

// A change of the list that is written back.
struct Change
{
    const char* name;
    const wchar_t* names; // in the list and stored, after it
    // True where the result is the stated one.
    std::function<bool(COutlook2003CategoryList&)> make;
};

const Change kChanges[] = {{"add",
                            L"One;Two;New;",
                            [](COutlook2003CategoryList& list) {
                                std::wstring folderID;
                                return list.AddItem(CategoryOf(L"New").Get(), folderID) == L"{3}";
                            }},
                           {"update",
                            L"Uno;Two;",
                            [](COutlook2003CategoryList& list) {
                                list.ResetItem();
                                list.GetNextItem();
                                const auto one = CurrentItem(list);
                                QueryItem<INContactCategory>(one.Get())->put_Name(
                                    Bstr(L"Uno").Get());
                                return list.UpdateItem(one.Get()) == TRUE;
                            }},
                           {"delete", L"Two;", [](COutlook2003CategoryList& list) {
                                return list.DeleteItem(L"One") == TRUE;
                            }}};

std::wstring NamesOf(COutlook2003CategoryList& list)
{
    std::wstring names;
    for (const std::wstring& name : Walk(list))
        names += name + L";";
    return names;
}
} // namespace

// --- The calls in their order ------------------------------------------------------------------

TEST_F(MasterListFaultTest, ALoadAsksForTheSizeAndThenForTheBytes)
{
    list.GetItemIDs();
    EXPECT_THAT(registry.Lines(),
                ElementsAre(std::string(kOpenToRead) + " -> key 1",
                            "query key 1 MasterList the size -> 18",
                            "query key 1 MasterList 18 bytes -> 18",
                            "close key 1"));
    EXPECT_EQ(L"One;Two;", NamesOf(list));
}

TEST_F(MasterListFaultTest, ALoadWithoutAKeyOrAValueAsksNoMore)
{
    registry.keys[kCategoriesKey].reset();
    list.GetItemIDs();
    EXPECT_THAT(registry.Lines(),
                ElementsAre(std::string(kOpenToRead) + " -> key 1",
                            "query key 1 MasterList the size -> error 2",
                            "close key 1"));
    registry.keys.clear();
    registry.ClearLines();
    list.GetItemIDs();
    EXPECT_THAT(registry.Lines(), ElementsAre(std::string(kOpenToRead) + " -> error 2"));
    EXPECT_EQ(L"", NamesOf(list));
}

TEST_F(MasterListFaultTest, EveryChangeIsOneWriteOfTheWholeText)
{
    // Bytes of the text with its terminator: twice the characters, and two.
    const std::string sizes[] = {"26", "18", "10"};
    for (std::size_t i = 0; i < std::size(kChanges); ++i)
    {
        SCOPED_TRACE(kChanges[i].name);
        registry.SetText(kCategoriesKey, L"One;Two;");
        guids = 0;
        Load();
        EXPECT_TRUE(kChanges[i].make(list));
        const std::string key = "key " + std::to_string(2 * i + 2);
        EXPECT_THAT(registry.Lines(),
                    ElementsAre(std::string(kOpenToWrite) + " -> " + key,
                                "set " + key + " MasterList type 3 " + sizes[i] + " bytes",
                                "close " + key));
        EXPECT_EQ(kChanges[i].names, Stored());
    }
}

TEST_F(MasterListFaultTest, WithoutOutlooksKeyAKeyOfTheValuesNameIsMade)
{
    registry.keys.clear();
    Load();
    EXPECT_EQ(L"{1}", Add(L"New"));
    EXPECT_THAT(registry.Lines(),
                ElementsAre(std::string(kOpenToWrite) + " -> error 2",
                            "create HKCU\\MasterList -> key 1",
                            "set key 1 MasterList type 3 10 bytes",
                            "close key 1"));
    EXPECT_EQ(L"New;", Stored(L"MasterList"));
    EXPECT_EQ(L"(none)", Stored());
}

TEST_F(MasterListFaultTest, WhatChangesNothingAsksNothing)
{
    Load();
    EXPECT_EQ(L"", Add(L"TWO")) << "the ID that it came with";
    EXPECT_EQ(L"", Add(L""));
    EXPECT_EQ(FALSE, list.DeleteItem(L"{1}"));
    list.ResetItem();
    list.GetNextItem();
    list.GetItemByID(L"{2}");
    EXPECT_THAT(registry.Lines(), IsEmpty());
}

// --- Values that change while they are read ----------------------------------------------------

TEST_F(MasterListFaultTest, AValueThatGrowsMeanwhileIsReadWhole)
{
    registry.before = [this](int call) {
        if (call == 3)
            registry.SetText(kCategoriesKey, L"One;Two;Three;");
        if (call == 4)
            registry.SetText(kCategoriesKey, L"One;Two;Three;Four;");
    };
    list.GetItemIDs();
    EXPECT_THAT(registry.Lines(),
                ElementsAre(std::string(kOpenToRead) + " -> key 1",
                            "query key 1 MasterList the size -> 18",
                            "query key 1 MasterList 18 bytes -> 30 -> error 234",
                            "query key 1 MasterList 30 bytes -> 40 -> error 234",
                            "query key 1 MasterList 40 bytes -> 40",
                            "close key 1"));
    EXPECT_EQ(L"One;Two;Three;Four;", NamesOf(list));
}

TEST_F(MasterListFaultTest, AValueThatShrinksMeanwhileIsReadToItsEnd)
{
    registry.before = [this](int call) {
        if (call == 3)
            registry.SetText(kCategoriesKey, L"Z;");
    };
    list.GetItemIDs();
    EXPECT_EQ(L"Z;", NamesOf(list));
}

TEST_F(MasterListFaultTest, AValueThatNeverStopsGrowingIsGivenUpAndKept)
{
    std::wstring text = L"One;";
    registry.before = [&](int call) {
        if (call > 1)
            registry.SetText(kCategoriesKey, text += L"More;");
    };
    list.GetItemIDs();
    EXPECT_EQ(18, registry.Calls()) << "the key, the size and 16 readings";
    EXPECT_EQ(L"", NamesOf(list));
    registry.before = {};
    registry.ClearLines();
    Add(L"New");
    EXPECT_EQ(text, Stored());
    list.GetItemIDs(); // now it stands still
    Add(L"New");
    EXPECT_EQ(text + L"New;", Stored());
}

// --- Each call fails in turn -------------------------------------------------------------------

TEST_F(MasterListFaultTest, ALoadThatFailsIsAnEmptyListAndLosesNothing)
{
    constexpr int kCallsOfALoad = 3;
    for (int call = 1; call <= kCallsOfALoad; ++call)
        for (const LSTATUS error : kErrors)
        {
            if (error == ERROR_FILE_NOT_FOUND)
                continue; // no failure: nothing is there
            SCOPED_TRACE("call " + std::to_string(call) + ", error " + std::to_string(error));
            list.GetItemIDs();
            registry.ClearLines();
            registry.failures = {{call, error}};
            list.GetItemIDs();
            EXPECT_EQ(call, registry.Calls()) << "the rest is not asked for";
            EXPECT_EQ(0u, registry.OpenKeys());
            EXPECT_EQ(L"", NamesOf(list));
            registry.failures.clear();

            // The results are the usual ones, and what could not be read is not replaced.
            registry.ClearLines();
            guids = 0;
            EXPECT_EQ(L"{1}", Add(L"New"));
            EXPECT_EQ(L"New;", NamesOf(list));
            EXPECT_EQ(TRUE, list.UpdateItem(nullptr));
            EXPECT_EQ(TRUE, list.DeleteItem(L"New"));
            EXPECT_EQ(3, registry.Calls()) << "opened each time, nothing set";
            EXPECT_EQ(0u, registry.OpenKeys());
            EXPECT_EQ(L"One;Two;", Stored());
            EXPECT_EQ(L"(none)", Stored(L"MasterList"));

            list.GetItemIDs();
            EXPECT_EQ(L"One;Two;", NamesOf(list));
        }
}

TEST_F(MasterListFaultTest, AValueThatGoesMeanwhileIsAnEmptyList)
{
    for (const int call : {1, 2, 3})
    {
        registry.ClearLines();
        registry.failures = {{call, ERROR_FILE_NOT_FOUND}};
        list.GetItemIDs();
        EXPECT_EQ(L"", NamesOf(list));
        EXPECT_EQ(0u, registry.OpenKeys());
    }
    registry.failures.clear();
    Add(L"New");
    EXPECT_EQ(L"New;", Stored());
}

TEST_F(MasterListFaultTest, AValueForWhichThereIsNoMemoryIsKept)
{
    const std::wstring names(1 << 20, L'a');
    registry.SetText(kCategoriesKey, names);
    {
        const LargeNewFails noMemory(1 << 16);
        EXPECT_THROW(list.GetItemIDs(), std::bad_alloc);
    }
    EXPECT_EQ(0u, registry.OpenKeys());
    EXPECT_EQ(L"{1}", Add(L"New"));
    EXPECT_TRUE(names == Stored());
    list.GetItemIDs();
    EXPECT_TRUE(names + L';' == NamesOf(list));
}

// What the list lacks would be gone. The next load that succeeds makes it whole again.
TEST_F(MasterListFaultTest, AListThatWasLoadedInPartIsNotWrittenBack)
{
    bool hasMemory = false;
    const ScopedGuidSource scarce{[&] {
        if (++guids == 2 && !hasMemory)
            throw std::bad_alloc();
        return L"{" + std::to_wstring(guids) + L"}";
    }};
    EXPECT_THROW(list.GetItemIDs(), std::bad_alloc);
    EXPECT_THAT(Walk(list), ElementsAre(L"One"));
    EXPECT_NE(L"", Add(L"New"));
    EXPECT_EQ(TRUE, list.UpdateItem(nullptr));
    EXPECT_EQ(TRUE, list.DeleteItem(L"One"));
    EXPECT_EQ(L"One;Two;", Stored());
    hasMemory = true;
    list.GetItemIDs();
    EXPECT_THAT(Walk(list), ElementsAre(L"One", L"Two"));
    EXPECT_NE(L"", Add(L"New"));
    EXPECT_EQ(L"One;Two;New;", Stored());
}

TEST_F(MasterListFaultTest, AWriteThatFailsKeepsTheOldValueWholeAndTheListNew)
{
    constexpr int kCallsOfAWrite = 2;
    for (const Change& change : kChanges)
        for (int call = 1; call <= kCallsOfAWrite; ++call)
            for (const LSTATUS error : kErrors)
            {
                SCOPED_TRACE(std::string(change.name) + ", call " + std::to_string(call) +
                             ", error " + std::to_string(error));
                registry.keys.clear();
                registry.SetText(kCategoriesKey, L"One;Two;");
                guids = 0;
                Load();
                registry.failures = {{call, error}};
                EXPECT_TRUE(change.make(list));
                EXPECT_EQ(change.names, NamesOf(list));
                EXPECT_EQ(L"One;Two;", Stored());
                EXPECT_EQ(0u, registry.OpenKeys());
                // A key that does not open is replaced by the other one.
                EXPECT_EQ(call == 1 ? change.names : L"(none)", Stored(L"MasterList"));

                registry.failures.clear();
                EXPECT_EQ(TRUE, list.UpdateItem(nullptr));
                EXPECT_EQ(change.names, Stored()) << "the next write has it all";
            }
}

TEST_F(MasterListFaultTest, TheOtherKeyFailsToo)
{
    for (const int call : {2, 3})
        for (const LSTATUS error : kErrors)
        {
            registry.keys.clear();
            guids = 0;
            Load();
            registry.failures = {{call, error}};
            EXPECT_EQ(L"{1}", Add(L"New"));
            EXPECT_EQ(call, registry.Calls());
            EXPECT_EQ(L"New;", NamesOf(list));
            EXPECT_EQ(L"(none)", Stored(L"MasterList"));
            EXPECT_EQ(L"(none)", Stored());
            EXPECT_EQ(0u, registry.OpenKeys());
            registry.failures.clear();
        }
}
