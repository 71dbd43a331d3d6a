// What clients of a calendar do, over and over: start the service, walk, write, and wait for each
// other.
#pragma once

#include "endtoend/ServerFixture.h"
#include "platform/Bstr.h"

#include <string>
#include <vector>

inline constexpr wchar_t kWindowsMail[] = L"Windows Mail";
inline constexpr wchar_t kOutlookExpress[] = L"Outlook Express";

// A service object of the server with the named back end running; null with a test failure where
// that fails.
Microsoft::WRL::ComPtr<INPersonalInformationService> StartBackEnd(
    const std::wstring& name = kWindowsMail);

// Starts a back end once a stop that waits for other calls has taken effect. Gives the last result
// where that takes more than five seconds.
HRESULT StartAfterStop(INPersonalInformationService& service, const std::wstring& name);

// The service's calendar; null where it gives none.
Microsoft::WRL::ComPtr<INCalendar> CalendarOf(INPersonalInformationService* service);

// The next item's subject; "(end)" where there is none.
std::wstring NextSubject(INCalendar* calendar);
// Resets the calendar and walks it to its end. Ends with a test failure after 10,000 items.
std::vector<std::wstring> Subjects(INCalendar* calendar);
// The item of that ID after a reset; null where there is none.
Microsoft::WRL::ComPtr<INAppointment> Find(INCalendar* calendar, const std::wstring& id);

// An event's text with that UID and subject, on a day of January 2024.
std::string EventText(const std::string& uid, const std::string& subject);
// A file's text with these events.
std::string CalendarText(const std::vector<std::string>& events);
// Events "N1" to "Nn" with the subjects "prefix 1" to "prefix n".
std::string NumberedCalendar(const std::string& prefix, int count);

// A named event that two processes share; set once, seen once.
class Signal
{
  public:
    explicit Signal(const std::wstring& name);
    void Set() const;
    // False with a test failure where it was not set in time.
    bool Wait(DWORD timeoutMilliseconds = 60000) const;

  private:
    UniqueHandle m_event;
};
