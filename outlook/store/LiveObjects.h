// Who holds objects of a store beyond the provider's life: tables, category lists and the identity
// outlive the service where a client does not release them first. Each enters itself into the
// registry of its provider's helper, and the provider detaches all of them before it releases
// anything of its own; what is detached answers with failures from then on.
// Used on the apartment thread only.
#pragma once

#include <utility>

class LiveObject;

class LiveObjects
{
  public:
    LiveObjects() = default;
    // Nothing may still be entered: DetachAll comes before the end.
    ~LiveObjects() { DetachAll(); }
    LiveObjects(const LiveObjects&) = delete;
    LiveObjects& operator=(const LiveObjects&) = delete;

    // Detaches every object, the oldest first, and forgets it. A release inside may end other
    // objects, or this one's owner may delete it: both are allowed.
    inline void DetachAll() noexcept;

  private:
    friend class LiveObject;
    LiveObject* m_first = nullptr;
    LiveObject* m_last = nullptr;
};

// Base of what enters itself. It leaves by itself with its end.
class LiveObject
{
  public:
    LiveObject(const LiveObject&) = delete;
    LiveObject& operator=(const LiveObject&) = delete;

    // Releases every store object and nulls helper, proxy and container. Called once at most; the
    // object has left the registry by then. Every later operation gives its failure value.
    virtual void Detach() noexcept = 0;

  protected:
    // Without a registry (null) the object is never detached.
    explicit LiveObject(LiveObjects* registry) noexcept : m_registry(registry)
    {
        if (!m_registry)
            return;
        m_previous = std::exchange(m_registry->m_last, this);
        (m_previous ? m_previous->m_next : m_registry->m_first) = this;
    }

    ~LiveObject() { Leave(); }

  private:
    friend class LiveObjects;

    void Leave() noexcept
    {
        if (!m_registry)
            return;
        (m_previous ? m_previous->m_next : m_registry->m_first) = m_next;
        (m_next ? m_next->m_previous : m_registry->m_last) = m_previous;
        m_registry = nullptr;
        m_previous = m_next = nullptr;
    }

    LiveObjects* m_registry;
    LiveObject* m_previous = nullptr;
    LiveObject* m_next = nullptr;
};

inline void LiveObjects::DetachAll() noexcept
{
    while (LiveObject* const object = m_first)
    {
        object->Leave();
        object->Detach();
    }
}
