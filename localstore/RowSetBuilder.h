// A row set under construction: what it holds is freed unless it was handed out. The set is one
// buffer and each row's values another, as row sets are freed.
#pragma once

#include "localstore/ChainedMemory.h"

class RowSetBuilder
{
  public:
    RowSetBuilder(ChainedMemory& memory, size_t rows)
        : m_memory(memory), m_set(memory, CbNewSRowSet(rows))
    {
    }
    ~RowSetBuilder()
    {
        if (!m_set.Get())
            return;
        for (ULONG i = 0; i < Set().cRows; ++i)
            m_memory.Free(Set().aRow[i].lpProps);
    }
    RowSetBuilder(const RowSetBuilder&) = delete;
    RowSetBuilder& operator=(const RowSetBuilder&) = delete;

    // Takes a row's values over. Not beyond the number of rows that room was made for.
    void Add(SPropValue* values, size_t count) noexcept
    {
        SRow& row = Set().aRow[Set().cRows++];
        row.cValues = static_cast<ULONG>(count);
        row.lpProps = values;
    }
    SRowSet* Detach() noexcept { return static_cast<SRowSet*>(m_set.Detach()); }

  private:
    SRowSet& Set() const noexcept { return *static_cast<SRowSet*>(m_set.Get()); }

    ChainedMemory& m_memory;
    ChainedBuffer m_set;
};
