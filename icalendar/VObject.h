// The base of every component of an .ics file: a tree of named nodes that reads itself from logical
// lines and writes itself back. Portable.
//
// A component is open from its BEGIN until its END; then it moves into its parent's children. Only
// five component names open anything; the properties of unknown ones reach the component around
// them, and the END of an unknown one closes that component.
// Costs: no operation recurses, so that any depth of nesting is fine; a line costs the same at
// every depth.
// Thread: one tree is used by one thread at a time.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class CVObject
{
  public:
    // The name has static storage; the root's is empty.
    explicit CVObject(const wchar_t* name = L"") noexcept : m_name(name) {}
    // Destroys the open child, then the children in order.
    virtual ~CVObject();
    CVObject(const CVObject&) = delete;
    CVObject& operator=(const CVObject&) = delete;

    // Takes one property; the name holds all parameters. The base ignores it. Returns 1.
    virtual int SetProperty(std::wstring_view name, std::wstring_view value);

    // The component's own property lines, each finished by FormatLine; empty for the base, and a
    // component with an empty text is not written at all.
    virtual std::wstring GetProperties() const;

    // Splits one logical line and routes it. A line that cannot be split is routed with both parts
    // empty.
    void AddLine(std::wstring_view line);

    // Opens a component for BEGIN, closes the deepest open one for END whatever its value says, and
    // gives anything else to the deepest open component.
    // Returns: 0 where a BEGIN names an unknown component or an END finds none open; else 1, also
    // where the memory for a new component ran out.
    int RouteLine(std::wstring_view name, std::wstring_view value);

    // Called once, when the END of this component was read: it takes no further lines from there.
    virtual void Close() noexcept {}

    // Appends this node and its subtree. A node without property lines is left out with everything
    // below it.
    void Serialize(std::wstring& out) const;
    // The same in pieces of whole lines, so that a large tree needs no text of its whole size.
    void SerializePieces(const std::function<void(std::wstring_view piece)>& take) const;

    // Takes the child to the end of the children; null is ignored.
    void AddChild(std::unique_ptr<CVObject> child) noexcept;
    // Takes the child before all others; null is ignored.
    void AddChildInFront(std::unique_ptr<CVObject> child) noexcept;
    // Takes a child out of the children. Null when it is none of them.
    std::unique_ptr<CVObject> RemoveChild(const CVObject* child) noexcept;

    // Appends the closed children in order; this node keeps owning them.
    void GetChildren(std::vector<CVObject*>& list) const;
    std::wstring GetName() const { return m_name; }

    // The same without copies. The siblings of a child follow it in order.
    std::wstring_view Name() const noexcept { return m_name; }
    CVObject* FirstChild() const noexcept { return m_firstChild.get(); }
    CVObject* NextSibling() const noexcept { return m_nextSibling.get(); }

  private:
    void Open(std::unique_ptr<CVObject> (*make)());
    // Puts everything this node owns in front of the list.
    void MoveContentTo(std::unique_ptr<CVObject>& list) noexcept;
    // Puts its closed children in front of the list.
    void MoveChildrenTo(std::unique_ptr<CVObject>& list) noexcept;

    // Few members, since there are several nodes for each event.
    const wchar_t* m_name;
    std::unique_ptr<CVObject> m_firstChild;
    CVObject* m_lastChild = nullptr;
    std::unique_ptr<CVObject> m_nextSibling;
    // Of the node that lines are routed to: the open components below it, the outermost first. Each
    // is the open child of the one before it. Null until the first.
    std::unique_ptr<std::vector<std::unique_ptr<CVObject>>> m_open;
};
