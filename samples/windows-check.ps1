# Looks at the server on a real Windows PC and tells, check by check, what works. docs/windows.md says
# which risk each check is for. It reads only; with -Write it adds and deletes one contact and one
# appointment of its own in each store that it looks at.
#
#   powershell -ExecutionPolicy Bypass -File windows-check.ps1
#   ... -Folder C:\PimStoreBridge    where the programs lie; the folder above samples by default
#   ... -Provider "Microsoft Outlook" -Write
#
# Each line is "ok", "FAILED" or "left out", the check, and what was seen. The exit code is the number
# of failures.
param(
    [string] $Folder = (Split-Path -Parent $PSScriptRoot),
    [string] $Provider = "",
    [switch] $Write
)

$ErrorActionPreference = "Stop"
$script:failures = 0

function Show([string] $state, [string] $check, [string] $seen) {
    "{0,-8} {1,-34} {2}" -f $state, $check, $seen
}

# Runs a check: a script block that returns what was seen, or throws. The block sees the variables of
# this function before those of the script, so that none of its own names may stand here.
function Check([string] $checkName, [scriptblock] $checkBody) {
    try {
        Show "ok" $checkName ((& $checkBody) -join "; ")
    }
    catch {
        $script:failures++
        Show "FAILED" $checkName $_.Exception.Message
    }
}

function Free($object) {
    if ($object) { [void] [Runtime.InteropServices.Marshal]::ReleaseComObject($object) }
}

function Pim([string[]] $arguments) {
    # Else the first line of the error stream would end the call, before there is an exit code.
    $ErrorActionPreference = "Continue"
    $text = & (Join-Path $Folder "pim.exe") @arguments 2>&1
    if ($LASTEXITCODE -ne 0) { throw "pim $arguments ended with ${LASTEXITCODE}: $text" }
    $text
}

Check "64-bit Windows and PowerShell" {
    if (-not [Environment]::Is64BitProcess) { throw "start the 64-bit PowerShell" }
    [Environment]::OSVersion.VersionString
    (Get-Culture).Name + " / " + (Get-UICulture).Name
}

Check "programs" {
    foreach ($name in "PimStoreBridge.exe", "PimLocalBook.dll", "PimLocalStore.dll",
                      "RTFConverterExX64.dll", "pim.exe", "pimstore.exe") {
        $file = Get-Item (Join-Path $Folder $name)
        "{0} {1}" -f $name, $file.VersionInfo.FileVersion
    }
}

Check "virus scanner" {
    # A scanner that locks or removes a program shows here before anything else fails.
    foreach ($file in Get-ChildItem $Folder -Filter *.exe) {
        $stream = [IO.File]::OpenRead($file.FullName)
        $stream.Dispose()
    }
    "all programs can be read"
}

Check "registration" {
    $clsid = "{412CD822-6DF9-4BF2-A642-CEDFAE8FF4B6}"
    $seen = foreach ($root in "HKCU:\Software\Classes", "HKLM:\Software\Classes") {
        $key = "$root\CLSID\$clsid\LocalServer32"
        if (Test-Path $key) { "$root -> " + (Get-Item $key).GetValue("") }
    }
    if (-not $seen) { throw "not registered: pim register, or pim register --user" }
    $seen
}

$identity = New-Object Security.Principal.WindowsPrincipal([Security.Principal.WindowsIdentity]::GetCurrent())
$isElevated = $identity.IsInRole([Security.Principal.WindowsBuiltInRole]::Administrator)
Show "ok" "rights of this console" $(if ($isElevated) { "elevated" } else { "those of a standard user" })

$service = $null
Check "activation" {
    $watch = [Diagnostics.Stopwatch]::StartNew()
    $script:service = New-Object -ComObject PimStoreBridge.NPersonalInformationServ
    "{0} ms; processes: {1}" -f $watch.ElapsedMilliseconds, @(Get-Process PimStoreBridge).Count
}
if (-not $service) {
    Show "left out" "everything else" "there is no server"
    exit $script:failures
}

Check "mail clients" { Pim @("providers") }

foreach ($name in "Microsoft Outlook", "Windows Mail", "Outlook Express") {
    if ($Provider -and $name -ne $Provider) { continue }
    try { $service.StartService($name) }
    catch {
        # Where the client is not on the PC this is what should happen.
        Show "left out" "$name" ("does not start: " + $_.Exception.Message)
        continue
    }
    try {
        Check "${name}: user" {
            $user = $service.GetUserProperties()
            if (-not $user) { "none" } else { $user.DisplayName; $user.SMTPAddress; Free $user }
        }
        Check "${name}: contacts" {
            $book = $service.GetAddressBook()
            if (-not $book) { return "none" }
            [void] $book.ResetItem()
            $count = 0
            $watch = [Diagnostics.Stopwatch]::StartNew()
            while ($true) {
                try { $item = $book.GetNextItem() } catch { break }
                $count++
                $first = $item.DisplayName
                Free $item
            }
            Free $book
            "$count contacts in $($watch.ElapsedMilliseconds) ms; the last one: $first"
        }
        Check "${name}: appointments" {
            $calendar = $service.GetCalendar()
            if (-not $calendar) { return "none" }
            [void] $calendar.Reset()
            $count = 0
            $watch = [Diagnostics.Stopwatch]::StartNew()
            while ($true) {
                try { $item = $calendar.GetNextAppointment() } catch { break }
                $count++
                Free $item
            }
            Free $calendar
            "$count appointments in $($watch.ElapsedMilliseconds) ms"
        }
        Check "${name}: memory of ten loads" {
            # A row set that the library does not free shows here as growth.
            $before = (Get-Process PimStoreBridge).PrivateMemorySize64
            for ($load = 0; $load -lt 10; $load++) { Free ($service.GetAddressBook()) }
            $after = (Get-Process PimStoreBridge).PrivateMemorySize64
            "{0:n1} MiB more" -f (($after - $before) / 1MB)
        }
        if ($Write) {
            Check "${name}: a contact of our own" {
                $book = $service.GetAddressBook()
                $contact = New-Object -ComObject PimStoreBridge.NContactItem
                $contact.FirstName = "PimStoreBridge"
                $contact.LastName = "Check"
                $id = $book.AddItem($contact)
                if (-not $id) { throw "no ID came back" }
                [void] $book.ResetItem()
                $read = $book.GetItemByID($id)
                $lastName = $read.LastName
                if (-not $book.DeleteItem($id)) { throw "the contact $id could not be deleted" }
                Free $read; Free $contact; Free $book
                if ($lastName -ne "Check") { throw "read back: $lastName" }
                $id
            }
            Check "${name}: an appointment of our own" {
                if ($name -eq "Outlook Express") { return "it has no calendar to write to" }
                $files = Join-Path $env:LOCALAPPDATA "Microsoft\Windows Calendar\Calendars"
                if ($name -eq "Windows Mail" -and -not (Test-Path $files)) {
                    return "there is no folder of Windows Calendar"
                }
                $calendar = $service.GetCalendar()
                if (-not $calendar) { return "none" }
                $appointment = New-Object -ComObject PimStoreBridge.NAppointment
                $appointment.Subject = "PimStoreBridge check"
                $appointment.StartTime = [datetime]::UtcNow
                $appointment.EndTime = [datetime]::UtcNow.AddHours(1)
                $id = $calendar.AddAppointment($appointment)
                if (-not $id) { throw "no ID came back" }
                if (-not $calendar.DeleteAppointment($id)) { throw "$id could not be deleted" }
                Free $appointment; Free $calendar
                $id
            }
        }
    }
    finally {
        $service.StopService()
    }
    Check "${name}: a second start" {
        # In one process, over a library that was given up before.
        $service.StartService($name)
        $service.StopService()
        "started and stopped again"
    }
}

Check "memory of the server" {
    $server = Get-Process PimStoreBridge
    "{0:n1} MiB private, {1} handles" -f ($server.PrivateMemorySize64 / 1MB), $server.HandleCount
}

Free $service
Check "end of the server" {
    # Five idle seconds and one more behind its last object.
    for ($i = 0; $i -lt 20; $i++) {
        if (-not (Get-Process PimStoreBridge -ErrorAction SilentlyContinue)) { return "$i half seconds" }
        Start-Sleep -Milliseconds 500
    }
    throw "it still runs after ten seconds"
}

exit $script:failures
