#include "endtoend/ItemCollection.h"

#include <functional>

using Microsoft::WRL::ComPtr;

namespace
{
// Functions names the interface, the type of its items, and its functions.
template <typename Functions> class CollectionOf final : public ItemCollection
{
  public:
    using Interface = typename Functions::Interface;
    using Item = typename Functions::Item;

    explicit CollectionOf(const ComPtr<Interface>& collection) : m_collection(collection) {}

    HRESULT Add(INEntityItem& item, Bstr& id) override
    {
        const auto typed = Typed(item);
        return typed ? std::invoke(Functions::add, *m_collection.Get(), typed.Get(), id.Put())
                     : E_NOINTERFACE;
    }
    HRESULT Update(INEntityItem& item) override
    {
        const auto typed = Typed(item);
        VARIANT_BOOL done = VARIANT_FALSE;
        return typed ? std::invoke(Functions::update, *m_collection.Get(), typed.Get(), &done)
                     : E_NOINTERFACE;
    }
    HRESULT Delete(const Bstr& id) override
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        return std::invoke(Functions::remove, *m_collection.Get(), id.Get(), &done);
    }
    HRESULT Reset() override
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        return std::invoke(Functions::reset, *m_collection.Get(), &done);
    }
    HRESULT Next(ComPtr<INEntityItem>& item) override
    {
        ComPtr<Item> found;
        const HRESULT result =
            std::invoke(Functions::next, *m_collection.Get(), found.GetAddressOf());
        return SUCCEEDED(result) ? found.As(&item) : result;
    }
    HRESULT Find(const Bstr& id, ComPtr<INEntityItem>& item) override
    {
        ComPtr<Item> found;
        const HRESULT result =
            std::invoke(Functions::find, *m_collection.Get(), id.Get(), found.GetAddressOf());
        return SUCCEEDED(result) ? found.As(&item) : result;
    }

  private:
    static ComPtr<Item> Typed(INEntityItem& item)
    {
        ComPtr<Item> typed;
        EXPECT_EQ(
            S_OK,
            item.QueryInterface(__uuidof(Item), reinterpret_cast<void**>(typed.GetAddressOf())));
        return typed;
    }

    const ComPtr<Interface> m_collection;
};

struct EnumeratorItems
{
    using Interface = INEnumerator;
    using Item = INEntityItem;
    static constexpr auto add = &INEnumerator::AddItem;
    static constexpr auto update = &INEnumerator::UpdateItem;
    static constexpr auto remove = &INEnumerator::DeleteItem;
    static constexpr auto reset = &INEnumerator::ResetItem;
    static constexpr auto next = &INEnumerator::GetNextItem;
    static constexpr auto find = &INEnumerator::GetItemByID;
};

struct BookContacts
{
    using Interface = INAddressBook;
    using Item = INContactItem;
    static constexpr auto add = &INAddressBook::AddItem;
    static constexpr auto update = &INAddressBook::UpdateItem;
    static constexpr auto remove = &INAddressBook::DeleteItem;
    static constexpr auto reset = &INAddressBook::ResetItem;
    static constexpr auto next = &INAddressBook::GetNextItem;
    static constexpr auto find = &INAddressBook::GetItemByID;
};

// The other way to add one.
struct BookContactsWithFolders : BookContacts
{
    static constexpr auto add = [](INAddressBook& book, INContactItem* item, BSTR* id) {
        Bstr folder;
        return book.AddItemEx(item, folder.Put(), id);
    };
};

struct BookGroups
{
    using Interface = INAddressBook;
    using Item = INContactGroup;
    static constexpr auto add = &INAddressBook::AddGroup;
    static constexpr auto update = &INAddressBook::UpdateGroup;
    static constexpr auto remove = &INAddressBook::DeleteGroup;
    static constexpr auto reset = &INAddressBook::ResetGroup;
    static constexpr auto next = &INAddressBook::GetNextGroup;
    static constexpr auto find = &INAddressBook::GetGroupByID;
};

struct CalendarItems
{
    using Interface = INCalendar;
    using Item = INAppointment;
    static constexpr auto add = &INCalendar::AddAppointment;
    static constexpr auto update = &INCalendar::UpdateAppointment;
    static constexpr auto remove = &INCalendar::DeleteAppointment;
    static constexpr auto reset = &INCalendar::Reset;
    static constexpr auto next = &INCalendar::GetNextAppointment;
    static constexpr auto find = &INCalendar::GetAppointmentByID;
};

ComPtr<INEnumerator> CollectionFrom(INPersonalInformationService& service,
                                    _tagNEnumeratorType type,
                                    INEnumerator*)
{
    ComPtr<INEnumerator> enumerator;
    EXPECT_EQ(S_OK, service.GetEnumerator(type, enumerator.GetAddressOf()));
    return enumerator;
}

ComPtr<INAddressBook> CollectionFrom(INPersonalInformationService& service,
                                     _tagNEnumeratorType,
                                     INAddressBook*)
{
    ComPtr<INAddressBook> book;
    EXPECT_EQ(S_OK, service.GetAddressBook(book.GetAddressOf()));
    return book;
}

ComPtr<INCalendar> CollectionFrom(INPersonalInformationService& service,
                                  _tagNEnumeratorType,
                                  INCalendar*)
{
    ComPtr<INCalendar> calendar;
    EXPECT_EQ(S_OK, service.GetCalendar(calendar.GetAddressOf()));
    return calendar;
}

template <typename Functions>
std::unique_ptr<ItemCollection> Open(INPersonalInformationService& service,
                                     _tagNEnumeratorType type)
{
    using Interface = typename Functions::Interface;
    const auto collection = CollectionFrom(service, type, static_cast<Interface*>(nullptr));
    return collection ? std::make_unique<CollectionOf<Functions>>(collection) : nullptr;
}

struct TypedCollection
{
    _tagNEnumeratorType type;
    CollectionType collection;
};
const TypedCollection kCollections[] = {
    {AddressBook, {"BookContacts", &Open<BookContacts>}},
    {AddressBook, {"BookContactsWithFolders", &Open<BookContactsWithFolders>}},
    {ContactGroup, {"BookGroups", &Open<BookGroups>, false}},
    {Calendar, {"Calendar", &Open<CalendarItems>}},
};
} // namespace

std::vector<CollectionType> CollectionsOf(const Kind& kind)
{
    std::vector<CollectionType> collections = {{"Enumerator", &OpenEnumerator}};
    for (const TypedCollection& typed : kCollections)
        if (typed.type == kind.type)
            collections.push_back(typed.collection);
    return collections;
}

std::unique_ptr<ItemCollection> OpenEnumerator(INPersonalInformationService& service,
                                               _tagNEnumeratorType type)
{
    return Open<EnumeratorItems>(service, type);
}
