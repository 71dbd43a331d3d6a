// Lets the next call of the recording store whose line starts with a text run an action before it
// does anything, as a dialog of a store lets other calls in.
//
//     StoreInterruption dialog(store, "MAPILogonEx", [&] { EXPECT_...; });
//     ...
//     EXPECT_TRUE(dialog.HasCome());
//
// The call is in the record by then. The action runs once at most, not once this object has ended
// or the store was reset, and must not throw.
#pragma once

#include "tests/recordingstore/RecordingStore.h"
#include "tests/recordingstore/RecordingStoreControl.h"

#include <functional>
#include <string>
#include <utility>

class StoreInterruption
{
  public:
    StoreInterruption(const RecordingStore& store, std::string line, std::function<void()> action)
        : m_control(*reinterpret_cast<GetRecordingStoreFunction*>(
              reinterpret_cast<void*>(store.Entry("GetRecordingStore")))()),
          m_action(std::move(action))
    {
        const auto run = [](void* context) {
            auto& self = *static_cast<StoreInterruption*>(context);
            self.m_hasCome = true;
            self.m_action();
        };
        m_control.Interrupt(line.c_str(), run, this);
    }
    ~StoreInterruption() { m_control.Uninterrupt(this); }
    StoreInterruption(const StoreInterruption&) = delete;
    StoreInterruption& operator=(const StoreInterruption&) = delete;

    bool HasCome() const { return m_hasCome; }

  private:
    IRecordingStore& m_control;
    std::function<void()> m_action;
    bool m_hasCome = false;
};
