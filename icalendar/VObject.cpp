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
    return std::make_unique<T>();
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
    MoveChildrenTo(list);
    if (!m_open)
        return;
    for (const auto& open : *m_open)
        open->MoveChildrenTo(list);
    for (; !m_open->empty(); m_open->pop_back())
    {
        m_open->back()->m_nextSibling = std::move(list);
        list = std::move(m_open->back());
    }
}

void CVObject::MoveChildrenTo(std::unique_ptr<CVObject>& list) noexcept
{
    if (!m_firstChild)
        return;
    m_lastChild->m_nextSibling = std::move(list);
    list = std::move(m_firstChild);
    m_lastChild = nullptr;
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
    const bool anyOpen = m_open && !m_open->empty();
    if (name == L"BEGIN")
    {
        for (const ComponentRow& row : kComponents)
        {
            if (value == row.name)
            {
                Open(row.make);
                return 1;
            }
        }
        return 0;
    }
    // Kept as it is: the name behind END is not looked at, so that the end of an unknown component
    // closes the known one around it. Pinned by
    // VObjectTest.TheEndOfAnUnknownComponentClosesTheOneAroundIt.
    if (name == L"END")
    {
        if (!anyOpen)
            return 0;
        std::unique_ptr<CVObject> closed = std::move(m_open->back());
        m_open->pop_back();
        closed->Close();
        CVObject& parent = m_open->empty() ? *this : *m_open->back();
        parent.AddChild(std::move(closed));
        return 1;
    }
    CVObject& deepest = anyOpen ? *m_open->back() : *this;
    return deepest.SetProperty(name, value);
}

// Nothing is opened where memory is exhausted.
void CVObject::Open(std::unique_ptr<CVObject> (*make)())
try
{
    if (!m_open)
        m_open = std::make_unique<std::vector<std::unique_ptr<CVObject>>>();
    m_open->push_back(make());
}
catch (const std::bad_alloc&)
{
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
