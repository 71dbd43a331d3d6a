// RTFConverterExX64.dll over documents of 1 and 10 MiB: time, growth with the size, and the most
// memory in use beyond the document.
#include "bench/Results.h"
#include "platform/Bstr.h"
#include "rtfconverter/RTFConverterExX64.h"

#include <psapi.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <string>
#include <string_view>
#include <thread>

namespace
{
constexpr std::size_t kMiB = 1 << 20;
constexpr int kRuns = 3;

struct Kind
{
    const char* name;
    const char* start;
    const char* piece; // repeated up to the size
};

constexpr Kind kKinds[] = {
    {"plain text", "{\\rtf1\\ansi\\ansicpg1252 ", "The quick brown fox jumps over the lazy dog. "},
    {"paragraphs", "{\\rtf1\\ansi\\ansicpg1252 ", "{\\b Bold} and {\\i italic} words\\par\r\n"},
    {"HTML by a mail client",
     "{\\rtf1\\ansi\\ansicpg1252\\fromhtml1 ",
     "{\\*\\htmltag64 <p class=\"x\">}\\htmlrtf {\\htmlrtf0 A caf\\'e9 "
     "{\\*\\htmltag84 <b>}\\htmlrtf {\\b \\htmlrtf0 here{\\*\\htmltag92 </b>}\\htmlrtf }\\htmlrtf0 "
     "\\htmlrtf\\par}\\htmlrtf0\r\n{\\*\\htmltag72 </p>}\r\n"},
    {"HTML by tags alone",
     "{\\rtf1\\ansi\\ansicpg1252\\fromhtml1 ",
     "{\\*\\htmltag <div>}line{\\*\\htmltag </div>}"},
    {"escaped bytes", "{\\rtf1\\ansi\\ansicpg1252 ", "\\'e4 \\'80 \\'fc\\b0 "},
    {"double-byte text", "{\\rtf1\\ansi\\ansicpg932 ", "\\'93\\'fa\\'96\\'7b\\'8c\\'ea"},
    {"raw double-byte text", "{\\rtf1\\ansi\\ansicpg932 ", "\x93\xFA\x96\x7B\x8C\xEA"},
    {"UTF-8 text", "{\\rtf1\\ansi\\ansicpg65001 ", "\xE2\x82\xAC"},
    {"Unicode with fallback", "{\\rtf1\\ansi\\ansicpg1252\\uc1 ", "\\u8364?\\u26085?"},
    {"line ends", "{\\rtf1 ", "\\\n"},
    {"open groups", "{\\rtf1 ", "{"},
    {"open groups that change", "{\\rtf1 ", "{\\v{\\v0"},
    {"closing braces", "{\\rtf1\\fromhtml1\\htmlrtf ", "}"},
    {"control words", "{\\rtf1 ", "\\a"},
    {"fonts", "{\\rtf1{\\fonttbl\\f1\\fcharset128 ", "\\f2\\fcharset204\\f3\\fcharset0 "},
};

std::string Document(const Kind& kind, std::size_t size)
{
    std::string rtf = kind.start;
    const std::string_view piece = kind.piece;
    rtf.reserve(size + piece.size());
    while (rtf.size() < size)
        rtf += piece;
    return rtf;
}

std::size_t CommittedBytes()
{
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof(counters);
    K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
    return counters.PagefileUsage;
}

// The most memory that is in use while it lives, beyond what was at its start.
class PeakMemory
{
  public:
    PeakMemory() : m_start(CommittedBytes()), m_thread([this] { Watch(); }) {}
    std::size_t Finish()
    {
        m_done = true;
        m_thread.join();
        return m_peak;
    }

  private:
    void Watch()
    {
        while (!m_done)
        {
            const std::size_t now = CommittedBytes();
            m_peak = std::max(m_peak, now > m_start ? now - m_start : 0);
            Sleep(1);
        }
    }

    std::size_t m_start;
    std::size_t m_peak = 0;
    std::atomic<bool> m_done = false;
    std::thread m_thread;
};

struct Library
{
    RtfConverterConvert convert;
    RtfConverterHandle converter;
};

// The best of a few runs, in milliseconds.
double Milliseconds(const Library& library, const std::string& rtf)
{
    double best = 1e9;
    for (int run = 0; run < kRuns; ++run)
    {
        const auto start = std::chrono::steady_clock::now();
        const Bstr text = Bstr::Adopt(library.convert(library.converter, rtf.c_str()));
        const auto end = std::chrono::steady_clock::now();
        if (!text)
            return -1;
        best = std::min(best, std::chrono::duration<double, std::milli>(end - start).count());
    }
    return best;
}
} // namespace

int wmain()
{
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
    path.resize(path.rfind(L'\\') + 1);
    const HMODULE module = LoadLibraryW((path + L"RTFConverterExX64.dll").c_str());
    if (!module)
    {
        std::puts("RTFConverterExX64.dll does not load; it is built into the same folder.");
        return 1;
    }
    const auto proc = [module](const char* name) {
        return reinterpret_cast<void*>(GetProcAddress(module, name));
    };
    const auto create = reinterpret_cast<RtfConverterCreate>(proc(kRtfConverterCreateName));
    const Library library{reinterpret_cast<RtfConverterConvert>(proc(kRtfConverterConvertName)),
                          create()};

    std::printf(
        "%-26s %10s %10s %8s %12s\n", "document", "1 MiB ms", "10 MiB ms", "factor", "memory MiB");
    double slowest = 0.0;
    double largest = 0.0;
    for (const Kind& kind : kKinds)
    {
        const double small = Milliseconds(library, Document(kind, kMiB));
        const std::string rtf = Document(kind, 10 * kMiB);
        const double large = Milliseconds(library, rtf);
        PeakMemory memory;
        Bstr::Adopt(library.convert(library.converter, rtf.c_str()));
        const double peak = static_cast<double>(memory.Finish()) / kMiB;
        if (small < 0.0 || large < 0.0)
        {
            std::printf("%s: no text\n", kind.name);
            return 1;
        }
        slowest = std::max(slowest, large);
        largest = std::max(largest, peak);
        std::printf(
            "%-26s %10.1f %10.1f %8.1f %12.1f\n", kind.name, small, large, large / small, peak);
        std::fflush(stdout);
    }
    PrintTarget("10 MiB of RTF to plain text, the slowest of all kinds of documents",
                slowest / 1000.0,
                "s",
                {Bound::AtMost, 2.0});
    PrintTarget("memory for that beyond the document, the most of all kinds",
                largest,
                "MiB",
                {Bound::AtMost, 64.0});
    return 0;
}
