#include "endtoend/ProcessUsage.h"

#include "endtoend/ServerFixture.h"
#include "platform/UniqueHandle.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include <winternl.h>

namespace
{
// The system's list of all handles. Some runtimes answer the plain question for a process's handle
// count with zero, so they are counted here.
constexpr ULONG kExtendedHandleInformation = 64;
constexpr NTSTATUS kInfoLengthMismatch = static_cast<NTSTATUS>(0xC0000004);

struct HandleEntry
{
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG access;
    USHORT creatorBackTrace;
    USHORT objectType;
    ULONG attributes;
    ULONG reserved;
};

struct HandleList
{
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntry entries[1];
};

using QuerySystemInformation = NTSTATUS(NTAPI*)(ULONG, void*, ULONG, ULONG*);

DWORD CountHandles(DWORD processId)
{
    const auto query = reinterpret_cast<QuerySystemInformation>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<std::byte> buffer(std::size_t{1} << 20);
    NTSTATUS status = kInfoLengthMismatch;
    for (; status == kInfoLengthMismatch && buffer.size() < (std::size_t{1} << 28);
         buffer.resize(buffer.size() * 2))
    {
        status = query(
            kExtendedHandleInformation, buffer.data(), static_cast<ULONG>(buffer.size()), nullptr);
        if (status == 0)
            break;
    }
    if (status != 0)
        return 0;
    const auto* const list = reinterpret_cast<const HandleList*>(buffer.data());
    DWORD count = 0;
    for (ULONG_PTR i = 0; i < list->count; ++i)
        if (list->entries[i].processId == processId)
            ++count;
    return count;
}

constexpr DWORD kLoadTimeoutMilliseconds = 30000;

// Lets the process try to load the library, and waits until it has.
bool LoadInto(HANDLE process, const std::wstring& path)
{
    const SIZE_T bytes = (path.size() + 1) * sizeof(wchar_t);
    void* const remote =
        VirtualAllocEx(process, nullptr, bytes, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    if (!remote || !WriteProcessMemory(process, remote, path.c_str(), bytes, nullptr))
        return false;
    // The system's own library stands at the same address in every process.
    const auto load = reinterpret_cast<LPTHREAD_START_ROUTINE>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW")));
    const UniqueHandle thread(CreateRemoteThread(process, nullptr, 0, load, remote, 0, nullptr));
    const bool ended =
        thread && WaitForSingleObject(thread.Get(), kLoadTimeoutMilliseconds) == WAIT_OBJECT_0;
    if (ended)
        VirtualFreeEx(process, remote, 0, MEM_RELEASE);
    return ended;
}

ProcessHeaps HeapsOf(DWORD processId)
{
    ProcessHeaps heaps;
    const UniqueHandle process(OpenProcess(PROCESS_ALL_ACCESS, FALSE, processId));
    const std::wstring name = kProcessHeapsName + std::to_wstring(processId);
    const UniqueHandle mapping(CreateFileMappingW(
        INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(heaps), name.c_str()));
    void* const view =
        mapping ? MapViewOfFile(mapping.Get(), FILE_MAP_WRITE, 0, 0, sizeof(heaps)) : nullptr;
    if (!process || !view)
        return heaps;
    const std::wstring program = TestProgramPath();
    const std::wstring folder = program.substr(0, program.find_last_of(L'\\') + 1);
    EXPECT_TRUE(LoadInto(process.Get(), folder + L"heap_counter.dll"));
    heaps = *static_cast<const ProcessHeaps*>(view);
    UnmapViewOfFile(view);
    return heaps;
}

ProcessGrowth Difference(const ProcessUsage& before, const ProcessUsage& after)
{
    const auto less = [](std::uint64_t from, std::uint64_t to) {
        return static_cast<std::int64_t>(to - from);
    };
    const ProcessHeaps& from = before.heaps;
    const ProcessHeaps& to = after.heaps;
    return {less(before.handles, after.handles),
            less(from.own.blocks, to.own.blocks),
            less(from.own.bytes, to.own.bytes),
            less(from.shared.blocks, to.shared.blocks),
            less(from.shared.bytes, to.shared.bytes)};
}
} // namespace

ProcessUsage UsageOf(DWORD processId)
{
    // The first count makes the process's loader keep a handle, so heaps go first.
    ProcessUsage usage;
    usage.heaps = HeapsOf(processId);
    usage.handles = CountHandles(processId);
    EXPECT_NE(0u, usage.handles);
    EXPECT_TRUE(usage.heaps.areCounted);
    return usage;
}

std::ostream& operator<<(std::ostream& out, const ProcessUsage& usage)
{
    return out << usage.handles << " handles, own " << usage.heaps.own << ", shared "
               << usage.heaps.shared;
}

std::ostream& operator<<(std::ostream& out, const ProcessGrowth& growth)
{
    return out << growth.handles << " handles, " << growth.ownBlocks << " own blocks of "
               << growth.ownBytes << " bytes, " << growth.sharedBlocks << " shared blocks of "
               << growth.sharedBytes << " bytes";
}

ProcessGrowth GrowthOver(DWORD processId, const std::function<void()>& work)
{
    const ProcessUsage before = UsageOf(processId);
    work();
    return Difference(before, UsageOf(processId));
}

ProcessGrowth SettledGrowthOver(DWORD processId, const std::function<void()>& work)
{
    constexpr int kRecounts = 40;
    constexpr DWORD kPauseMilliseconds = 250;
    const ProcessUsage before = UsageOf(processId);
    work();
    ProcessGrowth growth = Difference(before, UsageOf(processId));
    for (int i = 0; i < kRecounts && (growth.handles > 0 || growth.ownBlocks > 0); ++i)
    {
        Sleep(kPauseMilliseconds);
        growth = Difference(before, UsageOf(processId));
    }
    return growth;
}

void ExpectNothingLeft(const ProcessGrowth& growth, const ProcessGrowth& plain, int objects)
{
    EXPECT_LE(growth.handles, 0) << growth;
    EXPECT_EQ(0, growth.ownBlocks) << growth;
    EXPECT_EQ(0, growth.ownBytes) << growth;
    EXPECT_LE(growth.sharedBlocks, plain.sharedBlocks + objects / 4)
        << growth << "; plain: " << plain;
    EXPECT_LE(growth.sharedBytes, plain.sharedBytes + objects * 64)
        << growth << "; plain: " << plain;
}
