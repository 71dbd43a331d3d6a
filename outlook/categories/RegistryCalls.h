// The few calls of the registry that the category list of Outlook 2003 makes, in one place where
// tests can let each of them fail. Arguments and results are those of the system's functions.
#pragma once

#include "platform/WindowsHeaders.h"

class RegistryCalls
{
  public:
    virtual ~RegistryCalls() = default;

    // What these two open is closed by CloseKey.
    virtual LSTATUS OpenKey(
        HKEY parent, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) = 0;
    virtual LSTATUS CreateKey(HKEY parent, const wchar_t* path, HKEY* key) = 0;
    // bytes may be null: only the size is asked for then.
    virtual LSTATUS QueryValue(
        HKEY key, const wchar_t* name, DWORD* type, BYTE* bytes, DWORD* size) = 0;
    virtual LSTATUS SetValue(
        HKEY key, const wchar_t* name, DWORD type, const BYTE* bytes, DWORD size) = 0;
    virtual void CloseKey(HKEY key) = 0;
};

// The registry itself.
RegistryCalls& SystemRegistry();
