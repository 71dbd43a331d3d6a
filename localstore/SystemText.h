// The system's words for its error codes.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string>

// One line in the user's language; "system error N" for what the system has no words for.
std::wstring SystemText(DWORD error);
