// One kind of item for each type of enumerator of each back end, as clients of another process
// write and read it, and stores that hold one item of each.
#pragma once

#include "endtoend/ServerFixture.h"

#include <ostream>
#include <span>
#include <string>

inline constexpr wchar_t kOutlook[] = L"Microsoft Outlook";

// What tells an item from others. Where the number goes depends on the type: a category's colour, a
// contact's mobile phone, the minutes of an appointment after kFirstStart; a group keeps none.
struct ItemValues
{
    std::wstring name;
    long number = 0;

    bool operator==(const ItemValues&) const = default;
};
std::ostream& operator<<(std::ostream& out, const ItemValues& values);

inline constexpr DATE kFirstStart = 45300.5; // 2024-01-09 12:00

enum class NumberIs
{
    NotStored,
    StoredOnce, // by an add; an update leaves it as it is
    Stored
};

struct ItemType
{
    const CLSID& classID;
    NumberIs numberIs;
    // Each property fails the test where it cannot be read or written.
    ItemValues (*read)(INEntityItem& item);
    void (*write)(INEntityItem& item, const ItemValues& values);
};

extern const ItemType kCategoryItem;
extern const ItemType kGroupItem;
extern const ItemType kContactItem;
extern const ItemType kAppointmentItem;

struct Kind
{
    const char* name;
    const wchar_t* backEnd;
    _tagNEnumeratorType type;
    const ItemType& item;
    const wchar_t* stored; // the name of the one item that there is
    // Whether another enumerator shows what was written. It does not show a group: that is stored
    // under the class of an appointment.
    bool staysInTheList;
    bool isInFiles; // of Windows Calendar
};
std::ostream& operator<<(std::ostream& out, const Kind& kind);
std::span<const Kind> EveryKind();

// A message store and an address book, in the form of docs/formats/store_json.md, with one item of
// each kind, the category as the server writes it; the appointment of the kind in files is "Task 1"
// of NumberedCalendar.
extern const char kOneItemOfEachKind[];
