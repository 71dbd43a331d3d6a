#include "tests/recordingstore/library/CallText.h"

#include "tests/recordingstore/library/Library.h"

#include <mapiguid.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace
{
constexpr std::size_t kShownBytes = 64;
constexpr ULONG kMostItems = 0xFFFF; // more can only be a broken count
constexpr int kShownDepth = 8;

std::string Format(const char* format, auto... arguments)
{
    char text[96];
    std::snprintf(text, sizeof text, format, arguments...);
    return text;
}

std::string GuidText(const GUID& guid)
{
    wchar_t text[40] = {};
    StringFromGUID2(guid, text, 40);
    return std::string(text, text + 38);
}

std::string Hex(const ByteString& bytes)
{
    std::string text = "<";
    for (std::size_t i = 0; i < std::min(bytes.size(), kShownBytes); ++i)
        text += Format("%02X", static_cast<unsigned>(bytes[i]));
    if (bytes.size() > kShownBytes)
        text += "... " + std::to_string(bytes.size()) + " bytes";
    return text + ">";
}

std::string Quoted(const std::wstring& text)
{
    std::string quoted = "\"";
    for (const wchar_t unit : text)
        if (unit >= 0x20 && unit < 0x7F && unit != L'"' && unit != L'\\')
            quoted += static_cast<char>(unit);
        else
            quoted += Format("\\x%04X", static_cast<unsigned>(unit));
    return quoted + "\"";
}

std::string ValueText(const Value& value)
{
    if (value.type & MV_FLAG)
    {
        std::string text = "[";
        for (std::size_t i = 0; i < value.items.size(); ++i)
            text += (i ? ", " : "") + ValueText(value.items[i]);
        return text + "]";
    }
    switch (value.type)
    {
    case PT_UNICODE:
    case PT_STRING8:
        return Quoted(WideTextOf(value));
    case PT_BINARY:
    case PT_CLSID: {
        const auto [node, isRow] =
            TheLibrary().content.FindEntry(value.bytes.data(), value.bytes.size());
        return node ? node->name + (isRow ? " (row)" : "") : Hex(value.bytes);
    }
    case PT_LONG:
        return std::to_string(static_cast<LONG>(value.bits));
    case PT_I2:
        return std::to_string(static_cast<short>(value.bits));
    case PT_ERROR:
        return Format("error %08lX", static_cast<ULONG>(value.bits));
    case PT_R4:
    case PT_DOUBLE:
    case PT_APPTIME: {
        SPropValue number = {};
        WriteValue(value, 0, {}, number);
        return Format("%.17g", value.type == PT_R4 ? double(number.Value.flt) : number.Value.dbl);
    }
    default:
        return std::to_string(value.bits);
    }
}

std::string PropertyText(const SPropValue& property)
{
    const std::optional<Value> value = ReadValue(property);
    return TagText(property.ulPropTag) + " " + (value ? ValueText(*value) : "null");
}

// What stands for a list that cannot be read.
std::string BrokenList(ULONG count)
{
    return "[" + std::to_string(count) + "?]";
}

std::string RestrictionText(const SRestriction* restriction, int depth);

const char* RelationText(ULONG relation)
{
    static constexpr const char* kTexts[] = {"<", "<=", ">", ">=", "==", "!=", "like"};
    return relation < std::size(kTexts) ? kTexts[relation] : "?";
}

std::string JoinedRestrictions(const char* name, ULONG count, const SRestriction* parts, int depth)
{
    if (count > kMostItems || (count && !parts))
        return name + BrokenList(count);
    std::string text = name;
    text += '(';
    for (ULONG i = 0; i < count; ++i)
        text += (i ? ", " : "") + RestrictionText(parts + i, depth + 1);
    return text + ")";
}

std::string RestrictionText(const SRestriction* restriction, int depth)
{
    if (!restriction)
        return "null";
    if (depth > kShownDepth)
        return "...";
    const auto& res = restriction->res;
    switch (restriction->rt)
    {
    case RES_AND:
        return JoinedRestrictions("and", res.resAnd.cRes, res.resAnd.lpRes, depth);
    case RES_OR:
        return JoinedRestrictions("or", res.resOr.cRes, res.resOr.lpRes, depth);
    case RES_NOT:
        return JoinedRestrictions("not", 1, res.resNot.lpRes, depth);
    case RES_EXIST:
        return "exists " + TagText(res.resExist.ulPropTag);
    case RES_PROPERTY:
        return TagText(res.resProperty.ulPropTag) + " " + RelationText(res.resProperty.relop) +
               " " + ValuesText(1, res.resProperty.lpProp);
    case RES_CONTENT:
        return TagText(res.resContent.ulPropTag) + " contains " +
               FlagsText(res.resContent.ulFuzzyLevel) + " " + ValuesText(1, res.resContent.lpProp);
    default:
        return Format("restriction %lu", restriction->rt);
    }
}
} // namespace

std::string FlagsText(ULONG flags)
{
    return Format("%08lX", flags);
}

std::string TagText(ULONG tag)
{
    return Format("%08lX", tag);
}

std::string TagsText(const SPropTagArray* tags)
{
    if (!tags)
        return "null";
    if (tags->cValues > kMostItems)
        return BrokenList(tags->cValues);
    std::string text = "[";
    for (ULONG i = 0; i < tags->cValues; ++i)
        text += (i ? " " : "") + TagText(tags->aulPropTag[i]);
    return text + "]";
}

std::string InterfaceText(LPCIID interfaceId)
{
    static constexpr struct
    {
        const IID* id;
        const char* name;
    } kNames[] = {
        {&IID_IUnknown, "IUnknown"},
        {&IID_IStream, "IStream"},
        {&IID_IMAPIProp, "IMAPIProp"},
        {&IID_IMAPITable, "IMAPITable"},
        {&IID_IMAPIContainer, "IMAPIContainer"},
        {&IID_IMAPIFolder, "IMAPIFolder"},
        {&IID_IMessage, "IMessage"},
        {&IID_IAttachment, "IAttachment"},
        {&IID_IMsgStore, "IMsgStore"},
        {&IID_IMAPISession, "IMAPISession"},
        {&IID_IMailUser, "IMailUser"},
        {&IID_IAddrBook, "IAddrBook"},
        {&IID_IABContainer, "IABContainer"},
        {&IID_IDistList, "IDistList"},
    };
    if (!interfaceId)
        return "null";
    for (const auto& [id, name] : kNames)
        if (IsEqualIID(*id, *interfaceId))
            return name;
    return GuidText(*interfaceId);
}

std::string WideArgument(const wchar_t* text)
{
    return text ? Quoted(text) : "null";
}

std::string NarrowArgument(const char* text)
{
    return text ? Quoted(std::wstring(text, text + std::strlen(text))) : "null";
}

std::string EntryText(ULONG size, const void* entryId)
{
    if (size == 0 || !entryId)
        return size == 0 ? "none" : "null";
    const auto* const bytes = static_cast<const BYTE*>(entryId);
    return ValueText(BinaryValue(ByteString(bytes, bytes + size)));
}

std::string EntriesText(const SBinaryArray* entries)
{
    if (!entries)
        return "null";
    if (entries->cValues > kMostItems || (entries->cValues && !entries->lpbin))
        return BrokenList(entries->cValues);
    std::string text = "[";
    for (ULONG i = 0; i < entries->cValues; ++i)
        text += (i ? ", " : "") + EntryText(entries->lpbin[i].cb, entries->lpbin[i].lpb);
    return text + "]";
}

std::string ValuesText(ULONG count, const SPropValue* values)
{
    if (!values)
        return "null";
    if (count > kMostItems)
        return BrokenList(count);
    std::string text = "{";
    for (ULONG i = 0; i < count; ++i)
        text += (i ? ", " : "") + PropertyText(values[i]);
    return text + "}";
}

std::string StoredText(USHORT id, const Value& value)
{
    return TagText(PROP_TAG(value.type, id)) + " " + ValueText(value);
}

std::string RestrictionText(const SRestriction* restriction)
{
    return RestrictionText(restriction, 0);
}

std::string SortText(const SSortOrderSet* sort)
{
    if (!sort)
        return "null";
    if (sort->cSorts > kMostItems)
        return BrokenList(sort->cSorts);
    std::string text = "[";
    for (ULONG i = 0; i < sort->cSorts; ++i)
        text += std::string(i ? " " : "") +
                (sort->aSort[i].ulOrder == TABLE_SORT_DESCEND ? "-" : "+") +
                TagText(sort->aSort[i].ulPropTag);
    return text + "]";
}

std::string NamesText(ULONG count, LPMAPINAMEID* names)
{
    if (!names)
        return "null";
    if (count > kMostItems)
        return BrokenList(count);
    std::string text = "[";
    const GUID* set = nullptr;
    for (ULONG i = 0; i < count; ++i)
    {
        text += i ? " " : "";
        const MAPINAMEID* const name = names[i];
        if (!name || !name->lpguid)
        {
            text += "null";
            continue;
        }
        // The set stands before the first of its names.
        if (!set || !IsEqualGUID(*set, *name->lpguid))
            text += GuidText(*name->lpguid) + " ";
        set = name->lpguid;
        text += name->ulKind == MNID_STRING ? WideArgument(name->Kind.lpwstrName)
                                            : Format("%04lX", name->Kind.lID);
    }
    return text + "]";
}

std::string ObjectText(const void* object)
{
    if (!object)
        return "null";
    const ObjectLabel* const label = TheLibrary().recorder.Find(object);
    return label ? label->Text() : "foreign object";
}
