#include "support/DebugOutputCapture.h"

#include "platform/FileIo.h"
#include "service/Log.h"
#include "service/PathHelpers.h"

#include <stdexcept>
#include <string_view>
#include <utility>

namespace
{
constexpr DWORD kTurnMilliseconds = 60'000;
constexpr DWORD kMarkerMilliseconds = 20'000;

// Written by the capture itself: once it comes back, everything before it has come.
constexpr char kMarker[] = "debug output capture: marker";

// What the channel's shared memory holds.
struct Buffer
{
    DWORD processId;
    char text[4096 - sizeof(DWORD)];
};

std::wstring SettingsPath()
{
    return GetExecutableDirectory() + L"PimAdvLog.ini";
}
} // namespace

DebugOutputCapture::DebugOutputCapture(DWORD processId) : m_processId(processId)
{
    m_turn = UniqueHandle(CreateMutexW(nullptr, FALSE, L"PimDebugOutputCaptureTurn"));
    const DWORD turn = WaitForSingleObject(m_turn.Get(), kTurnMilliseconds);
    if (turn != WAIT_OBJECT_0 && turn != WAIT_ABANDONED)
        throw std::runtime_error("another capture does not end");
    m_bufferReady = UniqueHandle(CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_BUFFER_READY"));
    m_dataReady = UniqueHandle(CreateEventW(nullptr, FALSE, FALSE, L"DBWIN_DATA_READY"));
    m_stop = UniqueHandle(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    m_markerSeen = UniqueHandle(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    m_mapping = UniqueHandle(CreateFileMappingW(
        INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, sizeof(Buffer), L"DBWIN_BUFFER"));
    if (m_mapping)
        m_view.Reset(MapViewOfFile(m_mapping.Get(), FILE_MAP_READ, 0, 0, sizeof(Buffer)));
    if (!m_bufferReady || !m_dataReady || !m_stop || !m_markerSeen || !m_view)
    {
        ReleaseMutex(m_turn.Get());
        throw std::runtime_error("the debugger channel cannot be opened");
    }
    m_listener = std::thread([this] { Listen(); });
}

DebugOutputCapture::~DebugOutputCapture()
{
    SetEvent(m_stop.Get());
    m_listener.join();
    ReleaseMutex(m_turn.Get());
}

std::vector<std::string> DebugOutputCapture::TakeTexts()
{
    OutputDebugStringA(kMarker);
    if (WaitForSingleObject(m_markerSeen.Get(), kMarkerMilliseconds) != WAIT_OBJECT_0)
        throw std::runtime_error("the debugger channel does not answer");
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_texts, {});
}

std::vector<std::string> DebugOutputCapture::TakeLogMessages()
{
    std::vector<std::string> messages;
    for (const std::string& text : TakeTexts())
    {
        if (!text.starts_with("PimStoreBridge\t"))
            continue;
        // Name, thread, time and level come first.
        std::size_t start = 0;
        for (int field = 0; field < 4 && start != std::string::npos; ++field)
        {
            const std::size_t tab = text.find('\t', start);
            start = tab == std::string::npos ? tab : tab + 1;
        }
        if (start != std::string::npos)
            messages.push_back(text.substr(start));
    }
    return messages;
}

void DebugOutputCapture::Listen()
{
    const auto* const buffer = static_cast<const Buffer*>(m_view.Get());
    const HANDLE events[] = {m_stop.Get(), m_dataReady.Get()};
    SetEvent(m_bufferReady.Get());
    while (WaitForMultipleObjects(2, events, FALSE, INFINITE) == WAIT_OBJECT_0 + 1)
    {
        const std::string_view whole(buffer->text, sizeof(buffer->text));
        const std::string text(whole.substr(0, whole.find('\0')));
        if (text == kMarker && buffer->processId == GetCurrentProcessId())
        {
            SetEvent(m_markerSeen.Get());
        }
        else if (buffer->processId == m_processId)
        {
            const std::lock_guard lock(m_mutex);
            m_texts.push_back(text);
        }
        SetEvent(m_bufferReady.Get());
    }
}

ScopedLogSettings::ScopedLogSettings(const std::string& content)
{
    Write(content);
    ResetLogForTests();
}

ScopedLogSettings::~ScopedLogSettings()
{
    Remove();
    ResetLogForTests();
}

void ScopedLogSettings::Write(const std::string& content)
{
    if (!SaveWholeFile(SettingsPath(), content))
        throw std::runtime_error("the settings file of the log cannot be written");
}

void ScopedLogSettings::Remove()
{
    DeleteFileW(SettingsPath().c_str());
}
