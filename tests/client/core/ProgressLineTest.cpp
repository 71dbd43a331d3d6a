// What the running count writes on a terminal, when, and what is left of it.
#include "client/core/Progress.h"

#include "client/core/RecordedOutput.h"

#include <gmock/gmock.h>

#include <chrono>
#include <optional>
#include <thread>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
std::uint64_t nowMs = 0;

class ProgressLineTest : public testing::Test
{
  protected:
    ProgressLineTest()
    {
        nowMs = 5'000;
        m_progress.emplace(m_terminal, L"Reading contacts", [] { return nowMs; });
    }
    void StepAt(std::uint64_t ms)
    {
        nowMs = 5'000 + ms;
        m_progress->Step();
    }

    RecordedOutput m_terminal{true};
    std::optional<pim::Progress> m_progress;
};
} // namespace

TEST_F(ProgressLineTest, ShowsNothingOfShortWalks)
{
    StepAt(0);
    StepAt(150);
    StepAt(299);
    m_progress.reset();
    EXPECT_THAT(m_terminal.Texts(), IsEmpty());
}

TEST_F(ProgressLineTest, ShowsTheCountOver300MillisecondsEvery100)
{
    StepAt(10);
    StepAt(300);
    StepAt(399);
    StepAt(400);
    StepAt(499);
    StepAt(750);
    StepAt(849);
    StepAt(850);
    EXPECT_THAT(m_terminal.Texts(),
                ElementsAre(L"\r| Reading contacts: 2",
                            L"\r/ Reading contacts: 4",
                            L"\r- Reading contacts: 6",
                            L"\r\\ Reading contacts: 8"));
}

TEST_F(ProgressLineTest, TurnsRound)
{
    for (std::uint64_t turn = 0; turn < 5; ++turn)
        StepAt(300 + 100 * turn);
    ASSERT_EQ(5u, m_terminal.Texts().size());
    EXPECT_EQ(L"\r\\ Reading contacts: 4", m_terminal.Texts()[3]);
    EXPECT_EQ(L"\r| Reading contacts: 5", m_terminal.Texts()[4]);
}

TEST_F(ProgressLineTest, ClearsTheLineAtItsEnd)
{
    for (std::uint64_t item = 0; item < 10; ++item)
        StepAt(400 + 100 * item);
    m_progress.reset();
    ASSERT_EQ(11u, m_terminal.Texts().size());
    EXPECT_EQ(L"\r/ Reading contacts: 10", m_terminal.Texts()[9]);
    // As many blanks as the last line had characters, and back to its beginning.
    EXPECT_EQ(L"\r                      \r", m_terminal.Texts()[10]);
}

TEST_F(ProgressLineTest, IsSilentWhereNobodyWatches)
{
    const RecordedOutput file(false);
    {
        pim::Progress progress(file, L"Reading contacts", [] { return nowMs; });
        nowMs += 1'000;
        progress.Step();
        nowMs += 1'000;
        progress.Step();
    }
    EXPECT_THAT(file.Texts(), IsEmpty());
}

TEST(SteadyMillisecondsTest, CountsMilliseconds)
{
    const std::uint64_t before = pim::SteadyMilliseconds();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const std::uint64_t passed = pim::SteadyMilliseconds() - before;
    EXPECT_GE(passed, 49u);
    EXPECT_LT(passed, 30'000u);
}
