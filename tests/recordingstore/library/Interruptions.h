// What runs inside of calls; see StoreInterruption.
#pragma once

#include "tests/recordingstore/RecordingStoreControl.h"

#include <string>

void AddInterruption(const char* line, StoreInterruptionSink sink, void* context);
// All with that context that did not run.
void RemoveInterruption(void* context);
void ClearInterruptions();
// For a call that has just been written down.
void RunInterruption(const std::string& line);
