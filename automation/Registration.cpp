#include "automation/Registration.h"

#include "automation/Registrar.h"
#include "platform/ScopeExit.h"
#include "platform/UniqueHandle.h"

using Microsoft::WRL::ComPtr;

// The toolchain's headers do not have them.
extern "C"
{
    WINOLEAUTAPI RegisterTypeLibForUser(ITypeLib* library, OLECHAR* path, OLECHAR* helpDirectory);
    WINOLEAUTAPI UnRegisterTypeLibForUser(
        REFGUID id, WORD majorVersion, WORD minorVersion, LCID language, SYSKIND system);
}

namespace
{
HRESULT ApplyClasses(IRegistration& registration, std::span<const WORD> scripts, bool add)
{
    for (const WORD script : scripts)
    {
        const HRESULT result = registration.ApplyScript(script, add);
        if (FAILED(result))
            return result;
    }
    return registration.ApplyTypeLibrary(add);
}

// While work runs, HKEY_CLASSES_ROOT stands for the current user's own classes in this process.
// Returns: the result of work, or the failure to turn the key.
template <typename Work> HRESULT AmongUserClasses(Work work)
{
    UniqueRegistryKey classes;
    LSTATUS status = RegCreateKeyExW(HKEY_CURRENT_USER,
                                     L"Software\\Classes",
                                     0,
                                     nullptr,
                                     0,
                                     KEY_ALL_ACCESS,
                                     nullptr,
                                     classes.Put(),
                                     nullptr);
    if (status == ERROR_SUCCESS)
        status = RegOverridePredefKey(HKEY_CLASSES_ROOT, classes.Get());
    if (status != ERROR_SUCCESS)
        return HRESULT_FROM_WIN32(static_cast<DWORD>(status));
    const ScopeExit turnBack([] { RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr); });
    return work();
}
} // namespace

HRESULT RegisterServer(IRegistration& registration, std::span<const WORD> classScripts)
{
    const HRESULT result = registration.ApplyScript(RegistrationScript::kApplication, true);
    return FAILED(result) ? result : ApplyClasses(registration, classScripts, true);
}

HRESULT UnregisterServer(IRegistration& registration, std::span<const WORD> classScripts)
{
    const HRESULT result = ApplyClasses(registration, classScripts, false);
    return FAILED(result) ? result
                          : registration.ApplyScript(RegistrationScript::kApplication, false);
}

std::wstring ScriptTextOfPath(const std::wstring& path)
{
    std::wstring text = L"\"";
    for (const wchar_t character : path)
        text.append(character == L'\'' ? 2 : 1, character);
    return text + L'"';
}

CRegistration::CRegistration(RegistrationScope scope,
                             std::wstring serverPath,
                             AddReplacements addReplacements)
    : m_scope(scope), m_serverPath(std::move(serverPath)),
      m_addReplacements(std::move(addReplacements))
{
}

HRESULT CRegistration::ApplyScript(WORD script, bool add)
{
    // Made before the key is turned: the registrar is one of the machine's classes.
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
    result = m_addReplacements(registrar.Get());
    if (FAILED(result))
        return result;
    const auto apply = [&] {
        const auto method = add ? &IRegistrar::ResourceRegister : &IRegistrar::ResourceUnregister;
        return (registrar.Get()->*method)(m_serverPath.c_str(), script, L"REGISTRY");
    };
    return m_scope == RegistrationScope::User ? AmongUserClasses(apply) : apply();
}

HRESULT CRegistration::ApplyTypeLibrary(bool add)
{
    ComPtr<ITypeLib> library;
    HRESULT result = LoadTypeLibEx(m_serverPath.c_str(), REGKIND_NONE, library.GetAddressOf());
    if (FAILED(result))
        return result;
    const bool isForUser = m_scope == RegistrationScope::User;
    if (add)
    {
        std::wstring directory = m_serverPath.substr(0, m_serverPath.find_last_of(L'\\') + 1);
        const auto enroll = isForUser ? &RegisterTypeLibForUser : &RegisterTypeLib;
        const auto apply = [&] {
            return enroll(library.Get(), m_serverPath.data(), directory.data());
        };
        return isForUser ? AmongUserClasses(apply) : apply();
    }
    TLIBATTR* attributes = nullptr;
    result = library->GetLibAttr(&attributes);
    if (FAILED(result))
        return result;
    const TLIBATTR key = *attributes;
    library->ReleaseTLibAttr(attributes);
    const auto withdraw = isForUser ? &UnRegisterTypeLibForUser : &UnRegisterTypeLib;
    const auto apply = [&] {
        return withdraw(key.guid, key.wMajorVerNum, key.wMinorVerNum, key.lcid, key.syskind);
    };
    return isForUser ? AmongUserClasses(apply) : apply();
}
