// What the test program and the fake address book library share. The library keeps no state of its
// own: it reports each call to the program that loaded it and asks it which step shall fail, so
// that the record outlives the library.
#pragma once

#include <string>
#include <vector>

// The steps of opening a book that can be made to fail.
enum class FakeBookFailure
{
    None,
    OpenFails,
    OpenGivesNoBook,
    OpenGivesNoObject,
    PersonalBookFails,
    PersonalBookGivesNull,
    EntryFails,
    EntryGivesNull
};

// Exported by the test program under these names.
extern "C" void FakeBookRecord(const char* call);
extern "C" FakeBookFailure FakeBookFailureNow();

// The program's side: the record and the plan of one test.
class FakeAddressBook
{
  public:
    explicit FakeAddressBook(FakeBookFailure failure = FakeBookFailure::None);
    ~FakeAddressBook();
    FakeAddressBook(const FakeAddressBook&) = delete;
    FakeAddressBook& operator=(const FakeAddressBook&) = delete;

    std::vector<std::string>& Calls() noexcept { return m_calls; }

    // Paths of the library, and of its variant that exports nothing of what a proxy looks for.
    static std::wstring Path();
    static std::wstring BarePath();

  private:
    friend void FakeBookRecord(const char* call);
    friend FakeBookFailure FakeBookFailureNow();
    std::vector<std::string> m_calls;
    FakeBookFailure m_failure;
};
