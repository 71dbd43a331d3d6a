#include "platform/ProgramPath.h"

#include "platform/WindowsHeaders.h"

namespace
{
constexpr std::size_t kLongestPath = 32768; // in characters; the system has no longer ones
} // namespace

std::wstring ProgramPath()
{
    // A path may be longer than MAX_PATH; the system tells only that it was cut.
    std::wstring path(MAX_PATH, L'\0');
    for (;;)
    {
        const DWORD length =
            GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size())
        {
            path.resize(length);
            return path;
        }
        if (path.size() > kLongestPath)
            return {};
        path.resize(path.size() * 2);
    }
}
