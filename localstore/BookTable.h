// The contents table of a container: the entries as they stood when it was made, in the order of
// their making. Values are read at QueryRows; a row whose entry is gone by then has the columns as
// PT_ERROR. Rows come in one buffer each and the set in another, as row sets are freed.
#pragma once

#include "localstore/BookSession.h"
#include "localstore/ComObject.h"
#include "localstore/MapiValues.h"

#include <mapiguid.h>

#include <memory>
#include <vector>

class BookTable : public ComObject<IMAPITable, &IID_IMAPITable>
{
  public:
    // Inside BookSession::Run.
    BookTable(std::shared_ptr<BookSession> session, std::int64_t container);

    STDMETHODIMP GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) override;
    STDMETHODIMP Advise(ULONG events, LPMAPIADVISESINK sink, ULONG* connection) override;
    STDMETHODIMP Unadvise(ULONG connection) override;
    STDMETHODIMP GetStatus(ULONG* status, ULONG* type) override;
    STDMETHODIMP SetColumns(LPSPropTagArray tags, ULONG flags) override;
    STDMETHODIMP QueryColumns(ULONG flags, LPSPropTagArray* tags) override;
    STDMETHODIMP GetRowCount(ULONG flags, ULONG* count) override;
    STDMETHODIMP SeekRow(BOOKMARK origin, LONG rows, LONG* rowsSought) override;
    STDMETHODIMP SeekRowApprox(ULONG numerator, ULONG denominator) override;
    STDMETHODIMP QueryPosition(ULONG* row, ULONG* numerator, ULONG* denominator) override;
    STDMETHODIMP FindRow(LPSRestriction restriction, BOOKMARK origin, ULONG flags) override;
    STDMETHODIMP Restrict(LPSRestriction restriction, ULONG flags) override;
    STDMETHODIMP CreateBookmark(BOOKMARK* position) override;
    STDMETHODIMP FreeBookmark(BOOKMARK position) override;
    STDMETHODIMP SortTable(LPSSortOrderSet order, ULONG flags) override;
    STDMETHODIMP QuerySortOrder(LPSSortOrderSet* order) override;
    // A negative count reads backwards and leaves the position before the first row given out.
    STDMETHODIMP QueryRows(LONG rowCount, ULONG flags, LPSRowSet* rows) override;
    STDMETHODIMP Abort() override;
    STDMETHODIMP ExpandRow(ULONG keyBytes,
                           LPBYTE key,
                           ULONG rowCount,
                           ULONG flags,
                           LPSRowSet* rows,
                           ULONG* moreRows) override;
    STDMETHODIMP CollapseRow(ULONG keyBytes, LPBYTE key, ULONG flags, ULONG* rowCount) override;
    STDMETHODIMP WaitForCompletion(ULONG flags, ULONG timeout, ULONG* status) override;
    STDMETHODIMP GetCollapseState(
        ULONG flags, ULONG keyBytes, LPBYTE key, ULONG* stateBytes, LPBYTE* state) override;
    STDMETHODIMP SetCollapseState(ULONG flags,
                                  ULONG stateBytes,
                                  LPBYTE state,
                                  BOOKMARK* position) override;

  private:
    SPropValue* RowValues(std::int64_t entry);

    std::shared_ptr<BookSession> m_session;
    std::vector<std::int64_t> m_entries;
    std::vector<ULONG> m_columns;
    size_t m_position = 0;
};
