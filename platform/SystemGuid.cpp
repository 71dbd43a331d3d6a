#include "platform/GuidSource.h"

#include "platform/WindowsHeaders.h"

std::wstring SystemGuidText()
{
    GUID guid{};
    wchar_t text[64];
    if (FAILED(CoCreateGuid(&guid)) || StringFromGUID2(guid, text, 64) == 0)
        return {};
    return text;
}
