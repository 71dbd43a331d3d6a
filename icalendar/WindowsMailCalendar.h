// One folder of .ics files as one list of appointments: every event of every file is an item, ready
// in memory. Changes go into the file's tree and the whole file is written again; the list keeps
// showing the state at the last reload.
//
// An item's ID is its event's UID and names the first event of that UID in the first file that has
// it. An empty folder path is a calendar without items that takes none.
// Thread: the apartment thread.
#pragma once

#include "icalendar/AppointmentMapping.h"
#include "icalendar/CalendarFile.h"
#include "service/ItemIndex.h"
#include "service/TableUse.h"
#include "service/Enumerator.h"

#include <functional>
#include <memory>
#include <set>
#include <string>
#include <vector>

// What the calendar takes from the system. Tests hand in their own.
struct CalendarSources
{
    CalendarSources();

    // A new appointment object with one reference; by default through CoCreateInstance.
    std::function<HRESULT(INEntityItem** item)> createItem;
    // The machine's zone and the current UTC time.
    std::function<TIME_ZONE_INFORMATION()> zone;
    std::function<SYSTEMTIME()> utcNow;
};

class CWindowsMailCalendar : public IEnumerator
{
  public:
    // The folder ends in a backslash, or is empty. Nothing is read before GetItemIDs.
    explicit CWindowsMailCalendar(std::wstring folder, CalendarSources sources = {});
    ~CWindowsMailCalendar() override;

    // The position is at the end afterwards, until ResetItem; the current item stays.
    void GetItemIDs() override;
    void ResetItem() override;
    void GetNextItem() override;
    // Searches from the position on. A match becomes current and the position stays on it; without
    // one the position is at the end and the current item stays.
    void GetItemByID(const std::wstring& id) override;
    void GetCurrentItem(INEntityItem** item) override;
    BOOL UpdateItem(INEntityItem* item) override;
    // Into the default calendar's file, else the first one, else "default.ics", which is made where
    // it is missing. The item's EntityID becomes the new ID. Where the save fails the event stays
    // in the file's tree, and the next save of that file writes it. folderID is not touched.
    std::wstring AddItem(INEntityItem* item, std::wstring& folderID) override;
    // Returns 1 also where the file could not be saved; the event is then still in it.
    BOOL DeleteItem(const std::wstring& id) override;
    BOOL GetItemList(std::list<ItemEntry>& entries) override;

  private:
    void ReadDefaultCalendarName();
    CCalendarFile* FindDefaultCalendarFile() const;
    // "default.ics" for the first event of a folder that had no file at the load; with its events
    // where it is there by now. Null where it is there and cannot be read.
    CCalendarFile* MakeDefaultCalendarFile();
    void LoadFile(const std::wstring& name);
    void FillAppointment(const CCalendarFile& file, INEntityItem* item, const CVEvent& event);
    void FillEvent(CCalendarFile& file, INEntityItem* item, CVEvent& event);
    bool HasID(std::size_t position, const std::wstring& id) const;
    bool IsOnlyOurs(std::size_t position) const;
    std::size_t FindAmongHandedOut(const std::wstring& id);

    std::wstring m_folder;
    std::wstring m_defaultFileName;
    std::vector<std::unique_ptr<CCalendarFile>> m_files;
    std::vector<Microsoft::WRL::ComPtr<INEntityItem>> m_items;
    std::size_t m_position = 0; // m_items.size() at the end
    Microsoft::WRL::ComPtr<INEntityItem> m_current;

    CalendarSources m_sources;
    // Where the IDs are. Items that a client may hold are left to FindAmongHandedOut, since they
    // are live objects and their IDs can change at any time.
    ItemIndex m_index;
    std::set<std::size_t> m_handedOut;
    std::size_t m_currentPosition = ItemIndex::kNotFound; // not found: of an earlier list, or none
    int m_uses = 0; // for TableUse: a property that is read may be a client's own code
    // The record that goes into every item; only its head is ever written.
    std::unique_ptr<_tagRecurringInfo> m_recurringInfo;
};
