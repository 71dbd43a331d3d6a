#include "localstore/StoreIdentity.h"

#include "localstore/StoreProperties.h"

PropertyMap IdentityState::Read(const PropertySelection& selection)
{
    PropertyMap properties =
        ReadStored(Session().Store(), {OwnerKind::Identity, 1}, selection, IsComputedOfIdentity);
    PutBinary(properties, PR_ENTRYID, m_entryId);
    PutBinary(properties, PR_RECORD_KEY, m_entryId);
    PutLong(properties, PR_OBJECT_TYPE, MAPI_MAILUSER);
    PutLong(properties, PR_DISPLAY_TYPE, DT_MAILUSER);
    return properties;
}

bool IdentityState::IsComputed(std::uint16_t id) const
{
    return IsComputedOfIdentity(id);
}

HRESULT StoreIdentity::Open(const std::shared_ptr<StoreSession>& session,
                            std::span<const std::byte> entryId,
                            const IID* iid,
                            IUnknown** object)
{
    Statement row = session->Store().Prepare("SELECT 1 FROM identity WHERE entry_id = ?1");
    row.Bind(1, entryId);
    if (!row.Step())
        return MAPI_E_NOT_FOUND;
    if (iid && !Answers(*iid))
        return MAPI_E_INTERFACE_NOT_SUPPORTED;
    auto state = std::make_shared<IdentityState>(session, Bytes(entryId.begin(), entryId.end()));
    *object = MakeObject<StoreIdentity>(std::move(state)).Detach();
    return S_OK;
}
