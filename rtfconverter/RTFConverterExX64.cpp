#include "rtfconverter/RTFConverterExX64.h"

#include "platform/Bstr.h"
#include "platform/CodePages.h"
#include "rtfconverter/ConverterHandles.h"
#include "rtfconverter/RtfText.h"

// The C++ run-time library's own; nothing declares it.
namespace __gnu_cxx
{
void __freeres();
}

namespace
{
// The C++ run-time library sets memory aside for exceptions at its start and does not give it back
// when an unloaded library takes its copy away: 73 KiB each time.
struct ExceptionMemory
{
    ~ExceptionMemory() { __gnu_cxx::__freeres(); }
};
const ExceptionMemory g_exceptionMemory;

// Made while the library loads: a guard for a later first use would take a slot of thread data.
ConverterHandles g_converters;
} // namespace

extern "C" RtfConverterHandle RTFConverter_Create()
{
    try
    {
        return g_converters.Add();
    }
    catch (...)
    {
        return nullptr;
    }
}

extern "C" BSTR RTFConverter_Convert(RtfConverterHandle converter, const char* rtf)
{
    try
    {
        if (rtf == nullptr || !g_converters.Contains(converter) || !IsRtf(rtf))
            return nullptr;
        return Bstr(TextFromRtf(rtf, GetACP(), AppendFromCodePage)).Detach();
    }
    catch (...)
    {
        return nullptr;
    }
}

extern "C" void RTFConverter_Destory(RtfConverterHandle converter)
{
    g_converters.Remove(converter);
}
