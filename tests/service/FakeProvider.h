// A provider that records what is asked of it and answers as it is told.
#pragma once

#include "service/Provider.h"
#include "tests/service/RecordingEnumerator.h"

#include <functional>
#include <string>

// Writes down its end.
class FakeIdentity final : public UserIdentity
{
  public:
    explicit FakeIdentity(CallLog& log) : m_log(log) {}
    ~FakeIdentity() override { m_log.push_back(L"identity delete"); }

  private:
    CallLog& m_log;
};

class FakeProvider : public IProvider
{
  public:
    explicit FakeProvider(CallLog& log) : m_log(log) {}
    ~FakeProvider() override
    {
        Record(L"delete");
        if (duringDelete)
            duringDelete();
    }

    bool hasUserProperties = true;
    bool hasAddressBook = true;
    bool hasGroups = true;
    bool hasCalendar = true;
    bool hasFolders = true;
    std::vector<OutlookFolderInfo> folders;
    // Prepares each table before it is handed out; told its name: "contacts", "groups",
    // "calendar", or the number of the enumerator's type.
    std::function<void(RecordingEnumerator&, const std::wstring&)> prepare;
    // Fills the identity before it is handed out.
    std::function<void(UserIdentity&)> prepareIdentity;
    // Runs at the end of the destructor.
    std::function<void()> duringDelete;

    std::unique_ptr<UserIdentity> GetUserProperties() override
    {
        Record(L"GetUserProperties");
        if (!hasUserProperties)
            return nullptr;
        auto identity = std::make_unique<FakeIdentity>(m_log);
        if (prepareIdentity)
            prepareIdentity(*identity);
        return identity;
    }
    std::unique_ptr<CAddressBookHandle> GetAddressBook() override
    {
        Record(L"GetAddressBook");
        if (!hasAddressBook)
            return nullptr;
        return std::make_unique<CAddressBookHandle>(Table(L"contacts"),
                                                    hasGroups ? Table(L"groups") : nullptr);
    }
    std::unique_ptr<CCalendarHandle> GetCalendar() override
    {
        Record(L"GetCalendar");
        return hasCalendar ? std::make_unique<CCalendarHandle>(Table(L"calendar")) : nullptr;
    }
    std::unique_ptr<IEnumerator> GetEnumerator(int type) override
    {
        Record(L"GetEnumerator " + std::to_wstring(type));
        return type >= ContactCategory && type <= Calendar ? Table(std::to_wstring(type)) : nullptr;
    }
    bool GetContactFolders(std::vector<OutlookFolderInfo>& output) override
    {
        Record(L"GetContactFolders");
        if (hasFolders)
            output = folders;
        return hasFolders;
    }
    bool GetCalendarFolders(std::vector<OutlookFolderInfo>&) override
    {
        Record(L"GetCalendarFolders");
        return false;
    }

  private:
    std::unique_ptr<RecordingEnumerator> Table(const std::wstring& name)
    {
        auto table = std::make_unique<RecordingEnumerator>(name, m_log);
        if (prepare)
            prepare(*table, name);
        return table;
    }
    void Record(const std::wstring& call) { m_log.push_back(L"provider " + call); }

    CallLog& m_log;
};
