// A fixed number of optional values, texts and plain records, in one small block of memory. For
// objects that exist in large numbers and are rarely asked for what they hold. Portable.
//
// A text takes one byte for each UTF-16 code unit where all of them are below 256, else two; a
// record leaves its zeros out (platform/SparseBytes.h); a value that was set to the same text as
// another refers to that one. Each value has one byte in front, more where it is long. Without any
// value there is no block.
//
// Costs: reading a value costs its length. Setting one makes the block anew and costs the length of
// all; whoever has many to set, and sets them repeatedly, gathers them and assigns them together.
#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <string>
#include <string_view>

// A value in a block or on its way into one: a view of what it was made of.
class CompactValue
{
  public:
    // No value.
    CompactValue() noexcept = default;
    // Embedded zeros included. Of each element the lower 16 bits count.
    static CompactValue OfText(std::wstring_view text) noexcept;
    static CompactValue OfRecord(std::span<const unsigned char> bytes) noexcept;

    bool IsAny() const noexcept { return m_kind != Kind::None; }

    // Of a text in a block: its length in UTF-16 code units, and the units themselves. Nothing else
    // but no value has an empty text.
    std::size_t TextLength() const noexcept;
    void CopyText(wchar_t* to) const noexcept;
    std::wstring Text() const;

    // Of a record in a block: fills all of the bytes, those beyond the record's own with zeros.
    void CopyRecord(std::span<unsigned char> to) const noexcept;

  private:
    friend class CompactBlock;

    // How it stands in a block.
    enum class Kind : unsigned char
    {
        None,
        Bytes, // a text's units of one byte each, or a packed record
        Units, // two bytes each, the lower one first
        Same,  // nothing of its own: as the earlier value whose position stands for the size
    };
    enum class Source : unsigned char
    {
        Block,
        Text,
        Record,
    };

    bool IsSameText(const CompactValue& stored) const noexcept;
    // Writes m_size bytes.
    void Write(unsigned char* to) const noexcept;
    void WriteText(unsigned char* to) const noexcept;

    Kind m_kind = Kind::None;
    Source m_source = Source::Block;
    std::size_t m_size = 0; // in a block, in bytes
    std::wstring_view m_text;
    std::span<const unsigned char> m_bytes; // in a block, or the record
};

// The block, for any number of values; always used with the same number.
class CompactBlock
{
  public:
    // Fills all values; views that are good until the next change.
    void Read(std::span<CompactValue> values) const noexcept;
    // Replaces all values; they may be views of this block. Throws std::bad_alloc; nothing has
    // changed then.
    void Assign(std::span<const CompactValue> values);
    // Whether there is any value.
    bool IsAny() const noexcept { return m_bytes != nullptr; }
    // What stands for this value in a block with the others: itself or an equal text.
    static CompactValue Shared(const CompactValue& value,
                               std::span<const CompactValue> others) noexcept;

  private:
    static std::size_t HeadOf(std::span<const CompactValue> values, std::size_t index) noexcept;

    std::unique_ptr<unsigned char[]> m_bytes;
};

template <std::size_t kCount> class CompactFields
{
  public:
    using Values = std::array<CompactValue, kCount>;

    // Views that are good until the next change.
    Values All() const noexcept
    {
        Values values;
        m_block.Read(values);
        return values;
    }
    CompactValue Get(std::size_t index) const noexcept { return All()[index]; }
    // Whether there is any value.
    bool IsAny() const noexcept { return m_block.IsAny(); }

    // Replaces one value. Throws std::bad_alloc; nothing has changed then.
    void Set(std::size_t index, const CompactValue& value)
    {
        Values values = All();
        values[index] = CompactBlock::Shared(value, values);
        m_block.Assign(values);
    }

    // Replaces all values. Throws std::bad_alloc; nothing has changed then.
    void Assign(const Values& values) { m_block.Assign(values); }

  private:
    CompactBlock m_block;
};
