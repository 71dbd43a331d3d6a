// What the tests over calendar files share: the lent folder, empty before each test.
#pragma once

#include "endtoend/CalendarFolder.h"

#include <gtest/gtest.h>

#include <memory>

class CalendarFilesTest : public testing::Test
{
  protected:
    static void SetUpTestSuite() { s_folder = std::make_unique<CalendarFolder>(); }
    static void TearDownTestSuite() { s_folder.reset(); }
    void SetUp() override { s_folder->Clear(); }

    static inline std::unique_ptr<CalendarFolder> s_folder;
};
