' Walks and edits contacts through the automation server PimStoreBridge, by late binding.
'
'   cscript //nologo contacts.vbs [PROVIDER]
'   cscript //nologo contacts.vbs PROVIDER show ID
'   cscript //nologo contacts.vbs PROVIDER add FIRST LAST MOBILE [PICTURE]
'   cscript //nologo contacts.vbs PROVIDER update ID COMPANY
'   cscript //nologo contacts.vbs PROVIDER delete ID
'
' PROVIDER is the mail client whose store to use, "Microsoft Outlook" where it is left out. PICTURE
' is the full path of a file, which the server reads. Exit codes: 0 done, 1 failed, 2 wrong arguments.
Option Explicit

' Numbers of the automation contract.
Const kMobile = 1
Const kLastPhone = 12

Dim service, contacts, started

' An argument, or another text where there is none.
Function ArgumentOr(index, otherwise)
    ArgumentOr = otherwise
    If WScript.Arguments.Count > index Then ArgumentOr = WScript.Arguments(index)
End Function

' A service that was started is stopped on every way out: it would stay with this provider for as
' long as the server runs. The contacts point into what the service holds, so they go first.
Sub Leave(code)
    Set contacts = Nothing
    If started Then service.StopService
    WScript.Quit code
End Sub

Sub Fail(text, code)
    WScript.Echo text
    Leave code
End Sub

' The end of the list is told by a failed call alone.
Sub List
    Dim item, more
    contacts.ResetItem
    more = True
    Do While more
        Set item = Nothing
        On Error Resume Next
        Set item = contacts.GetNextItem
        On Error GoTo 0
        If item Is Nothing Then
            more = False
        Else
            WScript.Echo item.DisplayName & "  " & item.CompanyName & "  " & item.PersistentID
        End If
    Loop
End Sub

Function Find(id)
    Set Find = Nothing
    On Error Resume Next
    Set Find = contacts.GetItemByID(id)
    On Error GoTo 0
    If Find Is Nothing Then Fail "There is no such contact: " & id, 1
End Function

Sub Line(title, text)
    If text <> "" Then WScript.Echo title & ": " & text
End Sub

Sub Show(id)
    Dim item, kind, number
    Set item = Find(id)
    Line "First name", item.FirstName
    Line "Middle name", item.MiddleName
    Line "Last name", item.LastName
    Line "Suffix", item.Suffix
    Line "Company", item.CompanyName
    Line "Job title", item.JobTitle
    Line "Chat", item.InstantMessagingAddress
    Line "Website", item.Website
    ' A number that was never set is told by a failed call.
    For kind = 0 To kLastPhone
        number = ""
        On Error Resume Next
        number = item.PhoneNumber(kind)
        On Error GoTo 0
        Line "Phone " & kind, number
    Next
    ' A day that is not set is the zero of dates.
    If item.Birthday <> 0 Then
        Line "Birthday", Year(item.Birthday) & "-" & Month(item.Birthday) & "-" & Day(item.Birthday)
    End If
    Line "Notes", item.Notes
    Line "Picture", item.Picture
    Line "Folder", item.ParentFolderID
End Sub

Sub Add(firstName, lastName, mobile, picture)
    Dim item
    Set item = CreateObject("PimStoreBridge.NContactItem")
    item.FirstName = firstName
    item.LastName = lastName
    item.PhoneNumber(kMobile) = mobile
    item.Picture = picture
    WScript.Echo "Added " & contacts.AddItem(item)
End Sub

Sub Update(id, company)
    Dim item
    Set item = Find(id)
    item.CompanyName = company
    contacts.UpdateItem item
    WScript.Echo "Updated " & id
End Sub

Sub Remove(id)
    Find id
    contacts.DeleteItem id
    WScript.Echo "Deleted " & id
End Sub

Sub Start(provider)
    Set service = CreateObject("PimStoreBridge.NPersonalInformationServ")
    On Error Resume Next
    service.StartService provider
    started = (Err.Number = 0)
    On Error GoTo 0
    If Not started Then Fail "This mail client could not be started: " & provider, 1
    Set contacts = service.GetAddressBook
End Sub

Sub Main
    started = False
    Start ArgumentOr(0, "Microsoft Outlook")
    Select Case ArgumentOr(1, "list")
        Case "list"
            List
        Case "show"
            Show ArgumentOr(2, "")
        Case "add"
            Add ArgumentOr(2, ""), ArgumentOr(3, ""), ArgumentOr(4, ""), ArgumentOr(5, "")
        Case "update"
            Update ArgumentOr(2, ""), ArgumentOr(3, "")
        Case "delete"
            Remove ArgumentOr(2, "")
        Case Else
            Fail "Say list, show, add, update or delete, not " & ArgumentOr(1, ""), 2
    End Select
    Leave 0
End Sub

Main
