// Walks the contacts through the automation server PimStoreBridge, by late binding.
//
//   cscript //nologo contacts.js [PROVIDER]
//
// PROVIDER is the mail client whose store to use, "Microsoft Outlook" where it is left out. Exit
// codes: 0 done, 1 failed.

var kMobile = 1;

// The end of the list is told by a failed call alone.
function nextItem(contacts) {
    try {
        return contacts.GetNextItem();
    } catch (atTheEnd) {
        return null;
    }
}

// A number that was never set is told by a failed call.
function phoneNumber(item, kind) {
    try {
        return item.PhoneNumber(kind);
    } catch (neverSet) {
        return "";
    }
}

function main() {
    var provider = WScript.Arguments.length > 0 ? WScript.Arguments.Item(0) : "Microsoft Outlook";
    var service = new ActiveXObject("PimStoreBridge.NPersonalInformationServ");
    try {
        service.StartService(provider);
    } catch (refused) {
        WScript.Echo("This mail client could not be started: " + provider);
        return 1;
    }
    var contacts = service.GetAddressBook();
    contacts.ResetItem();
    for (var item = nextItem(contacts); item; item = nextItem(contacts)) {
        WScript.Echo(item.DisplayName + "  " + phoneNumber(item, kMobile) + "  " +
            item.PersistentID);
    }
    item = null;
    contacts = null;
    // The objects let go of the server before the service stops.
    CollectGarbage();
    service.StopService();
    return 0;
}

WScript.Quit(main());
