// Reads the identity of the logged-on mail user from its address book entry, once, at construction:
// the texts do not follow later changes of the profile.
#pragma once

#include "outlook/store/MAPIHelper.h"
#include "service/Callback.h"
#include "service/UserIdentity.h"

class CUserProperties : public UserIdentity, public ICallback, public LiveObject
{
  public:
    // Without an identity object or a helper all texts stay empty, as they do where the reading
    // fails.
    //   identity: held by one reference until the end or Detach.
    //   helper:   not owned; detaches this object where it ends first.
    CUserProperties(IMAPIProp* identity, CMAPIHelper* helper);

    // Gives the identity object and the helper up; the texts stay. For the provider's end.
    void Detach() noexcept override;

    BOOL OnPropertyRow(ULONG cValues, LPSPropValue lpProps, int callType, BOOL* pContinue) override;

  private:
    Microsoft::WRL::ComPtr<IMAPIProp> m_pIdentity;
    CMAPIHelper* m_pHelper;
};
