// Pictures of Windows contacts: a path in the book, a copy in the hidden folder.
#include "windowscontacts/WindowsContactFixture.h"

#include "support/DebugOutputCapture.h"
#include "windowscontacts/PictureFolder.h"

#include <aclapi.h>
#include <sddl.h>

#include <fstream>
#include <regex>
#include <sstream>

using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
class WindowsContactPictureTest : public WindowsContactTest
{
  protected:
    std::wstring NewFile(const wchar_t* name, const std::string& bytes)
    {
        const std::wstring path = files.File(name);
        std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
        return path;
    }
    static std::string Read(const std::wstring& path)
    {
        std::ostringstream bytes;
        bytes << std::ifstream(std::filesystem::path(path), std::ios::binary).rdbuf();
        return bytes.str();
    }
    static bool IsHidden(const std::wstring& path)
    {
        return (GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_HIDDEN) != 0;
    }
    std::wstring ImageFolder() const { return folder.File(L"ContactImg"); }
    // The files in the folder of pictures.
    std::vector<std::wstring> Images() const
    {
        std::vector<std::wstring> names;
        if (std::filesystem::exists(ImageFolder()))
            for (const auto& entry : std::filesystem::directory_iterator(ImageFolder()))
                names.push_back(entry.path().wstring());
        return names;
    }
    static Microsoft::WRL::ComPtr<INContactItem> WithPicture(const std::wstring& path)
    {
        return ContactOf(LinesOf("LastName \"B\"\nPicture " + QuotedText(path)));
    }
    // What the table makes of a contact.
    TextLines ValuesOf(INContactItem* contact)
    {
        PropertyArray values = table->ReadItem(*QueryItem<INEntityItem>(contact).Get(), true);
        return TextOfValues(values.Count(), values.Get());
    }

    ScratchDirectory files;
};

// The rights of a folder in the system's own words.
std::wstring RightsOf(std::wstring path)
{
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (GetNamedSecurityInfoW(path.data(),
                              SE_FILE_OBJECT,
                              DACL_SECURITY_INFORMATION,
                              nullptr,
                              nullptr,
                              nullptr,
                              nullptr,
                              &descriptor) != ERROR_SUCCESS)
        return L"unknown";
    wchar_t* text = nullptr;
    ConvertSecurityDescriptorToStringSecurityDescriptorW(
        descriptor, SDDL_REVISION_1, DACL_SECURITY_INFORMATION, &text, nullptr);
    const std::wstring rights = text ? text : L"unknown";
    LocalFree(text);
    LocalFree(descriptor);
    return rights;
}
} // namespace

TEST_F(WindowsContactPictureTest, APictureIsCopiedIntoTheHiddenFolder)
{
    const std::wstring source = NewFile(L"a.jpg", "picture");
    LoadTable();
    const TextLines values = ValuesOf(WithPicture(source).Get());
    ASSERT_EQ(1u, Images().size());
    const std::wstring path = Images().front();
    EXPECT_THAT(values,
                ElementsAre("3A11001F \"B\"", "3001001F \"B\"", "660E001F " + QuotedText(path)));
    EXPECT_TRUE(std::regex_match(path.substr(ImageFolder().size()),
                                 std::wregex(L"\\\\Con-?[0-9]+_[0-9]+\\.jpg")));
    EXPECT_EQ("picture", Read(path));
    EXPECT_EQ("picture", Read(source)) << "the source stays";
    EXPECT_TRUE(IsHidden(ImageFolder()));
    EXPECT_FALSE(IsHidden(path));
    // The rights are those of any new folder there, not those of all the world.
    const std::wstring plain = folder.File(L"plain");
    std::filesystem::create_directory(plain);
    EXPECT_EQ(RightsOf(plain), RightsOf(ImageFolder()));
    EXPECT_NE(L"unknown", RightsOf(plain));
}

// 46 values, the picture behind the display name: the array takes as many as there are.
TEST_F(WindowsContactPictureTest, AContactWithEverythingIsWrittenWhole)
{
    TextLines contact = LinesOf(R"_(
        FirstName "first"
        MiddleName "middle"
        LastName "last"
        JobTitle "job"
        CompanyName "company"
        Suffix "suffix"
        Notes "note"
        Phone0 "0"
        Phone1 "1"
        Phone2 "2"
        Phone3 "3"
        Phone4 "4"
        Phone5 "5"
        Phone6 "6"
        Phone7 "7"
        Phone8 "8"
        Phone9 "9"
        Phone10 "10"
        Phone11 "11"
        Phone12 "12"
        Email "a@x"
        Website "http://a"
        Home.Country "h1"
        Home.StateOrProvince "h2"
        Home.City "h3"
        Home.Street "h4"
        Home.PostalCode "h5"
        Home.PostOfficeBox "h6"
        Business.Country "b1"
        Business.StateOrProvince "b2"
        Business.City "b3"
        Business.Street "b4"
        Business.PostalCode "b5"
        Business.PostOfficeBox "b6"
        Other.Country "o1"
        Other.StateOrProvince "o2"
        Other.City "o3"
        Other.Street "o4"
        Other.PostalCode "o5"
        Other.PostOfficeBox "o6"
        Birthday 25569
        Anniversary 25570)_");
    contact.push_back("Picture " + QuotedText(NewFile(L"a.jpg", "picture")));
    LoadTable();
    const TextLines values = ValuesOf(ContactOf(contact).Get());
    ASSERT_EQ(1u, Images().size());
    TextLines expected = LinesOf(R"_(
        3A06001F "first"
        3A11001F "last"
        3A44001F "middle"
        3A17001F "job"
        3A16001F "company"
        3004001F "note"
        3A57001F "0"
        3A1C001F "1"
        3A08001F "2"
        3A1B001F "3"
        3A09001F "4"
        3A2F001F "5"
        3A24001F "6"
        3A25001F "7"
        3A21001F "8"
        3A1F001F "9"
        3A2E001F "10"
        3A1E001F "11"
        3A1D001F "12"
        3A56101F ["a@x"]
        3A54101F ["SMTP"]
        3A550003 0
        3A51001F "http://a"
        3A5A001F "h1"
        3A5C001F "h2"
        3A59001F "h3"
        3A5D001F "h4"
        3A5B001F "h5"
        3A5E001F "h6"
        3A26001F "b1"
        3A28001F "b2"
        3A27001F "b3"
        3A29001F "b4"
        3A2A001F "b5"
        3A28001F "b6"
        3A60001F "o1"
        3A62001F "o2"
        3A5F001F "o3"
        3A63001F "o4"
        3A61001F "o5"
        3A64001F "o6"
        3A420040 116444736000000000
        3A410040 116445600000000000
        3A05001F "suffix"
        3001001F "firstlastmiddlesuffix")_");
    expected.push_back("660E001F " + QuotedText(Images().front()));
    EXPECT_EQ(46u, expected.size());
    EXPECT_EQ(expected, values);
}

TEST_F(WindowsContactPictureTest, EachWriteMakesANewFile)
{
    const std::wstring source = NewFile(L"a.jpg", "picture");
    LoadTable();
    const std::wstring id = Add(WithPicture(source).Get());
    ASSERT_EQ(1u, Images().size());
    // The item has the private copy now; writing it copies that one.
    table->GetItemByID(id);
    const auto contact = Current();
    Bstr path;
    contact->get_Picture(path.Put());
    EXPECT_EQ(Images().front(), TextOf(path.Get()));
    EXPECT_TRUE(table->UpdateItem(QueryItem<INEntityItem>(contact.Get()).Get()));
    ASSERT_EQ(2u, Images().size());
    EXPECT_EQ("picture", Read(Images().back()));
    table->GetItemByID(id);
    Bstr second;
    Current()->get_Picture(second.Put());
    EXPECT_NE(TextOf(path.Get()), TextOf(second.Get()));
    // Nothing removes a file, also not a deletion.
    EXPECT_TRUE(table->DeleteItem(id));
    EXPECT_EQ(2u, Images().size());
}

TEST_F(WindowsContactPictureTest, NamesCountUp)
{
    const auto numberOf = [](const std::wstring& path) {
        return std::stoi(path.substr(path.rfind(L'_') + 1));
    };
    const int first = numberOf(NewContactPicturePath());
    EXPECT_EQ(first + 1, numberOf(NewContactPicturePath()));
    EXPECT_EQ(first + 2, numberOf(NewContactPicturePath()));
    EXPECT_THAT(Images(), IsEmpty()) << "no file is made";
}

TEST_F(WindowsContactPictureTest, AFolderThatIsThereIsHiddenAndKept)
{
    std::filesystem::create_directory(ImageFolder());
    std::ofstream(std::filesystem::path(ImageFolder() + L"\\old.jpg")) << "old";
    EXPECT_FALSE(IsHidden(ImageFolder()));
    NewContactPicturePath();
    EXPECT_TRUE(IsHidden(ImageFolder()));
    EXPECT_EQ(1u, Images().size());
}

TEST_F(WindowsContactPictureTest, AnEmptyOrMissingSourceGivesNoPicture)
{
    LoadTable();
    for (const std::wstring& source :
         {files.File(L"missing.jpg"), NewFile(L"empty.jpg", ""), files.Path().wstring()})
        EXPECT_THAT(ValuesOf(WithPicture(source).Get()),
                    ElementsAre("3A11001F \"B\"", "3001001F \"B\""));
    const std::size_t before = Images().size();
    EXPECT_THAT(ValuesOf(WithPicture(L"").Get()), ElementsAre("3A11001F \"B\"", "3001001F \"B\""));
    EXPECT_EQ(before, Images().size()) << "without a path nothing is done";
}

TEST_F(WindowsContactPictureTest, AFolderThatCannotBeMadeCostsThePictureOnly)
{
    const std::wstring source = NewFile(L"a.jpg", "picture");
    // A file of that name stands in the way.
    std::ofstream(std::filesystem::path(ImageFolder())) << "in the way";
    LoadTable();
    const ScopedLogSettings logOn;
    DebugOutputCapture output;
    const std::wstring id = Add(WithPicture(source).Get());
    EXPECT_NE(L"", id);
    // There is a path, and no file comes to stand there.
    const std::wstring start = ImageFolder() + L"\\Con";
    EXPECT_THAT(output.TakeLogMessages(),
                testing::IsSupersetOf(
                    {testing::Matcher<const std::string&>(testing::StartsWith(
                         "=====CreatePicturePath:" + std::string(start.begin(), start.end()))),
                     testing::Matcher<const std::string&>("=====SHCreateStreamOnFileW: Failed")}));
    EXPECT_THAT(store.PropsOf("new 1"),
                testing::Not(testing::Contains(testing::StartsWith("660E"))));
}

TEST_F(WindowsContactPictureTest, PicturesStandInWhereThereAreNoDocuments)
{
    ScopedShellFolder pictures(L"My Pictures");
    const std::filesystem::path second = files.Path() / L"second";
    std::filesystem::create_directory(second);
    pictures.Set(second.wstring());
    documents.Set(files.File(L"gone"));
    EXPECT_EQ(second.wstring() + L"\\ContactImg\\",
              NewContactPicturePath().substr(0, second.wstring().size() + 12));
    EXPECT_TRUE(IsHidden(second.wstring() + L"\\ContactImg"));

    // Without both there is no path.
    pictures.Set(files.File(L"gone too"));
    EXPECT_EQ(L"", NewContactPicturePath());
}

TEST_F(WindowsContactPictureTest, TheLogTellsThePathAndTheBytes)
{
    const std::wstring source = NewFile(L"a.jpg", "picture");
    LoadTable();
    const ScopedLogSettings logOn;
    {
        DebugOutputCapture output;
        ValuesOf(WithPicture(source).Get());
        ASSERT_EQ(1u, Images().size());
        const std::wstring path = Images().front();
        EXPECT_THAT(output.TakeLogMessages(),
                    ElementsAre("=====CreatePicturePath:" + std::string(path.begin(), path.end()),
                                "=====CAddressTable::SavePicture, dwTotal=7"));
    }
    {
        DebugOutputCapture output;
        documents.Set(files.File(L"gone"));
        ScopedShellFolder pictures(L"My Pictures");
        pictures.Set(files.File(L"gone"));
        EXPECT_THAT(ValuesOf(WithPicture(source).Get()),
                    ElementsAre("3A11001F \"B\"", "3001001F \"B\""));
        EXPECT_THAT(output.TakeLogMessages(),
                    ElementsAre("=====CreatePicturePath:", "=====SHCreateStreamOnFileW: Failed"));
    }
    {
        DebugOutputCapture output;
        documents.Set(folder.Path().wstring());
        ValuesOf(ContactOf({}).Get());
        EXPECT_THAT(output.TakeLogMessages(), IsEmpty());
    }
}
