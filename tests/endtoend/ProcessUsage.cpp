#include "endtoend/ProcessUsage.h"

#include "icalendar/RecordingAppointment.h"
#include "platform/UniqueHandle.h"

#include <algorithm>
#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include <winternl.h>

namespace
{
// The system's list of all handles. Some runtimes answer the plain questions for a process's handle
// count and memory with zero, so both are counted here.
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

SIZE_T CountPrivateBytes(DWORD processId)
{
    const UniqueHandle process(
        OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, processId));
    SIZE_T bytes = 0;
    MEMORY_BASIC_INFORMATION region{};
    const char* address = nullptr;
    while (process && VirtualQueryEx(process.Get(), address, &region, sizeof(region)) != 0)
    {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE)
            bytes += region.RegionSize;
        const char* const next = static_cast<const char*>(region.BaseAddress) + region.RegionSize;
        if (next <= address)
            break;
        address = next;
    }
    return bytes;
}

// Writes a reference to a new object for another process and takes it back unread.
void OfferAndTakeBack()
{
    using Microsoft::WRL::ComPtr;
    const auto object = RecordingAppointment::Make();
    const ComPtr<INAppointment> appointment = object.Get();
    ComPtr<IStream> stream;
    EXPECT_EQ(S_OK, CreateStreamOnHGlobal(nullptr, TRUE, stream.GetAddressOf()));
    EXPECT_EQ(S_OK,
              CoMarshalInterface(stream.Get(),
                                 IID_INAppointment,
                                 appointment.Get(),
                                 MSHCTX_LOCAL,
                                 nullptr,
                                 MSHLFLAGS_NORMAL));
    EXPECT_EQ(S_OK, stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr));
    EXPECT_EQ(S_OK, CoReleaseMarshalData(stream.Get()));
    EXPECT_EQ(2u, object->References());
}
} // namespace

ProcessUsage UsageOf(DWORD processId)
{
    const ProcessUsage usage{CountHandles(processId), CountPrivateBytes(processId)};
    EXPECT_NE(0u, usage.handles);
    EXPECT_NE(0u, usage.privateBytes);
    return usage;
}

SIZE_T RuntimeKeepsOf(int appointments)
{
    const auto offerMany = [](int count) {
        for (int i = 0; i < count; ++i)
            OfferAndTakeBack();
    };
    offerMany(50); // until the runtime's own tables have grown
    // What earlier tests freed takes up the first rounds, so the largest of several counts.
    constexpr int kRounds = 4;
    SIZE_T most = 0;
    for (int i = 0; i < kRounds; ++i)
    {
        const SIZE_T before = UsageOf(GetCurrentProcessId()).privateBytes;
        offerMany(appointments);
        const SIZE_T after = UsageOf(GetCurrentProcessId()).privateBytes;
        if (after > before)
            most = std::max(most, after - before);
    }
    return most;
}
