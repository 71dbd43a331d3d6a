// Opening the embedded address book.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string>

// What WABOpen does, on the store of that path. Both outputs get one reference, or null.
HRESULT OpenBook(const std::wstring& storePath, LPADRBOOK* book, LPWABOBJECT* library) noexcept;
