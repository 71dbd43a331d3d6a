#include "tests/outlook/FakeMapiStub.h"

#include "service/PathHelpers.h"

namespace
{
FakeMapiStub* g_stub = nullptr;
} // namespace

extern "C" __declspec(dllexport) void FakeMapiStubRecord(const char* call)
{
    if (g_stub)
        g_stub->m_calls.emplace_back(call);
}

extern "C" __declspec(dllexport) const char* FakeMapiStubAnswer()
{
    if (!g_stub || g_stub->m_asked >= g_stub->answers.size())
        return "";
    return g_stub->answers[g_stub->m_asked++].c_str();
}

extern "C" __declspec(dllexport) BOOL FakeMapiStubResult()
{
    return g_stub ? g_stub->result : FALSE;
}

FakeMapiStub::FakeMapiStub()
{
    g_stub = this;
}

FakeMapiStub::~FakeMapiStub()
{
    g_stub = nullptr;
}

std::wstring FakeMapiStub::Path()
{
    return GetExecutableDirectory() + L"fake_mapi_stub.dll";
}
