#include "client/core/StoreOwner.h"

#include "client/core/JsonValues.h"

#include <gtest/gtest.h>

using namespace pim;

TEST(StoreOwnerTest, TheUserIsATableOfWhatIsTold)
{
    const Identity identity = {L"maja",
                               L"SMTP",
                               L"Maja\nLindqvist",
                               L"",
                               L"maja@example.com",
                               L"Maja",
                               L"Lindqvist",
                               L"",
                               L"",
                               L"Maja L."};
    EXPECT_EQ(IdentityTable(identity),
              L"Account              maja\n"
              L"Address type         SMTP\n"
              L"Name                 Maja Lindqvist\n"
              L"E-mail address       maja@example.com\n"
              L"First name           Maja\n"
              L"Last name            Lindqvist\n"
              L"Name as transmitted  Maja L.\n");
    EXPECT_EQ(IdentityTable({}), L"The store does not tell who its user is.\n");
}

TEST(StoreOwnerTest, TheUserIsAnObjectOfTenMembers)
{
    const Identity identity = {L"a", L"b", L"c\u00E9", L"d", L"e", L"f", L"g", L"h", L"", L"j"};
    EXPECT_EQ(JsonText(IdentityJson(identity)),
              L"{\n"
              L"  \"account\": \"a\",\n"
              L"  \"addressType\": \"b\",\n"
              L"  \"displayName\": \"c\u00E9\",\n"
              L"  \"company\": \"d\",\n"
              L"  \"emailAddress\": \"e\",\n"
              L"  \"firstName\": \"f\",\n"
              L"  \"lastName\": \"g\",\n"
              L"  \"officeLocation\": \"h\",\n"
              L"  \"smtpAddress\": null,\n"
              L"  \"transmitableDisplayName\": \"j\"\n"
              L"}\n");
}

TEST(StoreOwnerTest, FoldersStandInTheServersOrder)
{
    const std::vector<ContactFolder> folders = {{L"0B", L"Suppliers", 12, false},
                                                {L"0A", L"Contacts", 0, true}};
    EXPECT_EQ(FolderTable(folders),
              L"FOLDER     ITEMS           ID\n"
              L"Suppliers  12              0B\n"
              L"Contacts   0      default  0A\n");
    EXPECT_EQ(FolderTable({}), L"No contact folders.\n");
    EXPECT_EQ(JsonText(FoldersJson(folders)),
              L"{\n"
              L"  \"folders\": [\n"
              L"    {\n"
              L"      \"id\": \"0B\",\n"
              L"      \"name\": \"Suppliers\",\n"
              L"      \"items\": 12,\n"
              L"      \"default\": false\n"
              L"    },\n"
              L"    {\n"
              L"      \"id\": \"0A\",\n"
              L"      \"name\": \"Contacts\",\n"
              L"      \"items\": 0,\n"
              L"      \"default\": true\n"
              L"    }\n"
              L"  ]\n"
              L"}\n");
    EXPECT_EQ(JsonText(FoldersJson({})), L"{\n  \"folders\": []\n}\n");
}
