// What the test program and the library that stands for the system's MAPI stub share. The library
// reports each call to the program that loaded it, which tells the answer.
#pragma once

#include "platform/WindowsHeaders.h"

#include <string>
#include <vector>

// Exported by the test program under these names.
extern "C" void FakeMapiStubRecord(const char* call);
// The path that the lookup gives next; empty for none. Valid until the next call.
extern "C" const char* FakeMapiStubAnswer();
// What the lookups return beside.
extern "C" BOOL FakeMapiStubResult();

// The program's side: the record and the plan of one test.
class FakeMapiStub
{
  public:
    FakeMapiStub();
    ~FakeMapiStub();
    FakeMapiStub(const FakeMapiStub&) = delete;
    FakeMapiStub& operator=(const FakeMapiStub&) = delete;

    // The lookups as "mapi32.dll FGetComponentPath(component, qualifier, size, install)" after the
    // name under which the library was loaded, and "mapi32.dll unload".
    std::vector<std::string>& Calls() noexcept { return m_calls; }

    // What the lookups give, one after the other; then nothing.
    std::vector<std::string> answers;
    // What they return, path or not.
    BOOL result = FALSE;

    static std::wstring Path();

  private:
    friend void FakeMapiStubRecord(const char* call);
    friend const char* FakeMapiStubAnswer();
    friend BOOL FakeMapiStubResult();
    std::vector<std::string> m_calls;
    std::size_t m_asked = 0;
};
