// Finds the MAPI library that belongs to the installed Outlook, and with it Outlook's version, by
// what Outlook registers as a mail client of the machine. Nothing is logged.
#pragma once

#include <string>

struct OutlookLibrary
{
    std::wstring path; // empty where there is none; whether it loads is not known yet
    // 2003, 2010 or 0. Kept as it is: no other version is told apart, so that Outlook 2007 counts
    // as an old one. Pinned by OutlookLibraryTest.
    int version = 0;
};

// Asks the installer's component database through the system's MAPI stub: without a qualifier, then
// with the languages of the application, then with those of Office. Where none gives a path, it is
// put together from the program files folder and the number of the language that the user chose.
OutlookLibrary FindOutlookLibrary();

// The same with the folder of the system's MAPI stub, "mapi32.dll" or else "mapistub.dll"; no path
// is found for an empty folder.
OutlookLibrary FindOutlookLibraryWith(const std::wstring& systemFolder);
