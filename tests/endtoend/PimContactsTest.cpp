// pim.exe on the contacts of the message store and of the address book, from the command line
// through the server and the provider into the store. What the message store holds are the samples.
#include "endtoend/CalendarFolder.h"
#include "endtoend/MessageStore.h"
#include "endtoend/PimProgram.h"
#include "endtoend/StoreClient.h"
#include "support/ScopedRegistryValue.h"
#include "support/ScratchDirectory.h"
#include "support/TestPaths.h"
#include "tests/outlook/categories/CategoryRegistry.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <memory>

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{
const std::string kIds = "00000000505305017C0DE5A1B2C34D5E8F90A1B2C3D400";
const std::wstring kOda = L"00000000505305017C0DE5A1B2C34D5E8F90A1B2C3D40008";

class PimContactsTest : public testing::Test
{
  protected:
    static void SetUpTestSuite() { s_store = std::make_unique<MessageStore>(); }
    static void TearDownTestSuite() { s_store.reset(); }
    void SetUp() override { s_store->LoadFile(Samples() / "store.json"); }

    static std::wstring Wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }
    // Runs a command that ends with that code and writes nothing to standard output.
    static std::string Refused(const std::wstring& arguments, DWORD exitCode)
    {
        const ProgramResult result = RunPim(arguments);
        EXPECT_EQ(result.exitCode, exitCode) << result.output;
        EXPECT_EQ(result.output, "");
        return result.errors;
    }
    // The ID behind "Added ".
    static std::wstring Added(const std::wstring& options)
    {
        const std::string output = PimDone(L"contacts add " + options);
        EXPECT_THAT(output, StartsWith("Added "));
        return output.size() == 55 ? Wide(output.substr(6, 48)) : L"";
    }
    static std::string BytesOf(const std::filesystem::path& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    static void Write(const std::filesystem::path& path, const std::string& bytes)
    {
        std::ofstream(path, std::ios::binary) << bytes;
    }

    // Makes the ID's kind, as the store's file has it, one that no object is of, or takes that
    // back. What lists the message still does, and nothing opens it. Later IDs stay behind earlier
    // ones.
    static void ChangeKindOfMessage(char lastByte, char from, char to)
    {
        const std::string begin("\0\0\0\0PS", 6);
        const std::string end("\x01\x7C\x0D\xE5\xA1\xB2\xC3\x4D\x5E\x8F\x90\xA1\xB2\xC3\xD4\0", 16);
        const std::string id = begin + from + end + lastByte;
        const std::filesystem::path path = s_store->DatabasePath();
        std::string bytes = BytesOf(path);
        int found = 0;
        for (std::size_t at = bytes.find(id); at != std::string::npos; at = bytes.find(id, at))
        {
            bytes[at + begin.size()] = to;
            ++found;
        }
        ASSERT_GT(found, 0);
        Write(path, bytes);
    }

    static inline std::unique_ptr<MessageStore> s_store;
    const ServerKeeper keeper;
    const ScratchDirectory files;
};
} // namespace

TEST_F(PimContactsTest, ListsTheContactsOfAllFoldersByName)
{
    EXPECT_EQ(PimDone(L"contacts list"),
              "NAME                COMPANY              E-MAIL                    PHONE          "
              " ID\n"
              "Elin \xC3\x85kesson                             elin.akesson@example.org  "
              "+46 555 0142    " +
                  kIds +
                  "0A\n"
                  "Kabel & Kontakt AB  Kabel & Kontakt AB                             "
                  "+46 555 0199    " +
                  kIds +
                  "0B\n"
                  "Oda Bakken          Fjordlab             oda.bakken@example.org    "
                  "+47 555 01 234  " +
                  kIds +
                  "08\n"
                  "Ravi Menon          Nordlys Instruments  ravi.menon@example.com                "
                  "    " +
                  kIds + "09\n");
}

TEST_F(PimContactsTest, ShowsOneContactByTheBeginningOfItsId)
{
    const std::string shown =
        PimDone(L"contacts show 00000000505305017c0de5a1b2c34d5e8f90a1b2c3d40008");
    EXPECT_THAT(shown,
                StartsWith("Name:       Oda Bakken\n"
                           "First name: Oda\n"
                           "Last name:  Bakken\n"
                           "Company:    Fjordlab\n"
                           "Job title:  Head of testing\n"
                           "E-mail:     oda.bakken@example.org\n"
                           "Mobile:     +47 555 01 234\n"
                           "Work phone: +47 555 01 200\n"
                           "Categories: Business, Norway\n"
                           "Picture:    "));
    // An hour east of UTC.
    EXPECT_THAT(shown, HasSubstr("Changed:    2026-01-03 11:00 (2026-01-03 10:00 UTC)\n"));
    EXPECT_THAT(shown, EndsWith("\nMet at the fair in Oslo.\n"));
    EXPECT_THAT(Refused(L"contacts show 00000000505305017C0DE5A1B2C34D5E8F90A1B2C3D4", 4),
                AllOf(HasSubstr("is the beginning of several IDs:"), HasSubstr(kIds + "0B\n")));
    EXPECT_EQ(
        Refused(L"contacts show nobody", 4),
        "pim: There is no contact with the ID \"nobody\". pim contacts list shows the IDs.\n");
}

TEST_F(PimContactsTest, SaysHowManyContactsDidNotOpen)
{
    ChangeKindOfMessage('\x0B', '\x05', '\x0F');
    const ProgramResult one = RunPim(L"contacts list");
    EXPECT_EQ(one.exitCode, 0u);
    EXPECT_EQ(one.errors, "pim: 1 contact could not be opened.\n");
    EXPECT_THAT(one.output, AllOf(HasSubstr("Elin "), HasSubstr("Oda "), HasSubstr("Ravi ")));
    EXPECT_THAT(one.output, Not(HasSubstr("Kabel")));

    ChangeKindOfMessage('\x0A', '\x05', '\x0F');
    const ProgramResult two = RunPim(L"--json contacts list");
    EXPECT_EQ(two.exitCode, 0u);
    EXPECT_EQ(two.errors, "pim: 2 contacts could not be opened.\n");
    EXPECT_THAT(two.output, AllOf(HasSubstr("Oda Bakken"), HasSubstr("Ravi Menon")));
    EXPECT_THAT(two.output, Not(HasSubstr("Elin")));

    ChangeKindOfMessage('\x0A', '\x0F', '\x05');
    ChangeKindOfMessage('\x0B', '\x0F', '\x05');
    const ProgramResult all = RunPim(L"contacts list");
    EXPECT_EQ(all.errors, "");
    EXPECT_THAT(all.output, AllOf(HasSubstr("Elin "), HasSubstr("Kabel")));
}

TEST_F(PimContactsTest, KeepsEveryFieldOfANewContact)
{
    const std::wstring id = Added(
        L"--first-name Zoe --middle-name Mia --last-name Quist --suffix Jr --company Acme "
        L"--job-title Boss --im zoe@chat --website https://zoe.example --birthday 1984-06-12 "
        L"--anniversary 2010-05-06 --email a@x --email b@x --email c@x --category A --category B "
        L"--phone company=0 --phone mobile=1 --phone work=2 --phone work2=3 --phone home=4 "
        L"--phone home2=5 --phone workFax=6 --phone homeFax=7 --phone pager=8 --phone other=9 "
        L"--phone assistant=10 --phone car=11 --phone radio=12 --address \"home.street=S 1\" "
        L"--address home.postOfficeBox=O1 --address home.postalCode=P1 --address home.city=C1 "
        L"--address home.state=T1 --address home.country=L1 --address \"business.street=S 2\" "
        L"--address business.postOfficeBox=O2 --address business.postalCode=P2 "
        L"--address business.city=C2 --address business.state=T2 --address business.country=L2 "
        L"--address \"other.street=S 3\" --address other.postOfficeBox=O3 "
        L"--address other.postalCode=P3 --address other.city=C3 --address other.state=T3 "
        L"--address other.country=L3 "
        L"--notes \"Met {in} Oslo,\tGr\u00FC\u00DFe \xD83D\xDE00\r\nC:\\par \"");
    const std::string json = PimDone(L"contacts show --json " + id);
    const std::size_t folder = json.find("  \"folderId\"");
    const std::size_t name = json.find("  \"displayName\"");
    const std::size_t picture = json.find("  \"picture\"");
    ASSERT_NE(picture, std::string::npos);
    EXPECT_EQ(json.substr(0, folder),
              "{\n  \"id\": \"" + std::string(id.begin(), id.end()) + "\",\n");
    const std::string notes = "Met {in} Oslo,\\tGr\xC3\xBC\xC3\x9F"
                              "e \xF0\x9F\x98\x80\\r\\nC:\\\\par ";
    // The names stand in the order of the store's default for display names, without the suffix.
    EXPECT_EQ(json.substr(name, picture - name), R"(  "displayName": "Quist Zoe Mia",
  "firstName": "Zoe",
  "middleName": "Mia",
  "lastName": "Quist",
  "suffix": "Jr",
  "company": "Acme",
  "jobTitle": "Boss",
  "instantMessaging": "zoe@chat",
  "website": "https://zoe.example",
  "notes": ")" + notes + R"(",
  "emails": [
    "a@x",
    "b@x",
    "c@x"
  ],
  "categories": [
    "A",
    "B"
  ],
  "birthday": "1984-06-12",
  "anniversary": "2010-05-06",
  "phones": {
    "company": "0",
    "mobile": "1",
    "work": "2",
    "work2": "3",
    "home": "4",
    "home2": "5",
    "workFax": "6",
    "homeFax": "7",
    "pager": "8",
    "other": "9",
    "assistant": "10",
    "car": "11",
    "radio": "12"
  },
  "addresses": {
    "home": {
      "street": "S 1",
      "postOfficeBox": "O1",
      "postalCode": "P1",
      "city": "C1",
      "state": "T1",
      "country": "L1"
    },
    "business": {
      "street": "S 2",
      "postOfficeBox": "O2",
      "postalCode": "P2",
      "city": "C2",
      "state": "T2",
      "country": "L2"
    },
    "other": {
      "street": "S 3",
      "postOfficeBox": "O3",
      "postalCode": "P3",
      "city": "C3",
      "state": "T3",
      "country": "L3"
    }
  },
)");
}

TEST_F(PimContactsTest, ChangesAndClearsWhatIsGivenAlone)
{
    const std::wstring id =
        Added(L"--first-name Zoe --company Acme --email a@x --phone mobile=1 --phone home=2 "
              L"--birthday 1984-06-12 --address home.city=Oslo --address home.street=Lia");
    EXPECT_EQ(PimDone(L"contacts update " + id +
                      L" --company \"\" --email \"\" --phone mobile= --birthday none "
                      L"--address home.city= --job-title Boss"),
              "Updated " + std::string(id.begin(), id.end()) + "\n");
    const std::string shown = PimDone(L"contacts show " + id);
    EXPECT_THAT(shown,
                StartsWith("Name:         Zoe\n"
                           "First name:   Zoe\n"
                           "Job title:    Boss\n"
                           "Home phone:   2\n"
                           "Home address: Lia\n"
                           "Changed:      "));
}

TEST_F(PimContactsTest, NamesWhatTheStoreDidNotKeep)
{
    // Stores have three places for addresses.
    const ProgramResult four =
        RunPim(L"contacts add --email a@x --email b@x --email c@x --email d@x");
    EXPECT_EQ(four.exitCode, 5u);
    EXPECT_THAT(four.output, StartsWith("Added "));
    EXPECT_EQ(four.errors, "pim: The store kept another value than the one asked for: email.\n");
    // A suffix stays in the store when it is cleared.
    const std::wstring id = Added(L"--first-name Zoe --suffix Jr");
    const ProgramResult cleared = RunPim(L"--json contacts update " + id + L" --suffix \"\"");
    EXPECT_EQ(cleared.exitCode, 5u);
    EXPECT_THAT(cleared.output, EndsWith("  \"notKept\": [\n    \"suffix\"\n  ]\n}\n"));
}

TEST_F(PimContactsTest, TakesPicturesThereAndBack)
{
    const std::string bytes(20'000, '\x5A');
    Write(files.File(L"zoe.png"), bytes);
    const std::wstring id =
        Added(L"--first-name Zoe --picture \"" + files.File(L"zoe.png") + L"\"");
    const std::wstring folder = files.File(L"new\\pictures");
    const std::string shown =
        PimDone(L"contacts show " + id + L" --picture-dir \"" + folder + L"\"");
    // The store gives every picture this extension.
    EXPECT_THAT(shown, HasSubstr("\\new\\pictures\\Zoe.jpg\n"));
    EXPECT_EQ(BytesOf(std::filesystem::path(folder) / "Zoe.jpg"), bytes);

    // A picture stays with its contact through changes of other fields, and goes when asked to.
    PimDone(L"contacts update " + id + L" --company Acme");
    PimDone(L"contacts list --json --picture-dir \"" + folder + L"\"");
    EXPECT_EQ(BytesOf(std::filesystem::path(folder) / "Zoe (2).jpg"), bytes);
    EXPECT_EQ(BytesOf(std::filesystem::path(folder) / "Oda Bakken.png").substr(0, 4), "\x89PNG");
    PimDone(L"contacts update " + id + L" --picture none");
    EXPECT_THAT(PimDone(L"contacts show --json " + id), HasSubstr("\"picture\": null"));

    EXPECT_THAT(Refused(L"contacts add --first-name Eve --picture no-such-file.jpg", 1),
                HasSubstr("The picture \"no-such-file.jpg\" cannot be read"));
    EXPECT_THAT(Refused(L"contacts list --picture-dir \"" + files.File(L"zoe.png") + L"\"", 1),
                HasSubstr("cannot be made"));
    EXPECT_THAT(PimDone(L"contacts list"), Not(HasSubstr("Eve")));
}

TEST_F(PimContactsTest, TakesBackTheJsonThatItGave)
{
    const std::wstring path = files.File(L"all.json");
    Write(path, PimDone(L"contacts list --json"));
    PimDone(L"contacts delete " + kOda + L" " + Wide(kIds) + L"09 " + Wide(kIds) + L"0A " +
            Wide(kIds) + L"0B");
    EXPECT_EQ(PimDone(L"contacts list"), "No contacts in Microsoft Outlook.\n");
    // Nothing of them is lost.
    PimDone(L"contacts add --from \"" + path + L"\"");
    const std::string all = PimDone(L"contacts list --json");
    for (const char* notes : {"Met at the fair in Oslo.", "Allergic to nuts."})
        EXPECT_THAT(all, HasSubstr("\"notes\": \"" + std::string(notes) + "\",\n"));
    const std::string list = PimDone(L"contacts list");
    // Display names are made anew, the family name first.
    for (const char* name : {"Bakken Oda ", "Menon Ravi ", "\xC3\x85kesson Elin "})
        EXPECT_THAT(list, HasSubstr(name));
    EXPECT_THAT(list, HasSubstr("oda.bakken@example.org"));

    Write(path, R"([{"lastname": "x"}])");
    EXPECT_EQ(Refused(L"contacts add --from \"" + path + L"\"", 1),
              "pim: \"" + files.Path().string() +
                  "\\all.json\" cannot be taken: 0/lastname: a contact has no such member.\n");
    EXPECT_THAT(Refused(L"contacts add --from \"" + files.File(L"none.json") + L"\"", 1),
                HasSubstr("cannot be opened"));
    Write(path, "[{}, {}]");
    EXPECT_THAT(Refused(L"contacts update " + kOda + L" --from \"" + path + L"\"", 2),
                HasSubstr("a file of one contact, not of 2"));
}

TEST_F(PimContactsTest, DeletesWhatItFinds)
{
    const ProgramResult result = RunPim(L"contacts delete nobody " + kOda);
    EXPECT_EQ(result.exitCode, 4u);
    EXPECT_EQ(result.output, "Deleted " + kIds + "08\n");
    EXPECT_THAT(result.errors, HasSubstr("no contact with the ID \"nobody\""));
    EXPECT_THAT(PimDone(L"contacts list"), Not(HasSubstr("Oda")));
    EXPECT_EQ(PimDone(L"--json contacts delete " + Wide(kIds) + L"09"),
              "{\n  \"deleted\": [\n    \"" + kIds + "09\"\n  ],\n  \"notFound\": []\n}\n");
}

TEST_F(PimContactsTest, ListsRenamesAndDeletesCategories)
{
    EXPECT_EQ(PimDone(L"categories list"),
              "NAME      COLOR  ID\n"
              "Business  0      {5B1C0E0A-3A57-4C68-8F0D-1D0C2A6E7B01}\n"
              "Family    4      {5B1C0E0A-3A57-4C68-8F0D-1D0C2A6E7B03}\n"
              "Norway    7      {5B1C0E0A-3A57-4C68-8F0D-1D0C2A6E7B02}\n");
    EXPECT_EQ(PimDone(L"categories show norway"),
              "Name:       Norway\n"
              "Color:      7\n"
              "Last used:  2026-01-02 09:00 (2026-01-02 08:00 UTC)\n"
              "ID:         {5B1C0E0A-3A57-4C68-8F0D-1D0C2A6E7B02}\n");
    const std::string added = PimDone(L"categories add Travel --color 9");
    EXPECT_THAT(added, StartsWith("Added {"));
    const std::string id = added.substr(6, 38);
    EXPECT_THAT(PimDone(L"categories list"), HasSubstr("Travel    9      " + id + "\n"));
    EXPECT_EQ(PimDone(L"categories rename Travel Journeys"), "Renamed " + id + "\n");
    EXPECT_THAT(PimDone(L"categories list"),
                AllOf(HasSubstr("Journeys  9      " + id), Not(HasSubstr("Travel"))));
    EXPECT_EQ(PimDone(L"categories delete " + Wide(id.substr(1, 20))), "Deleted " + id + "\n");
    EXPECT_EQ(PimDone(L"categories delete family Norway Business"),
              "Deleted {5B1C0E0A-3A57-4C68-8F0D-1D0C2A6E7B03}\n"
              "Deleted {5B1C0E0A-3A57-4C68-8F0D-1D0C2A6E7B02}\n"
              "Deleted {5B1C0E0A-3A57-4C68-8F0D-1D0C2A6E7B01}\n");
    EXPECT_EQ(PimDone(L"categories list"), "No categories in Microsoft Outlook.\n");
    EXPECT_EQ(Refused(L"categories rename Work Play", 4),
              "pim: There is no category with the ID or name \"Work\". pim categories list shows "
              "the IDs.\n");
}

// Its list is a registry value of names: no colour, and a new ID with each reading.
TEST_F(PimContactsTest, KeepsCategoriesOfOutlook2003ByName)
{
    ScopedRegistryValue application(
        HKEY_LOCAL_MACHINE, L"Software\\Clients\\Mail\\Microsoft Outlook", L"MSIApplicationLCID");
    application.Set(L"Microsoft\\Office\\11.0\\Outlook" + std::wstring(1, L'\0') + L"NoLanguage" +
                        std::wstring(1, L'\0'),
                    REG_MULTI_SZ);
    ScopedRegistryValue masterList(HKEY_CURRENT_USER, kCategoriesKey, L"MasterList");
    masterList.Set(L"Work;");
    const ProgramResult colored = RunPim(L"categories add Travel --color 9");
    EXPECT_EQ(colored.exitCode, 5u);
    EXPECT_THAT(colored.output, StartsWith("Added {"));
    EXPECT_EQ(colored.errors, "pim: The store kept another value than the one asked for: color.\n");
    EXPECT_THAT(PimDone(L"categories add Garden"), StartsWith("Added {"));
    EXPECT_THAT(PimDone(L"categories rename travel Journeys"), StartsWith("Renamed {"));
    EXPECT_THAT(PimDone(L"categories list"),
                AllOf(HasSubstr("Garden"), HasSubstr("Journeys"), HasSubstr("Work")));
    EXPECT_THAT(PimDone(L"categories delete Journeys"), StartsWith("Deleted {"));
    const std::wstring expected = L"Work;Garden;";
    const BYTE* const bytes = reinterpret_cast<const BYTE*>(expected.c_str());
    EXPECT_EQ(std::vector<BYTE>(bytes, bytes + (expected.size() + 1) * sizeof(wchar_t)),
              ReadBytes(kCategoriesKey, L"MasterList").bytes);
}

TEST_F(PimContactsTest, SaysWhichStoreHasNoCategories)
{
    const CalendarFolder windowsMail;
    EXPECT_EQ(Refused(L"--provider \"Windows Mail\" categories list", 1),
              "pim: The store of \"Windows Mail\" has no categories. pim providers lists the mail "
              "clients that are there.\n");
}

TEST_F(PimContactsTest, KeepsContactsInTheWindowsAddressBook)
{
    const CalendarFolder withAddressBook;
    for (const wchar_t* name : {L"Windows Mail", L"Outlook Express"})
    {
        const std::wstring provider = std::wstring(L"--provider \"") + name + L"\" ";
        const std::string output = PimDone(
            provider + L"contacts add --first-name Zoe --last-name Quist --company Acme "
                       L"--email a@x --email b@x --phone mobile=1 --notes \"One note\" "
                       L"--birthday 1984-06-12 --address home.city=Oslo --website http://z");
        ASSERT_THAT(output, StartsWith("Added "));
        const std::wstring id = Wide(output.substr(6, output.find('\n') - 6));
        EXPECT_THAT(PimDone(provider + L"contacts show " + id),
                    AllOf(StartsWith("First name:   Zoe\n"
                                     "Last name:    Quist\n"
                                     "Company:      Acme\n"
                                     "Website:      http://z\n"
                                     "E-mail:       a@x\n"
                                     "E-mail:       b@x\n"
                                     "Mobile:       1\n"
                                     "Home address: Oslo\n"
                                     "Birthday:     1984-06-12\n"),
                          EndsWith("\nOne note\n")));
        EXPECT_THAT(PimDone(provider + L"contacts list"),
                    HasSubstr("Zoe Quist  Acme     a@x     1      "));
        PimDone(provider + L"contacts update " + id + L" --company \"\" --phone home=2");
        EXPECT_THAT(PimDone(provider + L"contacts show " + id),
                    AllOf(Not(HasSubstr("Acme")), HasSubstr("Home phone:   2\n")));
        PimDone(provider + L"contacts delete " + id);
        EXPECT_EQ(PimDone(provider + L"contacts list"),
                  "No contacts in " + std::string(name, name + wcslen(name)) + ".\n");
    }
}
