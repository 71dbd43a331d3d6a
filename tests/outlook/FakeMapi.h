// What the test program and the fake MAPI libraries share. A library keeps no state of its own: it
// reports each call to the program that loaded it, so that the record outlives the library.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string>
#include <vector>

// Exported by the test program under these names.
extern "C" void FakeMapiRecord(const char* call);
extern "C" HRESULT FakeMapiInitialiseResult();

// The program's side: the record and the plan of one test.
class FakeMapi
{
  public:
    explicit FakeMapi(HRESULT initialiseResult = S_OK);
    ~FakeMapi();
    FakeMapi(const FakeMapi&) = delete;
    FakeMapi& operator=(const FakeMapi&) = delete;

    std::vector<std::string>& Calls() noexcept { return m_calls; }

    // A library with every name that the proxy looks for, the plain ones of decorated names too.
    static std::wstring Path();
    // One with "MAPIInitialize", the plain names of the decorated ones, and a decorated one of
    // "HrGetOneProp".
    static std::wstring PlainNamesPath();
    // One with none of the names.
    static std::wstring BarePath();

  private:
    friend void FakeMapiRecord(const char* call);
    friend HRESULT FakeMapiInitialiseResult();
    std::vector<std::string> m_calls;
    HRESULT m_initialiseResult;
};
