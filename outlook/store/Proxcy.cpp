#include "outlook/store/Proxcy.h"

#include <cstring>

FARPROC CNProxcy::FindEntry(const char* name)
{
    if (!m_library || !name)
        return nullptr;
    if (const auto known = m_entries.find(name); known != m_entries.end())
        return known->second;
    const FARPROC address = GetProcAddress(m_library.Get(), name);
    m_entries.emplace(name, address);
    return address;
}

HRESULT CNProxcy::MAPILogonEx(
    ULONG_PTR ulUIParam, LPWSTR profile, LPWSTR password, ULONG ulFlags, LPMAPISESSION* session)
{
    // Declared for the text kind of the build; MAPI_UNICODE in ulFlags says which it is.
    auto* const entry = Find<MAPILOGONEX>("MAPILogonEx");
    return entry ? entry(ulUIParam, profile, password, ulFlags, session) : E_FAIL;
}

void CNProxcy::AllocateBuffer(ULONG cbSize, void** buffer)
{
    if (auto* const entry = Find<MAPIALLOCATEBUFFER>("MAPIAllocateBuffer"))
        entry(cbSize, buffer);
}

void CNProxcy::AllocateMore(ULONG cbSize, void* parent, void** buffer)
{
    if (auto* const entry = Find<MAPIALLOCATEMORE>("MAPIAllocateMore"))
        entry(cbSize, parent, buffer);
}

HRESULT CNProxcy::WrapCompressedRTFStream(IStream* compressed, ULONG ulFlags, IStream** plain)
{
    using Function = HRESULT WINAPI(IStream*, ULONG, IStream**);
    auto* const entry = Find<Function>("WrapCompressedRTFStream");
    return entry ? entry(compressed, ulFlags, plain) : E_FAIL;
}

bool CNProxcy::Bind(const std::wstring& path)
{
    Unbind();
    // An empty path is what an unset registry value leaves; it names no library.
    if (!path.empty())
        m_library.Reset(LoadLibraryW(path.c_str()));
    return static_cast<bool>(m_library);
}

void CNProxcy::Unbind()
{
    m_entries.clear();
    m_library.Reset();
}
