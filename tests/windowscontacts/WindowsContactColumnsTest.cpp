// The lists of properties of Windows contacts, whole and in their order. Both were copied by hand
// from the description of the address book's contacts, not from the program.
#include "windowscontacts/WindowsContactColumns.h"

#include <gmock/gmock.h>

using testing::ElementsAreArray;

TEST(WindowsContactColumnsTest, AsksForTheseProperties)
{
    constexpr ULONG kWanted[] = {
        0x30080040, 0x3A06001F, 0x3A11001F, 0x3A44001F, 0x3A17001F, 0x3A16001F, 0x3A57001F,
        0x3A1C001F, 0x3A08001F, 0x3A1B001F, 0x3A09001F, 0x3A2F001F, 0x3A24001F, 0x3A25001F,
        0x3A21001F, 0x3A1F001F, 0x3A2E001F, 0x3A1E001F, 0x3A1D001F, 0x3A56101F, 0x3A54101F,
        0x3A550003, 0x3A50001F, 0x3A51001F, 0x3A5A001F, 0x3A5C001F, 0x3A59001F, 0x3A5D001F,
        0x3A5B001F, 0x3A5E001F, 0x3A26001F, 0x3A28001F, 0x3A27001F, 0x3A29001F, 0x3A2A001F,
        0x3A2B001F, 0x3A60001F, 0x3A62001F, 0x3A5F001F, 0x3A63001F, 0x3A61001F, 0x3A64001F,
        0x3A420040, 0x3A410040, 0x3A05001F};
    static_assert(std::size(kWanted) == 45);
    EXPECT_THAT(WindowsContactColumnTags(), ElementsAreArray(kWanted));
}

TEST(WindowsContactColumnsTest, AnUpdateDeletesThese)
{
    constexpr ULONG kWanted[] = {
        0x3A51001F, 0x3A50001F, 0x3A4C001F, 0x3A59001F, 0x3A5A001F, 0x3A5B001F, 0x3A5C001F,
        0x3A5D001F, 0x3A5E001F, 0x3A27001F, 0x3A26001F, 0x3A2A001F, 0x3A28001F, 0x3A29001F,
        0x3A2B001F, 0x3A5F001F, 0x3A60001F, 0x3A61001F, 0x3A62001F, 0x3A63001F, 0x3A64001F,
        0x3A08001F, 0x3A1B001F, 0x3A2E001F, 0x3A24001F, 0x3A1C001F, 0x3A02001F, 0x3A1E001F,
        0x3A57001F, 0x3A09001F, 0x3A2F001F, 0x3A25001F, 0x3A1F001F, 0x3A56101F, 0x3A54101F,
        0x3A550003, 0x3001001F, 0x3A06001F, 0x3A44001F, 0x3A11001F, 0x3A45001F, 0x3A420040,
        0x3A410040, 0x3A16001F, 0x3A18001F, 0x3A17001F, 0x3A19001F, 0x660E001F, 0x3A4F001F,
        0x3A48001F, 0x3A58101F, 0x3A21001F, 0x3A23001F, 0x3A1D001F, 0x3A4B001F, 0x3A2D001F,
        0x3A2C001F, 0x3003001F, 0x3002001F};
    static_assert(std::size(kWanted) == 59);
    EXPECT_THAT(WindowsContactClearedTags(), ElementsAreArray(kWanted));
}
