// A session over the recording store for runs in which any call may fail, its own included.
#pragma once

#include "outlook/store/MAPIHelper.h"
#include "outlook/store/MAPIProxcy.h"
#include "service/ItemAccess.h"
#include "tests/recordingstore/RecordingStore.h"

#include <gtest/gtest.h>

#include <iterator>
#include <memory>
#include <vector>

// Each way in which a store may fail, those of a hostile one included.
inline constexpr StoreFault kAllStoreFaults[] = {StoreFault::OutOfMemory,
                                                 StoreFault::CallFailed,
                                                 StoreFault::NullOutput,
                                                 StoreFault::FewerValues,
                                                 StoreFault::WrongTypes,
                                                 StoreFault::ShortRows};
static_assert(std::size(kAllStoreFaults) ==
              std::size(kStoreFaults) + std::size(kHostileStoreFaults));

// The walk of a table with one item is over; a store that shows each row twice gives it once more.
inline void ExpectEnd(IEnumerator& table)
{
    table.GetNextItem();
    if (CurrentItem(table))
        table.GetNextItem();
    EXPECT_FALSE(CurrentItem(table));
}

class FaultSession
{
  public:
    FaultSession()
    {
        auto proxy = std::make_unique<CMAPIProxcy>();
        MAPIINIT_0 init = {0, 8} /* MAPI_NO_COINIT */;
        if (!proxy->Load(RecordingStore::Path(), &init))
            return;
        m_helper = std::make_unique<CMAPIHelper>(std::move(proxy));
        m_helper->Proxy().MAPILogonEx(0, nullptr, nullptr, 0, m_session.GetAddressOf());
    }

    // Null where the library did not come up.
    CMAPIHelper* Helper() const { return m_helper.get(); }

    // An object of that type, open for writing; null where a call failed.
    template <typename Interface>
    Microsoft::WRL::ComPtr<Interface> Open(std::vector<BYTE> entryID, ULONG wantedType) const
    {
        ULONG type = 0;
        Microsoft::WRL::ComPtr<IUnknown> object;
        if (m_session)
            m_session->OpenEntry(static_cast<ULONG>(entryID.size()),
                                 reinterpret_cast<ENTRYID*>(entryID.data()),
                                 nullptr,
                                 MAPI_BEST_ACCESS,
                                 &type,
                                 object.GetAddressOf());
        return object && type == wantedType ? static_cast<Interface*>(object.Get()) : nullptr;
    }

  private:
    std::unique_ptr<CMAPIHelper> m_helper;
    Microsoft::WRL::ComPtr<IMAPISession> m_session;
};
