// What contacts become in the store. Every list of values was worked out by hand from the rules of
// names, addresses and dates; none comes out of this program.
//
// Times are units of 100 ns since 1601, which is DATE -109205: midnight of DATE d is
// (d + 109205) * 864000000000. 25569 is 1970-01-01 and gives 116444736000000000.
#include "outlook/contacts/ContactWriting.h"

#include "outlook/contacts/ContactTableFixture.h"
#include "outlook/contacts/OwnContact.h"
#include "platform/SafeArray.h"

#include <gmock/gmock.h>

#include <cmath>
#include <fstream>
#include <limits>

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Lines = std::vector<std::string>;

namespace
{
struct WritingCase
{
    const char* name;
    const char* contact; // see ContactText.h
    const char* values;
    std::uint32_t order = 0;
    const wchar_t* style = L"";
    int biasMinutes = 0;
    bool isNew = false;
};

// The values that stand in every list: job title, company, the two display names, file-as text and
// code, icon.
constexpr WritingCase kCases[] = {
    {"NothingAtAll", "", R"_(
        3A17001F ""
        3A16001F ""
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"ANewMessageHasAClass",
     "",
     R"_(
        001A001F "IPM.Contact"
        3A17001F ""
        3A16001F ""
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_",
     0,
     L"",
     0,
     true},
    {"WesternNameWithoutSettings",
     R"_(
        FirstName "John"
        MiddleName "Q"
        LastName "Public"
        Suffix "Jr.")_",
     R"_(
        3A06001F "John"
        3A44001F "Q"
        3A11001F "Public"
        3A17001F ""
        3A16001F ""
        3A05001F "Jr."
        3001001F "Public John Q"
        0037001F "Public John Q"
        8005001F "John Q Public"
        80060003 32823
        10800003 512)_"},
    {"WesternNameInEnglishStyle",
     R"_(
        FirstName "John"
        LastName "Public")_",
     R"_(
        3A06001F "John"
        3A11001F "Public"
        3A17001F ""
        3A16001F ""
        3001001F "John Public"
        0037001F "John Public"
        8005001F "John Public"
        80060003 32823
        10800003 512)_",
     0x8037,
     L"E"},
    {"WesternNameInStyleS",
     R"_(
        FirstName "John"
        LastName "Public")_",
     R"_(
        3A06001F "John"
        3A11001F "Public"
        3A17001F ""
        3A16001F ""
        3001001F "John Public"
        0037001F "John Public"
        8005001F "John Public"
        80060003 32823
        10800003 512)_",
     0x8037,
     L"S"},
    {"WesternNameInStyleH",
     R"_(
        FirstName "John"
        LastName "Public")_",
     R"_(
        3A06001F "John"
        3A11001F "Public"
        3A17001F ""
        3A16001F ""
        3001001F "Public John"
        0037001F "Public John"
        8005001F "John Public"
        80060003 32823
        10800003 512)_",
     0x3A06,
     L"H"},
    {"WesternNameInAnUnknownStyle",
     R"_(
        FirstName "John"
        LastName "Public")_",
     R"_(
        3A06001F "John"
        3A11001F "Public"
        3A17001F ""
        3A16001F ""
        3001001F "Public John"
        0037001F "Public John"
        8005001F "Public, John"
        80060003 32791
        10800003 512)_",
     0x3A11,
     L"X"},
    {"LastThenFirstAndMiddle",
     R"_(
        FirstName "John"
        MiddleName "Q"
        LastName "Public")_",
     R"_(
        3A06001F "John"
        3A44001F "Q"
        3A11001F "Public"
        3A17001F ""
        3A16001F ""
        3001001F "John Q Public"
        0037001F "John Q Public"
        8005001F "Public, John Q"
        80060003 32791
        10800003 512)_",
     0x8017,
     L"E"},
    {"Order8018",
     R"_(LastName "Public")_",
     R"_(
        3A11001F "Public"
        3A17001F ""
        3A16001F ""
        3001001F "Public"
        0037001F "Public"
        8005001F "Public"
        80060003 32791
        10800003 512)_",
     0x8018,
     L"E"},
    {"Order8019WithoutFirstName",
     R"_(
        MiddleName "Q"
        LastName "Public")_",
     R"_(
        3A44001F "Q"
        3A11001F "Public"
        3A17001F ""
        3A16001F ""
        3001001F "Q Public"
        0037001F "Q Public"
        8005001F "Public, Q"
        80060003 32791
        10800003 512)_",
     0x8019,
     L"E"},
    {"Order8030WithoutLastName",
     R"_(
        FirstName "John"
        MiddleName "Q")_",
     R"_(
        3A06001F "John"
        3A44001F "Q"
        3A17001F ""
        3A16001F ""
        3001001F "John Q"
        0037001F "John Q"
        8005001F "John Q"
        80060003 32791
        10800003 512)_",
     0x8030,
     L"H"},
    {"Order8036WithMiddleNameAlone",
     R"_(MiddleName "Q")_",
     R"_(
        3A44001F "Q"
        3A17001F ""
        3A16001F ""
        3001001F "Q"
        0037001F "Q"
        8005001F "Q"
        80060003 32791
        10800003 512)_",
     0x8036,
     L"H"},
    {"Order8038WithFirstNameAlone",
     R"_(FirstName "John")_",
     R"_(
        3A06001F "John"
        3A17001F ""
        3A16001F ""
        3001001F "John"
        0037001F "John"
        8005001F "John"
        80060003 32791
        10800003 512)_",
     0x8038,
     L"H"},
    {"CompanyOrder",
     R"_(
        FirstName "John"
        LastName "Public"
        CompanyName "Acme")_",
     R"_(
        3A06001F "John"
        3A11001F "Public"
        3A17001F ""
        3A16001F "Acme"
        3001001F "Public John"
        0037001F "Public John"
        8005001F "Acme"
        80060003 14870
        10800003 512)_",
     0x3A16,
     L"H"},
    {"CompanyOrderWithoutCompany",
     R"_(
        FirstName "John"
        LastName "Public")_",
     R"_(
        3A06001F "John"
        3A11001F "Public"
        3A17001F ""
        3A16001F ""
        3001001F "Public John"
        0037001F "Public John"
        8005001F "John Public"
        80060003 32823
        10800003 512)_",
     0x3A16,
     L"H"},
    {"CompanyAlone",
     R"_(CompanyName "Acme")_",
     R"_(
        3A17001F ""
        3A16001F "Acme"
        3001001F ""
        0037001F ""
        8005001F "Acme"
        80060003 14870
        10800003 512)_",
     0x8037,
     L"E"},
    {"JapaneseNamesWithBlanks",
     R"_(
        FirstName "\x592A \x90CE"
        LastName "\x5C71 \x7530")_",
     R"_(
        3A06001F "\x592A \x90CE"
        3A11001F "\x5C71 \x7530"
        3A17001F ""
        3A16001F ""
        3001001F "\x5C71\x7530\x592A\x90CE"
        0037001F "\x5C71\x7530\x592A\x90CE"
        8005001F "\x5C71 \x7530\x592A \x90CE"
        80060003 32816
        10800003 512)_",
     0x8037,
     L"E"},
    {"JapaneseNamesWithAllParts",
     R"_(
        FirstName "\x592A\x90CE"
        MiddleName "\x4E2D \x9593"
        LastName "\x5C71\x7530"
        Suffix "\x5148\x751F"
        CompanyName "Acme")_",
     R"_(
        3A06001F "\x592A\x90CE"
        3A44001F "\x4E2D \x9593"
        3A11001F "\x5C71\x7530"
        3A17001F ""
        3A16001F "Acme"
        3A05001F "\x5148\x751F"
        3001001F "\x5C71\x7530\x4E2D\x9593\x592A\x90CE\x5148\x751F"
        0037001F "\x5C71\x7530\x4E2D\x9593\x592A\x90CE\x5148\x751F"
        8005001F "\x5C71\x7530\x592A\x90CE \x4E2D \x9593"
        80060003 32816
        10800003 512)_",
     0x3A16,
     L"H"},
    {"JapaneseNamesWithWesternParts",
     R"_(
        FirstName "\x592A\x90CE"
        MiddleName "Q"
        LastName "\x5C71\x7530"
        Suffix "Jr.")_",
     R"_(
        3A06001F "\x592A\x90CE"
        3A44001F "Q"
        3A11001F "\x5C71\x7530"
        3A17001F ""
        3A16001F ""
        3A05001F "Jr."
        3001001F "\x5C71\x7530 Q\x592A\x90CE Jr."
        0037001F "\x5C71\x7530 Q\x592A\x90CE Jr."
        8005001F "\x5C71\x7530\x592A\x90CE Q"
        80060003 32816
        10800003 512)_",
     0x8017,
     L"E"},
    {"KoreanNames",
     R"_(
        FirstName "\xAE38\xB3D9"
        LastName "\xD64D")_",
     R"_(
        3A06001F "\xAE38\xB3D9"
        3A11001F "\xD64D"
        3A17001F ""
        3A16001F ""
        3001001F "\xD64D\xAE38\xB3D9"
        0037001F "\xD64D\xAE38\xB3D9"
        8005001F "\xD64D\xAE38\xB3D9"
        80060003 32816
        10800003 512)_"},
    {"KanaNames",
     R"_(
        FirstName "\x3072\x308D"
        LastName "\x30BF\x30AB")_",
     R"_(
        3A06001F "\x3072\x308D"
        3A11001F "\x30BF\x30AB"
        3A17001F ""
        3A16001F ""
        3001001F "\x30BF\x30AB\x3072\x308D"
        0037001F "\x30BF\x30AB\x3072\x308D"
        8005001F "\x30BF\x30AB\x3072\x308D"
        80060003 32816
        10800003 512)_"},
    {"LatinFirstNameBesideAJapaneseLastName",
     R"_(
        FirstName "Taro"
        LastName "\x5C71\x7530"
        Suffix "\x5148")_",
     R"_(
        3A06001F "Taro"
        3A11001F "\x5C71\x7530"
        3A17001F ""
        3A16001F ""
        3A05001F "\x5148"
        3001001F "\x5C71\x7530 Taro"
        0037001F "\x5C71\x7530 Taro"
        8005001F "\x5C71\x7530, Taro"
        80060003 32791
        10800003 512)_",
     0x8017,
     L"H"},
    {"JapaneseLastNameAlone", R"_(LastName "\x5C71\x7530")_", R"_(
        3A11001F "\x5C71\x7530"
        3A17001F ""
        3A16001F ""
        3001001F "\x5C71\x7530"
        0037001F "\x5C71\x7530"
        8005001F "\x5C71\x7530"
        80060003 32823
        10800003 512)_"},
    {"TextsOfAllKinds",
     R"_(
        JobTitle "Clerk"
        CompanyName "Acme"
        Suffix "III"
        Notes "Line\x000D\x000ALine"
        InstantMessagingAddress "im:john"
        Website "http://a")_",
     R"_(
        3A17001F "Clerk"
        3A16001F "Acme"
        3A05001F "III"
        1000001F "Line\x000D\x000ALine"
        8062001F "im:john"
        3A51001F "http://a"
        3001001F ""
        0037001F ""
        8005001F "Acme"
        80060003 14870
        10800003 512)_"},
    {"EmptyTexts",
     R"_(
        FirstName ""
        MiddleName ""
        LastName ""
        Suffix ""
        Notes ""
        InstantMessagingAddress ""
        Website ""
        Picture ""
        Phone0 "")_",
     R"_(
        3A17001F ""
        3A16001F ""
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"AllPhones",
     R"_(
        Phone0 "n0"
        Phone1 "n1"
        Phone2 "n2"
        Phone3 "n3"
        Phone4 "n4"
        Phone5 "n5"
        Phone6 "n6"
        Phone7 "n7"
        Phone8 "n8"
        Phone9 "n9"
        Phone10 "n10"
        Phone11 "n11"
        Phone12 "n12"
        Phone13 "no type of ours")_",
     R"_(
        3A17001F ""
        3A16001F ""
        3A57001F "n0"
        3A1C001F "n1"
        3A08001F "n2"
        3A1B001F "n3"
        3A09001F "n4"
        3A2F001F "n5"
        3A24001F "n6"
        3A25001F "n7"
        3A21001F "n8"
        3A1F001F "n9"
        3A2E001F "n10"
        3A1E001F "n11"
        3A1D001F "n12"
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"OnePhone", R"_(Phone9 "+1")_", R"_(
        3A17001F ""
        3A16001F ""
        3A1F001F "+1"
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"OneEmail",
     R"_(
        FirstName "John"
        Email "a@b")_",
     R"_(
        3A06001F "John"
        3A17001F ""
        3A16001F ""
        8083001F "a@b"
        8080001F "John (a@b)"
        8084001F "a@b"
        8082001F "SMTP"
        80290003 1
        80281003 [0]
        3001001F "John"
        0037001F "John"
        8005001F "John"
        80060003 32823
        10800003 512)_"},
    {"TwoEmails",
     R"_(
        Email "a@b"
        Email "c@d")_",
     R"_(
        3A17001F ""
        3A16001F ""
        8083001F "a@b"
        8080001F " (a@b)"
        8084001F "a@b"
        8082001F "SMTP"
        8093001F "c@d"
        8090001F " (c@d)"
        8094001F "c@d"
        8092001F "SMTP"
        80290003 3
        80281003 [0, 1]
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"ThreeOfFourEmailsWithoutGaps",
     R"_(
        Email ""
        Email "a@b"
        Email ""
        Email "/o=Acme/cn=X"
        Email "c@d"
        Email "dropped")_",
     R"_(
        3A17001F ""
        3A16001F ""
        8083001F "a@b"
        8080001F " (a@b)"
        8084001F "a@b"
        8082001F "SMTP"
        8093001F "/o=Acme/cn=X"
        8090001F " (/o=Acme/cn=X)"
        8094001F "/o=Acme/cn=X"
        8092001F "SMTP"
        80A3001F "c@d"
        80A0001F " (c@d)"
        80A4001F "c@d"
        80A2001F "SMTP"
        80290003 7
        80281003 [0, 1, 2]
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"EmptyEmailsAlone",
     R"_(
        Email ""
        Email "")_",
     R"_(
        3A17001F ""
        3A16001F ""
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"HomeAddress",
     R"_(
        Home.Country "Japan"
        Home.StateOrProvince "Tokyo"
        Home.City "Chuo"
        Home.Street "1-1"
        Home.PostOfficeBox "7"
        Home.PostalCode "100")_",
     R"_(
        3A17001F ""
        3A16001F ""
        3A5A001F "Japan"
        3A5C001F "Tokyo"
        3A59001F "Chuo"
        3A5D001F "1-1"
        3A5B001F "100"
        3A5E001F "7"
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"BusinessAddress",
     R"_(
        Business.Country "Japan"
        Business.StateOrProvince "Tokyo"
        Business.City "Chuo"
        Business.Street "1-1"
        Business.PostOfficeBox "7"
        Business.PostalCode "100")_",
     R"_(
        3A17001F ""
        3A16001F ""
        8049001F "Japan"
        8047001F "Tokyo"
        8046001F "Chuo"
        8045001F "1-1"
        8048001F "100"
        804A001F "7"
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"OtherAddress",
     R"_(
        Other.Country "Japan"
        Other.StateOrProvince "Tokyo"
        Other.City "Chuo"
        Other.Street "1-1"
        Other.PostOfficeBox "7"
        Other.PostalCode "100")_",
     R"_(
        3A17001F ""
        3A16001F ""
        3A60001F "Japan"
        3A62001F "Tokyo"
        3A5F001F "Chuo"
        3A63001F "1-1"
        3A61001F "100"
        3A64001F "7"
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"PartsOfAllAddressesOneOfThemEmpty",
     R"_(
        Other.City "Bonn"
        Business.Street ""
        Home.PostOfficeBox "7")_",
     R"_(
        3A17001F ""
        3A16001F ""
        3A5E001F "7"
        8045001F ""
        3A5F001F "Bonn"
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"DatesInUtc",
     R"_(
        Birthday 25569
        Anniversary 25570)_",
     R"_(
        3A17001F ""
        3A16001F ""
        3A420040 116444736000000000
        80DE0040 116444736000000000
        3A410040 116445600000000000
        80DF0040 116445600000000000
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    // Three hours and a half later in UTC.
    {"DatesWestOfUtc",
     R"_(
        Birthday 25569
        Anniversary 25570)_",
     R"_(
        3A17001F ""
        3A16001F ""
        3A420040 116444862000000000
        80DE0040 116444736000000000
        3A410040 116445726000000000
        80DF0040 116445600000000000
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_",
     0,
     L"",
     210},
    // Nine hours earlier.
    {"DatesEastOfUtc",
     R"_(Birthday 25569)_",
     R"_(
        3A17001F ""
        3A16001F ""
        3A420040 116444412000000000
        80DE0040 116444736000000000
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_",
     0,
     L"",
     -540},
    // A day counts its fraction forward, also before 1899-12-30: -1.25 is six in the morning of
    // -1. 1899-12-29 06:00 is (109204 * 24 + 6) hours after 1601.
    {"ADateBeforeTheFirst", R"_(Anniversary -1.25)_", R"_(
        3A17001F ""
        3A16001F ""
        3A410040 94352472000000000
        80DF0040 94352472000000000
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    // One second is 0.0000115741; what is smaller rounds to midnight of 1899-12-30, which is
    // 109205 * 864000000000.
    {"TheSmallestDate", R"_(Birthday 0.000001)_", R"_(
        3A17001F ""
        3A16001F ""
        3A420040 94353120000000000
        80DE0040 94353120000000000
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"OneThatIsSmaller", R"_(Birthday 0.00000099)_", R"_(
        3A17001F ""
        3A16001F ""
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"ANegativeOneThatIsTooSmall",
     R"_(
        Birthday -0.000005
        Anniversary -0.00000999)_",
     R"_(
        3A17001F ""
        3A16001F ""
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    // 0.864 s, which count forward from midnight of 1899-12-30 and round to one.
    {"TheNegativeOneThatIsLargeEnough", R"_(Birthday -0.00001)_", R"_(
        3A17001F ""
        3A16001F ""
        3A420040 94353120010000000
        80DE0040 94353120010000000
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"ADateOfZero",
     R"_(
        Birthday 0
        Anniversary 0)_",
     R"_(
        3A17001F ""
        3A16001F ""
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512)_"},
    {"Categories",
     R"_(
        Category "Friends"
        Category ""
        Category "\x5C71")_",
     R"_(
        3A17001F ""
        3A16001F ""
        3001001F ""
        0037001F ""
        8005001F ""
        80060003 0
        10800003 512
        80E2101F ["Friends", "", "\x5C71"])_"},
    {"EverythingInItsOrder",
     R"_(
        FirstName "John"
        MiddleName "Q"
        LastName "Public"
        Suffix "Jr."
        DisplayName "not written"
        JobTitle "Clerk"
        CompanyName "Acme"
        InstantMessagingAddress "im"
        Website "http://a"
        Notes "note"
        GroupID "not written"
        Phone1 "mobile"
        Email "a@b"
        Home.City "H"
        Business.City "B"
        Other.City "O"
        Birthday 25569
        Anniversary 25570
        Category "Friends")_",
     R"_(
        001A001F "IPM.Contact"
        3A06001F "John"
        3A44001F "Q"
        3A11001F "Public"
        3A17001F "Clerk"
        3A16001F "Acme"
        3A05001F "Jr."
        1000001F "note"
        8062001F "im"
        3A1C001F "mobile"
        8083001F "a@b"
        8080001F "John Q Public (a@b)"
        8084001F "a@b"
        8082001F "SMTP"
        80290003 1
        80281003 [0]
        3A51001F "http://a"
        3A59001F "H"
        8046001F "B"
        3A5F001F "O"
        3A420040 116444736000000000
        80DE0040 116444736000000000
        3A410040 116445600000000000
        80DF0040 116445600000000000
        3001001F "John Q Public"
        0037001F "John Q Public"
        8005001F "Public, John Q"
        80060003 32791
        10800003 512
        80E2101F ["Friends"])_",
     0x8017,
     L"E",
     0,
     true},
};

class ContactWritingTest : public ContactTableTest
{
  protected:
    ContactWritingTest() { AddContact("ann", "contacts"); }
    ~ContactWritingTest() override { message.Reset(); }

    Lines Write(INContactItem* contact, bool isNew = false, const ContactSettings& settings = {})
    {
        if (!folder)
            Open();
        if (!message)
            message = OpenMessage("ann");
        store.ClearRecord();
        if (!failing.empty())
            store.FailNext(failing, fault);
        PropertyArray values =
            ContactProperties(*contact, isNew, settings, {*folder.Get(), message.Get(), Proxy()});
        return TextOfValues(values.Count(), values.Get());
    }
    Lines Write(const std::string& contact, bool isNew = false)
    {
        return Write(ContactOf(LinesOf(contact)).Get(), isNew);
    }
    // Only these names are known.
    void Know(const std::vector<LONG>& names)
    {
        message.Reset();
        Close();
        store.Reset();
        store.AddUsualFolders();
        for (const LONG name : names)
            store.NameProperty(kAddressNames, name);
        AddContact("ann", "contacts");
    }

    ComPtr<IMessage> message;
    std::string failing;
    StoreFault fault = StoreFault::CallFailed;
};

class ContactWritingCaseTest : public ContactWritingTest,
                               public testing::WithParamInterface<WritingCase>
{
};
} // namespace

TEST_P(ContactWritingCaseTest, GivesTheValuesInTheirOrder)
{
    const WritingCase& one = GetParam();
    const auto contact = ContactOf(LinesOf(one.contact));
    const ContactSettings settings = {{one.order, one.style}, one.biasMinutes / 60.0 / 24.0};
    EXPECT_EQ(LinesOf(one.values), Write(contact.Get(), one.isNew, settings));
    // The item is as it was.
    EXPECT_EQ(TextOfContact(ContactOf(LinesOf(one.contact)).Get()), TextOfContact(contact.Get()));
}

INSTANTIATE_TEST_SUITE_P(Items,
                         ContactWritingCaseTest,
                         testing::ValuesIn(kCases),
                         [](const auto& one) { return std::string(one.param.name); });

TEST(ContactWritingCasesTest, AreAtLeastForty)
{
    EXPECT_GE(std::size(kCases), 40u);
}

// --- Names that the store does not know --------------------------------------------------------

TEST_F(ContactWritingTest, WithoutNamesTheirPropertiesAreNotWritten)
{
    Know({});
    EXPECT_EQ(LinesOf(R"_(
        3A17001F ""
        3A16001F ""
        3A28001F "NW"
        3A420040 116444736000000000
        3001001F ""
        0037001F ""
        10800003 512)_"),
              Write(R"_(
        InstantMessagingAddress "im"
        Email "a@b"
        Business.StateOrProvince "NW"
        Birthday 25569
        Category "Friends")_"));
}

TEST_F(ContactWritingTest, EachPropertyOfAnEmailIsWrittenByItself)
{
    Know({0x8083, 0x8082, 0x8029, 0x8028}); // 8000 to 8003
    EXPECT_THAT(Write(R"_(Email "a@b")_"),
                testing::IsSupersetOf(
                    {"8000001F \"a@b\"", "8001001F \"SMTP\"", "80020003 1", "80031003 [0]"}));
    // Without its address a slot is not used.
    Know({0x8080, 0x8093, 0x8029, 0x8028});
    const Lines values = Write("Email \"a@b\"\nEmail \"c@d\"");
    EXPECT_THAT(values,
                testing::IsSupersetOf(
                    {"8000001F \" (a@b)\"", "8001001F \"c@d\"", "80020003 2", "80031003 [1]"}));
    Know({0x8080, 0x8029, 0x8028});
    EXPECT_THAT(Write(R"_(Email "a@b")_"), Not(Contains(StartsWith("8001"))));
}

TEST_F(ContactWritingTest, AFailedLookupOfTheBusinessAddressLeavesItOut)
{
    failing = "IMessage(ann).GetIDsFromNames";
    EXPECT_THAT(Write(R"_(Business.City "Bonn")_"), testing::SizeIs(7));
    failing = "IMessage(ann).QueryInterface(IMAPIProp)";
    EXPECT_THAT(Write(R"_(Business.City "Bonn")_"), Contains("3A27001F \"Bonn\""));
}

TEST_F(ContactWritingTest, AFailedLookupLeavesOutWhatNeedsIt)
{
    failing = "IMAPIFolder(contacts).GetIDsFromNames";
    EXPECT_EQ(LinesOf(R"_(
        3A06001F "John"
        3A17001F ""
        3A16001F ""
        3001001F "John"
        0037001F "John"
        10800003 512
        80E2101F ["Friends"])_"),
              Write(R"_(
        FirstName "John"
        Email "a@b"
        Category "Friends")_"));
}

// --- Calls -------------------------------------------------------------------------------------

TEST_F(ContactWritingTest, AsksTheStoreInThisOrder)
{
    const std::string folderNames = std::string("IMAPIFolder(contacts).GetIDsFromNames([");
    Write(R"_(
        FirstName "John"
        Business.City "Bonn"
        Category "Friends")_");
    EXPECT_THAT(
        store.Calls(),
        ElementsAre(folderNames + kAddressSetText +
                        " 8062 8083 8080 8084 8082 8093 8090 8094 8092 80A3 80A0 80A4 80A2 80DE "
                        "80DF 8005 8006 8028 8029], 00000000)",
                    "IMessage(ann).QueryInterface(IMAPIProp)",
                    std::string("IMessage(ann).GetIDsFromNames([") + kAddressSetText +
                        " 8049 8047 8046 8045 8048 804A 801B], 00000000)",
                    folderNames + kAddressSetText + " 8015], 00000000)",
                    folderNames + kPublicSetText + " \"Keywords\"], 00000000)"));
    Write(R"_(FirstName "John")_");
    EXPECT_EQ(2u, store.Calls().size());
}

// --- Pictures ----------------------------------------------------------------------------------

TEST_F(ContactWritingTest, APictureBecomesAnAttachment)
{
    const ScratchDirectory files;
    const std::wstring path = files.File(L"a.png");
    std::ofstream(std::filesystem::path(path), std::ios::binary) << "abc";
    const Lines values = Write("Picture " + QuotedText(path));
    EXPECT_THAT(values,
                ElementsAre("3A17001F \"\"",
                            "3A16001F \"\"",
                            "3001001F \"\"",
                            "0037001F \"\"",
                            "8005001F \"\"",
                            "80060003 0",
                            "8015000B true",
                            "10800003 512"));
    EXPECT_THAT(store.Calls(), Contains("IMessage(ann).CreateAttach(null, 00000000)"));
    EXPECT_THAT(store.Calls(), Contains("IStream(ann#0 37010102 stream).Write(3)"));
    EXPECT_EQ("IAttach(ann#0).SaveChanges(00000004)", store.Calls().back());
}

// The mark is set all the same.
TEST_F(ContactWritingTest, APictureThatIsNoMoreLeavesAnEmptyAttachment)
{
    const Lines values = Write(R"_(Picture "C:\x005Cnone\x005Cgone.png")_");
    EXPECT_THAT(values, Contains("8015000B true"));
    EXPECT_EQ("IMessage(ann).CreateAttach(null, 00000000)", store.Calls().back());
}

TEST_F(ContactWritingTest, WithoutAnAttachmentThereIsNoMark)
{
    failing = "IMessage(ann).CreateAttach";
    EXPECT_THAT(Write(R"_(Picture "a")_"), Not(Contains(StartsWith("8015"))));
    fault = StoreFault::NullOutput;
    EXPECT_THAT(Write(R"_(Picture "a")_"), Not(Contains(StartsWith("8015"))));
    failing.clear();
    Know({});
    EXPECT_THAT(Write(R"_(Picture "a")_"), testing::SizeIs(5));
    EXPECT_THAT(store.Calls(), Not(Contains(StartsWith("IMessage(ann).CreateAttach"))));
}

// --- Items of a client's own -----------------------------------------------------------------

TEST_F(ContactWritingTest, TheCategoriesAreAllThatIsPutBack)
{
    const auto puts = [&](const std::string& text) {
        const auto own = OwnContact::Make(ContactOf(LinesOf(text)));
        Write(own.Get());
        Lines calls = own->calls;
        std::erase_if(calls, [](const std::string& call) { return call.starts_with("get "); });
        return calls;
    };
    EXPECT_THAT(puts("FirstName \"John\"\nEmail \"a@b\"\nCategory \"Friends\""),
                ElementsAre("put CategoryIDs"));
    EXPECT_THAT(puts("FirstName \"John\"\nEmail \"a@b\""), IsEmpty());
}

// What a field gives stands in the same places whether it is absent or cannot be had.
TEST_F(ContactWritingTest, AFieldThatCannotBeHadIsLeftOut)
{
    const struct
    {
        const char* get;
        const char* line; // of the field
    } fields[] = {{"get FirstName", "FirstName"},
                  {"get MiddleName", "MiddleName"},
                  {"get LastName", "LastName"},
                  {"get JobTitle", "JobTitle"},
                  {"get CompanyName", "CompanyName"},
                  {"get Suffix", "Suffix"},
                  {"get Notes", "Notes"},
                  {"get InstantMessagingAddress", "InstantMessagingAddress"},
                  {"get PhoneNumber 1", "Phone1"},
                  {"get Emails", "Email"},
                  {"get Website", "Website"},
                  {"get Address 0", "Home.City"},
                  {"get Address 1", "Business.City"},
                  {"get Address 2", "Other.City"},
                  {"get Birthday", "Birthday"},
                  {"get Anniversary", "Anniversary"},
                  {"get Picture", "Picture"},
                  {"get CategoryIDs", "Category"}};
    const Lines all = LinesOf(R"_(
        FirstName "John"
        MiddleName "Q"
        LastName "Public"
        JobTitle "Clerk"
        CompanyName "Acme"
        Suffix "Jr."
        Notes "note"
        InstantMessagingAddress "im"
        Phone1 "mobile"
        Email "a@b"
        Website "http://a"
        Home.City "H"
        Business.City "B"
        Other.City "O"
        Birthday 25569
        Anniversary 25570
        Picture "none"
        Category "Friends")_");
    ASSERT_EQ(std::size(fields), all.size());
    for (const auto& field : fields)
    {
        Lines others = all;
        std::erase_if(others, [&](const std::string& line) {
            return line.starts_with(std::string(field.line) + ' ');
        });
        ASSERT_EQ(all.size() - 1, others.size()) << field.line;
        const auto own = OwnContact::Make(ContactOf(all));
        own->failing = {field.get};
        EXPECT_EQ(Write(ContactOf(others).Get()), Write(own.Get())) << field.get;
    }
}

// --- Items that are odd ----------------------------------------------------------

TEST_F(ContactWritingTest, ArraysOfAnotherKindCountAsEmpty)
{
    const auto contact = ContactOf({});
    const UniqueSafeArray numbers(SafeArrayCreateVector(VT_I4, 0, 3));
    SAFEARRAYBOUND bounds[2] = {{2, 0}, {2, 0}};
    const UniqueSafeArray square(SafeArrayCreate(VT_BSTR, 2, bounds));
    for (const UniqueSafeArray* const odd : {&numbers, &square})
    {
        contact->put_Emails(odd->Get());
        contact->put_CategoryIDs(odd->Get());
        EXPECT_THAT(Write(contact.Get()), testing::SizeIs(7));
    }
}

TEST_F(ContactWritingTest, DatesThatNoTimeCanTellAreLeftOut)
{
    const auto contact = ContactOf({});
    for (const DATE date : {std::numeric_limits<double>::quiet_NaN(),
                            std::numeric_limits<double>::infinity(),
                            1e300,
                            -1e300,
                            -200000.0}) // the year 1352
    {
        contact->put_Birthday(date);
        contact->put_Anniversary(date);
        EXPECT_THAT(Write(contact.Get()), testing::SizeIs(7)) << date;
    }
}

TEST_F(ContactWritingTest, ALongTextIsWrittenWhole)
{
    const std::wstring text(100'000, L'x');
    const auto contact = ContactOf({});
    contact->put_Notes(Bstr(std::wstring_view(text)).Get());
    EXPECT_THAT(Write(contact.Get()), Contains("1000001F " + QuotedText(text)));
}

TEST_F(ContactWritingTest, WithoutAMessageWhatNeedsItIsLeftOut)
{
    Open();
    const auto contact = ContactOf(LinesOf("Picture \"a\"\nBusiness.City \"Bonn\""));
    PropertyArray values =
        ContactProperties(*contact.Get(), false, {}, {*folder.Get(), nullptr, Proxy()});
    const Lines lines = TextOfValues(values.Count(), values.Get());
    EXPECT_THAT(lines, Contains("3A27001F \"Bonn\""));
    EXPECT_THAT(lines, Not(Contains(StartsWith("8015"))));
}
