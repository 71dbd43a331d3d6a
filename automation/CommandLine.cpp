#include "automation/CommandLine.h"

#include "platform/WindowsHeaders.h"

namespace
{
struct SwitchRow
{
    std::wstring_view word;
    ServerSwitch value;
};

constexpr SwitchRow kSwitches[] = {
    {L"UnregServer", ServerSwitch::UnregServer},
    {L"RegServer", ServerSwitch::RegServer},
};

wchar_t Upper(wchar_t character)
{
    // With a zero high part the argument is a character, not a string.
    const auto argument = reinterpret_cast<LPWSTR>(static_cast<ULONG_PTR>(character));
    return static_cast<wchar_t>(reinterpret_cast<ULONG_PTR>(CharUpperW(argument)));
}

bool StartsWithWord(std::wstring_view text, std::wstring_view word)
{
    if (text.size() < word.size())
        return false;
    for (size_t i = 0; i < word.size(); ++i)
        if (Upper(text[i]) != Upper(word[i]))
            return false;
    return text.size() == word.size() || text[word.size()] == L' ' || text[word.size()] == L'\t';
}
} // namespace

ServerSwitch ParseCommandLine(std::wstring_view text)
{
    for (size_t mark = text.find_first_of(L"-/"); mark != std::wstring_view::npos;
         mark = text.find_first_of(L"-/", mark + 1))
        for (const SwitchRow& row : kSwitches)
            if (StartsWithWord(text.substr(mark + 1), row.word))
                return row.value;
    return ServerSwitch::None;
}
