#include "tests/localstore/EntryWriter.h"

#include "tests/localstore/KilledWriter.h"
#include "tests/localstore/OwnBook.h"

#include <cstdio>
#include <exception>

namespace
{
using Microsoft::WRL::ComPtr;

constexpr ULONG kEmails = 0x3A56101F;

struct EntryTexts
{
    std::wstring name;
    std::wstring comment; // too large for the row of its property
    std::wstring emails[2];
    std::wstring title; // of unchanged ones alone
};

EntryTexts TextsOf(int number, bool isChanged)
{
    const std::wstring digits = std::to_wstring(number);
    const int letter = (number + (isChanged ? 13 : 0)) % 26;
    return {L"Entry " + digits,
            std::wstring(12000 + static_cast<size_t>(number % 7) * 1000,
                         static_cast<wchar_t>(L'a' + letter)),
            {digits + L"@x", isChanged ? L"changed@x" : L"first@x"},
            L"Title " + digits};
}

bool Fill(IMAPIProp& entry, int number, bool isChanged)
{
    EntryTexts texts = TextsOf(number, isChanged);
    wchar_t* emails[] = {texts.emails[0].data(), texts.emails[1].data()};
    SPropValue values[4]{};
    values[0].ulPropTag = PR_DISPLAY_NAME_W;
    values[0].Value.lpszW = texts.name.data();
    values[1].ulPropTag = PR_COMMENT_W;
    values[1].Value.lpszW = texts.comment.data();
    values[2].ulPropTag = kEmails;
    values[2].Value.MVszW = {2, emails};
    values[3].ulPropTag = PR_TITLE_W;
    values[3].Value.lpszW = texts.title.data();
    SPropTagArray title{1, {PR_TITLE_W}};
    return isChanged ? entry.SetProps(3, values, nullptr) == S_OK &&
                           entry.DeleteProps(&title, nullptr) == S_OK
                     : entry.SetProps(4, values, nullptr) == S_OK;
}

bool Do(EntryWork work, OwnBook& book, IMAPIProp& entry)
{
    switch (work)
    {
    case EntryWork::Save:
        return entry.SaveChanges(KEEP_OPEN_READWRITE) == S_OK;
    case EntryWork::Change:
        return entry.SaveChanges(FORCE_SAVE) == S_OK;
    case EntryWork::Delete:
        return book.Delete(EntryIdOf(&entry)) == S_OK;
    }
    return false;
}

// Does it, with the stop armed or not, and tells.
bool DoAndTell(
    EntryWork work, OwnBook& book, IMAPIProp& entry, int number, StopBefore step, int skip)
{
    Bytes id = work == EntryWork::Delete ? EntryIdOf(&entry) : Bytes();
    ArmStop(step, skip);
    const bool isDone = Do(work, book, entry);
    DisarmStop();
    if (!isDone)
        return false;
    if (id.empty())
        id = EntryIdOf(&entry);
    TellDone(
        NameOf(work), number, {static_cast<ULONG>(id.size()), reinterpret_cast<BYTE*>(id.data())});
    return true;
}

bool Write(OwnBook& book, int number, StopBefore step, int skip)
{
    const ComPtr<IMAPIProp> entry = book.NewEntry();
    if (!entry || !Fill(*entry.Get(), number, false))
        return false;
    const EntryWork last = WorkOfWritten(number);
    const StopBefore stopInSave = last == EntryWork::Save ? step : StopBefore::Nothing;
    if (!DoAndTell(EntryWork::Save, book, *entry.Get(), number, stopInSave, skip))
        return false;
    if (last == EntryWork::Save)
        return true;
    if (last == EntryWork::Change && !Fill(*entry.Get(), number, true))
        return false;
    return DoAndTell(last, book, *entry.Get(), number, step, skip);
}
} // namespace

EntryWork WorkOfWritten(int number)
{
    constexpr EntryWork kWorks[] = {EntryWork::Save, EntryWork::Change, EntryWork::Delete};
    return kWorks[number % 3];
}

const char* NameOf(EntryWork work)
{
    constexpr const char* kNames[] = {"save", "change", "delete"};
    return kNames[static_cast<int>(work)];
}

PropertyMap PropertiesOfWritten(int number, bool isChanged)
{
    const EntryTexts texts = TextsOf(number, isChanged);
    PropertyMap properties;
    properties[PROP_ID(PR_DISPLAY_NAME_W)] = {PT_UNICODE, texts.name};
    properties[PROP_ID(PR_COMMENT_W)] = {PT_UNICODE, texts.comment};
    properties[PROP_ID(kEmails)] = {PT_MV_UNICODE,
                                    std::vector<std::wstring>{texts.emails[0], texts.emails[1]}};
    if (!isChanged)
        properties[PROP_ID(PR_TITLE_W)] = {PT_UNICODE, texts.title};
    return properties;
}

int RunEntryWriter(
    const std::wstring& path, int first, int step, int skip, int armAfter, int checkpoint)
{
    try
    {
        InstallStoppingVfs();
        OwnBook book(path);
        book.Store().Execute("PRAGMA wal_autocheckpoint = " + std::to_string(checkpoint));
        for (int i = 0;; ++i)
        {
            const auto stop = i < armAfter ? StopBefore::Nothing : static_cast<StopBefore>(step);
            if (!Write(book, first + i, stop, skip))
                return 1;
        }
    }
    catch (const std::exception& error)
    {
        std::printf("failed: %s\n", error.what());
        std::fflush(stdout);
        return 1;
    }
}
