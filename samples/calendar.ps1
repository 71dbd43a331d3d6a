# Walks the calendar through the automation server PimStoreBridge, from PowerShell:
#
#   .\calendar.ps1
#   .\calendar.ps1 -Provider "Microsoft Outlook" | Format-Table
#
# Gives one object per item. Times come from the server in UTC and are turned into local ones; an
# all-day item has local days already.
param([string] $Provider = "Windows Mail")

$ErrorActionPreference = "Stop"
$service = New-Object -ComObject PimStoreBridge.NPersonalInformationServ
$service.StartService($Provider)
try {
    $calendar = $service.GetCalendar()
    [void] $calendar.Reset()
    while ($true) {
        # The end of the list is told by a failed call alone.
        try { $item = $calendar.GetNextAppointment() } catch { break }
        $toLocal = {
            param([datetime] $time)
            if ($item.AllDay) { $time } else { [datetime]::SpecifyKind($time, "Utc").ToLocalTime() }
        }
        [pscustomobject] @{
            Start   = & $toLocal $item.StartTime
            End     = & $toLocal $item.EndTime
            AllDay  = [bool] $item.AllDay
            Subject = $item.Subject
            Place   = $item.Place
            ID      = $item.PersistID
        }
        [void] [Runtime.InteropServices.Marshal]::ReleaseComObject($item)
    }
}
finally {
    # The calendar points into what the service holds, so it goes first.
    if ($calendar) { [void] [Runtime.InteropServices.Marshal]::ReleaseComObject($calendar) }
    $service.StopService()
    [void] [Runtime.InteropServices.Marshal]::ReleaseComObject($service)
}
