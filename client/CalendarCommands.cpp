#include "client/CalendarCommands.h"

#include "client/AppointmentAccess.h"
#include "client/ItemFinder.h"
#include "client/ItemList.h"
#include "client/core/AppointmentJson.h"
#include "client/core/AppointmentText.h"
#include "client/core/JsonValues.h"

namespace pim
{
namespace
{
using Calendar = ItemCollection<AppointmentKind>;
using Finder = ItemFinder<AppointmentKind>;

// Compares what was asked for with what the store holds now.
WriteResult CheckStored(Calendar& calendar,
                        const std::wstring& id,
                        const Appointment& before,
                        const Appointment& wanted)
{
    calendar.Reload();
    const auto item = calendar.Find(id);
    const Appointment kept = item ? ReadAppointment(item.Get(), ReadFields::All) : before;
    return {id, FieldsNotKept(before, wanted, kept)};
}
} // namespace

int ListAppointments(const Context& context)
{
    const auto fields = context.command.asJson ? ReadFields::All : ReadFields::ForTable;
    return ListItems<AppointmentKind, Appointment>(
        context,
        {[&](INAppointment* item) { return ReadAppointment(item, fields); },
         [&](const auto& left, const auto& right) {
             return ComesBefore(left, right, context.zone);
         },
         [&](const auto& item) { return AppointmentJson(item, context.zone); },
         [&](const auto& items) { return AppointmentTable(items, context.zone, context.Room()); }});
}

int ShowAppointment(const Context& context)
{
    const Server server;
    const Calendar calendar(server, context.command.provider);
    const auto found = Finder(calendar, context.errors).Find(context.command.ids.front());
    const Appointment item = ReadAppointment(found.item.Get(), ReadFields::All);
    context.Print(context.command.asJson ? JsonText(AppointmentJson(item, context.zone))
                                         : AppointmentDetails(item, context.zone));
    return kExitOk;
}

int AddAppointment(const Context& context)
{
    Appointment wanted;
    CheckOptions(MakeItem(context.command.item, context.zone, wanted));
    const Server server;
    Calendar calendar(server, context.command.provider);
    const auto item = calendar.NewItem();
    PutChanges(item.Get(), Appointment(), wanted);
    const std::wstring id = calendar.Add(item.Get());
    return PrintWritten(context, L"Added", CheckStored(calendar, id, Appointment(), wanted));
}

int UpdateAppointment(const Context& context)
{
    const Server server;
    Calendar calendar(server, context.command.provider);
    const auto found = Finder(calendar, context.errors).Find(context.command.ids.front());
    const Appointment before = ReadAppointment(found.item.Get(), ReadFields::All);
    Appointment wanted = before;
    CheckOptions(ChangeItem(context.command.item, context.zone, wanted));
    Appointment toPut = wanted;
    // A calendar file gives 0 for an item without an alarm, and taking that 0 back would add one;
    // no reminder, which takes no alarm away there, leaves the item as it is.
    const bool isFileStore = !calendar.Session().IsOutlook();
    if (isFileStore && !context.command.item.reminderMinutes && before.reminderMinutes == 0u)
        toPut.reminderMinutes = kNoReminder;
    PutChanges(found.item.Get(), before, toPut);
    calendar.Update(found.item.Get());
    return PrintWritten(context, L"Updated", CheckStored(calendar, found.id, before, wanted));
}

int DeleteAppointments(const Context& context)
{
    const Server server;
    const Calendar calendar(server, context.command.provider);
    Finder finder(calendar, context.errors);
    return DeleteItems<AppointmentKind>(
        context, finder, [&](const Finder::Found& found) { return calendar.Delete(found.id); });
}
} // namespace pim
