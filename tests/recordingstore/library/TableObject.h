// IMAPITable over rows that are looked up anew by each operation, so that a table shows what is
// stored at that moment.
#pragma once

#include "tests/recordingstore/library/PropertyBag.h"
#include "tests/recordingstore/library/RecordedObject.h"
#include "tests/recordingstore/library/Restriction.h"

#include <mapiguid.h>

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-parameter"
class TableWithoutOperations : public RecordedObject<IMAPITable, &IID_IMAPITable>
{
  public:
    using RecordedObject::RecordedObject;
    MAPI_IMAPITABLE_METHODS(override { return NotOffered(__func__); })
};
#pragma GCC diagnostic pop

class TableObject final : public TableWithoutOperations
{
  public:
    using Rows = std::function<std::vector<Properties>()>;

    // name: without the word "table".
    TableObject(const std::string& name, std::vector<ULONG> columns, bool isUnicode, Rows rows);

    STDMETHODIMP SetColumns(LPSPropTagArray tags, ULONG flags) override;
    STDMETHODIMP QueryColumns(ULONG flags, LPSPropTagArray* tags) override;
    STDMETHODIMP GetRowCount(ULONG flags, ULONG* count) override;
    STDMETHODIMP SeekRow(BOOKMARK origin, LONG rows, LONG* sought) override;
    STDMETHODIMP QueryPosition(ULONG* row, ULONG* numerator, ULONG* denominator) override;
    STDMETHODIMP Restrict(LPSRestriction restriction, ULONG flags) override;
    STDMETHODIMP SortTable(LPSSortOrderSet sort, ULONG flags) override;
    STDMETHODIMP QueryRows(LONG count, ULONG flags, LPSRowSet* rows) override;

  private:
    std::vector<Properties> Shown() const;

    std::vector<ULONG> m_columns;
    bool m_isUnicode;
    Rows m_rows;
    std::optional<RowFilter> m_filter;
    std::vector<SSortOrder> m_order;
    std::size_t m_position = 0;
};
