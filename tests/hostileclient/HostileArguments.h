// Values that no well-meaning client passes, for every type of parameter that the automation
// contract has: null, out of range, of the wrong type, of broken shape.
//
// Left out is what no server can tell from a good value inside one process: pointers to freed or
// foreign memory.
#pragma once

#include "hostileclient/HostileItem.h"
#include "hostileclient/LibraryOperations.h"
#include "platform/SafeArray.h"

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

struct HostileValue
{
    std::string name;
    // As DispCallFunc takes it: pointers, whole numbers and records in memory of their own as
    // VT_I8, times as VT_R8.
    VARIANT slot{};
    bool isNull = false; // a null pointer
};

// Where the callee is. The marshaller, in the client's own process, takes shape for granted: for a
// callee elsewhere arrays and objects that are broken in themselves are left out.
enum class Callee
{
    InThisProcess,
    InAnotherProcess
};

class HostileArguments
{
  public:
    explicit HostileArguments(Callee callee = Callee::InThisProcess);
    // Broken arrays are mended first.
    ~HostileArguments();
    HostileArguments(const HostileArguments&) = delete;
    HostileArguments& operator=(const HostileArguments&) = delete;

    // All values for a parameter at that position of a call; empty for a type that is not known
    // here. They belong to this object.
    std::vector<HostileValue> For(const ParameterType& parameter, std::size_t position);

    // Frees what a call wrote to the output at that position, and clears it.
    void ClearOutput(const ParameterType& parameter, std::size_t position);

    // A value that is a pointer.
    static HostileValue Pointer(std::string name, const void* pointer);

    // Adds objects to those that stand for item pointers. The caller keeps them alive.
    void AddItem(const std::string& name, IUnknown* item);

    const std::vector<std::unique_ptr<_tagRecurringInfo>>& Records() const { return m_records; }
    const std::vector<DATE>& Times() const { return m_times; }
    // The own objects among the items, which everybody is to let go of.
    const std::vector<std::unique_ptr<HostileItem>>& OwnItems() const { return m_ownItems; }

  private:
    struct Text
    {
        std::string name;
        Bstr value;
    };
    struct Array
    {
        std::string name;
        SAFEARRAY* value;
        std::function<void(SAFEARRAY*)> end;
    };
    struct Item
    {
        std::string name;
        IUnknown* value;
    };
    struct Output
    {
        alignas(16) std::array<BYTE, 40'000> bytes;
    };

    void MakeTexts();
    void MakeArrays();
    void MakeBrokenArrays();
    void MakeRecords();
    void MakeVariants();
    std::vector<HostileValue> InValues(const ParameterType& parameter);
    std::vector<HostileValue> Records(const ParameterType& parameter);

    std::vector<Text> m_texts;
    std::vector<Array> m_arrays;
    std::vector<Item> m_items;
    std::vector<VARIANT> m_variants;
    std::vector<DATE> m_times;
    std::vector<std::unique_ptr<HostileItem>> m_ownItems;
    std::vector<std::unique_ptr<_tagRecurringInfo>> m_records;
    std::vector<_tagNAddress> m_addresses;
    std::vector<GUID> m_guids;
    std::array<Output, 4> m_outputs{};
};
