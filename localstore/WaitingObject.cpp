#include "localstore/WaitingObject.h"

void MoveChanges(PropertyChanges& into, PropertyChanges&& changes) noexcept
{
    while (!changes.empty())
    {
        auto change = changes.extract(changes.begin());
        into.erase(change.key());
        into.insert(std::move(change));
    }
}

HRESULT WaitingObject::Change(PropertyChanges changes)
{
    MoveChanges(m_changes, std::move(changes));
    return S_OK;
}
