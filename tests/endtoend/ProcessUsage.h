// What another process holds of the system's resources.
#pragma once

#include "platform/WindowsHeaders.h"

struct ProcessUsage
{
    DWORD handles = 0;
    SIZE_T privateBytes = 0; // committed memory that no other process shares
};

// A running process has some of both; a test failure where they cannot be told.
ProcessUsage UsageOf(DWORD processId);

// The memory that the runtime itself never gives back for so many appointments that a process
// offers to others and takes back; 0 where it gives back all. Measured in this process, with
// objects of its own.
SIZE_T RuntimeKeepsOf(int appointments);
