// How the recording store writes down what the provider calls, so that expected sequences read
// well.
#pragma once

#include <string>
#include <vector>

using StoreLines = std::vector<std::string>;

// Of the default store.
inline std::string Open(const std::string& entry)
{
    return "IMsgStore(store).OpenEntry(" + entry + ", null, 00000010, type)";
}
inline std::string OpenRoot()
{
    return "IMsgStore(store).OpenEntry(none, null, 00000010)";
}
inline std::string ReadInbox(const std::string& tag)
{
    return "IMAPIFolder(inbox).GetProps([" + tag + "], 80000000)";
}
inline std::string ReadRoot(const std::string& tag)
{
    return "IMAPIFolder(root).GetProps([" + tag + "], 80000000)";
}
inline std::string ReadStore(const std::string& tag)
{
    return "IMsgStore(store).GetProps([" + tag + "], 80000000)";
}
inline std::string ReadId(const std::string& folder)
{
    return "HrGetOneProp(IMAPIFolder(" + folder + "), 0FFF0102)";
}
inline const std::string kReceiveFolder =
    "IMsgStore(store).GetReceiveFolder(\"IPM.Note\", 80000000)";

// A walk over a table of that many rows.
inline StoreLines Rows(const std::string& table, const std::string& columns, int count)
{
    const std::string name = "IMAPITable(" + table + " table).";
    return {name + "SetColumns([" + columns + "], 00000000)",
            name + "GetRowCount(00000000)",
            name + "QueryRows(" + std::to_string(count) + ", 00000000)"};
}
inline StoreLines FolderRows(const std::string& folder, int count)
{
    StoreLines lines = {"IMAPIFolder(" + folder + ").GetHierarchyTable(00000000)"};
    for (std::string& line :
         Rows(folder + " hierarchy", "0FFF0102 3613001F 360A000B 36020003 3001001F", count))
        lines.push_back(std::move(line));
    return lines;
}
inline StoreLines TopFolderRows(int count)
{
    StoreLines lines = {"IMAPIFolder(subtree).GetHierarchyTable(00000000)"};
    for (std::string& line : Rows("subtree hierarchy", "0FFF0102 3613001F", count))
        lines.push_back(std::move(line));
    return lines;
}
inline StoreLines AssociatedRows(int count)
{
    StoreLines lines = {"IMAPIFolder(calendar).GetContentsTable(80000040)"};
    for (std::string& line : Rows("calendar associated contents", "0FFF0102 001A001F", count))
        lines.push_back(std::move(line));
    return lines;
}

inline StoreLines Joined(std::initializer_list<StoreLines> parts)
{
    StoreLines all;
    for (const StoreLines& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

// The parts of a logon on the usual folders.
inline const StoreLines kLogonLines = Joined({{"MAPIInitialize(0, 00000008)",
                                               "MAPILogonEx(0, null, null, 00000062)",
                                               "IMAPISession(session).GetMsgStoresTable(00000000)"},
                                              Rows("stores", "0FFF0102 3400000B", 1),
                                              {"IMAPISession(session).OpenMsgStore(0, store, null, "
                                               "0000000C)"}});
inline const StoreLines kContactLines = {
    kReceiveFolder, Open("inbox"), ReadInbox("36D10102"), Open("contacts")};
inline const StoreLines kCalendarLines = {
    kReceiveFolder, Open("inbox"), ReadInbox("36D00102"), Open("calendar")};
inline const StoreLines kWastebasketLines = {kReceiveFolder,
                                             Open("inbox"),
                                             ReadInbox("35E30102"),
                                             OpenRoot(),
                                             ReadRoot("35E30102"),
                                             ReadStore("35E30102"),
                                             Open("wastebasket")};
inline const StoreLines kIdLines = {ReadId("contacts"), ReadId("calendar"), ReadId("wastebasket")};
inline const StoreLines kSubtreeLines = {"IMsgStore(store).GetProps([35E00102], 00000000)",
                                         Open("subtree")};
inline const StoreLines kListLines = {
    Open("contacts"), ReadId("contacts"), Open("calendar"), ReadId("calendar")};
inline const std::string kQueryIdentity = "IMAPISession(session).QueryIdentity()";
inline const std::string kOpenIdentity =
    "IMAPISession(session).OpenEntry(identity, null, 00000010, type)";

// Messages of the log.
inline std::string LogOf(const std::string& call, const std::string& result = "0000000000000000")
{
    return "=========" + call + ", hr = 0X" + result + " \r\n";
}
inline std::string OpenLog(const std::string& itemClass,
                           const std::string& result = "0000000000000000")
{
    return LogOf("m_pMsgStore->OpenEntry, " + itemClass, result);
}
inline std::string RowsLog(int count)
{
    return "==========pTable->QueryRows()! Rows = " + std::to_string(count) + "\r\n";
}
inline const std::string kGetMessageStoreLog = "=========COutlookProvider::GetMessageStore() \r\n";
inline const std::string kGetExceptedFolderLog =
    "=========COutlookProvider::GetExceptedFolder() \r\n";
inline const std::string kGetUserPropertyTableLog =
    "=========COutlookProvider::GetUserPropertyTable() \r\n";
inline const std::string kWastebasketLog = "=========Wastebasket Folder ignorent it \r\n";
inline std::string LogonLog(const std::string& result = "0000000000000000")
{
    return "=========m_pOutlook->m_pProxcy->MAPILogonEx hr = 0X" + result + "! \r\n";
}
