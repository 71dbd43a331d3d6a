// A contact as lines of text, one per value, for tables of cases and for what came out:
//
//     FirstName "John"
//     Phone1 "+49 170"              by _tagNPhoneNumberType
//     Email "a@example.org"         one line each, in order
//     Home.City "Bonn"              Home, Business or Other
//     Birthday 25569
//     Category "Friends"            one line each, in order
//
// A unit that is no plain letter stands as \x and four digits, in both directions. A value that the
// item does not have has no line.
#pragma once

#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

#include <string>
#include <vector>

using TextLines = std::vector<std::string>;

// The lines of a text without empty ones and without blanks in front.
TextLines LinesOf(const std::string& text);

// In quotation marks.
std::string QuotedText(const std::wstring& text);
// Back again.
std::wstring UnquotedText(const std::string& text);

// A new item with those values. Throws std::invalid_argument for a line that tells no value.
Microsoft::WRL::ComPtr<INContactItem> ContactOf(const TextLines& lines);

// The item's values in a fixed order, without IDs and time.
TextLines TextOfContact(INContactItem* contact);

// Properties as "3A06001F \"John\"", numbers and times in decimal, lists in brackets, bytes in hex.
TextLines TextOfValues(ULONG count, const SPropValue* values);
