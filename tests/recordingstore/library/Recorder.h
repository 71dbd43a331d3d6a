// The record of calls, the plan of failures and the books of what lives.
#pragma once

#include "tests/recordingstore/RecordingStore.h"

#include <map>
#include <set>
#include <string>
#include <vector>

// What is told of an object that a caller holds.
struct ObjectLabel
{
    std::string interfaceName;
    std::string name;

    std::string Text() const { return interfaceName + "(" + name + ")"; }
};

class Recorder
{
  public:
    void Clear();
    void ClearRecord();

    // Writes one call down that may go wrong; tells how it is to.
    StoreFault Begin(std::string line, StoreCallKind kind, bool needsInitialised = true);
    // Writes one down that cannot.
    void Note(std::string line, StoreCallKind kind);
    // The result of the call that was begun last and has none yet.
    void End(HRESULT result);
    void AddViolation(std::string text) { m_violations.push_back(std::move(text)); }

    void Fail(unsigned number, StoreFault fault) { m_plan[number] = fault; }
    void FailNext(std::string line, StoreFault fault);

    // Counts the callers' MAPIInitialize; calls outside of it are violations.
    void Initialised();
    void Uninitialised(const std::string& line);
    // Checks that a call may come now.
    void CheckTime(const std::string& line);

    void Born(const void* object, const ObjectLabel& label) { m_live.emplace(object, label); }
    void Dead(const void* object) { m_live.erase(object); }
    // The label of a live object; null for others.
    const ObjectLabel* Find(const void* object) const;

    const std::vector<RecordedStoreCall>& Calls() const { return m_calls; }
    const std::vector<std::string>& Violations() const { return m_violations; }
    const std::map<const void*, ObjectLabel>& Live() const { return m_live; }
    unsigned InitialisedTimes() const { return m_initialised; }
    unsigned FailableCalls() const { return m_failable; }

    unsigned refusedFrees = 0;
    unsigned spoiledOutputs = 0; // by hostile answers

    // While one lives, calls are the library's own and are not written down.
    class Quiet
    {
      public:
        explicit Quiet(Recorder& recorder) : m_recorder(recorder) { ++m_recorder.m_quiet; }
        ~Quiet() { --m_recorder.m_quiet; }
        Quiet(const Quiet&) = delete;
        Quiet& operator=(const Quiet&) = delete;

      private:
        Recorder& m_recorder;
    };

  private:
    std::vector<RecordedStoreCall> m_calls;
    std::vector<std::size_t> m_open;
    std::map<unsigned, StoreFault> m_plan;
    std::vector<std::pair<std::string, StoreFault>> m_next;
    std::vector<std::string> m_violations;
    std::map<const void*, ObjectLabel> m_live;
    unsigned m_failable = 0;
    unsigned m_initialised = 0;
    DWORD m_thread = 0;
    int m_quiet = 0;
};
