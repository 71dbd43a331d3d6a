#include "tests/recordingstore/library/TableObject.h"

#include "tests/recordingstore/library/Delivery.h"
#include "tests/recordingstore/library/HostileAnswers.h"

#include <algorithm>

namespace
{
constexpr ULONG kMaxColumns = 0xFFFF;

std::vector<Properties> Twice(std::vector<Properties> rows)
{
    const std::vector<Properties> again = rows;
    rows.insert(rows.end(), again.begin(), again.end());
    return rows;
}
} // namespace

TableObject::TableObject(const std::string& name,
                         std::vector<ULONG> columns,
                         bool isUnicode,
                         Rows rows)
    : TableWithoutOperations("IMAPITable", name + " table"), m_columns(std::move(columns)),
      m_isUnicode(isUnicode), m_rows(std::move(rows))
{
}

std::vector<Properties> TableObject::Shown() const
{
    std::vector<Properties> rows = m_rows();
    if (m_filter)
        std::erase_if(rows, [&](const Properties& row) { return !m_filter->Matches(row); });
    if (!m_order.empty())
        SortRows(m_order, rows);
    return rows;
}

HRESULT TableObject::SetColumns(LPSPropTagArray tags, ULONG flags)
{
    return RunCall(Begin("SetColumns(" + TagsText(tags) + ", " + FlagsText(flags) + ")"),
                   [&](StoreFault fault) -> HRESULT {
                       if (!tags || tags->cValues == 0 || tags->cValues > kMaxColumns)
                           return MAPI_E_INVALID_PARAMETER;
                       m_columns.assign(tags->aulPropTag, tags->aulPropTag + tags->cValues);
                       if (fault == StoreFault::ShortRows)
                           m_columns.pop_back();
                       return S_OK;
                   });
}

HRESULT TableObject::QueryColumns(ULONG flags, LPSPropTagArray* tags)
{
    return RunCall(
        Begin("QueryColumns(" + FlagsText(flags) + ")"),
        [&](StoreFault) -> HRESULT {
            if (!tags)
                return MAPI_E_INVALID_PARAMETER;
            auto* const array = static_cast<SPropTagArray*>(TheLibrary().memory.Allocate(
                CbNewSPropTagArray(m_columns.size()), "columns of " + Name()));
            array->cValues = static_cast<ULONG>(m_columns.size());
            std::copy(m_columns.begin(), m_columns.end(), array->aulPropTag);
            *tags = array;
            return S_OK;
        },
        tags);
}

HRESULT TableObject::GetRowCount(ULONG flags, ULONG* count)
{
    return RunCall(
        Begin("GetRowCount(" + FlagsText(flags) + ")"),
        [&](StoreFault fault) -> HRESULT {
            if (!count)
                return MAPI_E_INVALID_PARAMETER;
            *count = static_cast<ULONG>(Shown().size());
            if (fault == StoreFault::FewerValues && *count)
                --*count;
            SpoilNumber(fault, count);
            return S_OK;
        },
        count);
}

HRESULT TableObject::SeekRow(BOOKMARK origin, LONG rows, LONG* sought)
{
    return RunCall(
        Begin("SeekRow(" + std::to_string(origin) + ", " + std::to_string(rows) + ")"),
        [&](StoreFault) -> HRESULT {
            const LONG size = static_cast<LONG>(Shown().size());
            const LONG here = std::min(static_cast<LONG>(m_position), size);
            if (origin > BOOKMARK_END)
                return MAPI_E_INVALID_BOOKMARK;
            const LONG from = origin == BOOKMARK_BEGINNING ? 0
                              : origin == BOOKMARK_END     ? size
                                                           : here;
            const std::int64_t to = std::int64_t{from} + rows;
            const LONG reached = static_cast<LONG>(std::clamp<std::int64_t>(to, 0, size));
            m_position = static_cast<std::size_t>(reached);
            if (sought)
                *sought = reached - from;
            return S_OK;
        },
        sought);
}

HRESULT TableObject::QueryPosition(ULONG* row, ULONG* numerator, ULONG* denominator)
{
    return RunCall(
        Begin("QueryPosition()"),
        [&](StoreFault) -> HRESULT {
            if (!row || !numerator || !denominator)
                return MAPI_E_INVALID_PARAMETER;
            const std::size_t size = Shown().size();
            *row = *numerator = static_cast<ULONG>(std::min(m_position, size));
            *denominator = static_cast<ULONG>(std::max<std::size_t>(size, 1));
            return S_OK;
        },
        row,
        numerator,
        denominator);
}

HRESULT TableObject::Restrict(LPSRestriction restriction, ULONG flags)
{
    return RunCall(
        Begin("Restrict(" + RestrictionText(restriction) + ", " + FlagsText(flags) + ")"),
        [&](StoreFault) -> HRESULT {
            std::optional<RowFilter> filter;
            if (restriction && !(filter = RowFilter::Read(*restriction)))
                return MAPI_E_TOO_COMPLEX;
            m_filter = std::move(filter);
            m_position = 0;
            return S_OK;
        });
}

HRESULT TableObject::SortTable(LPSSortOrderSet sort, ULONG flags)
{
    return RunCall(Begin("SortTable(" + SortText(sort) + ", " + FlagsText(flags) + ")"),
                   [&](StoreFault) -> HRESULT {
                       if (!sort || sort->cSorts > kMaxColumns)
                           return MAPI_E_INVALID_PARAMETER;
                       if (sort->cCategories)
                           return MAPI_E_TOO_COMPLEX;
                       m_order.assign(sort->aSort, sort->aSort + sort->cSorts);
                       m_position = 0;
                       return S_OK;
                   });
}

HRESULT TableObject::QueryRows(LONG count, ULONG flags, LPSRowSet* rows)
{
    return RunCall(
        Begin("QueryRows(" + std::to_string(count) + ", " + FlagsText(flags) + ")"),
        [&](StoreFault fault) -> HRESULT {
            if (!rows)
                return MAPI_E_INVALID_PARAMETER;
            if (flags & ~TBL_NOADVANCE)
                return MAPI_E_UNKNOWN_FLAGS;
            if (fault == StoreFault::EndlessFolders)
            {
                CountSpoiled();
                TheLibrary().content.hasEndlessFolders = true;
            }
            std::vector<Properties> shown = Shown();
            if (fault == StoreFault::LongerArrays)
                shown = Twice(shown);
            std::size_t first = std::min(m_position, shown.size());
            std::size_t end = shown.size();
            // A negative count goes back; rows come in table order all the same.
            if (fault == StoreFault::LongerArrays)
                CountSpoiled();
            else if (count >= 0)
                end = std::min(end, first + static_cast<std::size_t>(count));
            else
            {
                end = first;
                first -= std::min(first, static_cast<std::size_t>(-std::int64_t{count}));
            }
            const std::size_t reached = count >= 0 ? end : first;
            if (fault == StoreFault::FewerValues && end > first)
                --end;
            const ULONG size = static_cast<ULONG>(end - first);
            BufferMemory& memory = TheLibrary().memory;
            auto* const set = static_cast<SRowSet*>(
                memory.Allocate(CbNewSRowSet(std::max<ULONG>(size, 1)), "rows of " + Name()));
            std::vector<ULONG> columns = m_columns;
            if (fault == StoreFault::ShortRows && !columns.empty())
                columns.pop_back();
            SpoilWanted(fault, columns);
            for (ULONG i = 0; i < size; ++i)
            {
                const Properties& row = shown[first + i];
                auto* values = static_cast<SPropValue*>(
                    memory.Allocate(columns.size() * sizeof(SPropValue), "a row of " + Name()));
                set->aRow[i] = {0, static_cast<ULONG>(columns.size()), values};
                set->cRows = i + 1;
                DeliverValues(
                    columns,
                    [&](USHORT id) {
                        const auto found = row.find(id);
                        return found == row.end() ? std::nullopt : std::optional(found->second);
                    },
                    m_isUnicode,
                    ChainedTo(values),
                    values);
                if (fault == StoreFault::WrongTypes)
                    SpoilTypes(values, set->aRow[i].cValues);
                SpoilValues(fault, columns, ChainedTo(values), values);
                SpoilArray(fault, set->aRow[i].cValues, set->aRow[i].lpProps);
            }
            *rows = set;
            if (!(flags & TBL_NOADVANCE))
                m_position = reached;
            return S_OK;
        },
        rows);
}
