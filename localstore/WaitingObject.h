// An open object whose changes wait for its SaveChanges, and show in it alone until then.
#pragma once

#include "localstore/StoredObject.h"

// Moves changes over those that are there already. Needs no memory, so it cannot fail half way.
void MoveChanges(PropertyChanges& into, PropertyChanges&& changes) noexcept;

class WaitingObject : public StoredObject
{
  public:
    using StoredObject::StoredObject;

    HRESULT Change(PropertyChanges changes) override;

  protected:
    PropertyChanges m_changes;
};
