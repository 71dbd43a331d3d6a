// The profile's user as an object: the properties that the store keeps for it, for reading.
#pragma once

#include "localstore/StoreObject.h"

class IdentityState : public FixedObject
{
  public:
    IdentityState(std::shared_ptr<StoreSession> session, Bytes entryId)
        : FixedObject(std::move(session)), m_entryId(std::move(entryId))
    {
    }

    PropertyMap Read(const PropertySelection& selection) override;
    bool IsComputed(std::uint16_t id) const override;

  private:
    const Bytes m_entryId;
};

class StoreIdentity : public StoreObject<IdentityState, IMailUser, &IID_IMailUser>
{
  public:
    explicit StoreIdentity(std::shared_ptr<IdentityState> state) : StoreObject(std::move(state)) {}

    // Inside StoreSession::Run.
    static HRESULT Open(const std::shared_ptr<StoreSession>& session,
                        std::span<const std::byte> entryId,
                        const IID* iid,
                        IUnknown** object);
};
