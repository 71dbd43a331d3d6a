#include "service/Registry.h"

#include "support/RegistrySandbox.h"

#include <gmock/gmock.h>

#include <array>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace
{
constexpr wchar_t kKey[] = L"Software\\Sample";

class RegistryTest : public testing::Test
{
  protected:
    RegistryTest() : m_sandbox(HKEY_LOCAL_MACHINE) {}

    void SetUnits(const std::wstring& value, DWORD type, std::wstring_view units)
    {
        m_sandbox.SetValue(kKey, value, type, units.data(), units.size() * sizeof(wchar_t));
    }
    std::wstring Text(const std::wstring& value)
    {
        return ReadRegistryString(HKEY_LOCAL_MACHINE, kKey, value);
    }
    std::vector<std::wstring> Texts(const std::wstring& value)
    {
        std::vector<std::wstring> texts;
        ReadRegistryMultiString(HKEY_LOCAL_MACHINE, kKey, value, texts);
        return texts;
    }

    RegistrySandbox m_sandbox;
};
} // namespace

TEST_F(RegistryTest, ReadsTexts)
{
    m_sandbox.SetText(kKey, L"plain", L"some text");
    m_sandbox.SetText(kKey, L"", L"the default");
    m_sandbox.SetText(kKey, L"expand", L"%TEMP%\\x", REG_EXPAND_SZ);
    EXPECT_EQ(L"some text", Text(L"plain"));
    EXPECT_EQ(L"the default", Text(L""));
    EXPECT_EQ(L"%TEMP%\\x", Text(L"expand"));
}

TEST_F(RegistryTest, ReadsTextsOfAnyLength)
{
    const std::wstring longText(5000, L'x');
    m_sandbox.SetText(kKey, L"long", longText);
    EXPECT_EQ(longText, Text(L"long"));
}

TEST_F(RegistryTest, ReadsATextUpToItsFirstNul)
{
    using namespace std::string_view_literals;
    SetUnits(L"inner", REG_SZ, L"ab\0cd\0"sv);
    SetUnits(L"unterminated", REG_SZ, L"abc"sv);
    SetUnits(L"empty", REG_SZ, L""sv);
    const char odd[] = {'a', 0, 'b', 0, 'c'};
    m_sandbox.SetValue(kKey, L"odd", REG_SZ, odd, sizeof(odd));
    EXPECT_EQ(L"ab", Text(L"inner"));
    EXPECT_EQ(L"abc", Text(L"unterminated"));
    EXPECT_EQ(L"", Text(L"empty"));
    EXPECT_EQ(L"ab", Text(L"odd"));
}

TEST_F(RegistryTest, ReadsNoTextFromOtherTypesNorFromWhatIsMissing)
{
    const DWORD number = 0x410042;
    m_sandbox.SetValue(kKey, L"number", REG_DWORD, &number, sizeof(number));
    SetUnits(L"binary", REG_BINARY, L"abc");
    SetUnits(L"multi", REG_MULTI_SZ, std::wstring_view(L"abc\0", 5));
    EXPECT_EQ(L"", Text(L"number"));
    EXPECT_EQ(L"", Text(L"binary"));
    EXPECT_EQ(L"", Text(L"multi"));
    EXPECT_EQ(L"", Text(L"missing"));
    EXPECT_EQ(L"", ReadRegistryString(HKEY_LOCAL_MACHINE, L"Software\\Missing", L""));
    EXPECT_EQ(L"", ReadRegistryString(nullptr, kKey, L""));
}

TEST_F(RegistryTest, ReadsATextIntoAFixedBuffer)
{
    m_sandbox.SetText(kKey, L"text", L"abc");
    std::wstring text = L"before";
    EXPECT_TRUE(ReadRegistryBuffer(HKEY_LOCAL_MACHINE, kKey, L"text", 520, text));
    EXPECT_EQ(L"abc", text);
    // 8 bytes hold it with its terminator, 7 do not.
    EXPECT_TRUE(ReadRegistryBuffer(HKEY_LOCAL_MACHINE, kKey, L"text", 8, text));
    EXPECT_EQ(L"abc", text);
    EXPECT_TRUE(ReadRegistryBuffer(HKEY_LOCAL_MACHINE, kKey, L"text", 7, text));
    EXPECT_EQ(L"", text);
}

TEST_F(RegistryTest, LeavesATextOutThatIsLongerThanTheFixedBuffer)
{
    // 259 characters and the terminator are 520 bytes; no larger size can be asked for.
    m_sandbox.SetText(kKey, L"fits", std::wstring(259, L'x'));
    m_sandbox.SetText(kKey, L"too long", std::wstring(260, L'x'));
    SetUnits(L"unterminated", REG_SZ, std::wstring(260, L'x'));
    std::wstring text;
    EXPECT_TRUE(ReadRegistryBuffer(HKEY_LOCAL_MACHINE, kKey, L"fits", 520, text));
    EXPECT_EQ(std::wstring(259, L'x'), text);
    EXPECT_TRUE(ReadRegistryBuffer(HKEY_LOCAL_MACHINE, kKey, L"too long", 5000, text));
    EXPECT_EQ(L"", text);
    EXPECT_TRUE(ReadRegistryBuffer(HKEY_LOCAL_MACHINE, kKey, L"unterminated", 520, text));
    EXPECT_EQ(std::wstring(260, L'x'), text);
}

TEST_F(RegistryTest, TellsWhetherTheKeyOpenedAndClearsTheText)
{
    const DWORD number = 0x410042;
    m_sandbox.SetValue(kKey, L"number", REG_DWORD, &number, sizeof(number));
    std::wstring text = L"before";
    EXPECT_TRUE(ReadRegistryBuffer(HKEY_LOCAL_MACHINE, kKey, L"missing", 520, text));
    EXPECT_EQ(L"", text);
    text = L"before";
    EXPECT_TRUE(ReadRegistryBuffer(HKEY_LOCAL_MACHINE, kKey, L"number", 520, text));
    EXPECT_EQ(L"", text);
    text = L"before";
    EXPECT_FALSE(ReadRegistryBuffer(HKEY_LOCAL_MACHINE, L"Software\\Missing", L"", 520, text));
    EXPECT_EQ(L"", text);
}

TEST_F(RegistryTest, AppendsTheNamesOfSubKeys)
{
    const std::wstring longName(255, L'n');
    m_sandbox.AddKey(std::wstring(kKey) + L"\\one\\inner");
    m_sandbox.AddKey(std::wstring(kKey) + L"\\two");
    m_sandbox.AddKey(std::wstring(kKey) + L"\\" + longName);
    std::vector<std::wstring> names{L"before"};
    EnumRegistrySubKeys(HKEY_LOCAL_MACHINE, kKey, names);
    EXPECT_EQ(L"before", names.front());
    EXPECT_THAT(names, UnorderedElementsAre(L"before", L"one", L"two", longName));
    // A backslash at the end of the path does no harm.
    names.clear();
    EnumRegistrySubKeys(HKEY_LOCAL_MACHINE, std::wstring(kKey) + L"\\", names);
    EXPECT_EQ(3u, names.size());
}

TEST_F(RegistryTest, LeavesTheListWhereThereAreNoSubKeys)
{
    m_sandbox.AddKey(kKey);
    std::vector<std::wstring> names{L"before"};
    EnumRegistrySubKeys(HKEY_LOCAL_MACHINE, kKey, names);
    EnumRegistrySubKeys(HKEY_LOCAL_MACHINE, L"Software\\Missing", names);
    EXPECT_THAT(names, ElementsAre(L"before"));
}

TEST_F(RegistryTest, ReadsEachTextOfAList)
{
    using namespace std::string_view_literals;
    SetUnits(L"usual", REG_MULTI_SZ, L"one\0two\0\0"sv);
    SetUnits(L"empty entry", REG_MULTI_SZ, L"one\0\0two\0\0"sv);
    SetUnits(L"empty first", REG_MULTI_SZ, L"\0one\0\0"sv);
    SetUnits(L"unterminated", REG_MULTI_SZ, L"one\0two"sv);
    SetUnits(L"nothing", REG_MULTI_SZ, L"\0\0"sv);
    SetUnits(L"no bytes", REG_MULTI_SZ, L""sv);
    EXPECT_THAT(Texts(L"usual"), ElementsAre(L"one", L"two"));
    EXPECT_THAT(Texts(L"empty entry"), ElementsAre(L"one", L"two"));
    EXPECT_THAT(Texts(L"empty first"), ElementsAre(L"one"));
    EXPECT_THAT(Texts(L"unterminated"), ElementsAre(L"one", L"two"));
    EXPECT_THAT(Texts(L"nothing"), IsEmpty());
    EXPECT_THAT(Texts(L"no bytes"), IsEmpty());
}

TEST_F(RegistryTest, ReadsNoListFromOtherTypesNorFromWhatIsMissing)
{
    m_sandbox.SetText(kKey, L"text", L"abc");
    EXPECT_THAT(Texts(L"text"), IsEmpty());
    EXPECT_THAT(Texts(L"missing"), IsEmpty());
    std::vector<std::wstring> texts{L"before"};
    ReadRegistryMultiString(HKEY_LOCAL_MACHINE, L"Software\\Missing", L"", texts);
    EXPECT_THAT(texts, ElementsAre(L"before"));
}

TEST_F(RegistryTest, ReadsBinaryValuesThatFit)
{
    const std::array<unsigned char, 4> stored{1, 2, 3, 4};
    m_sandbox.SetValue(kKey, L"binary", REG_BINARY, stored.data(), stored.size());
    m_sandbox.SetText(kKey, L"text", L"a");
    std::array<unsigned char, 8> buffer{9, 9, 9, 9, 9, 9, 9, 9};
    EXPECT_TRUE(ReadRegistryBinary(HKEY_LOCAL_MACHINE, kKey, L"binary", buffer.data(), 8));
    EXPECT_THAT(buffer, ElementsAre(1, 2, 3, 4, 9, 9, 9, 9));
    EXPECT_TRUE(ReadRegistryBinary(HKEY_LOCAL_MACHINE, kKey, L"binary", buffer.data(), 4));
    EXPECT_FALSE(ReadRegistryBinary(HKEY_LOCAL_MACHINE, kKey, L"binary", buffer.data(), 3));
    // The type does not count.
    EXPECT_TRUE(ReadRegistryBinary(HKEY_LOCAL_MACHINE, kKey, L"text", buffer.data(), 8));
    EXPECT_THAT(buffer, ElementsAre('a', 0, 0, 0, 9, 9, 9, 9));
}

TEST_F(RegistryTest, NeedsEveryArgumentOfABinaryRead)
{
    const std::array<unsigned char, 4> stored{1, 2, 3, 4};
    m_sandbox.SetValue(kKey, L"binary", REG_BINARY, stored.data(), stored.size());
    m_sandbox.SetValue(kKey, L"", REG_BINARY, stored.data(), stored.size());
    m_sandbox.SetValue(L"", L"binary", REG_BINARY, stored.data(), stored.size());
    std::array<unsigned char, 4> buffer{};
    EXPECT_FALSE(ReadRegistryBinary(nullptr, kKey, L"binary", buffer.data(), 4));
    EXPECT_FALSE(ReadRegistryBinary(HKEY_LOCAL_MACHINE, nullptr, L"binary", buffer.data(), 4));
    EXPECT_FALSE(ReadRegistryBinary(HKEY_LOCAL_MACHINE, L"", L"binary", buffer.data(), 4));
    EXPECT_FALSE(ReadRegistryBinary(HKEY_LOCAL_MACHINE, kKey, nullptr, buffer.data(), 4));
    EXPECT_FALSE(ReadRegistryBinary(HKEY_LOCAL_MACHINE, kKey, L"", buffer.data(), 4));
    EXPECT_FALSE(ReadRegistryBinary(HKEY_LOCAL_MACHINE, kKey, L"binary", nullptr, 4));
    EXPECT_FALSE(ReadRegistryBinary(HKEY_LOCAL_MACHINE, kKey, L"missing", buffer.data(), 4));
    EXPECT_FALSE(
        ReadRegistryBinary(HKEY_LOCAL_MACHINE, L"Software\\Missing", L"x", buffer.data(), 4));
}
