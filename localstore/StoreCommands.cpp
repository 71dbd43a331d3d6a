#include "localstore/StoreCommands.h"

#include "localstore/StoreDump.h"
#include "localstore/StoreLoad.h"
#include "localstore/StorePath.h"
#include "localstore/StoreSchema.h"
#include "localstore/SystemText.h"
#include "localstore/ToolConsole.h"
#include "platform/UniqueHandle.h"
#include "service/TextConversions.h"

#include <algorithm>
#include <string_view>

namespace
{

// A failure of the system while output is written.
struct OutputFailure
{
    DWORD error;
};

void WriteAll(HANDLE file, std::string_view text)
{
    while (!text.empty())
    {
        const auto size = static_cast<DWORD>(std::min<size_t>(text.size(), 1 << 20));
        DWORD written = 0;
        if (!WriteFile(file, text.data(), size, &written, nullptr) || written == 0)
            throw OutputFailure{::GetLastError()};
        text.remove_prefix(written);
    }
}

int TellDatabaseFailure(const DatabaseError& error)
{
    PrintError(L"The store failed: " + WideFromUtf8(error.what()) + L".");
    return kFailed;
}

std::wstring Counted(size_t count, const wchar_t* one, const wchar_t* many)
{
    return std::to_wstring(count) + L" " + (count == 1 ? one : many);
}

// The new text goes beside the old file and takes its place when it is whole.
void DumpToFile(Database& database, const std::wstring& path)
{
    const std::wstring beside = path + L".tmp";
    try
    {
        UniqueFile file(CreateFileW(beside.c_str(),
                                    GENERIC_WRITE,
                                    0,
                                    nullptr,
                                    CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL,
                                    nullptr));
        if (!file)
            throw OutputFailure{::GetLastError()};
        DumpStore(database, [&](std::string_view text) { WriteAll(file.Get(), text); });
        if (!FlushFileBuffers(file.Get()))
            throw OutputFailure{::GetLastError()};
        file.Reset();
        if (!MoveFileExW(
                beside.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            throw OutputFailure{::GetLastError()};
    }
    catch (...)
    {
        DeleteFileW(beside.c_str());
        throw;
    }
}

} // namespace

int RunLoad(const std::wstring& path, bool replace)
{
    JsonFile file;
    DWORD reason = 0;
    if (!file.Open(path, reason))
    {
        PrintError(path + L" cannot be opened: " + SystemText(reason));
        return kWrongFile;
    }
    try
    {
        Database database = OpenStore(StorePath());
        const LoadCounts counts =
            LoadStore(database, file, replace ? LoadMode::Replace : LoadMode::Merge);
        Print(L"Loaded " + Counted(counts.folders, L"folder", L"folders") + L", " +
              Counted(counts.messages, L"message", L"messages") + L", " +
              Counted(counts.attachments, L"attachment", L"attachments") + L", " +
              Counted(counts.bookEntries, L"address book entry", L"address book entries") +
              L" and " + Counted(counts.properties, L"property", L"properties") + L" into " +
              StorePath() + L".");
        return kOk;
    }
    catch (const JsonProblem& problem)
    {
        std::wstring place = path;
        if (problem.Line() != 0)
            place += L", line " + std::to_wstring(problem.Line());
        if (!problem.Path().empty())
            place += L", " + WideFromUtf8(problem.Path());
        PrintError(place + L": " + WideFromUtf8(problem.what()) + L".");
        PrintError(L"Nothing was changed.");
        return kWrongFile;
    }
    catch (const DatabaseError& error)
    {
        const int code = TellDatabaseFailure(error);
        PrintError(L"Nothing was changed.");
        return code;
    }
    catch (const std::bad_alloc&)
    {
        PrintError(path + L": the memory does not suffice for the largest value in it.");
        PrintError(L"Nothing was changed.");
        return kFailed;
    }
}

int RunDump(const std::wstring& path)
{
    try
    {
        const std::wstring store = StorePath();
        if (GetFileAttributesW(store.c_str()) == INVALID_FILE_ATTRIBUTES)
        {
            PrintError(L"There is no store yet: " + store + L".");
            return kFailed;
        }
        Database database = OpenStore(store);
        if (path.empty())
            DumpStore(database, [](std::string_view text) {
                WriteAll(GetStdHandle(STD_OUTPUT_HANDLE), text);
            });
        else
            DumpToFile(database, path);
        return kOk;
    }
    catch (const DatabaseError& error)
    {
        return TellDatabaseFailure(error);
    }
    catch (const OutputFailure& failure)
    {
        PrintError((path.empty() ? L"The output" : path) +
                   std::wstring(L" could not be written: ") + SystemText(failure.error));
        return kFailed;
    }
}
