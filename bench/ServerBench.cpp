// The server beside its runtime: loading and saving calendars in process, calls across processes,
// start, memory and size. Ratios are those of one run, medians of interleaved rounds. Ends with 0
// also where a target is missed.
//
// Registers the built server while it runs, so nothing else may use the prefix meanwhile.
#include "bench/Median.h"
#include "bench/Results.h"

#include "automation/ClassObjects.h"
#include "endtoend/Roles.h"
#include "endtoend/ServerFixture.h"
#include "icalendar/RecordingAppointment.h"
#include "icalendar/WindowsMailCalendar.h"
#include "platform/Bstr.h"
#include "support/HeapUse.h"
#include "support/ScratchDirectory.h"
#include "support/TestModule.h"

#include <psapi.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <vector>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr int kEvents = 10'000;
constexpr int kRounds = 5;
constexpr int kCallRounds = 41; // short ones, since other programs disturb calls most

double MillisecondsOf(const std::function<void()>& work)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    work();
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

// --- Work and its peer, in turn ----------------------------------------------------------------

struct Beside
{
    double milliseconds;
    double peerMilliseconds;
    double Ratio() const { return milliseconds / peerMilliseconds; }
};

Beside Measure(const std::function<double()>& work,
               const std::function<double()>& peer,
               int rounds = kRounds)
{
    std::vector<double> own;
    std::vector<double> other;
    work();
    peer();
    for (int round = 0; round < rounds; ++round)
    {
        own.push_back(work());
        other.push_back(peer());
    }
    return {MedianOf(own), MedianOf(other)};
}

// --- Calendars ---------------------------------------------------------------------------------

std::string EventText(int number)
{
    const std::string n = std::to_string(number);
    const std::string day = std::to_string(100 + number % 28 + 1).substr(1);
    return "BEGIN:VEVENT\r\nDESCRIPTION:Bring the plan and the list number " + n +
           ".\r\nDTSTAMP:20240102T080000Z\r\n"
           "DTSTART;TZID=Middle:202401" +
           day + "T100000\r\nDTEND;TZID=Middle:202401" + day + "T110000\r\nSUMMARY:Planning " + n +
           "\r\nLOCATION:Room " + n + "\r\nUID:{11111111-AAAA-4000-8000-" +
           std::to_string(100000000000 + number) +
           "}\r\nRRULE:FREQ=WEEKLY;BYDAY=MO;INTERVAL=1;COUNT=10\r\n"
           "BEGIN:VALARM\r\nACTION:DISPLAY\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\nEND:VEVENT\r\n";
}

constexpr char kHead[] = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VTIMEZONE\r\nTZID:Middle\r\n"
                         "BEGIN:STANDARD\r\nDTSTART:20000101T000000\r\nTZNAME:Middle of Europe\r\n"
                         "TZOFFSETFROM:+0100\r\nTZOFFSETTO:+0100\r\nEND:STANDARD\r\n"
                         "END:VTIMEZONE\r\n";
constexpr char kTail[] = "END:VCALENDAR\r\n";

void WriteBytes(const std::wstring& path, const std::string& bytes)
{
    std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
}

std::wstring FolderText(const ScratchDirectory& folder)
{
    return folder.Path().wstring() + L'\\';
}

double LoadMilliseconds(const std::wstring& folder)
{
    CWindowsMailCalendar calendar(folder);
    return MillisecondsOf([&] { calendar.GetItemIDs(); });
}

double CreateMilliseconds()
{
    std::vector<ComPtr<INEntityItem>> items(kEvents);
    return MillisecondsOf([&] {
        for (auto& item : items)
            CoCreateInstance(CLSID_NAppointment,
                             nullptr,
                             CLSCTX_ALL,
                             IID_INEntityItem,
                             reinterpret_cast<void**>(item.GetAddressOf()));
    });
}

double RecordMilliseconds()
{
    const CalendarSources sources;
    ComPtr<INEntityItem> item;
    ComPtr<INAppointment> appointment;
    if (FAILED(sources.createItem(item.GetAddressOf())) || FAILED(item.As(&appointment)))
        return 0.0;
    const auto record = std::make_unique<_tagRecurringInfo>();
    record->eRecurType = Weekly;
    return MillisecondsOf([&] {
        for (int i = 0; i < kEvents; ++i)
            appointment->put_RecurringInfo(record.get());
    });
}

void MeasureCalendars()
{
    const ScratchDirectory one;
    std::string text = kHead;
    for (int i = 0; i < kEvents; ++i)
        text += EventText(i);
    text += kTail;
    WriteBytes(one.File(L"Work.ics"), text);

    const Beside load = Measure([&] { return LoadMilliseconds(FolderText(one)); },
                                [] { return CreateMilliseconds(); });
    PrintRow("bare CoCreateInstance of 10,000 items", load.peerMilliseconds, "ms");
    PrintRow("loading a file of 10,000 events into items", load.milliseconds, "ms");
    PrintTarget(
        "loading a calendar file of 10,000 events into items, beside as many bare creations",
        load.Ratio(),
        "x",
        {Bound::AtMost, 1.5});
    const Beside parts = Measure(
        [&] {
            CCalendarFile file(one.File(L"Work.ics"), 0);
            return MillisecondsOf([&] { file.Load(); });
        },
        [] { return RecordMilliseconds(); });
    PrintRow("  of that, reading the file into its tree", parts.milliseconds, "ms");
    PrintRow("  of that, putting 10,000 recurrence records", parts.peerMilliseconds, "ms");

    {
        const SIZE_T before = UseOfAllHeaps().bytes;
        CWindowsMailCalendar calendar(FolderText(one));
        calendar.GetItemIDs();
        PrintTarget("memory of each of 10,000 appointments of a loaded calendar file",
                    static_cast<double>(UseOfAllHeaps().bytes - before) / kEvents,
                    "B",
                    {Bound::Under, 600.0});
        calendar.ResetItem();
        calendar.GetNextItem();
        ComPtr<INEntityItem> item;
        calendar.GetCurrentItem(item.GetAddressOf());
        const Beside save = Measure(
            [&] { return MillisecondsOf([&] { calendar.UpdateItem(item.Get()); }); },
            [&] { return MillisecondsOf([&] { WriteBytes(one.File(L"bare.tmp"), text); }); });
        PrintRow("updating one of 10,000 events, which saves the file", save.milliseconds, "ms");
        PrintRow("  beside a bare write of the same bytes", save.Ratio(), "x");
    }

    const ScratchDirectory many;
    for (int i = 0; i < kEvents; ++i)
        WriteBytes(many.File(L"e" + std::to_wstring(i) + L".ics"), kHead + EventText(i) + kTail);
    const auto readMany = [&] {
        std::string bytes(64 * 1024, '\0');
        for (int i = 0; i < kEvents; ++i)
        {
            const std::wstring path = many.File(L"e" + std::to_wstring(i) + L".ics");
            const UniqueFile file(CreateFileW(
                path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
            DWORD read = 0;
            ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
        }
    };
    const Beside files = Measure([&] { return LoadMilliseconds(FolderText(many)); },
                                 [&] { return CreateMilliseconds() + MillisecondsOf(readMany); });
    PrintRow("bare creations and bare reads of 10,000 files", files.peerMilliseconds, "ms");
    PrintRow("loading 10,000 files of one event into items", files.milliseconds, "ms");
    PrintTarget(
        "loading 10,000 calendar files of one event into items, beside as many bare creations "
        "and reads",
        files.Ratio(),
        "x",
        {Bound::AtMost, 1.5});
}

// --- Across processes --------------------------------------------------------------------------

// Offers an object whose methods do nothing, through a file named by the first argument, until the
// process of the second argument ends.
int Offer(const std::vector<std::wstring>& arguments)
{
    const auto object = RecordingAppointment::Make();
    object->isQuiet = true;
    const ComPtr<INAppointment> appointment = object.Get();
    ComPtr<IStream> stream;
    HGLOBAL memory = nullptr;
    if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, stream.GetAddressOf())) ||
        FAILED(CoMarshalInterface(stream.Get(),
                                  IID_INAppointment,
                                  appointment.Get(),
                                  MSHCTX_LOCAL,
                                  nullptr,
                                  MSHLFLAGS_NORMAL)) ||
        FAILED(GetHGlobalFromStream(stream.Get(), &memory)))
        return 1;
    const std::wstring& path = arguments.at(0);
    WriteBytes(path + L".tmp", {static_cast<const char*>(GlobalLock(memory)), GlobalSize(memory)});
    GlobalUnlock(memory);
    MoveFileW((path + L".tmp").c_str(), path.c_str());
    const UniqueHandle client(OpenProcess(SYNCHRONIZE, FALSE, std::stoul(arguments.at(1))));
    HANDLE event = client.Get();
    DWORD index = 0;
    CoWaitForMultipleHandles(0, INFINITE, 1, &event, &index);
    return 0;
}
const RegisterRole offer(L"offer", &Offer);

const RegisterRole nothing(L"nothing", [](const std::vector<std::wstring>&) { return 0; });

ComPtr<INAppointment> TakeOffered(const std::wstring& path)
{
    for (int i = 0; i < 200 && GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES; ++i)
        Sleep(50);
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    ComPtr<IStream> stream;
    ComPtr<INAppointment> appointment;
    CreateStreamOnHGlobal(nullptr, TRUE, stream.GetAddressOf());
    stream->Write(bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
    stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
    CoUnmarshalInterface(
        stream.Get(), IID_INAppointment, reinterpret_cast<void**>(appointment.GetAddressOf()));
    return appointment;
}

double CallMilliseconds(const std::function<HRESULT()>& call)
{
    constexpr int kCalls = 100;
    return MillisecondsOf([&] {
               for (int i = 0; i < kCalls; ++i)
                   if (call() != S_OK)
                       throw std::runtime_error("a call failed");
           }) /
           kCalls;
}

void MeasureCalls()
{
    const ScratchDirectory scratch;
    const std::wstring path = scratch.File(L"offered");
    const StartedProgram peer = StartProgram(
        RoleCommandLine(L"offer", L'"' + path + L"\" " + std::to_wstring(GetCurrentProcessId())));
    const auto empty = TakeOffered(path);
    const auto appointment = MakeInServer<INAppointment>(CLSID_NAppointment);
    if (!empty || !appointment)
        throw std::runtime_error("the objects of other processes cannot be had");
    const Bstr subject(L"Planning of the next quarter");
    appointment->put_Subject(subject.Get());

    ULONG minutes = 0;
    const Beside number = Measure(
        [&] { return CallMilliseconds([&] { return appointment->get_Reminder(&minutes); }); },
        [&] { return CallMilliseconds([&] { return empty->get_Reminder(&minutes); }); },
        kCallRounds);
    PrintRow("an empty call to another process", number.peerMilliseconds * 1000.0, "us");
    PrintRow("get_Reminder of the server", number.milliseconds * 1000.0, "us");
    PrintTarget("a call to the server across processes, beside an empty call of the same signature",
                number.Ratio(),
                "x",
                {Bound::AtMost, 1.1});
    const Beside text = Measure(
        [&] { return CallMilliseconds([&] { return appointment->get_Subject(Bstr().Put()); }); },
        [&] { return CallMilliseconds([&] { return empty->get_Reminder(&minutes); }); },
        kCallRounds);
    PrintRow("get_Subject of the server", text.milliseconds * 1000.0, "us");
    PrintRow("  beside the empty call", text.Ratio(), "x");
}

// --- The process -------------------------------------------------------------------------------

double ProcessorMilliseconds(HANDLE process)
{
    FILETIME times[4];
    GetProcessTimes(process, &times[0], &times[1], &times[2], &times[3]);
    const auto ticks = [](const FILETIME& time) {
        return static_cast<double>(
            ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart);
    };
    return (ticks(times[2]) + ticks(times[3])) / 10'000.0;
}

// Memory of the process's own that is in use: what it wrote to, without what was only set aside.
double OwnMiB(HANDLE process)
{
    PROCESS_MEMORY_COUNTERS memory{};
    memory.cb = sizeof(memory);
    GetProcessMemoryInfo(process, &memory, sizeof(memory));
    return static_cast<double>(memory.PagefileUsage) / (1 << 20);
}

void MeasureProcess()
{
    std::vector<double> starts;
    std::vector<double> programs;
    for (int round = 0; round < kRounds; ++round)
    {
        EndServers();
        StartedProgram server;
        starts.push_back(MillisecondsOf([&] {
            server = StartProgram(L'"' + ServerPath() + L"\" -Embedding");
            // The server waits for messages once its class objects are registered.
            WaitForInputIdle(server.process.Get(), 10000);
        }));
        programs.push_back(MillisecondsOf([] { RunProgram(RoleCommandLine(L"nothing"), 10000); }));
        const auto served = MakeInServer<INAppointment>(CLSID_NAppointment);
        if (RunningServers() != std::vector<DWORD>{server.id})
            throw std::runtime_error("the started server did not serve");
    }
    PrintRow("start and end of a program that does nothing", MedianOf(programs), "ms");
    PrintTarget("start of the server until its class objects are registered",
                MedianOf(starts),
                "ms",
                {Bound::Under, 50.0});

    EndServers();
    const StartedProgram server = StartProgram(L'"' + ServerPath() + L"\" -Embedding");
    WaitForInputIdle(server.process.Get(), 10000);
    Sleep(1000);
    const double before = ProcessorMilliseconds(server.process.Get());
    Sleep(10000);
    PrintTarget("processor time of 10 idle seconds of the server",
                ProcessorMilliseconds(server.process.Get()) - before,
                "ms",
                {Bound::AtMost, 1.0});
    PrintTarget("private memory of an idle server",
                OwnMiB(server.process.Get()),
                "MiB",
                {Bound::Under, 10.0});
    EndServers();
}

// The libraries that the executable names, and how many of them are not the system's.
void MeasureExecutable()
{
    const auto size = std::filesystem::file_size(ServerPath());
    PrintTarget("size of the server's executable",
                static_cast<double>(size) / (1 << 20),
                "MiB",
                {Bound::Under, 4.0});

    const UniqueModule image(
        LoadLibraryExW(ServerPath().c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES));
    const auto* const base = reinterpret_cast<const std::byte*>(image.Get());
    const auto* const dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* const headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* import =
        reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
    wchar_t system[MAX_PATH] = {};
    GetSystemDirectoryW(system, MAX_PATH);
    int others = 0;
    for (; import->Name; ++import)
        if (!std::filesystem::exists(std::filesystem::path(system) /
                                     reinterpret_cast<const char*>(base + import->Name)))
            ++others;
    PrintTarget("libraries that it needs beside the system's", others, "", {Bound::AtMost, 0.0});
}

void MeasureAll()
{
    MeasureExecutable();
    ServerEnvironment registered;
    registered.SetUp();
    MeasureProcess();
    MeasureCalls();
    registered.TearDown();

    // From here on, appointments are made in this process.
    TestModule module;
    ClassObjects classObjects;
    if (FAILED(classObjects.Register(GetObjectMap(), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE)))
        throw std::runtime_error("the class objects cannot be registered");
    MeasureCalendars();
}
} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (FAILED(CoInitialize(nullptr)))
        return 2;
    int status = 0;
    const std::optional<int> played = PlayRole(argc, argv);
    if (!played)
    {
        testing::InitGoogleTest(&argc, argv);
        try
        {
            MeasureAll();
        }
        catch (const std::exception& failure)
        {
            std::fprintf(stderr, "server_bench: %s\n", failure.what());
            status = 1;
        }
    }
    CoUninitialize();
    return played.value_or(status);
}
