// Base of the library's objects: counts references, writes down QueryInterface and the last
// Release. A released object stays in memory until the store is reset, so that a call on it is a
// line among the violations and no crash.
#pragma once

#include "tests/recordingstore/library/CallText.h"
#include "tests/recordingstore/library/Library.h"

#include <memory>
#include <string>

// What the graveyard needs to know.
class Mortal
{
  public:
    virtual ~Mortal() = default;
};

void Bury(std::unique_ptr<Mortal> object);
void EmptyGraveyard();

// Identities: the interface IDs that the object answers beside IID_IUnknown; all of them are the
// one interface or its ancestors.
template <typename Interface, const IID*... Identities>
class RecordedObject : public Interface, public Mortal
{
  public:
    using RecordedInterface = Interface;

    RecordedObject(const RecordedObject&) = delete;
    RecordedObject& operator=(const RecordedObject&) = delete;

    static bool Answers(REFIID iid) noexcept
    {
        return IsEqualIID(iid, IID_IUnknown) || (IsEqualIID(iid, *Identities) || ...);
    }

    STDMETHODIMP QueryInterface(REFIID iid, LPVOID* object) override
    {
        const StoreFault fault =
            Begin("QueryInterface(" + InterfaceText(&iid) + ")", kStoreQueries);
        return RunCall(
            fault,
            [&](StoreFault) -> HRESULT {
                if (!object)
                    return E_POINTER;
                if (!Answers(iid))
                    return E_NOINTERFACE;
                *object = static_cast<Interface*>(this);
                ++m_references;
                return S_OK;
            },
            object);
    }
    STDMETHODIMP_(ULONG) AddRef() override
    {
        Check("AddRef()");
        return ++m_references;
    }
    STDMETHODIMP_(ULONG) Release() override
    {
        Check("Release()");
        if (m_references == 0)
            return 0;
        if (--m_references > 0)
            return m_references;
        Recorder& recorder = TheLibrary().recorder;
        recorder.Note("release " + m_label.Text(), kStoreReleases);
        recorder.Dead(this);
        Bury(std::unique_ptr<Mortal>(this));
        return 0;
    }

    const std::string& Name() const { return m_label.name; }

  protected:
    RecordedObject(const char* interfaceName, std::string name)
        : m_label{interfaceName, std::move(name)}
    {
        TheLibrary().recorder.Born(this, m_label);
    }

    // Begins a call of this object: method and arguments.
    StoreFault Begin(const std::string& call, StoreCallKind kind = kStoreMethods) const
    {
        const std::string line = m_label.Text() + "." + call;
        if (m_references == 0)
            TheLibrary().recorder.AddViolation("released: " + line);
        return TheLibrary().recorder.Begin(line, kind);
    }
    // The end of a call that the store does not offer.
    HRESULT NotOffered(const char* method) const
    {
        return RunCall(Begin(std::string(method) + "(...)"),
                       [](StoreFault) { return MAPI_E_NO_SUPPORT; });
    }

  private:
    void Check(const char* method) const
    {
        const std::string line = m_label.Text() + "." + method;
        if (m_references == 0)
            TheLibrary().recorder.AddViolation("released: " + line);
        TheLibrary().recorder.CheckTime(line);
    }

    ObjectLabel m_label;
    ULONG m_references = 1;
};

// A new object with its first reference, as outputs give it.
template <typename Object, typename... Arguments> Object* NewObject(Arguments&&... arguments)
{
    return new Object(std::forward<Arguments>(arguments)...);
}
