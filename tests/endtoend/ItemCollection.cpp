#include "endtoend/ItemCollection.h"

#include "client/Collections.h"

#include <functional>

using Microsoft::WRL::ComPtr;

namespace
{
// Functions names the interface, the type of its items, and its functions, as the client does.
template <typename Functions> class CollectionOf final : public ItemCollection
{
  public:
    using Interface = typename Functions::Collection;
    using Item = typename Functions::Item;

    explicit CollectionOf(const ComPtr<Interface>& collection) : m_collection(collection) {}

    HRESULT Add(INEntityItem& item, Bstr& id) override
    {
        const auto typed = Typed(item);
        return typed ? std::invoke(Functions::kAdd, *m_collection.Get(), typed.Get(), id.Put())
                     : E_NOINTERFACE;
    }
    HRESULT Update(INEntityItem& item) override
    {
        const auto typed = Typed(item);
        VARIANT_BOOL done = VARIANT_FALSE;
        return typed ? std::invoke(Functions::kUpdate, *m_collection.Get(), typed.Get(), &done)
                     : E_NOINTERFACE;
    }
    HRESULT Delete(const Bstr& id) override
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        return std::invoke(Functions::kDelete, *m_collection.Get(), id.Get(), &done);
    }
    HRESULT Reset() override
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        return std::invoke(Functions::kReset, *m_collection.Get(), &done);
    }
    HRESULT Next(ComPtr<INEntityItem>& item) override
    {
        ComPtr<Item> found;
        const HRESULT result =
            std::invoke(Functions::kNext, *m_collection.Get(), found.GetAddressOf());
        return SUCCEEDED(result) ? found.As(&item) : result;
    }
    HRESULT Find(const Bstr& id, ComPtr<INEntityItem>& item) override
    {
        ComPtr<Item> found;
        const HRESULT result =
            std::invoke(Functions::kById, *m_collection.Get(), id.Get(), found.GetAddressOf());
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

// The other way to add a contact.
struct ContactWithFolder : pim::ContactKind
{
    static constexpr auto kAdd = [](INAddressBook& book, INContactItem* item, BSTR* id) {
        Bstr folder;
        return book.AddItemEx(item, folder.Put(), id);
    };
};

// The address book's own way to its groups, which the client does not take.
struct BookGroupKind
{
    using Collection = INAddressBook;
    using Item = INContactGroup;
    static constexpr auto kReset = &INAddressBook::ResetGroup;
    static constexpr auto kNext = &INAddressBook::GetNextGroup;
    static constexpr auto kById = &INAddressBook::GetGroupByID;
    static constexpr auto kAdd = &INAddressBook::AddGroup;
    static constexpr auto kUpdate = &INAddressBook::UpdateGroup;
    static constexpr auto kDelete = &INAddressBook::DeleteGroup;
    static constexpr auto Open = &pim::ContactKind::Open;
};

template <typename Functions>
std::unique_ptr<ItemCollection> Wrap(const ComPtr<typename Functions::Collection>& collection)
{
    return collection ? std::make_unique<CollectionOf<Functions>>(collection) : nullptr;
}

template <typename Functions>
std::unique_ptr<ItemCollection> Open(INPersonalInformationService& service, _tagNEnumeratorType)
{
    ComPtr<typename Functions::Collection> collection;
    EXPECT_EQ(S_OK, Functions::Open(&service, collection.GetAddressOf()));
    return Wrap<Functions>(collection);
}

struct TypedCollection
{
    _tagNEnumeratorType type;
    CollectionType collection;
};
const TypedCollection kCollections[] = {
    {AddressBook, {"BookContacts", &Open<pim::ContactKind>}},
    {AddressBook, {"BookContactsWithFolders", &Open<ContactWithFolder>}},
    {ContactGroup, {"BookGroups", &Open<BookGroupKind>, false}},
    {Calendar, {"Calendar", &Open<pim::AppointmentKind>}},
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
    ComPtr<INEnumerator> enumerator;
    EXPECT_EQ(S_OK, service.GetEnumerator(type, enumerator.GetAddressOf()));
    return Wrap<pim::EnumeratedKind>(enumerator);
}
