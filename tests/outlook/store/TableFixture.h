// A table of the engine over the recording store: what a logged-on provider has, a small table of
// appointments whose hooks a test can change, and texts of what comes out.
#pragma once

#include "outlook/store/ContentTable.h"
#include "outlook/store/MAPIProxcy.h"
#include "platform/Bstr.h"
#include "tests/recordingstore/RecordingStore.h"
#include "service/FakeItem.h"
#include "service/ItemAccess.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

// Session, store and helper of a running provider.
class StoreSession
{
  public:
    StoreSession()
    {
        auto proxy = std::make_unique<CMAPIProxcy>();
        MAPIINIT_0 init = {0, 8} /* MAPI_NO_COINIT */;
        if (!proxy->Load(RecordingStore::Path(), &init))
            throw std::runtime_error("the recording store does not load");
        m_helper = std::make_unique<CMAPIHelper>(std::move(proxy));
        m_helper->Proxy().MAPILogonEx(0, nullptr, nullptr, 0, m_session.GetAddressOf());
    }
    ~StoreSession() { End(); }
    StoreSession(const StoreSession&) = delete;
    StoreSession& operator=(const StoreSession&) = delete;

    CMAPIHelper* Helper() { return m_helper.get(); }

    Microsoft::WRL::ComPtr<IMAPIFolder> OpenFolder(const std::vector<BYTE>& entryID)
    {
        return static_cast<IMAPIFolder*>(OpenEntry(entryID, MAPI_FOLDER).Get());
    }
    Microsoft::WRL::ComPtr<IMessage> OpenMessage(const std::vector<BYTE>& entryID)
    {
        return static_cast<IMessage*>(OpenEntry(entryID, MAPI_MESSAGE).Get());
    }

    // As a provider ends: whoever works with the helper is detached first.
    void End()
    {
        if (!m_helper)
            return;
        m_helper->Live().DetachAll();
        m_session.Reset();
        m_helper.reset();
    }

  private:
    // The object's own interface, open for writing.
    Microsoft::WRL::ComPtr<IUnknown> OpenEntry(std::vector<BYTE> entryID, ULONG wantedType)
    {
        ULONG type = 0;
        Microsoft::WRL::ComPtr<IUnknown> object;
        m_session->OpenEntry(static_cast<ULONG>(entryID.size()),
                             reinterpret_cast<ENTRYID*>(entryID.data()),
                             nullptr,
                             MAPI_BEST_ACCESS,
                             &type,
                             object.GetAddressOf());
        if (!object || type != wantedType)
            throw std::runtime_error("no such folder or message");
        return object;
    }

    std::unique_ptr<CMAPIHelper> m_helper;
    Microsoft::WRL::ComPtr<IMAPISession> m_session;
};

// Upper-case hexadecimal text.
inline std::wstring HexOf(const std::vector<BYTE>& bytes)
{
    std::wstring text;
    for (const BYTE value : bytes)
    {
        wchar_t digits[3];
        std::swprintf(digits, 3, L"%02X", value);
        text += digits;
    }
    return text;
}

// Appointments with a subject. Its hooks do the plain thing until a test says otherwise.
class TestTable : public CContentTable
{
  public:
    using CContentTable::CContentTable;

    bool makesItems = true;
    bool preparesWell = true;
    bool readsNothing = false;
    bool wantsAll = false;
    std::vector<ULONG> tags = {PR_LAST_MODIFICATION_TIME, PR_SUBJECT_W};
    std::function<Microsoft::WRL::ComPtr<INEntityItem>()> makeItem; // in place of an appointment
    std::function<void()> onFill;
    std::function<void(PropertyArray&)> onRead;
    std::function<std::wstring(const std::wstring&, DATE&)> resolve;
    std::function<Microsoft::WRL::ComPtr<IMAPIContainer>(const std::wstring&)> containerFor;
    std::vector<std::string> hooks; // the calls of hooks that a test follows

    using CContentTable::CreateEntity;
    using CContentTable::DeleteEntities;
    using CContentTable::LoadFolder;
    using CContentTable::m_entries;
    using CContentTable::m_folderKey;
    using CContentTable::m_pCurrentEntity;
    using CContentTable::NewItem;

  protected:
    bool IsWantedRow(const PropertyView& row) override
    {
        return wantsAll ||
               (row.Binary(0) && row.Text(1) && std::wstring(row.Text(1)) == L"IPM.Appointment");
    }
    std::vector<ULONG> GetPropertyNames() override
    {
        EXPECT_TRUE(m_pCurrentEntity);
        return tags;
    }
    void FillItem(INEntityItem& item, const PropertyView& values) override
    {
        EXPECT_TRUE(m_pCurrentEntity);
        hooks.push_back("fill " + std::to_string(values.Count()));
        if (onFill)
            onFill();
        const auto appointment = QueryItem<INAppointment>(&item);
        if (const FILETIME* const time = values.Time(0))
            item.put_LastModificationTime(CMAPIHelper::FileTimeToDate(*time));
        if (const wchar_t* const subject = values.Text(1); appointment && subject)
            appointment->put_Subject(Bstr(subject).Get());
    }
    Microsoft::WRL::ComPtr<INEntityItem> CreateItem() override
    {
        if (makeItem)
            return makeItem();
        return makesItems ? NewItem(CLSID_NAppointment) : nullptr;
    }
    PropertyArray ReadItem(INEntityItem& item, bool isNew) override
    {
        EXPECT_TRUE(m_pCurrentEntity);
        hooks.push_back(isNew ? "read new" : "read");
        PropertyArray values;
        const auto appointment = QueryItem<INAppointment>(&item);
        if (readsNothing || !appointment)
            return values;
        if (isNew)
            values.AddText(PR_MESSAGE_CLASS_W, L"IPM.Appointment");
        Bstr subject;
        appointment->get_Subject(subject.Put());
        values.AddText(PR_SUBJECT_W, TextOf(subject.Get()));
        if (onRead)
            onRead(values);
        return values;
    }
    bool PrepareEntity() override
    {
        EXPECT_TRUE(m_pCurrentEntity);
        hooks.push_back("prepare");
        return preparesWell && CContentTable::PrepareEntity();
    }
    std::wstring ResolveClientID(const std::wstring& rowEntryID,
                                 const SBinary& entryID,
                                 DATE& utcLastModified) override
    {
        return resolve ? resolve(rowEntryID, utcLastModified)
                       : CContentTable::ResolveClientID(rowEntryID, entryID, utcLastModified);
    }
    Microsoft::WRL::ComPtr<IMAPIContainer> GetContainerForID(const std::wstring& id) override
    {
        return containerFor ? containerFor(id) : CContentTable::GetContainerForID(id);
    }
};

inline std::wstring FolderIDOf(INEntityItem* item)
{
    Bstr text;
    item->get_FolderID(text.Put());
    return text ? TextOf(text.Get()) : L"null";
}
inline DATE LastModifiedOf(INEntityItem* item)
{
    DATE time = -1.0;
    item->get_LastModificationTime(&time);
    return time;
}
inline std::wstring SubjectOf(INEntityItem* item)
{
    Bstr text;
    const auto appointment = QueryItem<INAppointment>(item);
    if (!appointment)
        return L"no appointment";
    appointment->get_Subject(text.Put());
    return text ? TextOf(text.Get()) : L"null";
}

// A folder "calendar" with the messages "one", "two" and "three" of 1, 2 and 3 January 2024, and
// their subjects "One", "Two" and "Three". The record begins with the table.
class TableTest : public testing::Test
{
  protected:
    // DATE 45292 is 2024-01-01; a FILETIME counts 100 ns from 1601-01-01, which is DATE -109205.
    static constexpr DATE kFirstDay = 45292.0;
    static constexpr std::uint64_t kUnitsPerDay = 864'000'000'000;
    static std::uint64_t FileTimeOf(DATE whole)
    {
        return static_cast<std::uint64_t>(whole + 109205.0) * kUnitsPerDay;
    }

    TableTest()
    {
        Fill();
        Open();
    }
    void Fill()
    {
        store.AddUsualFolders();
        AddAppointment("one", L"One", kFirstDay);
        AddAppointment("two", L"Two", kFirstDay + 1);
        AddAppointment("three", L"Three", kFirstDay + 2);
        // Saves of the server happen on 10 January.
        store.SetClock(FileTimeOf(kFirstDay + 9), 0);
    }
    ~TableTest() override
    {
        Close();
        EXPECT_TRUE(store.IsClean()) << store.Complaints();
    }

    void AddAppointment(const char* name, std::wstring_view subject, DATE utcModified)
    {
        store.AddMessage(
            name,
            "calendar",
            StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.Appointment").Text(PR_SUBJECT_W, subject));
        store.SetTimes(name, FileTimeOf(utcModified), FileTimeOf(utcModified));
    }

    void Open()
    {
        session = std::make_unique<StoreSession>();
        folder = session->OpenFolder(store.EntryIdOf("calendar"));
        table = std::make_unique<TestTable>(folder.Get(), session->Helper());
        store.ClearRecord();
    }
    void Close()
    {
        table.reset();
        folder.Reset();
        session.reset();
    }
    // Loads, goes before the first item and begins the record anew.
    void Load()
    {
        table->GetItemIDs();
        table->ResetItem();
        store.ClearRecord();
    }

    std::wstring IdOf(const char* name) const { return HexOf(store.EntryIdOf(name)); }

    Microsoft::WRL::ComPtr<INEntityItem> Current() { return CurrentItem(*table); }
    // The subject of the current item; "none" without one.
    std::wstring CurrentSubject()
    {
        const auto item = Current();
        return item ? SubjectOf(item.Get()) : L"none";
    }
    // One step, as a client does it.
    std::wstring Next()
    {
        table->GetNextItem();
        return CurrentSubject();
    }
    // The steps from here to the end of the walk.
    std::vector<std::wstring> Rest()
    {
        std::vector<std::wstring> subjects;
        for (std::wstring subject = Next(); subject != L"none" && subjects.size() < 50;
             subject = Next())
            subjects.push_back(subject);
        return subjects;
    }
    std::vector<std::wstring> Walk()
    {
        table->ResetItem();
        return Rest();
    }
    std::list<ItemEntry> Entries()
    {
        std::list<ItemEntry> entries;
        EXPECT_EQ(1, table->GetItemList(entries));
        return entries;
    }
    std::vector<std::wstring> RowIDs()
    {
        std::vector<std::wstring> ids;
        for (const ItemEntry& entry : Entries())
            ids.push_back(entry.rowEntryID);
        return ids;
    }

    static Microsoft::WRL::ComPtr<INEntityItem> NewAppointment(const std::wstring& id,
                                                               const std::wstring& subject)
    {
        Microsoft::WRL::ComPtr<INEntityItem> item;
        CoCreateInstance(CLSID_NAppointment,
                         nullptr,
                         CLSCTX_ALL,
                         IID_INEntityItem,
                         reinterpret_cast<void**>(item.GetAddressOf()));
        item->put_EntityID(Bstr(id).Get());
        QueryItem<INAppointment>(item.Get())->put_Subject(Bstr(subject).Get());
        return item;
    }

    RecordingStore store;
    std::unique_ptr<StoreSession> session;
    Microsoft::WRL::ComPtr<IMAPIFolder> folder;
    std::unique_ptr<TestTable> table;
};
