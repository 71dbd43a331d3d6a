#include "platform/GuidSource.h"

#include <utility>

namespace
{

std::function<std::wstring()>& Replacement()
{
    static std::function<std::wstring()> replacement;
    return replacement;
}

} // namespace

std::wstring NewGuidText()
{
    return Replacement() ? Replacement()() : SystemGuidText();
}

ScopedGuidSource::ScopedGuidSource(std::function<std::wstring()> source)
{
    Replacement() = std::move(source);
}

ScopedGuidSource::~ScopedGuidSource()
{
    Replacement() = nullptr;
}
