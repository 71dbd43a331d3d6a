#include "outlook/contacts/NameSettings.h"

#include "support/RegistrySandbox.h"

#include <gtest/gtest.h>

namespace
{
constexpr wchar_t k15[] = L"Software\\Microsoft\\Office\\15.0\\Outlook\\Contact";
constexpr wchar_t k14[] = L"Software\\Microsoft\\Office\\14.0\\Outlook\\Contact";
constexpr wchar_t k12[] = L"Software\\Microsoft\\Office\\12.0\\Outlook\\Contact";
constexpr wchar_t k11[] = L"Software\\Microsoft\\Office\\11.0\\Outlook\\Contact";

// The current user's key is another one meanwhile; it lies below the real one, so it is made first.
class NameSettingsTest : public testing::Test
{
  protected:
    void Set(const wchar_t* key, DWORD order, const wchar_t* style = nullptr)
    {
        registry.SetValue(key, L"FileAsOrder", REG_DWORD, &order, sizeof order);
        if (style)
            registry.SetText(key, L"NameParserStyle", style);
    }
    void Expect(std::uint32_t order, const std::wstring& style)
    {
        const NameSettings settings = ReadNameSettings();
        EXPECT_EQ(order, settings.fileAsOrder);
        EXPECT_EQ(style, settings.parserStyle);
    }

    RegistrySandbox registry{HKEY_CURRENT_USER};
};
} // namespace

TEST_F(NameSettingsTest, WithoutAKeyNothingWasChosen)
{
    Expect(0, L"");
}

TEST_F(NameSettingsTest, TheNewestKeyWithAnOrderIsTaken)
{
    Set(k11, 0x8037, L"E");
    Expect(0x8037, L"E");
    Set(k12, 0x8017, L"S");
    Expect(0x8017, L"S");
    Set(k14, 0x3A16, L"H");
    Expect(0x3A16, L"H");
    Set(k15, 0x3A06, L"other");
    Expect(0x3A06, L"other");
}

TEST_F(NameSettingsTest, AnOrderOfZeroCountsAsNone)
{
    Set(k15, 0, L"S");
    Set(k14, 0x8017);
    Set(k11, 0x3A06, L"E");
    // The style comes from the same key, where it has none.
    Expect(0x8017, L"");
}

TEST_F(NameSettingsTest, AStyleAloneCountsForNothing)
{
    registry.SetText(k15, L"NameParserStyle", L"E");
    Expect(0, L"");
}

TEST_F(NameSettingsTest, TheOrderIsANumber)
{
    registry.SetText(k15, L"FileAsOrder", L"1");
    const std::uint64_t wide = 0x8017;
    registry.SetValue(k14, L"FileAsOrder", REG_QWORD, &wide, sizeof wide);
    const DWORD bytes = 0x8018;
    registry.SetValue(k12, L"FileAsOrder", REG_BINARY, &bytes, sizeof bytes);
    Expect(0, L"");
}

TEST_F(NameSettingsTest, OtherVersionsAreNotAsked)
{
    Set(L"Software\\Microsoft\\Office\\16.0\\Outlook\\Contact", 0x8017, L"E");
    Set(L"Software\\Microsoft\\Office\\13.0\\Outlook\\Contact", 0x8017, L"E");
    Set(L"Software\\Microsoft\\Office\\10.0\\Outlook\\Contact", 0x8017, L"E");
    Expect(0, L"");
}
