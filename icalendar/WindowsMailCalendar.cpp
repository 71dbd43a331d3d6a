#include "icalendar/WindowsMailCalendar.h"

#include "icalendar/CalendarSettings.h"
#include "platform/Bstr.h"
#include "platform/GuidSource.h"
#include "platform/ScopeExit.h"
#include "platform/UniqueHandle.h"
#include "service/OwnObject.h"
#include "service/TimeConversions.h"
#include "service/XmlScan.h"

#include <cstdio>
#include <utility>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr wchar_t kSettingsName[] = L"Settings.xml";
constexpr wchar_t kNewFileName[] = L"default.ics";

// The bytes of a settings file; empty where it can't be opened or is too large to be one.
std::string ReadSettings(const std::wstring& path)
{
    FILE* file = _wfopen(path.c_str(), L"rb");
    if (!file)
        return {};
    const ScopeExit close([file] { std::fclose(file); });
    std::string bytes;
    char buffer[16 * 1024];
    for (;;)
    {
        const std::size_t read = std::fread(buffer, 1, sizeof buffer, file);
        bytes.append(buffer, read);
        if (bytes.size() > kMaxXmlBytes)
            return {};
        if (read < sizeof buffer)
            return std::ferror(file) ? std::string() : std::move(bytes);
    }
}

bool IsMissing(const std::wstring& path)
{
    if (GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES)
        return false;
    const DWORD error = GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND;
}

MachineZone MachineZoneOf(const TIME_ZONE_INFORMATION& zone)
{
    const auto& name = zone.StandardName;
    return {std::wstring(name, wcsnlen(name, std::size(name))), zone.Bias};
}

// The value of a property; absent where the read fails or gives null.
template <typename Interface>
std::optional<std::wstring> ReadText(Interface& item, HRESULT (Interface::*get)(BSTR*))
{
    Bstr text;
    if (FAILED((item.*get)(text.Put())) || !text)
        return std::nullopt;
    return TextOf(text.Get());
}

template <typename Value>
std::optional<Value> ReadValue(INAppointment& item, HRESULT (INAppointment::*get)(Value*))
{
    Value value{};
    if (FAILED((item.*get)(&value)))
        return std::nullopt;
    return value;
}

std::optional<RecurrenceHead> ReadRecurrence(INAppointment& item)
{
    const auto record = std::make_unique<_tagRecurringInfo>();
    if (FAILED(item.get_RecurringInfo(record.get())))
        return std::nullopt;
    return HeadOf(*record);
}

void PutText(INAppointment& item,
             HRESULT (INAppointment::*put)(BSTR),
             const std::optional<std::wstring_view>& text)
{
    if (text)
        (item.*put)(Bstr(*text).Get());
}
} // namespace

CalendarSources::CalendarSources()
    : createItem([](INEntityItem** item) {
          return CreateOwn(CLSID_NAppointment, IID_INEntityItem, reinterpret_cast<void**>(item));
      }),
      zone([] {
          TIME_ZONE_INFORMATION machine{};
          GetTimeZoneInformation(&machine);
          return machine;
      }),
      utcNow([] {
          SYSTEMTIME now{};
          GetSystemTime(&now);
          return now;
      })
{
}

CWindowsMailCalendar::CWindowsMailCalendar(std::wstring folder, CalendarSources sources)
    : m_folder(std::move(folder)), m_sources(std::move(sources)),
      m_recurringInfo(std::make_unique<_tagRecurringInfo>())
{
}

CWindowsMailCalendar::~CWindowsMailCalendar()
{
    m_items.clear();
    m_files.clear();
    m_current.Reset();
}

void CWindowsMailCalendar::GetItemIDs()
{
    const TableUse use(m_uses);
    if (use.IsNested())
        return;
    m_index.Clear();
    m_handedOut.clear();
    m_currentPosition = ItemIndex::kNotFound;
    m_position = ItemIndex::kNotFound;
    std::exchange(m_items, {}).clear();
    std::exchange(m_files, {}).clear();
    // The position is no place in the new list until ResetItem.
    const ScopeExit atEnd([this] { m_position = m_items.size(); });

    ReadDefaultCalendarName();
    if (m_folder.empty())
        return;
    WIN32_FIND_DATAW found{};
    const UniqueFind search(FindFirstFileW((m_folder + L"*.ics").c_str(), &found));
    if (!search)
        return;
    do
    {
        LoadFile(found.cFileName);
    } while (FindNextFileW(search.Get(), &found));
    m_items.shrink_to_fit();
    m_index.ShrinkToFit();
}

void CWindowsMailCalendar::LoadFile(const std::wstring& name)
{
    const bool isDefault =
        !m_defaultFileName.empty() && lstrcmpiW(m_defaultFileName.c_str(), name.c_str()) == 0;
    auto file = std::make_unique<CCalendarFile>(m_folder + name, isDefault ? 1 : 0);
    if (!file->Load())
        return;
    m_files.push_back(std::move(file));
    CCalendarFile& loaded = *m_files.back();
    std::vector<CVEvent*> events;
    loaded.Events().Snapshot(events);
    for (const CVEvent* event : events)
    {
        ComPtr<INEntityItem> item;
        if (FAILED(m_sources.createItem(&item)) || !item)
            continue;
        FillAppointment(loaded, item.Get(), *event);
        // As the item cuts it.
        const std::wstring id = event->Id();
        m_index.Append(std::wstring_view(id).substr(0, id.find(L'\0')));
        m_items.push_back(std::move(item));
    }
}

void CWindowsMailCalendar::ReadDefaultCalendarName()
{
    m_defaultFileName.clear();
    const std::wstring path = m_folder + kSettingsName;
    if (m_folder.empty() || GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES)
        return;
    m_defaultFileName = DefaultCalendarFileName(ReadSettings(path));
}

CCalendarFile* CWindowsMailCalendar::FindDefaultCalendarFile() const
{
    for (const auto& file : m_files)
        if (file->DefaultFlag())
            return file.get();
    return m_files.empty() ? nullptr : m_files.front().get();
}

CCalendarFile* CWindowsMailCalendar::MakeDefaultCalendarFile()
{
    auto file = std::make_unique<CCalendarFile>(m_folder + kNewFileName, 1);
    // One that appeared since the load, or could not be read then, holds events of others.
    if (!file->Load() && !IsMissing(file->Path()))
        return nullptr;
    m_files.push_back(std::move(file));
    return m_files.back().get();
}

void CWindowsMailCalendar::ResetItem()
{
    m_position = 0;
    m_current.Reset();
    m_currentPosition = ItemIndex::kNotFound;
}

void CWindowsMailCalendar::GetNextItem()
{
    if (m_position >= m_items.size())
    {
        m_current.Reset();
        m_currentPosition = ItemIndex::kNotFound;
        return;
    }
    m_current = m_items[m_position];
    m_currentPosition = m_position++;
}

void CWindowsMailCalendar::GetItemByID(const std::wstring& id)
{
    const TableUse use(m_uses);
    const std::size_t live = FindAmongHandedOut(id);
    const std::size_t end = std::min(live, m_items.size());
    const std::size_t indexed = m_index.Find(id, m_position, [&](std::size_t position) {
        return position >= end || (!m_handedOut.contains(position) && HasID(position, id));
    });
    m_position = std::min(indexed, end);
    if (m_position < m_items.size())
    {
        m_current = m_items[m_position];
        m_currentPosition = m_position;
    }
}

// The first item from the position on that a client may hold and that has the ID now. Items that
// came back meanwhile can't change any more; they go back to the index under the ID they have.
std::size_t CWindowsMailCalendar::FindAmongHandedOut(const std::wstring& id)
{
    for (auto next = m_handedOut.lower_bound(m_position); next != m_handedOut.end();)
    {
        const std::size_t position = *next;
        if (IsOnlyOurs(position))
        {
            if (const auto now = ReadText(*m_items[position].Get(), &INEntityItem::get_EntityID))
                m_index.Change(position, *now);
            next = m_handedOut.erase(next);
            continue;
        }
        if (HasID(position, id))
            return position;
        ++next;
    }
    return ItemIndex::kNotFound;
}

bool CWindowsMailCalendar::HasID(std::size_t position, const std::wstring& id) const
{
    return ReadText(*m_items[position].Get(), &INEntityItem::get_EntityID) == id;
}

// Whether every reference to the item is one of this table's. An object that counts in another way
// than the usual one is taken for held, which costs time and nothing else.
bool CWindowsMailCalendar::IsOnlyOurs(std::size_t position) const
{
    INEntityItem* item = m_items[position].Get();
    item->AddRef();
    return item->Release() == (m_current.Get() == item ? 2u : 1u);
}

void CWindowsMailCalendar::GetCurrentItem(INEntityItem** item)
{
    if (!item || !m_current)
        return;
    if (m_currentPosition != ItemIndex::kNotFound)
        m_handedOut.insert(m_currentPosition);
    m_current.CopyTo(item);
}

BOOL CWindowsMailCalendar::UpdateItem(INEntityItem* item)
{
    const TableUse use(m_uses);
    if (!item || use.IsNested())
        return 0;
    const auto id = ReadText(*item, &INEntityItem::get_EntityID);
    if (!id)
        return 0;
    for (const auto& file : m_files)
    {
        if (CVEvent* event = file->Events().Find(*id))
        {
            FillEvent(*file, item, *event);
            return file->Save();
        }
    }
    return 0;
}

std::wstring CWindowsMailCalendar::AddItem(INEntityItem* item, std::wstring&)
{
    const TableUse use(m_uses);
    if (!item || use.IsNested() || m_folder.empty())
        return {};
    std::wstring id = NewGuidText();
    if (id.empty())
        return {};
    CCalendarFile* file = FindDefaultCalendarFile();
    if (!file)
        file = MakeDefaultCalendarFile();
    if (!file)
        return {};
    item->put_EntityID(Bstr(id).Get());
    auto event = std::make_unique<CVEvent>();
    FillEvent(*file, item, *event);
    file->Events().Attach(std::move(event));
    return file->Save() ? id : std::wstring();
}

BOOL CWindowsMailCalendar::DeleteItem(const std::wstring& id)
{
    const TableUse use(m_uses);
    if (use.IsNested())
        return 0;
    for (const auto& file : m_files)
    {
        if (file->Events().RemoveByUid(id))
        {
            // Kept as it is: a deletion whose save fails is a success too. Pinned by
            // WindowsMailCalendarWriteTest.TellsASaveThatCannotOpenItsFile.
            file->Save();
            return 1;
        }
    }
    return 0;
}

BOOL CWindowsMailCalendar::GetItemList(std::list<ItemEntry>&)
{
    return 0;
}

void CWindowsMailCalendar::FillAppointment(const CCalendarFile& file,
                                           INEntityItem* item,
                                           const CVEvent& event)
{
    ComPtr<INAppointment> appointment;
    if (FAILED(item->QueryInterface(IID_INAppointment, &appointment)) || !appointment)
        return;
    const AppointmentView values = AppointmentFromEvent(file, event);
    // Each put stands for itself: a failed one leaves that property as the object has it.
    const Bstr id(values.entityId.value_or(std::wstring_view()));
    item->put_EntityID(id.Get());
    appointment->put_PersistID(id.Get());
    item->put_LastModificationTime(values.utcLastModified.value_or(0.0));
    PutText(*appointment.Get(), &INAppointment::put_Subject, values.subject);
    PutText(*appointment.Get(), &INAppointment::put_Place, values.place);
    PutText(*appointment.Get(), &INAppointment::put_Description, values.description);
    PutText(*appointment.Get(), &INAppointment::put_TimeZone, values.timeZone);
    PutHead(values.recurrence.value_or(RecurrenceHead{}), *m_recurringInfo);
    appointment->put_RecurringInfo(m_recurringInfo.get());
    // Kept as it is: 1 and not -1. Pinned by WindowsMailCalendarTest.ReadsOnlyOneWholeDayAsAllDay.
    appointment->put_AllDay(values.allDay.value_or(false) ? 1 : 0);
    appointment->put_StartTime(values.startTime.value_or(0.0));
    appointment->put_EndTime(values.endTime.value_or(0.0));
    if (values.reminderMinutes)
        appointment->put_Reminder(*values.reminderMinutes);
}

void CWindowsMailCalendar::FillEvent(CCalendarFile& file, INEntityItem* item, CVEvent& event)
{
    ComPtr<INAppointment> appointment;
    if (FAILED(item->QueryInterface(IID_INAppointment, &appointment)) || !appointment)
        return;
    INAppointment& source = *appointment.Get();
    AppointmentValues values;
    values.entityId = ReadText(*item, &INEntityItem::get_EntityID);
    const SYSTEMTIME utcNow = m_sources.utcNow();
    item->put_LastModificationTime(SystemTimeToDate(utcNow));
    values.subject = ReadText(source, &INAppointment::get_Subject);
    values.place = ReadText(source, &INAppointment::get_Place);
    values.description = ReadText(source, &INAppointment::get_Description);
    values.reminderMinutes = ReadValue(source, &INAppointment::get_Reminder);
    const MachineZone machine = MachineZoneOf(m_sources.zone());
    values.recurrence = ReadRecurrence(source);
    values.startTime = ReadValue(source, &INAppointment::get_StartTime);
    values.endTime = ReadValue(source, &INAppointment::get_EndTime);
    if (const auto allDay = ReadValue(source, &INAppointment::get_AllDay))
        values.allDay = *allDay != 0;
    EventFromAppointment(file, values, machine, utcNow, event);
}
