// Restrictions and sort orders of tables, taken over from the caller's records.
#pragma once

#include "localstore/MapiValues.h"

#include <cstdint>
#include <string>
#include <vector>

class Restriction
{
  public:
    Restriction();
    ~Restriction();
    Restriction(Restriction&&) noexcept;
    Restriction& operator=(Restriction&&) noexcept;

    // Returns: S_OK; MAPI_E_INVALID_PARAMETER for null pointers where there has to be something;
    //          MAPI_E_TOO_COMPLEX for kinds that are not supported (subobjects, regular
    //          expressions, multi-values) and beyond kMaxNodes or kMaxDepth.
    HRESULT Compile(const SRestriction* source);

    // The properties that Matches looks at.
    const std::vector<std::uint16_t>& Ids() const noexcept { return m_ids; }
    bool Matches(const PropertyMap& row) const;

    static constexpr ULONG kMaxNodes = 10000;
    static constexpr int kMaxDepth = 64;

  private:
    struct Node;

    HRESULT Compile(const SRestriction* source, int depth, Node& node);
    HRESULT CompileList(ULONG count, const SRestriction* sources, int depth, Node& node);
    HRESULT CompileValue(ULONG tag, const SPropValue* value, Node& node);
    static bool Matches(const Node& node, const PropertyMap& row);

    std::vector<Node> m_root;
    std::vector<std::uint16_t> m_ids;
    ULONG m_nodes = 0;
};

// The order of two values of one type: below, above or 0. Text without regard to letter case,
// missing values first.
int CompareStored(const PropertyValue* left, const PropertyValue* right);
