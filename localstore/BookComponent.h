// What installing the embedded address book means: the registry values and the folder that the
// server's discovery of mail clients and of the address book reads.
#pragma once

#include "localstore/Installer.h"

#include <string>

inline constexpr wchar_t kBookComponent[] = L"book";
inline constexpr wchar_t kBookLibraryKey[] = L"Software\\Microsoft\\WAB\\DLLPath";
inline constexpr wchar_t kMailClients[] = L"Software\\Clients\\Mail";
inline constexpr wchar_t kWindowsMail[] = L"Windows Mail";
inline constexpr wchar_t kOutlookExpress[] = L"Outlook Express";
inline constexpr wchar_t kOpenCommand[] = L"\\shell\\open\\command";

// The discovery's buffers for paths and commands hold 260 characters with the terminator.
inline constexpr size_t kLongestClientText = 259;

// A file as the discovery takes it for a program: no folder and no system file.
bool IsProgramFile(const std::wstring& path);

// What a component needs of the product in its folder (with its trailing backslash).
struct ProductFiles
{
    std::wstring library;
    std::wstring command; // the clients' open command: the first program of the product, in quotes
};

// False, and the reason in words, where one of them is missing.
bool FindProductFiles(const std::wstring& home,
                      const wchar_t* library,
                      ProductFiles& files,
                      std::wstring& reason);

// What to say of a path that the discovery cannot read.
std::wstring TooLongReason(const std::wstring& path);

// The plan for the product in that folder (with its trailing backslash), for the user with that
// folder of local application data. False, and the reason in words, where the files are missing or
// a path does not survive the way that it is read: the library's path is expanded and at most 259
// characters long, the command's likewise.
bool PlanBook(const std::wstring& home,
              const std::wstring& localData,
              ComponentPlan& plan,
              std::wstring& reason);
