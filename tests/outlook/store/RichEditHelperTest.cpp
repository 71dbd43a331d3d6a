#include "outlook/store/RichEditHelper.h"

#include "service/PathHelpers.h"
#include "support/DebugOutputCapture.h"
#include "tests/outlook/FakeMapi.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using Calls = std::vector<std::string>;

namespace
{
std::wstring FakePath()
{
    return GetExecutableDirectory() + L"fake_rtf_converter.dll";
}

// Without the export that ends a converter.
std::wstring PartialPath()
{
    return GetExecutableDirectory() + L"fake_rtf_converter_partial.dll";
}

bool IsLoaded(const std::wstring& name)
{
    return GetModuleHandleW(name.c_str()) != nullptr;
}

class RichEditHelperTest : public testing::Test
{
  protected:
    FakeMapi library;
    CRichEditHelper helper;
};
} // namespace

TEST_F(RichEditHelperTest, LoadsTheConverterBesideTheExecutable)
{
    helper.Init();
    EXPECT_TRUE(IsLoaded(GetExecutableDirectory() + L"RTFConverterExX64.dll"));
    std::wstring text;
    EXPECT_TRUE(helper.Convert(L"{\\rtf1\\ansi\\ansicpg1252 h\\'e4llo\\par world}", text));
    EXPECT_EQ(L"h\x00E4llo\r\nworld", text);
    helper.Uninit();
    EXPECT_FALSE(IsLoaded(L"RTFConverterExX64.dll"));
}

TEST_F(RichEditHelperTest, ConvertsNothingBeforeInitAndAfterUninit)
{
    std::wstring text = L"before";
    EXPECT_FALSE(helper.Convert(L"{\\rtf1 a}", text)); // although the output holds something
    helper.InitFrom(FakePath());
    helper.Uninit();
    library.Calls().clear();
    EXPECT_FALSE(helper.Convert(L"{\\rtf1 a}", text));
    EXPECT_EQ(L"before", text);
    EXPECT_EQ(Calls{}, library.Calls());
}

TEST_F(RichEditHelperTest, CallsTheThreeExportsInTheirOrder)
{
    helper.InitFrom(FakePath());
    std::wstring text;
    EXPECT_TRUE(helper.Convert(L"one", text));
    EXPECT_EQ(L"one", text);
    EXPECT_TRUE(helper.Convert(L"two", text));
    EXPECT_EQ(L"two", text);
    helper.Uninit();
    EXPECT_EQ((Calls{"Create", "Convert own one", "Convert own two", "Destory own", "unload"}),
              library.Calls());
}

TEST_F(RichEditHelperTest, IsTrueForAnOutputThatIsNotEmpty)
{
    helper.InitFrom(FakePath());
    std::wstring text;
    EXPECT_FALSE(helper.Convert(L"null", text));
    EXPECT_FALSE(helper.Convert(L"empty", text));
    EXPECT_FALSE(helper.Convert(L"", text));
    text = L"before";
    // Without a text from the converter the output stays.
    EXPECT_TRUE(helper.Convert(L"null", text));
    EXPECT_EQ(L"before", text);
    EXPECT_FALSE(helper.Convert(L"empty", text));
    EXPECT_EQ(L"", text);
}

TEST_F(RichEditHelperTest, TextsEndAtTheirFirstZero)
{
    helper.InitFrom(FakePath());
    std::wstring text;
    EXPECT_TRUE(helper.Convert(std::wstring(L"ab\0cd", 5), text));
    EXPECT_EQ(L"ab", text);
    EXPECT_TRUE(helper.Convert(L"cut", text));
    EXPECT_EQ(L"a", text);
}

// U+00E4 is the byte E4 of code page 1252. U+4E2D is not in it, nor is U+0100, which looks like an
// "A" and must not become one.
TEST_F(RichEditHelperTest, CharactersThatTheCodePageLacksAreReplacedWithoutBestFit)
{
    ASSERT_EQ(1252u, GetACP());
    helper.InitFrom(FakePath());
    std::wstring text;
    EXPECT_TRUE(helper.Convert(L"\x00E4\x4E2D\x0100.", text));
    EXPECT_EQ(L"\x00E4??.", text);
}

TEST_F(RichEditHelperTest, EndsWhatUninitWasNotCalledFor)
{
    {
        CRichEditHelper other;
        other.InitFrom(FakePath());
    }
    EXPECT_EQ((Calls{"Create", "Destory own", "unload"}), library.Calls());
}

TEST_F(RichEditHelperTest, ItsEndIsToldAsUninit)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    {
        CRichEditHelper other;
        other.InitFrom(FakePath());
    }
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("CRichEditHelper::Init", "CRichEditHelper::Uninit"));
}

TEST_F(RichEditHelperTest, ASecondInitTakesTheFirstConvertersPlace)
{
    helper.InitFrom(FakePath());
    helper.InitFrom(FakePath());
    helper.Uninit();
    helper.Uninit();
    EXPECT_EQ((Calls{"Create", "Destory own", "unload", "Create", "Destory own", "unload"}),
              library.Calls());
}

TEST_F(RichEditHelperTest, TellsALibraryThatIsMissing)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    helper.InitFrom(L"C:\\no such folder\\none.dll");
    std::wstring text;
    EXPECT_FALSE(helper.Convert(L"a", text));
    helper.Uninit();
    const std::vector<std::string> messages = capture.TakeLogMessages();
    ASSERT_EQ(4u, messages.size());
    EXPECT_EQ("CRichEditHelper::Init", messages[0]);
    // ERROR_MOD_NOT_FOUND
    EXPECT_EQ(" ::LoadLibrary(C:\\no such folder\\none.dll) Failed, LastError=126", messages[1]);
    EXPECT_EQ("CRichEditHelper::Convert", messages[2]);
    EXPECT_EQ("CRichEditHelper::Uninit", messages[3]);
}

TEST_F(RichEditHelperTest, LoadsNothingWithoutAPath)
{
    helper.InitFrom(L"");
    std::wstring text;
    EXPECT_FALSE(helper.Convert(L"a", text));
}

TEST_F(RichEditHelperTest, TellsOnceThatAnExportIsMissing)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    helper.InitFrom(PartialPath());
    std::wstring text;
    EXPECT_FALSE(helper.Convert(L"a", text));
    helper.Uninit();
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("CRichEditHelper::Init",
                            "m_hMgt == NULL",
                            "CRichEditHelper::Convert",
                            "CRichEditHelper::Uninit"));
    // No converter was made, and so none is ended.
    EXPECT_EQ((Calls{"unload"}), library.Calls());
}

TEST(RichEditHelperRefusalTest, TellsThatNoConverterCouldBeMade)
{
    FakeMapi library(E_OUTOFMEMORY);
    CRichEditHelper helper;
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    helper.InitFrom(FakePath());
    EXPECT_THAT(capture.TakeLogMessages(), ElementsAre("CRichEditHelper::Init", "m_hMgt == NULL"));
    std::wstring text;
    EXPECT_FALSE(helper.Convert(L"a", text));
    helper.Uninit();
    EXPECT_EQ((Calls{"Create", "unload"}), library.Calls());
}
