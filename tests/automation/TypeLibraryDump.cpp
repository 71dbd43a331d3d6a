#include "automation/TypeLibraryDump.h"

#include "platform/Bstr.h"
#include "support/TypeDescriptions.h"

using Microsoft::WRL::ComPtr;

namespace
{
// Names and help strings are plain ASCII by contract; anything else shows as a question mark.
std::string Ascii(std::wstring_view text)
{
    std::string narrow;
    for (const wchar_t character : text)
        narrow += character < 0x80 ? static_cast<char>(character) : '?';
    return narrow;
}

std::string Ascii(const Bstr& text)
{
    return Ascii(text.View());
}

std::string GuidText(const GUID& guid)
{
    if (guid == GUID_NULL)
        return "none";
    wchar_t text[64] = {};
    StringFromGUID2(guid, text, 64);
    return Ascii(std::wstring_view(text));
}

std::string Name(ITypeInfo& info, MEMBERID member = MEMBERID_NIL)
{
    Bstr name;
    Check(info.GetDocumentation(member, name.Put(), nullptr, nullptr, nullptr), "GetDocumentation");
    return Ascii(name);
}

std::string Help(ITypeInfo& info, MEMBERID member = MEMBERID_NIL)
{
    Bstr help;
    Check(info.GetDocumentation(member, nullptr, help.Put(), nullptr, nullptr), "GetDocumentation");
    return "help \"" + Ascii(help) + "\"";
}

struct BasicType
{
    VARTYPE type;
    const char* name;
};

constexpr BasicType kBasicTypes[] = {
    {VT_BSTR, "BSTR"},
    {VT_DATE, "DATE"},
    {VT_BOOL, "VARIANT_BOOL"},
    {VT_I4, "long"},
    {VT_UI4, "unsigned long"},
    {VT_UI2, "unsigned short"},
    {VT_VARIANT, "VARIANT"},
    {VT_UNKNOWN, "IUnknown*"},
    {VT_DISPATCH, "IDispatch*"},
    {VT_HRESULT, "HRESULT"},
};

std::string TypeName(ITypeInfo& info, const TYPEDESC& type)
{
    switch (type.vt)
    {
    case VT_PTR:
        return TypeName(info, *type.lptdesc) + "*";
    case VT_SAFEARRAY:
        return "SAFEARRAY(" + TypeName(info, *type.lptdesc) + ")";
    case VT_CARRAY: {
        std::string text = TypeName(info, type.lpadesc->tdescElem);
        for (USHORT i = 0; i < type.lpadesc->cDims; ++i)
            text += "[" + std::to_string(type.lpadesc->rgbounds[i].cElements) + "]";
        return text;
    }
    case VT_USERDEFINED: {
        ComPtr<ITypeInfo> referenced;
        Check(info.GetRefTypeInfo(type.hreftype, &referenced), "GetRefTypeInfo");
        return Name(*referenced.Get());
    }
    default:
        for (const BasicType& basic : kBasicTypes)
            if (basic.type == type.vt)
                return basic.name;
        return "type " + std::to_string(type.vt);
    }
}

class Dump
{
  public:
    std::vector<std::string> lines;

    void Library(ITypeLib& library)
    {
        TLIBATTR* attributes = nullptr;
        Check(library.GetLibAttr(&attributes), "GetLibAttr");
        const TLIBATTR copy = *attributes;
        library.ReleaseTLibAttr(attributes);
        Bstr name;
        Bstr help;
        Check(library.GetDocumentation(-1, name.Put(), help.Put(), nullptr, nullptr),
              "GetDocumentation");
        Add("library " + Ascii(name) + " " + GuidText(copy.guid) + " version " +
            std::to_string(copy.wMajorVerNum) + "." + std::to_string(copy.wMinorVerNum) +
            " locale " + std::to_string(copy.lcid) + " help \"" + Ascii(help) + "\"");
        for (UINT i = 0; i < library.GetTypeInfoCount(); ++i)
        {
            ComPtr<ITypeInfo> info;
            Check(library.GetTypeInfo(i, &info), "GetTypeInfo");
            Type(*info.Get());
        }
    }

  private:
    void Add(std::string line) { lines.push_back(std::move(line)); }

    void Type(ITypeInfo& info)
    {
        const TypeAttributes attributes(info);
        switch (attributes->typekind)
        {
        case TKIND_COCLASS:
            return Coclass(info);
        case TKIND_ENUM:
            return Enumeration(info);
        case TKIND_RECORD:
            return Record(info);
        case TKIND_DISPATCH: {
            // A dual interface is listed by its dispatch face; index -1 leads to its vtable.
            ComPtr<ITypeInfo> vtable;
            HREFTYPE reference = 0;
            Check(info.GetRefTypeOfImplType(static_cast<UINT>(-1), &reference),
                  "vtable of a dual interface");
            Check(info.GetRefTypeInfo(reference, &vtable), "GetRefTypeInfo");
            return Interface(*vtable.Get());
        }
        case TKIND_INTERFACE:
            return Interface(info);
        default:
            Add("unexpected kind " + std::to_string(attributes->typekind) + " " + Name(info));
        }
    }

    void Coclass(ITypeInfo& info)
    {
        const TypeAttributes attributes(info);
        Add("coclass " + Name(info) + " " + GuidText(attributes->guid) +
            (attributes->wTypeFlags & TYPEFLAG_FCANCREATE ? " creatable " : " ") + Help(info));
        for (UINT i = 0; i < attributes->cImplTypes; ++i)
        {
            HREFTYPE reference = 0;
            INT flags = 0;
            ComPtr<ITypeInfo> implemented;
            Check(info.GetRefTypeOfImplType(i, &reference), "GetRefTypeOfImplType");
            Check(info.GetRefTypeInfo(reference, &implemented), "GetRefTypeInfo");
            Check(info.GetImplTypeFlags(i, &flags), "GetImplTypeFlags");
            Add("implements " + Name(info) + " " + std::to_string(i + 1) + " " +
                Name(*implemented.Get()) + (flags & IMPLTYPEFLAG_FDEFAULT ? " default" : "") +
                (flags & ~IMPLTYPEFLAG_FDEFAULT ? " flags " + std::to_string(flags) : ""));
        }
    }

    void Enumeration(ITypeInfo& info)
    {
        const TypeAttributes attributes(info);
        Add("enumeration " + Name(info) + " " + std::to_string(attributes->cbSizeInstance) +
            " bytes " + std::to_string(attributes->cVars) + " members");
        for (UINT i = 0; i < attributes->cVars; ++i)
        {
            const VariableDescription member(info, i);
            VARIANT value;
            VariantInit(&value);
            Check(VariantChangeType(&value, member->lpvarValue, 0, VT_I4), "value of a member");
            Add("member " + Name(info) + " " + Name(info, member->memid) + " " +
                std::to_string(V_I4(&value)));
        }
    }

    void Record(ITypeInfo& info)
    {
        const TypeAttributes attributes(info);
        Add("record " + Name(info) + " " + GuidText(attributes->guid) + " " +
            std::to_string(attributes->cbSizeInstance) + " bytes " +
            std::to_string(attributes->cVars) + " fields");
        for (UINT i = 0; i < attributes->cVars; ++i)
        {
            const VariableDescription field(info, i);
            Add("field " + Name(info) + " " + std::to_string(i + 1) + " " +
                Name(info, field->memid) + " at " + std::to_string(field->oInst) + " " +
                TypeName(info, field->elemdescVar.tdesc));
        }
    }

    void Interface(ITypeInfo& info)
    {
        const TypeAttributes attributes(info);
        ComPtr<ITypeInfo> base;
        HREFTYPE reference = 0;
        Check(info.GetRefTypeOfImplType(0, &reference), "base interface");
        Check(info.GetRefTypeInfo(reference, &base), "GetRefTypeInfo");
        const WORD flags = attributes->wTypeFlags;
        std::string line =
            "interface " + Name(info) + " " + GuidText(attributes->guid) + " " + Name(*base.Get());
        line += flags & TYPEFLAG_FDUAL ? " dual" : "";
        line += flags & TYPEFLAG_FNONEXTENSIBLE ? " nonextensible" : "";
        line += flags & TYPEFLAG_FOLEAUTOMATION ? " oleautomation" : "";
        line += flags & TYPEFLAG_FDISPATCHABLE ? " dispatchable" : "";
        Add(line + " " + std::to_string(attributes->cFuncs) + " operations");
        for (UINT i = 0; i < attributes->cFuncs; ++i)
            Operation(info, i);
    }

    void Operation(ITypeInfo& info, UINT index)
    {
        const FunctionDescription function(info, index);
        std::vector<BSTR> raw(static_cast<size_t>(function->cParams) + 1);
        UINT cNames = 0;
        Check(info.GetNames(function->memid, raw.data(), static_cast<UINT>(raw.size()), &cNames),
              "GetNames");
        std::vector<Bstr> names;
        for (BSTR name : raw)
            names.push_back(Bstr::Adopt(name));

        const char* kind = function->invkind == INVOKE_FUNC          ? "method"
                           : function->invkind == INVOKE_PROPERTYGET ? "propget"
                           : function->invkind == INVOKE_PROPERTYPUT ? "propput"
                                                                     : "propputref";
        std::string line = "operation " + Name(info) + " +" + std::to_string(function->oVft) + " " +
                           kind + " " + std::to_string(function->memid) + " " + Ascii(names[0]) +
                           " " + Help(info, function->memid) + " " +
                           TypeName(info, function->elemdescFunc.tdesc) + " (";
        for (int i = 0; i < function->cParams; ++i)
        {
            const ELEMDESC& argument = function->lprgelemdescParam[i];
            const size_t position = static_cast<size_t>(i) + 1;
            // Names are found by dispatch ID, so a put shows those of its get; what is put has
            // no name that a client could read.
            const bool isPutValue =
                function->invkind == INVOKE_PROPERTYPUT && i + 1 == function->cParams;
            line += i ? "; " : "";
            line += Direction(argument.paramdesc.wParamFlags) + " " +
                    TypeName(info, argument.tdesc) + " " +
                    (!isPutValue && position < cNames && names[position] ? Ascii(names[position])
                                                                         : "unnamed");
        }
        Add(line + ")");
    }

    static std::string Direction(USHORT flags)
    {
        std::string text;
        text += flags & PARAMFLAG_FIN ? "in " : "";
        text += flags & PARAMFLAG_FOUT ? "out " : "";
        text += flags & PARAMFLAG_FRETVAL ? "retval " : "";
        const USHORT others = flags & ~(PARAMFLAG_FIN | PARAMFLAG_FOUT | PARAMFLAG_FRETVAL);
        if (others)
            text += "flags " + std::to_string(others) + " ";
        if (text.empty())
            return "none";
        text.pop_back();
        return text;
    }
};
} // namespace

std::vector<std::string> DumpTypeLibrary(ITypeLib& library)
{
    Dump dump;
    dump.Library(library);
    return std::move(dump.lines);
}
