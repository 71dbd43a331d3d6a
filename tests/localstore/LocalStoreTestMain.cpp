// Entry function of the embedded store's tests; also the child process that they start.
#include "platform/WindowsHeaders.h"
#include "tests/localstore/EntryWriter.h"
#include "tests/localstore/MessageWriter.h"
#include "tests/localstore/StoreWriter.h"

#include <gmock/gmock.h>

#include <cwchar>

namespace
{
struct KilledWriter
{
    const wchar_t* mode;
    decltype(&RunMessageWriter) run;
};

constexpr KilledWriter kKilledWriters[] = {{L"--write-messages", RunMessageWriter},
                                           {L"--write-entries", RunEntryWriter}};
} // namespace

int wmain(int argc, wchar_t** argv)
{
    if (argc == 4 && std::wcscmp(argv[1], L"--write-store") == 0)
        return RunStoreWriter(argv[2], _wtoi(argv[3]));
    for (const auto& [mode, run] : kKilledWriters)
        if (argc == 8 && std::wcscmp(argv[1], mode) == 0)
            return run(argv[2],
                       _wtoi(argv[3]),
                       _wtoi(argv[4]),
                       _wtoi(argv[5]),
                       _wtoi(argv[6]),
                       _wtoi(argv[7]));
    testing::InitGoogleMock(&argc, argv);
    if (FAILED(CoInitialize(nullptr)))
        return 2;
    const int result = RUN_ALL_TESTS();
    CoUninitialize();
    return result;
}
