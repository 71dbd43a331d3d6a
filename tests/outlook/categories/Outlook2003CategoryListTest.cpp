// The categories in the registry, and with them the walk that both forms of the list share.
#include "outlook/categories/Outlook2003CategoryList.h"

#include "outlook/categories/MasterList.h"
#include "platform/GuidSource.h"
#include "support/EarlyBound.h"
#include "support/RegistrySandbox.h"
#include "tests/outlook/categories/CategoryItems.h"
#include "tests/outlook/categories/CategoryRegistry.h"

#include <gmock/gmock.h>

#include <deque>
#include <regex>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
// New IDs are "{1}", "{2}", ... The current user's key is another one meanwhile, and Outlook's key
// is there.
class Outlook2003CategoryListTest : public testing::Test
{
  protected:
    Outlook2003CategoryListTest() { registry.AddKey(kCategoriesKey); }

    void Load(const std::wstring& text)
    {
        registry.SetText(kCategoriesKey, L"MasterList", text);
        list.GetItemIDs();
        list.ResetItem();
    }
    std::vector<std::wstring> IDs()
    {
        std::vector<std::wstring> ids;
        list.ResetItem();
        for (list.GetNextItem(); CurrentItem(list); list.GetNextItem())
            ids.push_back(EntityIDOf(CurrentItem(list).Get()));
        return ids;
    }
    std::wstring Add(INEntityItem* item)
    {
        std::wstring folderID = L"untouched";
        const std::wstring id = list.AddItem(item, folderID);
        EXPECT_EQ(L"untouched", folderID);
        return id;
    }
    // By its name, after ResetItem.
    Microsoft::WRL::ComPtr<INEntityItem> Find(const wchar_t* id)
    {
        list.ResetItem();
        list.GetItemByID(id);
        return CurrentItem(list);
    }

    RegistrySandbox registry{HKEY_CURRENT_USER};
    int guids = 0;
    std::function<std::wstring()> nextGuid = [this] {
        return L"{" + std::to_wstring(++guids) + L"}";
    };
    ScopedGuidSource source{[this] { return nextGuid(); }};
    COutlook2003CategoryList list;
};
} // namespace

// --- Loading -----------------------------------------------------------------------------------

TEST_F(Outlook2003CategoryListTest, EveryNameBetweenSemicolonsIsACategory)
{
    Load(L"Work; Home ;;Stra\u00dfe\u65e5;;;");
    EXPECT_THAT(Walk(list), ElementsAre(L"Work", L" Home ", L"Stra\u00dfe\u65e5"));
    EXPECT_THAT(IDs(), ElementsAre(L"{1}", L"{2}", L"{3}"));
    const auto item = Find(L"{1}");
    EXPECT_EQ(0, ColorOf(item.Get()));
    DATE time = -1.0;
    EXPECT_EQ(S_OK, item->get_LastModificationTime(&time));
    EXPECT_EQ(0.0, time);
}

TEST_F(Outlook2003CategoryListTest, AValueWithoutNamesIsAnEmptyList)
{
    for (const wchar_t* text : {L"", L";", L";;;"})
    {
        Load(text);
        EXPECT_THAT(Walk(list), IsEmpty());
    }
    Load(L"One");
    EXPECT_THAT(Walk(list), ElementsAre(L"One"));
    Load(L";One");
    EXPECT_THAT(Walk(list), ElementsAre(L"One"));
}

TEST_F(Outlook2003CategoryListTest, AReloadGivesTheSameNamesWithNewIDs)
{
    Load(L"Work;Home;");
    EXPECT_THAT(IDs(), ElementsAre(L"{1}", L"{2}"));
    list.GetItemIDs();
    EXPECT_THAT(Walk(list), ElementsAre(L"Work", L"Home"));
    EXPECT_THAT(IDs(), ElementsAre(L"{3}", L"{4}"));
}

TEST_F(Outlook2003CategoryListTest, IDsAreGuidsInBraces)
{
    const std::wregex guid(L"\\{[0-9A-F]{8}(-[0-9A-F]{4}){3}-[0-9A-F]{12}\\}");
    const std::wstring first = SystemGuidText();
    EXPECT_TRUE(std::regex_match(first, guid)) << first;
    EXPECT_NE(first, SystemGuidText());
}

// --- The walk ----------------------------------------------------------------------------------

TEST_F(Outlook2003CategoryListTest, BeforeResetItemThereIsNoPlaceInTheList)
{
    registry.SetText(kCategoriesKey, L"MasterList", L"Work;Home;");
    list.GetNextItem();
    EXPECT_EQ(L"(none)", CurrentName(list));
    list.GetItemIDs();
    EXPECT_THAT(Rest(list), IsEmpty());
    list.GetItemByID(L"{1}");
    EXPECT_EQ(L"(none)", CurrentName(list));
    EXPECT_THAT(Walk(list), ElementsAre(L"Work", L"Home"));
}

TEST_F(Outlook2003CategoryListTest, ResetItemDropsTheCurrentItem)
{
    Load(L"Work;Home;");
    list.GetNextItem();
    EXPECT_EQ(L"Work", CurrentName(list));
    list.ResetItem();
    EXPECT_EQ(L"(none)", CurrentName(list));
    INEntityItem* untouched = reinterpret_cast<INEntityItem*>(this);
    list.GetCurrentItem(&untouched);
    EXPECT_EQ(reinterpret_cast<INEntityItem*>(this), untouched);
    list.GetCurrentItem(nullptr);
}

TEST_F(Outlook2003CategoryListTest, AnIDIsSearchedFromTheCursorOnUntilAReset)
{
    Load(L"One;Two;Three;");
    list.GetItemByID(L"{2}");
    EXPECT_EQ(L"Two", CurrentName(list));
    list.GetItemByID(L"{2}"); // the cursor stays on it
    EXPECT_EQ(L"Two", CurrentName(list));
    list.GetItemByID(L"{1}"); // passed: the current item stays, the cursor is at the end
    EXPECT_EQ(L"Two", CurrentName(list));
    list.GetItemByID(L"{3}");
    EXPECT_EQ(L"Two", CurrentName(list));
    list.GetNextItem();
    EXPECT_EQ(L"(none)", CurrentName(list));
    list.ResetItem();
    list.GetItemByID(L"{1}");
    EXPECT_EQ(L"One", CurrentName(list));
    EXPECT_THAT(Rest(list), ElementsAre(L"One", L"Two", L"Three"));
}

TEST_F(Outlook2003CategoryListTest, IDsAreComparedExactly)
{
    nextGuid = [] { return std::wstring(L"{a}"); };
    Load(L"One;Two;");
    EXPECT_FALSE(Find(L"{A}"));
    EXPECT_FALSE(Find(L"{a"));
    EXPECT_FALSE(Find(L""));
    // Of equal ones the first at the cursor counts.
    list.ResetItem();
    list.GetNextItem();
    list.GetItemByID(L"{a}");
    EXPECT_EQ(L"Two", CurrentName(list));
}

TEST_F(Outlook2003CategoryListTest, AnIDThatAClientChangedIsFoundUnderItsNewText)
{
    Load(L"One;Two;");
    Find(L"{2}")->put_EntityID(Bstr(L"mine").Get());
    EXPECT_FALSE(Find(L"{2}"));
    EXPECT_EQ(L"Two", NameOf(Find(L"mine").Get()));
}

TEST_F(Outlook2003CategoryListTest, ThereIsNoLightListAndIDsStayAsTheyAre)
{
    Load(L"One;");
    std::list<ItemEntry> entries(2);
    EXPECT_EQ(FALSE, list.GetItemList(entries));
    EXPECT_EQ(2u, entries.size());
    EXPECT_EQ(L"any", list.ToInternalID(L"any"));
    EXPECT_EQ(L"any", list.ToClientID(L"any"));
}

// --- Writing -----------------------------------------------------------------------------------

TEST_F(Outlook2003CategoryListTest, AddsBehindTheOthersUnderANewID)
{
    Load(L"One;");
    const auto item = CategoryOf(L"Two", nullptr, 5);
    EXPECT_EQ(L"{2}", Add(item.Get()));
    EXPECT_EQ(L"{2}", EntityIDOf(item.Get()));
    EXPECT_EQ(L"One;Two;", MasterList().Read());
    EXPECT_EQ(REG_BINARY, ReadBytes(kCategoriesKey, L"MasterList").type);
    EXPECT_THAT(Walk(list), ElementsAre(L"One", L"Two"));
    // The list holds that very object.
    EXPECT_EQ(item.Get(), Find(L"{2}").Get());
    // What was written can be read again.
    list.GetItemIDs();
    EXPECT_THAT(Walk(list), ElementsAre(L"One", L"Two"));
}

TEST_F(Outlook2003CategoryListTest, AnIDThatTheItemBroughtIsReplaced)
{
    Load(L"");
    const auto item = CategoryOf(L"One", L"mine");
    EXPECT_EQ(L"{1}", Add(item.Get()));
    EXPECT_EQ(L"{1}", EntityIDOf(item.Get()));
}

TEST_F(Outlook2003CategoryListTest, ANameThatIsThereInAnotherLetterCaseIsNotAdded)
{
    Load(L"Work;\u00c4rger;");
    const std::wstring before = MasterList().Read();
    EXPECT_EQ(L"", Add(CategoryOf(L"wORK").Get()));
    EXPECT_EQ(L"mine", Add(CategoryOf(L"\u00e4RGER", L"mine").Get()));
    EXPECT_EQ(L"again", Add(CategoryOf(L"Work", L"again").Get()));
    EXPECT_THAT(Walk(list), ElementsAre(L"Work", L"\u00c4rger"));
    // Nothing is written either: the value has its old type.
    EXPECT_EQ(before, MasterList().Read());
    EXPECT_EQ(REG_SZ, ReadBytes(kCategoriesKey, L"MasterList").type);
}

TEST_F(Outlook2003CategoryListTest, TakesNoItemWithoutAName)
{
    Load(L"One;");
    EXPECT_EQ(L"", Add(nullptr));
    EXPECT_EQ(L"", Add(CategoryOf(nullptr).Get()));
    EXPECT_EQ(L"", Add(CategoryOf(L"").Get()));
    EXPECT_EQ(L"", Add(FakeItem::Make(IID_NULL).Get()));
    EXPECT_EQ(REG_SZ, ReadBytes(kCategoriesKey, L"MasterList").type);
    EXPECT_EQ(1, guids);
}

TEST_F(Outlook2003CategoryListTest, NothingIsAddedWithoutANewID)
{
    Load(L"One;");
    nextGuid = [] { return std::wstring(); };
    const auto item = CategoryOf(L"Two", L"mine");
    EXPECT_EQ(L"", Add(item.Get()));
    EXPECT_EQ(L"mine", EntityIDOf(item.Get()));
    EXPECT_EQ(L"One;", MasterList().Read());
}

TEST_F(Outlook2003CategoryListTest, AnUpdateWritesTheWholeListWhateverTheItemIs)
{
    Load(L"One;;Two");
    const auto two = Find(L"{2}");
    QueryItem<INContactCategory>(two.Get())->put_Name(Bstr(L"Zwei").Get());
    EXPECT_EQ(TRUE, list.UpdateItem(nullptr));
    EXPECT_EQ(L"One;Zwei;", MasterList().Read());
    EXPECT_EQ(REG_BINARY, ReadBytes(kCategoriesKey, L"MasterList").type);
    registry.SetText(kCategoriesKey, L"MasterList", L"");
    EXPECT_EQ(TRUE, list.UpdateItem(CategoryOf(L"Other").Get()));
    EXPECT_EQ(L"One;Zwei;", MasterList().Read());
}

TEST_F(Outlook2003CategoryListTest, DeletesByName)
{
    Load(L"One;Two;two;Two;");
    EXPECT_EQ(FALSE, list.DeleteItem(L"{2}")); // the ID is no name
    EXPECT_EQ(FALSE, list.DeleteItem(L""));
    EXPECT_EQ(FALSE, list.DeleteItem(L"TWO"));
    EXPECT_EQ(REG_SZ, ReadBytes(kCategoriesKey, L"MasterList").type);
    EXPECT_EQ(TRUE, list.DeleteItem(L"Two"));
    EXPECT_EQ(L"One;two;Two;", MasterList().Read());
    EXPECT_THAT(IDs(), ElementsAre(L"{1}", L"{3}", L"{4}"));
    EXPECT_EQ(L"Two", NameOf(Find(L"{4}").Get()));
    EXPECT_EQ(TRUE, list.DeleteItem(L"Two"));
    EXPECT_EQ(FALSE, list.DeleteItem(L"Two"));
    EXPECT_EQ(L"One;two;", MasterList().Read());
}

TEST_F(Outlook2003CategoryListTest, TheLastOneLeavesAnEmptyText)
{
    Load(L"One;");
    EXPECT_EQ(TRUE, list.DeleteItem(L"One"));
    EXPECT_EQ((std::vector<BYTE>{0, 0}), ReadBytes(kCategoriesKey, L"MasterList").bytes);
    EXPECT_THAT(Walk(list), IsEmpty());
}

TEST_F(Outlook2003CategoryListTest, ADeletionLeavesTheCursorBeforeTheSameItem)
{
    for (const auto& [deleted, rest] :
         {std::pair<const wchar_t*, std::vector<std::wstring>>{L"One", {L"Two", L"Three"}},
          {L"Two", {L"Three"}},
          {L"Three", {L"Two"}}})
    {
        Load(L"One;Two;Three;");
        list.GetNextItem();
        EXPECT_EQ(TRUE, list.DeleteItem(deleted));
        EXPECT_EQ(L"One", CurrentName(list)); // also where it is the one that went
        EXPECT_EQ(rest, Rest(list));
    }
    // At the end it stays there, also for what comes.
    EXPECT_EQ(L"{10}", Add(CategoryOf(L"Four").Get()));
    EXPECT_THAT(Rest(list), IsEmpty());
    Load(L"One;");
    EXPECT_EQ(TRUE, list.DeleteItem(L"One"));
    EXPECT_THAT(Rest(list), IsEmpty());
}

TEST_F(Outlook2003CategoryListTest, WithoutOutlooksKeyWritesGoElsewhereAndAreNotReadAgain)
{
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software");
    list.GetItemIDs();
    EXPECT_EQ(L"{1}", Add(CategoryOf(L"One").Get()));
    EXPECT_EQ((std::vector<BYTE>{'O', 0, 'n', 0, 'e', 0, ';', 0, 0, 0}),
              ReadBytes(L"MasterList", L"MasterList").bytes);
    list.GetItemIDs();
    EXPECT_THAT(Walk(list), IsEmpty());
}

// The user's key itself is gone: it opens no key and takes none.
TEST_F(Outlook2003CategoryListTest, WhereNoKeyCanBeMadeNothingIsWritten)
{
    Load(L"One;");
    RegDeleteTreeW(HKEY_CURRENT_USER, L"Software");
    ASSERT_EQ(ERROR_SUCCESS, RegDeleteKeyW(registry.Root(), L""));
    EXPECT_EQ(L"{2}", Add(CategoryOf(L"Two").Get()));
    EXPECT_THAT(Walk(list), ElementsAre(L"One", L"Two")) << "kept until the next load";
    EXPECT_EQ(TRUE, list.UpdateItem(nullptr));
    EXPECT_EQ(TRUE, list.DeleteItem(L"One"));
    EXPECT_THAT(ReadBytes(L"MasterList", L"MasterList").bytes, IsEmpty());
    EXPECT_THAT(ReadBytes(kCategoriesKey, L"MasterList").bytes, IsEmpty());
    list.GetItemIDs();
    EXPECT_THAT(Walk(list), IsEmpty());
}

// --- Calls inside a call -----------------------------------------------------------------------

namespace
{
// An object of a client's own, which the test keeps.
template <typename Interface> class ClientObject : public EarlyBound<Interface>
{
  public:
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
};

// A category of a client's own, whose name calls the list again.
class CallingCategory final : public ClientObject<INContactCategory>
{
  public:
    std::wstring name = L"Called";
    std::function<void()> onName = [] {};

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        *result = IsEqualGUID(iid, IID_INContactCategory) ? this : nullptr;
        return *result ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP get_Name(BSTR* value) override
    {
        onName();
        *value = NewText(name);
        return S_OK;
    }
    STDMETHODIMP put_Name(BSTR) override { return S_OK; }
    STDMETHODIMP get_Color(LONG*) override { return E_NOTIMPL; }
    STDMETHODIMP put_Color(LONG) override { return S_OK; }
    STDMETHODIMP get_Items(SAFEARRAY**) override { return E_NOTIMPL; }
    STDMETHODIMP put_Items(SAFEARRAY*) override { return S_OK; }
};

// Leads to a category for that interface alone.
class CallingItem final : public ClientObject<INEntityItem>
{
  public:
    CallingCategory category;
    std::wstring id;
    int idReads = 0;

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        *result = IsEqualGUID(iid, IID_INContactCategory)
                      ? static_cast<IUnknown*>(&category)
                      : static_cast<IUnknown*>(static_cast<INEntityItem*>(this));
        return S_OK;
    }
    STDMETHODIMP get_EntityID(BSTR* value) override
    {
        ++idReads;
        *value = NewText(id);
        return S_OK;
    }
    STDMETHODIMP put_EntityID(BSTR value) override
    {
        id = TextOf(value);
        return S_OK;
    }
    STDMETHODIMP get_LastModificationTime(DATE*) override { return E_NOTIMPL; }
    STDMETHODIMP put_LastModificationTime(DATE) override { return S_OK; }
    STDMETHODIMP get_FolderID(BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP put_FolderID(BSTR) override { return S_OK; }
};
} // namespace

TEST_F(Outlook2003CategoryListTest, WhileAnItemIsReadNothingElseChangesTheList)
{
    Load(L"One;Two;");
    CallingItem item;
    int calls = 0;
    item.category.onName = [&] {
        ++calls;
        list.GetItemIDs();
        EXPECT_EQ(FALSE, list.UpdateItem(nullptr));
        EXPECT_EQ(FALSE, list.DeleteItem(L"One"));
        std::wstring folderID;
        EXPECT_EQ(L"", list.AddItem(CategoryOf(L"Other").Get(), folderID));
        list.ResetItem(); // moving is allowed
        list.GetNextItem();
        EXPECT_EQ(L"One", CurrentName(list));
    };
    EXPECT_EQ(L"{3}", Add(&item));
    EXPECT_GE(calls, 1);
    EXPECT_EQ(L"One;Two;Called;", MasterList().Read());
    list.GetItemIDs(); // lets go of the item
}

// --- Cost --------------------------------------------------------------------------------------

TEST_F(Outlook2003CategoryListTest, ALookupDoesNotReadTheWholeList)
{
    Load(L"");
    constexpr int kCount = 100;
    std::deque<CallingItem> items(kCount);
    for (int i = 0; i < kCount; ++i)
    {
        items[i].category.name = L"Name " + std::to_wstring(i);
        Add(&items[i]);
    }
    const auto reads = [&] {
        int all = 0;
        for (const CallingItem& item : items)
            all += item.idReads;
        return all;
    };
    const int before = reads();
    for (int i = kCount; i-- > 0;)
    {
        list.ResetItem();
        list.GetItemByID(items[i].id);
        EXPECT_EQ(items[i].category.name, CurrentName(list));
    }
    EXPECT_LE(reads() - before, 2 * kCount);
    registry.SetText(kCategoriesKey, L"MasterList", L"");
    list.GetItemIDs(); // lets go of the items
    list.ResetItem();
}
