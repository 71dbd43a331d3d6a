// A contact object of a client's own: tells the calls that it gets, in order, and fails where a
// test says so. What it holds is that of a contact of the server's. Made with new; ends with its
// last reference.
#pragma once

#include "platform/WindowsHeaders.h"
#include "service/ItemAccess.h"
#include "tests/hostileclient/WrongAnswers.h"
#include "tests/support/EarlyBound.h"

#include "PimStoreBridge.h"

#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

// One property with both accessors.
#define PIM_OWN_PROPERTY(name, type)                                                               \
    STDMETHODIMP get_##name(type* value) override                                                  \
    {                                                                                              \
        return Give(value, "get " #name, [&] { return m_inner->get_##name(value); });              \
    }                                                                                              \
    STDMETHODIMP put_##name(type value) override                                                   \
    {                                                                                              \
        return Told("put " #name) ? m_inner->put_##name(value) : E_FAIL;                           \
    }
// The same by a kind, which is told behind the name.
#define PIM_OWN_KINDS(name, kind, type)                                                            \
    STDMETHODIMP get_##name(kind one, type* value) override                                        \
    {                                                                                              \
        const std::string call = WithKind("get " #name, one);                                      \
        return Give(value, call, [&] { return m_inner->get_##name(one, value); });                 \
    }                                                                                              \
    STDMETHODIMP put_##name(kind one, type value) override                                         \
    {                                                                                              \
        return Told(WithKind("put " #name, one)) ? m_inner->put_##name(one, value) : E_FAIL;       \
    }
#define PIM_OWN_ENTITY_PROPERTY(name, type)                                                        \
    STDMETHODIMP get_##name(type* value) override                                                  \
    {                                                                                              \
        return Told("get " #name) ? m_entity->get_##name(value) : E_FAIL;                          \
    }                                                                                              \
    STDMETHODIMP put_##name(type value) override                                                   \
    {                                                                                              \
        return Told("put " #name) ? m_entity->put_##name(value) : E_FAIL;                          \
    }

class OwnContact final : public EarlyBound<INContactItem, INEntityItem>
{
  public:
    static Microsoft::WRL::ComPtr<OwnContact> Make(
        const Microsoft::WRL::ComPtr<INContactItem>& inner)
    {
        Microsoft::WRL::ComPtr<OwnContact> contact;
        *contact.GetAddressOf() = new OwnContact(inner);
        return contact;
    }

    std::vector<std::string> calls;        // "get FirstName", "put PhoneNumber 3"
    std::set<std::string> failing;         // those that give E_FAIL
    std::function<void()> onCall;          // runs inside each call
    SAFEARRAY* emails = nullptr;           // what get_Emails gives in place of the contact's, once
    const WrongAnswers* answers = nullptr; // what the getters give, but for those of INEntityItem

    STDMETHODIMP QueryInterface(REFIID iid, void** result) override
    {
        *result = iid == IID_INEntityItem ? static_cast<void*>(static_cast<INEntityItem*>(this))
                  : iid == IID_IUnknown || iid == IID_IDispatch || iid == IID_INContactItem
                      ? static_cast<INContactItem*>(this)
                      : nullptr;
        if (*result)
            AddRef();
        return *result ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++m_references; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = --m_references;
        if (left == 0)
            delete this;
        return left;
    }

    // clang-format off
    PIM_OWN_PROPERTY(GroupID, BSTR)
    PIM_OWN_PROPERTY(CategoryIDs, SAFEARRAY*)
    PIM_OWN_PROPERTY(FirstName, BSTR)
    PIM_OWN_PROPERTY(LastName, BSTR)
    PIM_OWN_PROPERTY(JobTitle, BSTR)
    PIM_OWN_PROPERTY(CompanyName, BSTR)
    PIM_OWN_PROPERTY(InstantMessagingAddress, BSTR)
    PIM_OWN_PROPERTY(Picture, BSTR)
    PIM_OWN_KINDS(PhoneNumber, _tagNPhoneNumberType, BSTR)
    PIM_OWN_PROPERTY(Website, BSTR)
    PIM_OWN_KINDS(Address, _tagNAddressType, _tagNAddress)
    PIM_OWN_PROPERTY(Notes, BSTR)
    PIM_OWN_PROPERTY(Birthday, DATE)
    PIM_OWN_PROPERTY(Anniversary, DATE)
    PIM_OWN_PROPERTY(Suffix, BSTR)
    PIM_OWN_PROPERTY(PersistentID, BSTR)
    PIM_OWN_PROPERTY(PictureStream, IUnknown*)
    PIM_OWN_PROPERTY(MiddleName, BSTR)
    PIM_OWN_PROPERTY(DisplayName, BSTR)
    PIM_OWN_PROPERTY(ParentFolderID, BSTR)
    PIM_OWN_ENTITY_PROPERTY(EntityID, BSTR)
    PIM_OWN_ENTITY_PROPERTY(LastModificationTime, DATE)
    PIM_OWN_ENTITY_PROPERTY(FolderID, BSTR)
    // clang-format on
    STDMETHODIMP get_Emails(SAFEARRAY** value) override
    {
        return Give(value, "get Emails", [&]() -> HRESULT {
            if (!emails)
                return m_inner->get_Emails(value);
            *value = std::exchange(emails, nullptr);
            return S_OK;
        });
    }
    STDMETHODIMP put_Emails(SAFEARRAY* value) override
    {
        return Told("put Emails") ? m_inner->put_Emails(value) : E_FAIL;
    }
    STDMETHODIMP GetStringByIndex(LONG index, BSTR* text) override
    {
        return Give(text, WithKind("get string", index), [&] {
            return m_inner->GetStringByIndex(index, text);
        });
    }
    STDMETHODIMP SetStringByIndex(LONG, BSTR) override { return E_NOTIMPL; }
    STDMETHODIMP GetPropertyValue(LONG, VARIANT*) override { return E_NOTIMPL; }
    STDMETHODIMP SetPropertyValue(LONG, VARIANT*) override { return E_NOTIMPL; }

  private:
    explicit OwnContact(const Microsoft::WRL::ComPtr<INContactItem>& inner)
        : m_inner(inner), m_entity(QueryItem<INEntityItem>(inner.Get()))
    {
    }
    virtual ~OwnContact() = default;

    // Whether the call goes on.
    bool Told(const std::string& call)
    {
        calls.push_back(call);
        if (onCall)
            onCall();
        return !failing.contains(call);
    }
    // What a getter gives: the wrong answers, or what the inner one reads.
    template <typename Value, typename Read>
    HRESULT Give(Value* value, const std::string& call, Read read)
    {
        if (!Told(call))
            return E_FAIL;
        return answers ? answers->Give(value) : read();
    }
    static std::string WithKind(const std::string& call, int kind)
    {
        return call + ' ' + std::to_string(kind);
    }

    ULONG m_references = 1;
    Microsoft::WRL::ComPtr<INContactItem> m_inner;
    Microsoft::WRL::ComPtr<INEntityItem> m_entity;
};

#undef PIM_OWN_PROPERTY
#undef PIM_OWN_KINDS
#undef PIM_OWN_ENTITY_PROPERTY
