// Contacts and the whole list of values that each becomes in the store. Every list was worked out
// by hand from the rules of names, addresses and dates; none comes out of this program.
//
// Times are units of 100 ns since 1601, which is DATE -109205: midnight of DATE d is
// (d + 109205) * 864000000000. 25569 is 1970-01-01 and gives 116444736000000000.
#pragma once

#include <cstdint>

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
inline constexpr WritingCase kWritingCases[] = {
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
