// The utility functions of a MAPI library that work on any table, row set or object.
#pragma once

#include "platform/WindowsHeaders.h"

// Frees the rows' values and the set, all of them buffers of this library. Null is fine.
void FreeRowSet(SRowSet* rows) noexcept;

// All rows of a table with those columns, that restriction and order; each may be null and is left
// as it is then. MAPI_E_TABLE_TOO_BIG where there are more rows than maxRows, unless that is 0.
HRESULT QueryAllRows(IMAPITable* table,
                     SPropTagArray* tags,
                     SRestriction* restriction,
                     SSortOrderSet* order,
                     LONG maxRows,
                     SRowSet** rows) noexcept;

// The one value of that tag; the caller frees it with MAPIFreeBuffer. A missing value is its error,
// with a null output.
HRESULT GetOneProp(IMAPIProp* object, ULONG tag, SPropValue** value) noexcept;
