#include "client/core/LetterCase.h"

#include <algorithm>

namespace pim
{
std::wstring Folded(std::wstring_view text)
{
    std::wstring folded(text);
    std::transform(folded.begin(), folded.end(), folded.begin(), FoldCase);
    return folded;
}

bool IsSameIgnoringCase(std::wstring_view left, std::wstring_view right)
{
    return left.size() == right.size() && BeginsWithIgnoringCase(left, right);
}

bool BeginsWithIgnoringCase(std::wstring_view text, std::wstring_view beginning)
{
    return text.size() >= beginning.size() &&
           std::equal(beginning.begin(), beginning.end(), text.begin(), [](wchar_t a, wchar_t b) {
               return FoldCase(a) == FoldCase(b);
           });
}
} // namespace pim
