// The lists were written down from the order of the columns, by hand.
#include "outlook/contacts/ContactColumns.h"

#include "outlook/contacts/ContactStoreFixture.h"

using testing::ElementsAre;
using testing::ElementsAreArray;

namespace
{
// With every name known, see ContactStoreFixture.h.
// clang-format off
const std::vector<ULONG> kAllColumns = {
    0x30080040, 0x3A06001F, 0x3A11001F, 0x3A44001F, 0x3A17001F, 0x3A16001F, 0x80620000,
    0x3A57001F, 0x3A1C001F, 0x3A08001F, 0x3A1B001F, 0x3A09001F, 0x3A2F001F, 0x3A24001F,
    0x3A25001F, 0x3A21001F, 0x3A1F001F, 0x3A2E001F, 0x3A1E001F, 0x3A1D001F, 0x80800000,
    0x80820000, 0x80830000, 0x80840000, 0x80900000, 0x80920000, 0x80930000, 0x80940000,
    0x80A00000, 0x80A20000, 0x80A30000, 0x80A40000, 0x3A51001F, 0x3A5A001F, 0x3A5C001F,
    0x3A59001F, 0x3A5D001F, 0x3A5B001F, 0x3A5E001F, 0x8049001F, 0x8047001F, 0x8046001F,
    0x8045001F, 0x8048001F, 0x804A001F, 0x3A60001F, 0x3A62001F, 0x3A5F001F, 0x3A63001F,
    0x3A61001F, 0x3A64001F, 0x3A420040, 0x3A410040, 0x3A05001F, 0x3A1E001F, 0x3A1D001F,
    0x10090102, 0x80E2101F, 0x3001001F, 0x80DE0000, 0x80DF0000};
// clang-format on

constexpr ULONG kUnknown = 0x0000000A;

class ContactColumnsTest : public ContactStoreTest
{
  protected:
    ContactColumnTags Find()
    {
        store.AddMessage("ann", "contacts");
        Open();
        const auto message = OpenMessage("ann");
        store.ClearRecord();
        if (fault != StoreFault::None)
            store.FailNext(failing, fault);
        return FindContactColumns(*folder.Get(), message.Get(), Proxy());
    }

    std::string failing;
    StoreFault fault = StoreFault::None;
};
} // namespace

TEST_F(ContactColumnsTest, StandInTheirOrderWithEveryName)
{
    NameContactProperties(store);
    const ContactColumnTags columns = Find();
    EXPECT_THAT(columns.tags, ElementsAreArray(kAllColumns));
    EXPECT_EQ(61u, columns.tags.size());
    EXPECT_TRUE(columns.hasLocalDates);
    const std::string folderCall = std::string("IMAPIFolder(contacts).GetIDsFromNames([");
    EXPECT_THAT(
        store.Calls(),
        ElementsAre(folderCall + kAddressSetText +
                        " 8062 8080 8082 8083 8084 8090 8092 8093 8094 80A0 80A2 80A3 80A4 80DE "
                        "80DF], 00000000)",
                    "IMessage(ann).QueryInterface(IMAPIProp)",
                    std::string("IMessage(ann).GetIDsFromNames([") + kAddressSetText +
                        " 8049 8047 8046 8045 8048 804A 801B], 00000000)",
                    folderCall + kPublicSetText + " \"Keywords\"], 00000000)"));
}

TEST_F(ContactColumnsTest, WithoutNamesTheBusinessAddressIsThatOfAnyMessage)
{
    const ContactColumnTags columns = Find();
    std::vector<ULONG> expected(kAllColumns.begin(), kAllColumns.end() - 2);
    expected[6] = kUnknown;
    for (std::size_t i = 20; i < 32; ++i)
        expected[i] = kUnknown;
    const ULONG fixed[] = {0x3A26001F, 0x3A28001F, 0x3A27001F, 0x3A29001F, 0x3A2A001F, 0x3A2B001F};
    std::copy(std::begin(fixed), std::end(fixed), expected.begin() + 39);
    expected[57] = kUnknown;
    EXPECT_THAT(columns.tags, ElementsAreArray(expected));
    EXPECT_EQ(59u, columns.tags.size());
    EXPECT_FALSE(columns.hasLocalDates);
}

TEST_F(ContactColumnsTest, EachNameOfTheBusinessAddressIsReplacedByItself)
{
    store.NameProperty(kAddressNames, 0x8046); // city: 8000
    store.NameProperty(kAddressNames, 0x804A); // box: 8001
    const ContactColumnTags columns = Find();
    EXPECT_THAT(
        std::vector<ULONG>(columns.tags.begin() + 39, columns.tags.begin() + 45),
        ElementsAre(0x3A26001F, 0x3A28001F, 0x8000001F, 0x3A29001F, 0x3A2A001F, 0x8001001F));
}

// Both local dates and the first of the names must be known.
TEST_F(ContactColumnsTest, LocalDatesNeedBothNamesAndTheFirst)
{
    const std::vector<std::vector<LONG>> known = {
        {0x8062, 0x80DE, 0x80DF}, {0x80DE, 0x80DF}, {0x8062, 0x80DE}, {0x8062, 0x80DF}, {0x8062}};
    for (std::size_t i = 0; i < known.size(); ++i)
    {
        Close();
        store.Reset();
        store.AddUsualFolders();
        for (const LONG name : known[i])
            store.NameProperty(kAddressNames, name);
        const ContactColumnTags columns = Find();
        EXPECT_EQ(i == 0, columns.hasLocalDates) << i;
        ASSERT_EQ(i == 0 ? 61u : 59u, columns.tags.size()) << i;
        if (i == 0)
        {
            EXPECT_EQ(0x80010000u, columns.tags[59]);
            EXPECT_EQ(0x80020000u, columns.tags[60]);
        }
    }
}

TEST_F(ContactColumnsTest, ALookupThatFailsLeavesItsColumnsWithoutATag)
{
    NameContactProperties(store);
    failing = "IMAPIFolder(contacts).GetIDsFromNames";
    fault = StoreFault::CallFailed;
    const ContactColumnTags columns = Find();
    std::vector<ULONG> expected(kAllColumns.begin(), kAllColumns.end() - 2);
    expected[6] = 0;
    for (std::size_t i = 20; i < 32; ++i)
        expected[i] = 0;
    EXPECT_THAT(columns.tags, ElementsAreArray(expected));
    EXPECT_FALSE(columns.hasLocalDates);
}

TEST_F(ContactColumnsTest, AFailedLookupOfTheBusinessAddressLeavesItUnset)
{
    NameContactProperties(store);
    failing = "IMessage(ann).GetIDsFromNames";
    fault = StoreFault::CallFailed;
    const ContactColumnTags columns = Find();
    std::vector<ULONG> expected = kAllColumns;
    for (std::size_t i = 39; i < 45; ++i)
        expected[i] = 0;
    EXPECT_THAT(columns.tags, ElementsAreArray(expected));
}

TEST_F(ContactColumnsTest, AMessageThatAnswersNoQuestionsHasTheBusinessAddressOfAnyMessage)
{
    NameContactProperties(store);
    failing = "IMessage(ann).QueryInterface(IMAPIProp)";
    fault = StoreFault::CallFailed;
    const ContactColumnTags columns = Find();
    EXPECT_THAT(
        std::vector<ULONG>(columns.tags.begin() + 39, columns.tags.begin() + 45),
        ElementsAre(0x3A26001F, 0x3A28001F, 0x3A27001F, 0x3A29001F, 0x3A2A001F, 0x3A2B001F));
    EXPECT_EQ(3u, store.Calls().size());
}

TEST_F(ContactColumnsTest, WithoutAMessageTheBusinessAddressIsThatOfAnyMessage)
{
    NameContactProperties(store);
    Open();
    const ContactColumnTags columns = FindContactColumns(*folder.Get(), nullptr, Proxy());
    EXPECT_EQ(0x3A26001Fu, columns.tags[39]);
    EXPECT_EQ(0x3A2B001Fu, columns.tags[44]);
    EXPECT_EQ(61u, columns.tags.size());
}
