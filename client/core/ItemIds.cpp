#include "client/core/ItemIds.h"

#include <algorithm>

namespace pim
{
namespace
{
wchar_t FoldCase(wchar_t c)
{
    return c >= L'a' && c <= L'z' ? wchar_t(c - L'a' + L'A') : c;
}

bool BeginsWith(std::wstring_view text, std::wstring_view beginning)
{
    return text.size() >= beginning.size() &&
           std::equal(beginning.begin(), beginning.end(), text.begin(), [](wchar_t a, wchar_t b) {
               return FoldCase(a) == FoldCase(b);
           });
}
} // namespace

std::vector<std::wstring> MatchItemIds(std::span<const std::wstring> ids, std::wstring_view typed)
{
    if (typed.empty())
        return {};
    if (std::find(ids.begin(), ids.end(), typed) != ids.end())
        return {std::wstring(typed)};
    std::vector<std::wstring> matches;
    for (const std::wstring& id : ids)
    {
        const bool braced = !id.empty() && id.front() == L'{';
        const bool hit =
            BeginsWith(id, typed) || (braced && BeginsWith(std::wstring_view(id).substr(1), typed));
        // Two items with one ID are one answer: the store takes the first of them.
        if (hit && std::find(matches.begin(), matches.end(), id) == matches.end())
            matches.push_back(id);
    }
    return matches;
}
} // namespace pim
