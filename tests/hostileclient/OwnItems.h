// An item of a client's own for each type of list, which acts inside each call that it gets.
#pragma once

#include "hostileclient/OwnLists.h"
#include "tests/icalendar/RecordingAppointment.h"
#include "tests/outlook/contacts/OwnContact.h"

// What an own item does.
struct OwnItemConduct
{
    std::function<void()> onCall; // runs inside each call
    // What its getters give, but for the ID; null: what the item below it has. Outlives the item.
    const WrongAnswers* answers = nullptr;
};

// An own item over one of the server's; an appointment has its ID only.
inline Microsoft::WRL::ComPtr<INEntityItem> OwnItem(_tagNEnumeratorType type,
                                                    INEntityItem* inner,
                                                    const OwnItemConduct& conduct)
{
    Microsoft::WRL::ComPtr<INEntityItem> own;
    const auto give = [&](auto* item) {
        item->onCall = conduct.onCall;
        item->answers = conduct.answers;
        own = item;
    };
    switch (type)
    {
    case AddressBook:
        give(OwnContact::Make(QueryItem<INContactItem>(inner)).Get());
        break;
    case Calendar: {
        const auto appointment = RecordingAppointment::Make();
        Bstr id;
        inner->get_EntityID(id.Put());
        appointment->texts["EntityID"] = TextOf(id.Get());
        appointment->texts["Subject"] = L"Changed";
        appointment->onCall = [act = conduct.onCall](const std::string&) {
            if (act)
                act();
        };
        appointment->answers = conduct.answers;
        own = appointment.Get();
        break;
    }
    case ContactGroup:
        give(new OwnGroup(inner));
        break;
    default:
        give(new OwnCategory(inner));
    }
    return own;
}
