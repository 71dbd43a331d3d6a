// What the tests of a hostile client share: both real back ends over the recording store and a
// calendar's file, with something stored in each list, and every object of the contract made of
// them.
#pragma once

#include "hostileclient/HostileCalls.h"
#include "outlook/store/EntryIdText.h"
#include "platform/Bstr.h"
#include "service/ServiceManager.h"
#include "support/ScopedRegistryValue.h"
#include "support/ScratchDirectory.h"
#include "support/TypeLibraryRegistration.h"
#include "tests/automation/CollectionFixture.h"
#include "tests/outlook/OutlookInstallation.h"
#include "tests/recordingstore/RecordingStore.h"

#include <gmock/gmock.h>

#include <fstream>

inline constexpr wchar_t kOutlookName[] = L"Microsoft Outlook";
inline constexpr wchar_t kWindowsMailName[] = L"Windows Mail";

// The library of the running test program, which carries the server's.
inline std::vector<LibraryInterface> ContractInterfaces()
{
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    return InterfacesOf(*LibraryIn(program).Get());
}

// An object to call, under the name that the contract's coclass gives it.
struct NamedObject
{
    std::string name;
    Microsoft::WRL::ComPtr<IUnknown> object;
};

class HostileFixture : public testing::Test
{
  protected:
    HostileFixture()
    {
        libraryPath.Set(RecordingStore::Path());
        localData.Set(scratch.Path().wstring(), REG_EXPAND_SZ);
        const auto folder = scratch.Path() / L"Microsoft" / L"Windows Calendar" / L"Calendars";
        std::filesystem::create_directories(folder);
        calendarFile = folder / L"Work.ics";
        std::ofstream(calendarFile, std::ios::binary) << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n"
                                                      << kStoredEvent << "END:VCALENDAR\r\n";
        FillStore();
    }
    ~HostileFixture() override
    {
        manager.StopService();
        EXPECT_EQ("", store.Complaints());
    }

    void Start(const wchar_t* backEnd)
    {
        service = CreateObject<INPersonalInformationService>(CLSID_NPersonalInformationService);
        ASSERT_TRUE(service);
        ASSERT_EQ(S_OK, service->StartService(Bstr(backEnd).Get()));
    }

    // The objects that hold data alone.
    static std::vector<NamedObject> Items()
    {
        return {{"NContactItem", CreateObject<IUnknown>(CLSID_NContactItem)},
                {"NContactGroup", CreateObject<IUnknown>(CLSID_NContactGroup)},
                {"NContactCategory", CreateObject<IUnknown>(CLSID_NContactCategory)},
                {"NAppointment", CreateObject<IUnknown>(CLSID_NAppointment)}};
    }
    // The collections that the running back end has, each with an enumerator of its own.
    std::vector<NamedObject> Collections()
    {
        std::vector<NamedObject> made;
        const auto add = [&made](const char* name, const Microsoft::WRL::ComPtr<IUnknown>& one) {
            if (one)
                made.push_back({name, one});
        };
        add("NAddressBook", CreateObject<IUnknown>(CLSID_NAddressBook));
        add("NCalendar", CreateObject<IUnknown>(CLSID_NCalendar));
        add("NUserProperties", CreateObject<IUnknown>(CLSID_NUserProperties));
        for (const auto type : {ContactCategory, ContactGroup, AddressBook, Calendar})
        {
            Microsoft::WRL::ComPtr<INEnumerator> enumerator;
            EXPECT_EQ(S_OK, service->GetEnumerator(type, enumerator.GetAddressOf()));
            add("NEnumerator", enumerator);
        }
        return made;
    }

    // What was stored before the hostile client came, as it stands now.
    std::vector<std::string> Stored() const
    {
        std::vector<std::string> lines;
        for (const char* const object : {"ann", "friends", "meeting", "carl"})
            for (const std::string& line : store.PropsOf(object))
                lines.push_back(std::string(object) + " " + line);
        std::ifstream file(calendarFile, std::ios::binary);
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        const bool hasEvent = text.find("UID:N1\r\n") != std::string::npos &&
                              text.find("SUMMARY:Stored before\r\n") != std::string::npos;
        lines.push_back(hasEvent ? "the event" : "no event: " + text);
        return lines;
    }

    RecordingStore store;

  private:
    static constexpr char kStoredEvent[] =
        "BEGIN:VEVENT\r\nUID:N1\r\nSUMMARY:Stored before\r\nDTSTART:20240102T100000Z\r\n"
        "DTEND:20240102T110000Z\r\nEND:VEVENT\r\n";

    void AddMessage(const char* name, const char* folder, const wchar_t* messageClass)
    {
        store.AddMessage(name,
                         folder,
                         StoreProps()
                             .Text(PR_MESSAGE_CLASS_W, messageClass)
                             .Text(PR_SUBJECT_W, L"Stored before")
                             .Text(PR_GIVEN_NAME_W, L"Stored"));
    }
    void FillStore()
    {
        store.AddUsualFolders();
        store.AddIdentity(StoreProps().Text(PR_DISPLAY_NAME_W, L"Me"));
        store.AddMessage("categories",
                         "calendar",
                         StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.Configuration.CategoryList"),
                         true);
        AddMessage("ann", "contacts", L"IPM.Contact");
        AddMessage("friends", "contacts", L"IPM.DistList");
        AddMessage("meeting", "calendar", L"IPM.Appointment");
        store.AddBook();
        store.AddBookEntry("carl", StoreProps().Text(PR_GIVEN_NAME_W, L"Stored"));
    }

    ScratchDirectory scratch;
    ScopedRegistryValue libraryPath{HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\WAB\\DLLPath", L""};
    ScopedRegistryValue localData{
        HKEY_CURRENT_USER,
        L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders",
        L"Local AppData"};
    OutlookInstallation installation{RecordingStore::Path()};
    std::filesystem::path calendarFile;
    CServiceManager manager;
    const ScopedServiceManager current{manager};

  protected:
    Microsoft::WRL::ComPtr<INPersonalInformationService> service;
};
