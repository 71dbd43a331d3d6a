// An output of the client that keeps what is written.
#pragma once

#include "client/core/TextOutput.h"

#include <string>
#include <vector>

class RecordedOutput : public pim::TextOutput
{
  public:
    explicit RecordedOutput(bool isTerminal) : m_isTerminal(isTerminal) {}

    bool IsTerminal() const noexcept override { return m_isTerminal; }
    bool Write(std::wstring_view text) const override
    {
        m_texts.emplace_back(text);
        return true;
    }

    // One text for each call.
    const std::vector<std::wstring>& Texts() const { return m_texts; }

  private:
    const bool m_isTerminal;
    mutable std::vector<std::wstring> m_texts;
};
