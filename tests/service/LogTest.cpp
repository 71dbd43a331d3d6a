#include "service/Log.h"

#include "platform/WindowsHeaders.h"
#include "support/DebugOutputCapture.h"

#include <gmock/gmock.h>

#include <cstdio>
#include <regex>

using testing::ElementsAre;
using testing::IsEmpty;

TEST(LogTest, IsOffWithoutASettingsFile)
{
    ScopedLogSettings::Remove();
    ResetLogForTests();
    EXPECT_FALSE(LogEnabled());
    DebugOutputCapture capture;
    LogPrintf(L"nothing\r\n");
    EXPECT_THAT(capture.TakeTexts(), IsEmpty());
    ResetLogForTests();
}

TEST(LogTest, IsOnWhereTheStateSaysOnInAnyCase)
{
    for (const char* state : {"on", "ON", "On", "oN"})
    {
        const ScopedLogSettings settings(std::string("[Global]\r\nState=") + state + "\r\n");
        EXPECT_TRUE(LogEnabled()) << state;
    }
    for (const char* content : {"[Global]\r\nState=1\r\n",
                                "[Global]\r\nState=off\r\n",
                                "[Global]\r\nState=onn\r\n",
                                "[Global]\r\nState=\r\n",
                                "[Global]\r\nOther=on\r\n",
                                "[Other]\r\nState=on\r\n",
                                "State=on\r\n",
                                ""})
    {
        const ScopedLogSettings settings(content);
        EXPECT_FALSE(LogEnabled()) << content;
    }
}

TEST(LogTest, ReadsSectionAndKeyInAnyCase)
{
    const ScopedLogSettings settings("[GLOBAL]\r\nstate = on\r\n");
    EXPECT_TRUE(LogEnabled());
}

TEST(LogTest, WritesOneLineOfFiveFields)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    LogPrintf(L"=========%s = %d!\r\n", L"value", 42);
    const std::vector<std::string> texts = capture.TakeTexts();
    ASSERT_EQ(1u, texts.size());
    const std::regex shape("PimStoreBridge\t"
                           "\\[" +
                           std::to_string(GetCurrentThreadId()) +
                           "\\]\t"
                           "\\[\\d{4}-\\d{2}-\\d{2} \\d{2}:\\d{2}:\\d{2}\\.\\d{3}\\]\t"
                           "Debug\t"
                           "=========value = 42!\r\n");
    EXPECT_TRUE(std::regex_match(texts[0], shape)) << texts[0];
}

TEST(LogTest, TellsTheLocalTime)
{
    DebugOutputCapture capture;
    SYSTEMTIME before{}, after{};
    // At the beginning of a second, where the milliseconds have leading zeros.
    for (GetLocalTime(&before); before.wMilliseconds > 50; GetLocalTime(&before))
        Sleep(10);
    WriteLogLine(L"x", L"Debug");
    GetLocalTime(&after);
    const std::vector<std::string> texts = capture.TakeTexts();
    ASSERT_EQ(1u, texts.size());
    const auto timeText = [](const SYSTEMTIME& time) {
        char text[32] = {};
        std::snprintf(text,
                      sizeof(text),
                      "[%04d-%02d-%02d %02d:%02d:%02d.%03d]",
                      time.wYear,
                      time.wMonth,
                      time.wDay,
                      time.wHour,
                      time.wMinute,
                      time.wSecond,
                      time.wMilliseconds);
        return std::string(text);
    };
    const std::size_t start = texts[0].find("\t[", texts[0].find('\t') + 1) + 1;
    const std::string written = texts[0].substr(start, 25);
    EXPECT_GE(written, timeText(before));
    EXPECT_LE(written, timeText(after));
}

TEST(LogTest, WritesMessageAndLevelAsGiven)
{
    DebugOutputCapture capture;
    WriteLogLine(L"no line break, 100%s", L"Error");
    WriteLogLine(nullptr, nullptr);
    const std::vector<std::string> texts = capture.TakeTexts();
    ASSERT_EQ(2u, texts.size());
    EXPECT_TRUE(texts[0].ends_with("]\tError\tno line break, 100%s")) << texts[0];
    EXPECT_TRUE(texts[1].ends_with("]\t\t")) << texts[1];
}

TEST(LogTest, WritesResultCodesAsPointers)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    LogPrintf(L"hr= %p!\r\n", Hr(E_FAIL));
    LogPrintf(L"hr= 0X%p!\r\n", Hr(S_OK));
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("hr= 0000000080004005!\r\n", "hr= 0X0000000000000000!\r\n"));
}

TEST(LogTest, WritesNothingForANullFormat)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    LogPrintf(nullptr);
    EXPECT_THAT(capture.TakeTexts(), IsEmpty());
    LogPrintf(L"");
    EXPECT_THAT(capture.TakeLogMessages(), ElementsAre(""));
}

TEST(LogTest, WritesMessagesOfAnyLength)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    // Well beyond the buffer of the bracketed fields, and within what the channel carries.
    const std::wstring longText(3000, L'x');
    LogPrintf(L"%s|", longText.c_str());
    EXPECT_THAT(capture.TakeLogMessages(), ElementsAre(std::string(3000, 'x') + "|"));
    // Beyond the channel's own limit nothing breaks either.
    LogPrintf(L"%s|", std::wstring(1'000'000, L'y').c_str());
    EXPECT_EQ(1u, capture.TakeTexts().size());
}

TEST(LogTest, DecidesOnceWhetherItIsOn)
{
    DebugOutputCapture capture;
    {
        const ScopedLogSettings settings("[Global]\r\nState=off\r\n");
        LogPrintf(L"first\r\n");
        // A file that changes while the server runs has no effect.
        ScopedLogSettings::Write("[Global]\r\nState=on\r\n");
        EXPECT_TRUE(LogEnabled());
        LogPrintf(L"second\r\n");
        EXPECT_THAT(capture.TakeTexts(), IsEmpty());
    }
    {
        const ScopedLogSettings settings;
        LogPrintf(L"third\r\n");
        ScopedLogSettings::Remove();
        EXPECT_FALSE(LogEnabled());
        LogPrintf(L"fourth\r\n");
        EXPECT_THAT(capture.TakeLogMessages(), ElementsAre("third\r\n", "fourth\r\n"));
    }
}

TEST(LogTest, StaysOffWhereASettingsFileAppearsLater)
{
    DebugOutputCapture capture;
    ScopedLogSettings::Remove();
    ResetLogForTests();
    LogPrintf(L"first\r\n");
    ScopedLogSettings::Write("[Global]\r\nState=on\r\n");
    EXPECT_TRUE(LogEnabled());
    LogPrintf(L"second\r\n");
    EXPECT_THAT(capture.TakeTexts(), IsEmpty());
    ScopedLogSettings::Remove();
    ResetLogForTests();
}

TEST(LogTest, DecidesBeforeItLooksAtTheFormat)
{
    DebugOutputCapture capture;
    const ScopedLogSettings settings;
    LogPrintf(nullptr);
    ScopedLogSettings::Remove();
    LogPrintf(L"on\r\n");
    EXPECT_THAT(capture.TakeLogMessages(), ElementsAre("on\r\n"));
}
