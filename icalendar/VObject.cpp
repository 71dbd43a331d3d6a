#include "icalendar/VObject.h"

#include "icalendar/LineText.h"
#include "icalendar/VAlarm.h"
#include "icalendar/VCalendar.h"
#include "icalendar/VEvent.h"
#include "icalendar/VStandard.h"
#include "icalendar/VTimeZone.h"

#include <new>
#include <utility>

namespace
{

template <typename T> std::unique_ptr<CVObject> Make()
{
    return std::unique_ptr<CVObject>(new (std::nothrow) T);
}

struct ComponentRow
{
    std::wstring_view name;
    std::unique_ptr<CVObject> (*make)();
};

// clang-format off
constexpr ComponentRow kComponents[] = {
    {L"VCALENDAR", Make<CVCalendar>},
    {L"VTIMEZONE", Make<CVTimeZone>},
    {L"STANDARD",  Make<CVStandard>},
    {L"VALARM",    Make<CVAlarm>},
    {L"VEVENT",    Make<CVEvent>},
};
// clang-format on

} // namespace

CVObject::~CVObject()
{
    std::unique_ptr<CVObject> list;
    MoveContentTo(list);
    while (list)
    {
        // Each node is emptied before it goes, so that its own destructor finds nothing below it.
        std::unique_ptr<CVObject> node = std::move(list);
        list = std::move(node->m_nextSibling);
        node->MoveContentTo(list);
    }
}

void CVObject::MoveContentTo(std::unique_ptr<CVObject>& list) noexcept
{
    if (m_firstChild)
    {
        m_lastChild->m_nextSibling = std::move(list);
        list = std::move(m_firstChild);
        m_lastChild = nullptr;
    }
    if (m_openChild)
    {
        m_openChild->m_nextSibling = std::move(list);
        list = std::move(m_openChild);
    }
}

int CVObject::SetProperty(std::wstring_view, std::wstring_view)
{
    return 1;
}

std::wstring CVObject::GetProperties() const
{
    return {};
}

void CVObject::AddLine(std::wstring_view line)
{
    std::wstring_view name;
    std::wstring_view value;
    SplitLine(line, name, value);
    RouteLine(name, value);
}

int CVObject::RouteLine(std::wstring_view name, std::wstring_view value)
{
    CVObject* deepest = m_deepestOpen ? m_deepestOpen : this;
    if (name == L"BEGIN")
    {
        for (const ComponentRow& row : kComponents)
        {
            if (value != row.name)
                continue;
            deepest->m_openChild = row.make();
            if (deepest->m_openChild)
            {
                deepest->m_openChild->m_openParent = deepest;
                m_deepestOpen = deepest->m_openChild.get();
            }
            return 1;
        }
        return 0;
    }
    if (name == L"END")
    {
        if (deepest == this)
            return 0;
        CVObject* parent = std::exchange(deepest->m_openParent, nullptr);
        parent->AddChild(std::move(parent->m_openChild));
        m_deepestOpen = parent == this ? nullptr : parent;
        return 1;
    }
    return deepest->SetProperty(name, value);
}

void CVObject::Serialize(std::wstring& out) const
{
    SerializePieces([&out](std::wstring_view piece) { out += piece; });
}

void CVObject::SerializePieces(const std::function<void(std::wstring_view piece)>& take) const
{
    constexpr std::size_t kPieceLength = 32 * 1024;
    std::wstring piece;
    const auto begin = [&piece](const CVObject& node) {
        const std::wstring properties = node.GetProperties();
        if (properties.empty())
            return false;
        AppendLine(piece, L"BEGIN", node.m_name);
        piece += properties;
        return true;
    };

    if (!begin(*this))
        return;
    std::vector<const CVObject*> open{this};
    const CVObject* next = FirstChild();
    while (!open.empty())
    {
        if (piece.size() >= kPieceLength)
        {
            take(piece);
            piece.clear();
        }
        if (!next)
        {
            const CVObject* done = open.back();
            open.pop_back();
            AppendLine(piece, L"END", done->m_name);
            next = done->NextSibling();
        }
        else if (begin(*next))
        {
            open.push_back(next);
            next = next->FirstChild();
        }
        else
        {
            next = next->NextSibling();
        }
    }
    take(piece);
}

void CVObject::AddChild(std::unique_ptr<CVObject> child) noexcept
{
    if (!child)
        return;
    CVObject* added = child.get();
    if (m_lastChild)
        m_lastChild->m_nextSibling = std::move(child);
    else
        m_firstChild = std::move(child);
    m_lastChild = added;
}

void CVObject::AddChildInFront(std::unique_ptr<CVObject> child) noexcept
{
    if (!child)
        return;
    if (!m_lastChild)
        m_lastChild = child.get();
    child->m_nextSibling = std::move(m_firstChild);
    m_firstChild = std::move(child);
}

std::unique_ptr<CVObject> CVObject::RemoveChild(const CVObject* child) noexcept
{
    CVObject* previous = nullptr;
    std::unique_ptr<CVObject>* link = &m_firstChild;
    while (*link && link->get() != child)
    {
        previous = link->get();
        link = &previous->m_nextSibling;
    }
    std::unique_ptr<CVObject> removed = std::move(*link);
    if (!removed)
        return removed;
    *link = std::move(removed->m_nextSibling);
    if (m_lastChild == removed.get())
        m_lastChild = previous;
    return removed;
}

void CVObject::GetChildren(std::vector<CVObject*>& list) const
{
    for (CVObject* child = FirstChild(); child; child = child->NextSibling())
        list.push_back(child);
}
