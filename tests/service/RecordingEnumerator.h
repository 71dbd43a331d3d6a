// A table that records every call made to it and answers as it is told.
#pragma once

#include "service/Enumerator.h"
#include "tests/service/FakeItem.h"

#include <functional>
#include <list>
#include <string>
#include <vector>

using CallLog = std::vector<std::wstring>;

class RecordingEnumerator : public IEnumerator
{
  public:
    // The log must outlive the table; the name stands before each recorded call.
    RecordingEnumerator(std::wstring name, CallLog& log) : m_name(std::move(name)), m_log(log) {}
    ~RecordingEnumerator() override { Record(L"delete"); }

    // What the operations answer.
    Microsoft::WRL::ComPtr<INEntityItem> current;
    BOOL updateResult = TRUE;
    std::wstring addResult;
    std::wstring addFolderID;
    BOOL deleteResult = TRUE;
    bool hasItemList = true;
    std::list<ItemEntry> itemList;
    // Runs inside UpdateItem and AddItem, where a client's item object may call back.
    std::function<void()> duringWrite;

    void GetItemIDs() override { Record(L"GetItemIDs"); }
    void ResetItem() override { Record(L"ResetItem"); }
    void GetNextItem() override { Record(L"GetNextItem"); }
    void GetItemByID(const std::wstring& id) override { Record(L"GetItemByID " + id); }
    void GetCurrentItem(INEntityItem** item) override
    {
        Record(L"GetCurrentItem");
        if (current)
            current.CopyTo(item);
    }
    BOOL UpdateItem(INEntityItem* item) override
    {
        Record(L"UpdateItem " + EntityIDOf(item));
        if (duringWrite)
            duringWrite();
        return updateResult;
    }
    std::wstring AddItem(INEntityItem* item, std::wstring& folderID) override
    {
        Record(L"AddItem " + EntityIDOf(item));
        if (duringWrite)
            duringWrite();
        folderID = addFolderID;
        return addResult;
    }
    BOOL DeleteItem(const std::wstring& id) override
    {
        Record(L"DeleteItem " + id);
        return deleteResult;
    }
    BOOL GetItemList(std::list<ItemEntry>& entries) override
    {
        Record(L"GetItemList");
        if (!hasItemList)
            return FALSE;
        entries = itemList;
        return TRUE;
    }
    std::wstring ToInternalID(const std::wstring& id) override
    {
        Record(L"ToInternalID " + id);
        return L"table:" + id;
    }
    std::wstring ToClientID(const std::wstring& id) override
    {
        Record(L"ToClientID " + id);
        return id.empty() ? id : L"client:" + id;
    }

  private:
    void Record(const std::wstring& call) { m_log.push_back(m_name + L" " + call); }

    std::wstring m_name;
    CallLog& m_log;
};
