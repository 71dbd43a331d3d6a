' Walks and edits the calendar through the automation server PimStoreBridge, by late binding.
'
'   cscript //nologo calendar.vbs [PROVIDER]
'   cscript //nologo calendar.vbs PROVIDER add SUBJECT START END
'   cscript //nologo calendar.vbs PROVIDER update ID SUBJECT
'   cscript //nologo calendar.vbs PROVIDER delete ID
'
' PROVIDER is the mail client whose store to use, "Windows Mail" where it is left out. START and END
' are UTC times, as "2024-05-01 10:00". Exit codes: 0 done, 1 failed, 2 wrong arguments.
Option Explicit

' The reminder value that means none.
Const kNoReminder = 4294967295

Dim service, calendar, started

' An argument, or another text where there is none.
Function ArgumentOr(index, otherwise)
    ArgumentOr = otherwise
    If WScript.Arguments.Count > index Then ArgumentOr = WScript.Arguments(index)
End Function

' A service that was started is stopped on every way out: it would stay with this provider for as
' long as the server runs. The calendar points into what the service holds, so it goes first.
Sub Leave(code)
    Set calendar = Nothing
    If started Then service.StopService
    WScript.Quit code
End Sub

Sub Fail(text, code)
    WScript.Echo text
    Leave code
End Sub

Function TwoDigits(number)
    TwoDigits = Right("0" & number, 2)
End Function

' The server's times are days with a fraction, in UTC; an all-day item has local days.
Function TimeText(time)
    TimeText = Year(time) & "-" & TwoDigits(Month(time)) & "-" & TwoDigits(Day(time)) & " " & _
        TwoDigits(Hour(time)) & ":" & TwoDigits(Minute(time))
End Function

Function TimeOf(text)
    If Len(text) <> 16 Then Fail "This is no time as 2024-05-01 10:00: " & text, 2
    TimeOf = DateSerial(CInt(Left(text, 4)), CInt(Mid(text, 6, 2)), CInt(Mid(text, 9, 2))) + _
        TimeSerial(CInt(Mid(text, 12, 2)), CInt(Mid(text, 15, 2)), 0)
End Function

' The end of the list is told by a failed call alone.
Sub List
    Dim item, line, more
    calendar.Reset
    more = True
    Do While more
        Set item = Nothing
        On Error Resume Next
        Set item = calendar.GetNextAppointment
        On Error GoTo 0
        If item Is Nothing Then
            more = False
        Else
            line = TimeText(item.StartTime) & "  " & TimeText(item.EndTime) & "  " & item.Subject
            WScript.Echo line & "  " & item.PersistID
        End If
    Loop
End Sub

Sub Add(subject, startTime, endTime)
    Dim item
    Set item = CreateObject("PimStoreBridge.NAppointment")
    item.Subject = subject
    item.StartTime = startTime
    item.EndTime = endTime
    item.Reminder = kNoReminder
    WScript.Echo "Added " & calendar.AddAppointment(item)
End Sub

' The item of that ID. The search starts where the last one ended, so the list is reset first.
Function Find(id)
    Set Find = Nothing
    calendar.Reset
    On Error Resume Next
    Set Find = calendar.GetAppointmentByID(id)
    On Error GoTo 0
    If Find Is Nothing Then Fail "There is no such item: " & id, 1
End Function

Sub Update(id, subject)
    Dim item
    Set item = Find(id)
    item.Subject = subject
    calendar.UpdateAppointment item
    WScript.Echo "Updated " & id
End Sub

Sub Remove(id)
    Find id
    calendar.DeleteAppointment id
    WScript.Echo "Deleted " & id
End Sub

Sub Start(provider)
    Set service = CreateObject("PimStoreBridge.NPersonalInformationServ")
    On Error Resume Next
    service.StartService provider
    started = (Err.Number = 0)
    On Error GoTo 0
    If Not started Then Fail "This mail client could not be started: " & provider, 1
    Set calendar = service.GetCalendar
End Sub

Sub Main
    started = False
    Start ArgumentOr(0, "Windows Mail")
    Select Case ArgumentOr(1, "list")
        Case "list"
            List
        Case "add"
            Add ArgumentOr(2, ""), TimeOf(ArgumentOr(3, "")), TimeOf(ArgumentOr(4, ""))
        Case "update"
            Update ArgumentOr(2, ""), ArgumentOr(3, "")
        Case "delete"
            Remove ArgumentOr(2, "")
        Case Else
            Fail "Say list, add, update or delete, not " & ArgumentOr(1, ""), 2
    End Select
    Leave 0
End Sub

Main
