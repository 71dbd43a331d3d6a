#include "endtoend/PlainServer.h"

#include "endtoend/CalendarClient.h"
#include "icalendar/RecordingAppointment.h"

using Microsoft::WRL::ComPtr;

namespace
{
// An object that answers for the interfaces named and ends with its last reference.
template <typename... Interfaces> class Plain : public Interfaces...
{
  public:
    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        *result = nullptr;
        ((IsEqualGUID(iid, __uuidof(Interfaces)) ? void(*result = static_cast<Interfaces*>(this))
                                                 : void()),
         ...);
        if (!*result && IsEqualGUID(iid, IID_IUnknown))
            *result = this;
        if (!*result)
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = --m_references;
        if (left == 0)
            delete this;
        return left;
    }

  protected:
    virtual ~Plain() = default;

  private:
    ULONG m_references = 1;
};

HRESULT MakeAppointment(REFIID iid, void** result)
{
    const auto appointment = RecordingAppointment::Make();
    appointment->isQuiet = true;
    return appointment->QueryInterface(iid, result);
}

class PlainCalendar final : public Plain<INCalendar>
{
  public:
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP Invoke(
        DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP Refresh() override { return E_NOTIMPL; }
    STDMETHODIMP Reset(VARIANT_BOOL*) override { return E_NOTIMPL; }
    STDMETHODIMP GetNextAppointment(INAppointment** item) override
    {
        *item = nullptr;
        if (m_given == kPlainCalendarItems)
            return E_FAIL;
        ++m_given;
        return MakeAppointment(IID_INAppointment, reinterpret_cast<void**>(item));
    }
    STDMETHODIMP GetAppointmentByID(BSTR, INAppointment**) override { return E_NOTIMPL; }
    STDMETHODIMP AddAppointment(INAppointment*, BSTR*) override { return E_NOTIMPL; }
    STDMETHODIMP UpdateAppointment(INAppointment*, VARIANT_BOOL*) override { return E_NOTIMPL; }
    STDMETHODIMP DeleteAppointment(BSTR, VARIANT_BOOL*) override { return E_NOTIMPL; }

  private:
    int m_given = 0;
};

HRESULT MakeCalendar(REFIID iid, void** result)
{
    ComPtr<INCalendar> calendar;
    *calendar.GetAddressOf() = new PlainCalendar;
    return calendar->QueryInterface(iid, result);
}

class PlainFactory final : public Plain<IClassFactory>
{
  public:
    using Make = HRESULT (*)(REFIID iid, void** result);
    explicit PlainFactory(Make make) noexcept : m_make(make) {}
    STDMETHODIMP CreateInstance(IUnknown*, REFIID iid, void** result) override
    {
        return m_make(iid, result);
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }

  private:
    Make m_make;
};

struct PlainClass
{
    const CLSID* id;
    PlainFactory::Make make;
};
constexpr PlainClass kClasses[] = {{&kPlainCalendar, MakeCalendar},
                                   {&kPlainAppointment, MakeAppointment}};

constexpr wchar_t kServesName[] = L"plain-server-serves";

std::wstring KeyOf(const CLSID& id)
{
    wchar_t text[40] = {};
    StringFromGUID2(id, text, static_cast<int>(std::size(text)));
    return L"Software\\Classes\\CLSID\\" + std::wstring(text);
}

// Serves the classes until it is asked to quit.
int Serve(const std::vector<std::wstring>&)
{
    DWORD cookies[std::size(kClasses)] = {};
    for (std::size_t i = 0; i < std::size(kClasses); ++i)
    {
        ComPtr<IClassFactory> factory;
        *factory.GetAddressOf() = new PlainFactory(kClasses[i].make);
        if (FAILED(CoRegisterClassObject(*kClasses[i].id,
                                         factory.Get(),
                                         CLSCTX_LOCAL_SERVER,
                                         REGCLS_MULTIPLEUSE,
                                         &cookies[i])))
            return 1;
    }
    Signal(kServesName).Set();
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
    for (const DWORD cookie : cookies)
        CoRevokeClassObject(cookie);
    return 0;
}
const RegisterRole serve(L"plain-server", &Serve);
} // namespace

PlainServer::PlainServer()
{
    // The runtime looks for the class objects of a running process under the same key that would
    // start one.
    const std::wstring command = RoleCommandLine(L"plain-server");
    for (const PlainClass& plain : kClasses)
        RegSetKeyValueW(HKEY_CURRENT_USER,
                        (KeyOf(*plain.id) + L"\\LocalServer32").c_str(),
                        nullptr,
                        REG_SZ,
                        command.c_str(),
                        static_cast<DWORD>((command.size() + 1) * sizeof(wchar_t)));
    const Signal serves(kServesName);
    m_process = StartProgram(command);
    EXPECT_TRUE(serves.Wait());
    m_appointment = MakeInServer<INAppointment>(kPlainAppointment);
    m_calendar = MakeInServer<INCalendar>(kPlainCalendar);
}

PlainServer::~PlainServer()
{
    m_appointment.Reset();
    m_calendar.Reset();
    EndProcess(m_process.process.Get(), m_process.id);
    for (const PlainClass& plain : kClasses)
        SHDeleteKeyW(HKEY_CURRENT_USER, KeyOf(*plain.id).c_str());
}
