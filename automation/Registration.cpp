#include "automation/Registration.h"

#include "automation/Registrar.h"
#include "automation/base/ServerModule.h"

#include "PimStoreBridge.h"

using Microsoft::WRL::ComPtr;

namespace
{
HRESULT ApplyClasses(IRegistration& registration, std::span<const ObjectMapEntry> map, bool add)
{
    for (const ObjectMapEntry& row : map)
    {
        const HRESULT result = registration.ApplyScript(row.script, add);
        if (FAILED(result))
            return result;
    }
    return registration.ApplyTypeLibrary(add);
}
} // namespace

HRESULT RegisterServer(IRegistration& registration, std::span<const ObjectMapEntry> map)
{
    const HRESULT result = registration.ApplyScript(kApplicationScript, true);
    return FAILED(result) ? result : ApplyClasses(registration, map, true);
}

HRESULT UnregisterServer(IRegistration& registration, std::span<const ObjectMapEntry> map)
{
    const HRESULT result = ApplyClasses(registration, map, false);
    return FAILED(result) ? result : registration.ApplyScript(kApplicationScript, false);
}

std::wstring ScriptTextOfPath(const std::wstring& path)
{
    std::wstring text = L"\"";
    for (const wchar_t character : path)
        text.append(character == L'\'' ? 2 : 1, character);
    return text + L'"';
}

CRegistration::CRegistration(CServerModule& module, std::wstring serverPath)
    : m_module(module), m_serverPath(std::move(serverPath))
{
}

HRESULT CRegistration::ApplyScript(WORD script, bool add)
{
    ComPtr<IRegistrar> registrar;
    HRESULT result = CoCreateInstance(kRegistrarClass,
                                      nullptr,
                                      CLSCTX_INPROC_SERVER,
                                      kRegistrarInterface,
                                      reinterpret_cast<void**>(registrar.GetAddressOf()));
    if (FAILED(result))
        return result;
    result = registrar->AddReplacement(L"MODULE", ScriptTextOfPath(m_serverPath).c_str());
    if (FAILED(result))
        return result;
    result = m_module.AddCommonRGSReplacements(registrar.Get());
    if (FAILED(result))
        return result;
    const auto apply = add ? &IRegistrar::ResourceRegister : &IRegistrar::ResourceUnregister;
    return (registrar.Get()->*apply)(m_serverPath.c_str(), script, L"REGISTRY");
}

HRESULT CRegistration::ApplyTypeLibrary(bool add)
{
    ComPtr<ITypeLib> library;
    HRESULT result = LoadTypeLibEx(m_serverPath.c_str(), REGKIND_NONE, library.GetAddressOf());
    if (FAILED(result))
        return result;
    if (add)
    {
        std::wstring directory = m_serverPath.substr(0, m_serverPath.find_last_of(L'\\') + 1);
        return RegisterTypeLib(library.Get(), m_serverPath.data(), directory.data());
    }
    TLIBATTR* attributes = nullptr;
    result = library->GetLibAttr(&attributes);
    if (FAILED(result))
        return result;
    const TLIBATTR key = *attributes;
    library->ReleaseTLibAttr(attributes);
    return UnRegisterTypeLib(key.guid, key.wMajorVerNum, key.wMinorVerNum, key.lcid, key.syskind);
}
