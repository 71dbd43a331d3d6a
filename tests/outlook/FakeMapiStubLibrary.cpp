// A stand-in for the system's MAPI stub library: looks components up as the test program tells it.
#include "tests/outlook/FakeMapiStub.h"

#include <cstdio>
#include <cstring>

namespace
{
HINSTANCE g_self = nullptr;

template <typename Function> Function* OfTheProgram(const char* name)
{
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(nullptr), name)));
}

// What happened, after the name under which this library was loaded.
void Record(const char* call)
{
    char path[MAX_PATH] = {};
    GetModuleFileNameA(g_self, path, MAX_PATH - 1);
    const char* const slash = std::strrchr(path, '\\');
    char text[600];
    std::snprintf(text, sizeof text, "%s %s", slash ? slash + 1 : path, call);
    if (auto* const record = OfTheProgram<decltype(FakeMapiStubRecord)>("FakeMapiStubRecord"))
        record(text);
}
} // namespace

extern "C" BOOL WINAPI
FakeFGetComponentPath(LPSTR component, LPSTR qualifier, LPSTR path, DWORD size, BOOL install)
{
    char text[500];
    std::snprintf(text,
                  sizeof text,
                  "FGetComponentPath(%s, %s, %lu, %d)",
                  component ? component : "null",
                  qualifier ? qualifier : "null",
                  size,
                  install);
    Record(text);
    auto* const answer = OfTheProgram<decltype(FakeMapiStubAnswer)>("FakeMapiStubAnswer");
    const char* const found = answer ? answer() : "";
    // As far as it fits, and without a terminator where it does not.
    for (DWORD i = 0; i < size && (i == 0 || found[i - 1]); ++i)
        path[i] = found[i];
    // Nobody is to look at it.
    auto* const result = OfTheProgram<decltype(FakeMapiStubResult)>("FakeMapiStubResult");
    return result ? result() : FALSE;
}

extern "C" BOOL WINAPI DllMain(HINSTANCE self, DWORD reason, LPVOID processEnds)
{
    g_self = self;
    if (reason == DLL_PROCESS_DETACH && !processEnds)
        Record("unload");
    return TRUE;
}
