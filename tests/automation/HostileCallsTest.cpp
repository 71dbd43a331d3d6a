// Every operation of every interface of the type library, called by its place in the interface's
// table with every combination of hostile values. No call may end the process, let an exception
// through, keep what it was lent or change what was stored.
#include "hostileclient/HugeArguments.h"
#include "support/HeapUse.h"
#include "tests/automation/HostileFixture.h"

#include <map>
#include <set>

using Microsoft::WRL::ComPtr;

namespace
{
// What a null argument gives where that is not E_POINTER.
const std::map<std::string, HRESULT> kOwnNullResults = {
    {"INPersonalInformationService.GetAddressBookRootFolders", E_INVALIDARG},
    {"INPersonalInformationService.GetCalendarRootFolders", E_NOTIMPL},
    {"INAddressBook.GetAllItemsWithBasicInfo", E_INVALIDARG},
    {"INContactItem.GetStringByIndex", E_INVALIDARG},
    {"INContactItem.GetPropertyValue", E_INVALIDARG},
    {"INContactItem.SetPropertyValue", E_INVALIDARG},
};

// The operations that take null for an argument, not an output.
bool TakesNull(const std::string& object, const LibraryOperation& operation)
{
    const std::string& name = operation.name;
    if (operation.interfaceName == "INContactItem")
        return (name.starts_with("put_") && name != "put_PersistentID") ||
               name == "SetStringByIndex";
    return operation.interfaceName == "INEntityItem" &&
           (name == "put_FolderID" || (name == "put_EntityID" && object == "NContactItem"));
}

// "INContactItem.get_Emails".
std::string NameOf(const LibraryOperation& operation)
{
    return operation.interfaceName + "." + operation.name;
}

// Whether a null stands where the operation refuses one.
bool HasRefusedNull(const std::string& object, const HostileCall& call)
{
    constexpr std::size_t kFolderId = 1; // of AddItemEx, whose output may be null
    for (std::size_t i = 0; i < call.arguments.size(); ++i)
    {
        if (!call.arguments[i].isNull)
            continue;
        const bool isTaken = call.operation.parameters[i].isOut
                                 ? call.operation.name == "AddItemEx" && i == kFolderId
                                 : TakesNull(object, call.operation);
        if (!isTaken)
            return true;
    }
    return false;
}

class HostileCallsTest : public HostileFixture
{
  protected:
    // Goes through all operations of all interfaces that the object has.
    void ForEachOperation(const NamedObject& named,
                          const std::function<void(IUnknown*, const LibraryOperation&)>& act) const
    {
        for (const LibraryInterface& one : interfaces)
        {
            ComPtr<IUnknown> object;
            if (FAILED(named.object->QueryInterface(
                    one.iid, reinterpret_cast<void**>(object.GetAddressOf()))))
                continue;
            for (const LibraryOperation& operation : one.operations)
                act(object.Get(), operation);
        }
    }
    void CallAll(const NamedObject& named)
    {
        ForEachOperation(named, [&](IUnknown* object, const LibraryOperation& operation) {
            CallWithEveryValue(object, operation, values, [&](const HostileCall& call) {
                Judge(named.name, call);
            });
        });
    }

    // Arguments with a huge text in place of each text; empty for an operation that takes none.
    std::optional<std::vector<HostileValue>> WithHugeText(const LibraryOperation& operation,
                                                          const HugeArguments& huge)
    {
        std::vector<HostileValue> arguments;
        bool hasText = false;
        for (std::size_t i = 0; i < operation.parameters.size(); ++i)
        {
            const auto text = huge.For(operation.parameters[i]);
            hasText = hasText || text;
            arguments.push_back(text ? *text : values.For(operation.parameters[i], i).front());
        }
        return hasText ? std::optional(arguments) : std::nullopt;
    }
    // Texts and arrays of these are empty.
    std::vector<HostileValue> WithSecondValues(const LibraryOperation& operation)
    {
        std::vector<HostileValue> arguments;
        for (std::size_t i = 0; i < operation.parameters.size(); ++i)
            arguments.push_back(values.For(operation.parameters[i], i).at(1));
        return arguments;
    }

    void Judge(const std::string& object, const HostileCall& call)
    {
        const std::string name = NameOf(call.operation);
        called.insert(name);
        EXPECT_NE(E_UNEXPECTED, call.result) << object << ": " << call.Text();
        if (!HasRefusedNull(object, call))
            return;
        const auto own = kOwnNullResults.find(name);
        EXPECT_EQ(own == kOwnNullResults.end() ? E_POINTER : own->second, call.result)
            << object << ": " << call.Text();
    }

    // Items of the server's own as arguments beside the hostile ones.
    void LendItems(const std::vector<NamedObject>& items)
    {
        for (const NamedObject& item : items)
        {
            ComPtr<INEntityItem> entity;
            ASSERT_EQ(S_OK, item.object.As(&entity));
            values.AddItem(item.name, entity.Get());
        }
    }

    // Who still holds the client's own items.
    std::vector<ULONG> Holders() const
    {
        std::vector<ULONG> references;
        for (const auto& own : values.OwnItems())
            references.push_back(own->References());
        return references;
    }

    const TypeLibraryRegistration registration;
    const std::vector<LibraryInterface> interfaces = ContractInterfaces();
    HostileArguments values;
    std::set<std::string> called;
};
} // namespace

// Eleven interfaces; the operations of each were counted in the contract's tables by hand. A new
// one is to be counted here, and its parameters are to have hostile values.
TEST_F(HostileCallsTest, TheWalkKnowsEveryOperationAndEveryParameter)
{
    const std::map<std::string, std::size_t> kCounts = {{"INPersonalInformationService", 10},
                                                        {"INUserProperties", 10},
                                                        {"INAddressBook", 15},
                                                        {"INContactItem", 46},
                                                        {"INContactGroup", 8},
                                                        {"INCalendar", 7},
                                                        {"INAppointment", 22},
                                                        {"INEnumerator", 7},
                                                        {"INEntityItem", 6},
                                                        {"INContactCategory", 6},
                                                        {"INObjectFactory", 1}};
    std::map<std::string, std::size_t> counts;
    for (const LibraryInterface& one : interfaces)
    {
        counts[one.name] = one.operations.size();
        for (const LibraryOperation& operation : one.operations)
            EXPECT_NE(0u, CombinationsOf(operation, values))
                << one.name << "." << operation.name << " has a parameter without values";
    }
    EXPECT_EQ(kCounts, counts);
}

TEST_F(HostileCallsTest, EveryOperationAnswersOverBothBackEnds)
{
    const std::vector<std::string> before = Stored();
    const std::vector<ULONG> holders = Holders();
    const std::vector<NamedObject> lent = Items();
    LendItems(lent);
    for (const wchar_t* const backEnd : {kOutlookName, kWindowsMailName})
    {
        Start(backEnd);
        for (const NamedObject& item : Items())
            CallAll(item);
        const std::vector<NamedObject> collections = Collections();
        for (const NamedObject& collection : collections)
            CallAll(collection);
        CallAll({"NObjectFactory64", CreateObject<IUnknown>(CLSID_NObjectFactory64)});
        // It stops the back end.
        CallAll({"NPersonalInformationService", service});
        for (const NamedObject& collection : collections)
            CallAll(collection);
    }
    std::set<std::string> all;
    for (const LibraryInterface& one : interfaces)
        for (const LibraryOperation& operation : one.operations)
            all.insert(NameOf(operation));
    EXPECT_EQ(all, called);
    EXPECT_EQ(before, Stored());
    EXPECT_EQ(holders, Holders());
}

TEST_F(HostileCallsTest, ItemsLeaveNothing)
{
    SetOaNoCache();
    const std::vector<ULONG> holders = Holders();
    HeapUse before;
    for (int i = 0; i < 3; ++i)
    {
        if (i == 2)
            before = UseOfAllHeaps();
        for (const NamedObject& item : Items())
            CallAll(item);
    }
    EXPECT_EQ(before, UseOfAllHeaps());
    EXPECT_EQ(holders, Holders());
}

// A text of 64 MiB in the place of every text, alone, in an array and in a record; the other
// arguments are such as the operation takes.
TEST_F(HostileCallsTest, HugeTextsAreTakenOrRefused)
{
    const HugeArguments huge;
    std::set<std::string> huged;
    Start(kOutlookName);
    std::vector<NamedObject> objects = Collections();
    for (NamedObject& item : Items())
        objects.push_back(std::move(item));
    objects.push_back({"NPersonalInformationService", service});
    for (const NamedObject& named : objects)
        ForEachOperation(named, [&](IUnknown* object, const LibraryOperation& operation) {
            const auto arguments = WithHugeText(operation, huge);
            // Once for each operation, whichever object has it: the texts cost time.
            if (!arguments || called.contains(NameOf(operation)))
                return;
            Judge(named.name, {operation, *arguments, CallByTable(object, operation, *arguments)});
            // So that objects hold one huge text at a time.
            CallByTable(object, operation, WithSecondValues(operation));
        });
    // Puts of a contact 19, of a group 4, of a category 2, of an appointment 5, of an entity 2; IDs
    // of the address book 4, of the calendar 2, of an enumerator 2; the name of a back end 1.
    EXPECT_EQ(41u, called.size());
}

// The texts are whole.
TEST_F(HostileCallsTest, AHugeTextComesBackWhole)
{
    const HugeArguments huge;
    const auto contact = CreateObject<INContactItem>(CLSID_NContactItem);
    EXPECT_EQ(S_OK, contact->put_Notes(huge.Text()));
    Bstr notes;
    EXPECT_EQ(S_OK, contact->get_Notes(notes.Put()));
    EXPECT_TRUE(notes.View() == std::wstring_view(huge.Text(), HugeArguments::kCharacters));
}
