// Tells who the mail user is through the automation server PimStoreBridge, by late binding.
//
//   cscript //nologo whoami.js [PROVIDER]
//
// PROVIDER is the mail client to ask, "Microsoft Outlook" where it is left out; the others know no
// user. Exit codes: 0 done, 1 failed.

function printUser(service, provider) {
    // A provider without a user is told by an empty reference, not by a failure.
    var user = service.GetUserProperties();
    if (!user) {
        WScript.Echo("This mail client knows no user: " + provider);
        return 1;
    }
    WScript.Echo("Account: " + user.Account);
    WScript.Echo("Address type: " + user.AddressType);
    WScript.Echo("Name: " + user.DisplayName);
    WScript.Echo("Company: " + user.Company);
    WScript.Echo("E-mail address: " + user.EmailAddress);
    WScript.Echo("First name: " + user.FirstName);
    WScript.Echo("Last name: " + user.LastName);
    WScript.Echo("Office: " + user.OfficeLocation);
    WScript.Echo("SMTP address: " + user.SMTPAddress);
    WScript.Echo("Name as transmitted: " + user.TransmitableDisplayName);
    return 0;
}

function run(provider) {
    var service = new ActiveXObject("PimStoreBridge.NPersonalInformationServ");
    try {
        service.StartService(provider);
    } catch (error) {
        WScript.Echo("This mail client could not be started: " + provider);
        return 1;
    }
    // A service that was started is stopped on every way out: it would stay with this provider for
    // as long as the server runs.
    try {
        return printUser(service, provider);
    } finally {
        service.StopService();
    }
}

var args = WScript.Arguments;
WScript.Quit(run(args.length > 0 ? args(0) : "Microsoft Outlook"));
