#include "hostileclient/LibraryOperations.h"

#include "platform/Bstr.h"
#include "support/TypeDescriptions.h"

using Microsoft::WRL::ComPtr;

namespace
{
std::string NameIn(ITypeInfo& info, MEMBERID member = MEMBERID_NIL)
{
    Bstr name;
    Check(info.GetDocumentation(member, name.Put(), nullptr, nullptr, nullptr), "GetDocumentation");
    // Names are plain ASCII by contract.
    return std::string(name.View().begin(), name.View().end());
}

// Follows a reference to another type of the library.
void Resolve(ITypeInfo& info, HREFTYPE reference, ParameterType& parameter)
{
    ComPtr<ITypeInfo> target;
    Check(info.GetRefTypeInfo(reference, target.GetAddressOf()), "GetRefTypeInfo");
    const TypeAttributes attributes(*target.Get());
    switch (attributes->typekind)
    {
    case TKIND_ENUM:
        parameter.type = VT_I4;
        return;
    case TKIND_INTERFACE:
    case TKIND_DISPATCH:
        parameter.type = VT_UNKNOWN;
        --parameter.pointers;
        return;
    case TKIND_RECORD:
        parameter.type = VT_RECORD;
        parameter.recordBytes = attributes->cbSizeInstance;
        parameter.recordName = NameIn(*target.Get());
        return;
    default:
        throw std::runtime_error("a parameter of an unknown kind");
    }
}

ParameterType ParameterOf(ITypeInfo& info, const ELEMDESC& element)
{
    ParameterType parameter;
    parameter.isOut = (element.paramdesc.wParamFlags & PARAMFLAG_FOUT) != 0;
    const TYPEDESC* type = &element.tdesc;
    for (; type->vt == VT_PTR; type = type->lptdesc)
        ++parameter.pointers;
    if (type->vt == VT_USERDEFINED)
        Resolve(info, type->hreftype, parameter);
    else
        parameter.type = type->vt;
    return parameter;
}

LibraryOperation OperationOf(ITypeInfo& info, const IID& iid, UINT index)
{
    const FunctionDescription function(info, index);
    LibraryOperation operation;
    operation.iid = iid;
    operation.interfaceName = NameIn(info);
    operation.name = NameIn(info, function->memid);
    if (function->invkind == INVOKE_PROPERTYGET)
        operation.name.insert(0, "get_");
    else if (function->invkind != INVOKE_FUNC)
        operation.name.insert(0, "put_");
    operation.kind = function->invkind;
    operation.id = function->memid;
    operation.vtableOffset = static_cast<ULONG>(function->oVft);
    for (SHORT i = 0; i < function->cParams; ++i)
        operation.parameters.push_back(ParameterOf(info, function->lprgelemdescParam[i]));
    return operation;
}

// The view of a dual interface that callers by table have.
ComPtr<ITypeInfo> TableViewOf(ITypeInfo& dispatch)
{
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> table;
    Check(dispatch.GetRefTypeOfImplType(static_cast<UINT>(-1), &reference), "table view");
    Check(dispatch.GetRefTypeInfo(reference, table.GetAddressOf()), "GetRefTypeInfo");
    return table;
}
} // namespace

std::vector<LibraryInterface> InterfacesOf(ITypeLib& library)
{
    std::vector<LibraryInterface> interfaces;
    for (UINT i = 0; i < library.GetTypeInfoCount(); ++i)
    {
        TYPEKIND kind = TKIND_MAX;
        Check(library.GetTypeInfoType(i, &kind), "GetTypeInfoType");
        if (kind != TKIND_DISPATCH)
            continue;
        ComPtr<ITypeInfo> dispatch;
        Check(library.GetTypeInfo(i, dispatch.GetAddressOf()), "GetTypeInfo");
        const ComPtr<ITypeInfo> table = TableViewOf(*dispatch.Get());
        const TypeAttributes attributes(*table.Get());
        LibraryInterface& added = interfaces.emplace_back();
        added.iid = attributes->guid;
        added.name = NameIn(*table.Get());
        for (UINT j = 0; j < attributes->cFuncs; ++j)
            added.operations.push_back(OperationOf(*table.Get(), added.iid, j));
    }
    return interfaces;
}

ComPtr<ITypeLib> LibraryIn(const std::wstring& path)
{
    ComPtr<ITypeLib> library;
    Check(LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.GetAddressOf()), "LoadTypeLibEx");
    return library;
}
