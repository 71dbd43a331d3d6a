#include "icalendar/CalendarFile.h"

#include "icalendar/AppointmentMapping.h"
#include "platform/FileIo.h"
#include "support/TestPaths.h"
#include "tests/icalendar/SavedText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace
{

namespace fs = std::filesystem;

std::string BytesOf(const fs::path& path)
{
    std::string bytes;
    EXPECT_TRUE(ReadWholeFile(path.wstring(), bytes)) << path;
    return bytes;
}

template <typename T> std::vector<std::wstring> IdsOf(CVComponentIndex<T>& index)
{
    std::vector<T*> list;
    index.Snapshot(list);
    std::vector<std::wstring> ids;
    for (const T* component : list)
        ids.push_back(component->Id());
    return ids;
}

std::vector<fs::path> FilesIn(const fs::path& folder, const char* extension)
{
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
    {
        if (entry.is_regular_file() && entry.path().extension() == extension)
            files.push_back(entry.path());
    }
    std::ranges::sort(files);
    return files;
}

const fs::path kSamples = TestData() / "ics";

// A folder of its own below the system's for temporary files, gone at the end.
class TemporaryFolder
{
  public:
    TemporaryFolder() : m_path(fs::temp_directory_path() / NewGuidText())
    {
        fs::create_directory(m_path);
    }
    ~TemporaryFolder()
    {
        std::error_code ignored;
        fs::remove_all(m_path, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    const fs::path& Path() const { return m_path; }

  private:
    fs::path m_path;
};

// --- Samples with their expected bytes ---------------------------------------------------------

class CalendarSampleTest : public testing::TestWithParam<std::string>
{
};

TEST_P(CalendarSampleTest, IsSavedInTheExpectedBytes)
{
    const std::string source = BytesOf(kSamples / (GetParam() + ".ics"));
    EXPECT_EQ(SavedTextOf(source), BytesOf(kSamples / (GetParam() + ".saved")));
}

TEST_P(CalendarSampleTest, KeepsInASecondSaveWhatTheFirstKept)
{
    const std::string once = BytesOf(kSamples / (GetParam() + ".saved"));
    EXPECT_EQ(WithoutGrowingQuotes(SavedTextOf(once)), WithoutGrowingQuotes(once));
}

std::vector<std::string> SampleNames()
{
    std::vector<std::string> names;
    for (const fs::path& path : FilesIn(kSamples, ".ics"))
        names.push_back(path.stem().string());
    return names;
}

INSTANTIATE_TEST_SUITE_P(AllSamples, CalendarSampleTest, testing::ValuesIn(SampleNames()));

TEST(CalendarFileTest, ThereAreSamplesOfEveryKind)
{
    EXPECT_GE(SampleNames().size(), 14u);
}

// --- Calendars from elsewhere ------------------------------------------------------------------

std::optional<fs::path> FolderOfRealCalendars()
{
    const fs::path folder = SharedData() / "ics";
    std::error_code error;
    return fs::is_directory(folder, error) ? std::optional(folder) : std::nullopt;
}

TEST(CalendarFileTest, RealCalendarsKeepInASecondSaveWhatTheFirstKept)
{
    const std::optional<fs::path> folder = FolderOfRealCalendars();
    if (!folder)
    {
        std::cout << "No real calendars: neither PIM_SHARED_DATA nor ../shared/data names a folder "
                     "with them. The samples in tests/data/ics are tested.\n";
        return;
    }
    const std::vector<fs::path> files = FilesIn(*folder, ".ics");
    EXPECT_FALSE(files.empty());
    std::size_t eventCount = 0;
    for (const fs::path& path : files)
    {
        const std::string bytes = BytesOf(path);
        CCalendarFile file(path.wstring(), 0);
        file.LoadFromText(bytes);
        std::vector<CVEvent*> events;
        file.Events().Snapshot(events);
        eventCount += events.size();
        for (const CVEvent* event : events)
        {
            const AppointmentView values = AppointmentFromEvent(file, *event);
            EXPECT_EQ(values.entityId, event->Fields().uid);
        }
        EXPECT_TRUE(SurvivesASave(file)) << path;
        const std::string once = SavedTextOf(bytes);
        EXPECT_EQ(WithoutGrowingQuotes(SavedTextOf(once)), WithoutGrowingQuotes(once)) << path;
    }
    EXPECT_GT(eventCount, 0u);
    std::cout << files.size() << " real calendars with " << eventCount << " events\n";
}

// --- The file itself ---------------------------------------------------------------------------

TEST(CalendarFileTest, KeepsPathAndFlag)
{
    const CCalendarFile file(L"C:\\folder\\Work.ics", 1);
    EXPECT_EQ(file.Path(), L"C:\\folder\\Work.ics");
    EXPECT_EQ(file.DefaultFlag(), 1);
    EXPECT_EQ(file.GetName(), L"");
    EXPECT_EQ(file.SaveToText(), "");
}

TEST(CalendarFileTest, LoadsWhatItSaved)
{
    const TemporaryFolder folder;
    const fs::path path = folder.Path() / "own.ics";
    const std::string bytes = BytesOf(kSamples / "own.ics");
    ASSERT_TRUE(SaveWholeFile(path.wstring(), bytes));

    const ScopedGuidSource guid([] { return L"{00000000-0000-0000-0000-000000000001}"; });
    CCalendarFile file(path.wstring(), 0);
    EXPECT_EQ(file.Load(), 1);
    EXPECT_EQ(IdsOf(file.Events()),
              (std::vector<std::wstring>{L"{A6B1C4F0-0000-4000-8000-000000000001}"}));
    EXPECT_EQ(IdsOf(file.TimeZones()), (std::vector<std::wstring>{L"W. Europe Standard Time"}));

    EXPECT_EQ(file.Save(), 1);
    EXPECT_EQ(BytesOf(path), bytes);
    EXPECT_TRUE(file.Events().RemoveByUid(L"{A6B1C4F0-0000-4000-8000-000000000001}"));
    EXPECT_EQ(file.Save(), 1);
    EXPECT_LT(BytesOf(path).size(), bytes.size());
    EXPECT_TRUE(BytesOf(path).ends_with("END:VTIMEZONE\r\nEND:VCALENDAR\r\n"));
}

TEST(CalendarFileTest, AFileThatDoesNotOpenLeavesTheTreeEmpty)
{
    const TemporaryFolder folder;
    CCalendarFile missing((folder.Path() / "missing.ics").wstring(), 0);
    EXPECT_EQ(missing.Load(), 0);
    EXPECT_FALSE(missing.FirstChild());

    fs::create_directory(folder.Path() / "folder.ics");
    CCalendarFile directory((folder.Path() / "folder.ics").wstring(), 0);
    EXPECT_EQ(directory.Load(), 0);
    EXPECT_EQ(directory.Save(), 0);
}

TEST(CalendarFileTest, SavingIntoAMissingFolderFails)
{
    const TemporaryFolder folder;
    const CCalendarFile file((folder.Path() / "none" / "a.ics").wstring(), 0);
    EXPECT_EQ(file.Save(), 0);
}

TEST(CalendarFileTest, ASecondLoadAddsToTheTree)
{
    CCalendarFile file(L"", 0);
    file.LoadFromText("BEGIN:VEVENT\nUID:1\nEND:VEVENT\nBEGIN:VCALENDAR\n");
    // The calendar that was left open goes on being the deepest open component.
    file.LoadFromText("BEGIN:VEVENT\nUID:2\nEND:VEVENT\nEND:VCALENDAR\n");
    EXPECT_EQ(IdsOf(file.Events()), (std::vector<std::wstring>{L"1", L"2"}));
    ASSERT_TRUE(file.FirstChild()->NextSibling());
    EXPECT_EQ(file.FirstChild()->NextSibling()->GetName(), L"VCALENDAR");
}

TEST(CalendarFileTest, WithoutALastLineBreakTheCalendarIsNeverClosed)
{
    CCalendarFile file(L"", 0);
    file.LoadFromText("BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:1\nEND:VEVENT\n"
                      "BEGIN:VTIMEZONE\nTZID:Z\nEND:VTIMEZONE\nEND:VCALENDAR");
    EXPECT_TRUE(IdsOf(file.Events()).empty());
    EXPECT_TRUE(IdsOf(file.TimeZones()).empty());
    EXPECT_EQ(file.SaveToText(), "");
}

TEST(CalendarFileTest, AFileThatWasNeverClosedIsSavedEmpty)
{
    const TemporaryFolder folder;
    const fs::path path = folder.Path() / "cut.ics";
    ASSERT_TRUE(SaveWholeFile(path.wstring(), "BEGIN:VCALENDAR\r\nEND:VCALENDAR"));
    CCalendarFile file(path.wstring(), 0);
    EXPECT_EQ(file.Load(), 1);
    EXPECT_EQ(file.Save(), 1);
    EXPECT_EQ(BytesOf(path), "");
}

TEST(CalendarFileTest, AnEmptyLineBehindAnEndClosesOneMore)
{
    CCalendarFile file(L"", 0);
    file.LoadFromText("BEGIN:VCALENDAR\nBEGIN:VEVENT\nUID:1\nEND:VEVENT\n\n"
                      "BEGIN:VEVENT\nUID:2\nEND:VEVENT\nEND:VCALENDAR\n");
    // The second delivery of the first END closed the calendar.
    EXPECT_EQ(IdsOf(file.Events()), (std::vector<std::wstring>{L"1", L"2"}));
    ASSERT_TRUE(file.FirstChild());
    EXPECT_EQ(file.FirstChild()->GetName(), L"VCALENDAR");
    ASSERT_TRUE(file.FirstChild()->NextSibling());
    EXPECT_EQ(file.FirstChild()->NextSibling()->GetName(), L"VEVENT");
    EXPECT_FALSE(file.FirstChild()->NextSibling()->NextSibling());
}

TEST(CalendarFileTest, EachEmptyLineBehindABeginOpensOneMore)
{
    CCalendarFile file(L"", 0);
    file.LoadFromText("BEGIN:VEVENT\n\n\nUID:1\nEND:\nEND:\nEND:\n");
    const CVObject* node = file.FirstChild();
    for (int depth = 0; depth < 3; ++depth)
    {
        ASSERT_TRUE(node) << depth;
        EXPECT_EQ(static_cast<const CVEvent*>(node)->Id(), depth == 2 ? L"1" : L"");
        EXPECT_FALSE(node->NextSibling());
        node = node->FirstChild();
    }
    EXPECT_FALSE(node);
    EXPECT_EQ(file.Events().Size(), 1u);
}

TEST(CalendarFileTest, EventsBehindAByteOrderMarkAreListed)
{
    CCalendarFile file(L"", 0);
    file.LoadFromText(BytesOf(kSamples / "byte_order_mark.ics"));
    EXPECT_EQ(IdsOf(file.Events()), (std::vector<std::wstring>{L"1"}));
    EXPECT_EQ(file.FirstChild()->GetName(), L"VEVENT");
}

TEST(CalendarFileTest, ALongValueSurvivesItsSave)
{
    const std::string text =
        "BEGIN:VEVENT\nDTSTART;VALUE=DATE:20060508\nDESCRIPTION:" + std::string(5'000'000, 'x') +
        "\nEND:VEVENT\n";
    const std::string once = SavedTextOf(text);
    EXPECT_GT(once.size(), 5'000'000u);
    EXPECT_EQ(SavedTextOf(once), once);
}

TEST(CalendarFileTest, AMillionNestedEventsAreReadAndDropped)
{
    std::string text;
    for (int i = 0; i < 1'000'000; ++i)
        text += "BEGIN:VEVENT\n";
    CCalendarFile file(L"", 0);
    file.LoadFromText(text);
    EXPECT_EQ(file.Events().Size(), 0u);
    for (int i = 0; i < 1'000'000; ++i)
        file.AddLine(L"END:VEVENT");
    file.LoadFromText("");
    EXPECT_EQ(file.Events().Size(), 1u);
}

TEST(CalendarFileTest, ManyEmptyLinesBehindALongOneCostTheirSum)
{
    // Every empty line delivers the line before it again; here that is a million times a megabyte.
    const std::string text = "BEGIN:VEVENT\nUID:" + std::string(1'000'000, 'x') +
                             std::string(1'000'000, '\n') + "END:VEVENT\n";
    CCalendarFile file(L"", 0);
    file.LoadFromText(text);
    ASSERT_EQ(file.Events().Size(), 1u);
}

TEST(CalendarFileTest, AnEventIsAddedToTheCalendarOfAFileOfEventsOutsideIt)
{
    CCalendarFile file(L"", 0);
    file.LoadFromText(BytesOf(kSamples / "standard_then_daylight.ics"));
    auto event = std::make_unique<CVEvent>();
    event->Edit().uid = L"new";
    EXPECT_TRUE(file.Events().Attach(std::move(event)));
    const std::string saved = file.SaveToText();
    EXPECT_LT(saved.find("UID:new\r\n"), saved.find("END:VCALENDAR\r\n"));
    EXPECT_GT(saved.find("UID:1@example.com\r\n"), saved.find("END:VCALENDAR\r\n"));
}

} // namespace
