#include "tests/recordingstore/library/Restriction.h"

#include <algorithm>
#include <cwctype>

namespace
{
constexpr int kMaxDepth = 64;

const Value* Find(const Properties& row, ULONG tag)
{
    const auto found = row.find(static_cast<USHORT>(PROP_ID(tag)));
    return found == row.end() ? nullptr : &found->second;
}

std::wstring Folded(std::wstring text, ULONG fuzzyLevel)
{
    if (fuzzyLevel & (FL_IGNORECASE | FL_LOOSE))
        std::transform(text.begin(), text.end(), text.begin(), [](wchar_t unit) {
            return static_cast<wchar_t>(std::towlower(unit));
        });
    return text;
}
} // namespace

std::optional<RowFilter> RowFilter::Read(const SRestriction& from, int depth)
{
    RowFilter filter;
    filter.m_kind = from.rt;
    const auto& res = from.res;
    bool isGood = depth <= kMaxDepth;
    switch (from.rt)
    {
    case RES_AND:
        isGood = isGood && filter.ReadParts(res.resAnd.lpRes, res.resAnd.cRes, depth);
        break;
    case RES_OR:
        isGood = isGood && filter.ReadParts(res.resOr.lpRes, res.resOr.cRes, depth);
        break;
    case RES_NOT:
        isGood = isGood && filter.ReadParts(res.resNot.lpRes, 1, depth);
        break;
    case RES_EXIST:
        filter.m_tag = res.resExist.ulPropTag;
        break;
    case RES_PROPERTY:
        filter.m_tag = res.resProperty.ulPropTag;
        filter.m_detail = res.resProperty.relop;
        isGood = filter.m_detail <= RELOP_NE && filter.ReadValueOf(res.resProperty.lpProp);
        break;
    case RES_CONTENT:
        filter.m_tag = res.resContent.ulPropTag;
        filter.m_detail = res.resContent.ulFuzzyLevel;
        isGood = (filter.m_detail & 0xFFFF) <= FL_PREFIX &&
                 filter.ReadValueOf(res.resContent.lpProp) &&
                 InType(filter.m_value, PT_UNICODE).has_value();
        break;
    default:
        isGood = false;
    }
    return isGood ? std::optional(std::move(filter)) : std::nullopt;
}

bool RowFilter::ReadParts(const SRestriction* parts, ULONG count, int depth)
{
    if (count && !parts)
        return false;
    for (ULONG i = 0; i < count; ++i)
    {
        std::optional<RowFilter> part = Read(parts[i], depth + 1);
        if (!part)
            return false;
        m_parts.push_back(*std::move(part));
    }
    return true;
}

bool RowFilter::ReadValueOf(const SPropValue* value)
{
    const std::optional<Value> read = value ? ReadValue(*value) : std::nullopt;
    if (read)
        m_value = *read;
    return read.has_value();
}

bool RowFilter::Matches(const Properties& row) const
{
    const auto matches = [&](const RowFilter& part) { return part.Matches(row); };
    switch (m_kind)
    {
    case RES_AND:
        return std::all_of(m_parts.begin(), m_parts.end(), matches);
    case RES_OR:
        return std::any_of(m_parts.begin(), m_parts.end(), matches);
    case RES_NOT:
        return !matches(m_parts.front());
    case RES_EXIST:
        return Find(row, m_tag) != nullptr;
    case RES_PROPERTY:
        return MatchesProperty(Find(row, m_tag));
    default:
        return MatchesContent(Find(row, m_tag));
    }
}

bool RowFilter::MatchesProperty(const Value* stored) const
{
    const std::optional<Value> value = stored ? InType(*stored, m_value.type) : std::nullopt;
    if (!value)
        return m_detail == RELOP_NE;
    const int order = CompareValues(*value, m_value);
    switch (m_detail)
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

bool RowFilter::MatchesContent(const Value* stored) const
{
    if (!stored || !InType(*stored, PT_UNICODE))
        return false;
    const std::wstring text = Folded(WideTextOf(*stored), m_detail);
    const std::wstring part = Folded(WideTextOf(m_value), m_detail);
    switch (m_detail & 0xFFFF)
    {
    case FL_FULLSTRING:
        return text == part;
    case FL_PREFIX:
        return text.starts_with(part);
    default:
        return text.find(part) != std::wstring::npos;
    }
}

void SortRows(const std::vector<SSortOrder>& order, std::vector<Properties>& rows)
{
    const auto before = [&](const Properties& left, const Properties& right) {
        for (const SSortOrder& by : order)
        {
            const Value* const a = Find(left, by.ulPropTag);
            const Value* const b = Find(right, by.ulPropTag);
            int result = !a || !b ? (a != nullptr) - (b != nullptr) : CompareValues(*a, *b, true);
            if (by.ulOrder == TABLE_SORT_DESCEND)
                result = -result;
            if (result)
                return result < 0;
        }
        return false;
    };
    std::stable_sort(rows.begin(), rows.end(), before);
}
