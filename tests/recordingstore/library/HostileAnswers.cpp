#include "tests/recordingstore/library/HostileAnswers.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace
{
constexpr ULONG kHugeCount = 1u << 20;
constexpr ULONG kPretendedCount = 64;

// Gives further blocks; those of the huge values are one for all of them.
class Blocks
{
  public:
    explicit Blocks(const Allocator& allocate) : m_allocate(allocate) {}

    template <typename T> T* New(std::size_t count)
    {
        return static_cast<T*>(m_allocate(count * sizeof(T)));
    }
    wchar_t* Text(std::wstring_view text)
    {
        wchar_t* const copy = New<wchar_t>(text.size() + 1);
        std::ranges::copy(text, copy);
        return copy;
    }
    char* NarrowText(std::string_view text)
    {
        char* const copy = New<char>(text.size() + 1);
        std::ranges::copy(text, copy);
        return copy;
    }
    // 1 MiB UTF-16 units with their terminator, or twice as many bytes.
    wchar_t* Huge()
    {
        if (!m_huge)
        {
            m_huge = New<wchar_t>(kHugeCount + 1);
            std::fill_n(m_huge, kHugeCount, L'x');
        }
        return m_huge;
    }
    char* NarrowHuge()
    {
        if (!m_narrowHuge)
        {
            m_narrowHuge = New<char>(kHugeCount + 1);
            std::fill_n(m_narrowHuge, kHugeCount, 'x');
        }
        return m_narrowHuge;
    }

  private:
    const Allocator& m_allocate;
    wchar_t* m_huge = nullptr;
    char* m_narrowHuge = nullptr;
};

bool IsCounted(ULONG type)
{
    return type == PT_BINARY || (type & MV_FLAG);
}
bool IsPointer(ULONG type)
{
    return type == PT_UNICODE || type == PT_STRING8 || type == PT_CLSID;
}

// One value in that type; its tag is to be set where the type stays.
using Spoil = void (*)(ULONG type, Blocks& blocks, SPropValue& value);

void MakeError(ULONG, Blocks&, SPropValue& value)
{
    value.ulPropTag = CHANGE_PROP_TYPE(value.ulPropTag, PT_ERROR);
    value.Value.err = MAPI_E_CALL_FAILED;
}

void MakeOtherType(ULONG type, Blocks& blocks, SPropValue& value)
{
    ULONG other = PT_UNICODE;
    switch (type)
    {
    case PT_UNICODE:
        other = PT_STRING8;
        value.Value.lpszA = blocks.NarrowText("other");
        break;
    case PT_SYSTIME:
        other = PT_APPTIME;
        value.Value.at = std::numeric_limits<double>::quiet_NaN();
        break;
    case PT_LONG:
    case PT_BOOLEAN:
        other = PT_DOUBLE;
        value.Value.dbl = std::numeric_limits<double>::quiet_NaN();
        break;
    default:
        value.Value.lpszW = blocks.Text(L"other");
    }
    value.ulPropTag = CHANGE_PROP_TYPE(value.ulPropTag, other);
}

void MakeNullPointer(ULONG type, Blocks&, SPropValue& value)
{
    // The count of an array stands where that of a binary does.
    if (IsCounted(type))
        value.Value.bin = {kPretendedCount, nullptr};
    else if (IsPointer(type))
        value.Value.lpszW = nullptr;
}

void MakeNullElements(ULONG type, Blocks& blocks, SPropValue& value)
{
    value.ulPropTag = CHANGE_PROP_TYPE(value.ulPropTag, type | MV_FLAG);
    if ((type & ~MV_FLAG) == PT_BINARY)
    {
        SBinary* const elements = blocks.New<SBinary>(2);
        elements[0].cb = elements[1].cb = kPretendedCount;
        value.Value.MVbin = {2, elements};
    }
    else
        value.Value.MVszW = {2, blocks.New<wchar_t*>(2)};
}

void MakeEmpty(ULONG type, Blocks& blocks, SPropValue& value)
{
    if (IsPointer(type))
        value.Value.lpszW = blocks.Text({});
    else
        value.Value.bin = {};
}

void MakeHuge(ULONG type, Blocks& blocks, SPropValue& value)
{
    std::memset(&value.Value, 0xFF, sizeof value.Value);
    switch (type)
    {
    case PT_UNICODE:
        value.Value.lpszW = blocks.Huge();
        break;
    case PT_STRING8:
        value.Value.lpszA = blocks.NarrowHuge();
        break;
    case PT_BINARY:
        value.Value.bin = {kHugeCount, reinterpret_cast<BYTE*>(blocks.Huge())};
        break;
    case PT_MV_UNICODE: {
        wchar_t** const elements = blocks.New<wchar_t*>(1);
        elements[0] = blocks.Huge();
        value.Value.MVszW = {1, elements};
        break;
    }
    case PT_MV_BINARY: {
        SBinary* const elements = blocks.New<SBinary>(1);
        elements[0] = {kHugeCount, reinterpret_cast<BYTE*>(blocks.Huge())};
        value.Value.MVbin = {1, elements};
        break;
    }
    default:
        if (IsCounted(type) || IsPointer(type))
            value.Value.bin = {};
    }
}

void MakeOdd(ULONG type, Blocks& blocks, SPropValue& value)
{
    static constexpr wchar_t kText[] = {0xDC00, 1, 0xFFFF, L'"', L'<', 0xD800, 0};
    const std::uint64_t lowest = 0x8000000080000000;
    std::memcpy(&value.Value, &lowest, sizeof lowest);
    switch (type)
    {
    case PT_UNICODE:
        value.Value.lpszW = blocks.Text(kText);
        break;
    case PT_STRING8:
        value.Value.lpszA = blocks.NarrowText("\x01\xFF\xFE");
        break;
    case PT_BINARY:
        value.Value.bin = {1, blocks.New<BYTE>(1)};
        break;
    case PT_MV_UNICODE: {
        wchar_t** const elements = blocks.New<wchar_t*>(2);
        elements[0] = blocks.Text(kText);
        elements[1] = blocks.Text({});
        value.Value.MVszW = {2, elements};
        break;
    }
    case PT_MV_BINARY: {
        SBinary* const elements = blocks.New<SBinary>(2);
        elements[0] = {1, blocks.New<BYTE>(1)};
        value.Value.MVbin = {2, elements};
        break;
    }
    case PT_BOOLEAN:
        value.Value.b = 0x7FFF;
        break;
    default:
        if (IsCounted(type) || IsPointer(type))
            value.Value.bin = {};
    }
}

struct ValueAnswer
{
    StoreFault answer;
    Spoil spoil;
};

constexpr ValueAnswer kValueAnswers[] = {
    {StoreFault::AllErrors, MakeError},
    {StoreFault::OtherTypes, MakeOtherType},
    {StoreFault::NullPointers, MakeNullPointer},
    {StoreFault::NullElements, MakeNullElements},
    {StoreFault::EmptyValues, MakeEmpty},
    {StoreFault::HugeValues, MakeHuge},
    {StoreFault::OddValues, MakeOdd},
};

// The type that was asked for, else the one that was delivered.
ULONG TypeOf(ULONG tag, const SPropValue& value)
{
    const ULONG type = PROP_TYPE(tag) & ~MV_INSTANCE;
    return type == PT_UNSPECIFIED || type == PT_ERROR ? PROP_TYPE(value.ulPropTag) : type;
}

// Frees a buffer that the caller never gets to see.
void FreeUnseen(void* buffer)
{
    TheLibrary().memory.Free(buffer);
}
} // namespace

void CountSpoiled()
{
    ++TheLibrary().recorder.spoiledOutputs;
}

void SpoilWanted(StoreFault answer, std::vector<ULONG>& tags)
{
    if (answer == StoreFault::LongerArrays && !tags.empty())
        tags.push_back(tags.front());
}

void SpoilValues(StoreFault answer,
                 const std::vector<ULONG>& tags,
                 const Allocator& allocate,
                 SPropValue* values)
{
    if (answer == StoreFault::Reversed)
    {
        CountSpoiled();
        std::reverse(values, values + tags.size());
    }
    Blocks blocks(allocate);
    for (const ValueAnswer& row : kValueAnswers)
    {
        if (row.answer != answer)
            continue;
        CountSpoiled();
        for (std::size_t i = 0; i < tags.size(); ++i)
        {
            const ULONG type = TypeOf(tags[i], values[i]);
            values[i].ulPropTag = CHANGE_PROP_TYPE(values[i].ulPropTag, type);
            row.spoil(type, blocks, values[i]);
        }
    }
}

void SpoilArray(StoreFault answer, ULONG& count, SPropValue*& values)
{
    if (answer == StoreFault::LongerArrays)
        CountSpoiled(); // see SpoilWanted
    if (answer == StoreFault::ZeroCounts)
    {
        CountSpoiled();
        count = 0;
    }
    if (answer == StoreFault::NullArrays)
    {
        CountSpoiled();
        FreeUnseen(values);
        values = nullptr;
    }
}

void SpoilNames(StoreFault answer, std::vector<ULONG>& tags)
{
    const auto before = tags;
    if (answer == StoreFault::ZeroCounts)
        tags.clear();
    for (std::size_t i = 0; i < tags.size(); ++i)
    {
        if (answer == StoreFault::FixedNames) // from PR_MESSAGE_CLASS up
            tags[i] = PROP_TAG(PT_UNSPECIFIED, 0x001A + i);
        if (answer == StoreFault::OneName)
            tags[i] = PROP_TAG(PT_UNSPECIFIED, kFirstNamedId);
        if (answer == StoreFault::ListedNames)
            tags[i] = CHANGE_PROP_TYPE(tags[i], PT_MV_LONG);
        if (answer == StoreFault::AllErrors)
            tags[i] = CHANGE_PROP_TYPE(tags[i], PT_ERROR);
    }
    SpoilWanted(answer, tags);
    if (before != tags || answer == StoreFault::OneName)
        CountSpoiled();
}

void SpoilEntryId(StoreFault answer, ULONG& size, ENTRYID*& entryId)
{
    switch (answer)
    {
    case StoreFault::NullArrays:
        FreeUnseen(entryId);
        entryId = nullptr;
        break;
    case StoreFault::ZeroCounts:
        size = 0;
        break;
    case StoreFault::HugeArrays:
        FreeUnseen(entryId);
        entryId = static_cast<ENTRYID*>(TheLibrary().memory.Allocate(kHugeCount, "huge entry ID"));
        size = kHugeCount;
        break;
    default:
        return;
    }
    CountSpoiled();
}

void SpoilProblems(StoreFault answer, SPropProblemArray** problems)
{
    if (answer != StoreFault::WildNumbers)
        return;
    CountSpoiled();
    if (!problems)
        return;
    FreeUnseen(*problems);
    *problems = static_cast<SPropProblemArray*>(
        TheLibrary().memory.Allocate(sizeof(SPropProblemArray), "wild problems"));
    **problems = {1, {{0xFFFFFFFF, 0xFFFFFFFF, MAPI_E_CALL_FAILED}}};
}

void SpoilNumber(StoreFault answer, ULONG* number)
{
    if (answer != StoreFault::WildNumbers)
        return;
    CountSpoiled();
    if (number)
        *number = 0xFFFFFFFF;
}

StoreFault MannerOf(StoreFault answer)
{
    switch (answer)
    {
    case StoreFault::EndlessStream:
    case StoreFault::TricklingStream:
    case StoreFault::BreakingStream:
    case StoreFault::EmptyStream:
        CountSpoiled();
        return answer;
    default:
        return StoreFault::None;
    }
}
