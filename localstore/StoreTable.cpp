#include "localstore/StoreTable.h"

#include "localstore/RowSetBuilder.h"
#include "localstore/Snapshot.h"
#include "platform/ScopeExit.h"

#include <algorithm>
#include <utility>

namespace
{

constexpr ULONG kMaxSorts = 32;

} // namespace

StoreTable::StoreTable(std::shared_ptr<StoreConnection> session,
                       std::unique_ptr<TableSource> source)
    : m_session(std::move(session)), m_source(std::move(source)), m_keys(m_source->Keys()),
      m_columns(m_source->DefaultColumns())
{
}

STDMETHODIMP StoreTable::GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error)
{
    return m_session->LastError(result, flags, error);
}

STDMETHODIMP StoreTable::Advise(ULONG, LPMAPIADVISESINK, ULONG* connection)
{
    return RefuseWith(connection);
}

STDMETHODIMP StoreTable::Unadvise(ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP StoreTable::GetStatus(ULONG* status, ULONG* type)
{
    if (!status || !type)
        return MAPI_E_INVALID_PARAMETER;
    *status = TBLSTAT_COMPLETE;
    *type = TBLTYPE_SNAPSHOT;
    return S_OK;
}

STDMETHODIMP StoreTable::SetColumns(LPSPropTagArray tags, ULONG flags)
{
    if (flags & ~(TBL_ASYNC | TBL_BATCH))
        return MAPI_E_UNKNOWN_FLAGS;
    return m_session->Run([&] {
        std::vector<ULONG> columns;
        if (const HRESULT result = ReadTags(tags, columns); FAILED(result))
            return result;
        m_columns = std::move(columns);
        return S_OK;
    });
}

STDMETHODIMP StoreTable::QueryColumns(ULONG flags, LPSPropTagArray* tags)
{
    if (!tags)
        return MAPI_E_INVALID_PARAMETER;
    *tags = nullptr;
    if (flags & ~TBL_ALL_COLUMNS)
        return MAPI_E_UNKNOWN_FLAGS;
    return m_session->Run([&] {
        *tags = CopyTags((flags & TBL_ALL_COLUMNS) ? m_source->DefaultColumns() : m_columns,
                         ChainedMemory::OfLibrary());
        return S_OK;
    });
}

STDMETHODIMP StoreTable::GetRowCount(ULONG flags, ULONG* count)
{
    if (!count)
        return MAPI_E_INVALID_PARAMETER;
    *count = 0;
    if (flags & ~TBL_NOWAIT)
        return MAPI_E_UNKNOWN_FLAGS;
    return m_session->Run([&] {
        *count = static_cast<ULONG>(m_keys.size());
        return S_OK;
    });
}

HRESULT StoreTable::Origin(BOOKMARK origin, std::int64_t& row) const
{
    if (origin == BOOKMARK_BEGINNING)
        row = 0;
    else if (origin == BOOKMARK_CURRENT)
        row = static_cast<std::int64_t>(m_position);
    else if (origin == BOOKMARK_END)
        row = static_cast<std::int64_t>(m_keys.size());
    else
        return MAPI_E_INVALID_BOOKMARK;
    return S_OK;
}

STDMETHODIMP StoreTable::SeekRow(BOOKMARK origin, LONG rows, LONG* rowsSought)
{
    return m_session->Run([&] {
        std::int64_t from = 0;
        if (const HRESULT result = Origin(origin, from); FAILED(result))
            return result;
        const std::int64_t to =
            std::clamp<std::int64_t>(from + rows, 0, static_cast<std::int64_t>(m_keys.size()));
        m_position = static_cast<size_t>(to);
        if (rowsSought)
            *rowsSought = static_cast<LONG>(to - from);
        return S_OK;
    });
}

STDMETHODIMP StoreTable::SeekRowApprox(ULONG numerator, ULONG denominator)
{
    if (denominator == 0)
        return MAPI_E_INVALID_PARAMETER;
    return m_session->Run([&] {
        const std::uint64_t size = m_keys.size();
        m_position =
            static_cast<size_t>(std::min<std::uint64_t>(size, size * numerator / denominator));
        return S_OK;
    });
}

STDMETHODIMP StoreTable::QueryPosition(ULONG* row, ULONG* numerator, ULONG* denominator)
{
    if (!row || !numerator || !denominator)
        return MAPI_E_INVALID_PARAMETER;
    return m_session->Run([&] {
        *row = static_cast<ULONG>(m_position);
        *numerator = static_cast<ULONG>(m_position);
        *denominator = static_cast<ULONG>(std::max<size_t>(m_keys.size(), 1));
        return S_OK;
    });
}

STDMETHODIMP StoreTable::FindRow(LPSRestriction restriction, BOOKMARK origin, ULONG flags)
{
    if (flags & ~DIR_BACKWARD)
        return MAPI_E_UNKNOWN_FLAGS;
    return m_session->Run([&] {
        Restriction compiled;
        std::int64_t from = 0;
        if (const HRESULT result = compiled.Compile(restriction); FAILED(result))
            return result;
        if (const HRESULT result = Origin(origin, from); FAILED(result))
            return result;
        const Snapshot snapshot(m_session->Store());
        const bool backward = (flags & DIR_BACKWARD) != 0;
        const auto first = m_keys.begin() + from;
        // Backwards the rows before the origin count, the nearest first.
        std::vector<std::int64_t> keys(backward ? m_keys.begin() : first,
                                       backward ? first : m_keys.end());
        if (backward)
            std::reverse(keys.begin(), keys.end());
        std::optional<std::int64_t> found;
        m_source->Read(keys,
                       m_natural && !backward,
                       PropertySelection(compiled.Ids()),
                       [&](std::int64_t key, const PropertyMap& row) {
                           if (compiled.Matches(row))
                               found = key;
                           return !found;
                       });
        if (!found)
            return MAPI_E_NOT_FOUND;
        m_position =
            static_cast<size_t>(std::find(m_keys.begin(), m_keys.end(), *found) - m_keys.begin());
        return S_OK;
    });
}

// Missing values sort first; rows that are gone by now are left out.
void StoreTable::Sort(std::vector<std::int64_t>& keys) const
{
    struct Row
    {
        std::int64_t key;
        std::vector<std::optional<PropertyValue>> values;
    };
    std::vector<std::uint16_t> ids;
    for (const SSortOrder& sort : m_order)
        ids.push_back(static_cast<std::uint16_t>(PROP_ID(sort.ulPropTag)));
    std::vector<Row> rows;
    m_source->Read(keys,
                   m_natural,
                   PropertySelection(ids),
                   [&](std::int64_t key, const PropertyMap& properties) {
                       Row row{key, {}};
                       for (const std::uint16_t id : ids)
                       {
                           const auto found = properties.find(id);
                           row.values.push_back(found == properties.end()
                                                    ? std::nullopt
                                                    : std::optional(found->second));
                       }
                       rows.push_back(std::move(row));
                       return true;
                   });
    const auto address = [](const std::optional<PropertyValue>& value) {
        return value ? &*value : nullptr;
    };
    std::stable_sort(rows.begin(), rows.end(), [&](const Row& left, const Row& right) {
        for (size_t i = 0; i < m_order.size(); ++i)
        {
            const int order = CompareStored(address(left.values[i]), address(right.values[i]));
            if (order != 0)
                return (m_order[i].ulOrder == TABLE_SORT_DESCEND) ? order > 0 : order < 0;
        }
        return false;
    });
    keys.clear();
    for (const Row& row : rows)
        keys.push_back(row.key);
}

STDMETHODIMP StoreTable::Restrict(LPSRestriction restriction, ULONG flags)
{
    if (flags & ~(TBL_ASYNC | TBL_BATCH))
        return MAPI_E_UNKNOWN_FLAGS;
    return m_session->Run([&] {
        Restriction compiled;
        if (restriction)
        {
            if (const HRESULT result = compiled.Compile(restriction); FAILED(result))
                return result;
        }
        const Snapshot snapshot(m_session->Store());
        std::vector<std::int64_t> keys = m_source->Keys();
        if (restriction)
        {
            std::vector<std::int64_t> matching;
            m_source->Read(keys,
                           true,
                           PropertySelection(compiled.Ids()),
                           [&](std::int64_t key, const PropertyMap& row) {
                               if (compiled.Matches(row))
                                   matching.push_back(key);
                               return true;
                           });
            keys.swap(matching);
        }
        const bool wasNatural = std::exchange(m_natural, !restriction);
        ScopeExit restore([&] { m_natural = wasNatural; });
        if (!m_order.empty())
        {
            Sort(keys);
            m_natural = false;
        }
        restore.Release();
        m_keys.swap(keys);
        m_position = 0;
        return S_OK;
    });
}

STDMETHODIMP StoreTable::CreateBookmark(BOOKMARK* position)
{
    return RefuseWith(position);
}

STDMETHODIMP StoreTable::FreeBookmark(BOOKMARK)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP StoreTable::SortTable(LPSSortOrderSet order, ULONG flags)
{
    if (!order)
        return MAPI_E_INVALID_PARAMETER;
    if (flags & ~(TBL_ASYNC | TBL_BATCH))
        return MAPI_E_UNKNOWN_FLAGS;
    if (order->cSorts > kMaxSorts || order->cCategories != 0 || order->cExpanded != 0)
        return MAPI_E_TOO_COMPLEX;
    return m_session->Run([&] {
        std::vector<SSortOrder> sorts(order->aSort, order->aSort + order->cSorts);
        for (const SSortOrder& sort : sorts)
        {
            const bool known =
                sort.ulOrder == TABLE_SORT_ASCEND || sort.ulOrder == TABLE_SORT_DESCEND;
            if (!known || (PROP_TYPE(sort.ulPropTag) & MV_FLAG))
                return MAPI_E_TOO_COMPLEX;
        }
        const Snapshot snapshot(m_session->Store());
        std::swap(m_order, sorts);
        ScopeExit restore([&] { std::swap(m_order, sorts); });
        std::vector<std::int64_t> keys = m_keys;
        if (m_order.empty())
            std::sort(keys.begin(), keys.end());
        else
            Sort(keys);
        restore.Release();
        m_keys.swap(keys);
        // Ascending keys of a restricted table have gaps, so they are no whole run either.
        m_natural = m_natural && m_order.empty();
        m_position = 0;
        return S_OK;
    });
}

STDMETHODIMP StoreTable::QuerySortOrder(LPSSortOrderSet* order)
{
    if (!order)
        return MAPI_E_INVALID_PARAMETER;
    *order = nullptr;
    return m_session->Run([&] {
        ChainedBuffer buffer(ChainedMemory::OfLibrary(), CbNewSSortOrderSet(m_order.size()));
        auto* copy = static_cast<SSortOrderSet*>(buffer.Get());
        copy->cSorts = static_cast<ULONG>(m_order.size());
        std::copy(m_order.begin(), m_order.end(), copy->aSort);
        *order = static_cast<SSortOrderSet*>(buffer.Detach());
        return S_OK;
    });
}

STDMETHODIMP StoreTable::QueryRows(LONG rowCount, ULONG flags, LPSRowSet* rows)
{
    if (!rows)
        return MAPI_E_INVALID_PARAMETER;
    *rows = nullptr;
    if (flags & ~TBL_NOADVANCE)
        return MAPI_E_UNKNOWN_FLAGS;
    return m_session->Run([&] {
        const size_t wanted = static_cast<size_t>(std::abs(static_cast<std::int64_t>(rowCount)));
        const bool backwards = rowCount < 0;
        const PropertySelection selection = SelectionOf(m_columns);
        ChainedMemory& memory = ChainedMemory::OfLibrary();
        const Snapshot snapshot(m_session->Store());
        size_t position = m_position;
        RowSetBuilder set(memory, std::min(wanted, m_keys.size()));
        // An empty set says that the table is at its end, so rows that are gone are stepped over.
        size_t delivered = 0;
        while (delivered == 0)
        {
            const size_t left = backwards ? position : m_keys.size() - position;
            const size_t count = std::min(wanted, left);
            if (count == 0)
                break;
            const size_t first = backwards ? position - count : position;
            m_source->Read(std::span(m_keys).subspan(first, count),
                           m_natural,
                           selection,
                           [&](std::int64_t, const PropertyMap& row) {
                               SPropValue* values = nullptr;
                               CopyValues(row, m_columns, memory, &values);
                               set.Add(values, m_columns.size());
                               ++delivered;
                               return true;
                           });
            position = backwards ? first : first + count;
        }
        if (!(flags & TBL_NOADVANCE))
            m_position = position;
        *rows = set.Detach();
        return S_OK;
    });
}

STDMETHODIMP StoreTable::Abort()
{
    // Nothing runs asynchronously.
    return S_OK;
}

STDMETHODIMP StoreTable::ExpandRow(ULONG, LPBYTE, ULONG, ULONG, LPSRowSet* rows, ULONG* moreRows)
{
    return RefuseWith(rows, moreRows);
}

STDMETHODIMP StoreTable::CollapseRow(ULONG, LPBYTE, ULONG, ULONG* rowCount)
{
    return RefuseWith(rowCount);
}

STDMETHODIMP StoreTable::WaitForCompletion(ULONG, ULONG, ULONG* status)
{
    if (status)
        *status = TBLSTAT_COMPLETE;
    return S_OK;
}

STDMETHODIMP StoreTable::GetCollapseState(ULONG, ULONG, LPBYTE, ULONG* stateBytes, LPBYTE* state)
{
    return RefuseWith(stateBytes, state);
}

STDMETHODIMP StoreTable::SetCollapseState(ULONG, ULONG, LPBYTE, BOOKMARK* position)
{
    return RefuseWith(position);
}
