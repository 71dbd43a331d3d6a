// The library as the server loads it: by path, with its three names.
#include "rtfconverter/RTFConverterExX64.h"

#include "platform/Bstr.h"
#include "support/HeapUse.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

namespace
{
std::wstring LibraryPath()
{
    std::wstring path(MAX_PATH, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), MAX_PATH));
    path.resize(path.rfind(L'\\') + 1);
    return path + L"RTFConverterExX64.dll";
}

class RTFConverterExX64Test : public testing::Test
{
  protected:
    void SetUp() override
    {
        m_library = LoadLibraryW(LibraryPath().c_str());
        ASSERT_NE(nullptr, m_library);
        create = Export<RtfConverterCreate>(kRtfConverterCreateName);
        convert = Export<RtfConverterConvert>(kRtfConverterConvertName);
        destroy = Export<RtfConverterDestroy>(kRtfConverterDestroyName);
        ASSERT_TRUE(create && convert && destroy);
    }
    void TearDown() override { FreeLibrary(m_library); }

    // The text, or "(null)".
    std::wstring Convert(RtfConverterHandle converter, const char* rtf) const
    {
        const Bstr text = Bstr::Adopt(convert(converter, rtf));
        return text ? std::wstring(text.View()) : L"(null)";
    }

    RtfConverterCreate create = nullptr;
    RtfConverterConvert convert = nullptr;
    RtfConverterDestroy destroy = nullptr;

  private:
    template <typename Function> Function Export(const char* name) const
    {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(m_library, name)));
    }

    HMODULE m_library = nullptr;
};

constexpr char kHello[] = "{\\rtf1\\ansi\\ansicpg1252 h\\'e4llo\\par world}";
constexpr wchar_t kHelloText[] = L"h\x00E4llo\r\nworld";
} // namespace

TEST_F(RTFConverterExX64Test, ConvertsRtfToPlainText)
{
    const RtfConverterHandle converter = create();
    ASSERT_NE(nullptr, converter);
    EXPECT_EQ(kHelloText, Convert(converter, kHello));
    EXPECT_EQ(kHelloText, Convert(converter, kHello)); // nothing stays from one call to the next
    destroy(converter);
}

TEST_F(RTFConverterExX64Test, GivesAnEmptyTextForAnEmptyDocument)
{
    const RtfConverterHandle converter = create();
    const Bstr text = Bstr::Adopt(convert(converter, "{\\rtf1}"));
    ASSERT_TRUE(text);
    EXPECT_EQ(0u, text.View().size());
    destroy(converter);
}

TEST_F(RTFConverterExX64Test, GivesNullForNoRtf)
{
    const RtfConverterHandle converter = create();
    EXPECT_EQ(nullptr, convert(converter, nullptr));
    EXPECT_EQ(nullptr, convert(converter, ""));
    EXPECT_EQ(nullptr, convert(converter, "plain"));
    destroy(converter);
}

TEST_F(RTFConverterExX64Test, ReadsBytesOfNoStatedCodePageAsTheSystems)
{
    const RtfConverterHandle converter = create();
    wchar_t expected[2] = {};
    const char letter = '\xE4';
    ASSERT_EQ(1, MultiByteToWideChar(CP_ACP, 0, &letter, 1, expected, 1));
    EXPECT_EQ(expected, Convert(converter, "{\\rtf1 \\'e4}"));
    destroy(converter);
}

TEST_F(RTFConverterExX64Test, RefusesHandlesThatNameNoConverter)
{
    const RtfConverterHandle first = create();
    const RtfConverterHandle second = create();
    EXPECT_NE(first, second);
    destroy(first);
    int local = 0;
    for (const RtfConverterHandle handle :
         {RtfConverterHandle{nullptr},
          first,
          static_cast<RtfConverterHandle>(&local),
          reinterpret_cast<RtfConverterHandle>(std::uintptr_t{1}),
          reinterpret_cast<RtfConverterHandle>(~std::uintptr_t{0}),
          reinterpret_cast<RtfConverterHandle>(reinterpret_cast<std::uintptr_t>(second) + 1)})
    {
        EXPECT_EQ(nullptr, convert(handle, kHello));
        destroy(handle); // twice for the one already destroyed
    }
    EXPECT_EQ(kHelloText, Convert(second, kHello)); // the live one took no harm
    const RtfConverterHandle third = create();
    EXPECT_NE(first, third); // a handle never comes back
    destroy(third);
    destroy(second);
    EXPECT_EQ(nullptr, convert(second, kHello));
}

TEST_F(RTFConverterExX64Test, SurvivesHostileDocuments)
{
    const RtfConverterHandle converter = create();
    EXPECT_EQ(L"", Convert(converter, ("{\\rtf1" + std::string(100000, '{')).c_str()));
    EXPECT_EQ(L"a", Convert(converter, ("{\\rtf1 a" + std::string(100000, '}')).c_str()));
    EXPECT_EQ(L"a", Convert(converter, "{\\rtf1 a\\bin2147483647 b}"));
    EXPECT_EQ(L"a", Convert(converter, "{\\rtf1 a\\bin99999999999999999999 b}"));
    EXPECT_EQ(L"a", Convert(converter, "{\\rtf1\\ansicpg-1\\deff-7\\f99999999999\\uc999999 a}"));
    destroy(converter);
}

TEST_F(RTFConverterExX64Test, ServesSeveralThreadsAtOnce)
{
    std::vector<std::thread> threads;
    std::vector<int> good(4);
    for (int& count : good)
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i)
            {
                const RtfConverterHandle converter = create();
                count += Convert(converter, kHello) == kHelloText ? 1 : 0;
                destroy(converter);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ((std::vector<int>{200, 200, 200, 200}), good);
}

// Each table of a store loads the library and lets it go; more often than a process has slots for
// data of its threads.
TEST(RTFConverterExX64LoadTest, LoadsAndUnloadsAnyNumberOfTimes)
{
    for (int i = 0; i < 1500; ++i)
    {
        const HMODULE library = LoadLibraryW(LibraryPath().c_str());
        ASSERT_NE(nullptr, library) << i;
        const auto create = reinterpret_cast<RtfConverterCreate>(
            reinterpret_cast<void*>(GetProcAddress(library, kRtfConverterCreateName)));
        const auto convert = reinterpret_cast<RtfConverterConvert>(
            reinterpret_cast<void*>(GetProcAddress(library, kRtfConverterConvertName)));
        const RtfConverterHandle converter = create();
        const Bstr text = Bstr::Adopt(convert(converter, kHello));
        EXPECT_EQ(kHelloText, text.View());
        ASSERT_TRUE(FreeLibrary(library)); // with the converter still there
    }
    EXPECT_EQ(nullptr, GetModuleHandleW(L"RTFConverterExX64.dll"));
}

TEST(RTFConverterExX64LoadTest, LeavesNoMemoryBehind)
{
    SetOaNoCache();
    const auto loadAndUnload = [](int times) {
        for (int i = 0; i < times; ++i)
        {
            const HMODULE library = LoadLibraryW(LibraryPath().c_str());
            ASSERT_NE(nullptr, library);
            const auto create = reinterpret_cast<RtfConverterCreate>(
                reinterpret_cast<void*>(GetProcAddress(library, kRtfConverterCreateName)));
            EXPECT_NE(nullptr, create());
            ASSERT_TRUE(FreeLibrary(library));
        }
    };
    loadAndUnload(3);
    const HeapUse before = UseOfAllHeaps();
    loadAndUnload(10);
    EXPECT_EQ(before, UseOfAllHeaps());
}

TEST_F(RTFConverterExX64Test, NamesItselfInItsVersionResource)
{
    const HMODULE library = GetModuleHandleW(L"RTFConverterExX64.dll");
    ASSERT_NE(nullptr, library);
    const HRSRC resource = FindResourceW(library, MAKEINTRESOURCEW(1), RT_VERSION);
    ASSERT_NE(nullptr, resource);
    const auto* begin = static_cast<const wchar_t*>(LockResource(LoadResource(library, resource)));
    const std::wstring version(begin, SizeofResource(library, resource) / sizeof(wchar_t));
    EXPECT_NE(std::wstring::npos, version.find(L"RTFConverterExX64.dll"));
}
