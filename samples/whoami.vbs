' Tells who the mail user is through the automation server PimStoreBridge, by late binding.
'
'   cscript //nologo whoami.vbs [PROVIDER]
'
' PROVIDER is the mail client to ask, "Microsoft Outlook" where it is left out; the others know no
' user. Exit codes: 0 done, 1 failed.
Option Explicit

Dim service, user, provider, started

' A service that was started is stopped on every way out: it would stay with this provider for as
' long as the server runs.
Sub Leave(text, code)
    If text <> "" Then WScript.Echo text
    Set user = Nothing
    If started Then service.StopService
    WScript.Quit code
End Sub

provider = "Microsoft Outlook"
If WScript.Arguments.Count > 0 Then provider = WScript.Arguments(0)
Set service = CreateObject("PimStoreBridge.NPersonalInformationServ")
On Error Resume Next
service.StartService provider
started = (Err.Number = 0)
On Error GoTo 0
If Not started Then Leave "This mail client could not be started: " & provider, 1

' A provider without a user is told by an empty reference, not by a failure.
Set user = service.GetUserProperties
If user Is Nothing Then Leave "This mail client knows no user: " & provider, 1
WScript.Echo "Account: " & user.Account
WScript.Echo "Address type: " & user.AddressType
WScript.Echo "Name: " & user.DisplayName
WScript.Echo "Company: " & user.Company
WScript.Echo "E-mail address: " & user.EmailAddress
WScript.Echo "First name: " & user.FirstName
WScript.Echo "Last name: " & user.LastName
WScript.Echo "Office: " & user.OfficeLocation
WScript.Echo "SMTP address: " & user.SMTPAddress
WScript.Echo "Name as transmitted: " & user.TransmitableDisplayName
Leave "", 0
