#include "client/ContactCommands.h"

#include "client/ContactAccess.h"
#include "client/InputFile.h"
#include "client/ItemFinder.h"
#include "client/ItemList.h"
#include "client/ManyItems.h"
#include "client/PictureFiles.h"
#include "client/core/ContactJson.h"
#include "client/core/ContactText.h"
#include "client/core/JsonValues.h"

namespace pim
{
namespace
{
using AddressBook = ItemCollection<ContactKind>;
using Finder = ItemFinder<ContactKind>;

std::optional<PictureFolder> FolderForPictures(const Context& context)
{
    if (!context.command.pictureDirectory)
        return std::nullopt;
    return PictureFolder(*context.command.pictureDirectory);
}

// What the command asks for, with the full paths of pictures.
std::vector<Contact> ReadWishes(const ContactOptions& options)
{
    std::vector<Contact> wishes = {options.wish};
    if (options.file)
    {
        ContactFile file = ReadContacts(ReadInput(*options.file));
        if (!file.problem.empty())
            throw Failure{kExitFailed,
                          L"\"" + OneLine(*options.file) + L"\" cannot be taken: " +
                              OneLine(file.problem)};
        wishes = std::move(file.contacts);
    }
    for (Contact& wish : wishes)
    {
        if (wish.picture && !wish.picture->empty())
            wish.picture = ReadablePicture(*wish.picture);
    }
    return wishes;
}

// Compares what was asked for with what the store holds now; the list was read again before.
WriteResult CheckStored(AddressBook& contacts,
                        const std::wstring& id,
                        const Contact& before,
                        const Contact& wanted)
{
    const auto item = contacts.Find(id);
    const Contact kept = item ? ReadContact(item.Get(), ReadFields::All, true) : before;
    return {id, FieldsNotKept(before, wanted, kept)};
}

std::wstring AddContact(const AddressBook& contacts, const Contact& wish)
{
    const auto item = contacts.NewItem();
    PutChanges(item.Get(), Contact(), wish);
    return contacts.Add(item.Get());
}

int AddAll(const Context& context, AddressBook& contacts, const std::vector<Contact>& wishes)
{
    return AddItems(context,
                    L"Adding contacts",
                    {wishes.size(),
                     [&](std::size_t i) { return AddContact(contacts, wishes[i]); },
                     [&] { contacts.Reload(); },
                     [&](std::size_t i, const std::wstring& id) {
                         return CheckStored(contacts, id, Contact(), wishes[i]);
                     }});
}
} // namespace

int ListContacts(const Context& context)
{
    const auto pictures = FolderForPictures(context);
    const auto fields = context.command.asJson ? ReadFields::All : ReadFields::ForTable;
    const auto read = [&](INContactItem* item) {
        Contact contact = ReadContact(item, fields, pictures.has_value());
        if (pictures)
            pictures->Save(contact);
        return contact;
    };
    return ListItems<ContactKind, Contact>(
        context,
        {read,
         [](const auto& left, const auto& right) { return ComesBefore(left, right); },
         ContactJson,
         [&](const auto& contacts) { return ContactTable(contacts, context.Room()); }});
}

int ShowContact(const Context& context)
{
    const auto pictures = FolderForPictures(context);
    const Server server;
    const AddressBook contacts(server, context.command.provider);
    const auto found = Finder(contacts, context.errors).Find(context.command.ids.front());
    Contact contact = ReadContact(found.item.Get(), ReadFields::All, true);
    if (pictures)
        pictures->Save(contact);
    context.Print(context.command.asJson ? JsonText(ContactJson(contact))
                                         : ContactDetails(contact, context.zone));
    return kExitOk;
}

int AddContacts(const Context& context)
{
    const std::vector<Contact> wishes = ReadWishes(context.command.contact);
    const Server server;
    AddressBook contacts(server, context.command.provider);
    if (context.command.contact.file)
        return AddAll(context, contacts, wishes);
    const std::wstring id = AddContact(contacts, wishes.front());
    contacts.Reload();
    return PrintWritten(context, L"Added", CheckStored(contacts, id, Contact(), wishes.front()));
}

int UpdateContact(const Context& context)
{
    const std::vector<Contact> wishes = ReadWishes(context.command.contact);
    if (wishes.size() != 1)
        CheckOptions(L"An update takes a file of one contact, not of " +
                     std::to_wstring(wishes.size()) + L".");
    const Server server;
    AddressBook contacts(server, context.command.provider);
    const auto found = Finder(contacts, context.errors).Find(context.command.ids.front());
    const Contact before = ReadContact(found.item.Get(), ReadFields::All, true);
    Contact wanted = before;
    Apply(wishes.front(), wanted);
    PutChanges(found.item.Get(), before, wanted);
    contacts.Update(found.item.Get());
    contacts.Reload();
    return PrintWritten(context, L"Updated", CheckStored(contacts, found.id, before, wanted));
}

int DeleteContacts(const Context& context)
{
    const Server server;
    const AddressBook contacts(server, context.command.provider);
    Finder finder(contacts, context.errors);
    return DeleteItems<ContactKind>(
        context, finder, [&](const Finder::Found& found) { return contacts.Delete(found.id); });
}
} // namespace pim
