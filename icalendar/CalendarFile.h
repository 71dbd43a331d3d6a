// One .ics file: the root of its tree, with indexes of its events and zones. Portable.
#pragma once

#include "icalendar/ComponentIndex.h"
#include "icalendar/VEvent.h"
#include "icalendar/VObject.h"
#include "icalendar/VTimeZone.h"

#include <string>
#include <string_view>

class CCalendarFile : public CVObject
{
  public:
    // The full path; the flag is kept for the caller. The new file is empty and can be added to.
    CCalendarFile(std::wstring path, int defaultFlag);

    // Reads the whole file, then rebuilds the indexes. What an earlier load left stays in the tree.
    // Returns: 1; 0 where the file can't be opened.
    int Load();
    // Writes the whole tree. Returns: 1; 0 where the file can't be created.
    int Save() const;

    // The same on bytes. The text is UTF-8; see icalendar/LogicalLines.h for the reader's rules.
    void LoadFromText(std::string_view bytes);
    std::string SaveToText() const;

    CVComponentIndex<CVEvent>& Events() noexcept { return m_events; }
    CVComponentIndex<CVTimeZone>& TimeZones() noexcept { return m_timeZones; }
    const CVComponentIndex<CVEvent>& Events() const noexcept { return m_events; }
    const CVComponentIndex<CVTimeZone>& TimeZones() const noexcept { return m_timeZones; }
    const std::wstring& Path() const noexcept { return m_path; }
    int DefaultFlag() const noexcept { return m_defaultFlag; }

  private:
    void RebuildIndexes();

    CVComponentIndex<CVEvent> m_events;
    CVComponentIndex<CVTimeZone> m_timeZones;
    std::wstring m_path;
    int m_defaultFlag;
};
