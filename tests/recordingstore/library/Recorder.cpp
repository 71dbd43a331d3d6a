#include "tests/recordingstore/library/Recorder.h"

#include "tests/recordingstore/library/Interruptions.h"

#include <algorithm>

void Recorder::Clear()
{
    ClearRecord();
    m_plan.clear();
    m_next.clear();
    ClearInterruptions();
    m_violations.clear();
    m_live.clear();
    m_initialised = 0;
    m_thread = 0;
    refusedFrees = 0;
    spoiledOutputs = 0;
}

void Recorder::ClearRecord()
{
    m_calls.clear();
    m_open.clear();
    m_failable = 0;
}

StoreFault Recorder::Begin(std::string line, StoreCallKind kind, bool needsInitialised)
{
    if (needsInitialised)
        CheckTime(line);
    if (m_quiet)
        return StoreFault::None;
    StoreFault fault = StoreFault::None;
    ++m_failable;
    if (const auto planned = m_plan.find(m_failable); planned != m_plan.end())
        fault = planned->second;
    const auto next = std::find_if(m_next.begin(), m_next.end(), [&](const auto& entry) {
        return line.starts_with(entry.first);
    });
    if (next != m_next.end())
    {
        fault = next->second;
        m_next.erase(next);
    }
    m_open.push_back(m_calls.size());
    m_calls.push_back({line, kind, m_failable, S_OK});
    // The call is under way and has done nothing yet; those inside of it begin and end their own.
    RunInterruption(line);
    return fault;
}

void Recorder::Note(std::string line, StoreCallKind kind)
{
    if (m_quiet)
        return;
    m_calls.push_back({line, kind, 0, S_OK});
    RunInterruption(line);
}

void Recorder::End(HRESULT result)
{
    if (m_quiet || m_open.empty())
        return;
    m_calls[m_open.back()].result = result;
    m_open.pop_back();
}

void Recorder::FailNext(std::string line, StoreFault fault)
{
    m_next.emplace_back(std::move(line), fault);
}

void Recorder::Initialised()
{
    if (m_initialised++ == 0)
        m_thread = GetCurrentThreadId();
}

void Recorder::Uninitialised(const std::string& line)
{
    if (m_initialised > 0)
        --m_initialised;
    else
        AddViolation("not initialised: " + line);
}

void Recorder::CheckTime(const std::string& line)
{
    if (m_initialised == 0)
        AddViolation("not initialised: " + line);
    else if (GetCurrentThreadId() != m_thread)
        AddViolation("another thread: " + line);
}

const ObjectLabel* Recorder::Find(const void* object) const
{
    const auto found = m_live.find(object);
    return found == m_live.end() ? nullptr : &found->second;
}
