// Installs and removes a component: a table of registry values, folders and files that the server's
// discovery looks for. All or nothing, with a record of what was written under
// Software\PimStoreBridge\Installed\<component>, and removal by that record alone.
//
// The record is written first, so that also a process that was ended in the middle leaves enough
// for Remove to take everything back.
#pragma once

#include "localstore/InstallTarget.h"

#include <string>
#include <vector>

// What to do where the value is there already with another content.
enum class WhenTaken
{
    Refuse, // another product holds it: nothing is installed
    Leave   // it stays, and the rest is installed
};

struct PlannedValue
{
    std::wstring key;
    std::wstring name;
    std::wstring text;
    WhenTaken whenTaken;
    // Where it has strings, the value is the list of them and not the text.
    std::vector<std::wstring> list = {};
};

// Always refused where another file is there.
struct PlannedFile
{
    std::wstring source;
    std::wstring path;
};

struct ComponentPlan
{
    std::wstring component;            // one word: the record's name
    std::wstring home;                 // where the product's files lie
    std::vector<PlannedValue> values;  // written where missing
    std::vector<std::wstring> folders; // made where missing, with their parents
    std::vector<PlannedFile> files = {};
};

enum class InstallOutcome
{
    Done,
    Unchanged,    // installed already, or not installed
    TakenByOther, // another product holds a value
    OtherInstall, // a record of another place, or one whose values or files do not stand any more
    AccessDenied, // the rights do not suffice
    Failed        // another failure of the system
};

// What happened, in lines for people. Unless the outcome is Done, nothing was changed, or a line
// says what could not be taken back.
struct InstallReport
{
    InstallOutcome outcome = InstallOutcome::Done;
    std::vector<std::wstring> lines;
};

// A component that is installed from the same place, but with files that the product has newer by
// now, is removed and installed anew.
InstallReport Install(InstallTarget& target, const ComponentPlan& plan);
InstallReport Remove(InstallTarget& target, const std::wstring& component);

// The place that the component was installed from; empty where it is not installed.
std::wstring InstalledHome(const InstallTarget& target, const std::wstring& component);
