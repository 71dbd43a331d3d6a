#include "icalendar/CalendarFile.h"

#include "icalendar/LogicalLines.h"
#include "platform/FileIo.h"
#include "service/TextConversions.h"

#include <utility>

CCalendarFile::CCalendarFile(std::wstring path, int defaultFlag)
    : m_path(std::move(path)), m_defaultFlag(defaultFlag)
{
    RebuildIndexes();
}

int CCalendarFile::Load()
{
    std::string bytes;
    if (!ReadWholeFile(m_path, bytes))
        return 0;
    LoadFromText(bytes);
    return 1;
}

int CCalendarFile::Save() const
{
    return SaveWholeFile(m_path, SaveToText()) ? 1 : 0;
}

void CCalendarFile::LoadFromText(std::string_view bytes)
{
    ForEachLogicalLine(bytes, [this](std::wstring_view line, bool repeated) {
        // A property that is set again right away changes nothing; left out, since many empty lines
        // behind a long one would cost their product.
        if (!repeated || line.starts_with(L"BEGIN:") || line.starts_with(L"END:"))
            AddLine(line);
    });
    RebuildIndexes();
}

std::string CCalendarFile::SaveToText() const
{
    // The root's own lines are not written.
    std::string text;
    for (const CVObject* child = FirstChild(); child; child = child->NextSibling())
        child->SerializePieces([&text](std::wstring_view piece) { text += Utf8FromWide(piece); });
    return text;
}

void CCalendarFile::RebuildIndexes()
{
    m_events.Rebuild(CVEvent::kName, this);
    m_timeZones.Rebuild(CVTimeZone::kName, this);
}
