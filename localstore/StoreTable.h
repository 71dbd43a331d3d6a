// The tables of the message store and of the address book: the rows as they stood when the table
// was made, read at QueryRows. A row that is gone by then is left out. Rows come in one buffer each
// and the set in another, as row sets are freed.
#pragma once

#include "localstore/ComObject.h"
#include "localstore/Restriction.h"
#include "localstore/TableSource.h"

#include <mapiguid.h>

#include <memory>
#include <vector>

class StoreTable : public ComObject<IMAPITable, &IID_IMAPITable>
{
  public:
    // Inside StoreConnection::Run.
    StoreTable(std::shared_ptr<StoreConnection> session, std::unique_ptr<TableSource> source);

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
    // Takes the rows anew; null takes the restriction away. The position goes to the first row.
    STDMETHODIMP Restrict(LPSRestriction restriction, ULONG flags) override;
    STDMETHODIMP CreateBookmark(BOOKMARK* position) override;
    STDMETHODIMP FreeBookmark(BOOKMARK position) override;
    // Without categories; the position goes to the first row.
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
    HRESULT Origin(BOOKMARK origin, std::int64_t& row) const;
    void Sort(std::vector<std::int64_t>& keys) const;

    std::shared_ptr<StoreConnection> m_session;
    std::unique_ptr<TableSource> m_source;
    std::vector<std::int64_t> m_keys;
    // The keys are all of the source in its own order.
    bool m_natural = true;
    std::vector<ULONG> m_columns;
    std::vector<SSortOrder> m_order;
    size_t m_position = 0;
};
