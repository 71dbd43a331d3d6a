#include "client/core/ContactGroup.h"

#include "client/core/FixedZone.h"
#include "client/core/JsonValues.h"

#include <gtest/gtest.h>

using namespace pim;

namespace
{
const FixedZone kZone(2);

ContactGroup Board()
{
    ContactGroup group;
    group.id = L"00AB";
    group.name = L"Board";
    group.groupId = L"0102";
    group.folderId = L"00CD";
    group.modifiedUtc = kMay1 + 8 * kHour;
    group.members = {{L"01", L"Oda Bakken"}, {L"02", std::nullopt}};
    group.subgroups = {{L"03", L"Auditors"}};
    group.categories = {L"Business"};
    return group;
}
} // namespace

TEST(ContactGroupTest, ShowsALineForEachGroup)
{
    const ContactGroup groups[] = {Board(), ContactGroup()};
    EXPECT_EQ(GroupTable(groups, TableRoom()),
              L"NAME   MEMBERS  SUBGROUPS  ID\n"
              L"Board  2        1          00AB\n"
              L"       0        0\n");
}

TEST(ContactGroupTest, ShowsMembersByNameOrId)
{
    EXPECT_EQ(GroupDetails(Board(), kZone),
              L"Name:       Board\n"
              L"Member:     Oda Bakken\n"
              L"Member:     02\n"
              L"Subgroup:   Auditors\n"
              L"Category:   Business\n"
              L"Changed:    2024-05-01 10:00 (2024-05-01 08:00 UTC)\n"
              L"Group ID:   0102\n"
              L"Folder:     00CD\n"
              L"ID:         00AB\n");
}

TEST(ContactGroupTest, GivesEveryMemberOfTheObject)
{
    EXPECT_EQ(GroupJson(Board()).dump(),
              R"({"id":"00AB","name":"Board","groupId":"0102","folderId":"00CD",)"
              R"("modifiedUtc":"2024-05-01T08:00:00Z",)"
              R"("members":[{"id":"01","name":"Oda Bakken"},{"id":"02","name":null}],)"
              R"("subgroups":[{"id":"03","name":"Auditors"}],"categories":["Business"]})");
    EXPECT_EQ(GroupJson(ContactGroup()).dump(),
              R"({"id":null,"name":null,"groupId":null,"folderId":null,"modifiedUtc":null,)"
              R"("members":[],"subgroups":[],"categories":[]})");
}

TEST(ContactGroupTest, StandsByName)
{
    ContactGroup other = Board();
    other.name = L"auditors";
    EXPECT_TRUE(ComesBefore(other, Board()));
    EXPECT_FALSE(ComesBefore(Board(), other));
    other.name = L"BOARD";
    other.id = L"00AA";
    EXPECT_TRUE(ComesBefore(other, Board()));
    EXPECT_TRUE(ComesBefore(Board(), ContactGroup()));
}
