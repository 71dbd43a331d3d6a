// A client of another process that calls every operation of every interface with whatever the
// marshaller lets through, and goes on to do so. The server stays up, answers everybody else and
// loses nothing that was stored.
#include "endtoend/EveryKind.h"
#include "endtoend/MessageStore.h"
#include "endtoend/ThreeTasksTest.h"
#include "hostileclient/HostileCalls.h"
#include "hostileclient/HugeArguments.h"
#include "support/Dispatch.h"

#include <set>

using Microsoft::WRL::ComPtr;

namespace
{
struct NamedClass
{
    const char* name;
    const CLSID& clsid;
};
const NamedClass kItemClasses[] = {{"NContactItem", CLSID_NContactItem},
                                   {"NContactGroup", CLSID_NContactGroup},
                                   {"NContactCategory", CLSID_NContactCategory},
                                   {"NAppointment", CLSID_NAppointment},
                                   {"NObjectFactory64", CLSID_NObjectFactory64}};

constexpr WORD kFlags[] = {DISPATCH_METHOD, DISPATCH_PROPERTYGET, DISPATCH_PROPERTYPUT};

class HostileClientTest : public ThreeTasksTest
{
  protected:
    static void SetUpTestSuite()
    {
        s_store = std::make_unique<MessageStore>(RecordArrays::LeftToTheRuntime);
        ThreeTasksTest::SetUpTestSuite();
    }
    static void TearDownTestSuite()
    {
        ThreeTasksTest::TearDownTestSuite();
        s_store.reset();
    }
    void SetUp() override
    {
        ThreeTasksTest::SetUp();
        service = StartBackEnd();
        ASSERT_TRUE(service);
        servers = RunningServers();
        ASSERT_EQ(1u, servers.size());
    }
    void TearDown() override
    {
        EXPECT_EQ(servers, RunningServers());
        EXPECT_EQ(S_OK, service->StopService());
    }

    // Another object of the server answers.
    void ExpectAnswers(const std::string& after)
    {
        Bstr name;
        ASSERT_EQ(S_OK, service->GetDefaultProvider(name.Put())) << after;
    }
    void ExpectServes()
    {
        ThreeTasksTest::ExpectServes(service.Get(), {L"Task 1", L"Task 2", L"Task 3"});
    }

    void CallAll(const std::string& name, IUnknown* named)
    {
        for (const LibraryInterface& one : interfaces)
        {
            ComPtr<IUnknown> object;
            if (FAILED(named->QueryInterface(one.iid,
                                             reinterpret_cast<void**>(object.GetAddressOf()))))
                continue;
            for (const LibraryOperation& operation : one.operations)
            {
                CallWithEveryValue(object.Get(), operation, values, [&](const HostileCall& call) {
                    EXPECT_NE(E_UNEXPECTED, call.result) << name << ": " << call.Text();
                    // What a dead server's callers get.
                    EXPECT_NE(HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), call.result)
                        << name << ": " << call.Text();
                });
                ExpectAnswers(one.name + "." + operation.name);
                called.insert(one.name + "." + operation.name);
            }
        }
    }
    // What the running back end has of the collections, and its user.
    std::vector<ComPtr<IUnknown>> Collections()
    {
        std::vector<ComPtr<IUnknown>> made;
        const auto add = [&made](const ComPtr<IUnknown>& one) {
            if (one)
                made.push_back(one);
        };
        ComPtr<INAddressBook> book;
        EXPECT_EQ(S_OK, service->GetAddressBook(book.GetAddressOf()));
        add(book);
        add(CalendarOf(service.Get()));
        ComPtr<INUserProperties> user;
        EXPECT_EQ(S_OK, service->GetUserProperties(user.GetAddressOf()));
        add(user);
        for (const auto type : {ContactCategory, ContactGroup, AddressBook, Calendar})
        {
            ComPtr<INEnumerator> enumerator;
            EXPECT_EQ(S_OK, service->GetEnumerator(type, enumerator.GetAddressOf()));
            add(enumerator);
        }
        return made;
    }
    // Starts the back end, calls every collection of it and then the service, which stops it.
    void CallAllOf(const wchar_t* backEnd, std::size_t collections)
    {
        ASSERT_EQ(S_OK, service->StopService());
        ASSERT_EQ(S_OK, service->StartService(Bstr(backEnd).Get()));
        const auto made = Collections();
        EXPECT_EQ(collections, made.size());
        for (const auto& collection : made)
            CallAll("collection", collection.Get());
        CallAll("NPersonalInformationService", service.Get());
    }

    static inline std::unique_ptr<MessageStore> s_store;
    const std::vector<LibraryInterface> interfaces = InterfacesOf(*LibraryIn(ServerPath()).Get());
    HostileArguments values{Callee::InAnotherProcess};
    std::set<std::string> called; // "INContactItem.get_Emails"
    ComPtr<INPersonalInformationService> service;
    std::vector<DWORD> servers;
};
} // namespace

TEST_F(HostileClientTest, EveryOperationAnswersAcrossProcesses)
{
    s_store->Load(kOneItemOfEachKind);
    const std::string before = s_store->Dump();
    for (const NamedClass& one : kItemClasses)
        CallAll(one.name, MakeInServer<IUnknown>(one.clsid).Get());
    // Without a user and without enumerators of groups and categories.
    CallAllOf(kWindowsMail, 4);
    CallAllOf(kOutlook, 7);
    std::set<std::string> all;
    for (const LibraryInterface& one : interfaces)
        for (const LibraryOperation& operation : one.operations)
            all.insert(one.name + "." + operation.name);
    EXPECT_EQ(all, called);
    EXPECT_EQ(before, s_store->Dump());
    ExpectServes();
}

TEST_F(HostileClientTest, ATextOf64MebibytesComesBackWhole)
{
    const HugeArguments huge;
    const auto contact = MakeInServer<INContactItem>(CLSID_NContactItem);
    ASSERT_TRUE(contact);
    EXPECT_EQ(S_OK, contact->put_Notes(huge.Text()));
    Bstr notes;
    EXPECT_EQ(S_OK, contact->get_Notes(notes.Put()));
    EXPECT_TRUE(notes.View() == std::wstring_view(huge.Text(), HugeArguments::kCharacters));
    const auto calendar = CalendarOf(service.Get());
    VARIANT_BOOL deleted = VARIANT_FALSE;
    EXPECT_EQ(E_FAIL, calendar->DeleteAppointment(huge.Text(), &deleted));
    ExpectServes();
}

TEST_F(HostileClientTest, LateBoundCallsThatFitNothingAreRefused)
{
    const auto contact = MakeInServer<INContactItem>(CLSID_NContactItem);
    ASSERT_TRUE(contact);
    const auto collections = Collections();
    std::vector<ComPtr<IDispatch>> objects = {contact};
    for (const auto& collection : collections)
    {
        ComPtr<IDispatch> dispatch;
        ASSERT_EQ(S_OK, collection.As(&dispatch));
        objects.push_back(dispatch);
    }
    const Variant unfit[] = {Variant(), Variant(L"a text")};
    for (const auto& object : objects)
        for (DISPID id = -8; id < 30; ++id)
            for (const Variant& argument : unfit)
                for (const UINT count : {0u, 1u, 2u, 40u})
                {
                    std::vector<VARIANT> list(count, argument.Value());
                    DISPID put = DISPID_PROPERTYPUT;
                    for (const WORD flags : kFlags)
                    {
                        const bool isPut = flags == DISPATCH_PROPERTYPUT && count;
                        DISPPARAMS arguments{
                            list.data(), isPut ? &put : nullptr, count, isPut ? 1u : 0u};
                        Variant value;
                        const HRESULT result = object->Invoke(id,
                                                              IID_NULL,
                                                              LOCALE_USER_DEFAULT,
                                                              flags,
                                                              &arguments,
                                                              value.Get(),
                                                              nullptr,
                                                              nullptr);
                        EXPECT_NE(HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE), result);
                        EXPECT_NE(E_UNEXPECTED, result);
                        // There is no such member; what becomes of surplus arguments of one that
                        // there is differs by platform.
                        if (id <= 0)
                        {
                            EXPECT_TRUE(FAILED(result)) << id << ", " << count;
                        }
                    }
                }
    ExpectServes();
}
