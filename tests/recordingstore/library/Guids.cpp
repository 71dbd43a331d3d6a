// The one place that defines the interface IDs which the library knows.
#include <initguid.h>

#define USES_IID_IMAPISession
#define USES_IID_IMAPIProp
#define USES_IID_IMAPITable
#define USES_IID_IMAPIContainer
#define USES_IID_IMAPIFolder
#define USES_IID_IMsgStore
#define USES_IID_IMessage
#define USES_IID_IAttachment
#define USES_IID_IMailUser
#define USES_IID_IAddrBook
#define USES_IID_IABContainer
#define USES_IID_IDistList

#include "platform/WindowsHeaders.h"

#include <mapiguid.h>
