// One list of items of a provider's store, as the automation contract gives it: calendar, address
// book, groups, categories.
#pragma once

#include "client/Console.h"
#include "client/Failure.h"
#include "client/FirstItem.h"
#include "client/PropertyAccess.h"
#include "client/ProviderSession.h"
#include "client/core/CommandLine.h"
#include "platform/Bstr.h"

#include <functional>

namespace pim
{
// How people call the items.
struct ItemWords
{
    const wchar_t* one;   // "appointment"
    const wchar_t* aOne;  // "an appointment"
    const wchar_t* many;  // "appointments"
    const wchar_t* whole; // what a store has or has not: "calendar"
};

// Kind tells the interfaces of the list and its items, their methods and words; Collections.h holds
// one for each list. Every operation throws Failure where it cannot do what its name says.
template <typename Kind> class ItemCollection
{
  public:
    using Item = typename Kind::Item;

    ItemCollection(const Server& server, const std::optional<std::wstring>& provider)
    {
        m_session = std::make_unique<ProviderSession>(
            server, provider, Kind::kWords.whole, [&](INPersonalInformationService* service) {
                return Open(service);
            });
    }
    ItemCollection(const ItemCollection&) = delete;
    ItemCollection& operator=(const ItemCollection&) = delete;

    const ProviderSession& Session() const noexcept { return *m_session; }

    // Hands every item out, in the store's order, until the last one or a cancel by the user. An
    // item that the store lists but does not open is left out.
    // Returns: how many were left out.
    unsigned Walk(const std::function<void(Item*)>& take) const
    {
        Rewind();
        unsigned leftOut = 0;
        Microsoft::WRL::ComPtr<Item> previous;
        for (;;)
        {
            CheckNotCancelled();
            Microsoft::WRL::ComPtr<Item> item;
            const HRESULT result = previous ? Next(item.GetAddressOf()) : First(item, leftOut);
            CheckServerIsThere(result);
            if (FAILED(result) || !item)
            {
                CheckEnd(result, previous != nullptr);
                return leftOut;
            }
            // A store answers for one that it cannot open with the one before.
            if (item.Get() == previous.Get())
                ++leftOut;
            else
                take(item.Get());
            previous = std::move(item);
        }
    }

    // The item of exactly that ID; null where there is none.
    Microsoft::WRL::ComPtr<Item> Find(const std::wstring& id) const
    {
        Rewind();
        Microsoft::WRL::ComPtr<Item> item;
        const HRESULT result = (m_items.Get()->*Kind::kById)(Bstr(id).Get(), item.GetAddressOf());
        CheckServerIsThere(result);
        // A store may answer with the item that was current before, so the ID is compared.
        if (FAILED(result) || !item || ReadItemId(item.Get()) != id)
            return nullptr;
        return item;
    }

    // An empty item in the server's process.
    Microsoft::WRL::ComPtr<Item> NewItem() const
    {
        Microsoft::WRL::ComPtr<Item> item;
        MakeInServer(
            Kind::ItemClass(), __uuidof(Item), reinterpret_cast<void**>(item.GetAddressOf()));
        return item;
    }

    // The new item's ID.
    std::wstring Add(Item* item) const
    {
        Bstr id;
        CheckDone((m_items.Get()->*Kind::kAdd)(item, id.Put()),
                  L"The item was not stored: the store cannot be written, or has no place for it");
        return std::wstring(id.View());
    }

    // Writes the item over the one that has its ID.
    void Update(Item* item) const
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        CheckDone((m_items.Get()->*Kind::kUpdate)(item, &done),
                  L"The change was not stored: the store cannot be written, or the item is gone");
    }

    // False where the store has no such item.
    bool Delete(const std::wstring& id) const
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        const HRESULT result = (m_items.Get()->*Kind::kDelete)(Bstr(id).Get(), &done);
        CheckServerIsThere(result);
        return SUCCEEDED(result);
    }

    // Reads the store again, for what was changed to show. The list is a new one then: one that is
    // read again keeps what it listed before.
    void Reload()
    {
        if (!Open(m_session->Service()))
            throw Failure{kExitFailed,
                          std::wstring(L"The ") + Kind::kWords.whole +
                              L" could not be read again: another program stopped the service."};
    }

  private:
    bool Open(INPersonalInformationService* service)
    {
        CheckDone(Kind::Open(service, m_items.ReleaseAndGetAddressOf()),
                  std::wstring(L"The server did not open the ") + Kind::kWords.whole);
        return m_items != nullptr;
    }

    void Rewind() const
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        CheckDone((m_items.Get()->*Kind::kReset)(&done),
                  std::wstring(L"The server did not begin the ") + Kind::kWords.whole + L" anew");
    }

    bool HasItem() const
    {
        Rewind();
        Microsoft::WRL::ComPtr<Item> item;
        unsigned unopened = 0;
        First(item, unopened);
        return item != nullptr;
    }

    HRESULT Next(Item** item) const { return (m_items.Get()->*Kind::kNext)(item); }

    HRESULT First(Microsoft::WRL::ComPtr<Item>& item, unsigned& unopened) const
    {
        return FirstItem([this](Item** next) { return Next(next); }, item, unopened);
    }

    // The end of the list, and a list whose service another client stopped, look alike; the latter
    // has no first item either.
    void CheckEnd(HRESULT result, bool anyItem) const
    {
        if (result == E_FAIL && (!anyItem || HasItem()))
            return;
        throw Failure{kExitFailed,
                      std::wstring(L"The walk through the ") + Kind::kWords.whole +
                          L" broke off (" + ResultText(result) +
                          L"); another program may have stopped the service. "
                          L"Run the command again."};
    }

    // Ended behind the list, which points into what the service holds.
    std::unique_ptr<ProviderSession> m_session;
    Microsoft::WRL::ComPtr<typename Kind::Collection> m_items;
};
} // namespace pim
