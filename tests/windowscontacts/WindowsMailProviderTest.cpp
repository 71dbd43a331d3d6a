#include "windowscontacts/WindowsMailProvider.h"

#include "outlook/store/EntryIdText.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "service/ServiceManager.h"
#include "support/ComAssert.h"
#include "support/DebugOutputCapture.h"
#include "support/ScopedRegistryValue.h"
#include "support/ScratchDirectory.h"
#include "tests/outlook/FakeAddressBook.h"
#include "tests/recordingstore/RecordingStore.h"

#include <gmock/gmock.h>

#include <exception>
#include <fstream>
#include <typeinfo>

using Microsoft::WRL::ComPtr;
using Calls = std::vector<std::string>;

namespace
{
// The calls of an opening that succeeds, and those of the end.
const Calls kOpening = {"WABOpen parameters null, reserved 0",
                        "GetPAB",
                        "OpenEntry personal book, interface null, flags 0",
                        "FreeBuffer"};
const Calls kEnding = {"release container", "release address book", "release IWABObject", "unload"};

Calls operator+(Calls first, const Calls& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

// The fake library stands where the Windows Address Book would.
class WindowsMailProviderTest : public testing::Test
{
  protected:
    WindowsMailProviderTest() { libraryPath.Set(FakeAddressBook::Path()); }

    // What the construction throws: the name of the exception's exact type, "" for none.
    static std::string ThrownBy(bool addressBookOnly)
    {
        try
        {
            const CWindowsMailProvider provider(addressBookOnly);
            return {};
        }
        catch (const std::exception& error)
        {
            return typeid(error) == typeid(std::exception) ? "std::exception"
                                                           : typeid(error).name();
        }
    }

    ScopedRegistryValue libraryPath{HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\WAB\\DLLPath", L""};
    FakeAddressBook book;
};

// The user's folder for local application data lies in a scratch folder.
class WindowsMailProviderCalendarTest : public WindowsMailProviderTest
{
  protected:
    WindowsMailProviderCalendarTest() { localData.Set(scratch.Path().wstring(), REG_EXPAND_SZ); }

    // Writes a calendar of one event with that UID into the folder of Windows Calendar.
    void WriteCalendar(const char* uid) const
    {
        const auto folder = scratch.Path() / L"Microsoft" / L"Windows Calendar" / L"Calendars";
        std::filesystem::create_directories(folder);
        std::ofstream file(folder / L"one.ics", std::ios::binary);
        file << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VEVENT\r\nUID:" << uid
             << "\r\nDTSTART:20240102T100000Z\r\nDTEND:20240102T110000Z\r\nSUMMARY:One\r\n"
                "END:VEVENT\r\nEND:VCALENDAR\r\n";
    }
    static std::wstring CurrentID(CCalendarHandle& calendar)
    {
        ComPtr<INAppointment> appointment;
        calendar.GetCurrentAppointment(appointment.GetAddressOf());
        if (!appointment)
            return L"(none)";
        ComPtr<INEntityItem> item;
        appointment.CopyTo(item.GetAddressOf());
        Bstr id;
        item->get_EntityID(id.Put());
        return TextOf(id.Get());
    }

    ScratchDirectory scratch;
    ScopedRegistryValue localData{
        HKEY_CURRENT_USER,
        L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders",
        L"Local AppData"};
};

// The recording store stands there, with two contacts and a distribution list.
class WindowsMailProviderBookTest : public testing::Test
{
  protected:
    WindowsMailProviderBookTest()
    {
        libraryPath.Set(RecordingStore::Path());
        store.AddBook();
        AddContact("ann", L"/GUID:\"ann\"");
        store.AddBookEntry("choir", {}, MAPI_DISTLIST);
        AddContact("bob", L"/GUID:\"bob\"");
    }
    ~WindowsMailProviderBookTest() override { EXPECT_TRUE(store.IsClean()) << store.Complaints(); }

    void AddContact(const char* name, std::wstring_view entryID)
    {
        const BYTE* const bytes = reinterpret_cast<const BYTE*>(entryID.data());
        store.AddBookEntry(name);
        store.SetEntryId(name, {bytes, bytes + entryID.size() * sizeof(wchar_t)});
    }
    std::wstring HexOf(const char* name) const { return BytesToHex(store.EntryIdOf(name)); }
    static std::wstring CurrentID(CAddressBookHandle& book)
    {
        ComPtr<INContactItem> contact;
        book.GetCurrentContact(contact.GetAddressOf());
        if (!contact)
            return L"(none)";
        Bstr id;
        contact->get_PersistentID(id.Put());
        return TextOf(id.Get());
    }

    ScopedRegistryValue libraryPath{HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\WAB\\DLLPath", L""};
    RecordingStore store;
};

// A new object of the class; null where the creation failed.
template <typename Interface> ComPtr<Interface> Create(REFCLSID clsid)
{
    ComPtr<Interface> object;
    CoCreateInstance(clsid,
                     nullptr,
                     kServerContext,
                     __uuidof(Interface),
                     reinterpret_cast<void**>(object.GetAddressOf()));
    return object;
}

// One failing step each, and what was called until then, to the unloading.
struct FailingStep
{
    FakeBookFailure failure;
    Calls calls;
};
class WindowsMailProviderFailureTest : public testing::TestWithParam<FailingStep>
{
};
} // namespace

TEST_F(WindowsMailProviderTest, OpensThePersonalAddressBookAndGivesItBackInOrder)
{
    {
        const CWindowsMailProvider provider(true);
        EXPECT_EQ(kOpening, book.Calls());
    }
    EXPECT_EQ(kOpening + kEnding, book.Calls());
}

TEST_P(WindowsMailProviderFailureTest, ThrowsAndGivesBackWhatWasOpened)
{
    ScopedRegistryValue libraryPath(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\WAB\\DLLPath", L"");
    libraryPath.Set(FakeAddressBook::Path());
    for (const bool addressBookOnly : {true, false})
    {
        FakeAddressBook book(GetParam().failure);
        EXPECT_THROW(CWindowsMailProvider provider(addressBookOnly), std::exception);
        EXPECT_EQ(GetParam().calls, book.Calls());
    }
}

INSTANTIATE_TEST_SUITE_P(
    Steps,
    WindowsMailProviderFailureTest,
    testing::Values(FailingStep{FakeBookFailure::OpenFails, Calls{kOpening[0], "unload"}},
                    FailingStep{FakeBookFailure::OpenGivesNoBook,
                                Calls{kOpening[0], "release IWABObject", "unload"}},
                    FailingStep{FakeBookFailure::OpenGivesNoObject,
                                Calls{kOpening[0], "release address book", "unload"}},
                    FailingStep{FakeBookFailure::PersonalBookFails,
                                Calls{kOpening[0], "GetPAB", kEnding[1], kEnding[2], "unload"}},
                    FailingStep{FakeBookFailure::PersonalBookGivesNull,
                                Calls{kOpening[0], "GetPAB", kEnding[1], kEnding[2], "unload"}},
                    FailingStep{FakeBookFailure::EntryFails,
                                kOpening + Calls{kEnding[1], kEnding[2], "unload"}},
                    FailingStep{FakeBookFailure::EntryGivesNull,
                                kOpening + Calls{kEnding[1], kEnding[2], "unload"}}));

TEST_F(WindowsMailProviderTest, ThrowsAPlainExceptionWithoutTheRegistryValueOrItsKey)
{
    libraryPath.Remove();
    EXPECT_EQ("std::exception", ThrownBy(true));
    EXPECT_EQ("std::exception", ThrownBy(false));
    RegDeleteKeyW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\WAB\\DLLPath");
    UniqueRegistryKey key;
    ASSERT_EQ(
        ERROR_FILE_NOT_FOUND,
        RegOpenKeyExW(
            HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\WAB\\DLLPath", 0, KEY_READ, key.Put()));
    EXPECT_EQ("std::exception", ThrownBy(true));
    EXPECT_EQ("std::exception", ThrownBy(false));
}

TEST_F(WindowsMailProviderTest, ThrowsForALibraryThatDoesNotLoad)
{
    libraryPath.Set(L"C:\\no such folder\\wab32.dll");
    EXPECT_EQ("std::exception", ThrownBy(true));
    libraryPath.Set(L"");
    EXPECT_EQ("std::exception", ThrownBy(true));
}

TEST_F(WindowsMailProviderTest, ThrowsForALibraryWithoutWabOpen)
{
    libraryPath.Set(FakeAddressBook::BarePath());
    EXPECT_EQ("std::exception", ThrownBy(true));
    EXPECT_EQ((Calls{"unload"}), book.Calls());
}

TEST_F(WindowsMailProviderTest, FillsInTheVariablesOfThePath)
{
    const std::wstring path = FakeAddressBook::Path();
    const std::size_t cut = path.rfind(L'\\');
    SetEnvironmentVariableW(L"PIM_TEST_BOOK", path.substr(0, cut).c_str());
    libraryPath.Set(L"%PIM_TEST_BOOK%" + path.substr(cut), REG_EXPAND_SZ);
    EXPECT_EQ("", ThrownBy(true));
    libraryPath.Set(L"%PIM_TEST_BOOK%" + path.substr(cut), REG_SZ);
    EXPECT_EQ("", ThrownBy(true));
    SetEnvironmentVariableW(L"PIM_TEST_BOOK", nullptr);
    EXPECT_EQ("std::exception", ThrownBy(true));
}

TEST_F(WindowsMailProviderTest, ThrowsForAPathThatIsTooLongWhenFilledIn)
{
    // 200 characters twice pass the 260 that a path may have.
    SetEnvironmentVariableW(L"PIM_TEST_LONG", std::wstring(200, L'x').c_str());
    libraryPath.Set(L"%PIM_TEST_LONG%%PIM_TEST_LONG%", REG_EXPAND_SZ);
    EXPECT_EQ("std::exception", ThrownBy(true));
    SetEnvironmentVariableW(L"PIM_TEST_LONG", nullptr);
}

// The buffer holds 0x104 characters, the terminator among them. "\.\" steps stretch the path
// without leading elsewhere.
TEST_F(WindowsMailProviderTest, TakesAPathOfTheWholeBufferAndNoLongerOne)
{
    const std::wstring path = FakeAddressBook::Path();
    const std::size_t cut = path.rfind(L'\\');
    const auto stretched = [&](std::size_t length) {
        std::wstring middle;
        while (path.size() + middle.size() + 2 <= length)
            middle += L"\\.";
        if (path.size() + middle.size() < length)
            middle += L'\\';
        return path.substr(0, cut) + middle + path.substr(cut);
    };
    ASSERT_EQ(259u, stretched(259).size());
    libraryPath.Set(stretched(259));
    EXPECT_EQ("", ThrownBy(true));
    ASSERT_EQ(260u, stretched(260).size());
    libraryPath.Set(stretched(260));
    EXPECT_EQ("std::exception", ThrownBy(true));
}

TEST_F(WindowsMailProviderTest, HasNoIdentityAndNoRootFolders)
{
    CWindowsMailProvider provider(true);
    EXPECT_EQ(nullptr, provider.GetUserProperties());
    std::vector<OutlookFolderInfo> folders(2);
    EXPECT_FALSE(provider.GetContactFolders(folders));
    EXPECT_FALSE(provider.GetCalendarFolders(folders));
    EXPECT_EQ(2u, folders.size());
}

TEST_F(WindowsMailProviderBookTest, HandsOutLoadedContactsWithoutGroups)
{
    for (const bool isOutlookExpress : {false, true})
    {
        CWindowsMailProvider provider(isOutlookExpress);
        store.ClearRecord();
        const auto book = provider.GetAddressBook();
        ASSERT_NE(nullptr, book);
        EXPECT_FALSE(book->HasGroups());
        EXPECT_EQ("IABContainer(book).GetContentsTable(80000000)", store.Calls().front());
        EXPECT_EQ("IABContainer(book).OpenEntry(bob, null, 00000002, type)", store.Calls().back());
        book->NextItem();
        EXPECT_EQ(isOutlookExpress ? HexOf("ann") : L"ann", CurrentID(*book));
        book->NextItem();
        EXPECT_EQ(isOutlookExpress ? HexOf("bob") : L"bob", CurrentID(*book));
        book->NextItem();
        EXPECT_EQ(L"(none)", CurrentID(*book));
    }
}

TEST_F(WindowsMailProviderBookTest, EveryCallForAGroupFails)
{
    for (const wchar_t* const provider : {L"Outlook Express", L"Windows Mail"})
    {
        CServiceManager manager;
        const ScopedServiceManager current(manager);
        ASSERT_EQ(S_OK, manager.StartService(provider));
        const auto book = Create<INAddressBook>(CLSID_NAddressBook);
        const auto group = Create<INContactGroup>(CLSID_NContactGroup);
        ASSERT_TRUE(book && group);
        store.ClearRecord();
        VARIANT_BOOL done = VARIANT_FALSE;
        ComPtr<INContactGroup> found;
        Bstr id;
        EXPECT_EQ(E_FAIL, book->ResetGroup(&done));
        EXPECT_EQ(E_FAIL, book->GetNextGroup(found.GetAddressOf()));
        EXPECT_EQ(E_FAIL, book->GetGroupByID(Bstr(L"0A").Get(), found.GetAddressOf()));
        EXPECT_EQ(E_FAIL, book->UpdateGroup(group.Get(), &done));
        EXPECT_EQ(E_FAIL, book->DeleteGroup(Bstr(L"0A").Get(), &done));
        EXPECT_FALSE(found);
        EXPECT_EQ(Calls(), store.Calls());
        // One to add goes to the contacts, which take none.
        EXPECT_EQ(E_FAIL, book->AddGroup(group.Get(), id.Put()));
        EXPECT_EQ((std::vector<std::string>{"ann", "choir", "bob"}), store.ChildrenOf("book"));
    }
}

TEST_F(WindowsMailProviderBookTest, AnEnumeratorOverContactsIsNotLoadedYet)
{
    CWindowsMailProvider provider(false);
    store.ClearRecord();
    const auto table = provider.GetEnumerator(AddressBook);
    ASSERT_NE(nullptr, table);
    EXPECT_EQ(Calls(), store.Calls());
    table->ResetItem();
    table->GetNextItem();
    EXPECT_FALSE(CurrentItem(*table));
    table->GetItemIDs();
    table->ResetItem();
    table->GetNextItem();
    const auto item = CurrentItem(*table);
    ASSERT_TRUE(item);
    Bstr id;
    item->get_EntityID(id.Put());
    EXPECT_EQ(HexOf("ann"), TextOf(id.Get())) << "enumerators show the IDs as the table has them";
}

TEST_F(WindowsMailProviderBookTest, TheClientsIdsGoBothWays)
{
    CWindowsMailProvider provider(false);
    const auto book = provider.GetAddressBook();
    book->GetItemByID(L"bob");
    EXPECT_EQ(L"bob", CurrentID(*book));
    ComPtr<INContactItem> contact;
    book->GetCurrentContact(contact.GetAddressOf());
    ASSERT_TRUE(contact);
    contact->put_FirstName(Bstr(L"Robert").Get());
    EXPECT_TRUE(book->UpdateContact(contact.Get()));
    EXPECT_THAT(store.PropsOf("bob"), testing::Contains("3A06001F \"Robert\""));
    Bstr id;
    contact->get_PersistentID(id.Put());
    EXPECT_EQ(HexOf("bob"), TextOf(id.Get())) << "the item keeps the table's form";
    EXPECT_TRUE(book->DeleteItem(L"bob"));
    EXPECT_FALSE(store.Exists("bob"));
}

TEST_F(WindowsMailProviderBookTest, TablesThatAreStillHeldOutliveTheProvider)
{
    std::unique_ptr<CAddressBookHandle> book;
    std::unique_ptr<IEnumerator> table;
    {
        CWindowsMailProvider provider(false);
        book = provider.GetAddressBook();
        table = provider.GetEnumerator(AddressBook);
        table->GetItemIDs();
        table->ResetItem();
        table->GetNextItem();
    }
    EXPECT_TRUE(store.IsClean()) << store.Complaints();
    store.ClearRecord();
    book->NextItem();
    EXPECT_EQ(L"(none)", CurrentID(*book));
    book->Refresh();
    EXPECT_FALSE(book->DeleteItem(L"ann"));
    table->GetItemIDs();
    table->GetNextItem();
    EXPECT_FALSE(CurrentItem(*table));
    EXPECT_EQ(Calls(), store.Calls());
}

TEST_F(WindowsMailProviderTest, HasNoEnumeratorOfOtherTypes)
{
    CWindowsMailProvider provider(true);
    for (const int type : {Default + 0, ContactCategory + 0, ContactGroup + 0, 5, -1, 0x7FFFFFFF})
        EXPECT_EQ(nullptr, provider.GetEnumerator(type)) << type;
}

TEST_F(WindowsMailProviderTest, OutlookExpressHasAnEmptyCalendar)
{
    CWindowsMailProvider provider(true);
    const auto table = provider.GetEnumerator(Calendar);
    ASSERT_NE(nullptr, table);
    table->GetItemIDs();
    table->ResetItem();
    table->GetNextItem();
    ComPtr<INEntityItem> item;
    table->GetCurrentItem(item.GetAddressOf());
    EXPECT_EQ(nullptr, item.Get());

    const auto calendar = provider.GetCalendar();
    ASSERT_NE(nullptr, calendar);
    calendar->NextItem();
    ComPtr<INAppointment> appointment;
    calendar->GetCurrentAppointment(appointment.GetAddressOf());
    EXPECT_EQ(nullptr, appointment.Get());
}

TEST_F(WindowsMailProviderCalendarTest, WindowsMailHandsOutALoadedCalendar)
{
    WriteCalendar("first-uid");
    CWindowsMailProvider provider(false);
    const auto calendar = provider.GetCalendar();
    ASSERT_NE(nullptr, calendar);
    calendar->NextItem();
    EXPECT_EQ(L"first-uid", CurrentID(*calendar));
    calendar->NextItem();
    EXPECT_EQ(L"(none)", CurrentID(*calendar));
}

TEST_F(WindowsMailProviderCalendarTest, AnEnumeratorOverTheCalendarIsNotLoadedYet)
{
    WriteCalendar("first-uid");
    CWindowsMailProvider provider(false);
    const auto table = provider.GetEnumerator(Calendar);
    ASSERT_NE(nullptr, table);
    table->ResetItem();
    table->GetNextItem();
    ComPtr<INEntityItem> item;
    table->GetCurrentItem(item.GetAddressOf());
    EXPECT_EQ(nullptr, item.Get());
    table->GetItemIDs();
    table->ResetItem();
    table->GetNextItem();
    table->GetCurrentItem(item.GetAddressOf());
    EXPECT_NE(nullptr, item.Get());
}

TEST_F(WindowsMailProviderCalendarTest, TwoTablesWalkIndependently)
{
    WriteCalendar("first-uid");
    CWindowsMailProvider provider(false);
    const auto first = provider.GetCalendar();
    const auto second = provider.GetCalendar();
    first->NextItem();
    first->NextItem();
    second->NextItem();
    EXPECT_EQ(L"(none)", CurrentID(*first));
    EXPECT_EQ(L"first-uid", CurrentID(*second));
}

TEST_F(WindowsMailProviderCalendarTest, OutlookExpressDoesNotReadTheCalendarFolder)
{
    WriteCalendar("first-uid");
    CWindowsMailProvider provider(true);
    const auto calendar = provider.GetCalendar();
    calendar->NextItem();
    EXPECT_EQ(L"(none)", CurrentID(*calendar));
}

TEST_F(WindowsMailProviderCalendarTest, OnlyWindowsMailNeedsTheFolderForLocalData)
{
    localData.Set((scratch.Path() / L"gone").wstring(), REG_EXPAND_SZ);
    EXPECT_EQ("", ThrownBy(true));
    book.Calls().clear();
    EXPECT_EQ("std::exception", ThrownBy(false));
    EXPECT_EQ(kOpening + kEnding, book.Calls());
}

// --- Through the service manager -----------------------------------------------------------------

TEST_F(WindowsMailProviderTest, BothNamesStartIt)
{
    CServiceManager manager;
    for (const wchar_t* name : {L"Windows Mail", L"outlook express"})
    {
        EXPECT_EQ(S_OK, manager.StartService(name));
        EXPECT_NE(nullptr, manager.GetCalendar());
        EXPECT_EQ(nullptr, manager.GetUserProperties());
        book.Calls().clear();
        manager.StopService();
        EXPECT_EQ(kEnding, book.Calls());
    }
}

TEST_F(WindowsMailProviderCalendarTest, TheNameDecidesAboutTheCalendarFolder)
{
    WriteCalendar("first-uid");
    CServiceManager manager;
    const struct
    {
        const wchar_t* name;
        const wchar_t* firstID;
    } cases[] = {{L"Outlook Express", L"(none)"}, {L"Windows Mail", L"first-uid"}};
    for (const auto& one : cases)
    {
        ASSERT_EQ(S_OK, manager.StartService(one.name));
        const auto calendar = manager.GetCalendar();
        ASSERT_NE(nullptr, calendar);
        calendar->NextItem();
        EXPECT_EQ(one.firstID, CurrentID(*calendar));
        manager.StopService();
    }
}

TEST_F(WindowsMailProviderTest, TheManagerReportsAFailedConstruction)
{
    libraryPath.Remove();
    CServiceManager manager;
    const ScopedLogSettings logOn;
    DebugOutputCapture output;
    EXPECT_EQ(E_FAIL, manager.StartService(L"Windows Mail"));
    EXPECT_EQ(
        (std::vector<std::string>{"=========CServiceManager::StartService:: Windows Mail!\r\n",
                                  "=========CServiceManager::StartService::caught!\r\n",
                                  "=========CServiceManager::StartService::failed!\r\n"}),
        output.TakeLogMessages());
    EXPECT_EQ(nullptr, manager.GetCalendar());
}

// --- Through the automation objects --------------------------------------------------------------

TEST_F(WindowsMailProviderCalendarTest, ServesAClientOfTheAutomationObjects)
{
    WriteCalendar("first-uid");
    CServiceManager manager;
    const ScopedServiceManager current(manager);
    const auto create = [](REFCLSID clsid, REFIID iid, void** object) {
        return CoCreateInstance(clsid, nullptr, kServerContext, iid, object);
    };
    ComPtr<INPersonalInformationService> service;
    ASSERT_EQ(S_OK,
              create(CLSID_NPersonalInformationService,
                     IID_INPersonalInformationService,
                     reinterpret_cast<void**>(service.GetAddressOf())));
    ASSERT_EQ(S_OK, service->StartService(Bstr(L"Windows Mail").Get()));

    {
        ComPtr<INCalendar> calendar;
        EXPECT_EQ(S_OK, service->GetCalendar(calendar.GetAddressOf()));
        ASSERT_TRUE(calendar);
        ComPtr<INAppointment> appointment;
        EXPECT_EQ(S_OK, calendar->GetNextAppointment(appointment.GetAddressOf()));
        ASSERT_TRUE(appointment);
        Bstr subject;
        EXPECT_EQ(S_OK, appointment->get_Subject(subject.Put()));
        EXPECT_EQ(L"One", subject.View());
        INAppointment* none = appointment.Get();
        EXPECT_EQ(E_FAIL, calendar->GetNextAppointment(&none));
        EXPECT_EQ(nullptr, none);
    }
    {
        ComPtr<INEnumerator> enumerator;
        EXPECT_EQ(S_OK, service->GetEnumerator(Calendar, enumerator.GetAddressOf()));
        ASSERT_TRUE(enumerator);
        ComPtr<INEntityItem> item;
        EXPECT_EQ(S_OK, enumerator->GetNextItem(item.GetAddressOf()));
    }
    // There are no categories and no groups.
    INEnumerator* const mine = reinterpret_cast<INEnumerator*>(1);
    for (const auto type : {ContactCategory, ContactGroup})
    {
        INEnumerator* untouched = mine;
        EXPECT_EQ(S_OK, service->GetEnumerator(type, &untouched));
        EXPECT_EQ(mine, untouched);
    }
    INUserProperties* identity = reinterpret_cast<INUserProperties*>(1);
    EXPECT_EQ(S_OK, service->GetUserProperties(&identity));
    EXPECT_EQ(nullptr, identity);

    // A collection that outlives the service keeps its table.
    ComPtr<INCalendar> late;
    EXPECT_EQ(S_OK, service->GetCalendar(late.GetAddressOf()));
    ASSERT_TRUE(late);
    book.Calls().clear();
    EXPECT_EQ(S_OK, service->StopService());
    EXPECT_EQ(kEnding, book.Calls());
    ComPtr<INAppointment> appointment;
    EXPECT_EQ(S_OK, late->Refresh());
    VARIANT_BOOL reset = VARIANT_FALSE;
    EXPECT_EQ(S_OK, late->Reset(&reset));
    EXPECT_EQ(S_OK, late->GetNextAppointment(appointment.GetAddressOf()));
    void* none = this;
    EXPECT_EQ(E_FAIL, create(CLSID_NCalendar, IID_INCalendar, &none));
    EXPECT_EQ(nullptr, none);
}

TEST_F(WindowsMailProviderTest, AnEmptyCalendarEndsEveryWalkAtOnce)
{
    CServiceManager manager;
    const ScopedServiceManager current(manager);
    ASSERT_EQ(S_OK, manager.StartService(L"Outlook Express"));
    const auto calendar = Create<INCalendar>(CLSID_NCalendar);
    manager.GetEnumerator(Calendar);
    const auto enumerator = Create<INEnumerator>(CLSID_NEnumerator);
    ASSERT_TRUE(calendar && enumerator);
    INAppointment* appointment = reinterpret_cast<INAppointment*>(1);
    EXPECT_EQ(E_FAIL, calendar->GetNextAppointment(&appointment));
    EXPECT_EQ(nullptr, appointment);
    INEntityItem* item = reinterpret_cast<INEntityItem*>(1);
    EXPECT_EQ(E_FAIL, enumerator->GetNextItem(&item));
    EXPECT_EQ(nullptr, item);
}

// After its creation a collection stands before the first item, after a reload at the end.
TEST_F(WindowsMailProviderCalendarTest, ARefreshEndsTheWalkUntilTheReset)
{
    WriteCalendar("first-uid");
    CServiceManager manager;
    const ScopedServiceManager current(manager);
    ASSERT_EQ(S_OK, manager.StartService(L"Windows Mail"));
    const auto calendar = Create<INCalendar>(CLSID_NCalendar);
    manager.GetEnumerator(Calendar);
    const auto enumerator = Create<INEnumerator>(CLSID_NEnumerator);
    ASSERT_TRUE(calendar && enumerator);
    VARIANT_BOOL done = VARIANT_FALSE;
    ComPtr<INAppointment> appointment;
    EXPECT_EQ(S_OK, calendar->Refresh());
    EXPECT_EQ(E_FAIL, calendar->GetNextAppointment(appointment.ReleaseAndGetAddressOf()));
    EXPECT_EQ(S_OK, calendar->Reset(&done));
    EXPECT_EQ(S_OK, calendar->GetNextAppointment(appointment.ReleaseAndGetAddressOf()));
    ComPtr<INEntityItem> item;
    EXPECT_EQ(S_OK, enumerator->Refresh());
    EXPECT_EQ(E_FAIL, enumerator->GetNextItem(item.ReleaseAndGetAddressOf()));
    EXPECT_EQ(S_OK, enumerator->ResetItem(&done));
    EXPECT_EQ(S_OK, enumerator->GetNextItem(item.ReleaseAndGetAddressOf()));
}

// A client that lets go too late: everything it holds works or fails, and the book stays closed.
TEST_F(WindowsMailProviderCalendarTest, WhatAClientHoldsOverAStopBringsNothingDown)
{
    WriteCalendar("first-uid");
    CServiceManager manager;
    const ScopedServiceManager current(manager);
    const auto service = Create<INPersonalInformationService>(CLSID_NPersonalInformationService);
    ASSERT_TRUE(service);
    ASSERT_EQ(S_OK, service->StartService(Bstr(L"Windows Mail").Get()));
    ComPtr<INCalendar> calendar;
    ComPtr<INEnumerator> enumerator;
    ComPtr<INAppointment> held;
    EXPECT_EQ(S_OK, service->GetCalendar(calendar.GetAddressOf()));
    EXPECT_EQ(S_OK, service->GetEnumerator(Calendar, enumerator.GetAddressOf()));
    ASSERT_TRUE(calendar && enumerator);
    EXPECT_EQ(S_OK, calendar->GetNextAppointment(held.GetAddressOf()));
    ASSERT_TRUE(held);
    ComPtr<INEntityItem> entity;
    ASSERT_EQ(S_OK, held.As(&entity));

    EXPECT_EQ(S_OK, service->StopService());
    book.Calls().clear();

    const Bstr id(L"first-uid");
    VARIANT_BOOL done = VARIANT_FALSE;
    ComPtr<INAppointment> appointment;
    ComPtr<INEntityItem> item;
    Bstr newID;
    EXPECT_EQ(S_OK, held->put_Subject(Bstr(L"Changed").Get()));
    EXPECT_EQ(S_OK, calendar->UpdateAppointment(held.Get(), &done));
    EXPECT_EQ(S_OK, calendar->AddAppointment(held.Get(), newID.Put()));
    EXPECT_EQ(S_OK, calendar->Refresh());
    EXPECT_EQ(S_OK, calendar->Reset(&done));
    EXPECT_EQ(S_OK, calendar->GetAppointmentByID(id.Get(), appointment.GetAddressOf()));
    EXPECT_EQ(S_OK, calendar->DeleteAppointment(newID.Get(), &done));
    EXPECT_EQ(S_OK, enumerator->Refresh());
    EXPECT_EQ(S_OK, enumerator->ResetItem(&done));
    EXPECT_EQ(S_OK, enumerator->GetNextItem(item.GetAddressOf()));
    EXPECT_EQ(S_OK, enumerator->UpdateItem(item.Get(), &done));
    EXPECT_EQ(S_OK, enumerator->AddItem(entity.Get(), newID.Put()));
    EXPECT_EQ(S_OK, enumerator->DeleteItem(newID.Get(), &done));
    EXPECT_EQ(S_OK, enumerator->ResetItem(&done));
    item.Reset();
    EXPECT_EQ(S_OK, enumerator->GetItemByID(id.Get(), item.GetAddressOf()));
    calendar.Reset();
    enumerator.Reset();
    Bstr subject;
    EXPECT_EQ(S_OK, held->get_Subject(subject.Put()));
    EXPECT_EQ(L"Changed", subject.View());
    // Nothing of all that reached the address book, whose library is gone.
    EXPECT_EQ(Calls{}, book.Calls());
}
