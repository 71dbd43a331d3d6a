// New GUIDs as text: braces, hyphens, upper-case hexadecimal.
#pragma once

#include <functional>
#include <string>

// A new GUID; empty where the system can't make one.
std::wstring NewGuidText();

// Replaces the source of NewGuidText until the object ends. For tests; not to be nested.
class ScopedGuidSource
{
  public:
    explicit ScopedGuidSource(std::function<std::wstring()> source);
    ~ScopedGuidSource();
    ScopedGuidSource(const ScopedGuidSource&) = delete;
    ScopedGuidSource& operator=(const ScopedGuidSource&) = delete;
};

// The system's own, which NewGuidText asks unless it is replaced.
std::wstring SystemGuidText();
