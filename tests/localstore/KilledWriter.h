// What the tests that kill a writer have in common: the child process, the moment of its end, and
// what it said until then.
#pragma once

#include "localstore/Database.h"
#include "localstore/StoreSchema.h"
#include "platform/WindowsHeaders.h"
#include "tests/localstore/LocalStoreSupport.h"
#include "tests/localstore/StoppingVfs.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

// How often a writer is killed, and where.
struct KillPlan
{
    int inCommit;       // with its first page written, before its last
    int atFlush;        // with all of a commit written
    int inCheckpoint;   // with its first page copied
    int atRandom;       // moments
    int mostLogWrites;  // that are let through in a commit; fewer than any of its works takes
    int mostPageWrites; // that are let through in a checkpoint
    unsigned randomSeed;
};

// The writer's side: tells that the work of that name on that number is done. The test takes such a
// line for a promise.
void TellDone(const char* work, int number, const SBinary& entryId);

class KilledWriterTest : public testing::Test
{
  protected:
    // mode: the switch that makes this test program that writer.
    explicit KilledWriterTest(std::wstring mode) : m_mode(std::move(mode)) {}

    // Kills one writer after the other. Tells on standard output how often.
    void KillAsPlanned(const KillPlan& plan);

    // What the writer said it had done.
    virtual void Note(const std::string& work, int number, const std::string& hexId) = 0;
    // After each kill.
    virtual void Check(Database& database) = 0;

    TempFolder m_folder;
    const std::wstring m_path = m_folder.File(L"store.db");
    int m_next = 1; // the number that the next writer begins with

  private:
    // Starts a writer that stops at the step, kills it there, and checks. See RunMessageWriter.
    void KillAt(StopBefore step, int skip, int armAfter, int checkpoint);
    void KillAtRandom(std::mt19937& random);
    std::wstring Command(StopBefore step, int skip, int armAfter, int checkpoint) const;
    // True for a line that tells of a stop.
    bool Take(const std::string& line);
    void CheckAll();

    const std::wstring m_mode;
};
