// Walks the calendar through the automation server PimStoreBridge, by late binding.
//
//   cscript //nologo calendar.js [PROVIDER]
//
// PROVIDER is the mail client whose store to use, "Windows Mail" where it is left out. Times are
// printed in UTC, all-day items with their local days. Exit codes: 0 done, 1 failed.

function twoDigits(number) {
    return number < 10 ? "0" + number : "" + number;
}

// The server's times are days with a fraction, without a zone: new Date takes their digits for local
// ones, and the local getters give the same digits back.
function timeText(time) {
    var date = new Date(time);
    return date.getFullYear() + "-" + twoDigits(date.getMonth() + 1) + "-" +
        twoDigits(date.getDate()) + " " + twoDigits(date.getHours()) + ":" +
        twoDigits(date.getMinutes());
}

// The end of the list is told by a failed call alone.
function nextItem(calendar) {
    try {
        return calendar.GetNextAppointment();
    } catch (atTheEnd) {
        return null;
    }
}

function main() {
    var provider = WScript.Arguments.length > 0 ? WScript.Arguments.Item(0) : "Windows Mail";
    var service = new ActiveXObject("PimStoreBridge.NPersonalInformationServ");
    try {
        service.StartService(provider);
    } catch (refused) {
        WScript.Echo("This mail client could not be started: " + provider);
        return 1;
    }
    var calendar = service.GetCalendar();
    calendar.Reset();
    for (var item = nextItem(calendar); item; item = nextItem(calendar)) {
        WScript.Echo(timeText(item.StartTime) + "  " + timeText(item.EndTime) + "  " +
            item.Subject + "  " + item.PersistID);
    }
    item = null;
    calendar = null;
    // The objects let go of the server before the service stops.
    CollectGarbage();
    service.StopService();
    return 0;
}

WScript.Quit(main());
