// The proxy library's entry points. It stands in for the runtime's marshaller of type libraries:
// the server's manifest names that marshaller for its interfaces, whatever the registry says of
// them. The interfaces of the contract get the generated proxies and stubs, every other interface
// what the runtime itself makes.
#include "platform/UniqueHandle.h"
#include "platform/WindowsHeaders.h"

#include <string>

using Microsoft::WRL::ComPtr;

// Generated: the factory of the contract's proxies and stubs.
extern "C" HRESULT WINAPI RecordDllGetClassObject(REFCLSID classId, REFIID iid, void** object);

namespace
{

constexpr GUID kTypeLibraryMarshaller = {0x00020424, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
// PROXY_CLSID_IS of ProxyPrelude.h.
constexpr GUID kGenerated = {
    0x5D0C7C1E, 0x3B52, 0x4E0B, {0x9B, 0x1A, 0x70, 0x2E, 0x5A, 0xC1, 0x84, 0x6D}};

constexpr wchar_t kServerKey[] =
    L"Software\\Classes\\CLSID\\{00020424-0000-0000-C000-000000000046}\\InprocServer32";
constexpr wchar_t kBefore[] = L"BeforePimRecordProxy";

using GetClassObject = HRESULT(WINAPI*)(REFCLSID, REFIID, void**);

HRESULT OpenRuntime(ComPtr<IPSFactoryBuffer>& factory)
{
    // It is part of this process anyway.
    const HMODULE runtime = GetModuleHandleW(L"oleaut32.dll");
    const auto entry = reinterpret_cast<GetClassObject>(
        reinterpret_cast<void*>(runtime ? GetProcAddress(runtime, "DllGetClassObject") : nullptr));
    if (!entry)
        return E_FAIL;
    return entry(kTypeLibraryMarshaller,
                 IID_IPSFactoryBuffer,
                 reinterpret_cast<void**>(factory.GetAddressOf()));
}

HRESULT OpenGenerated(ComPtr<IPSFactoryBuffer>& factory)
{
    return RecordDllGetClassObject(
        kGenerated, IID_IPSFactoryBuffer, reinterpret_cast<void**>(factory.GetAddressOf()));
}

// One for the process, never freed.
class Factory final : public IPSFactoryBuffer
{
  public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override
    {
        if (!IsEqualGUID(iid, IID_IUnknown) && !IsEqualGUID(iid, IID_IPSFactoryBuffer))
        {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<IPSFactoryBuffer*>(this);
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE CreateProxy(IUnknown* outer,
                                          REFIID iid,
                                          IRpcProxyBuffer** proxy,
                                          void** object) override
    {
        return First([&](IPSFactoryBuffer* factory) {
            return factory->CreateProxy(outer, iid, proxy, object);
        });
    }
    HRESULT STDMETHODCALLTYPE CreateStub(REFIID iid,
                                         IUnknown* server,
                                         IRpcStubBuffer** stub) override
    {
        return First(
            [&](IPSFactoryBuffer* factory) { return factory->CreateStub(iid, server, stub); });
    }

  private:
    template <typename Make> static HRESULT First(Make make)
    {
        ComPtr<IPSFactoryBuffer> generated;
        HRESULT result = OpenGenerated(generated);
        if (SUCCEEDED(result))
            result = make(generated.Get());
        if (SUCCEEDED(result))
            return result;
        ComPtr<IPSFactoryBuffer> runtime;
        result = OpenRuntime(runtime);
        return FAILED(result) ? result : make(runtime.Get());
    }
};

Factory g_factory;
HMODULE g_module;

std::wstring ReadText(const wchar_t* name)
{
    wchar_t text[MAX_PATH] = {};
    DWORD bytes = sizeof text;
    return RegGetValueW(
               HKEY_LOCAL_MACHINE, kServerKey, name, RRF_RT_REG_SZ, nullptr, text, &bytes) ==
                   ERROR_SUCCESS
               ? text
               : L"";
}

HRESULT WriteText(const wchar_t* name, const std::wstring& text)
{
    return HRESULT_FROM_WIN32(
        RegSetKeyValueW(HKEY_LOCAL_MACHINE,
                        kServerKey,
                        name,
                        REG_SZ,
                        text.c_str(),
                        static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t))));
}

} // namespace

extern "C"
{

    BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, void*)
    {
        if (reason == DLL_PROCESS_ATTACH)
            g_module = module;
        return TRUE;
    }

    HRESULT WINAPI DllGetClassObject(REFCLSID classId, REFIID iid, void** object)
    {
        *object = nullptr;
        return IsEqualGUID(classId, kTypeLibraryMarshaller) ? g_factory.QueryInterface(iid, object)
                                                            : CLASS_E_CLASSNOTAVAILABLE;
    }

    HRESULT WINAPI DllCanUnloadNow()
    {
        return S_FALSE;
    }

    HRESULT WINAPI DllRegisterServer()
    {
        wchar_t path[MAX_PATH] = {};
        const DWORD length = GetModuleFileNameW(g_module, path, MAX_PATH);
        if (length == 0 || length >= MAX_PATH)
            return E_FAIL;
        // A second registration keeps what was there before the first.
        HRESULT result = S_OK;
        if (ReadText(kBefore).empty())
            result = WriteText(kBefore, ReadText(L""));
        return FAILED(result) ? result : WriteText(L"", path);
    }

    HRESULT WINAPI DllUnregisterServer()
    {
        const std::wstring before = ReadText(kBefore);
        if (before.empty())
            return S_OK;
        const HRESULT result = WriteText(L"", before);
        if (SUCCEEDED(result))
            RegDeleteKeyValueW(HKEY_LOCAL_MACHINE, kServerKey, kBefore);
        return result;
    }

} // extern "C"
