// Every call that loading, reading, adding, updating and deleting of Windows contacts make, going
// wrong in each way in which a store may.
#include "windowscontacts/WindowsContactFixture.h"

#include "tests/outlook/store/FaultSession.h"
#include "tests/recordingstore/FaultHarness.h"

#include <algorithm>
#include <functional>
#include <regex>

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;

namespace
{
constexpr StoreFault kAllFaults[] = {StoreFault::OutOfMemory,
                                     StoreFault::CallFailed,
                                     StoreFault::NullOutput,
                                     StoreFault::FewerValues,
                                     StoreFault::WrongTypes,
                                     StoreFault::ShortRows};

// The harness has stores of its own, one at a time. They hold one contact, "ann", and one list,
// "choir", which no failure touches.
class WindowsContactFaultTest : public testing::Test
{
  protected:
    WindowsContactFaultTest()
    {
        m_documents.Set(m_folder.Path().wstring());
        WriteFileBytes(m_source, kPicture);
    }

    void Fill(RecordingStore& store)
    {
        store.AddBook();
        store.AddBookEntry("ann",
                           StoreProps()
                               .Text(0x3A06001F, L"Ann")
                               .Texts(0x3A56101F, {L"ann@x"})
                               .Text(0x3A50001F, L"http://own")
                               .Text(0x3A26001F, L"Norway")
                               .Time(0x3A420040, 116444736000000000)
                               .Text(0x3004001F, L"note")
                               .Text(0x660E001F, L"C:\\a.jpg"));
        store.SetEntryId("ann", MarkedID(L"ann"));
        store.AddBookEntry("choir", StoreProps().Text(0x3001001F, L"Choir"), MAPI_DISTLIST);
        annID = HexOf(store.EntryIdOf("ann"));
    }

    // A session with a table, and what to do with it, under both names of the provider. Without a
    // failure that gives what the first check expects; the second one holds with each failure of
    // which the caller can know.
    void Run(const char* name,
             const std::function<void(CWindowsMailAddressTable&)>& work,
             const std::function<void(RecordingStore&)>& checkSuccess,
             const std::function<void(RecordingStore&)>& checkAlways)
    {
        for (const bool underOutlookExpress : {false, true})
        {
            isOutlookExpress = underOutlookExpress;
            FaultScenario scenario = {.name = name,
                                      .setUp = [this](RecordingStore& store) { Fill(store); },
                                      .action =
                                          [&] {
                                              hasSucceeded = false;
                                              const BookSession session;
                                              if (!session.Container())
                                                  return; // the failing call was the session's own
                                              CWindowsMailAddressTable table(session.Container(),
                                                                             session.Helper(),
                                                                             isOutlookExpress,
                                                                             session.Book());
                                              work(table);
                                          },
                                      .check =
                                          [&](const FaultRun& run, RecordingStore& store) {
                                              SCOPED_TRACE(run.line + ' ' + NameOf(run.fault));
                                              if (run.fault == StoreFault::None)
                                              {
                                                  EXPECT_TRUE(hasSucceeded);
                                                  checkSuccess(store);
                                              }
                                              EXPECT_THAT(store.PropsOf("choir"),
                                                          Contains("3001001F \"Choir\""));
                                              // A store that says it did and did not is beyond
                                              // help, and a save goes on whatever became of the
                                              // values.
                                              if (run.fault != StoreFault::NullOutput &&
                                                  run.line.find("SetProps") == std::string::npos)
                                                  checkAlways(store);
                                          },
                                      .lasting = WithoutPictureNumbers,
                                      .bystanders = {"choir", "book"}};
            EXPECT_GT(RunFaults(scenario, kAllFaults).runs, 30u);
            // Of what a hostile store said, nothing holds but that the harness looks at.
            scenario.check = nullptr;
            RunHostileAnswers(scenario);
        }
    }

    // A picture's name holds a time and counts up.
    static std::string WithoutPictureNumbers(const std::string& line)
    {
        static const std::regex name("Con-?[0-9]+_[0-9]+");
        return std::regex_replace(line, name, "Con#_#");
    }

    // Another Ann.
    ComPtr<INContactItem> Anna()
    {
        auto contact = ContactOf(LinesOf(R"(
            FirstName "Anna"
            Email "anna@x"
            Business.City "Bonn"
            Birthday 25570)"));
        contact->put_PersistentID(Bstr(std::wstring_view(annID)).Get());
        return contact;
    }
    ComPtr<INContactItem> AnnaWithAPicture()
    {
        auto contact = Anna();
        contact->put_Picture(Bstr(std::wstring_view(m_source)).Get());
        return contact;
    }
    void Add(CWindowsMailAddressTable& table, const ComPtr<INContactItem>& contact)
    {
        std::wstring folderID;
        hasSucceeded =
            !table.AddItem(QueryItem<INEntityItem>(contact.Get()).Get(), folderID).empty();
        EXPECT_EQ(L"", folderID);
    }
    void Update(CWindowsMailAddressTable& table, const ComPtr<INContactItem>& contact)
    {
        table.GetItemIDs();
        table.ResetItem();
        hasSucceeded = table.UpdateItem(QueryItem<INEntityItem>(contact.Get()).Get());
    }
    // What Anna is in the book. 25570 is 1970-01-02.
    static void ExpectAnna(RecordingStore& store, const char* name)
    {
        EXPECT_THAT(store.PropsOf(name),
                    IsSupersetOf({"3001001F \"Anna\"",
                                  "3A06001F \"Anna\"",
                                  "3A27001F \"Bonn\"",
                                  "3A420040 116445600000000000",
                                  "3A54101F [\"SMTP\"]",
                                  "3A550003 0",
                                  "3A56101F [\"anna@x\"]"}));
    }
    // The book names a whole copy of the picture in the hidden folder, and the source stays.
    void ExpectPicture(RecordingStore& store, const char* name) const
    {
        constexpr std::string_view kTag = "660E001F ";
        const TextLines lines = store.PropsOf(name);
        const auto line = std::ranges::find_if(
            lines, [&](const std::string& one) { return one.starts_with(kTag); });
        ASSERT_NE(lines.end(), line);
        const std::wstring path = UnquotedText(line->substr(kTag.size()));
        EXPECT_THAT(path, StartsWith(m_folder.File(L"ContactImg\\Con")));
        EXPECT_EQ(kPicture, ReadFileBytes(path));
        EXPECT_EQ(kPicture, ReadFileBytes(m_source));
    }
    static void ExpectAnnAsSheWas(RecordingStore& store)
    {
        EXPECT_THAT(store.PropsOf("ann"),
                    IsSupersetOf({"3004001F \"note\"",
                                  "3A06001F \"Ann\"",
                                  "3A26001F \"Norway\"",
                                  "3A420040 116444736000000000",
                                  "3A50001F \"http://own\"",
                                  "3A56101F [\"ann@x\"]",
                                  "660E001F \"C:\\x005Ca.jpg\""}));
    }

    const std::string kPicture = "picture";
    ScratchDirectory m_folder;
    const std::wstring m_source = m_folder.File(L"source.jpg");
    ScopedShellFolder m_documents{L"Personal"};
    bool isOutlookExpress = false;
    bool hasSucceeded = false; // what the work has to say of it
    std::wstring annID;
};
} // namespace

TEST_F(WindowsContactFaultTest, LoadingAndReading)
{
    Run(
        "load and read",
        [this](CWindowsMailAddressTable& table) {
            table.GetItemIDs();
            EXPECT_EQ(L"", table.ToClientID(L""));
            table.ResetItem();
            table.GetNextItem();
            const auto contact = QueryItem<INContactItem>(CurrentItem(table).Get());
            const std::wstring clientID = isOutlookExpress ? annID : L"ann";
            const auto isAnn = testing::UnorderedElementsAreArray(LinesOf(R"_(
                FirstName "Ann"
                Notes "note"
                Picture "C:\x005Ca.jpg"
                Email "ann@x"
                Website "http://own"
                Business.Country "Norway"
                Birthday 25569)_"));
            hasSucceeded = contact && table.ToClientID(annID) == clientID &&
                           testing::Value(TextOfContact(contact.Get()), isAnn);
            ExpectEnd(table);
        },
        [](RecordingStore&) {},
        ExpectAnnAsSheWas);
}

TEST_F(WindowsContactFaultTest, Adding)
{
    Run(
        "add",
        [this](CWindowsMailAddressTable& table) { Add(table, Anna()); },
        [](RecordingStore& store) { ExpectAnna(store, "new 1"); },
        [this](RecordingStore& store) {
            ExpectAnnAsSheWas(store);
            if (hasSucceeded)
                ExpectAnna(store, "new 1");
        });
}

TEST_F(WindowsContactFaultTest, AddingWithAPicture)
{
    Run(
        "add with a picture",
        [this](CWindowsMailAddressTable& table) { Add(table, AnnaWithAPicture()); },
        [](RecordingStore&) {},
        [this](RecordingStore& store) {
            ExpectAnnAsSheWas(store);
            if (!hasSucceeded)
                return;
            ExpectAnna(store, "new 1");
            ExpectPicture(store, "new 1");
        });
}

TEST_F(WindowsContactFaultTest, Updating)
{
    Run(
        "update",
        [this](CWindowsMailAddressTable& table) { Update(table, Anna()); },
        [](RecordingStore& store) {
            ExpectAnna(store, "ann");
            for (const char* const tag : {"3A26001F", "3A50001F", "660E001F"})
                EXPECT_THAT(store.PropsOf("ann"), Not(Contains(StartsWith(tag))));
        },
        [this](RecordingStore& store) {
            EXPECT_THAT(store.PropsOf("ann"), Contains("3004001F \"note\""));
            if (hasSucceeded)
                ExpectAnna(store, "ann");
            else
                ExpectAnnAsSheWas(store);
        });
}

TEST_F(WindowsContactFaultTest, UpdatingWithAPicture)
{
    Run(
        "update with a picture",
        [this](CWindowsMailAddressTable& table) { Update(table, AnnaWithAPicture()); },
        [](RecordingStore&) {},
        [this](RecordingStore& store) {
            if (!hasSucceeded)
                return ExpectAnnAsSheWas(store);
            ExpectAnna(store, "ann");
            ExpectPicture(store, "ann");
        });
}

TEST_F(WindowsContactFaultTest, Deleting)
{
    Run(
        "delete",
        [this](CWindowsMailAddressTable& table) {
            table.GetItemIDs();
            hasSucceeded = table.DeleteItem(annID);
        },
        [](RecordingStore& store) { EXPECT_FALSE(store.Exists("ann")); },
        [this](RecordingStore& store) {
            EXPECT_EQ(!hasSucceeded, store.Exists("ann"));
            if (!hasSucceeded)
                ExpectAnnAsSheWas(store);
        });
}
