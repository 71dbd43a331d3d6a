#include "client/core/ItemIds.h"

#include "client/core/LetterCase.h"
#include "client/core/Unicode.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>

namespace pim
{
namespace
{
std::size_t SharedLength(const std::wstring& left, const std::wstring& right)
{
    const auto ends = std::mismatch(left.begin(), left.end(), right.begin(), right.end());
    return std::size_t(ends.first - left.begin());
}
} // namespace

std::vector<std::wstring> MatchItemIds(std::span<const std::wstring> ids, std::wstring_view typed)
{
    if (typed.empty())
        return {};
    if (std::find(ids.begin(), ids.end(), typed) != ids.end())
        return {std::wstring(typed)};
    std::vector<std::wstring> matches;
    std::unordered_set<std::wstring_view> seen;
    for (const std::wstring& id : ids)
    {
        const bool braced = !id.empty() && id.front() == L'{';
        const bool hit = BeginsWithIgnoringCase(id, typed) ||
                         (braced && BeginsWithIgnoringCase(std::wstring_view(id).substr(1), typed));
        // Two items with one ID are one answer: the store takes the first of them.
        if (hit && seen.insert(id).second)
            matches.push_back(id);
    }
    return matches;
}

std::wstring MatchLines(std::span<const std::wstring> matches)
{
    constexpr std::size_t kMostLines = 10;
    std::wstring text;
    for (const std::wstring& match : matches.first(std::min(matches.size(), kMostLines)))
        text += L"\n  " + OneLine(match);
    if (matches.size() > kMostLines)
        text += L"\n  and " + std::to_wstring(matches.size() - kMostLines) + L" more";
    return text;
}

std::vector<std::wstring> ShortItemIds(std::span<const std::wstring> ids, std::size_t atLeast)
{
    std::vector<std::wstring> sorted;
    std::transform(ids.begin(), ids.end(), std::back_inserter(sorted), Folded);
    std::sort(sorted.begin(), sorted.end());
    sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());

    std::vector<std::wstring> shortIds;
    for (const std::wstring& id : ids)
    {
        // The IDs that share the most with this one stand beside it.
        const auto place = std::lower_bound(sorted.begin(), sorted.end(), Folded(id));
        std::size_t shared = 0;
        if (place != sorted.begin())
            shared = SharedLength(*place, *std::prev(place));
        if (std::next(place) != sorted.end())
            shared = std::max(shared, SharedLength(*place, *std::next(place)));
        std::size_t length = std::max(shared + 1, atLeast);
        // Not between the halves of a surrogate pair.
        if (length < id.size() && id[length] >= 0xDC00 && id[length] <= 0xDFFF)
            ++length;
        shortIds.push_back(id.substr(0, length));
    }
    return shortIds;
}
} // namespace pim
