#include "endtoend/StoreClient.h"

#include "platform/SafeArray.h"

#include <cstdio>
#include <functional>
#include <map>

using Microsoft::WRL::ComPtr;

namespace
{
struct UserText
{
    const char* name;
    HRESULT (STDMETHODCALLTYPE INUserProperties::*get)(BSTR*);
};

constexpr UserText kUserTexts[] = {
    {"Account", &INUserProperties::get_Account},
    {"AddressType", &INUserProperties::get_AddressType},
    {"DisplayName", &INUserProperties::get_DisplayName},
    {"Company", &INUserProperties::get_Company},
    {"EmailAddress", &INUserProperties::get_EmailAddress},
    {"FirstName", &INUserProperties::get_FirstName},
    {"LastName", &INUserProperties::get_LastName},
    {"OfficeLocation", &INUserProperties::get_OfficeLocation},
    {"SMTPAddress", &INUserProperties::get_SMTPAddress},
    {"TransmitableDisplayName", &INUserProperties::get_TransmitableDisplayName},
};

void Print(const std::string& text)
{
    DWORD written = 0;
    WriteFile(GetStdHandle(STD_OUTPUT_HANDLE),
              text.data(),
              static_cast<DWORD>(text.size()),
              &written,
              nullptr);
}

std::string ResultOf(HRESULT result)
{
    char text[9] = {};
    std::snprintf(text, sizeof text, "%08lX", static_cast<unsigned long>(result));
    return text;
}

// A text of the store as one line of UTF-8; a null one as "(null)".
std::string OneLine(BSTR text)
{
    if (!text)
        return "(null)";
    const int length = static_cast<int>(SysStringLen(text));
    std::string bytes(static_cast<std::size_t>(length) * 3, '\0');
    bytes.resize(static_cast<std::size_t>(WideCharToMultiByte(
        CP_UTF8, 0, text, length, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr)));
    std::string line;
    for (const char letter : bytes)
        line += letter == '\r'   ? "\\r"
                : letter == '\n' ? "\\n"
                : letter == '\\' ? "\\\\"
                                 : std::string(1, letter);
    return line;
}

class StoreClient
{
  public:
    // Takes the next step of the list; false where it is none, or where there is no server.
    bool Take(const std::vector<std::wstring>& steps, std::size_t& next)
    {
        const std::wstring step = steps[next++];
        if (!Service())
            return false;
        const auto argument = [&] { return next < steps.size() ? steps[next++] : std::wstring(); };
        if (step == L"begin")
            return true;
        if (step == L"factory")
            UseFactory();
        else if (step == L"start")
            Print("start " + ResultOf(Service()->StartService(Bstr(argument()).Get())) + "\n");
        else if (step == L"stop")
            Print("stop " + ResultOf(Service()->StopService()) + "\n");
        else if (step == L"user")
            AskForUser();
        else if (step == L"make-user")
            MakeUser();
        else if (step == L"texts")
            PrintTexts();
        else if (step == L"folders")
            PrintFolders();
        else if (step == L"contacts")
            PrintContacts();
        else if (step == L"set")
            Signal(argument()).Set();
        else if (step == L"wait")
            return Signal(argument()).Wait();
        else if (step == L"vanish")
            TerminateProcess(GetCurrentProcess(), kVanished);
        else
            return false;
        return true;
    }

  private:
    INPersonalInformationService* Service()
    {
        if (!m_service)
            m_service =
                MakeInServer<INPersonalInformationService>(CLSID_NPersonalInformationService);
        return m_service.Get();
    }

    void UseFactory()
    {
        const auto factory = MakeInServer<INObjectFactory>(CLSID_NObjectFactory64);
        ComPtr<IUnknown> object;
        const HRESULT result =
            factory->CreateInstance(CLSID_NPersonalInformationService, object.GetAddressOf());
        if (object)
            object.As(&m_service);
        Print("factory " + ResultOf(result) + "\n");
    }

    void AskForUser()
    {
        const HRESULT result = Service()->GetUserProperties(m_user.ReleaseAndGetAddressOf());
        Print("user " + ResultOf(result) + (m_user ? " object\n" : " none\n"));
    }

    void MakeUser()
    {
        const HRESULT result =
            CoCreateInstance(CLSID_NUserProperties,
                             nullptr,
                             CLSCTX_LOCAL_SERVER,
                             IID_INUserProperties,
                             reinterpret_cast<void**>(m_user.ReleaseAndGetAddressOf()));
        Print("make-user " + ResultOf(result) + "\n");
    }

    void PrintTexts()
    {
        for (const UserText& row : kUserTexts)
        {
            Bstr text;
            const HRESULT result = m_user ? (m_user.Get()->*row.get)(text.Put()) : E_POINTER;
            Print(std::string(row.name) + ' ' +
                  (result == S_OK ? OneLine(text.Get()) : ResultOf(result)) + "\n");
        }
    }

    void PrintFolders()
    {
        UniqueSafeArray array;
        const HRESULT result = Service()->GetAddressBookRootFolders(array.Put());
        Print("folders " + ResultOf(result) + "\n");
        PrintRecords<_tagFolderInfo>(array.Get(), [](const _tagFolderInfo& record) {
            return OneLine(record.bstrEntryID) + ' ' + std::to_string(record.lItemCount) + ' ' +
                   std::to_string(record.vbIsDefault) + ' ' + OneLine(record.bstrDisplayName);
        });
    }

    void PrintContacts()
    {
        ComPtr<INAddressBook> book;
        HRESULT result = Service()->GetAddressBook(book.GetAddressOf());
        UniqueSafeArray array;
        if (book)
            result = book->GetAllItemsWithBasicInfo(array.Put());
        Print("contacts " + ResultOf(result) + (book ? "\n" : " no book\n"));
        PrintRecords<_tagBasicContactInfo>(array.Get(), [](const _tagBasicContactInfo& record) {
            char modified[40] = {};
            std::snprintf(modified, sizeof modified, "%.10g", record.dbLastModify);
            return OneLine(record.bstrEntryID) + ' ' + OneLine(record.bstrParentFolderEntryID) +
                   ' ' + modified;
        });
    }

    // A line for each record of the array.
    template <typename Record>
    static void PrintRecords(SAFEARRAY* array,
                             const std::function<std::string(const Record&)>& lineOf)
    {
        VARTYPE type = VT_EMPTY;
        LONG first = 0;
        LONG last = -1;
        if (!array || FAILED(SafeArrayGetVartype(array, &type)) || type != VT_RECORD ||
            SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetLBound(array, 1, &first)) ||
            first != 0 || FAILED(SafeArrayGetUBound(array, 1, &last)) ||
            SafeArrayGetElemsize(array) != sizeof(Record))
        {
            Print("no array of records\n");
            return;
        }
        const SafeArrayAccess<Record> records(array);
        for (LONG i = 0; i <= last; ++i)
            Print(lineOf(records.Data()[i]) + "\n");
    }

    ComPtr<INPersonalInformationService> m_service;
    ComPtr<INUserProperties> m_user;
};

int RunStoreClient(const std::vector<std::wstring>& steps)
{
    StoreClient client;
    for (std::size_t next = 0; next < steps.size();)
    {
        if (!client.Take(steps, next))
            return 1;
    }
    return 0;
}
const RegisterRole storeClient(L"store-client", &RunStoreClient);
} // namespace

std::wstring StoreClientCommandLine(const std::wstring& steps)
{
    return RoleCommandLine(L"store-client", steps);
}

ServerKeeper::ServerKeeper() : m_client(StoreClientCommandLine(L"begin set kept wait leave"))
{
    EXPECT_TRUE(m_kept.Wait());
}

ServerKeeper::~ServerKeeper()
{
    m_leave.Set();
    EXPECT_EQ(0u, m_client.Wait(60000).exitCode);
}

std::string TakeSteps(const std::wstring& steps)
{
    const ProgramResult result = RunAndRead(StoreClientCommandLine(steps));
    EXPECT_EQ(0u, result.exitCode) << result.output << result.errors;
    return result.output;
}
