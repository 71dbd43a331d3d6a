#include "hostileclient/HostileCalls.h"

#include <stdexcept>

namespace
{
using ValuesOfParameters = std::vector<std::vector<HostileValue>>;

ValuesOfParameters ValuesFor(const LibraryOperation& operation, HostileArguments& values)
{
    ValuesOfParameters all;
    for (std::size_t i = 0; i < operation.parameters.size(); ++i)
        all.push_back(values.For(operation.parameters[i], i));
    return all;
}

std::size_t CombinationsOf(const ValuesOfParameters& values)
{
    std::size_t combinations = 1;
    for (const auto& one : values)
        combinations *= one.size();
    return combinations;
}
} // namespace

std::string HostileCall::Text() const
{
    std::string text = operation.interfaceName + "." + operation.name + "(";
    for (std::size_t i = 0; i < arguments.size(); ++i)
        text += (i ? ", " : "") + arguments[i].name;
    return text + ")";
}

std::size_t CombinationsOf(const LibraryOperation& operation, HostileArguments& values)
{
    return CombinationsOf(ValuesFor(operation, values));
}

HRESULT CallByTable(IUnknown* object,
                    const LibraryOperation& operation,
                    const std::vector<HostileValue>& arguments)
{
    std::vector<VARTYPE> types;
    std::vector<VARIANT> slots;
    for (const HostileValue& argument : arguments)
    {
        types.push_back(argument.slot.vt);
        slots.push_back(argument.slot);
    }
    std::vector<VARIANT*> addresses;
    for (VARIANT& slot : slots)
        addresses.push_back(&slot);
    VARIANT result{};
    const HRESULT called = DispCallFunc(object,
                                        operation.vtableOffset,
                                        CC_STDCALL,
                                        VT_I4,
                                        static_cast<UINT>(slots.size()),
                                        types.data(),
                                        addresses.data(),
                                        &result);
    if (FAILED(called))
        throw std::runtime_error("DispCallFunc");
    return result.lVal;
}

void CallWithEveryValue(IUnknown* object,
                        const LibraryOperation& operation,
                        HostileArguments& values,
                        const std::function<void(const HostileCall&)>& told)
{
    const ValuesOfParameters all = ValuesFor(operation, values);
    for (std::size_t i = 0; i < CombinationsOf(all); ++i)
    {
        // The number of the combination, digit by digit.
        std::size_t rest = i;
        std::vector<HostileValue> arguments;
        for (const auto& one : all)
        {
            arguments.push_back(one[rest % one.size()]);
            rest /= one.size();
        }
        const HRESULT result = CallByTable(object, operation, arguments);
        told({operation, arguments, result});
        for (std::size_t p = 0; p < arguments.size(); ++p)
            if (operation.parameters[p].isOut)
                values.ClearOutput(operation.parameters[p], p);
    }
}
