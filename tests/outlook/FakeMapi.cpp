#include "tests/outlook/FakeMapi.h"

#include "service/PathHelpers.h"

namespace
{
FakeMapi* g_mapi = nullptr;
} // namespace

extern "C" __declspec(dllexport) void FakeMapiRecord(const char* call)
{
    if (g_mapi)
        g_mapi->m_calls.emplace_back(call);
}

extern "C" __declspec(dllexport) HRESULT FakeMapiInitialiseResult()
{
    return g_mapi ? g_mapi->m_initialiseResult : E_UNEXPECTED;
}

FakeMapi::FakeMapi(HRESULT initialiseResult) : m_initialiseResult(initialiseResult)
{
    g_mapi = this;
}

FakeMapi::~FakeMapi()
{
    g_mapi = nullptr;
}

std::wstring FakeMapi::Path()
{
    return GetExecutableDirectory() + L"fake_mapi.dll";
}

std::wstring FakeMapi::PlainNamesPath()
{
    return GetExecutableDirectory() + L"fake_mapi_plain_names.dll";
}

std::wstring FakeMapi::BarePath()
{
    return GetExecutableDirectory() + L"fake_mapi_bare.dll";
}
