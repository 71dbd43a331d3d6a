#include "client/core/FieldLines.h"

#include "client/core/Unicode.h"

#include <algorithm>

namespace pim
{
namespace
{
constexpr std::size_t kNameColumns = 12;
}

void FieldLines::Add(const std::wstring& name, const std::optional<std::wstring>& value)
{
    if (!value || value->empty())
        return;
    std::wstring line = name + L':';
    line.resize(std::max(kNameColumns, line.size() + 1), L' ');
    m_text += line + OneLine(*value) + L'\n';
}

std::wstring ParagraphBelow(const std::optional<std::wstring>& text)
{
    if (!text || text->empty())
        return {};
    std::wstring paragraph = L'\n' + ManyLines(*text);
    if (paragraph.back() != L'\n')
        paragraph += L'\n';
    return paragraph;
}
} // namespace pim
