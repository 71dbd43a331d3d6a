// A stand-in for the RTF converter library: reports every call, and its own unloading, to the
// program that loaded it. It makes no converter where the program's plan has a failing result.
#include "tests/outlook/FakeMapi.h"

#include <cstdio>
#include <cstring>

namespace
{
template <typename Function> Function* OfTheProgram(const char* name)
{
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(nullptr), name)));
}

void Record(const char* call)
{
    if (auto* const record = OfTheProgram<decltype(FakeMapiRecord)>("FakeMapiRecord"))
        record(call);
}

void* const kHandle = reinterpret_cast<void*>(7);
} // namespace

extern "C" void* FakeCreate()
{
    Record("Create");
    auto* const plan = OfTheProgram<decltype(FakeMapiInitialiseResult)>("FakeMapiInitialiseResult");
    return plan && SUCCEEDED(plan()) ? kHandle : nullptr;
}

// "null" and "empty" give what they say, "cut" a text with a zero in it; any other text comes back.
extern "C" BSTR FakeConvert(void* handle, const char* rtf)
{
    char text[160];
    std::snprintf(text, sizeof text, "Convert %s %s", handle == kHandle ? "own" : "other", rtf);
    Record(text);
    if (std::strcmp(rtf, "null") == 0)
        return nullptr;
    if (std::strcmp(rtf, "empty") == 0)
        return SysAllocString(L"");
    if (std::strcmp(rtf, "cut") == 0)
        return SysAllocStringLen(L"a\0b", 3);
    wchar_t wide[64] = {};
    MultiByteToWideChar(CP_ACP, 0, rtf, -1, wide, 63);
    return SysAllocString(wide);
}

extern "C" void FakeDestroy(void* handle)
{
    Record(handle == kHandle ? "Destory own" : "Destory other");
}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds)
{
    if (reason == DLL_PROCESS_DETACH && !processEnds)
        Record("unload");
    return TRUE;
}
