// An open object of the store as its interfaces, streams and tables see it: the properties that are
// stored, the changes that wait for a save, and the properties that the store works out itself.
#pragma once

#include "localstore/MapiValues.h"
#include "localstore/StoreSession.h"

#include <memory>
#include <optional>

// A value, or nothing for a property to delete.
using PropertyChanges = std::map<std::uint16_t, std::optional<PropertyValue>>;

// Applies changes to what was read.
void Overlay(PropertyMap& properties,
             const PropertyChanges& changes,
             const PropertySelection& selection);

// Writes changes into the owner's rows; inside a transaction.
void WriteChanges(Database& database, PropertyOwner owner, const PropertyChanges& changes);

// The owner's stored properties of the selection without those that the filter takes. Few are read
// one by one, many by one statement.
PropertyMap ReadStored(Database& database,
                       PropertyOwner owner,
                       const PropertySelection& selection,
                       bool (*isComputed)(std::uint16_t id));

class StoredObject
{
  public:
    StoredObject(std::shared_ptr<StoreSession> session, bool writable)
        : m_session(std::move(session)), m_writable(writable)
    {
    }
    virtual ~StoredObject() = default;
    StoredObject(const StoredObject&) = delete;
    StoredObject& operator=(const StoredObject&) = delete;

    StoreSession& Session() const noexcept { return *m_session; }
    const std::shared_ptr<StoreSession>& SharedSession() const noexcept { return m_session; }
    bool IsWritable() const noexcept { return m_writable; }
    void MakeReadOnly() noexcept { m_writable = false; }

    // All inside Session().Run:

    // The properties of the selection that there are.
    virtual PropertyMap Read(const PropertySelection& selection) = 0;
    // Takes changes over: at once, or until Save, as the kind of object does.
    virtual HRESULT Change(PropertyChanges changes) = 0;
    // Whether the store itself makes that property, so that callers cannot.
    virtual bool IsComputed(std::uint16_t id) const = 0;
    // Makes the changes last.
    virtual HRESULT Save(ULONG flags) = 0;

  private:
    std::shared_ptr<StoreSession> m_session;
    bool m_writable;
};

// An object whose properties no caller changes.
class FixedObject : public StoredObject
{
  public:
    explicit FixedObject(std::shared_ptr<StoreSession> session)
        : StoredObject(std::move(session), false)
    {
    }

    HRESULT Change(PropertyChanges) override { return MAPI_E_NO_ACCESS; }
    HRESULT Save(ULONG) override { return S_OK; }
};

// The bodies of IMAPIProp over an open object. They take the lock.
HRESULT GetObjectProps(
    StoredObject& object, SPropTagArray* tagArray, ULONG flags, ULONG* count, SPropValue** values);
HRESULT GetObjectPropList(StoredObject& object, ULONG flags, SPropTagArray** tags);
HRESULT SetObjectProps(StoredObject& object,
                       ULONG count,
                       const SPropValue* values,
                       SPropProblemArray** problems);
HRESULT DeleteObjectProps(StoredObject& object,
                          const SPropTagArray* tagArray,
                          SPropProblemArray** problems);
HRESULT SaveObject(StoredObject& object, ULONG flags);
HRESULT OpenObjectProperty(const std::shared_ptr<StoredObject>& object,
                           ULONG tag,
                           const IID* iid,
                           ULONG interfaceOptions,
                           ULONG flags,
                           IUnknown** stream);
HRESULT GetObjectNamesFromIds(StoreSession& session,
                              SPropTagArray** tags,
                              const GUID* set,
                              ULONG flags,
                              ULONG* count,
                              MAPINAMEID*** names);
HRESULT GetObjectIdsFromNames(StoreSession& session,
                              bool writable,
                              ULONG count,
                              MAPINAMEID** names,
                              ULONG flags,
                              SPropTagArray** tags);
