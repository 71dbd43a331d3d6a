// The calendar folder through the server's contract: the two back ends over the installed address
// book, and files that vanish, are held by others or must not be written.
#include "endtoend/CalendarClient.h"
#include "endtoend/CalendarFilesTest.h"
#include "endtoend/PlainServer.h"
#include "endtoend/ProcessUsage.h"
#include "support/Dispatch.h"
#include "support/ScratchDirectory.h"

#include <gmock/gmock.h>

#include <functional>

using Microsoft::WRL::ComPtr;

namespace
{
using Texts = std::vector<std::wstring>;
constexpr HRESULT kNullReference = HRESULT_FROM_WIN32(RPC_X_NULL_REF_POINTER);

class CalendarStoreTest : public CalendarFilesTest
{
  protected:
    void SetUp() override
    {
        CalendarFilesTest::SetUp();
        service = MakeInServer<INPersonalInformationService>(CLSID_NPersonalInformationService);
        ASSERT_TRUE(service);
    }
    void TearDown() override { EXPECT_EQ(S_OK, service->StopService()); }

    HRESULT Start(const wchar_t* name) { return service->StartService(Bstr(name).Get()); }
    // The calendar of the started folder.
    ComPtr<INCalendar> Load()
    {
        EXPECT_EQ(S_OK, Start(kWindowsMail));
        return CalendarOf(service.Get());
    }
    static HRESULT Add(INCalendar* calendar, const wchar_t* subject)
    {
        const auto item = MakeInServer<INAppointment>(CLSID_NAppointment);
        EXPECT_EQ(S_OK, item->put_Subject(Bstr(subject).Get()));
        Bstr id;
        const HRESULT result = calendar->AddAppointment(item.Get(), id.Put());
        EXPECT_EQ(result == S_OK ? 38u : 0u, id.View().size());
        return result;
    }
    static HRESULT Rename(INCalendar* calendar, const wchar_t* id, const wchar_t* subject)
    {
        const auto item = Find(calendar, id);
        if (!item)
            return E_POINTER;
        EXPECT_EQ(S_OK, item->put_Subject(Bstr(subject).Get()));
        VARIANT_BOOL result = VARIANT_FALSE;
        const HRESULT updated = calendar->UpdateAppointment(item.Get(), &result);
        EXPECT_EQ(updated == S_OK ? VARIANT_TRUE : VARIANT_FALSE, result);
        return updated;
    }
    static HRESULT Delete(INCalendar* calendar, const wchar_t* id)
    {
        VARIANT_BOOL result = VARIANT_FALSE;
        const HRESULT deleted = calendar->DeleteAppointment(Bstr(id).Get(), &result);
        EXPECT_EQ(deleted == S_OK ? VARIANT_TRUE : VARIANT_FALSE, result);
        return deleted;
    }
    static std::wstring PathOf(const wchar_t* name) { return (s_folder->Path() / name).wstring(); }

    ComPtr<INPersonalInformationService> service;
};
} // namespace

TEST_F(CalendarStoreTest, StartsOverTheInstalledAddressBook)
{
    ComPtr<INCalendar> none;
    EXPECT_EQ(S_OK, service->GetCalendar(none.GetAddressOf()));
    EXPECT_FALSE(none);
    EXPECT_EQ(E_FAIL, Start(L""));
    EXPECT_EQ(E_FAIL, Start(L"Windows Mail "));
    EXPECT_EQ(E_POINTER, service->StartService(nullptr));
    EXPECT_EQ(S_OK, Start(L"WINDOWS mail"));
    // What runs stays, whatever the name.
    EXPECT_EQ(S_OK, Start(L"no such name"));
    EXPECT_TRUE(CalendarOf(service.Get()));
    // A second service object sees it.
    const auto second =
        MakeInServer<INPersonalInformationService>(CLSID_NPersonalInformationService);
    EXPECT_TRUE(CalendarOf(second.Get()));
    EXPECT_EQ(S_OK, second->StopService());
    EXPECT_EQ(S_OK, second->StopService());
    EXPECT_FALSE(CalendarOf(service.Get()));
}

TEST_F(CalendarStoreTest, DoesNotStartWhereTheBookIsGone)
{
    constexpr wchar_t kKey[] = L"Software\\Microsoft\\WAB\\DLLPath";
    wchar_t path[MAX_PATH] = {};
    DWORD bytes = sizeof(path);
    ASSERT_EQ(
        ERROR_SUCCESS,
        RegGetValueW(HKEY_LOCAL_MACHINE, kKey, nullptr, RRF_RT_REG_SZ, nullptr, path, &bytes));
    for (const wchar_t* wrong : {L"", L"C:\\no such folder\\book.dll", L"C:\\"})
    {
        RegSetKeyValueW(HKEY_LOCAL_MACHINE,
                        kKey,
                        nullptr,
                        REG_SZ,
                        wrong,
                        static_cast<DWORD>((wcslen(wrong) + 1) * sizeof(wchar_t)));
        EXPECT_EQ(E_FAIL, Start(kWindowsMail));
        EXPECT_EQ(E_FAIL, Start(kOutlookExpress));
        EXPECT_FALSE(CalendarOf(service.Get()));
    }
    RegSetKeyValueW(HKEY_LOCAL_MACHINE,
                    kKey,
                    nullptr,
                    REG_SZ,
                    path,
                    static_cast<DWORD>((wcslen(path) + 1) * sizeof(wchar_t)));
    EXPECT_EQ(S_OK, Start(kWindowsMail));
}

TEST_F(CalendarStoreTest, HandsOutWhatTheBackEndHas)
{
    s_folder->Write(L"Work.ics", NumberedCalendar("Task", 2));
    ASSERT_EQ(S_OK, Start(kWindowsMail));
    ComPtr<INUserProperties> user;
    EXPECT_EQ(S_OK, service->GetUserProperties(user.GetAddressOf()));
    EXPECT_FALSE(user);
    for (const _tagNEnumeratorType missing : {ContactCategory, ContactGroup})
    {
        ComPtr<INEnumerator> none;
        EXPECT_EQ(S_OK, service->GetEnumerator(missing, none.GetAddressOf()));
        EXPECT_FALSE(none);
    }
    // The last type asked for stands for Default.
    for (const _tagNEnumeratorType type : {Calendar, Default})
    {
        ComPtr<INEnumerator> enumerator;
        EXPECT_EQ(S_OK, service->GetEnumerator(type, enumerator.GetAddressOf()));
        ASSERT_TRUE(enumerator);
        for (const wchar_t* id : {L"N1", L"N2"})
        {
            ComPtr<INEntityItem> item;
            EXPECT_EQ(S_OK, enumerator->GetNextItem(item.GetAddressOf()));
            ASSERT_TRUE(item);
            Bstr got;
            EXPECT_EQ(S_OK, item->get_EntityID(got.Put()));
            EXPECT_EQ(id, got.View());
            ComPtr<INAppointment> appointment;
            EXPECT_EQ(S_OK, item.As(&appointment));
        }
        ComPtr<INEntityItem> end;
        EXPECT_EQ(E_FAIL, enumerator->GetNextItem(end.GetAddressOf()));
        EXPECT_FALSE(end);
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(S_OK, enumerator->ResetItem(&result));
        EXPECT_EQ(S_OK, enumerator->GetItemByID(Bstr(L"N2").Get(), end.GetAddressOf()));
        EXPECT_TRUE(end);
    }
    SAFEARRAY* folders = nullptr;
    EXPECT_EQ(E_NOTIMPL, service->GetCalendarRootFolders(&folders));
}

TEST_F(CalendarStoreTest, WritesThroughTheEnumerator)
{
    s_folder->Write(L"Work.ics", NumberedCalendar("Task", 2));
    ASSERT_EQ(S_OK, Start(kWindowsMail));
    ComPtr<INEnumerator> enumerator;
    EXPECT_EQ(S_OK, service->GetEnumerator(Calendar, enumerator.GetAddressOf()));
    ASSERT_TRUE(enumerator);
    const auto item = MakeInServer<INEntityItem>(CLSID_NAppointment);
    Bstr id;
    EXPECT_EQ(S_OK, enumerator->AddItem(item.Get(), id.Put()));
    EXPECT_EQ(38u, id.View().size());
    Bstr shown;
    EXPECT_EQ(S_OK, item->get_EntityID(shown.Put()));
    EXPECT_EQ(id.View(), shown.View());
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(S_OK, enumerator->UpdateItem(item.Get(), &result));
    EXPECT_EQ(VARIANT_TRUE, result);
    result = VARIANT_FALSE;
    EXPECT_EQ(S_OK, enumerator->DeleteItem(id.Get(), &result));
    EXPECT_EQ(VARIANT_TRUE, result);
    EXPECT_EQ(E_FAIL, enumerator->DeleteItem(id.Get(), &result));
    EXPECT_EQ(E_FAIL, enumerator->UpdateItem(item.Get(), &result));
    EXPECT_EQ((Texts{L"Task 1", L"Task 2"}), Subjects(CalendarOf(service.Get()).Get()));
}

TEST_F(CalendarStoreTest, NullOutputsAreAnsweredByTheSystem)
{
    const auto calendar = Load();
    ASSERT_TRUE(calendar);
    const auto item = MakeInServer<INAppointment>(CLSID_NAppointment);
    const Bstr id(L"N1");
    EXPECT_EQ(kNullReference, service->GetProviders(nullptr));
    EXPECT_EQ(kNullReference, service->GetDefaultProvider(nullptr));
    EXPECT_EQ(kNullReference, service->GetCalendar(nullptr));
    EXPECT_EQ(kNullReference, service->GetEnumerator(Calendar, nullptr));
    EXPECT_EQ(kNullReference, calendar->Reset(nullptr));
    EXPECT_EQ(kNullReference, calendar->GetNextAppointment(nullptr));
    EXPECT_EQ(kNullReference, calendar->GetAppointmentByID(id.Get(), nullptr));
    EXPECT_EQ(kNullReference, calendar->AddAppointment(item.Get(), nullptr));
    EXPECT_EQ(kNullReference, calendar->UpdateAppointment(item.Get(), nullptr));
    EXPECT_EQ(kNullReference, calendar->DeleteAppointment(id.Get(), nullptr));
    // What is no output reaches the server, which refuses it.
    Bstr text;
    VARIANT_BOOL result = VARIANT_FALSE;
    ComPtr<INAppointment> none;
    EXPECT_EQ(E_POINTER, calendar->GetAppointmentByID(nullptr, none.GetAddressOf()));
    EXPECT_EQ(E_POINTER, calendar->AddAppointment(nullptr, text.Put()));
    EXPECT_EQ(E_POINTER, calendar->UpdateAppointment(nullptr, &result));
    EXPECT_EQ(E_POINTER, calendar->DeleteAppointment(nullptr, &result));
    EXPECT_EQ(Texts{}, Subjects(calendar.Get()));
}

TEST_F(CalendarStoreTest, OutlookExpressHasAnEmptyCalendar)
{
    // The server's current folder, where it comes from the client, holds what must not be found.
    service.Reset();
    EndServers();
    const ScratchDirectory elsewhere;
    wchar_t former[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, former);
    ASSERT_TRUE(SetCurrentDirectoryW(elsewhere.Path().c_str()));
    ASSERT_TRUE(CopyFileW(
        [] {
            s_folder->Write(L"Work.ics", NumberedCalendar("Task", 2));
            return PathOf(L"Work.ics");
        }()
            .c_str(),
        elsewhere.File(L"Work.ics").c_str(),
        TRUE));
    service = MakeInServer<INPersonalInformationService>(CLSID_NPersonalInformationService);
    ASSERT_TRUE(SetCurrentDirectoryW(former));
    ASSERT_TRUE(service);
    ASSERT_EQ(S_OK, Start(kOutlookExpress));

    const auto calendar = CalendarOf(service.Get());
    ASSERT_TRUE(calendar);
    EXPECT_EQ(Texts{}, Subjects(calendar.Get()));
    EXPECT_EQ(E_FAIL, Add(calendar.Get(), L"Lost"));
    EXPECT_EQ(E_FAIL, Delete(calendar.Get(), L"N1"));
    ComPtr<INEnumerator> enumerator;
    EXPECT_EQ(S_OK, service->GetEnumerator(Calendar, enumerator.GetAddressOf()));
    ASSERT_TRUE(enumerator);
    ComPtr<INEntityItem> none;
    EXPECT_EQ(E_FAIL, enumerator->GetNextItem(none.GetAddressOf()));
    EXPECT_FALSE(std::filesystem::exists(elsewhere.File(L"default.ics")));
    EXPECT_FALSE(std::filesystem::exists(PathOf(L"default.ics")));
}

TEST_F(CalendarStoreTest, TheFolderDisappears)
{
    s_folder->Write(L"Work.ics", NumberedCalendar("Task", 2));
    const auto calendar = Load();
    ASSERT_TRUE(calendar);
    std::filesystem::remove_all(s_folder->Path());

    EXPECT_EQ((Texts{L"Task 1", L"Task 2"}), Subjects(calendar.Get()));
    EXPECT_EQ(E_FAIL, Rename(calendar.Get(), L"N1", L"Changed"));
    EXPECT_EQ(E_FAIL, Add(calendar.Get(), L"New"));
    // A deletion tells of the tree, not of the file.
    EXPECT_EQ(S_OK, Delete(calendar.Get(), L"N2"));
    EXPECT_EQ(E_FAIL, Delete(calendar.Get(), L"N2"));
    EXPECT_FALSE(std::filesystem::exists(s_folder->Path()));

    EXPECT_EQ(S_OK, calendar->Refresh());
    EXPECT_EQ(Texts{}, Subjects(calendar.Get()));
    EXPECT_EQ(E_FAIL, Add(calendar.Get(), L"New"));
    EXPECT_EQ(Texts{}, Subjects(CalendarOf(service.Get()).Get()));

    std::filesystem::create_directories(s_folder->Path());
    EXPECT_EQ(S_OK, calendar->Refresh());
    EXPECT_EQ(S_OK, Add(calendar.Get(), L"New"));
    EXPECT_EQ(S_OK, calendar->Refresh());
    EXPECT_EQ(Texts{L"New"}, Subjects(calendar.Get()));
}

TEST_F(CalendarStoreTest, AFileThatAnotherProcessHoldsIsLeftOut)
{
    s_folder->Write(L"Held.ics", NumberedCalendar("Held", 1));
    s_folder->Write(L"Work.ics", CalendarText({EventText("W1", "Work 1")}));
    UniqueFile held(CreateFileW(
        PathOf(L"Held.ics").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(held);
    const auto calendar = Load();
    ASSERT_TRUE(calendar);
    EXPECT_EQ(Texts{L"Work 1"}, Subjects(calendar.Get()));
    EXPECT_EQ(S_OK, Rename(calendar.Get(), L"W1", L"Renamed"));
    held.Reset();
    EXPECT_EQ(S_OK, calendar->Refresh());
    EXPECT_THAT(Subjects(calendar.Get()), testing::UnorderedElementsAre(L"Held 1", L"Renamed"));
}

TEST_F(CalendarStoreTest, AFileThatOthersMayOnlyReadIsNotWritten)
{
    const std::string original = NumberedCalendar("Task", 2);
    s_folder->Write(L"Work.ics", original);
    const auto calendar = Load();
    ASSERT_TRUE(calendar);
    {
        const UniqueFile held(CreateFileW(PathOf(L"Work.ics").c_str(),
                                          GENERIC_READ,
                                          FILE_SHARE_READ,
                                          nullptr,
                                          OPEN_EXISTING,
                                          0,
                                          nullptr));
        ASSERT_TRUE(held);
        EXPECT_EQ(E_FAIL, Rename(calendar.Get(), L"N1", L"Changed"));
        EXPECT_EQ(E_FAIL, Add(calendar.Get(), L"New"));
        EXPECT_EQ(S_OK, Delete(calendar.Get(), L"N2"));
        EXPECT_EQ(original, s_folder->Read(L"Work.ics"));
    }
    // The next save writes all that the tree took meanwhile.
    EXPECT_EQ(S_OK, Rename(calendar.Get(), L"N1", L"Changed twice"));
    EXPECT_EQ(S_OK, calendar->Refresh());
    EXPECT_EQ((Texts{L"Changed twice", L"New"}), Subjects(calendar.Get()));
}

TEST_F(CalendarStoreTest, AFileThatOthersHaveOpenIsWrittenUnlessTheyReadIt)
{
    const std::string original = NumberedCalendar("Task", 1);
    s_folder->Write(L"Work.ics", original);
    const auto calendar = Load();
    ASSERT_TRUE(calendar);
    constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
    // Kept as it is: a save shares the file for writing only, so that one reader keeps it out.
    UniqueFile held(CreateFileW(
        PathOf(L"Work.ics").c_str(), GENERIC_READ, kShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(held);
    EXPECT_EQ(E_FAIL, Rename(calendar.Get(), L"N1", L"Changed"));
    EXPECT_EQ(original, s_folder->Read(L"Work.ics"));

    // A writer does not, not even one whose file cannot be replaced by another.
    for (const DWORD share : {FILE_SHARE_READ | FILE_SHARE_WRITE, static_cast<int>(kShareAll)})
    {
        held.Reset(CreateFileW(
            PathOf(L"Work.ics").c_str(), GENERIC_WRITE, share, nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(held);
        const std::wstring subject = L"Changed " + std::to_wstring(share);
        EXPECT_EQ(S_OK, Rename(calendar.Get(), L"N1", subject.c_str()));
        EXPECT_EQ(S_OK, calendar->Refresh());
        EXPECT_EQ(Texts{subject}, Subjects(calendar.Get()));
    }
}

TEST_F(CalendarStoreTest, AReadOnlyFileIsReadAndNotWritten)
{
    const std::string original = NumberedCalendar("Task", 2);
    s_folder->Write(L"Work.ics", original);
    const std::wstring path = PathOf(L"Work.ics");
    ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY));
    const auto calendar = Load();
    ASSERT_TRUE(calendar);
    EXPECT_EQ(E_FAIL, Rename(calendar.Get(), L"N1", L"Changed"));
    EXPECT_EQ(E_FAIL, Add(calendar.Get(), L"New"));
    EXPECT_EQ(S_OK, Delete(calendar.Get(), L"N2"));
    EXPECT_EQ(original, s_folder->Read(L"Work.ics"));
    EXPECT_EQ(S_OK, calendar->Refresh());
    EXPECT_EQ((Texts{L"Task 1", L"Task 2"}), Subjects(calendar.Get()));
    ASSERT_TRUE(SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(S_OK, Rename(calendar.Get(), L"N1", L"Changed"));
}

TEST_F(CalendarStoreTest, AWarmServerIsBackWhereItWasAfterManyItems)
{
    constexpr int kCalendars = 5;
    s_folder->Write(L"Work.ics", NumberedCalendar("Task", kPlainCalendarItems));
    ASSERT_EQ(S_OK, Start(kWindowsMail));
    const auto servers = RunningServers();
    ASSERT_EQ(1u, servers.size());
    // As in the plain server.
    const auto keptCalendar = CalendarOf(service.Get());
    const auto keptAppointment = MakeInServer<INAppointment>(CLSID_NAppointment);
    const PlainServer plain;
    using Open = std::function<ComPtr<INCalendar>()>;
    const auto growthOf = [](DWORD processId, const Open& open) {
        const auto walkMany = [&open](int calendars) {
            for (int i = 0; i < calendars; ++i)
            {
                const auto calendar = open();
                ASSERT_TRUE(calendar);
                int items = 0;
                for (ComPtr<INAppointment> item;
                     calendar->GetNextAppointment(item.ReleaseAndGetAddressOf()) == S_OK;)
                    ++items;
                ASSERT_EQ(kPlainCalendarItems, items);
            }
        };
        walkMany(2); // until the runtime's own tables have grown
        return SettledGrowthOver(processId, [&] { walkMany(kCalendars); });
    };
    const ProcessGrowth runtimeKeeps =
        growthOf(plain.Id(), [] { return MakeInServer<INCalendar>(kPlainCalendar); });
    ExpectNothingLeft(growthOf(servers[0], [this] { return CalendarOf(service.Get()); }),
                      runtimeKeeps,
                      kCalendars * kPlainCalendarItems);
}

// Nothing of the server's own, that is; what the runtime keeps is in other heaps.
TEST_F(CalendarStoreTest, WritesFetchesAndStartsLeaveNothingBehind)
{
    s_folder->Write(L"Work.ics", NumberedCalendar("Task", 3));
    ASSERT_EQ(S_OK, Start(kWindowsMail));
    const auto servers = RunningServers();
    ASSERT_EQ(1u, servers.size());
    const auto keptAppointment = MakeInServer<INAppointment>(CLSID_NAppointment);
    const auto workRounds = [this](int rounds) {
        for (int i = 0; i < rounds; ++i)
        {
            auto calendar = CalendarOf(service.Get());
            ASSERT_TRUE(calendar);
            const auto item = MakeInServer<INAppointment>(CLSID_NAppointment);
            EXPECT_EQ(S_OK, item->put_Subject(Bstr(L"New").Get()));
            Bstr id;
            EXPECT_EQ(S_OK, calendar->AddAppointment(item.Get(), id.Put()));
            EXPECT_EQ(S_OK, Rename(calendar.Get(), L"N2", L"Renamed"));
            EXPECT_FALSE(Find(calendar.Get(), L"no such ID"));
            EXPECT_EQ(S_OK, Delete(calendar.Get(), id.Get()));
            EXPECT_EQ(E_FAIL, Delete(calendar.Get(), L"no such ID"));
            EXPECT_EQ(S_OK, calendar->Refresh());
            calendar.Reset();
            EXPECT_EQ(S_OK, service->StopService());
            EXPECT_EQ(S_OK, Start(kWindowsMail));
        }
    };
    workRounds(2);
    const ProcessGrowth growth = SettledGrowthOver(servers[0], [&] { workRounds(10); });
    EXPECT_LE(growth.handles, 0) << growth;
    EXPECT_EQ(0, growth.ownBlocks) << growth;
    EXPECT_EQ(0, growth.ownBytes) << growth;
}
