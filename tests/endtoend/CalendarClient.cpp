#include "endtoend/CalendarClient.h"

using Microsoft::WRL::ComPtr;

ComPtr<INPersonalInformationService> StartBackEnd(const std::wstring& name)
{
    auto service = MakeInServer<INPersonalInformationService>(CLSID_NPersonalInformationService);
    if (!service)
        return nullptr;
    const HRESULT started = service->StartService(Bstr(name).Get());
    EXPECT_EQ(S_OK, started);
    return SUCCEEDED(started) ? service : nullptr;
}

HRESULT StartAfterStop(INPersonalInformationService& service, const std::wstring& name)
{
    const Bstr text(name);
    HRESULT started = service.StartService(text.Get());
    for (int i = 0; i < 100 && started != S_OK; ++i)
    {
        Sleep(50);
        started = service.StartService(text.Get());
    }
    return started;
}

ComPtr<INCalendar> CalendarOf(INPersonalInformationService* service)
{
    ComPtr<INCalendar> calendar;
    EXPECT_EQ(S_OK, service->GetCalendar(calendar.GetAddressOf()));
    return calendar;
}

std::wstring NextSubject(INCalendar* calendar)
{
    ComPtr<INAppointment> item;
    const HRESULT result = calendar->GetNextAppointment(item.GetAddressOf());
    if (result == E_FAIL && !item)
        return L"(end)";
    EXPECT_EQ(S_OK, result);
    Bstr subject;
    if (item)
    {
        EXPECT_EQ(S_OK, item->get_Subject(subject.Put()));
    }
    return TextOf(subject.Get());
}

std::vector<std::wstring> Subjects(INCalendar* calendar)
{
    constexpr std::size_t kMaxItems = 10000;
    VARIANT_BOOL reset = VARIANT_FALSE;
    EXPECT_EQ(S_OK, calendar->Reset(&reset));
    EXPECT_EQ(VARIANT_TRUE, reset);
    std::vector<std::wstring> subjects;
    while (subjects.size() < kMaxItems)
    {
        std::wstring subject = NextSubject(calendar);
        if (subject == L"(end)")
            return subjects;
        subjects.push_back(std::move(subject));
    }
    ADD_FAILURE() << "The walk does not end.";
    return subjects;
}

ComPtr<INAppointment> Find(INCalendar* calendar, const std::wstring& id)
{
    VARIANT_BOOL reset = VARIANT_FALSE;
    EXPECT_EQ(S_OK, calendar->Reset(&reset));
    ComPtr<INAppointment> item;
    calendar->GetAppointmentByID(Bstr(id).Get(), item.GetAddressOf());
    return item;
}

std::string EventText(const std::string& uid, const std::string& subject)
{
    return "BEGIN:VEVENT\r\nUID:" + uid + "\r\nSUMMARY:" + subject +
           "\r\nDTSTAMP:20240102T080000Z\r\nDTSTART:20240108T100000\r\n"
           "DTEND:20240108T110000\r\nEND:VEVENT\r\n";
}

std::string CalendarText(const std::vector<std::string>& events)
{
    std::string text = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
    for (const std::string& event : events)
        text += event;
    return text + "END:VCALENDAR\r\n";
}

std::string NumberedCalendar(const std::string& prefix, int count)
{
    std::vector<std::string> events;
    for (int i = 1; i <= count; ++i)
        events.push_back(EventText("N" + std::to_string(i), prefix + ' ' + std::to_string(i)));
    return CalendarText(events);
}

Signal::Signal(const std::wstring& name)
    : m_event(CreateEventW(nullptr, FALSE, FALSE, (L"Local\\pim-tests-" + name).c_str()))
{
}

void Signal::Set() const
{
    SetEvent(m_event.Get());
}

bool Signal::Wait(DWORD timeoutMilliseconds) const
{
    const bool isSet = WaitAndAnswer(m_event.Get(), timeoutMilliseconds);
    EXPECT_TRUE(isSet);
    return isSet;
}
