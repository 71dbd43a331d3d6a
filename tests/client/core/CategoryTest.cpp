#include "client/core/Category.h"

#include "client/core/FixedZone.h"
#include "client/core/JsonValues.h"

#include <gtest/gtest.h>

using namespace pim;

namespace
{
const FixedZone kZone(2);

Category Travel()
{
    Category category;
    category.id = L"{1}";
    category.name = L"Travel";
    category.color = -1;
    category.lastUsedUtc = kMay1 + 8 * kHour;
    category.items = {L"00AB"};
    return category;
}
} // namespace

TEST(CategoryTest, ShowsALineForEachCategory)
{
    const Category categories[] = {Travel(), Category()};
    EXPECT_EQ(CategoryTable(categories, TableRoom()),
              L"NAME    COLOR  ID\n"
              L"Travel  -1     {1}\n"
              L"\n");
}

TEST(CategoryTest, ShowsEveryField)
{
    EXPECT_EQ(CategoryDetails(Travel(), kZone),
              L"Name:       Travel\n"
              L"Color:      -1\n"
              L"Last used:  2024-05-01 10:00 (2024-05-01 08:00 UTC)\n"
              L"Item:       00AB\n"
              L"ID:         {1}\n");
    EXPECT_EQ(CategoryDetails(Category(), kZone), L"");
}

TEST(CategoryTest, GivesEveryMemberOfTheObject)
{
    EXPECT_EQ(CategoryJson(Travel()).dump(),
              R"({"id":"{1}","name":"Travel","color":-1,"lastUsedUtc":"2024-05-01T08:00:00Z",)"
              R"("items":["00AB"]})");
    EXPECT_EQ(CategoryJson(Category()).dump(),
              R"({"id":null,"name":null,"color":null,"lastUsedUtc":null,"items":[]})");
}

TEST(CategoryTest, StandsByName)
{
    Category other = Travel();
    other.name = L"business";
    EXPECT_TRUE(ComesBefore(other, Travel()));
    EXPECT_FALSE(ComesBefore(Travel(), other));
    EXPECT_TRUE(ComesBefore(Travel(), Category()));
}
