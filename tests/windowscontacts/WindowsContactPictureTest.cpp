// Pictures of Windows contacts: a path in the book, a copy in the hidden folder.
#include "windowscontacts/WindowsContactFixture.h"

#include "support/DebugOutputCapture.h"
#include "windowscontacts/ContactParts.h"
#include "windowscontacts/PictureFolder.h"

#include <aclapi.h>
#include <sddl.h>

#include <regex>

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
        WriteFileBytes(path, bytes);
        return path;
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
    EXPECT_EQ("picture", ReadFileBytes(path));
    EXPECT_EQ("picture", ReadFileBytes(source)) << "the source stays";
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
        Email "a@x"
        Website "http://a")_" + std::string(kAllPhones) +
                                kAllAddresses + kBothDates);
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
        3004001F "note")_" + std::string(kAllPhoneValues) +
                                 R"_(
        3A56101F ["a@x"]
        3A54101F ["SMTP"]
        3A550003 0
        3A51001F "http://a")_" + kAllAddressValues +
                                 kBothDateValues + R"_(
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
    EXPECT_EQ("picture", ReadFileBytes(Images().back()));
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
    WriteFileBytes(ImageFolder() + L"\\old.jpg", "old");
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
    WriteFileBytes(ImageFolder(), "in the way");
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
