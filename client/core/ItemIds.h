// Finding one item by the beginning of its ID. Portable.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace pim
{
// The IDs that a typed text can mean: the one that is equal to it, or else all that begin with it.
// The beginning is compared without regard to the case of the letters A to Z, and an opening brace
// may be left out. A text of no characters means none.
std::vector<std::wstring> MatchItemIds(std::span<const std::wstring> ids, std::wstring_view typed);

// The matches for a message, each on a line of its own behind a line break. Of more than ten the
// first ten, and how many more there are.
std::wstring MatchLines(std::span<const std::wstring> matches);

// For each ID, in the given order, the shortest beginning that means it alone, of at least that
// many characters; the whole ID where no beginning does. Costs a sort, not a comparison of all with
// all.
std::vector<std::wstring> ShortItemIds(std::span<const std::wstring> ids, std::size_t atLeast);
} // namespace pim
