// A store that the conformance tests run on. They see it through the names of its library and the
// interfaces that come from there, and nothing else.
#pragma once

#include <memory>
#include <string>

// Made anew for every test: an empty usual store behind the library's default profile. It has a
// root, in it the subtree with an inbox (the receive folder of all classes), a contact folder of
// class "IPF.Contact", a calendar folder of class "IPF.Appointment" and a wastebasket, each named
// by the properties that name them in any store; and a user with a display name.
class StoreUnderTest
{
  public:
    virtual ~StoreUnderTest() = default;

    // The MAPI library; loaded and initialised by the test.
    virtual std::wstring LibraryPath() const = 0;
    // Whether it is an address book's library instead, with an empty personal container. Only what
    // items and their tables do is asked of it: a book has no session, no folders, no attachments,
    // and names for no properties.
    virtual bool IsBook() const { return false; }
    // Called after the library was uninitialised: what is left behind, one complaint per line.
    virtual std::string Complaints() const { return {}; }
};

// How a test program makes its stores; the name stands in the names of the tests.
struct StoreUnderTestFactory
{
    const char* name;
    std::unique_ptr<StoreUnderTest> (*make)();
};
