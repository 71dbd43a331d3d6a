// The operations of the automation contract as its type library describes them, so that a walk over
// all of them leaves none out that is added later.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string>
#include <vector>

// What a parameter carries.
struct ParameterType
{
    // Without its pointers and aliases: VT_I4 for every enumeration, VT_UNKNOWN for a pointer to
    // any interface, VT_SAFEARRAY for every array, VT_RECORD for every record.
    VARTYPE type = VT_EMPTY;
    int pointers = 0; // levels of pointers to it; the one to an interface is not counted
    bool isOut = false;
    std::size_t recordBytes = 0; // of a VT_RECORD
    std::string recordName;
};

struct LibraryOperation
{
    IID iid{};
    std::string interfaceName; // "INContactItem"
    std::string name;          // "get_Emails", "put_Emails", "GetStringByIndex"
    INVOKEKIND kind = INVOKE_FUNC;
    DISPID id = DISPID_UNKNOWN;
    ULONG vtableOffset = 0; // in bytes
    std::vector<ParameterType> parameters;
};

// The interfaces of the library, in its order.
struct LibraryInterface
{
    IID iid{};
    std::string name;
    std::vector<LibraryOperation> operations; // its own, without IDispatch's
};

// All dual interfaces of the library. Throws std::runtime_error for what no test can call.
std::vector<LibraryInterface> InterfacesOf(ITypeLib& library);

// The library that the file at that path carries as its first.
Microsoft::WRL::ComPtr<ITypeLib> LibraryIn(const std::wstring& path);
