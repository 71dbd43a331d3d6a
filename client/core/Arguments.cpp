#include "client/core/Arguments.h"

#include "client/core/LetterCase.h"
#include "client/core/Unicode.h"

namespace pim
{
bool EqualsIgnoringCase(std::string_view left, std::string_view right)
{
    return IsSameIgnoringCase(WideFromUtf8(left), WideFromUtf8(right));
}

std::wstring ReadLine(const std::string& text, const char* option)
{
    std::wstring line = WideFromUtf8(text);
    if (line.find_first_of(L"\r\n") != std::wstring::npos)
        throw UsageProblem{std::string(option) + " takes text on one line."};
    return line;
}

CivilTime ReadDay(const std::string& text, const char* option)
{
    const auto typed = ParseTypedTime(WideFromUtf8(text));
    if (!typed || typed->hasClock)
        throw UsageProblem{std::string(option) + " takes a day as 2024-05-01, not \"" + text +
                           "\"."};
    return typed->time;
}
} // namespace pim
