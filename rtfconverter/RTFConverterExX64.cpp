#include "rtfconverter/RTFConverterExX64.h"

#include "platform/Bstr.h"
#include "platform/CodePages.h"
#include "rtfconverter/ConverterHandles.h"
#include "rtfconverter/RtfText.h"

namespace
{
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
