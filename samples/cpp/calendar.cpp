// Walks the calendar through the automation server PimStoreBridge, early bound.
//
//   calendar.exe [PROVIDER]
//
// PROVIDER is the mail client whose store to use, "Windows Mail" where it is left out.
// PimStoreBridge.h and PimStoreBridge_i.c are compiled from
// automation/resources/PimStoreBridge.idl, by midl on Windows and by widl elsewhere. Exit codes: 0
// done, 1 failed.
#include <windows.h>
#include <objbase.h>
#include <oleauto.h>
#include <wrl/client.h>

#include "PimStoreBridge.h"

#include <cstdio>
#include <string>

using Microsoft::WRL::ComPtr;

namespace
{
// A BSTR that frees itself.
class Text
{
  public:
    explicit Text(const wchar_t* value = nullptr) : m_value(SysAllocString(value)) {}
    ~Text() { SysFreeString(m_value); }
    Text(const Text&) = delete;
    Text& operator=(const Text&) = delete;

    BSTR Get() const { return m_value; }
    BSTR* Out()
    {
        SysFreeString(m_value);
        m_value = nullptr;
        return &m_value;
    }
    // As UTF-8; empty where the text is null.
    std::string Utf8() const
    {
        const int units = static_cast<int>(SysStringLen(m_value));
        if (units == 0)
            return {};
        const int size =
            WideCharToMultiByte(CP_UTF8, 0, m_value, units, nullptr, 0, nullptr, nullptr);
        std::string bytes(static_cast<std::size_t>(size), '\0');
        WideCharToMultiByte(CP_UTF8, 0, m_value, units, bytes.data(), size, nullptr, nullptr);
        return bytes;
    }

  private:
    BSTR m_value;
};

int Fail(const char* what, HRESULT result)
{
    std::fprintf(stderr, "%s failed: 0x%08lX\n", what, static_cast<unsigned long>(result));
    return 1;
}

// The server's times are UTC; those of an all-day item are local days.
void PrintTime(DATE time)
{
    SYSTEMTIME parts = {};
    VariantTimeToSystemTime(time, &parts);
    std::printf("%04u-%02u-%02u %02u:%02u  ",
                parts.wYear,
                parts.wMonth,
                parts.wDay,
                parts.wHour,
                parts.wMinute);
}

void PrintItem(INAppointment* item)
{
    DATE start = 0;
    DATE end = 0;
    Text subject;
    Text id;
    item->get_StartTime(&start);
    item->get_EndTime(&end);
    item->get_Subject(subject.Out());
    item->get_PersistID(id.Out());
    PrintTime(start);
    PrintTime(end);
    std::printf("%s  %s\n", subject.Utf8().c_str(), id.Utf8().c_str());
}

int List(const wchar_t* provider)
{
    ComPtr<INPersonalInformationService> service;
    HRESULT result = CoCreateInstance(CLSID_NPersonalInformationService,
                                      nullptr,
                                      CLSCTX_LOCAL_SERVER,
                                      IID_INPersonalInformationService,
                                      reinterpret_cast<void**>(service.GetAddressOf()));
    if (FAILED(result))
        return Fail("Reaching the server", result);
    result = service->StartService(Text(provider).Get());
    if (FAILED(result))
        return Fail("Starting the mail client", result);

    // The result is a success where there is no calendar too, so the pointer is what counts.
    ComPtr<INCalendar> calendar;
    result = service->GetCalendar(calendar.GetAddressOf());
    if (calendar)
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        calendar->Reset(&done);
        for (;;)
        {
            ComPtr<INAppointment> item;
            // The end of the list is told by a failed call alone.
            if (FAILED(calendar->GetNextAppointment(item.GetAddressOf())) || !item)
                break;
            PrintItem(item.Get());
        }
        // The calendar points into what the service holds, so it goes first.
        calendar.Reset();
    }
    service->StopService();
    return SUCCEEDED(result) ? 0 : Fail("Opening the calendar", result);
}
} // namespace

int wmain(int argumentCount, wchar_t** arguments)
{
    SetConsoleOutputCP(CP_UTF8);
    const HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (FAILED(result))
        return Fail("Starting COM", result);
    const int exitCode = List(argumentCount > 1 ? arguments[1] : L"Windows Mail");
    CoUninitialize();
    return exitCode;
}
