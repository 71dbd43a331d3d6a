#include "localstore/Restriction.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace
{

constexpr ULONG kFuzzyKind = 0xFFFF;
constexpr ULONG kFuzzyIgnoreCase = FL_IGNORECASE | FL_LOOSE;

const PropertyValue* FindValue(const PropertyMap& row, ULONG tag)
{
    const auto found = row.find(static_cast<std::uint16_t>(PROP_ID(tag)));
    return found == row.end() ? nullptr : &found->second;
}

template <typename T> int Order(const T& left, const T& right)
{
    return left < right ? -1 : (right < left ? 1 : 0);
}

// What is no number comes before all numbers, so that sorting has an order to go by.
template <typename T> int OrderOfFloats(T left, T right)
{
    if (std::isnan(left) || std::isnan(right))
        return Order(!std::isnan(left), !std::isnan(right));
    return Order(left, right);
}

int OrderOfText(const std::wstring& left, const std::wstring& right)
{
    return CompareStringW(LOCALE_INVARIANT,
                          NORM_IGNORECASE,
                          left.c_str(),
                          static_cast<int>(left.size()),
                          right.c_str(),
                          static_cast<int>(right.size())) -
           CSTR_EQUAL;
}

int OrderOfNumbers(std::uint16_t type, std::uint64_t left, std::uint64_t right)
{
    if (type == PT_DOUBLE || type == PT_APPTIME)
        return OrderOfFloats(std::bit_cast<double>(left), std::bit_cast<double>(right));
    if (type == PT_R4)
        return OrderOfFloats(std::bit_cast<float>(static_cast<std::uint32_t>(left)),
                             std::bit_cast<float>(static_cast<std::uint32_t>(right)));
    return Order(static_cast<std::int64_t>(left), static_cast<std::int64_t>(right));
}

bool Holds(ULONG relation, int order)
{
    switch (relation)
    {
    case RELOP_LT:
        return order < 0;
    case RELOP_LE:
        return order <= 0;
    case RELOP_GT:
        return order > 0;
    case RELOP_GE:
        return order >= 0;
    case RELOP_EQ:
        return order == 0;
    default:
        return order != 0;
    }
}

std::wstring Folded(std::wstring text)
{
    if (!text.empty())
        CharLowerBuffW(text.data(), static_cast<DWORD>(text.size()));
    return text;
}

template <typename Sequence> bool Contains(const Sequence& whole, const Sequence& part, ULONG kind)
{
    if (kind == FL_PREFIX)
        return whole.size() >= part.size() && std::equal(part.begin(), part.end(), whole.begin());
    if (kind == FL_SUBSTRING)
        return std::search(whole.begin(), whole.end(), part.begin(), part.end()) != whole.end() ||
               part.empty();
    return whole == part;
}

bool MatchesContent(const PropertyValue& stored, const PropertyValue& wanted, ULONG fuzzy)
{
    const auto converted = ConvertValue(stored, wanted.type);
    if (!converted)
        return false;
    const ULONG kind = fuzzy & kFuzzyKind;
    if (const auto* text = std::get_if<std::wstring>(&converted->data))
    {
        const auto& part = std::get<std::wstring>(wanted.data);
        return fuzzy & kFuzzyIgnoreCase ? Contains(Folded(*text), Folded(part), kind)
                                        : Contains(*text, part, kind);
    }
    if (const auto* bytes = std::get_if<Bytes>(&converted->data))
    {
        const auto& part = std::get<Bytes>(wanted.data);
        if (wanted.type == PT_STRING8 && (fuzzy & kFuzzyIgnoreCase))
            return Contains(Folded(WideFromAnsi(*bytes)), Folded(WideFromAnsi(part)), kind);
        return Contains(*bytes, part, kind);
    }
    return false;
}

size_t SizeOf(const PropertyValue& value)
{
    if (const auto* bytes = std::get_if<Bytes>(&value.data))
        return bytes->size() + (value.type == PT_STRING8 ? 1 : 0);
    if (const auto* text = std::get_if<std::wstring>(&value.data))
        return (text->size() + 1) * sizeof(wchar_t);
    switch (value.type)
    {
    case PT_I2:
    case PT_BOOLEAN:
        return 2;
    case PT_LONG:
    case PT_R4:
        return 4;
    default:
        return 8;
    }
}

} // namespace

struct Restriction::Node
{
    ULONG kind = RES_AND;
    ULONG tag = 0;
    // The other property of RES_COMPAREPROPS.
    ULONG otherTag = 0;
    // RELOP_*, BMR_* or the fuzzy level.
    ULONG relation = 0;
    // The mask or the size.
    ULONG number = 0;
    PropertyValue value;
    std::vector<Node> parts;
};

Restriction::Restriction() = default;
Restriction::~Restriction() = default;
Restriction::Restriction(Restriction&&) noexcept = default;
Restriction& Restriction::operator=(Restriction&&) noexcept = default;

HRESULT Restriction::Compile(const SRestriction* source)
{
    m_root.assign(1, Node());
    m_ids.clear();
    m_nodes = 0;
    return Compile(source, 0, m_root.front());
}

HRESULT
Restriction::CompileList(ULONG count, const SRestriction* sources, int depth, Node& node)
{
    if (count != 0 && !sources)
        return MAPI_E_INVALID_PARAMETER;
    if (count > kMaxNodes - m_nodes)
        return MAPI_E_TOO_COMPLEX;
    node.parts.resize(count);
    for (ULONG i = 0; i < count; ++i)
    {
        if (const HRESULT result = Compile(&sources[i], depth + 1, node.parts[i]); FAILED(result))
            return result;
    }
    return S_OK;
}

HRESULT Restriction::CompileValue(ULONG tag, const SPropValue* value, Node& node)
{
    if (!value)
        return MAPI_E_INVALID_PARAMETER;
    if ((PROP_TYPE(tag) | PROP_TYPE(value->ulPropTag)) & MV_FLAG)
        return MAPI_E_TOO_COMPLEX;
    node.tag = tag;
    m_ids.push_back(static_cast<std::uint16_t>(PROP_ID(tag)));
    return ReadValue(*value, node.value);
}

HRESULT Restriction::Compile(const SRestriction* source, int depth, Node& node)
{
    if (!source)
        return MAPI_E_INVALID_PARAMETER;
    if (depth >= kMaxDepth || ++m_nodes > kMaxNodes)
        return MAPI_E_TOO_COMPLEX;
    node.kind = source->rt;
    switch (source->rt)
    {
    case RES_AND:
        return CompileList(source->res.resAnd.cRes, source->res.resAnd.lpRes, depth, node);
    case RES_OR:
        return CompileList(source->res.resOr.cRes, source->res.resOr.lpRes, depth, node);
    case RES_NOT:
        return CompileList(1, source->res.resNot.lpRes, depth, node);
    case RES_COMMENT:
        // The comment says nothing about rows; what it is about may be missing.
        node.kind = RES_AND;
        return CompileList(
            source->res.resComment.lpRes ? 1 : 0, source->res.resComment.lpRes, depth, node);
    case RES_CONTENT:
        node.relation = source->res.resContent.ulFuzzyLevel;
        if ((node.relation & kFuzzyKind) > FL_PREFIX)
            return MAPI_E_TOO_COMPLEX;
        return CompileValue(source->res.resContent.ulPropTag, source->res.resContent.lpProp, node);
    case RES_PROPERTY:
        node.relation = source->res.resProperty.relop;
        if (node.relation > RELOP_NE)
            return MAPI_E_TOO_COMPLEX;
        return CompileValue(
            source->res.resProperty.ulPropTag, source->res.resProperty.lpProp, node);
    case RES_COMPAREPROPS:
        node.relation = source->res.resCompareProps.relop;
        if (node.relation > RELOP_NE)
            return MAPI_E_TOO_COMPLEX;
        node.tag = source->res.resCompareProps.ulPropTag1;
        node.otherTag = source->res.resCompareProps.ulPropTag2;
        m_ids.push_back(static_cast<std::uint16_t>(PROP_ID(node.otherTag)));
        break;
    case RES_BITMASK:
        node.relation = source->res.resBitMask.relBMR;
        node.tag = source->res.resBitMask.ulPropTag;
        node.number = source->res.resBitMask.ulMask;
        break;
    case RES_SIZE:
        node.relation = source->res.resSize.relop;
        if (node.relation > RELOP_NE)
            return MAPI_E_TOO_COMPLEX;
        node.tag = source->res.resSize.ulPropTag;
        node.number = source->res.resSize.cb;
        break;
    case RES_EXIST:
        node.tag = source->res.resExist.ulPropTag;
        break;
    default:
        return MAPI_E_TOO_COMPLEX;
    }
    m_ids.push_back(static_cast<std::uint16_t>(PROP_ID(node.tag)));
    return S_OK;
}

bool Restriction::Matches(const PropertyMap& row) const
{
    return m_root.empty() || Matches(m_root.front(), row);
}

bool Restriction::Matches(const Node& node, const PropertyMap& row)
{
    const auto holds = [&](const Node& part) { return Matches(part, row); };
    const PropertyValue* stored = FindValue(row, node.tag);
    switch (node.kind)
    {
    case RES_AND:
        return std::all_of(node.parts.begin(), node.parts.end(), holds);
    case RES_OR:
        return std::any_of(node.parts.begin(), node.parts.end(), holds);
    case RES_NOT:
        return !holds(node.parts.front());
    case RES_CONTENT:
        return stored && MatchesContent(*stored, node.value, node.relation);
    case RES_PROPERTY: {
        if (!stored)
            return false;
        const auto converted = ConvertValue(*stored, node.value.type);
        return converted && Holds(node.relation, CompareStored(&*converted, &node.value));
    }
    case RES_COMPAREPROPS: {
        const PropertyValue* other = FindValue(row, node.otherTag);
        return stored && other && stored->type == other->type &&
               Holds(node.relation, CompareStored(stored, other));
    }
    case RES_BITMASK: {
        const auto* bits = stored ? std::get_if<std::uint64_t>(&stored->data) : nullptr;
        return bits && ((*bits & node.number) != 0) == (node.relation == BMR_NEZ);
    }
    case RES_SIZE:
        return stored && Holds(node.relation, Order(SizeOf(*stored), size_t{node.number}));
    default:
        return stored != nullptr;
    }
}

int CompareStored(const PropertyValue* left, const PropertyValue* right)
{
    if (!left || !right)
        return Order(left != nullptr, right != nullptr);
    if (left->type != right->type)
        return Order(left->type, right->type);
    if (const auto* number = std::get_if<std::uint64_t>(&left->data))
        return OrderOfNumbers(left->type, *number, std::get<std::uint64_t>(right->data));
    if (const auto* text = std::get_if<std::wstring>(&left->data))
        return OrderOfText(*text, std::get<std::wstring>(right->data));
    if (const auto* bytes = std::get_if<Bytes>(&left->data))
    {
        const auto& other = std::get<Bytes>(right->data);
        if (left->type == PT_STRING8)
            return OrderOfText(WideFromAnsi(*bytes), WideFromAnsi(other));
        return Order(*bytes, other);
    }
    return Order(left->data, right->data);
}
