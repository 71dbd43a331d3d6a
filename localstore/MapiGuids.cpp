// The one place that defines the interface IDs which the library answers.
#include <initguid.h>

#define USES_IID_IMAPIProp
#define USES_IID_IMAPITable
#define USES_IID_IMAPIContainer
#define USES_IID_IABContainer
#define USES_IID_IAddrBook

#include "platform/WindowsHeaders.h"

#include <mapiguid.h>
