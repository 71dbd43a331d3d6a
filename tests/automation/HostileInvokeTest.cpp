// Every operation of every interface, called late bound as no script would: with arguments that fit
// no operation, in wrong numbers, without their lists, under DISPIDs and flags that are none.
#include "hostileclient/HostileVariants.h"
#include "tests/automation/HostileFixture.h"

#include <limits>
#include <set>

using Microsoft::WRL::ComPtr;

namespace
{
// What Invoke was told to do, in any combination.
constexpr WORD kFlags[] = {DISPATCH_METHOD,
                           DISPATCH_PROPERTYGET,
                           DISPATCH_PROPERTYPUT,
                           DISPATCH_PROPERTYPUTREF,
                           DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                           0,
                           0xFFFF};

// The exception record of a call, freed.
class Exception
{
  public:
    ~Exception()
    {
        SysFreeString(m_value.bstrSource);
        SysFreeString(m_value.bstrDescription);
        SysFreeString(m_value.bstrHelpFile);
    }
    EXCEPINFO* Get() noexcept { return &m_value; }
    SCODE Code() const noexcept { return m_value.scode; }

  private:
    EXCEPINFO m_value{};
};

struct Reply
{
    HRESULT result;
    SCODE code; // of the exception
    UINT badArgument;
};

Reply Invoke(IDispatch* object, DISPID id, WORD flags, DISPPARAMS* arguments)
{
    Exception exception;
    VARIANT value{};
    UINT badArgument = 0xFFFFFFFF;
    const bool isPut = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    const HRESULT result = object->Invoke(id,
                                          IID_NULL,
                                          LOCALE_USER_DEFAULT,
                                          flags,
                                          arguments,
                                          isPut ? nullptr : &value,
                                          exception.Get(),
                                          &badArgument);
    VariantClear(&value);
    return {result, exception.Code(), badArgument};
}

// The same argument so many times, named as that of a put where asked.
Reply InvokeWith(IDispatch* object, DISPID id, WORD flags, const VARIANT& argument, UINT count)
{
    std::vector<VARIANT> list(count, argument);
    DISPID put = DISPID_PROPERTYPUT;
    const bool isPut = count && (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    DISPPARAMS arguments{list.data(), isPut ? &put : nullptr, count, isPut ? 1u : 0u};
    return Invoke(object, id, flags, &arguments);
}

class HostileInvokeTest : public HostileFixture
{
  protected:
    template <typename Act> void ForEachInterface(const NamedObject& named, Act act) const
    {
        for (const LibraryInterface& one : interfaces)
        {
            ComPtr<IDispatch> object;
            if (SUCCEEDED(named.object->QueryInterface(
                    one.iid, reinterpret_cast<void**>(object.GetAddressOf()))))
                act(object.Get(), one);
        }
    }
    void CallAll(const NamedObject& named)
    {
        ForEachInterface(named, [&](IDispatch* object, const LibraryInterface& one) {
            for (const LibraryOperation& operation : one.operations)
                Call(object, operation);
        });
    }
    void Call(IDispatch* object, const LibraryOperation& operation)
    {
        const UINT declared = static_cast<UINT>(operation.parameters.size());
        const auto judge = [&](const Reply& reply, const std::string& what) {
            variants.ClearOutputs();
            EXPECT_NE(E_UNEXPECTED, reply.result) << operation.name << ", " << what;
            EXPECT_NE(E_UNEXPECTED, reply.code) << operation.name << ", " << what;
        };
        for (const HostileVariants::Named& one : variants.All())
            for (UINT count = 1; count <= declared; ++count)
                judge(
                    InvokeWith(
                        object, operation.id, static_cast<WORD>(operation.kind), one.value, count),
                    one.name);
        for (const WORD flags : kFlags)
            for (const UINT count : {0u, declared, declared + 1, 60u})
                judge(InvokeWith(object, operation.id, flags, variants.All().front().value, count),
                      "flags " + std::to_string(flags));
        called.insert(operation.interfaceName + "." + operation.name);
    }

    const TypeLibraryRegistration registration;
    const std::vector<LibraryInterface> interfaces = ContractInterfaces();
    HostileVariants variants;
    std::set<std::string> called;
};
} // namespace

TEST_F(HostileInvokeTest, EveryOperationAnswersOverBothBackEnds)
{
    const std::vector<std::string> before = Stored();
    for (const wchar_t* const backEnd : {kOutlookName, kWindowsMailName})
    {
        Start(backEnd);
        std::vector<NamedObject> objects = Items();
        for (NamedObject& collection : Collections())
            objects.push_back(std::move(collection));
        objects.push_back({"NObjectFactory64", CreateObject<IUnknown>(CLSID_NObjectFactory64)});
        objects.push_back({"NPersonalInformationService", service});
        for (const NamedObject& object : objects)
            CallAll(object);
    }
    std::set<std::string> all;
    for (const LibraryInterface& one : interfaces)
        for (const LibraryOperation& operation : one.operations)
            all.insert(one.name + "." + operation.name);
    EXPECT_EQ(all, called);
    EXPECT_EQ(before, Stored());
    EXPECT_EQ(1u, variants.OwnItem().References());
}

TEST_F(HostileInvokeTest, ArgumentsWithoutTheirListsAreRefused)
{
    VARIANT text{};
    text.vt = VT_BSTR;
    DISPID put = DISPID_PROPERTYPUT;
    DISPPARAMS withoutArguments{nullptr, nullptr, 1, 0};
    DISPPARAMS withoutNames{&text, nullptr, 1, 1};
    DISPPARAMS moreNames{&text, &put, 0, 1};
    for (const NamedObject& named : Items())
        ForEachInterface(named, [&](IDispatch* object, const LibraryInterface& one) {
            for (const LibraryOperation& operation : one.operations)
                for (DISPPARAMS* const arguments : {static_cast<DISPPARAMS*>(nullptr),
                                                    &withoutArguments,
                                                    &withoutNames,
                                                    &moreNames})
                    EXPECT_EQ(
                        E_INVALIDARG,
                        Invoke(object, operation.id, static_cast<WORD>(operation.kind), arguments)
                            .result)
                        << operation.name;
        });
}

TEST_F(HostileInvokeTest, ReferencesAndRecordsThatLeadNowhereAreNamed)
{
    const auto contact = CreateObject<INContactItem>(CLSID_NContactItem);
    VARIANT nowhere{};
    nowhere.vt = VT_BYREF | VT_BSTR;
    VARIANT indirect{};
    indirect.vt = VT_BYREF | VT_VARIANT;
    indirect.pvarVal = &nowhere;
    VARIANT record{};
    record.vt = VT_RECORD;
    constexpr DISPID kSetStringByIndex = 18;
    for (const VARIANT& broken : {nowhere, indirect, record})
    {
        VARIANT arguments[2] = {};
        arguments[0].vt = VT_BSTR;
        arguments[1] = broken;
        DISPPARAMS list{arguments, nullptr, 2, 0};
        const Reply reply = Invoke(contact.Get(), kSetStringByIndex, DISPATCH_METHOD, &list);
        EXPECT_EQ(DISP_E_TYPEMISMATCH, reply.result);
        EXPECT_EQ(1u, reply.badArgument);
        EXPECT_EQ(
            DISP_E_TYPEMISMATCH,
            contact->Invoke(
                kSetStringByIndex, IID_NULL, 0, DISPATCH_METHOD, &list, nullptr, nullptr, nullptr));
    }
}

TEST_F(HostileInvokeTest, UnknownDispatchIdsAreRefused)
{
    for (const NamedObject& named : Items())
        ForEachInterface(named, [&](IDispatch* object, const LibraryInterface&) {
            for (const DISPID id :
                 std::initializer_list<DISPID>{DISPID_VALUE,
                                               DISPID_UNKNOWN,
                                               DISPID_PROPERTYPUT,
                                               DISPID_NEWENUM,
                                               1000,
                                               std::numeric_limits<DISPID>::max(),
                                               std::numeric_limits<DISPID>::min()})
                for (const WORD flags : kFlags)
                {
                    DISPPARAMS none{};
                    EXPECT_EQ(DISP_E_MEMBERNOTFOUND, Invoke(object, id, flags, &none).result)
                        << named.name << ", " << id << ", " << flags;
                }
        });
}

TEST_F(HostileInvokeTest, NamesAndTypeInformationWithoutOutputsAreRefused)
{
    wchar_t unknown[] = L"NoSuchName";
    std::wstring longName(1'000'000, L'n');
    for (const NamedObject& named : Items())
        ForEachInterface(named, [&](IDispatch* object, const LibraryInterface&) {
            LPOLESTR none[] = {nullptr};
            LPOLESTR one[] = {unknown};
            LPOLESTR aLong[] = {longName.data()};
            DISPID id = 0;
            EXPECT_EQ(E_POINTER, object->GetIDsOfNames(IID_NULL, nullptr, 1, 0, &id));
            EXPECT_EQ(E_POINTER, object->GetIDsOfNames(IID_NULL, one, 1, 0, nullptr));
            EXPECT_EQ(E_POINTER, object->GetIDsOfNames(IID_NULL, none, 1, 0, &id));
            EXPECT_EQ(E_INVALIDARG, object->GetIDsOfNames(IID_NULL, none, 0, 0, &id));
            EXPECT_EQ(DISP_E_UNKNOWNNAME, object->GetIDsOfNames(IID_NULL, one, 1, 0, &id));
            EXPECT_EQ(DISP_E_UNKNOWNNAME, object->GetIDsOfNames(IID_NULL, aLong, 1, 0, &id));
            EXPECT_EQ(E_POINTER, object->GetTypeInfoCount(nullptr));
            EXPECT_EQ(E_POINTER, object->GetTypeInfo(0, 0, nullptr));
            ComPtr<ITypeInfo> info;
            EXPECT_EQ(DISP_E_BADINDEX, object->GetTypeInfo(1, 0, info.GetAddressOf()));
            EXPECT_FALSE(info);
            EXPECT_EQ(E_POINTER, object->QueryInterface(IID_IUnknown, nullptr));
        });
}

// The identifier of the interface says nothing, and callers leave it out.
TEST_F(HostileInvokeTest, ACallWithoutInterfaceIdentifierIsServed)
{
    const auto contact = CreateObject<INContactItem>(CLSID_NContactItem);
    ASSERT_EQ(S_OK, contact->put_FirstName(Bstr(L"Ann").Get()));
    const IID* volatile nowhere = nullptr;
    wchar_t name[] = L"FirstName";
    LPOLESTR names[] = {name};
    DISPID id = 0;
    EXPECT_EQ(S_OK, contact->GetIDsOfNames(*nowhere, names, 1, 0, &id));
    VARIANT value{};
    DISPPARAMS none{};
    EXPECT_EQ(
        S_OK,
        contact->Invoke(id, *nowhere, 0, DISPATCH_PROPERTYGET, &none, &value, nullptr, nullptr));
    EXPECT_EQ(L"Ann", TextOf(value.bstrVal));
    VariantClear(&value);
}
