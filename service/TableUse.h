// Marks a list of items as in use. A store may show a dialog and an item may be a client's own, and
// either can let another call in: while a list is in use, what would reload or change it fails.
// Moving the cursor stays allowed.
#pragma once

class TableUse
{
  public:
    // uses: how many operations of the list are under way; the list keeps it.
    explicit TableUse(int& uses) noexcept : m_uses(uses) { ++m_uses; }
    ~TableUse() { --m_uses; }
    TableUse(const TableUse&) = delete;
    TableUse& operator=(const TableUse&) = delete;

    bool IsNested() const noexcept { return m_uses > 1; }

  private:
    int& m_uses;
};
