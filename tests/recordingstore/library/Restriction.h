// Which rows a table shows, and in which order.
#pragma once

#include "tests/recordingstore/library/Value.h"

// A restriction with memory of its own.
class RowFilter
{
  public:
    // Nothing for a restriction that is broken, too deep or of a kind that the store does not know.
    static std::optional<RowFilter> Read(const SRestriction& from, int depth = 0);

    bool Matches(const Properties& row) const;

  private:
    bool ReadParts(const SRestriction* parts, ULONG count, int depth);
    bool ReadValueOf(const SPropValue* value);
    bool MatchesProperty(const Value* stored) const;
    bool MatchesContent(const Value* stored) const;

    ULONG m_kind = RES_AND;
    ULONG m_detail = 0; // relation or fuzzy level
    ULONG m_tag = 0;
    Value m_value;
    std::vector<RowFilter> m_parts;
};

// Sorts stably; rows without a value come first.
void SortRows(const std::vector<SSortOrder>& order, std::vector<Properties>& rows);
