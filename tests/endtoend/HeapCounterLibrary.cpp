// A library that counts the heaps of the process which loads it, leaves the result in the mapping
// that the test made, and refuses to be loaded, so that nothing of it stays.
#include "endtoend/ProcessUsage.h"
#include "platform/UniqueHandle.h"

namespace
{
// The heap of the C run-time library that the server is linked with; this library is as well.
HANDLE OwnHeap()
{
    using GetHeapHandle = intptr_t(__cdecl*)();
    const auto get = reinterpret_cast<GetHeapHandle>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"msvcrt.dll"), "_get_heap_handle")));
    return get ? reinterpret_cast<HANDLE>(get()) : nullptr;
}

void Count()
{
    wchar_t name[64];
    wsprintfW(name, L"%s%u", kProcessHeapsName, GetCurrentProcessId());
    const UniqueHandle mapping(OpenFileMappingW(FILE_MAP_WRITE, FALSE, name));
    void* const view =
        mapping ? MapViewOfFile(mapping.Get(), FILE_MAP_WRITE, 0, 0, sizeof(ProcessHeaps))
                : nullptr;
    if (!view)
        return;
    auto& result = *static_cast<ProcessHeaps*>(view);
    const HANDLE own = OwnHeap();
    result.own = UseOfHeap(own);
    const HeapUse all = UseOfAllHeaps();
    result.shared = {all.blocks - result.own.blocks, all.bytes - result.own.bytes};
    result.areCounted = own != nullptr;
    UnmapViewOfFile(view);
}
} // namespace

BOOL WINAPI DllMain(HINSTANCE, DWORD reason, void*)
{
    if (reason == DLL_PROCESS_ATTACH)
        Count();
    return FALSE;
}
