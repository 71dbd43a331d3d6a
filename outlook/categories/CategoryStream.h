// The bytes of the category document on its message.
#pragma once

#include "outlook/store/Proxcy.h"
#include "platform/WindowsHeaders.h"

#include <string>

enum class CategoryStream
{
    Read,
    Missing,   // or empty
    Unreadable // there may be one; it must not be replaced
};

// Reads the document into the text, which is untouched where there is none. One that is too large
// to be handed over as a value is read as a stream, up to the limit of service/XmlScan.h.
CategoryStream ReadCategoryStream(IMAPIProp& message, CNProxcy& proxy, std::string& text);

// Stores the text. Returns: whether the store took it and saved it.
bool WriteCategoryStream(IMAPIProp& message, CNProxcy& proxy, const std::string& text);
