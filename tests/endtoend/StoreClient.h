// A client of the message store in a process of its own. It takes its steps from its command line
// and prints a line or more for each. A step's result is in hexadecimal; CR, LF and the backslash
// in a text of the store are escaped.
//
// Step          What it does                                             Prints
// factory       makes the service object through the server's factory    factory RESULT
// start NAME    starts the service                                       start RESULT
// stop          stops it                                                 stop RESULT
// user          asks the service for a new object of the mail user       user RESULT object|none
// make-user     asks the runtime for one                                 make-user RESULT
// texts         reads the ten texts of the last one                      a line for each: NAME TEXT
// folders       reads the contact folders                                folders RESULT, then for
//                                                                        each: ID COUNT DEFAULT
//                                                                        NAME
// contacts      reads the basics of all contacts                         contacts RESULT, then for
//                                                                        each: ID FOLDER MODIFIED
// set NAME      sets a signal that several processes share
// wait NAME     waits for one
// begin         makes the service object and nothing more
// vanish        ends the process at once, with the exit code 42
#pragma once

#include "endtoend/CalendarClient.h"
#include "endtoend/ChildProgram.h"

#include <string>

inline constexpr UINT kVanished = 42;

std::wstring StoreClientCommandLine(const std::wstring& steps);

// A client that holds a service object and does nothing: while it lives the server does.
class ServerKeeper
{
  public:
    ServerKeeper();
    ~ServerKeeper();
    ServerKeeper(const ServerKeeper&) = delete;
    ServerKeeper& operator=(const ServerKeeper&) = delete;

  private:
    const Signal m_kept{L"kept"};
    const Signal m_leave{L"leave"};
    ChildProgram m_client;
};

// Takes these steps and gives what was printed. A test failure where the client did not end well.
std::string TakeSteps(const std::wstring& steps);
