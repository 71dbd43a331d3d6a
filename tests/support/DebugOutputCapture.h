// Listens to the debugger channel and keeps what one process writes to it.
//
// The channel belongs to the session: only one capture runs at a time, and others, in other
// processes too, wait for it to end. Texts arrive in the system's ANSI code page, cut at 4 KB.
#pragma once

#include "platform/UniqueHandle.h"

#include <mutex>
#include <string>
#include <thread>
#include <vector>

class DebugOutputCapture
{
  public:
    // Listens from here on. Throws std::runtime_error where the channel cannot be had.
    explicit DebugOutputCapture(DWORD processId = GetCurrentProcessId());
    ~DebugOutputCapture();
    DebugOutputCapture(const DebugOutputCapture&) = delete;
    DebugOutputCapture& operator=(const DebugOutputCapture&) = delete;

    // Every text so far, one element per call of OutputDebugString, and forgets them. What any
    // process wrote before this call is in it.
    std::vector<std::string> TakeTexts();

    // The messages of the server's log lines among them: what stands behind the level word.
    std::vector<std::string> TakeLogMessages();

  private:
    struct MappedView
    {
        using Type = void*;
        static Type Empty() noexcept { return nullptr; }
        static void Close(Type value) noexcept { UnmapViewOfFile(value); }
    };

    void Listen();

    DWORD m_processId;
    UniqueHandle m_turn;
    UniqueHandle m_bufferReady;
    UniqueHandle m_dataReady;
    UniqueHandle m_stop;
    UniqueHandle m_markerSeen;
    UniqueHandle m_mapping;
    UniqueResource<MappedView> m_view;
    std::mutex m_mutex;
    std::vector<std::string> m_texts;
    std::thread m_listener;
};

// The settings file of the log beside the test program. Each change takes effect at once; at the
// end the file is gone and the log is as at the start of the process.
class ScopedLogSettings
{
  public:
    // Writes the text as the file's content and makes the log read it anew.
    explicit ScopedLogSettings(const std::string& content = "[Global]\r\nState=on\r\n");
    ~ScopedLogSettings();
    ScopedLogSettings(const ScopedLogSettings&) = delete;
    ScopedLogSettings& operator=(const ScopedLogSettings&) = delete;

    // Replaces the content without telling the log.
    static void Write(const std::string& content);
    static void Remove();
};
