#include "service/StringHelpers.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace
{
// What ReplaceAll may replace beyond one replacement per character. Rules that never settle
// ("ab" to "bbaa") and rules that settle late need a bound; texts of people stay far below it.
constexpr std::size_t kExtraReplacements = 10'000;

bool IsSpace(wchar_t character)
{
    return character == L' ' || (character >= L'\t' && character <= L'\r');
}
} // namespace

void SplitAtFirst(const std::wstring& text,
                  std::wstring& head,
                  std::wstring& tail,
                  const std::wstring& delimiter)
{
    if (text.empty())
        return;
    const std::size_t position = text.find(delimiter);
    if (position == std::wstring::npos)
        return;
    // The outputs may be the text or the delimiter itself, so both parts are made first.
    std::wstring before = text.substr(0, position);
    std::wstring behind = text.substr(position + 1);
    head = std::move(before);
    tail = std::move(behind);
}

std::wstring TrimChar(const std::wstring& text, wchar_t character)
{
    const std::size_t first = text.find_first_not_of(character);
    if (first == std::wstring::npos)
        return text;
    return text.substr(first, text.find_last_not_of(character) - first + 1);
}

std::wstring ReplaceAll(const wchar_t* text, const wchar_t* search, const wchar_t* replacement)
{
    if (!text || !search || !replacement)
        return {};
    const std::wstring_view input = text;
    const std::wstring_view wanted = search;
    const std::wstring_view substitute = replacement;
    const std::size_t first = wanted.empty() ? std::wstring_view::npos : input.find(wanted);
    if (first == std::wstring_view::npos)
        return std::wstring(input);

    // The output so far holds no match, so a scan from the start after a replacement can find one
    // only where the characters that come next end it. What is put in therefore goes back to the
    // front of the input and is read like it.
    std::wstring output;
    output.reserve(input.size());
    output = input.substr(0, first);
    std::wstring readAgain; // last character first
    std::size_t matchFloor = 0;
    std::size_t rescansLeft =
        substitute.find(wanted) == std::wstring_view::npos ? input.size() + kExtraReplacements : 0;
    for (std::size_t next = first; next < input.size() || !readAgain.empty();)
    {
        if (readAgain.empty())
        {
            output += input[next++];
        }
        else
        {
            output += readAgain.back();
            readAgain.pop_back();
        }
        if (output.back() != wanted.back() || output.size() - matchFloor < wanted.size() ||
            !output.ends_with(wanted))
            continue;
        output.resize(output.size() - wanted.size());
        if (rescansLeft > 0)
        {
            --rescansLeft;
            readAgain.append(substitute.rbegin(), substitute.rend());
        }
        else
        {
            output += substitute;
            matchFloor = output.size();
        }
    }
    return output;
}

void JoinStrings(std::wstring& output,
                 const std::vector<std::wstring>& items,
                 const std::wstring& separator)
{
    for (const std::wstring& item : items)
    {
        if (!output.empty())
            output += separator;
        output += item;
    }
}

std::vector<std::wstring> SplitStrings(const std::wstring& text, const std::wstring& separator)
{
    std::vector<std::wstring> parts;
    const auto append = [&parts](std::wstring_view part) {
        const std::size_t first = part.find_first_not_of(L' ');
        if (first != std::wstring_view::npos)
            parts.emplace_back(part.substr(first, part.find_last_not_of(L' ') - first + 1));
    };
    const std::wstring_view whole = text;
    std::size_t start = 0;
    if (!separator.empty())
    {
        for (std::size_t end; (end = whole.find(separator, start)) != std::wstring_view::npos;
             start = end + separator.size())
            append(whole.substr(start, end - start));
    }
    append(whole.substr(start));
    return parts;
}

int ParseInt(std::wstring_view text)
{
    std::size_t position = 0;
    while (position < text.size() && IsSpace(text[position]))
        ++position;
    bool negative = false;
    if (position < text.size() && (text[position] == L'-' || text[position] == L'+'))
        negative = text[position++] == L'-';
    // One more than the largest magnitude is enough to know that the limit was passed.
    constexpr std::int64_t kBeyond = std::int64_t{1} << 32;
    std::int64_t magnitude = 0;
    for (; position < text.size() && text[position] >= L'0' && text[position] <= L'9'; ++position)
        magnitude = std::min(magnitude * 10 + (text[position] - L'0'), kBeyond);
    const std::int64_t value = negative ? -magnitude : magnitude;
    return static_cast<int>(std::clamp<std::int64_t>(
        value, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()));
}
