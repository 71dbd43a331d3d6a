// Whatever passes the XML scan is parsed without a crash and within the limits; so is the whole
// reading of the calendar settings.
#include "icalendar/CalendarSettings.h"
#include "service/XmlScan.h"

#include <tinyxml.h>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace
{
// Walks the tree without recursion, as deep as it is.
std::size_t DeepestElement(const TiXmlNode& root)
{
    std::size_t deepest = 0;
    std::size_t depth = 0;
    const TiXmlNode* node = root.FirstChild();
    while (node)
    {
        if (node->ToElement() && depth + 1 > deepest)
            deepest = depth + 1;
        if (node->FirstChild())
        {
            node = node->FirstChild();
            ++depth;
            continue;
        }
        while (node && !node->NextSibling())
        {
            node = node->Parent() == &root ? nullptr : node->Parent();
            --depth;
        }
        node = node ? node->NextSibling() : nullptr;
    }
    return deepest;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (ScanXml(text) == XmlScanResult::Ok)
    {
        TiXmlDocument document;
        document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UTF8);
        if (DeepestElement(document) > kMaxXmlDepth)
            std::abort();
    }
    DefaultCalendarFileName(text);
    return 0;
}
