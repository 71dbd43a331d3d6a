// Appointments over the embedded message store: time, growth and memory; see WalkBench.h.
//
//     appointment_bench [LARGEST]     the number of appointments in the largest table
//
// While it runs, the user's setting for the store's place names a store of its own.
#include "BenchStore.h"
#include "StoreMeasure.h"
#include "WalkBench.h"

#include "outlook/calendar/AppointmentColumns.h"
#include "outlook/calendar/OutlookCalendarTable.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"

#include <stdexcept>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr ULONG kListColumns[] = {PR_ENTRYID, PR_MESSAGE_CLASS_W, PR_LAST_MODIFICATION_TIME};
constexpr ULONG kIdentity[] = {PR_ENTRYID, PR_MESSAGE_CLASS_W};

// The zone an hour east of UTC with Europe's summer time, as the store keeps it.
constexpr char kZone[] = "C4FFFFFF00000000C4FFFFFF000000000A000000050003000000000000000000"
                         "00000300000005000200000000000000";
// Every Tuesday without an end, from 2024-03-05 09:30, an hour.
constexpr char kWeekly[] = "043004300B2001000000C0210000010000000000000004000000232000000A00"
                           "0000000000000000000000000000A01D440DDF80E95A06300000093000003A02"
                           "00007602000000000000000000000000";

// As much as many appointments have; one in ten recurs.
std::string PropertiesOf(ULONG i)
{
    const std::string number = std::to_string(i);
    const auto named =
        [](const char* set, const char* id, const char* type, const std::string& value) {
            return R"({"set": ")" + std::string(set) + R"(", "id": ")" + id + R"(", "type": ")" +
                   type + R"(", "value": )" + value + "}";
        };
    const auto own = [&](const char* id, const char* type, const std::string& value) {
        return named("PSETID_Appointment", id, type, value) + ",";
    };
    const bool isRecurring = i % 10 == 0;
    return R"({"tag": "0x001A001F", "value": "IPM.Appointment"},)"
           R"({"tag": "0x0037001F", "value": "Planning )" +
           number + R"("},{"tag": "0x1000001F", "value": "Bring the plan and list )" + number +
           R"("},)" + own("0x8205", "PT_LONG", "2") +
           own("0x8208", "PT_UNICODE", "\"Room " + number + "\"") +
           own("0x820D", "PT_SYSTIME", "\"2024-03-05T08:30:00Z\"") +
           own("0x820E", "PT_SYSTIME", "\"2024-03-05T09:30:00Z\"") +
           own("0x8215", "PT_BOOLEAN", "false") +
           own("0x8223", "PT_BOOLEAN", isRecurring ? "true" : "false") +
           (isRecurring ? own("0x8216", "PT_BINARY", std::string(R"({"hex": ")") + kWeekly + "\"}")
                        : std::string()) +
           own("0x8233", "PT_BINARY", std::string(R"({"hex": ")") + kZone + "\"}") +
           own("0x8234", "PT_UNICODE", "\"(UTC+01:00) Berlin\"") +
           named("PSETID_Common", "0x8501", "PT_LONG", "15") + "," +
           named("PSETID_Common", "0x8503", "PT_BOOLEAN", "true");
}

std::unique_ptr<CContentTable> Open(const WalkBench::Folders& folders, CMAPIHelper& helper)
{
    return std::make_unique<COutlookCalendarTable>(folders[0].Get(), &helper);
}

// How many appointments came, each with its start.
ULONG Walk(CContentTable& table, ULONG)
{
    table.ResetItem();
    for (ULONG count = 0;; ++count)
    {
        table.GetNextItem();
        const auto appointment = QueryItem<INAppointment>(CurrentItem(table).Get());
        if (!appointment)
            return count;
        DATE start = 0.0;
        appointment->get_StartTime(&start);
        if (start == 0.0)
            throw std::runtime_error("an appointment has no start");
    }
}

// What reading one appointment asks of the store.
void ReadBare(IMAPIFolder& folder, const SBinary& entryID, CNProxcy& proxy)
{
    const ComPtr<IUnknown> object = OpenToRead(folder, entryID);
    IMAPIProp& message = *static_cast<IMAPIProp*>(object.Get());
    // Asks for the names too; what it does beside that is next to nothing.
    ReadAndFree(message, FindAppointmentTags(folder, proxy).tags, proxy);
    ReadAndFree(message, kIdentity, proxy);
}

ULONG BareCalls(const WalkBench::Folders& folders, CNProxcy& proxy)
{
    IMAPIFolder& folder = *folders[0].Get();
    ComPtr<IMAPITable> table;
    Require(folder.GetContentsTable(MAPI_UNICODE, table.GetAddressOf()), "contents");
    const MapiRowSet rows = ReadRows(*table.Get(), kListColumns, proxy);
    for (ULONG i = 0; i < rows->cRows; ++i)
        ReadBare(folder, rows->aRow[i].lpProps[0].Value.bin, proxy);
    return rows->cRows;
}
} // namespace

int wmain(int argc, wchar_t** argv)
{
    return RunWalkBench(
        "appointment_bench",
        argc,
        argv,
        {"appointments", 1, PropertiesOf, Open, Walk, BareCalls, CLSID_NAppointment, 600.0, 0.0});
}
