#include "outlook/store/MAPIHelper.h"

#include "outlook/store/WAPProxcy.h"
#include "tests/outlook/FakeAddressBook.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{
// Tells of its unloading and of its end.
class WatchedProxcy : public CWAPProxcy
{
  public:
    explicit WatchedProxcy(std::string& trace) : m_trace(trace) {}
    ~WatchedProxcy() override { m_trace += "delete;"; }
    bool Unload() override
    {
        m_trace += "unload;";
        return CWAPProxcy::Unload();
    }

  private:
    std::string& m_trace;
};
} // namespace

TEST(MAPIHelperTest, UnloadsAndDeletesItsProxyAtTheEnd)
{
    std::string trace;
    {
        auto proxy = std::make_unique<WatchedProxcy>(trace);
        CNProxcy* const raw = proxy.get();
        const CMAPIHelper helper(std::move(proxy));
        EXPECT_EQ(raw, &helper.Proxy());
        EXPECT_EQ("", trace);
    }
    EXPECT_EQ("unload;delete;", trace);
}

TEST(MAPIHelperTest, WritesAnEntryIdAsUpperCaseHex)
{
    BYTE bytes[] = {0x00, 0xAB, 0x7F};
    EXPECT_EQ(L"00AB7F", CMAPIHelper::BinaryToHex(SBinary{3, bytes}));
    EXPECT_EQ(L"", CMAPIHelper::BinaryToHex(SBinary{0, bytes}));
    EXPECT_EQ(L"", CMAPIHelper::BinaryToHex(SBinary{3, nullptr}));
}

TEST(MAPIHelperTest, EveryTextGivesAnEntryId)
{
    EntryId id = CMAPIHelper::HexToBinary(L"ABC");
    ASSERT_EQ(1u, id.Size());
    EXPECT_EQ(0xAB, id.View().lpb[0]);
    EXPECT_EQ(1u, id.View().cb);
    EXPECT_EQ(static_cast<void*>(id.Get()), static_cast<void*>(id.View().lpb));
    EXPECT_EQ(0u, CMAPIHelper::HexToBinary(L"").Size());
}

TEST(MAPIHelperTest, RestoresAnEntryId)
{
    BYTE bytes[256];
    for (int value = 0; value < 256; ++value)
        bytes[value] = static_cast<BYTE>(value);
    EntryId id = CMAPIHelper::HexToBinary(CMAPIHelper::BinaryToHex(SBinary{256, bytes}));
    ASSERT_EQ(256u, id.Size());
    EXPECT_EQ(0, std::memcmp(bytes, id.View().lpb, 256));
}

// 1899-12-31 00:00 is DATE 1; 1601-01-01 lies 109,205 days before 1899-12-30. A day has 864,000
// million units of 100 nanoseconds, so noon of 1601-01-02 is 36 hours of 36,000 million.
TEST(MAPIHelperTest, ConvertsTimesWithoutAChangeOfZone)
{
    constexpr unsigned long long kUnitsPerHour = 36'000'000'000ull;
    const unsigned long long units = 36 * kUnitsPerHour;
    const FILETIME time = {static_cast<DWORD>(units), static_cast<DWORD>(units >> 32)};
    // A negative DATE counts its fraction forward.
    EXPECT_DOUBLE_EQ(-109204.5, CMAPIHelper::FileTimeToDate(time));
    const FILETIME back = CMAPIHelper::DateToFileTime(-109204.5);
    EXPECT_EQ(time.dwLowDateTime, back.dwLowDateTime);
    EXPECT_EQ(time.dwHighDateTime, back.dwHighDateTime);
}

TEST(MAPIHelperTest, ATimeThatCannotBeConvertedGivesZero)
{
    EXPECT_EQ(0.0, CMAPIHelper::FileTimeToDate(FILETIME{0xFFFFFFFF, 0xFFFFFFFF}));
    const FILETIME none = CMAPIHelper::DateToFileTime(1e9);
    EXPECT_EQ(0u, none.dwLowDateTime);
    EXPECT_EQ(0u, none.dwHighDateTime);
}

// Two hours east of UTC, without daylight time: 10:00 local is 08:00 UTC. DATE 40000.5 is noon.
TEST(MAPIHelperTest, ConvertsByTheRulesOfAZone)
{
    TIME_ZONE_INFORMATION zone = {};
    zone.Bias = -120;
    const FILETIME utcTime = CMAPIHelper::LocalDateToUtcFileTime(40000.5, &zone);
    EXPECT_NEAR(40000.0 + 10.0 / 24.0, CMAPIHelper::FileTimeToDate(utcTime), 1e-9);
    EXPECT_NEAR(40000.5, CMAPIHelper::UtcFileTimeToLocalDate(utcTime, &zone), 1e-9);
}
