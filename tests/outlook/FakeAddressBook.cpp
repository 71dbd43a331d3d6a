#include "tests/outlook/FakeAddressBook.h"

#include "platform/WindowsHeaders.h"

namespace
{
FakeAddressBook* g_book = nullptr;

std::wstring BesideTheProgram(const wchar_t* name)
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring text = path;
    return text.substr(0, text.rfind(L'\\') + 1) + name;
}
} // namespace

extern "C" __declspec(dllexport) void FakeBookRecord(const char* call)
{
    if (g_book)
        g_book->m_calls.emplace_back(call);
}

extern "C" __declspec(dllexport) FakeBookFailure FakeBookFailureNow()
{
    return g_book ? g_book->m_failure : FakeBookFailure::None;
}

FakeAddressBook::FakeAddressBook(FakeBookFailure failure) : m_failure(failure)
{
    g_book = this;
}

FakeAddressBook::~FakeAddressBook()
{
    g_book = nullptr;
}

std::wstring FakeAddressBook::Path()
{
    return BesideTheProgram(L"fake_address_book.dll");
}

std::wstring FakeAddressBook::BarePath()
{
    return BesideTheProgram(L"fake_address_book_bare.dll");
}
