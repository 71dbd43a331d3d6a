#include "outlook/store/UserProperties.h"

#include "support/DebugOutputCapture.h"
#include "tests/outlook/FakeStore.h"

#include <gmock/gmock.h>

using testing::ElementsAre;

namespace
{
using Texts = std::vector<std::wstring>;

// In the order of the properties.
Texts TextsOf(const UserIdentity& identity)
{
    return {identity.account,
            identity.addressType,
            identity.displayName,
            identity.company,
            identity.emailAddress,
            identity.firstName,
            identity.lastName,
            identity.officeLocation,
            identity.smtpAddress,
            identity.transmitableDisplayName};
}

class UserPropertiesTest : public testing::Test
{
  protected:
    UserPropertiesTest() : helper(MakeProxy()), user(calls, *proxy)
    {
        user.values = {TextValue(0x3A00001F, L"account"),
                       TextValue(0x3002001F, L"type"),
                       TextValue(0x3001001F, L"display"),
                       TextValue(0x3A16001F, L"company"),
                       TextValue(0x3003001F, L"address"),
                       TextValue(0x3A06001F, L"first"),
                       TextValue(0x3A11001F, L"last"),
                       TextValue(0x3A19001F, L"office"),
                       TextValue(0x39FE001F, L"smtp"),
                       TextValue(0x3A20001F, L"transmitable")};
    }
    ~UserPropertiesTest() override { EXPECT_EQ(0u, proxy->Live()); }

    // The texts that the values give.
    Texts Read() { return TextsOf(CUserProperties(&user, &helper)); }

    StoreCalls calls;
    FakeStoreProxcy* proxy = nullptr;
    CMAPIHelper helper;
    FakeProp user;
    const Texts all = {L"account",
                       L"type",
                       L"display",
                       L"company",
                       L"address",
                       L"first",
                       L"last",
                       L"office",
                       L"smtp",
                       L"transmitable"};
    const Texts none = Texts(10);

  private:
    std::unique_ptr<CNProxcy> MakeProxy()
    {
        auto owned = std::make_unique<FakeStoreProxcy>(calls);
        proxy = owned.get();
        return owned;
    }
};
} // namespace

TEST_F(UserPropertiesTest, ReadsTenTextsInOneCall)
{
    EXPECT_EQ(all, Read());
    EXPECT_EQ((StoreCalls{"GetProps 3A00001F 3002001F 3001001F 3A16001F 3003001F 3A06001F 3A11001F "
                          "3A19001F 39FE001F 3A20001F, flags 80000000",
                          "FreeBuffer values"}),
              calls);
}

TEST_F(UserPropertiesTest, HoldsTheIdentityObjectUntilItsEnd)
{
    {
        const CUserProperties properties(&user, &helper);
        EXPECT_EQ(2u, user.References());
    }
    EXPECT_EQ(1u, user.References());
}

TEST_F(UserPropertiesTest, KeepsItsTextsWhenTheProviderEnds)
{
    CUserProperties properties(&user, &helper);
    properties.Detach();
    EXPECT_EQ(1u, user.References());
    EXPECT_EQ(all, TextsOf(properties));
    properties.Detach();
}

TEST_F(UserPropertiesTest, IsEmptyWithoutAnIdentityObjectOrAHelper)
{
    EXPECT_EQ(none, TextsOf(CUserProperties(nullptr, &helper)));
    EXPECT_EQ(none, TextsOf(CUserProperties(&user, nullptr)));
    EXPECT_EQ(StoreCalls{}, calls);
}

TEST_F(UserPropertiesTest, AMissingPropertyLeavesItsTextEmpty)
{
    user.getPropsResult = MAPI_W_ERRORS_RETURNED;
    user.values[8] = MissingValue(0x39FE001F);
    Texts expected = all;
    expected[8].clear(); // the SMTP address
    EXPECT_EQ(expected, Read());
}

TEST_F(UserPropertiesTest, EachPropertyMayBeMissing)
{
    const std::vector<SPropValue> values = user.values;
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        user.values = values;
        user.values[i] = MissingValue(values[i].ulPropTag);
        Texts expected = all;
        expected[i].clear();
        EXPECT_EQ(expected, Read()) << i;
    }
}

TEST_F(UserPropertiesTest, AFailedReadingLeavesAllTextsEmpty)
{
    for (const StoreFailure failure :
         {StoreFailure::OutOfMemory, StoreFailure::CallFailed, StoreFailure::GivesNull})
    {
        user.getProps = failure;
        EXPECT_EQ(none, Read());
        EXPECT_EQ(1u, user.References());
    }
}

TEST_F(UserPropertiesTest, ValuesThatWereNotDeliveredAreEmpty)
{
    user.getProps = StoreFailure::Warning; // nine of ten
    Texts expected = all;
    expected[9].clear();
    EXPECT_EQ(expected, Read());
}

TEST_F(UserPropertiesTest, ValuesBeyondTheTenAreNotRead)
{
    user.values.push_back(TextValue(0x3A00001F, L"eleventh"));
    EXPECT_EQ(all, Read());
}

TEST_F(UserPropertiesTest, ValuesThatAreNoWideTextAreNotFollowed)
{
    user.values[0] = NumberValue(0x3A000003, 16);
    user.values[1] = TextValue(0x3002001F, nullptr);
    Texts expected = all;
    expected[0].clear();
    expected[1].clear();
    EXPECT_EQ(expected, Read());
}

TEST_F(UserPropertiesTest, StopsItsWalkAndTellsThatItRead)
{
    CUserProperties properties(nullptr, nullptr);
    BOOL goesOn = TRUE;
    EXPECT_EQ(1, properties.OnPropertyRow(10, user.values.data(), 0, &goesOn));
    EXPECT_EQ(0, goesOn);
    EXPECT_EQ(all, TextsOf(properties));
}

TEST_F(UserPropertiesTest, TheLogTellsTheReading)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    Read();
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("==========EnumerateProperties pMAPIProperty->GetProps, "
                            "hr = (0X0000000000000000)! \r\n"));
}
