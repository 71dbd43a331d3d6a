// A named pipe that gives a little to the first who opens it and closes then, so that whoever
// reads it comes to an end.
#pragma once

#include "platform/UniqueHandle.h"
#include "platform/WindowsHeaders.h"

#include <string>
#include <thread>

class BriefPipe
{
  public:
    BriefPipe()
        : m_name(L"\\\\.\\pipe\\PimStoreBridgeTest" + std::to_wstring(GetCurrentProcessId())),
          m_pipe(CreateNamedPipeW(m_name.c_str(),
                                  PIPE_ACCESS_OUTBOUND,
                                  PIPE_TYPE_BYTE | PIPE_WAIT,
                                  1,
                                  4096,
                                  4096,
                                  0,
                                  nullptr))
    {
        if (m_pipe)
            m_writer = std::jthread([this] { Serve(); });
    }

    // False where the system made none.
    explicit operator bool() const noexcept { return m_writer.joinable(); }
    const wchar_t* Path() const noexcept { return m_name.c_str(); }
    // Waits until it was opened and closed.
    void Join() { m_writer.join(); }

  private:
    void Serve()
    {
        ConnectNamedPipe(m_pipe.Get(), nullptr);
        DWORD written = 0;
        WriteFile(m_pipe.Get(), "abc", 3, &written, nullptr);
        m_pipe.Reset();
    }

    std::wstring m_name;
    UniqueFile m_pipe;
    std::jthread m_writer; // the last member: uses the others
};
