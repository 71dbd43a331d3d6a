#include "localstore/BookTable.h"

#include "localstore/RowSetBuilder.h"

#include <algorithm>

namespace
{

constexpr ULONG kDefaultColumns[] = {
    PR_ENTRYID, PR_OBJECT_TYPE, PR_DISPLAY_NAME_W, PR_LAST_MODIFICATION_TIME};

template <typename Output> HRESULT Refuse(Output* output) noexcept
{
    if (output)
        *output = {};
    return MAPI_E_NO_SUPPORT;
}

} // namespace

BookTable::BookTable(std::shared_ptr<BookSession> session, std::int64_t container)
    : m_session(std::move(session)),
      m_columns(std::begin(kDefaultColumns), std::end(kDefaultColumns))
{
    Statement rows =
        m_session->Store().Prepare("SELECT id FROM book_entry WHERE container = ?1 ORDER BY id");
    rows.Bind(1, container);
    while (rows.Step())
        m_entries.push_back(rows.Integer(0));
}

STDMETHODIMP BookTable::GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error)
{
    return m_session->LastError(result, flags, error);
}

STDMETHODIMP BookTable::Advise(ULONG, LPMAPIADVISESINK, ULONG* connection)
{
    return Refuse(connection);
}

STDMETHODIMP BookTable::Unadvise(ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP BookTable::GetStatus(ULONG* status, ULONG* type)
{
    if (!status || !type)
        return MAPI_E_INVALID_PARAMETER;
    *status = TBLSTAT_COMPLETE;
    *type = TBLTYPE_SNAPSHOT;
    return S_OK;
}

STDMETHODIMP BookTable::SetColumns(LPSPropTagArray tags, ULONG flags)
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

STDMETHODIMP BookTable::QueryColumns(ULONG flags, LPSPropTagArray* tags)
{
    if (!tags)
        return MAPI_E_INVALID_PARAMETER;
    *tags = nullptr;
    if (flags & ~TBL_ALL_COLUMNS)
        return MAPI_E_UNKNOWN_FLAGS;
    return m_session->Run([&] {
        *tags = CopyTags(m_columns, ChainedMemory::OfLibrary());
        return S_OK;
    });
}

STDMETHODIMP BookTable::GetRowCount(ULONG flags, ULONG* count)
{
    if (!count)
        return MAPI_E_INVALID_PARAMETER;
    *count = 0;
    if (flags & ~TBL_NOWAIT)
        return MAPI_E_UNKNOWN_FLAGS;
    *count = static_cast<ULONG>(m_entries.size());
    return S_OK;
}

STDMETHODIMP BookTable::SeekRow(BOOKMARK origin, LONG rows, LONG* rowsSought)
{
    return m_session->Run([&] {
        const auto size = static_cast<std::int64_t>(m_entries.size());
        std::int64_t from = 0;
        if (origin == BOOKMARK_CURRENT)
            from = static_cast<std::int64_t>(m_position);
        else if (origin == BOOKMARK_END)
            from = size;
        else if (origin != BOOKMARK_BEGINNING)
            return MAPI_E_INVALID_BOOKMARK;
        const std::int64_t to = std::clamp<std::int64_t>(from + rows, 0, size);
        m_position = static_cast<size_t>(to);
        if (rowsSought)
            *rowsSought = static_cast<LONG>(to - from);
        return S_OK;
    });
}

STDMETHODIMP BookTable::SeekRowApprox(ULONG, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP BookTable::QueryPosition(ULONG* row, ULONG* numerator, ULONG* denominator)
{
    if (!row || !numerator || !denominator)
        return MAPI_E_INVALID_PARAMETER;
    return m_session->Run([&] {
        *row = static_cast<ULONG>(m_position);
        *numerator = static_cast<ULONG>(m_position);
        *denominator = static_cast<ULONG>(std::max<size_t>(m_entries.size(), 1));
        return S_OK;
    });
}

STDMETHODIMP BookTable::FindRow(LPSRestriction, BOOKMARK, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP BookTable::Restrict(LPSRestriction restriction, ULONG)
{
    // No restriction is what the table has.
    return restriction ? MAPI_E_NO_SUPPORT : S_OK;
}

STDMETHODIMP BookTable::CreateBookmark(BOOKMARK* position)
{
    return Refuse(position);
}

STDMETHODIMP BookTable::FreeBookmark(BOOKMARK)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP BookTable::SortTable(LPSSortOrderSet, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP BookTable::QuerySortOrder(LPSSortOrderSet* order)
{
    return Refuse(order);
}

SPropValue* BookTable::RowValues(std::int64_t entry)
{
    PropertyMap properties;
    Statement row = m_session->Store().Prepare(
        "SELECT entry_id, object_type, modified FROM book_entry WHERE id = ?1");
    row.Bind(1, entry);
    if (row.Step())
    {
        const auto entryId = row.Blob(0);
        properties = ReadProperties(m_session->Store(), {OwnerKind::BookEntry, entry});
        properties[PROP_ID(PR_ENTRYID)] = {PT_BINARY, Bytes(entryId.begin(), entryId.end())};
        properties[PROP_ID(PR_OBJECT_TYPE)] = {PT_LONG, static_cast<std::uint64_t>(row.Integer(1))};
        properties[PROP_ID(PR_LAST_MODIFICATION_TIME)] = {
            PT_SYSTIME, static_cast<std::uint64_t>(row.Integer(2))};
    }
    SPropValue* values = nullptr;
    CopyValues(properties, m_columns, ChainedMemory::OfLibrary(), &values);
    return values;
}

STDMETHODIMP BookTable::QueryRows(LONG rowCount, ULONG flags, LPSRowSet* rows)
{
    if (!rows)
        return MAPI_E_INVALID_PARAMETER;
    *rows = nullptr;
    if (flags & ~TBL_NOADVANCE)
        return MAPI_E_UNKNOWN_FLAGS;
    return m_session->Run([&] {
        const size_t wanted = static_cast<size_t>(std::abs(static_cast<std::int64_t>(rowCount)));
        const bool backwards = rowCount < 0;
        const size_t count =
            std::min(wanted, backwards ? m_position : m_entries.size() - m_position);
        const size_t first = backwards ? m_position - count : m_position;

        RowSetBuilder set(ChainedMemory::OfLibrary(), count);
        for (size_t i = first; i < first + count; ++i)
            set.Add(RowValues(m_entries[i]), m_columns.size());
        if (!(flags & TBL_NOADVANCE))
            m_position = backwards ? first : first + count;
        *rows = set.Detach();
        return S_OK;
    });
}

STDMETHODIMP BookTable::Abort()
{
    // Nothing runs asynchronously.
    return S_OK;
}

STDMETHODIMP
BookTable::ExpandRow(ULONG, LPBYTE, ULONG, ULONG, LPSRowSet* rows, ULONG* moreRows)
{
    if (moreRows)
        *moreRows = 0;
    return Refuse(rows);
}

STDMETHODIMP BookTable::CollapseRow(ULONG, LPBYTE, ULONG, ULONG* rowCount)
{
    return Refuse(rowCount);
}

STDMETHODIMP BookTable::WaitForCompletion(ULONG, ULONG, ULONG* status)
{
    if (status)
        *status = TBLSTAT_COMPLETE;
    return S_OK;
}

STDMETHODIMP BookTable::GetCollapseState(ULONG, ULONG, LPBYTE, ULONG* stateBytes, LPBYTE* state)
{
    if (stateBytes)
        *stateBytes = 0;
    return Refuse(state);
}

STDMETHODIMP BookTable::SetCollapseState(ULONG, ULONG, LPBYTE, BOOKMARK* position)
{
    return Refuse(position);
}
