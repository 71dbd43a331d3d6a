' Asks for the contact folders by late binding and tells how the call ended.
Dim service, folders
Set service = CreateObject("PimStoreBridge.NPersonalInformationServ")
service.StartService "Microsoft Outlook"
On Error Resume Next
folders = service.GetAddressBookRootFolders
WScript.Echo "folders " & Hex(Err.Number) & " " & VarType(folders)
On Error GoTo 0
service.StopService
