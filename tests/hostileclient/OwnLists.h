// Group and category objects of a client's own, which run an action inside each call. What they
// hold is that of an object of the server's.
#pragma once

#include "hostileclient/WrongAnswers.h"
#include "platform/WindowsHeaders.h"
#include "service/ItemAccess.h"
#include "support/EarlyBound.h"

#include "PimStoreBridge.h"

#include <functional>

// The part that both kinds share. Made with new; ends with its last reference.
template <typename Typed> class OwnListItem : public EarlyBound<Typed, INEntityItem>
{
  public:
    std::function<void()> onCall;
    const WrongAnswers* answers = nullptr; // what the getters give, but for those of INEntityItem

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        *result = nullptr;
        if (iid == IID_INEntityItem)
            *result = static_cast<INEntityItem*>(this);
        else if (iid == IID_IUnknown || iid == __uuidof(Typed))
            *result = static_cast<Typed*>(this);
        else
            return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = --m_references;
        if (left == 0)
            delete this;
        return left;
    }
    STDMETHODIMP get_EntityID(BSTR* value) override { return Entity().get_EntityID(value); }
    STDMETHODIMP put_EntityID(BSTR value) override { return Entity().put_EntityID(value); }
    STDMETHODIMP get_LastModificationTime(DATE* value) override
    {
        return Entity().get_LastModificationTime(value);
    }
    STDMETHODIMP put_LastModificationTime(DATE value) override
    {
        return Entity().put_LastModificationTime(value);
    }
    STDMETHODIMP get_FolderID(BSTR* value) override { return Entity().get_FolderID(value); }
    STDMETHODIMP put_FolderID(BSTR value) override { return Entity().put_FolderID(value); }

  protected:
    explicit OwnListItem(INEntityItem* inner) : m_entity(inner), m_typed(QueryItem<Typed>(inner)) {}
    virtual ~OwnListItem() = default;

    // Runs the action; the call goes on to that object.
    template <typename Target> Target& Told(Target& target)
    {
        if (onCall)
            onCall();
        return target;
    }
    Typed& Inner() { return Told(*m_typed.Get()); }
    // What a getter gives: the wrong answers, or what read gives of the inner object.
    template <typename Value, typename Read> HRESULT Give(Value* value, Read read)
    {
        Typed& inner = Inner();
        return answers ? answers->Give(value) : read(inner);
    }

  private:
    INEntityItem& Entity() { return Told(*m_entity.Get()); }

    ULONG m_references = 0;
    Microsoft::WRL::ComPtr<INEntityItem> m_entity;
    Microsoft::WRL::ComPtr<Typed> m_typed;
};

class OwnGroup final : public OwnListItem<INContactGroup>
{
  public:
    explicit OwnGroup(INEntityItem* inner) : OwnListItem(inner) {}

    STDMETHODIMP get_GroupID(BSTR* value) override
    {
        return Give(value, [&](auto& inner) { return inner.get_GroupID(value); });
    }
    STDMETHODIMP put_GroupID(BSTR value) override { return Inner().put_GroupID(value); }
    STDMETHODIMP get_CategoryIDs(SAFEARRAY** value) override
    {
        return Give(value, [&](auto& inner) { return inner.get_CategoryIDs(value); });
    }
    STDMETHODIMP put_CategoryIDs(SAFEARRAY* value) override
    {
        return Inner().put_CategoryIDs(value);
    }
    STDMETHODIMP get_Name(BSTR* value) override
    {
        return Give(value, [&](auto& inner) { return inner.get_Name(value); });
    }
    STDMETHODIMP put_Name(BSTR value) override { return Inner().put_Name(value); }
    STDMETHODIMP get_Items(LONG subGroups, SAFEARRAY** value) override
    {
        return Give(value, [&](auto& inner) { return inner.get_Items(subGroups, value); });
    }
    STDMETHODIMP put_Items(LONG subGroups, SAFEARRAY* value) override
    {
        return Inner().put_Items(subGroups, value);
    }
};

class OwnCategory final : public OwnListItem<INContactCategory>
{
  public:
    explicit OwnCategory(INEntityItem* inner) : OwnListItem(inner) {}

    STDMETHODIMP get_Name(BSTR* value) override
    {
        return Give(value, [&](auto& inner) { return inner.get_Name(value); });
    }
    STDMETHODIMP put_Name(BSTR value) override { return Inner().put_Name(value); }
    STDMETHODIMP get_Color(LONG* value) override
    {
        return Give(value, [&](auto& inner) { return inner.get_Color(value); });
    }
    STDMETHODIMP put_Color(LONG value) override { return Inner().put_Color(value); }
    STDMETHODIMP get_Items(SAFEARRAY** value) override
    {
        return Give(value, [&](auto& inner) { return inner.get_Items(value); });
    }
    STDMETHODIMP put_Items(SAFEARRAY* value) override { return Inner().put_Items(value); }
};
