// Reads the text of a message: contact notes and appointment bodies. Nothing here fails: what
// cannot be read is empty text.
#pragma once

#include "outlook/store/Proxcy.h"
#include "outlook/store/RichEditHelper.h"

#include <memory>
#include <string>

// The plain text of the message: its PR_BODY_W, or what its compressed RTF converts to. Empty where
// there is none, and for a body of a lone line break; RTF is then not asked.
//   isPresent: whether the property by which the caller chose the body came with the item's values;
//              PR_BODY_W is not asked without it.
//   converter: the caller's own, made where RTF is needed for the first time.
// Throws std::bad_alloc.
std::wstring ReadMessageBody(IMAPIProp* message,
                             bool isPresent,
                             CNProxcy& proxy,
                             std::unique_ptr<CRichEditHelper>& converter);

// The second half alone: the plain text of the message's compressed RTF. An RTF body is cut where
// pieces of 1,024 bytes first pass kLongestRtfBytes, and after kMostStreamReads pieces.
// Throws std::bad_alloc.
std::wstring ReadRtfBody(IMAPIProp* message,
                         CNProxcy& proxy,
                         std::unique_ptr<CRichEditHelper>& converter);

inline constexpr unsigned long kLongestRtfBytes = 0xA00000;
