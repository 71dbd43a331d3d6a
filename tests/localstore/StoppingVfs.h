// SQLite's file layer with a place to stop at: for tests that end a process at a chosen step of a
// transaction or of a checkpoint.
#pragma once

// What the process is about to do when it stops.
enum class StopBefore
{
    Nothing,
    LogWrite,     // a write to the write-ahead log: inside a commit, before its last frame or at it
    LogFlush,     // the flush that makes a commit last
    DatabaseWrite // a write to the database file: inside a checkpoint
};

// Becomes the layer under every database that is opened from now on.
void InstallStoppingVfs();

// From now on `skip` steps of that kind are let through; before the next one the process writes the
// line "stop" to standard output and waits to be killed.
void ArmStop(StopBefore step, int skip);
void DisarmStop();
