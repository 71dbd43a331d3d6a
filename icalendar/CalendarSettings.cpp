#include "icalendar/CalendarSettings.h"

#include "service/StringHelpers.h"
#include "service/TextConversions.h"
#include "service/XmlScan.h"

#include <tinyxml.h>

namespace
{
// The parser wants a terminated text with plain line feeds, as its own file reader makes it.
std::string WithLineFeeds(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (text[i] != '\r')
            result += text[i];
        else if (i + 1 == text.size() || text[i + 1] != '\n')
            result += '\n';
    }
    return result;
}
} // namespace

std::wstring DefaultCalendarFileName(std::string_view settings)
{
    if (ScanXml(settings) != XmlScanResult::Ok)
        return {};
    TiXmlDocument document;
    document.Parse(WithLineFeeds(settings).c_str(), nullptr, TIXML_ENCODING_UTF8);
    if (document.Error())
        return {};
    const TiXmlElement* element = document.FirstChildElement("CalendarSettings");
    for (const char* name : {"X-Root", "VCalendar", "Name"})
        element = element ? element->FirstChildElement(name) : nullptr;
    std::wstring text;
    if (!element || !Utf8ToWide(element->GetText(), text) || text.empty())
        return {};
    return TrimChar(TrimChar(text, L' '), L'\'') + L".ics";
}
