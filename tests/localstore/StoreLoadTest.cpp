// Loading and dumping the message store as JSON. Expected stores and texts are written by hand from
// docs/formats/store_json.md.
#include "localstore/StoreLoad.h"

#include "localstore/NamedProperties.h"
#include "localstore/PropertyJson.h"
#include "localstore/StoreDump.h"
#include "localstore/StoreProfile.h"
#include "tests/localstore/DatabaseSteps.h"
#include "tests/localstore/LocalStoreSupport.h"

#include <gmock/gmock.h>

#include <bit>

using testing::HasSubstr;

namespace
{

class StoreLoadTest : public testing::Test
{
  protected:
    LoadCounts Load(Database& database, const std::string& json, LoadMode mode = LoadMode::Merge)
    {
        WriteWholeFile(m_path, json);
        JsonFile file;
        DWORD reason = 0;
        EXPECT_TRUE(file.Open(m_path, reason)) << reason;
        return LoadStore(database, file, mode);
    }

    static std::string Dump(Database& database)
    {
        std::string text;
        DumpStore(database, [&](std::string_view piece) { text += piece; });
        return text;
    }

    // A store with one message of those properties.
    static std::string WithProperties(const std::string& properties)
    {
        return R"({"format":"PimStoreBridge store","version":1,"root":{"messages":[{"properties":[)" +
               properties + "]}]}}";
    }

    static std::map<std::uint16_t, PropertyValue> MessageProperties(Database& database)
    {
        return ReadProperties(
            database, {OwnerKind::Message, database.QueryInteger("SELECT max(id) FROM message")});
    }

    // What is wrong, as "line: path: text"; "loaded" where nothing is.
    std::string Problem(const std::string& json)
    {
        Database database = OpenStore(L":memory:");
        EnsureDefaultProfile(database, {L"user", L"User"});
        const std::string before = Dump(database);
        try
        {
            Load(database, json);
            return "loaded";
        }
        catch (const JsonProblem& problem)
        {
            EXPECT_EQ(before, Dump(database)) << "something of a wrong file was written";
            return std::to_string(problem.Line()) + ": " + problem.Path() + ": " + problem.what();
        }
    }

    const std::wstring& Path() const { return m_path; }

  private:
    TempFolder m_folder;
    std::wstring m_path = m_folder.File(L"store.json");
};

struct TypeRow
{
    const char* json; // type and value
    PropertyValue expected;
};

Bytes BytesOf(std::initializer_list<unsigned> values)
{
    Bytes bytes;
    for (const unsigned value : values)
        bytes.push_back(static_cast<std::byte>(value));
    return bytes;
}

std::uint64_t Signed(std::int64_t value)
{
    return static_cast<std::uint64_t>(value);
}

} // namespace

// Numbers by hand: 2024-05-01 is day 154,618 since 1601-01-01 (423 years with 102 leap days, and
// 121 days of 2024); 10:30:00.5 is 37,800.5 s. 154,618 * 86,400 + 37,800.5 = 13,359,033,000.5.
TEST_F(StoreLoadTest, EveryTypeComesInAndGoesOutTheSame)
{
    const TypeRow rows[] = {
        {R"("PT_I2", "value": -32768)", {PT_I2, Signed(-32768)}},
        {R"("PT_LONG", "value": -2147483648)", {PT_LONG, Signed(INT32_MIN)}},
        {R"("PT_R4", "value": 0.5)", {PT_R4, std::uint64_t{0x3F000000}}},
        {R"("PT_R4", "value": {"bits": "0x7FC00001"})", {PT_R4, std::uint64_t{0x7FC00001}}},
        {R"("PT_DOUBLE", "value": -2.5e+100)", {PT_DOUBLE, std::bit_cast<std::uint64_t>(-2.5e100)}},
        {R"("PT_DOUBLE", "value": -0.0)", {PT_DOUBLE, std::uint64_t{0x8000000000000000}}},
        {R"("PT_DOUBLE", "value": 3.0)", {PT_DOUBLE, std::uint64_t{0x4008000000000000}}},
        {R"("PT_DOUBLE", "value": {"bits": "0xFFF0000000000000"})",
         {PT_DOUBLE, std::uint64_t{0xFFF0000000000000}}},
        {R"("PT_APPTIME", "value": 45000.25)",
         {PT_APPTIME, std::bit_cast<std::uint64_t>(45000.25)}},
        {R"("PT_CURRENCY", "value": 12345)", {PT_CURRENCY, std::uint64_t{12345}}},
        {R"("PT_BOOLEAN", "value": true)", {PT_BOOLEAN, std::uint64_t{1}}},
        {R"("PT_BOOLEAN", "value": false)", {PT_BOOLEAN, std::uint64_t{0}}},
        {R"("PT_BOOLEAN", "value": 65535)", {PT_BOOLEAN, std::uint64_t{0xFFFF}}},
        {R"("PT_I8", "value": -9223372036854775808)", {PT_I8, Signed(INT64_MIN)}},
        {R"("PT_SYSTIME", "value": "2024-05-01T10:30:00.5Z")",
         {PT_SYSTIME, std::uint64_t{133'590'330'005'000'000}}},
        {R"("PT_SYSTIME", "value": "1601-01-01T00:00:00Z")", {PT_SYSTIME, std::uint64_t{0}}},
        {R"("PT_SYSTIME", "value": 18446744073709551615)",
         {PT_SYSTIME, std::uint64_t{0xFFFFFFFFFFFFFFFF}}},
        {R"("PT_STRING8", "value": "plain \"\\\u0000\u001F")",
         {PT_STRING8, BytesOf({'p', 'l', 'a', 'i', 'n', ' ', '"', '\\', 0, 0x1F})}},
        {R"("PT_STRING8", "value": {"hex": "E9"})", {PT_STRING8, BytesOf({0xE9})}},
        {"\"PT_UNICODE\", \"value\": \"\xC3\xA9\xF0\x9F\x98\x80\\r\\n\\t\"",
         {PT_UNICODE, std::wstring(L"\x00E9\xD83D\xDE00\r\n\t")}},
        {R"("PT_UNICODE", "value": {"utf16": "3DD84100"})",
         {PT_UNICODE, std::wstring(L"\xD83D\x0041")}},
        {R"("PT_UNICODE", "value": "")", {PT_UNICODE, std::wstring()}},
        {R"("PT_CLSID", "value": "{00062004-0001-0203-C000-000000000046}")",
         {PT_CLSID, BytesOf({4, 0x20, 6, 0, 1, 0, 3, 2, 0xC0, 0, 0, 0, 0, 0, 0, 0x46})}},
        {R"("PT_BINARY", "value": {"hex": "00FFA5"})", {PT_BINARY, BytesOf({0, 0xFF, 0xA5})}},
        {R"("PT_BINARY", "value": {"hex": ""})", {PT_BINARY, Bytes()}},
        {R"("PT_MV_I2", "value": [1, -1])", {PT_MV_I2, std::vector<std::uint64_t>{1, Signed(-1)}}},
        {R"("PT_MV_LONG", "value": [])", {PT_MV_LONG, std::vector<std::uint64_t>{}}},
        {R"("PT_MV_R4", "value": [0.25])", {PT_MV_R4, std::vector<std::uint64_t>{0x3E800000}}},
        {R"("PT_MV_DOUBLE", "value": [1.0])",
         {PT_MV_DOUBLE, std::vector<std::uint64_t>{0x3FF0000000000000}}},
        {R"("PT_MV_CURRENCY", "value": [7])", {PT_MV_CURRENCY, std::vector<std::uint64_t>{7}}},
        {R"("PT_MV_APPTIME", "value": [2.0])",
         {PT_MV_APPTIME, std::vector<std::uint64_t>{0x4000000000000000}}},
        {R"("PT_MV_BOOLEAN", "value": [true, false])",
         {MV_FLAG | PT_BOOLEAN, std::vector<std::uint64_t>{1, 0}}},
        {R"("PT_MV_I8", "value": [9223372036854775807])",
         {PT_MV_I8, std::vector<std::uint64_t>{INT64_MAX}}},
        {R"("PT_MV_SYSTIME", "value": ["1601-01-02T00:00:00Z"])",
         {PT_MV_SYSTIME, std::vector<std::uint64_t>{864'000'000'000}}},
        {R"("PT_MV_STRING8", "value": ["a", {"hex": "80"}])",
         {PT_MV_STRING8, std::vector<Bytes>{BytesOf({'a'}), BytesOf({0x80})}}},
        {R"("PT_MV_UNICODE", "value": ["one", ""])",
         {PT_MV_UNICODE, std::vector<std::wstring>{L"one", L""}}},
        {R"("PT_MV_CLSID", "value": ["{00000000-0000-0000-0000-000000000001}"])",
         {PT_MV_CLSID,
          std::vector<Bytes>{BytesOf({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1})}}},
        {R"("PT_MV_BINARY", "value": [{"hex": ""}, {"hex": "01"}])",
         {PT_MV_BINARY, std::vector<Bytes>{Bytes(), BytesOf({1})}}},
    };
    for (const TypeRow& row : rows)
    {
        Database database = OpenStore(L":memory:");
        const std::string property =
            R"({"set": "PSETID_Common", "id": "0x8510", "type": )" + std::string(row.json) + "}";
        Load(database, WithProperties(property));
        EXPECT_EQ(row.expected, MessageProperties(database)[0x8000]) << row.json;
        EXPECT_THAT(Dump(database), HasSubstr("        " + property + "\n")) << row.json;
    }
}

TEST_F(StoreLoadTest, TakesOtherSpellingsOfTheSameValues)
{
    struct Spelling
    {
        const char* json;
        PropertyValue expected;
    };
    const Spelling spellings[] = {
        {R"({"tag": "0x67000102", "value": {"base64": "AP+l"}})",
         {PT_BINARY, BytesOf({0, 0xFF, 0xA5})}},
        {R"({"tag": "0x67000102", "value": {"base64": "AP8="}})", {PT_BINARY, BytesOf({0, 0xFF})}},
        {R"({"tag": "0x67000102", "value": {"base64": "AA=="}})", {PT_BINARY, BytesOf({0})}},
        {R"({"tag": "0x67000102", "value": {"base64": ""}})", {PT_BINARY, Bytes()}},
        {R"({"tag": "0x67000102", "value": {"hex": "ffA5"}})", {PT_BINARY, BytesOf({0xFF, 0xA5})}},
        {R"({"tag": "0x67000005", "value": 3})", {PT_DOUBLE, std::uint64_t{0x4008000000000000}}},
        {R"({"tag": "0x67000003", "value": 4294967295})", {PT_LONG, Signed(-1)}},
        {R"({"tag": "0x67000002", "value": 65535})", {PT_I2, Signed(-1)}},
        {R"({"value": 1, "tag": "0x67000014"})", {PT_I8, std::uint64_t{1}}},
        {R"({"tag": "0x67000040", "value": 5})", {PT_SYSTIME, std::uint64_t{5}}},
        {R"({"tag": "0x67000040", "value": "1601-01-01T00:00:00.0000001Z"})",
         {PT_SYSTIME, std::uint64_t{1}}},
    };
    for (const Spelling& row : spellings)
    {
        Database database = OpenStore(L":memory:");
        Load(database, WithProperties(row.json));
        EXPECT_EQ(row.expected, MessageProperties(database)[0x6700]) << row.json;
    }
}

TEST_F(StoreLoadTest, NamesGetIdsOnceForAllMessages)
{
    Database database = OpenStore(L":memory:");
    const std::string named =
        R"({"set": "PSETID_Address", "id": 32899, "type": "PT_UNICODE", "value": "a@example.org"},)"
        R"({"set": "{00020329-0000-0000-C000-000000000046}", "name": "Keywords",)"
        R"( "type": "0x101F", "value": ["x"]},)"
        R"({"tag": "PR_SURNAME_W", "value": "S"})";
    Load(database, WithProperties(named));
    Load(database, WithProperties(named));
    EXPECT_EQ(2, database.QueryInteger("SELECT count(*) FROM named_property"));
    EXPECT_EQ(2, database.QueryInteger("SELECT count(*) FROM message"));
    const auto properties = MessageProperties(database);
    EXPECT_EQ(3u, properties.size());
    EXPECT_EQ((PropertyValue{PT_UNICODE, std::wstring(L"S")}), properties.at(0x3A11));
    EXPECT_EQ((PropertyValue{PT_UNICODE, std::wstring(L"a@example.org")}), properties.at(0x8000));
    EXPECT_EQ((PropertyName{{0x00062004, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}}, LONG{0x8083}}),
              NameOfProperty(database, 0x8000));
    EXPECT_THAT(Dump(database),
                HasSubstr(R"({"set": "PSETID_Address", "id": "0x8083", "type": "PT_UNICODE")"));
    EXPECT_THAT(
        Dump(database),
        HasSubstr(R"({"set": "PS_PUBLIC_STRINGS", "name": "Keywords", "type": "PT_MV_UNIC)"));
}

// The whole text was written by hand.
TEST_F(StoreLoadTest, ADumpHasThisForm)
{
    const std::string text = R"({
  "format": "PimStoreBridge store",
  "version": 1,
  "store": {
    "properties": [
      {"tag": "PR_DISPLAY_NAME_W", "value": "Mine"}
    ]
  },
  "identity": {
    "entryId": "000000005053060100000000000000000000000000000001",
    "properties": [
      {"tag": "PR_ACCOUNT_W", "value": "maja"}
    ]
  },
  "book": [
    {
      "entryId": "2F0047005500490044003A002200610022",
      "created": "2024-01-02T00:00:00Z",
      "modified": "2024-01-03T00:00:00Z",
      "properties": [
        {"tag": "PR_DISPLAY_NAME_W", "value": "Oda"}
      ]
    },
    {
      "type": "list",
      "entryId": "0102",
      "created": "2024-01-01T00:00:00Z",
      "modified": "2024-01-01T00:00:00Z"
    }
  ],
  "root": {
    "entryId": "000000005053030100000000000000000000000000000002",
    "created": "2024-01-01T00:00:00Z",
    "modified": "2024-01-02T00:00:00Z",
    "folders": [
      {
        "name": "Top",
        "roles": ["subtree"],
        "entryId": "000000005053030100000000000000000000000000000003",
        "created": "2024-01-01T00:00:00Z",
        "modified": "2024-01-01T00:00:00Z",
        "folders": [
          {
            "name": "Inbox",
            "class": "IPF.Note",
            "roles": ["inbox"],
            "receives": ["IPM.Note", "IPM.Task"],
            "entryId": "000000005053030100000000000000000000000000000004",
            "created": "2024-01-01T00:00:00Z",
            "modified": "2024-01-01T00:00:00Z"
          },
          {
            "name": "Calendar",
            "class": "IPF.Appointment",
            "roles": ["calendar"],
            "entryId": "000000005053030100000000000000000000000000000005",
            "created": "2024-01-01T00:00:00Z",
            "modified": "2024-01-01T00:00:00Z",
            "properties": [
              {"tag": "PR_COMMENT_W", "value": "two\nlines"}
            ],
            "messages": [
              {
                "entryId": "000000005053050100000000000000000000000000000006",
                "created": "2024-03-01T08:00:00.0000001Z",
                "modified": "2024-03-01T08:00:00Z",
                "properties": [
                  {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.Appointment"},
                  {"set": "PSETID_Appointment", "id": "0x8208", "type": "PT_UNICODE", "value": "Here"}
                ],
                "attachments": [
                  {
                    "number": 0,
                    "properties": [
                      {"tag": "PR_ATTACH_DATA_BIN", "value": {"hex": "FFD8"}}
                    ]
                  },
                  {
                    "number": 7
                  }
                ]
              },
              {
                "entryId": "000000005053050100000000000000000000000000000007",
                "created": "2024-03-01T08:00:00Z",
                "modified": "2024-03-01T08:00:00Z"
              }
            ],
            "associated": [
              {
                "entryId": "000000005053050100000000000000000000000000000008",
                "created": "2024-03-01T08:00:00Z",
                "modified": "2024-03-01T08:00:00Z",
                "properties": [
                  {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.Configuration.CategoryList"}
                ]
              }
            ]
          }
        ]
      }
    ]
  }
}
)";
    Database database = OpenStore(L":memory:");
    const LoadCounts counts = Load(database, text, LoadMode::Replace);
    EXPECT_EQ(4u, counts.folders);
    EXPECT_EQ(3u, counts.messages);
    EXPECT_EQ(2u, counts.attachments);
    EXPECT_EQ(2u, counts.bookEntries);
    // Store, identity, root, six names and classes, one comment, two and one of messages, one of
    // an attachment, one of the book.
    EXPECT_EQ(13u, counts.properties);
    EXPECT_EQ(text, Dump(database));
    EXPECT_EQ(1, database.QueryInteger("SELECT count(*) FROM message WHERE associated = 1"));

    // Into a store with a profile, whose folders it replaces; and again into that.
    Database other = OpenStore(L":memory:");
    EnsureDefaultProfile(other, {L"user", L"User"});
    Load(other, text, LoadMode::Replace);
    EXPECT_EQ(text, Dump(other));
    Load(other, text);
    EXPECT_EQ(text, Dump(other));
}

TEST_F(StoreLoadTest, EntriesOfTheBookAreAddedReplacedAndEmptied)
{
    const auto file = [](const std::string& book) {
        return R"({"format":"PimStoreBridge store","version":1,"book":[)" + book + "]}";
    };
    const std::string oda =
        R"({"entryId":"0A0B","properties":[{"tag":"PR_DISPLAY_NAME_W","value":"Oda"}]})";
    Database database = OpenStore(L":memory:");
    Load(database, file(oda + R"(,{"type":"user"})"));
    const auto count = [&](const char* condition) {
        return database.QueryInteger(
            std::string("SELECT count(*) FROM book_entry WHERE container = "
                        "(SELECT id FROM book_container WHERE role = 1) AND ") +
            condition);
    };
    EXPECT_EQ(2, count("object_type = 6"));
    EXPECT_EQ(1, count("entry_id = x'0A0B'"));
    // A new ID is the UTF-16 text /GUID:"{...}", 46 units.
    EXPECT_EQ(1, count("length(entry_id) = 92 AND substr(entry_id, 1, 4) = x'2F004700'"));

    // The entry of that ID gives way; one without an ID is a further one.
    Load(database, file(R"({"type":"list","entryId":"0a0b"},{})"));
    EXPECT_EQ(1, count("entry_id = x'0A0B' AND object_type = 8"));
    EXPECT_EQ(3, count("1"));
    EXPECT_EQ(0, database.QueryInteger("SELECT count(*) FROM property WHERE owner_kind = 7"));

    Load(database, file(oda), LoadMode::Replace);
    EXPECT_EQ(1, count("1"));
    Load(database, R"({"format":"PimStoreBridge store","version":1})", LoadMode::Replace);
    EXPECT_EQ(0, count("1"));
    EXPECT_EQ(std::string::npos, Dump(database).find("book"));
}

TEST_F(StoreLoadTest, SaysWhatIsWrongInTheBook)
{
    const auto problem = [&](const std::string& book) {
        return Problem(R"({"format":"PimStoreBridge store","version":1,"book":)" + book + "}");
    };
    EXPECT_EQ("1: book: an array is needed here", problem("{}"));
    EXPECT_THAT(problem(R"([{"type":"group"}])"),
                HasSubstr("book/0/type: an entry of the book is"));
    EXPECT_THAT(problem(R"([{"entryId":""}])"), HasSubstr("book/0/entryId: an entry ID has"));
    EXPECT_THAT(problem(R"([{"entryId":")" + std::string(2 * 4097, 'A') + R"("}])"),
                HasSubstr("book/0/entryId: an entry ID has"));
    EXPECT_EQ("loaded", problem(R"([{"entryId":")" + std::string(2 * 4096, 'A') + R"("}])"));
    EXPECT_THAT(problem(R"([{"entryId":"01"},{"entryId":"01"}])"),
                HasSubstr("two objects of the file have this entry ID"));
    EXPECT_THAT(problem(R"([{"attachments":[]}])"), HasSubstr("book/0"));
}

TEST_F(StoreLoadTest, ALargeValueAndALongTextComeBack)
{
    Database database = OpenStore(L":memory:");
    std::string hex;
    Bytes bytes;
    for (unsigned i = 0; i < 70'000; ++i)
    {
        char digits[3];
        std::snprintf(digits, sizeof digits, "%02X", i * 7 % 256);
        hex += digits;
        bytes.push_back(static_cast<std::byte>(i * 7 % 256));
    }
    const std::string text(100'000, 'x');
    Load(database,
         WithProperties(R"({"tag": "PR_ATTACH_DATA_BIN", "value": {"hex": ")" + hex +
                        R"("}}, {"tag": "PR_BODY_W", "value": ")" + text + "\"}"));
    EXPECT_EQ((PropertyValue{PT_BINARY, bytes}), MessageProperties(database)[0x3701]);
    const std::string dump = Dump(database);
    Database other = OpenStore(L":memory:");
    Load(other, dump, LoadMode::Replace);
    EXPECT_EQ((PropertyValue{PT_BINARY, bytes}), MessageProperties(other)[0x3701]);
    EXPECT_EQ(dump, Dump(other));
}

TEST_F(StoreLoadTest, MergesIntoTheFoldersOfTheProfile)
{
    Database database = OpenStore(L":memory:");
    EnsureDefaultProfile(database, {L"user", L"User"});
    const std::int64_t contacts = *FolderOfRole(database, *FindFolderRole("contacts"));
    const Bytes entryId = EntryIdOfFolder(database, contacts).value();
    const std::string text = R"({"format": "PimStoreBridge store", "version": 1,
      "identity": {"properties": [{"tag": "PR_COMPANY_NAME_W", "value": "C"}]},
      "root": {"folders": [{"roles": ["subtree"], "folders": [
        {"roles": ["contacts"], "name": "Kontakte", "messages": [{}]},
        {"name": "Inbox", "messages": [{}, {}]},
        {"name": "New", "folders": [{"name": "New"}]}]}]}})";
    Load(database, text);
    // The role finds the folder whatever its name was, the name finds the inbox.
    EXPECT_EQ(contacts, FolderOfRole(database, *FindFolderRole("contacts")));
    EXPECT_EQ(entryId, EntryIdOfFolder(database, contacts));
    EXPECT_EQ((PropertyValue{PT_UNICODE, std::wstring(L"Kontakte")}),
              ReadProperty(database, {OwnerKind::MessageFolder, contacts}, 0x3001));
    const std::int64_t inbox = *FolderOfRole(database, *FindFolderRole("inbox"));
    EXPECT_EQ(2,
              database.QueryInteger("SELECT count(*) FROM message WHERE folder = " +
                                    std::to_string(inbox)));
    EXPECT_EQ(8, database.QueryInteger("SELECT count(*) FROM folder"));
    // What the file does not name stays.
    const PropertyOwner identity{OwnerKind::Identity, 1};
    EXPECT_EQ((PropertyValue{PT_UNICODE, std::wstring(L"user")}),
              ReadProperty(database, identity, 0x3A00));
    EXPECT_EQ((PropertyValue{PT_UNICODE, std::wstring(L"C")}),
              ReadProperty(database, identity, 0x3A16));

    Load(database, text);
    EXPECT_EQ(8, database.QueryInteger("SELECT count(*) FROM folder"));
    EXPECT_EQ(6, database.QueryInteger("SELECT count(*) FROM message"));
}

TEST_F(StoreLoadTest, TwoFoldersOfOneNameStayTwo)
{
    const std::string text = R"({"format": "PimStoreBridge store", "version": 1, "root":
      {"folders": [{"name": "A"}, {"name": "A", "messages": [{}]}]}})";
    Database database = OpenStore(L":memory:");
    Load(database, text);
    Load(database, text);
    EXPECT_EQ(3, database.QueryInteger("SELECT count(*) FROM folder"));
    EXPECT_EQ(1, database.QueryInteger("SELECT count(DISTINCT folder) FROM message"));
}

TEST_F(StoreLoadTest, AFolderThatIsNamedByNameAndThenByIDIsToldWithItsPlace)
{
    Database database = OpenStore(L":memory:");
    Load(database, R"({"format": "PimStoreBridge store", "version": 1, "root":
      {"folders": [{"name": "Work"}]}})");
    const std::string before = Dump(database);
    const Bytes id =
        *EntryIdOfFolder(database, database.QueryInteger("SELECT max(id) FROM folder"));
    try
    {
        Load(database,
             R"({"format": "PimStoreBridge store", "version": 1, "root":
          {"folders": [{"name": "Work"}, {"name": "Work", "entryId": ")" +
                 HexText(id) + R"("}]}})");
        FAIL() << "loaded";
    }
    catch (const JsonProblem& problem)
    {
        EXPECT_EQ(2, problem.Line());
        EXPECT_EQ("root/folders/1", problem.Path());
        EXPECT_THAT(problem.what(), HasSubstr("a folder before it was taken"));
    }
    EXPECT_EQ(before, Dump(database));
}

TEST_F(StoreLoadTest, ARoleThatOnlySomeHoldersNameStaysAProperty)
{
    Database database = OpenStore(L":memory:");
    EnsureDefaultProfile(database, {L"user", L"User"});
    const std::int64_t inbox = *FolderOfRole(database, *FindFolderRole("inbox"));
    DeleteProperty(database, {OwnerKind::MessageFolder, inbox}, 0x36D1);
    const std::string dump = Dump(database);
    EXPECT_THAT(dump, HasSubstr(R"({"tag": "PR_IPM_CONTACT_ENTRYID", "value": {"hex": ")"));
    EXPECT_THAT(dump, testing::Not(HasSubstr("[\"contacts\"]")));
    EXPECT_THAT(dump, HasSubstr("[\"calendar\"]"));
    Database other = OpenStore(L":memory:");
    Load(other, dump);
    EXPECT_EQ(dump, Dump(other));
    const std::int64_t otherInbox = *FolderOfRole(other, *FindFolderRole("inbox"));
    EXPECT_FALSE(ReadProperty(other, {OwnerKind::MessageFolder, otherInbox}, 0x36D1));
    EXPECT_TRUE(ReadProperty(other, {OwnerKind::MessageFolder, *RootFolder(other)}, 0x36D1));
}

TEST_F(StoreLoadTest, TellsWhereAWrongFileIsWrongAndWritesNothing)
{
    const std::string head = R"({"format": "PimStoreBridge store", "version": 1, )";
    struct Row
    {
        std::string json;
        std::string problem; // its beginning
    };
    const Row rows[] = {
        {"", "1: : "},
        {"[]", "1: : an object is needed here"},
        {"7", "1: : an object is needed here"},
        {"{}", "1: : the key \"format\" is missing"},
        {R"({"format": "PimStoreBridge store"})", "1: : the key \"version\" is missing"},
        {R"({"format": "other", "version": 1})", "1: format: this is no store"},
        {R"({"format": 1, "version": 1})", "1: format: a text is needed"},
        {R"({"format": "PimStoreBridge store", "version": 2})", "1: version: this version"},
        {R"({"format": "PimStoreBridge store", "version": 1.5})", "1: version: a whole number"},
        {head + "\n\"oops\": 1}", "2: oops: there is no such key here"},
        {head + R"("root": [])" + "}", "1: root: an object is needed here"},
        {head + R"("root": {}, "root": {}})", "1: root: the key \"root\" stands twice"},
        {head + R"("root": {"folders": {}}})", "1: root/folders: an array is needed here"},
        {head + R"("root": {"folders": [[]]}})", "1: root/folders/0: an object is needed here"},
        {head + R"("root": {"messages": 5}})", "1: root/messages: an "},
        {head + R"("root": {"messages": [5]}})", "1: root/messages/0: an object is needed here"},
        {head + R"("root": {"messages": [{"oops": 1}]}})",
         "1: root/messages/0/oops: there is no such key here"},
        {head + R"("root": {"messages": [{"entryId": 5}]}})",
         "1: root/messages/0/entryId: a text is needed here"},
        {head + R"("root": {"messages": [{"entryId": "00"}]}})",
         "1: root/messages/0/entryId: this is no entry ID"},
        {head + R"("root": {"entryId": "000000005053050100000000000000000000000000000001"}})",
         "1: root/entryId: this is no entry ID"},
        {head + R"("root": {"messages": [
           {"entryId": "000000005053050100000000000000000000000000000001"},
           {"entryId": "000000005053050100000000000000000000000000000001"}]}})",
         "3: root/messages/1: two objects of the file have this entry ID"},
        {head + R"("root": {"messages": [{"created": "today"}]}})",
         "1: root/messages/0/created: a UTC time"},
        {head + R"("root": {"messages": [{"modified": 18446744073709551615}]}})",
         "1: root/messages/0/modified: the time is too far"},
        {head + R"("root": {"messages": [{"attachments": [{"number": 0}, {"number": 0}]}]}})",
         "1: root/messages/0/attachments/1: two attachments"},
        {head + R"("root": {"messages": [{"attachments": [{"number": -1}]}]}})",
         "1: root/messages/0/attachments/0/number: a whole number"},
        {head + R"("root": {"roles": ["king"]}})", "1: root/roles/0: there is no role \"king\""},
        {head + R"("root": {"roles": ["inbox"], "folders": [{"roles": ["inbox"]}]}})",
         "1: root/folders/0/roles/0: two folders have the role"},
        {head + R"("root": {"receives": [""]}})", "1: root/receives/0: a message class"},
        {head + R"("root": {"receives": ["A"], "folders": [{"receives": ["a"]}]}})",
         "1: root/folders/0/receives/0: two folders receive"},
        {head +
             R"("root": {"name": "A", "properties": [{"tag": "PR_DISPLAY_NAME_W", "value": ""}]}})",
         "1: root/properties: this property stands twice"},
        {head +
             R"("root": {"properties": [{"tag": "PR_DISPLAY_NAME_W", "value": ""}], "name": "A"}})",
         "1: root/name: this property stands twice"},
        {head + R"("store": {"properties": {}}})", "1: store/properties: an array is needed here"},
        {head + R"("identity": {"entryId": "000000005053030100000000000000000000000000000001"}})",
         "1: identity/entryId: this is no entry ID"},
        {head + "\"root\": {\"name\": \"\xC3(\"}}", "1: root/name: syntax error"},
        {head + "\"root\": {\"name\": \"\\ud800\"}}", "1: root/name: syntax error"},
        {head + R"("root": {"name": "A")", "1: root/name: syntax error"},
        {head + R"("root": {}} x)", "1: : syntax error"},
        {head + R"("root": {"messages": [{"created": 1e999}]}})", "1: root/messages/0"},
    };
    for (const Row& row : rows)
        EXPECT_THAT(Problem(row.json), testing::StartsWith(row.problem)) << row.json;
}

TEST_F(StoreLoadTest, TellsWhichPropertyIsWrong)
{
    struct Row
    {
        const char* property;
        const char* place; // below the property
        const char* text;
    };
    const Row rows[] = {
        {R"(5)", "", "an object is needed"},
        {R"({})", "", "the key \"tag\" is missing"},
        {R"({"tag": "PR_BODY_W"})", "", "the key \"value\" is missing"},
        {R"({"tag": "PR_NONSENSE", "value": 1})",
         "/tag",
         "there is no property tag \"PR_NONSENSE\""},
        {R"({"tag": "0x", "value": 1})", "/tag", "there is no property tag"},
        {R"({"tag": "0x123456789", "value": 1})", "/tag", "there is no property tag"},
        {R"({"tag": 805371935, "value": "x"})", "/tag", "a text is needed"},
        {R"({"tag": "0x0000001F", "value": "x"})", "/tag", "the property IDs of tags"},
        {R"({"tag": "0x8000001F", "value": "x"})", "/tag", "the property IDs of tags"},
        {R"({"tag": "0x6700000D", "value": "x"})", "/tag", "values of the type 0x000D"},
        {R"({"tag": "0x67000001", "value": null})", "/tag", "values of the type 0x0001"},
        {R"({"tag": "0x6700000A", "value": 1})", "/tag", "values of the type 0x000A"},
        {R"({"tag": "0x0FFF0102", "value": {"hex": ""}})", "/tag", "the store makes this"},
        {R"({"tag": "PR_BODY_W", "value": 1})", "/value", "a text is needed"},
        {R"({"tag": "PR_BODY_W", "value": null})", "/value", "a text is needed"},
        {R"({"tag": "PR_BODY_W", "value": {"utf16": "41"}})", "/value/utf16", "UTF-16 comes in"},
        {R"({"tag": "PR_BODY_W", "value": {"hex": "41"}})", "/value/hex", "there is no such key"},
        {R"({"tag": "PR_BODY_W", "value": {}})", "/value", "an object with one of these keys"},
        {R"({"tag": "PR_ICON_INDEX", "value": "1"})", "/value", "a whole number from -2147483648"},
        {R"({"tag": "PR_ICON_INDEX", "value": 4294967296})", "/value", "a whole number"},
        {R"({"tag": "PR_ICON_INDEX", "value": 1.0})", "/value", "a whole number"},
        {R"({"tag": "PR_ICON_INDEX", "value": 99999999999999999999999})", "/value", "a whole"},
        {R"({"tag": "PR_ICON_INDEX", "value": [1]})", "/value", "a whole number"},
        {R"({"tag": "0x67000002", "value": 65536})", "/value", "a whole number from -32768"},
        {R"({"tag": "0x67000004", "value": 1e39})", "/value", "the number is too large for PT_R4"},
        {R"({"tag": "0x67000004", "value": {"bits": "0x123456789"}})", "/value/bits", "0x and up"},
        {R"({"tag": "0x67000005", "value": "1"})", "/value", "a number is needed"},
        {R"({"tag": "0x6700000B", "value": "true"})", "/value", "true or false"},
        {R"({"tag": "0x6700000B", "value": 65536})", "/value", "a whole number"},
        {R"({"tag": "PR_BIRTHDAY", "value": "2024-02-30T00:00:00Z"})",
         "/value",
         "there is no such day"},
        {R"({"tag": "PR_BIRTHDAY", "value": "1600-12-31T00:00:00Z"})",
         "/value",
         "there is no such day"},
        {R"({"tag": "PR_BIRTHDAY", "value": "2024-02-01T24:00:00Z"})",
         "/value",
         "there is no such day"},
        {R"({"tag": "PR_BIRTHDAY", "value": "2024-02-01T00:00:00"})", "/value", "a UTC time"},
        {R"({"tag": "PR_BIRTHDAY", "value": "2024-02-01T00:00:00.Z"})", "/value", "a UTC time"},
        {R"({"tag": "PR_BIRTHDAY", "value": "2024-02-01T00:00:00.12345678Z"})", "/value", "a UTC"},
        {R"({"tag": "PR_BIRTHDAY", "value": -1})", "/value", "a whole number"},
        {R"({"tag": "PR_BIRTHDAY", "value": true})", "/value", "a UTC time"},
        {R"({"tag": "0x67000102", "value": "00"})", "/value", "an object is needed"},
        {R"({"tag": "0x67000102", "value": {"hex": "0"}})",
         "/value/hex",
         "hexadecimal text has two digits"},
        {R"({"tag": "0x67000102", "value": {"hex": "0g"}})",
         "/value/hex",
         "this is no hexadecimal"},
        {R"({"tag": "0x67000102", "value": {"base64": "AA="}})",
         "/value/base64",
         "base64 comes in groups of four"},
        {R"({"tag": "0x67000102", "value": {"base64": "A==="}})", "/value/base64", "this is no"},
        {R"({"tag": "0x67000102", "value": {"base64": "AB=="}})",
         "/value/base64",
         "this base64 has bits behind"},
        {R"({"tag": "0x67000102", "value": {"base64": "A A="}})", "/value/base64", "this is no"},
        {R"({"tag": "0x67000102", "value": {"hex": "", "base64": ""}})",
         "/value",
         "an object with one"},
        {R"({"tag": "0x67000048", "value": "{00}"})", "/value", "a GUID"},
        {"{\"tag\": \"0x6700001E\", \"value\": \"\xC3\xA9\"}",
         "/value",
         "a PT_STRING8 text beyond"},
        {R"({"tag": "0x6700101F", "value": "one"})", "/value", "an array is needed"},
        {R"({"tag": "0x6700101F", "value": ["one", 2]})", "/value/1", "a text is needed"},
        {R"({"set": "PSETID_Nothing", "id": 1, "type": "PT_LONG", "value": 1})", "/set", "a GUID"},
        {R"({"set": "PSETID_Common", "type": "PT_LONG", "value": 1})",
         "",
         "a named property has either an id or a name"},
        {R"({"set": "PSETID_Common", "id": 1, "name": "a", "type": "PT_LONG", "value": 1})",
         "",
         "a named property has either an id or a name"},
        {R"({"set": "PSETID_Common", "id": "8501", "type": "PT_LONG", "value": 1})",
         "/id",
         "a number"},
        {R"({"set": "PSETID_Common", "id": 4294967296, "type": "PT_LONG", "value": 1})",
         "/id",
         "a whole"},
        {R"({"set": "PSETID_Common", "id": 1, "value": 1})", "", "the key \"type\" is missing"},
        {R"({"set": "PSETID_Common", "id": 1, "type": "PT_OBJECT", "value": 1})",
         "/type",
         "there is no"},
        {R"({"set": "PSETID_Common", "id": 1, "type": "PT_LONG", "value": 1, "tag": "PR_BODY_W"})",
         "/tag",
         "there is no such key"},
    };
    for (const Row& row : rows)
        EXPECT_THAT(Problem(WithProperties(R"({"tag": "0x66000003", "value": 1},)" +
                                           std::string(row.property))),
                    testing::StartsWith("1: root/messages/0/properties/1" + std::string(row.place) +
                                        ": " + row.text))
            << row.property;
    EXPECT_THAT(Problem(WithProperties(R"({"tag": "0x66000003", "value": 1},
                                          {"tag": "0x6600001F", "value": "1"})")),
                testing::StartsWith("2: root/messages/0/properties/1: this property stands twice"));
}

TEST_F(StoreLoadTest, HostileSizesEndWithAMessage)
{
    const std::string head = R"({"format": "PimStoreBridge store", "version": 1, "root": )";
    // Deep in what is held, in folders, and at the top.
    EXPECT_THAT(Problem(head + R"({"messages": [{"properties": )" + std::string(100'000, '[')),
                HasSubstr("nested more than 256 deep"));
    std::string folders;
    for (int i = 0; i < 10'000; ++i)
        folders += "{\"folders\": [";
    EXPECT_THAT(Problem(head + folders), HasSubstr("nested more than 256 deep"));
    EXPECT_THAT(Problem(std::string(1'000'000, '[')), HasSubstr("an object is needed here"));
    // Keys without end in one object.
    std::string keys;
    for (int i = 0; i < 100'000; ++i)
        keys += "\"k" + std::to_string(i) + "\": 1, ";
    EXPECT_THAT(Problem(head + R"({"messages": [{)" + keys), HasSubstr("too many keys"));
    // A role list, and a property list of a folder, that cost the square of their length would not
    // end here.
    std::string properties = R"({"tag": "0x66000003", "value": 1})";
    for (int i = 0; i < 60'000; ++i)
        properties += R"(,{"set": "PSETID_Common", "id": )" + std::to_string(i) +
                      R"(, "type": "PT_LONG", "value": 1})";
    EXPECT_THAT(Problem(head + R"({"properties": [)" + properties + "], \"oops\": 1}}"),
                HasSubstr("root/oops: there is no such key"));
}

TEST_F(StoreLoadTest, TheDeepestFoldersComeBackAndADeeperOneIsTold)
{
    // The root is the first level. What nests most in a folder: a list of values of an attachment.
    const auto withLevels = [](int levels) {
        std::string folder = R"({"messages": [{"attachments": [{"properties": [
            {"tag": "0x67001102", "value": [{"hex": "00"}]}]}]}]})";
        for (int level = 1; level < levels; ++level)
            folder = R"({"folders": [)" + folder + "]}";
        return R"({"format": "PimStoreBridge store", "version": 1, "root": )" + folder + "}";
    };
    Database database = OpenStore(L":memory:");
    Load(database, withLevels(100));
    EXPECT_EQ(100, database.QueryInteger("SELECT count(*) FROM folder"));
    const std::string dump = Dump(database);
    Database other = OpenStore(L":memory:");
    Load(other, dump);
    EXPECT_EQ(dump, Dump(other));
    Load(other, dump, LoadMode::Replace);
    EXPECT_EQ(dump, Dump(other));

    std::string path = "root";
    for (int level = 2; level <= 101; ++level)
        path += "/folders/0";
    EXPECT_EQ("1: " + path + ": folders stand in 100 levels at most, the root in the first",
              Problem(withLevels(101)));
}

// The number of a tag decides, whatever its type. 0x340D is the store's support mask, 0x3601 the
// folder's type, 0x0E1B whether a message has attachments, 0x0E21 an attachment's number, 0x3900
// the display type; 0x3602 counts messages, 0x3007 is the time of creation.
TEST_F(StoreLoadTest, WhatTheStoreMakesOfOneKindOfObjectIsAPropertyOfOthers)
{
    struct Row
    {
        const char* before;
        const char* after;
        const char* made;
        const char* kept;
    };
    const Row rows[] = {
        {R"("store": {"properties": [)", "]}", "0x340D0003", "0x36020003"},
        {R"("root": {"properties": [)", "]}", "0x36010003", "0x0E210003"},
        {R"("root": {"messages": [{"properties": [)", "]}]}", "0x0E1B0003", "0x0E210003"},
        {R"("root": {"messages": [{"attachments": [{"properties": [)",
         "]}]}]}",
         "0x0E210003",
         "0x30070003"},
        {R"("identity": {"properties": [)", "]}", "0x39000003", "0x0E210003"},
        {R"("book": [{"properties": [)", "]}]", "0x39000003", "0x0E210003"},
    };
    for (const Row& row : rows)
    {
        const auto property = [](const char* tag) {
            return R"({"tag": ")" + std::string(tag) + R"(", "value": 1})";
        };
        const auto file = [&](const char* tag) {
            return R"({"format": "PimStoreBridge store", "version": 1, )" +
                   std::string(row.before) + property(tag) + row.after + "}";
        };
        EXPECT_THAT(Problem(file(row.made)),
                    HasSubstr("/properties/0/tag: the store makes this property itself"))
            << row.before;
        Database database = OpenStore(L":memory:");
        Load(database, file(row.kept));
        const std::string dump = Dump(database);
        EXPECT_THAT(dump, HasSubstr(property(row.kept))) << row.before;
        Database other = OpenStore(L":memory:");
        Load(other, dump);
        EXPECT_EQ(dump, Dump(other));
    }
}

TEST_F(StoreLoadTest, AFailureWhileWritingTakesEverythingBack)
{
    Database database = OpenStore(L":memory:");
    Load(database,
         R"({"format": "PimStoreBridge store", "version": 1, "root": {"folders": [
             {"entryId": "000000005053030100000000000000000000000000000003", "name": "A",
              "folders": [{"name": "B"}]}]}})");
    const std::string before = Dump(database);
    // The folder is in the store, but not below the root's child of the file.
    const std::string moved = R"({"format": "PimStoreBridge store", "version": 1, "root":
        {"messages": [{}], "folders": [{"name": "New", "folders": [
        {"entryId": "000000005053030100000000000000000000000000000003"}]}]}})";
    try
    {
        Load(database, moved);
        FAIL() << "loaded";
    }
    catch (const JsonProblem& problem)
    {
        EXPECT_STREQ("the store has the folder of this entry ID in another place", problem.what());
        EXPECT_EQ("root/folders/0/folders/0", problem.Path());
        EXPECT_EQ(3u, problem.Line());
    }
    EXPECT_EQ(before, Dump(database));

    // The map of names is full in the middle of the messages.
    database.Execute("WITH RECURSIVE ids (id) AS (VALUES (32768) UNION ALL SELECT id + 1 FROM ids "
                     "WHERE id < 65534) INSERT INTO named_property (property_id, property_set, "
                     "number) SELECT id, zeroblob(16), id FROM ids");
    try
    {
        Load(database,
             WithProperties(R"({"set": "PSETID_Common", "id": 1, "type": "PT_LONG", "value": 1})"));
        FAIL() << "loaded";
    }
    catch (const DatabaseError& error)
    {
        EXPECT_EQ(DatabaseFailure::Full, error.Failure());
    }
    EXPECT_EQ(before, Dump(database));
}

TEST_F(StoreLoadTest, NobodyChangesTheFileBetweenItsTwoReadings)
{
    WriteWholeFile(Path(), "{}");
    JsonFile file;
    DWORD reason = 0;
    ASSERT_TRUE(file.Open(Path(), reason));
    const UniqueFile writer(CreateFileW(
        Path().c_str(), GENERIC_WRITE, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
    EXPECT_FALSE(writer);
}

// What a message costs the database does not grow with their number.
TEST_F(StoreLoadTest, TheCostOfAMessageDoesNotGrowWithTheirNumber)
{
    const auto stepsFor = [&](int count) {
        std::string text =
            R"({"format": "PimStoreBridge store", "version": 1, "root": {"messages": [)";
        for (int i = 0; i < count; ++i)
            text += std::string(i ? "," : "") +
                    R"({"properties": [{"tag": "PR_SUBJECT_W", "value": "one"},)"
                    R"({"set": "PSETID_Common", "id": "0x8510", "type": "PT_LONG", "value": 3}]})";
        const DatabaseSteps steps;
        Database database = OpenStore(L":memory:");
        Load(database, text + "]}}");
        const std::string dump = Dump(database);
        Load(database, dump);
        const std::int64_t taken = steps.Hundreds();
        EXPECT_EQ(count, database.QueryInteger("SELECT count(*) FROM message"));
        EXPECT_EQ(dump, Dump(database));
        return taken;
    };
    const std::int64_t few = stepsFor(2'000);
    const std::int64_t many = stepsFor(20'000);
    EXPECT_GT(few, 0);
    // Ten times as much, and what the first ones of a store cost beside it.
    EXPECT_LT(many, few * 11);
}
