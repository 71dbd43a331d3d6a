// The way into the personal container of the Windows Address Book.
#pragma once

#include "outlook/store/Proxcy.h"
#include "platform/WindowsHeaders.h"

// Null where the book does not tell of its container or does not open it. The proxy frees what the
// book hands out. Throws std::bad_alloc.
Microsoft::WRL::ComPtr<IABContainer> OpenPersonalBook(IAddrBook& book, CNProxcy& proxy);
