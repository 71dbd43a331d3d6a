// The service object over fake back ends: what a client's entry point answers.
#include "automation/RecordArray.h"
#include "platform/SafeArray.h"
#include "support/Dispatch.h"
#include "support/RegistrySandbox.h"
#include "support/TypeLibraryRegistration.h"
#include "tests/automation/CollectionFixture.h"

using Microsoft::WRL::ComPtr;

namespace
{
class PersonalInformationServiceTest : public CollectionFixture
{
  protected:
    void SetUp() override { ASSERT_TRUE(service); }

    HRESULT StartProvider(const wchar_t* name) { return service->StartService(Bstr(name).Get()); }

    ComPtr<INPersonalInformationService> service =
        CreateObject<INPersonalInformationService>(CLSID_NPersonalInformationService);
};

// Registers a mail client whose program is this test program, and so exists.
void AddMailClient(RegistrySandbox& machine, const std::wstring& name)
{
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    machine.SetText(L"Software\\Clients\\Mail\\" + name + L"\\shell\\open\\command",
                    L"",
                    L"\"" + std::wstring(program) + L"\"");
}

OutlookFolderInfo RootFolder(const wchar_t* id, const wchar_t* name, LONG count, bool isDefault)
{
    OutlookFolderInfo folder;
    folder.entryIDHex = id;
    folder.displayName = name;
    folder.itemCount = count;
    folder.isDefault = isDefault;
    return folder;
}
} // namespace

TEST_F(PersonalInformationServiceTest, AnswersForItsInterfaceAndDispatch)
{
    ExpectInterfaces(service.Get(),
                     {IID_IUnknown, IID_IDispatch, IID_INPersonalInformationService});
}

TEST_F(PersonalInformationServiceTest, WorksInsideAnAggregate)
{
    TestOuter outer;
    ASSERT_EQ(S_OK, outer.Aggregate(CLSID_NPersonalInformationService));
    ComPtr<INPersonalInformationService> inner;
    ASSERT_EQ(S_OK,
              outer.QueryInterface(IID_INPersonalInformationService,
                                   reinterpret_cast<void**>(inner.GetAddressOf())));
    EXPECT_EQ(E_FAIL, inner->StartService(Bstr(L"nobody").Get()));
    ExpectInterfaces(inner.Get(), {IID_IUnknown, IID_IPersist, IID_INPersonalInformationService});
    inner.Reset();
    outer.DropInner();
    EXPECT_EQ(1u, outer.References());
}

TEST_F(PersonalInformationServiceTest, MakingAndReleasingItDoesNotTouchTheProvider)
{
    Start();
    const auto second =
        CreateObject<INPersonalInformationService>(CLSID_NPersonalInformationService);
    EXPECT_TRUE(second);
    service.Reset();
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(PersonalInformationServiceTest, NullArgumentsAreRefused)
{
    EXPECT_EQ(E_POINTER, service->GetProviders(nullptr));
    EXPECT_EQ(E_POINTER, service->GetDefaultProvider(nullptr));
    EXPECT_EQ(E_POINTER, service->StartService(nullptr));
    EXPECT_EQ(E_POINTER, service->GetUserProperties(nullptr));
    EXPECT_EQ(E_POINTER, service->GetAddressBook(nullptr));
    EXPECT_EQ(E_POINTER, service->GetCalendar(nullptr));
    EXPECT_EQ(E_POINTER, service->GetEnumerator(Calendar, nullptr));
    EXPECT_EQ(E_INVALIDARG, service->GetAddressBookRootFolders(nullptr));
    EXPECT_EQ(E_NOTIMPL, service->GetCalendarRootFolders(nullptr));
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(PersonalInformationServiceTest, GetCalendarRootFoldersIsNeverThere)
{
    Start();
    SAFEARRAY* const mine = reinterpret_cast<SAFEARRAY*>(1);
    SAFEARRAY* array = mine;
    EXPECT_EQ(E_NOTIMPL, service->GetCalendarRootFolders(&array));
    EXPECT_EQ(mine, array);
    EXPECT_EQ(CallLog{}, log);
}

// --- Discovery -----------------------------------------------------------------------------------

TEST_F(PersonalInformationServiceTest, GetProvidersLeavesTheOutputAloneWhereThereAreNone)
{
    const RegistrySandbox machine(HKEY_LOCAL_MACHINE);
    SAFEARRAY* const mine = reinterpret_cast<SAFEARRAY*>(1);
    SAFEARRAY* array = mine;
    EXPECT_EQ(S_OK, service->GetProviders(&array));
    EXPECT_EQ(mine, array);
}

TEST_F(PersonalInformationServiceTest, GetProvidersGivesTheNamesAsTexts)
{
    RegistrySandbox machine(HKEY_LOCAL_MACHINE);
    AddMailClient(machine, L"Microsoft Outlook");
    AddMailClient(machine, L"Windows Mail");
    UniqueSafeArray array;
    EXPECT_EQ(S_OK, service->GetProviders(array.Put()));
    ASSERT_TRUE(array);
    EXPECT_EQ(1u, SafeArrayGetDim(array.Get()));
    VARTYPE type = VT_EMPTY;
    EXPECT_EQ(S_OK, SafeArrayGetVartype(array.Get(), &type));
    EXPECT_EQ(VT_BSTR, type);
    EXPECT_EQ(0, array.Get()->rgsabound[0].lLbound);
    ASSERT_EQ(2u, array.Get()->rgsabound[0].cElements);
    const SafeArrayAccess<BSTR> names(array.Get());
    ASSERT_TRUE(names);
    EXPECT_STREQ(L"Microsoft Outlook", names.Data()[0]);
    EXPECT_STREQ(L"Windows Mail", names.Data()[1]);
}

TEST_F(PersonalInformationServiceTest, GetDefaultProviderIsNotCheckedAndMayBeEmpty)
{
    RegistrySandbox machine(HKEY_LOCAL_MACHINE);
    Bstr name;
    EXPECT_EQ(S_OK, service->GetDefaultProvider(name.Put()));
    EXPECT_TRUE(name);
    EXPECT_EQ(L"", name.View());
    machine.SetText(L"Software\\Clients\\Mail", L"", L"No such client");
    EXPECT_EQ(S_OK, service->GetDefaultProvider(name.Put()));
    EXPECT_EQ(L"No such client", name.View());
}

TEST_F(PersonalInformationServiceTest, ADefaultThatFindsNoMemoryIsOutOfMemory)
{
    RegistrySandbox machine(HKEY_LOCAL_MACHINE);
    machine.SetText(L"Software\\Clients\\Mail", L"", LongTextsFail::Text());
    const Bstr mine(L"mine");
    BSTR name = mine.Get();
    const LongTextsFail fail;
    EXPECT_EQ(E_OUTOFMEMORY, service->GetDefaultProvider(&name));
    EXPECT_EQ(mine.Get(), name);
}

TEST_F(PersonalInformationServiceTest, AProviderNameThatFindsNoMemoryIsOutOfMemory)
{
    // A registry key's name has at most 255 characters, about 500 bytes.
    const std::wstring name(250, L'x');
    RegistrySandbox machine(HKEY_LOCAL_MACHINE);
    AddMailClient(machine, L"Windows Mail");
    AddMailClient(machine, name);
    // Takes what the system keeps of freed texts of about that length.
    std::vector<Bstr> held;
    for (std::size_t length = 240; length < 280; ++length)
        for (int i = 0; i < 16; ++i)
            held.emplace_back(std::wstring(length, L'x'));
    SAFEARRAY* const mine = reinterpret_cast<SAFEARRAY*>(1);
    SAFEARRAY* array = mine;
    const LongTextsFail fail(400);
    EXPECT_EQ(E_OUTOFMEMORY, service->GetProviders(&array));
    EXPECT_EQ(mine, array);
}

// --- Start and stop ------------------------------------------------------------------------------

TEST_F(PersonalInformationServiceTest, StartServiceGivesTheManagersResult)
{
    EXPECT_EQ(E_FAIL, StartProvider(L""));
    EXPECT_EQ(E_FAIL, StartProvider(L"nobody"));
    backEnds.start = [](std::unique_ptr<IProvider>&) { return E_ACCESSDENIED; };
    EXPECT_EQ(E_ACCESSDENIED, StartProvider(L"Microsoft Outlook"));
    backEnds.start = [&](std::unique_ptr<IProvider>& slot) {
        slot = backEnds.MakeProvider();
        return S_FALSE;
    };
    EXPECT_EQ(S_OK, StartProvider(L"Microsoft Outlook"));
    EXPECT_EQ(S_OK, StartProvider(L"Windows Mail"));
    EXPECT_EQ(S_OK, service->StopService());
    EXPECT_EQ(S_OK, service->StopService());
    EXPECT_EQ((CallLog{L"start Microsoft Outlook", L"start Microsoft Outlook", L"provider delete"}),
              log);
}

TEST_F(PersonalInformationServiceTest, AllServiceObjectsShareTheProvider)
{
    ASSERT_EQ(S_OK, StartProvider(L"Windows Mail"));
    const auto second =
        CreateObject<INPersonalInformationService>(CLSID_NPersonalInformationService);
    service.Reset();
    ComPtr<INCalendar> calendar;
    EXPECT_EQ(S_OK, second->GetCalendar(calendar.GetAddressOf()));
    EXPECT_TRUE(calendar);
}

// --- Collections ---------------------------------------------------------------------------------

TEST_F(PersonalInformationServiceTest, GettersGiveNullWhileNoProviderRuns)
{
    INUserProperties* identity = reinterpret_cast<INUserProperties*>(1);
    EXPECT_EQ(S_OK, service->GetUserProperties(&identity));
    EXPECT_EQ(nullptr, identity);
    INAddressBook* book = reinterpret_cast<INAddressBook*>(1);
    EXPECT_EQ(S_OK, service->GetAddressBook(&book));
    EXPECT_EQ(nullptr, book);
    INCalendar* calendar = reinterpret_cast<INCalendar*>(1);
    EXPECT_EQ(S_OK, service->GetCalendar(&calendar));
    EXPECT_EQ(nullptr, calendar);
    INEnumerator* const mine = reinterpret_cast<INEnumerator*>(1);
    INEnumerator* enumerator = mine;
    EXPECT_EQ(S_OK, service->GetEnumerator(Calendar, &enumerator));
    EXPECT_EQ(mine, enumerator);
    EXPECT_EQ(CallLog{}, log);
}

TEST_F(PersonalInformationServiceTest, GettersGiveNullWhereTheProviderHasNothing)
{
    Start();
    provider->hasAddressBook = false;
    provider->hasCalendar = false;
    INAddressBook* book = reinterpret_cast<INAddressBook*>(1);
    EXPECT_EQ(S_OK, service->GetAddressBook(&book));
    EXPECT_EQ(nullptr, book);
    INCalendar* calendar = reinterpret_cast<INCalendar*>(1);
    EXPECT_EQ(S_OK, service->GetCalendar(&calendar));
    EXPECT_EQ(nullptr, calendar);
}

TEST_F(PersonalInformationServiceTest, EachCollectionHasTablesOfItsOwn)
{
    Start();
    ComPtr<INAddressBook> first;
    ComPtr<INAddressBook> second;
    EXPECT_EQ(S_OK, service->GetAddressBook(first.GetAddressOf()));
    EXPECT_EQ(S_OK, service->GetAddressBook(second.GetAddressOf()));
    EXPECT_TRUE(first);
    EXPECT_TRUE(second);
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_EQ((CallLog{L"provider GetAddressBook", L"provider GetAddressBook"}), log);
}

TEST_F(PersonalInformationServiceTest, GetEnumeratorGivesALoadedTableOfEachType)
{
    Start();
    for (const auto type : {ContactCategory, ContactGroup, AddressBook, Calendar})
    {
        log.clear();
        ComPtr<INEnumerator> enumerator;
        EXPECT_EQ(S_OK, service->GetEnumerator(type, enumerator.GetAddressOf()));
        EXPECT_TRUE(enumerator);
        const std::wstring name = std::to_wstring(type);
        EXPECT_EQ((CallLog{L"provider GetEnumerator " + name,
                           name + L" GetItemIDs",
                           name + L" ResetItem"}),
                  log);
    }
}

TEST_F(PersonalInformationServiceTest, GetEnumeratorLeavesTheOutputAloneForATypeThatIsMissing)
{
    Start();
    INEnumerator* const mine = reinterpret_cast<INEnumerator*>(1);
    INEnumerator* enumerator = mine;
    EXPECT_EQ(S_OK, service->GetEnumerator(static_cast<_tagNEnumeratorType>(7), &enumerator));
    EXPECT_EQ(mine, enumerator);
    EXPECT_EQ((CallLog{L"provider GetEnumerator 7"}), log);
}

// Default means the type of the last call. The manager builds a table for it at once, which is
// freed, and the creation builds the one that the client gets.
TEST_F(PersonalInformationServiceTest,
       GetEnumeratorWithDefaultRepeatsTheLastTypeAndFreesTheDroppedTable)
{
    Start();
    ComPtr<INEnumerator> enumerator;
    ASSERT_EQ(S_OK, service->GetEnumerator(ContactGroup, enumerator.GetAddressOf()));
    log.clear();
    ComPtr<INEnumerator> again;
    EXPECT_EQ(S_OK, service->GetEnumerator(Default, again.GetAddressOf()));
    EXPECT_TRUE(again);
    EXPECT_EQ((CallLog{L"provider GetEnumerator 2",
                       L"2 delete",
                       L"provider GetEnumerator 2",
                       L"2 GetItemIDs",
                       L"2 ResetItem"}),
              log);
}

TEST_F(PersonalInformationServiceTest, GetEnumeratorWithDefaultAndNothingRememberedGivesNothing)
{
    Start();
    INEnumerator* const mine = reinterpret_cast<INEnumerator*>(1);
    INEnumerator* enumerator = mine;
    EXPECT_EQ(S_OK, service->GetEnumerator(Default, &enumerator));
    EXPECT_EQ(mine, enumerator);
    EXPECT_EQ(CallLog{}, log);
}

// --- Root folders --------------------------------------------------------------------------------

TEST_F(PersonalInformationServiceTest, RootFoldersComeAsRecordsInOrder)
{
    const RegistrySandbox classes(HKEY_CLASSES_ROOT);
    const TypeLibraryRegistration registration;
    ASSERT_EQ(S_OK, registration.Result());
    Start();
    provider->folders = {RootFolder(L"0A0B", L"Kontakte", 12, true),
                         RootFolder(L"0C", L"", -1, false)};
    UniqueSafeArray array;
    EXPECT_EQ(S_OK, service->GetAddressBookRootFolders(array.Put()));
    ASSERT_TRUE(array);
    ASSERT_EQ(2u, array.Get()->rgsabound[0].cElements);
    EXPECT_EQ(0, array.Get()->rgsabound[0].lLbound);
    const SafeArrayAccess<_tagFolderInfo> records(array.Get());
    ASSERT_TRUE(records);
    const _tagFolderInfo& first = records.Data()[0];
    EXPECT_STREQ(L"0A0B", first.bstrEntryID);
    EXPECT_STREQ(L"Kontakte", first.bstrDisplayName);
    EXPECT_EQ(12, first.lItemCount);
    EXPECT_EQ(static_cast<VARIANT_BOOL>(0xFFFF), first.vbIsDefault);
    const _tagFolderInfo& second = records.Data()[1];
    EXPECT_STREQ(L"0C", second.bstrEntryID);
    ASSERT_NE(nullptr, second.bstrDisplayName);
    EXPECT_STREQ(L"", second.bstrDisplayName);
    EXPECT_EQ(-1, second.lItemCount);
    EXPECT_EQ(0, second.vbIsDefault);
}

TEST_F(PersonalInformationServiceTest, RootFoldersAreAnEmptyArrayWithoutAnyFolders)
{
    const RegistrySandbox classes(HKEY_CLASSES_ROOT);
    const TypeLibraryRegistration registration;
    UniqueSafeArray stopped;
    EXPECT_EQ(S_OK, service->GetAddressBookRootFolders(stopped.Put()));
    ASSERT_TRUE(stopped);
    EXPECT_EQ(0u, stopped.Get()->rgsabound[0].cElements);
    Start();
    provider->hasFolders = false;
    UniqueSafeArray none;
    EXPECT_EQ(S_OK, service->GetAddressBookRootFolders(none.Put()));
    ASSERT_TRUE(none);
    EXPECT_EQ(0u, none.Get()->rgsabound[0].cElements);
}

TEST_F(PersonalInformationServiceTest, RootFoldersAreNullWhereTheLibraryIsNotRegistered)
{
    const RegistrySandbox classes(HKEY_CLASSES_ROOT);
    Start();
    provider->folders = {RootFolder(L"0A", L"Contacts", 1, true)};
    SAFEARRAY* array = reinterpret_cast<SAFEARRAY*>(1);
    EXPECT_EQ(S_OK, service->GetAddressBookRootFolders(&array));
    EXPECT_EQ(nullptr, array);
}

TEST_F(PersonalInformationServiceTest, AFolderThatFindsNoMemoryIsOutOfMemory)
{
    const RegistrySandbox classes(HKEY_CLASSES_ROOT);
    const TypeLibraryRegistration registration;
    Start();
    provider->folders = {RootFolder(L"0A", LongTextsFail::Text().c_str(), 1, true)};
    SAFEARRAY* const mine = reinterpret_cast<SAFEARRAY*>(1);
    SAFEARRAY* array = mine;
    const LongTextsFail fail;
    EXPECT_EQ(E_OUTOFMEMORY, service->GetAddressBookRootFolders(&array));
    EXPECT_EQ(mine, array);
}

// --- Late bound ----------------------------------------------------------------------------------

TEST_F(PersonalInformationServiceTest, WorksLateBound)
{
    RegistrySandbox machine(HKEY_LOCAL_MACHINE);
    AddMailClient(machine, L"Windows Mail");
    machine.SetText(L"Software\\Clients\\Mail", L"", L"Windows Mail");
    const DispatchResult names = DispatchCall(service.Get(), L"GetProviders");
    EXPECT_EQ(S_OK, names.result);
    EXPECT_EQ(VT_ARRAY | VT_BSTR, names.value.Type());
    EXPECT_EQ(L"Windows Mail", DispatchCall(service.Get(), L"GetDefaultProvider").value.Text());

    const DispatchResult refused = DispatchCall(service.Get(), L"StartService", {Variant(L"x")});
    EXPECT_EQ(DISP_E_EXCEPTION, refused.result);
    EXPECT_EQ(E_FAIL, refused.exceptionCode);
    EXPECT_EQ(S_OK,
              DispatchCall(service.Get(), L"StartService", {Variant(L"Windows Mail")}).result);
    const DispatchResult calendar = DispatchCall(service.Get(), L"GetCalendar");
    EXPECT_EQ(S_OK, calendar.result);
    ASSERT_EQ(VT_DISPATCH, calendar.value.Type());
    EXPECT_NE(nullptr, calendar.value.Value().pdispVal);
    const DispatchResult book = DispatchCall(service.Get(), L"GetAddressBook");
    EXPECT_EQ(S_OK, book.result);
    EXPECT_NE(nullptr, book.value.Value().pdispVal);
    const DispatchResult enumerator = DispatchCall(service.Get(), L"GetEnumerator", {Variant(4L)});
    EXPECT_EQ(S_OK, enumerator.result);
    EXPECT_NE(nullptr, enumerator.value.Value().pdispVal);
    EXPECT_EQ(S_OK, DispatchCall(service.Get(), L"StopService").result);
    const DispatchResult none = DispatchCall(service.Get(), L"GetCalendar");
    EXPECT_EQ(S_OK, none.result);
    EXPECT_EQ(nullptr, none.value.Value().pdispVal);
    const DispatchResult missing = DispatchCall(service.Get(), L"GetEnumerator", {Variant(4L)});
    EXPECT_EQ(S_OK, missing.result);
    EXPECT_EQ(nullptr, missing.value.Value().pdispVal);
    const DispatchResult never = DispatchCall(service.Get(), L"GetCalendarRootFolders");
    EXPECT_TRUE(FAILED(never.result));
}
