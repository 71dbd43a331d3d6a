// What is read as a category time is written back to the same second, and a text that is too short
// is none.
#include "outlook/categories/CategoryTime.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::wstring text(data, data + size);
    const DATE time = ParseCategoryTime(text);
    if (size < 23 && time != 0.0)
        std::abort();
    // The platform makes some DATEs of the days before the first that it takes back.
    constexpr DATE kFirstDay = -657434.0; // of the year 100
    if (time < kFirstDay)
        return 0;
    const std::string written = FormatCategoryTime(time);
    if (written.size() != 23)
        std::abort();
    if (ParseCategoryTime(std::wstring(written.begin(), written.end())) != time)
        std::abort();
    return 0;
}
