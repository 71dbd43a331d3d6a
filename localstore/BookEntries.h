// The entries of a container of the embedded address book as rows of a table, in the order of their
// making.
#pragma once

#include "localstore/BookSession.h"
#include "localstore/TableSource.h"

// The source keeps the session.
std::unique_ptr<TableSource> MakeBookEntriesSource(std::shared_ptr<BookSession> session,
                                                   std::int64_t container);
