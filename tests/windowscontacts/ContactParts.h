// Parts of contacts and what they become in the Windows Address Book, both worked out by hand; in
// the form of ContactText.h.
#pragma once

inline constexpr char kAllPhones[] = R"_(
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
        Phone12 "12")_";
inline constexpr char kAllPhoneValues[] = R"_(
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
        3A1D001F "12")_";

inline constexpr char kAllAddresses[] = R"_(
        Home.Country "h1"
        Home.StateOrProvince "h2"
        Home.City "h3"
        Home.Street "h4"
        Home.PostOfficeBox "h6"
        Home.PostalCode "h5"
        Business.Country "b1"
        Business.StateOrProvince "b2"
        Business.City "b3"
        Business.Street "b4"
        Business.PostOfficeBox "b6"
        Business.PostalCode "b5"
        Other.Country "o1"
        Other.StateOrProvince "o2"
        Other.City "o3"
        Other.Street "o4"
        Other.PostOfficeBox "o6"
        Other.PostalCode "o5")_";
// The box of the business address stands under the tag of its state.
inline constexpr char kAllAddressValues[] = R"_(
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
        3A64001F "o6")_";

// Times are units of 100 ns since 1601, which is DATE -109205: midnight of DATE d is
// (d + 109205) * 864000000000. 25569 is 1970-01-01 and gives 116444736000000000.
inline constexpr char kBothDates[] = R"_(
        Birthday 25569
        Anniversary 25570)_";
inline constexpr char kBothDateValues[] = R"_(
        3A420040 116444736000000000
        3A410040 116445600000000000)_";
