// The one place that defines the store interface IDs which the server asks for.
#include <initguid.h>

#define USES_IID_IMAPIProp
#define USES_IID_IMAPIFolder

#include "platform/WindowsHeaders.h"

#include <mapiguid.h>
