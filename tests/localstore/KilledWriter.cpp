#include "tests/localstore/KilledWriter.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

namespace
{
// The end of each line, so that one that was cut is not taken for a whole one.
constexpr char kEnd[] = "end";
// What one connection's log holds before a checkpoint is due.
constexpr int kNoCheckpoint = 100000; // where none is wanted
constexpr int kEarlyCheckpoint = 20;
} // namespace

void TellDone(const char* work, int number, const SBinary& entryId)
{
    std::printf("%s %d ", work, number);
    for (ULONG i = 0; i < entryId.cb; ++i)
        std::printf("%02X", entryId.lpb[i]);
    std::printf(" %s\n", kEnd);
    std::fflush(stdout);
}

void KilledWriterTest::KillAsPlanned(const KillPlan& plan)
{
    for (int i = 0; i < plan.inCommit; ++i)
        // At least two writes of the commit are done, so one of a page, since a new log begins with
        // its header.
        ASSERT_NO_FATAL_FAILURE(KillAt(
            StopBefore::LogWrite, 2 + i % (plan.mostLogWrites - 1), 2 + i % 4, kNoCheckpoint));
    for (int i = 0; i < plan.atFlush; ++i)
        ASSERT_NO_FATAL_FAILURE(KillAt(StopBefore::LogFlush, 0, i, kNoCheckpoint));
    for (int i = 0; i < plan.inCheckpoint; ++i)
        ASSERT_NO_FATAL_FAILURE(KillAt(
            StopBefore::DatabaseWrite, 1 + i % plan.mostPageWrites, i % 3, kEarlyCheckpoint));
    std::mt19937 random(plan.randomSeed);
    for (int i = 0; i < plan.atRandom; ++i)
        ASSERT_NO_FATAL_FAILURE(KillAtRandom(random));
    std::printf("killed %d times: %d between a transaction's first write and its commit, %d of "
                "them before the flush; %d during a checkpoint; %d at random.\n",
                plan.inCommit + plan.atFlush + plan.inCheckpoint + plan.atRandom,
                plan.inCommit + plan.atFlush,
                plan.atFlush,
                plan.inCheckpoint,
                plan.atRandom);
}

std::wstring KilledWriterTest::Command(StopBefore step,
                                       int skip,
                                       int armAfter,
                                       int checkpoint) const
{
    return L"\"" + ProgramFolder() + L"localstore_tests.exe\" " + m_mode + L" \"" + m_path +
           L"\" " + std::to_wstring(m_next) + L" " + std::to_wstring(static_cast<int>(step)) +
           L" " + std::to_wstring(skip) + L" " + std::to_wstring(armAfter) + L" " +
           std::to_wstring(checkpoint);
}

bool KilledWriterTest::Take(const std::string& line)
{
    std::istringstream words(line);
    std::string work, hexId, end;
    int number = 0;
    if (words >> work >> number >> hexId >> end && end == kEnd)
    {
        m_next = std::max(m_next, number + 1);
        Note(work, number, hexId);
        return false;
    }
    EXPECT_EQ("stop", line);
    return true;
}

void KilledWriterTest::KillAt(StopBefore step, int skip, int armAfter, int checkpoint)
{
    ChildProcess child(Command(step, skip, armAfter, checkpoint));
    bool stopped = false;
    while (!stopped)
    {
        const auto line = child.ReadLine();
        ASSERT_TRUE(line.has_value()) << "the writer ended by itself with code " << child.Wait();
        stopped = Take(*line);
    }
    child.Kill();
    CheckAll();
}

void KilledWriterTest::KillAtRandom(std::mt19937& random)
{
    ChildProcess child(Command(StopBefore::Nothing, 0, 0, kEarlyCheckpoint));
    const int lines = static_cast<int>(random() % 8);
    for (int i = 0; i < lines; ++i)
    {
        const auto line = child.ReadLine();
        ASSERT_TRUE(line.has_value()) << "the writer ended by itself with code " << child.Wait();
        Take(*line);
    }
    Sleep(random() % 20);
    child.Kill();
    // What it had said before it was killed stands, but for a line that was cut.
    while (const auto line = child.ReadLine())
    {
        if (line->ends_with(kEnd))
            Take(*line);
    }
    CheckAll();
}

void KilledWriterTest::CheckAll()
{
    // What it was about to save may be there or not.
    ++m_next;
    Database database = OpenStore(m_path);
    {
        Statement check = database.Prepare("PRAGMA integrity_check");
        ASSERT_TRUE(check.Step());
        ASSERT_EQ("ok", check.Text(0));
    }
    Check(database);
}
