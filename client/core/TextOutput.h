// Where pim writes, as far as the client's logic sees it.
#pragma once

#include <string_view>

namespace pim
{
class TextOutput
{
  public:
    virtual ~TextOutput() = default;

    // Whether a person looks at it, who can watch a line change.
    virtual bool IsTerminal() const noexcept = 0;
    // False where not all of the text could be written.
    virtual bool Write(std::wstring_view text) const = 0;
};
} // namespace pim
