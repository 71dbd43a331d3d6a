// What tests over every kind of item share: a message store, an address book and a calendar file
// with one item of each kind, stored anew before each test.
#pragma once

#include "endtoend/CalendarClient.h"
#include "endtoend/CalendarFolder.h"
#include "endtoend/EveryKind.h"
#include "endtoend/MessageStore.h"

#include <memory>

class StoredItemsTest : public testing::Test
{
  protected:
    static void SetUpTestSuite()
    {
        s_store = std::make_unique<MessageStore>(RecordArrays::LeftToTheRuntime);
        s_folder = std::make_unique<CalendarFolder>();
    }
    static void TearDownTestSuite()
    {
        s_folder.reset();
        s_store.reset();
    }
    static void StoreItems()
    {
        s_store->Load(kOneItemOfEachKind);
        s_folder->Clear();
        s_folder->Write(L"Work.ics", NumberedCalendar("Task", 1));
    }
    void SetUp() override { StoreItems(); }

    static inline std::unique_ptr<MessageStore> s_store;
    static inline std::unique_ptr<CalendarFolder> s_folder;
};
