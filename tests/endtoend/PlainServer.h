// A local server of the tests' own: a process of the test program that serves a calendar and an
// appointment which do next to nothing. What the runtime itself keeps of a client's calls shows
// there, beside the same calls to the real server.
//
// Registered for the user from construction to destruction; then its process ends.
#pragma once

#include "endtoend/ServerFixture.h"

// INCalendar: fifty new items on each walk, which ends with E_FAIL; no other method works.
inline constexpr CLSID kPlainCalendar = {
    0x5a1b1c5e, 0x7f0e, 0x4c6e, {0x9c, 0x55, 0x31, 0x0e, 0x4f, 0x6d, 0x2a, 0x01}};
// INAppointment: an appointment whose properties are all empty.
inline constexpr CLSID kPlainAppointment = {
    0x5a1b1c5e, 0x7f0e, 0x4c6e, {0x9c, 0x55, 0x31, 0x0e, 0x4f, 0x6d, 0x2a, 0x02}};

inline constexpr int kPlainCalendarItems = 50;

class PlainServer
{
  public:
    PlainServer();
    ~PlainServer();
    PlainServer(const PlainServer&) = delete;
    PlainServer& operator=(const PlainServer&) = delete;

    DWORD Id() const noexcept { return m_process.id; }

  private:
    StartedProgram m_process;
    // One object of each kind stays: where the last object of an interface goes, some runtimes wait
    // for calls to end that have ended, now and then for good.
    Microsoft::WRL::ComPtr<INAppointment> m_appointment;
    Microsoft::WRL::ComPtr<INCalendar> m_calendar;
};
