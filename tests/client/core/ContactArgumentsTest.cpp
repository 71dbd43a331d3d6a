#include "client/core/ContactArguments.h"

#include "client/core/CommandLine.h"

#include <gmock/gmock.h>

using namespace pim;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{
ContactOptions Added(std::vector<std::string> options)
{
    options.insert(options.begin(), {"contacts", "add"});
    const CommandLineResult result = ParseCommandLine(std::move(options), "1");
    EXPECT_TRUE(result.command) << std::string(result.error.begin(), result.error.end());
    return result.command ? result.command->contact : ContactOptions();
}

std::wstring Refused(std::vector<std::string> options)
{
    options.insert(options.begin(), {"contacts", "add"});
    const CommandLineResult result = ParseCommandLine(std::move(options), "1");
    EXPECT_FALSE(result.command);
    EXPECT_EQ(result.exitCode, kExitUsage);
    return result.error;
}
} // namespace

TEST(ContactArgumentsTest, ReadsEveryText)
{
    const Contact wish = Added({"--first-name",
                                "Oda",
                                "--middle-name",
                                "Marie",
                                "--last-name",
                                "B\xC3\xA6k",
                                "--suffix",
                                "PhD",
                                "--company",
                                "Fjordlab",
                                "--job-title",
                                "Head",
                                "--im",
                                "oda@chat",
                                "--website",
                                "https://x",
                                "--notes",
                                "one\ntwo"})
                             .wish;
    EXPECT_EQ(wish.firstName, L"Oda");
    EXPECT_EQ(wish.middleName, L"Marie");
    EXPECT_EQ(wish.lastName, (std::wstring{L'B', wchar_t(0xE6), L'k'}));
    EXPECT_EQ(wish.suffix, L"PhD");
    EXPECT_EQ(wish.company, L"Fjordlab");
    EXPECT_EQ(wish.jobTitle, L"Head");
    EXPECT_EQ(wish.instantMessaging, L"oda@chat");
    EXPECT_EQ(wish.website, L"https://x");
    EXPECT_EQ(wish.notes, L"one\ntwo");
    EXPECT_FALSE(wish.emails);
    EXPECT_FALSE(wish.birthday);
    EXPECT_FALSE(wish.picture);
    EXPECT_FALSE(wish.addresses[0]);
    EXPECT_FALSE(wish.phones[0]);
}

TEST(ContactArgumentsTest, ReadsListsOneEntryAtATime)
{
    const Contact wish =
        Added({"--email", "a@x", "--category", "A", "--email", "b@x", "--category", "B"}).wish;
    EXPECT_THAT(*wish.emails, ElementsAre(L"a@x", L"b@x"));
    EXPECT_THAT(*wish.categories, ElementsAre(L"A", L"B"));
    EXPECT_THAT(*Added({"--email", ""}).wish.emails, IsEmpty());
    // What stands behind the value is the ID.
    const auto update =
        ParseCommandLine({"contacts", "update", "--email", "a@x", "00AB"}, "1").command;
    ASSERT_TRUE(update);
    EXPECT_THAT(update->ids, ElementsAre(L"00AB"));
    EXPECT_THAT(*update->contact.wish.emails, ElementsAre(L"a@x"));
}

TEST(ContactArgumentsTest, ReadsPhonesByTheirTypes)
{
    constexpr const char* kTypes[] = {"company",
                                      "mobile",
                                      "work",
                                      "work2",
                                      "home",
                                      "home2",
                                      "workFax",
                                      "homeFax",
                                      "pager",
                                      "other",
                                      "assistant",
                                      "car",
                                      "radio"};
    for (std::size_t i = 0; i < std::size(kTypes); ++i)
    {
        const Contact wish = Added({"--phone", std::string(kTypes[i]) + "=+47 1=2"}).wish;
        for (std::size_t other = 0; other < kPhoneTypeCount; ++other)
            EXPECT_EQ(wish.phones[other].value_or(L"none"), other == i ? L"+47 1=2" : L"none");
    }
    const Contact wish = Added({"--phone", "WORKFAX=1", "--phone", "mobile="}).wish;
    EXPECT_EQ(wish.phones[6], L"1");
    EXPECT_EQ(wish.phones[1], L"");
}

TEST(ContactArgumentsTest, ReadsAddressesByTheirParts)
{
    const Contact wish = Added({"--address",
                                "home.street=Lia 8",
                                "--address",
                                "home.postOfficeBox=1",
                                "--address",
                                "home.postalCode=2",
                                "--address",
                                "home.city=Oslo",
                                "--address",
                                "home.state=3",
                                "--address",
                                "home.country=4",
                                "--address",
                                "Business.City=Bergen",
                                "--address",
                                "other.city="})
                             .wish;
    EXPECT_EQ(wish.addresses[0]->street, L"Lia 8");
    EXPECT_EQ(wish.addresses[0]->postOfficeBox, L"1");
    EXPECT_EQ(wish.addresses[0]->postalCode, L"2");
    EXPECT_EQ(wish.addresses[0]->city, L"Oslo");
    EXPECT_EQ(wish.addresses[0]->state, L"3");
    EXPECT_EQ(wish.addresses[0]->country, L"4");
    EXPECT_EQ(wish.addresses[1]->city, L"Bergen");
    EXPECT_FALSE(wish.addresses[1]->street);
    EXPECT_EQ(wish.addresses[2]->city, L"");
}

TEST(ContactArgumentsTest, ReadsDaysAndPictures)
{
    const Contact wish =
        Added({"--birthday", "1984-06-12", "--anniversary", "None", "--picture", "a.jpg"}).wish;
    EXPECT_EQ(wish.birthday, 30845.0); // see SampleContact.h
    EXPECT_EQ(wish.anniversary, kNoDay);
    EXPECT_EQ(wish.picture, L"a.jpg");
    EXPECT_EQ(Added({"--picture", "NONE"}).wish.picture, L"");
}

TEST(ContactArgumentsTest, TakesAFileInPlaceOfOptions)
{
    EXPECT_EQ(Added({"--from", "all.json"}).file, L"all.json");
    EXPECT_EQ(Added({"--from", "-"}).file, L"-");
    EXPECT_FALSE(Added({"--company", "x"}).file);
    EXPECT_THAT(Refused({"--from", "all.json", "--company", "x"}), HasSubstr(L"--from"));
    EXPECT_THAT(Refused({"--from", "all.json", "--phone", "home=1"}), HasSubstr(L"--from"));
    EXPECT_THAT(Refused({"--from", "all.json", "--email", "a@x"}), HasSubstr(L"--from"));
}

TEST(ContactArgumentsTest, RefusesWrongValues)
{
    EXPECT_THAT(Refused({}), HasSubstr(L"--from"));
    EXPECT_THAT(Refused({"--phone", "mobile"}), HasSubstr(L"mobile=+47"));
    EXPECT_THAT(Refused({"--phone", "cell=1"}), HasSubstr(L"not \"cell\""));
    EXPECT_THAT(Refused({"--address", "home=1"}), HasSubstr(L"home.city=Oslo"));
    EXPECT_THAT(Refused({"--address", "home.city"}), HasSubstr(L"home.city=Oslo"));
    EXPECT_THAT(Refused({"--address", "work.city=1"}), HasSubstr(L"home, business, other"));
    EXPECT_THAT(Refused({"--address", "home.zip=1"}), HasSubstr(L"not \"zip\""));
    EXPECT_THAT(Refused({"--birthday", "June"}), HasSubstr(L"--birthday"));
    EXPECT_THAT(Refused({"--anniversary", "1984-06-12 10:00"}), HasSubstr(L"--anniversary"));
    EXPECT_THAT(Refused({"--first-name", "a\nb"}), HasSubstr(L"--first-name takes text on one"));
    EXPECT_THAT(Refused({"--email", "a\rb"}), HasSubstr(L"--email takes text on one"));
    EXPECT_THAT(Refused({"--email", "a@x", "b@x"}), HasSubstr(L"b@x"));
    EXPECT_THAT(Refused({"--company", "a", "--company", "b"}), HasSubstr(L"--company"));
}
