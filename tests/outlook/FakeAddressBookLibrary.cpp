// A stand-in for the library of the Windows Address Book, for tests of the proxies and of the
// provider. Reports every call, the last release of every object and its own unloading to the
// program that loaded it.
#include "tests/outlook/FakeAddressBook.h"

#include "platform/WindowsHeaders.h"

#include <cstdio>
#include <cstring>
#include <new>

// The interfaces have many operations that no test reaches.
#pragma GCC diagnostic ignored "-Wunused-parameter"

namespace
{
template <typename Function> Function* OfTheProgram(const char* name)
{
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(nullptr), name)));
}

void Record(const char* call)
{
    if (auto* const record = OfTheProgram<decltype(FakeBookRecord)>("FakeBookRecord"))
        record(call);
}

bool Fails(FakeBookFailure step)
{
    auto* const now = OfTheProgram<decltype(FakeBookFailureNow)>("FakeBookFailureNow");
    return now && now() == step;
}

// The entry ID of the personal address book.
constexpr BYTE kPersonalBook[] = {0x01, 0x02, 0x03, 0x04, 0x05};

// One reference count for all; reports the last release.
template <typename Interface> class Counted : public Interface
{
  public:
    STDMETHODIMP QueryInterface(REFIID, void** result) override
    {
        *result = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = --m_references;
        if (left == 0)
        {
            Record(m_releaseText);
            delete this;
        }
        return left;
    }

  protected:
    explicit Counted(const char* releaseText) : m_releaseText(releaseText) {}
    virtual ~Counted() = default;

  private:
    const char* m_releaseText;
    ULONG m_references = 1;
};

#define UNREACHED                                                                                  \
    override                                                                                       \
    {                                                                                              \
        return E_NOTIMPL;                                                                          \
    }

class Container final : public Counted<IABContainer>
{
  public:
    Container() : Counted("release container") {}
    MAPI_IMAPIPROP_METHODS(UNREACHED)
    MAPI_IMAPICONTAINER_METHODS(UNREACHED)
    MAPI_IABCONTAINER_METHODS(UNREACHED)
};

class BookWithoutOperations : public Counted<IAddrBook>
{
  public:
    using Counted::Counted;
    MAPI_IMAPIPROP_METHODS(UNREACHED)
    MAPI_IADDRBOOK_METHODS(UNREACHED)
};

class Book final : public BookWithoutOperations
{
  public:
    Book() : BookWithoutOperations("release address book") {}
    STDMETHODIMP GetPAB(ULONG* size, LPENTRYID* entry) override
    {
        Record("GetPAB");
        if (Fails(FakeBookFailure::PersonalBookFails))
            return E_ACCESSDENIED;
        if (Fails(FakeBookFailure::PersonalBookGivesNull))
            return S_OK;
        *size = sizeof kPersonalBook;
        *entry = static_cast<LPENTRYID>(CoTaskMemAlloc(sizeof kPersonalBook));
        std::memcpy(*entry, kPersonalBook, sizeof kPersonalBook);
        return S_OK;
    }
    STDMETHODIMP OpenEntry(ULONG size,
                           LPENTRYID entry,
                           LPCIID interfaceId,
                           ULONG flags,
                           ULONG* objectType,
                           LPUNKNOWN* object) override
    {
        const bool isPersonalBook =
            size == sizeof kPersonalBook && std::memcmp(entry, kPersonalBook, size) == 0;
        char text[80];
        std::snprintf(text,
                      sizeof text,
                      "OpenEntry %s, interface %s, flags %lu",
                      isPersonalBook ? "personal book" : "something else",
                      interfaceId ? "given" : "null",
                      flags);
        Record(text);
        if (Fails(FakeBookFailure::EntryFails))
            return MAPI_E_NOT_FOUND;
        if (Fails(FakeBookFailure::EntryGivesNull))
            return S_OK;
        *objectType = MAPI_ABCONT;
        *object = new Container;
        return S_OK;
    }
};

class WabObjectWithoutOperations : public Counted<IWABObject>
{
  public:
    using Counted::Counted;
    WAB_IWABOBJECT_METHODS(UNREACHED)
};

class WabObject final : public WabObjectWithoutOperations
{
  public:
    WabObject() : WabObjectWithoutOperations("release IWABObject") {}
    STDMETHODIMP FreeBuffer(LPVOID buffer) override
    {
        Record("FreeBuffer");
        CoTaskMemFree(buffer);
        return S_OK;
    }
};
} // namespace

extern "C" HRESULT WINAPI FakeWABOpen(LPADRBOOK* book,
                                      LPWABOBJECT* object,
                                      LPWAB_PARAM parameters,
                                      DWORD reserved)
{
    char text[64];
    std::snprintf(text,
                  sizeof text,
                  "WABOpen parameters %s, reserved %lu",
                  parameters ? "given" : "null",
                  reserved);
    Record(text);
    if (Fails(FakeBookFailure::OpenFails))
        return E_ACCESSDENIED;
    if (!Fails(FakeBookFailure::OpenGivesNoBook))
        *book = new Book;
    if (!Fails(FakeBookFailure::OpenGivesNoObject))
        *object = new WabObject;
    return S_OK;
}

extern "C" HRESULT WINAPI
FakeMAPILogonEx(ULONG_PTR uiParam, LPTSTR profile, LPTSTR password, ULONG flags, LPMAPISESSION*)
{
    char text[120];
    std::snprintf(text,
                  sizeof text,
                  "MAPILogonEx %llu %ls %ls %lu",
                  static_cast<unsigned long long>(uiParam),
                  profile,
                  password,
                  flags);
    Record(text);
    return MAPI_E_LOGON_FAILED;
}

extern "C" SCODE WINAPI FakeAllocateBuffer(ULONG size, LPVOID* buffer)
{
    Record("MAPIAllocateBuffer");
    *buffer = CoTaskMemAlloc(size);
    return S_OK;
}

extern "C" SCODE WINAPI FakeAllocateMore(ULONG, LPVOID parent, LPVOID* buffer)
{
    Record("MAPIAllocateMore");
    *buffer = parent;
    return S_OK;
}

extern "C" HRESULT WINAPI FakeWrapCompressedRTFStream(IStream*, ULONG flags, IStream**)
{
    Record(flags == 2 ? "WrapCompressedRTFStream 2" : "WrapCompressedRTFStream");
    return MAPI_E_CORRUPT_DATA;
}

extern "C" HRESULT WINAPI FakeHrGetOneProp(IMAPIProp*, ULONG tag, LPSPropValue*)
{
    Record(tag == PR_ENTRYID ? "HrGetOneProp PR_ENTRYID" : "HrGetOneProp");
    return MAPI_E_NOT_FOUND;
}

extern "C" HRESULT WINAPI
FakeHrQueryAllRows(IMAPITable*, LPSPropTagArray, LPSRestriction, LPSSortOrderSet, LONG, LPSRowSet*)
{
    Record("HrQueryAllRows");
    return S_OK;
}

extern "C" void WINAPI FakeNothing() {}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds)
{
    if (reason == DLL_PROCESS_DETACH && !processEnds)
        Record("unload");
    return TRUE;
}
