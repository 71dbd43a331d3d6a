#include "localstore/TableRows.h"

#include "localstore/ComObject.h"
#include "localstore/RowSetBuilder.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace
{

// The sets that a table gave out, freed at the end with what is left in them.
class CollectedRows
{
  public:
    CollectedRows() = default;
    ~CollectedRows()
    {
        for (SRowSet* set : m_sets)
            FreeRowSet(set);
    }
    CollectedRows(const CollectedRows&) = delete;
    CollectedRows& operator=(const CollectedRows&) = delete;

    // Takes the set over.
    void Add(SRowSet* set)
    {
        try
        {
            m_sets.push_back(set);
        }
        catch (...)
        {
            FreeRowSet(set);
            throw;
        }
        m_count += set->cRows;
    }
    size_t Count() const noexcept { return m_count; }
    SRowSet* Join()
    {
        if (m_sets.size() == 1)
        {
            SRowSet* only = m_sets.front();
            m_sets.clear();
            return only;
        }
        RowSetBuilder joined(ChainedMemory::OfLibrary(), m_count);
        for (SRowSet* set : m_sets)
        {
            for (ULONG i = 0; i < set->cRows; ++i)
                joined.Add(std::exchange(set->aRow[i].lpProps, nullptr), set->aRow[i].cValues);
        }
        return joined.Detach();
    }

  private:
    std::vector<SRowSet*> m_sets;
    size_t m_count = 0;
};

// One call delivers this many at most; a table may give fewer.
constexpr LONG kAtOnce = 0x7FFFFFFF;

HRESULT Prepare(IMAPITable& table,
                SPropTagArray* tags,
                SRestriction* restriction,
                SSortOrderSet* order)
{
    HRESULT result = S_OK;
    if (tags)
        result = table.SetColumns(tags, TBL_BATCH);
    if (SUCCEEDED(result) && restriction)
        result = table.Restrict(restriction, TBL_BATCH);
    if (SUCCEEDED(result) && order)
        result = table.SortTable(order, TBL_BATCH);
    if (SUCCEEDED(result))
        result = table.SeekRow(BOOKMARK_BEGINNING, 0, nullptr);
    return result;
}

} // namespace

void FreeRowSet(SRowSet* rows) noexcept
{
    if (!rows)
        return;
    ChainedMemory& memory = ChainedMemory::OfLibrary();
    // What is none of this library's sets is not looked into.
    if (!memory.Owns(rows))
        return;
    for (ULONG i = 0; i < rows->cRows; ++i)
        memory.Free(rows->aRow[i].lpProps);
    memory.Free(rows);
}

HRESULT QueryAllRows(IMAPITable* table,
                     SPropTagArray* tags,
                     SRestriction* restriction,
                     SSortOrderSet* order,
                     LONG maxRows,
                     SRowSet** rows) noexcept
{
    if (rows)
        *rows = nullptr;
    if (!table || !rows || maxRows < 0)
        return MAPI_E_INVALID_PARAMETER;
    return Guarded([&] {
        if (const HRESULT result = Prepare(*table, tags, restriction, order); FAILED(result))
            return result;
        CollectedRows collected;
        for (;;)
        {
            // One row more than allowed tells that there are too many.
            const LONG wanted = maxRows == 0 || maxRows == kAtOnce
                                    ? kAtOnce
                                    : maxRows + 1 - static_cast<LONG>(collected.Count());
            SRowSet* set = nullptr;
            if (const HRESULT result = table->QueryRows(wanted, 0, &set); FAILED(result))
                return result;
            if (!set)
                return MAPI_E_CALL_FAILED;
            collected.Add(set);
            if (maxRows != 0 && collected.Count() > static_cast<size_t>(maxRows))
                return MAPI_E_TABLE_TOO_BIG;
            if (set->cRows == 0 || set->cRows == static_cast<ULONG>(wanted))
                break;
        }
        *rows = collected.Join();
        return S_OK;
    });
}

HRESULT GetOneProp(IMAPIProp* object, ULONG tag, SPropValue** value) noexcept
{
    if (value)
        *value = nullptr;
    if (!object || !value)
        return MAPI_E_INVALID_PARAMETER;
    return Guarded([&]() -> HRESULT {
        SPropTagArray tags{1, {tag}};
        ULONG count = 0;
        SPropValue* values = nullptr;
        const HRESULT result = object->GetProps(&tags, 0, &count, &values);
        if (FAILED(result))
            return result;
        if (!values)
            return MAPI_E_CALL_FAILED;
        HRESULT outcome = S_OK;
        if (count == 0)
            outcome = MAPI_E_NOT_FOUND;
        else if (PROP_TYPE(values->ulPropTag) == PT_ERROR)
            outcome = FAILED(values->Value.err) ? values->Value.err : MAPI_E_NOT_FOUND;
        if (FAILED(outcome))
            ChainedMemory::OfLibrary().Free(values);
        else
            *value = values;
        return outcome;
    });
}
