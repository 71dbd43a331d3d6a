#include "support/TypeLibraryRegistration.h"

#include "platform/ProgramPath.h"
#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

TypeLibraryRegistration::TypeLibraryRegistration()
{
    std::wstring path = ProgramPath();
    Microsoft::WRL::ComPtr<ITypeLib> library;
    m_result = LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.GetAddressOf());
    if (SUCCEEDED(m_result))
        m_result = RegisterTypeLib(library.Get(), path.data(), nullptr);
}

TypeLibraryRegistration::~TypeLibraryRegistration()
{
    UnRegisterTypeLib(LIBID_PimStoreBridgeLib, 1, 0, 0x0409, SYS_WIN64);
    SHDeleteKeyW(HKEY_CLASSES_ROOT, L"TypeLib\\{814F6F5C-D022-414A-B904-9AAF66150348}");
}
