#include "localstore/Installer.h"

#include "localstore/SystemText.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <functional>
#include <iterator>
#include <optional>
#include <utility>

namespace
{

constexpr wchar_t kRecordsKey[] = L"Software\\PimStoreBridge\\Installed\\";
constexpr wchar_t kHome[] = L"Home";
constexpr wchar_t kCreatedKeys[] = L"CreatedKeys";
constexpr wchar_t kCreatedFolders[] = L"CreatedFolders";
// Each followed by a number.
constexpr wchar_t kChange[] =
    L"Change";                       // key, name and text, one a line; a list of strings: as one
constexpr wchar_t kFile[] = L"File"; // path and fingerprint, one a line

// A line of its own in the report of an installation that failed.
constexpr wchar_t kNothingChanged[] = L"Nothing was changed.";

struct RecordedValue
{
    std::wstring key;
    std::wstring name;
    std::wstring text;
    std::vector<std::wstring> list = {}; // as in PlannedValue
};

struct RecordedFile
{
    std::wstring path;
    std::wstring fingerprint;
};

struct Record
{
    std::wstring home;
    std::vector<std::wstring> createdKeys;
    std::vector<std::wstring> createdFolders;
    std::vector<RecordedValue> values;
    std::vector<RecordedFile> files;
};

std::wstring RecordKey(const std::wstring& component)
{
    return kRecordsKey + component;
}

std::wstring ChangeName(size_t index)
{
    return kChange + std::to_wstring(index);
}

std::wstring FileName(size_t index)
{
    return kFile + std::to_wstring(index);
}

// Tells whether a file is the one that was installed: its size and a hash (FNV-1a, 64 bits). No
// guard against somebody who means to deceive, who has the rights to do worse.
std::wstring Fingerprint(const std::vector<BYTE>& bytes)
{
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const BYTE one : bytes)
        hash = (hash ^ one) * 0x100000001B3;
    wchar_t text[48] = {};
    std::swprintf(text,
                  std::size(text),
                  L"%llu-%016llX",
                  static_cast<unsigned long long>(bytes.size()),
                  static_cast<unsigned long long>(hash));
    return text;
}

std::wstring Display(const std::wstring& key, const std::wstring& name)
{
    return L"HKEY_LOCAL_MACHINE\\" + key + L" (" + (name.empty() ? L"default value" : name) + L")";
}

bool IsMissing(LSTATUS status)
{
    return status == ERROR_FILE_NOT_FOUND || status == ERROR_PATH_NOT_FOUND;
}

bool IsDenied(LSTATUS status)
{
    return status == ERROR_ACCESS_DENIED || status == ERROR_PRIVILEGE_NOT_HELD;
}

InstallReport FailureReport(LSTATUS status, const std::wstring& what)
{
    InstallReport report;
    report.lines.push_back(what + L": " + SystemText(static_cast<DWORD>(status)));
    if (IsDenied(status))
    {
        report.outcome = InstallOutcome::AccessDenied;
        report.lines.push_back(
            L"This needs the rights of an administrator: start the command prompt "
            L"with \"Run as administrator\" and run the command again.");
    }
    else
        report.outcome = InstallOutcome::Failed;
    return report;
}

// Carries changes out and knows how to take each back.
class ChangeLog
{
  public:
    explicit ChangeLog(InstallTarget& target) : m_target(target) {}

    bool CreateKey(const std::wstring& key)
    {
        return Do(m_target.CreateKey(key), L"HKEY_LOCAL_MACHINE\\" + key, [this, key] {
            return m_target.DeleteEmptyKey(key);
        });
    }
    bool Write(const std::wstring& key, const std::wstring& name, const RegistryValue& value)
    {
        return Do(m_target.WriteValue(key, name, value), Display(key, name), [this, key, name] {
            return m_target.DeleteValue(key, name);
        });
    }
    // The value is what stands there now.
    bool Delete(const std::wstring& key, const std::wstring& name, const RegistryValue& value)
    {
        return Do(m_target.DeleteValue(key, name), Display(key, name), [this, key, name, value] {
            return m_target.WriteValue(key, name, value);
        });
    }
    // A key that is in use, or gone, is fine.
    bool DeleteKeyIfEmpty(const std::wstring& key)
    {
        const LSTATUS status = m_target.DeleteEmptyKey(key);
        if (status == ERROR_DIR_NOT_EMPTY || IsMissing(status))
            return true;
        return Do(
            status, L"HKEY_LOCAL_MACHINE\\" + key, [this, key] { return m_target.CreateKey(key); });
    }
    bool CreateFolder(const std::wstring& path)
    {
        return Do(m_target.CreateFolder(path), path, [this, path] {
            return m_target.RemoveEmptyFolder(path);
        });
    }
    bool WriteFile(const std::wstring& path, const std::vector<BYTE>& bytes)
    {
        return Do(m_target.WriteNewFile(path, bytes), path, [this, path] {
            return m_target.RemoveFile(path);
        });
    }
    // The bytes are what stands there now.
    bool RemoveFile(const std::wstring& path, const std::vector<BYTE>& bytes)
    {
        return Do(m_target.RemoveFile(path), path, [this, path, bytes] {
            return m_target.WriteNewFile(path, bytes);
        });
    }
    // False only where something else is in the way than contents.
    bool RemoveFolderIfEmpty(const std::wstring& path, bool& inUse)
    {
        const LSTATUS status = m_target.RemoveEmptyFolder(path);
        inUse = status == ERROR_DIR_NOT_EMPTY;
        if (inUse || IsMissing(status))
            return true;
        return Do(status, path, [this, path] { return m_target.CreateFolder(path); });
    }

    // Takes everything back, the last change first, and tells the failure that led here. Stops at
    // the first change that resists, so that the record, which was written first, stays.
    InstallReport RollBack()
    {
        InstallReport report = FailureReport(m_failure, m_failedAt);
        bool whole = true;
        while (whole && !m_undo.empty())
        {
            whole = m_undo.back()() == ERROR_SUCCESS;
            m_undo.pop_back();
        }
        report.lines.push_back(whole ? kNothingChanged
                                     : L"Not everything could be taken back. Run pimstore remove "
                                       L"with the rights of an administrator.");
        return report;
    }
    // The same for what failed without being a change, such as a value that cannot be read.
    InstallReport RollBack(LSTATUS failure, const std::wstring& failedAt)
    {
        m_failure = failure;
        m_failedAt = failedAt;
        return RollBack();
    }

  private:
    bool Do(LSTATUS status, const std::wstring& what, std::function<LSTATUS()> undo)
    {
        if (status != ERROR_SUCCESS)
        {
            m_failure = status;
            m_failedAt = what;
            return false;
        }
        m_undo.push_back(std::move(undo));
        return true;
    }

    InstallTarget& m_target;
    std::vector<std::function<LSTATUS()>> m_undo;
    LSTATUS m_failure = ERROR_SUCCESS;
    std::wstring m_failedAt;
};

// The value as it is in the registry.
RegistryValue ValueOf(const RecordedValue& value)
{
    return value.list.empty() ? TextValue(value.text) : ListValue(value.list);
}

RegistryValue ChangeValue(const RecordedValue& value)
{
    if (!value.list.empty())
    {
        std::vector<std::wstring> strings = {value.key, value.name};
        strings.insert(strings.end(), value.list.begin(), value.list.end());
        return ListValue(strings);
    }
    return TextValue(value.key + L'\n' + value.name + L'\n' + value.text);
}

// Nothing where the value is no change of ours.
std::optional<RecordedValue> ParseChange(const RegistryValue& value)
{
    if (value.type == REG_MULTI_SZ)
    {
        std::vector<std::wstring> strings = ListOfValue(value);
        if (strings.size() < 3)
            return std::nullopt;
        return RecordedValue{strings[0], strings[1], {}, {strings.begin() + 2, strings.end()}};
    }
    const std::wstring text = TextOfValue(value);
    const size_t first = text.find(L'\n');
    const size_t second = first == std::wstring::npos ? first : text.find(L'\n', first + 1);
    if (second == std::wstring::npos)
        return std::nullopt;
    return RecordedValue{
        text.substr(0, first), text.substr(first + 1, second - first - 1), text.substr(second + 1)};
}

std::optional<RecordedFile> ParseFile(const std::wstring& text)
{
    const size_t line = text.find(L'\n');
    if (line == std::wstring::npos)
        return std::nullopt;
    return RecordedFile{text.substr(0, line), text.substr(line + 1)};
}

std::optional<Record> ReadRecord(const InstallTarget& target, const std::wstring& component)
{
    const std::wstring key = RecordKey(component);
    if (!target.KeyExists(key))
        return std::nullopt;
    Record record;
    RegistryValue value;
    if (target.ReadValue(key, kHome, value) == ERROR_SUCCESS)
        record.home = TextOfValue(value);
    if (target.ReadValue(key, kCreatedKeys, value) == ERROR_SUCCESS)
        record.createdKeys = ListOfValue(value);
    if (target.ReadValue(key, kCreatedFolders, value) == ERROR_SUCCESS)
        record.createdFolders = ListOfValue(value);
    for (size_t i = 0; target.ReadValue(key, ChangeName(i), value) == ERROR_SUCCESS; ++i)
    {
        if (auto change = ParseChange(value))
            record.values.push_back(std::move(*change));
    }
    for (size_t i = 0; target.ReadValue(key, FileName(i), value) == ERROR_SUCCESS; ++i)
    {
        if (auto file = ParseFile(TextOfValue(value)))
            record.files.push_back(std::move(*file));
    }
    return record;
}

std::wstring Describe(const RegistryValue& value)
{
    const std::wstring text = TextOfValue(value);
    return value.type == REG_SZ || value.type == REG_EXPAND_SZ ? L"\"" + text + L"\""
                                                               : L"a value of another type";
}

// The path and those of its parents that do not exist, parents first. Counts from behind the root.
template <typename Exists>
void AddMissing(const std::wstring& path, std::vector<std::wstring>& missing, Exists exists)
{
    std::vector<std::wstring> found;
    for (std::wstring part = path; !part.empty() && part.back() != L':';)
    {
        if (exists(part))
            break;
        found.push_back(part);
        const size_t slash = part.find_last_of(L'\\');
        part = slash == std::wstring::npos ? std::wstring() : part.substr(0, slash);
    }
    for (auto part = found.rbegin(); part != found.rend(); ++part)
    {
        if (std::find(missing.begin(), missing.end(), *part) == missing.end())
            missing.push_back(*part);
    }
}

InstallReport CompareWithRecord(const InstallTarget& target,
                                const ComponentPlan& plan,
                                const Record& record)
{
    InstallReport report;
    report.outcome = InstallOutcome::Unchanged;
    if (record.home != plan.home)
    {
        report.outcome = InstallOutcome::OtherInstall;
        report.lines.push_back(L"The " + plan.component + L" is installed from " +
                               (record.home.empty() ? L"another place" : record.home) + L".");
    }
    for (const RecordedValue& recorded : record.values)
    {
        RegistryValue value;
        const LSTATUS status = target.ReadValue(recorded.key, recorded.name, value);
        if (status == ERROR_SUCCESS && value == ValueOf(recorded))
            continue;
        report.outcome = InstallOutcome::OtherInstall;
        report.lines.push_back(Display(recorded.key, recorded.name) +
                               L" is not what was installed any more.");
    }
    for (const RecordedFile& recorded : record.files)
    {
        std::vector<BYTE> bytes;
        if (target.ReadWholeFile(recorded.path, bytes) == ERROR_SUCCESS &&
            Fingerprint(bytes) == recorded.fingerprint)
            continue;
        report.outcome = InstallOutcome::OtherInstall;
        report.lines.push_back(recorded.path + L" is not what was installed any more.");
    }
    if (report.outcome == InstallOutcome::Unchanged)
        report.lines.push_back(L"The " + plan.component + L" is already installed from " +
                               record.home + L"; nothing was changed.");
    else
        report.lines.push_back(L"Nothing was changed. Run pimstore remove --" + plan.component +
                               L" first, then install again.");
    return report;
}

// A file of the plan is another one by now than the record tells.
bool HasNewerFiles(const InstallTarget& target, const ComponentPlan& plan, const Record& record)
{
    for (const RecordedFile& recorded : record.files)
    {
        for (const PlannedFile& planned : plan.files)
        {
            std::vector<BYTE> bytes;
            if (planned.path == recorded.path &&
                target.ReadWholeFile(planned.source, bytes) == ERROR_SUCCESS &&
                Fingerprint(bytes) != recorded.fingerprint)
                return true;
        }
    }
    return false;
}

struct FileToWrite
{
    std::wstring path;
    std::vector<BYTE> bytes;
};

} // namespace

InstallReport Install(InstallTarget& target, const ComponentPlan& plan)
{
    if (const std::optional<Record> record = ReadRecord(target, plan.component))
    {
        InstallReport compared = CompareWithRecord(target, plan, *record);
        if (compared.outcome != InstallOutcome::Unchanged || !HasNewerFiles(target, plan, *record))
            return compared;
        InstallReport removed = Remove(target, plan.component);
        if (removed.outcome != InstallOutcome::Done)
            return removed;
        InstallReport installed = Install(target, plan);
        if (installed.outcome != InstallOutcome::Done)
        {
            std::erase(installed.lines, kNothingChanged);
            installed.lines.push_back(L"The older " + plan.component +
                                      L" was removed before that. Run pimstore install again.");
        }
        return installed;
    }

    InstallReport report;
    std::vector<RecordedValue> toWrite;
    for (const PlannedValue& planned : plan.values)
    {
        RegistryValue value;
        const LSTATUS status = target.ReadValue(planned.key, planned.name, value);
        if (IsMissing(status))
            toWrite.push_back({planned.key, planned.name, planned.text, planned.list});
        else if (status != ERROR_SUCCESS)
        {
            InstallReport failure = FailureReport(status, Display(planned.key, planned.name));
            failure.lines.push_back(kNothingChanged);
            return failure;
        }
        else if (planned.whenTaken == WhenTaken::Refuse &&
                 value != ValueOf({planned.key, planned.name, planned.text, planned.list}))
        {
            report.outcome = InstallOutcome::TakenByOther;
            report.lines.push_back(L"Another product holds " + Display(planned.key, planned.name) +
                                   L": " + Describe(value) + L".");
        }
    }
    std::vector<FileToWrite> files;
    for (const PlannedFile& planned : plan.files)
    {
        const auto failed = [](LSTATUS status, const std::wstring& path) {
            InstallReport failure = FailureReport(status, path);
            failure.lines.push_back(kNothingChanged);
            return failure;
        };
        FileToWrite file{planned.path, {}};
        LSTATUS status = target.ReadWholeFile(planned.source, file.bytes);
        if (status != ERROR_SUCCESS)
            return failed(status, planned.source);
        std::vector<BYTE> present;
        status = target.ReadWholeFile(planned.path, present);
        if (IsMissing(status))
            files.push_back(std::move(file));
        else if (status != ERROR_SUCCESS)
            return failed(status, planned.path);
        else if (present != file.bytes)
        {
            report.outcome = InstallOutcome::TakenByOther;
            report.lines.push_back(L"Another product holds the file " + planned.path + L".");
        }
    }
    if (report.outcome == InstallOutcome::TakenByOther)
    {
        report.lines.push_back(kNothingChanged);
        report.lines.push_back(L"Remove that product first if you want the embedded " +
                               plan.component + L".");
        return report;
    }

    const std::wstring recordKey = RecordKey(plan.component);
    const auto keyExists = [&](const std::wstring& key) { return target.KeyExists(key); };
    std::vector<std::wstring> recordKeys;
    AddMissing(recordKey, recordKeys, keyExists);
    std::vector<std::wstring> createdKeys = recordKeys;
    for (const RecordedValue& value : toWrite)
        AddMissing(value.key, createdKeys, keyExists);
    std::vector<std::wstring> createdFolders;
    for (const std::wstring& folder : plan.folders)
        AddMissing(folder, createdFolders, [&](const std::wstring& path) {
            return target.FolderExists(path);
        });

    ChangeLog log(target);
    bool done = true;
    for (size_t i = 0; done && i < recordKeys.size(); ++i)
        done = log.CreateKey(recordKeys[i]);
    done = done && log.Write(recordKey, kCreatedKeys, ListValue(createdKeys)) &&
           log.Write(recordKey, kCreatedFolders, ListValue(createdFolders)) &&
           log.Write(recordKey, kHome, TextValue(plan.home));
    for (size_t i = 0; done && i < toWrite.size(); ++i)
        done = log.Write(recordKey, ChangeName(i), ChangeValue(toWrite[i]));
    for (size_t i = 0; done && i < files.size(); ++i)
        done = log.Write(
            recordKey, FileName(i), TextValue(files[i].path + L'\n' + Fingerprint(files[i].bytes)));

    for (size_t i = recordKeys.size(); done && i < createdKeys.size(); ++i)
        done = log.CreateKey(createdKeys[i]);
    for (size_t i = 0; done && i < createdFolders.size(); ++i)
        done = log.CreateFolder(createdFolders[i]);
    for (size_t i = 0; done && i < files.size(); ++i)
        done = log.WriteFile(files[i].path, files[i].bytes);
    for (size_t i = 0; done && i < toWrite.size(); ++i)
        done = log.Write(toWrite[i].key, toWrite[i].name, ValueOf(toWrite[i]));
    if (!done)
        return log.RollBack();

    for (const RecordedValue& value : toWrite)
        report.lines.push_back(L"Set " + Display(value.key, value.name) + L".");
    for (const std::wstring& folder : createdFolders)
        report.lines.push_back(L"Made " + folder + L".");
    for (const FileToWrite& file : files)
        report.lines.push_back(L"Made " + file.path + L".");
    report.lines.push_back(L"The " + plan.component + L" is installed from " + plan.home + L".");
    return report;
}

InstallReport Remove(InstallTarget& target, const std::wstring& component)
{
    InstallReport report;
    const std::optional<Record> record = ReadRecord(target, component);
    if (!record)
    {
        report.outcome = InstallOutcome::Unchanged;
        report.lines.push_back(L"The " + component + L" is not installed; nothing was changed.");
        return report;
    }

    ChangeLog log(target);
    for (auto recorded = record->values.rbegin(); recorded != record->values.rend(); ++recorded)
    {
        const std::wstring display = Display(recorded->key, recorded->name);
        RegistryValue value;
        const LSTATUS status = target.ReadValue(recorded->key, recorded->name, value);
        if (IsMissing(status))
            report.lines.push_back(display + L" was gone already.");
        else if (status != ERROR_SUCCESS)
            return log.RollBack(status, display);
        else if (value != ValueOf(*recorded))
            report.lines.push_back(display + L" was changed by another program since and stays: " +
                                   Describe(value) + L".");
        else if (!log.Delete(recorded->key, recorded->name, value))
            return log.RollBack();
    }
    for (const RecordedFile& file : record->files)
    {
        std::vector<BYTE> bytes;
        const LSTATUS status = target.ReadWholeFile(file.path, bytes);
        if (IsMissing(status))
            report.lines.push_back(file.path + L" was gone already.");
        else if (status != ERROR_SUCCESS)
            return log.RollBack(status, file.path);
        else if (Fingerprint(bytes) != file.fingerprint)
            report.lines.push_back(file.path + L" was changed by another program since and stays.");
        else if (!log.RemoveFile(file.path, bytes))
        {
            InstallReport failure = log.RollBack();
            failure.lines.push_back(L"A program that uses the file keeps it: end that program. The "
                                    L"server ends by itself five seconds after its last client.");
            return failure;
        }
    }
    for (auto folder = record->createdFolders.rbegin(); folder != record->createdFolders.rend();
         ++folder)
    {
        bool inUse = false;
        if (!log.RemoveFolderIfEmpty(*folder, inUse))
            return log.RollBack();
        if (inUse)
            report.lines.push_back(*folder + L" is not empty and stays.");
    }

    // Keys go before the record, so that it leads to them until they are gone; those of the record
    // itself are not empty yet and follow it.
    const auto deleteCreatedKeys = [&] {
        return std::all_of(record->createdKeys.rbegin(),
                           record->createdKeys.rend(),
                           [&](const std::wstring& key) { return log.DeleteKeyIfEmpty(key); });
    };
    if (!deleteCreatedKeys())
        return log.RollBack();

    const std::wstring recordKey = RecordKey(component);
    std::vector<std::wstring> names = {kHome, kCreatedFolders, kCreatedKeys};
    RegistryValue value;
    for (size_t i = 0; target.ReadValue(recordKey, ChangeName(i), value) == ERROR_SUCCESS; ++i)
        names.insert(names.begin(), ChangeName(i));
    for (size_t i = 0; target.ReadValue(recordKey, FileName(i), value) == ERROR_SUCCESS; ++i)
        names.insert(names.begin(), FileName(i));
    for (const std::wstring& name : names)
    {
        if (target.ReadValue(recordKey, name, value) == ERROR_SUCCESS &&
            !log.Delete(recordKey, name, value))
            return log.RollBack();
    }
    // The record's own key goes in any case; its parents where the installation made them.
    if (!log.DeleteKeyIfEmpty(recordKey) || !deleteCreatedKeys())
        return log.RollBack();
    report.lines.push_back(L"The " + component + L" is removed.");
    return report;
}

std::wstring InstalledHome(const InstallTarget& target, const std::wstring& component)
{
    const std::optional<Record> record = ReadRecord(target, component);
    if (!record)
        return {};
    return record->home.empty() ? L"an unknown place" : record->home;
}
