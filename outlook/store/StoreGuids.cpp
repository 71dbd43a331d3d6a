// The one place that defines the store interface IDs which the server asks for.
#include <initguid.h>

#define USES_IID_IMAPIProp
#define USES_IID_IMAPIFolder
#define USES_IID_IMessage
#define USES_IID_IAttachment
#define USES_IID_IABContainer

#include "platform/WindowsHeaders.h"

#include <mapiguid.h>
