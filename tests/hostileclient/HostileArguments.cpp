#include "hostileclient/HostileArguments.h"

#include <cstring>
#include <limits>

namespace
{
constexpr LONG kLeast = std::numeric_limits<LONG>::min();
constexpr LONG kMost = std::numeric_limits<LONG>::max();
// "Comp" and "Birt": indexes that the contact object knows, in either of its lists.
constexpr LONG kNumbers[] = {0, 1, -1, 12, 13, kLeast, kMost, 0x436F6D70, 0x42697274};

HostileValue Whole(std::string name, LONGLONG number)
{
    HostileValue value{std::move(name), {}, false};
    value.slot.vt = VT_I8;
    value.slot.llVal = number;
    return value;
}

HostileValue Time(DATE time)
{
    HostileValue value{"time " + std::to_string(time), {}, false};
    value.slot.vt = VT_R8;
    value.slot.dblVal = time;
    return value;
}

SAFEARRAY* NewArray(VARTYPE type, std::vector<SAFEARRAYBOUND> bounds)
{
    return SafeArrayCreate(type, static_cast<UINT>(bounds.size()), bounds.data());
}

// An array's descriptor alone, whose memory its maker promised and never gave.
SAFEARRAY* NewArrayWithoutData(VARTYPE type, ULONG count)
{
    SAFEARRAY* array = nullptr;
    SafeArrayAllocDescriptorEx(type, 1, &array);
    array->rgsabound[0] = {count, 0};
    return array;
}

void EndArrayWithoutData(SAFEARRAY* array)
{
    array->cDims = 1;
    array->rgsabound[0].cElements = 0;
    SafeArrayDestroyDescriptor(array);
}

void EndLockedArray(SAFEARRAY* array)
{
    SafeArrayUnlock(array);
    SafeArrayDestroy(array);
}
} // namespace

HostileArguments::HostileArguments(Callee callee)
    : m_times{std::numeric_limits<DATE>::quiet_NaN(),
              std::numeric_limits<DATE>::infinity(),
              -std::numeric_limits<DATE>::infinity(),
              std::numeric_limits<DATE>::max(),
              std::numeric_limits<DATE>::denorm_min(),
              -0.0,
              -657435.0, // the day before the first that the system converts
              2958466.0, // the day behind the last one
              45292.5},
      // A class that none is; one that the server has.
      m_guids{GUID_NULL, IID_IUnknown, CLSID_NContactItem}
{
    MakeTexts();
    for (const auto text : {HostileItem::Text::Fails,
                            HostileItem::Text::GivesNull,
                            HostileItem::Text::Untouched,
                            HostileItem::Text::OddBytes,
                            HostileItem::Text::Long})
        m_ownItems.push_back(std::make_unique<HostileItem>(HostileItem::Query::GivesEntity, text));
    m_ownItems.push_back(
        std::make_unique<HostileItem>(HostileItem::Query::Refuses, HostileItem::Text::Fails));
    if (callee == Callee::InThisProcess)
        m_ownItems.push_back(
            std::make_unique<HostileItem>(HostileItem::Query::GivesNull, HostileItem::Text::Fails));
    for (const auto& item : m_ownItems)
        AddItem("own item " + std::to_string(m_items.size()), item.get());
    MakeArrays();
    if (callee == Callee::InThisProcess)
        MakeBrokenArrays();
    MakeRecords();
    MakeVariants();
    if (callee == Callee::InAnotherProcess)
        std::erase_if(m_variants, [](const VARIANT& variant) {
            return variant.vt == VT_RECORD || variant.vt == 0xFFFF || (variant.vt & VT_BYREF);
        });
}

HostileArguments::~HostileArguments()
{
    for (const Array& array : m_arrays)
        array.end(array.value);
}

HostileValue HostileArguments::Pointer(std::string name, const void* pointer)
{
    HostileValue value = Whole(std::move(name), reinterpret_cast<LONGLONG>(pointer));
    value.isNull = !pointer;
    return value;
}

void HostileArguments::AddItem(const std::string& name, IUnknown* item)
{
    m_items.push_back({name, item});
}

void HostileArguments::MakeTexts()
{
    m_texts.push_back({"empty text", Bstr(L"")});
    m_texts.push_back({"odd bytes", Bstr::Adopt(SysAllocStringByteLen("odd", 3))});
    m_texts.push_back({"zeros inside", Bstr(std::wstring_view(L"\0a\0b", 4))});
    m_texts.push_back({"half a character", Bstr(std::wstring(1, L'\xDC00') + L'\xD800')});
    m_texts.push_back({"a format", Bstr(L"%s%n%p%99999999d")});
    m_texts.push_back({"an unknown ID", Bstr(std::wstring(48, L'F'))});
    m_texts.push_back({"half a byte", Bstr(L"ABC")});
    m_texts.push_back({"a path", Bstr(L"\\\\?\\C:\\..\\..\\nul:*?\"<>|")});
    m_texts.push_back({"long text", Bstr(std::wstring(100'000, L'7'))});
}

void HostileArguments::MakeArrays()
{
    const auto add = [this](const char* name, SAFEARRAY* array) {
        m_arrays.push_back({name, array, &SafeArrayPolicy::Close});
        return array;
    };
    add("no elements", NewArray(VT_BSTR, {{0, 0}}));
    {
        const SafeArrayAccess<BSTR> texts(add("null texts", NewArray(VT_BSTR, {{3, 0}})));
        texts.Data()[1] = SysAllocStringByteLen("odd", 3);
    }
    add("two dimensions", NewArray(VT_BSTR, {{3, 0}, {2, 0}}));
    add("ten dimensions", NewArray(VT_BSTR, std::vector<SAFEARRAYBOUND>(10, {1, 0})));
    add("negative bound", NewArray(VT_BSTR, {{3, -5}}));
    add("least bound", NewArray(VT_BSTR, {{3, kLeast}}));
    add("bound that overflows", NewArray(VT_BSTR, {{3, kMost}}));
    add("numbers", NewArray(VT_I4, {{5, 0}}));
    add("one odd byte", NewArray(VT_UI1, {{1, 0}}));
    add("times", NewArray(VT_DATE, {{5, 0}}));
    {
        const SafeArrayAccess<VARIANT> values(add("variants", NewArray(VT_VARIANT, {{2, 0}})));
        values.Data()[0].vt = VT_ARRAY | VT_BSTR;
        values.Data()[0].parray = NewArray(VT_BSTR, {{1, 0}});
    }
    if (!m_items.empty())
    {
        const SafeArrayAccess<IUnknown*> objects(add("objects", NewArray(VT_UNKNOWN, {{2, 0}})));
        objects.Data()[0] = m_ownItems.front().get();
        m_ownItems.front()->AddRef();
    }
    SAFEARRAY* const locked = NewArray(VT_BSTR, {{2, 0}});
    SafeArrayLock(locked);
    m_arrays.push_back({"locked", locked, &EndLockedArray});
}

void HostileArguments::MakeBrokenArrays()
{
    const auto add = [this](const char* name, SAFEARRAY* array) {
        m_arrays.push_back({name, array, &EndArrayWithoutData});
        return array;
    };
    add("without memory", NewArrayWithoutData(VT_BSTR, 5));
    add("without memory for very many", NewArrayWithoutData(VT_BSTR, 0xFFFFFFFF));
    add("records of no kind", NewArrayWithoutData(VT_RECORD, 2));
    add("no dimension", NewArrayWithoutData(VT_BSTR, 5))->cDims = 0;
}

void HostileArguments::MakeRecords()
{
    const auto add = [this](BYTE filling) -> _tagRecurringInfo& {
        m_records.push_back(std::make_unique<_tagRecurringInfo>());
        std::memset(m_records.back().get(), filling, sizeof(_tagRecurringInfo));
        return *m_records.back();
    };
    // All bits set are a NaN in every time, and counts and types that none are.
    add(0);
    add(0xFF);
    for (const auto type : {Daily, Weekly, Monthly, Yearly})
    {
        add(0xFF).eRecurType = type;
        for (const DATE time : m_times)
        {
            _tagRecurringInfo& record = add(0);
            record.eRecurType = type;
            record.tEndInfo = {EndByDate, time, kMost};
            record.tMonthly.lNth = record.tYearly.lNth = kLeast;
            record.tYearly.lMonth = kMost;
            for (DATE& deleted : record.arrDeletedInstance)
                deleted = time;
            for (_tagModifiedInstanceInfo& instance : record.arrModifiedInstance)
            {
                instance = {time, time, time, time, {}, {}};
                // Texts that fill their room, with no zero at their end.
                std::fill(std::begin(instance.szSubject), std::end(instance.szSubject), 'x');
                std::fill(std::begin(instance.szLocation), std::end(instance.szLocation), 'y');
            }
        }
    }
    m_addresses.push_back({});
    // The texts stay this object's: the callee copies what it is given by value.
    const BSTR odd = m_texts[1].value.Get();
    const BSTR longText = m_texts.back().value.Get();
    m_addresses.push_back({odd, nullptr, longText, odd, nullptr, longText});
}

void HostileArguments::MakeVariants()
{
    for (const int type : {int{VT_EMPTY},
                           int{VT_NULL},
                           int{VT_BSTR},
                           int{VT_I4},
                           int{VT_UNKNOWN},
                           int{VT_RECORD},
                           VT_ARRAY | VT_DATE,
                           VT_BYREF | VT_DATE,
                           VT_BYREF | VT_VARIANT,
                           0xFFFF})
    {
        m_variants.emplace_back();
        m_variants.back().vt = static_cast<VARTYPE>(type);
    }
    for (const DATE time : m_times)
    {
        m_variants.emplace_back();
        m_variants.back().vt = VT_DATE;
        m_variants.back().date = time;
    }
}

std::vector<HostileValue> HostileArguments::For(const ParameterType& parameter,
                                                std::size_t position)
{
    std::vector<HostileValue> values;
    if (parameter.isOut)
    {
        values.push_back(Pointer("output", m_outputs.at(position).bytes.data()));
        values.push_back(Pointer("null output", nullptr));
        return values;
    }
    return InValues(parameter);
}

std::vector<HostileValue> HostileArguments::InValues(const ParameterType& parameter)
{
    std::vector<HostileValue> values;
    const bool isPlain = parameter.pointers == 0;
    if (parameter.type == VT_BSTR && isPlain)
    {
        values.push_back(Pointer("null text", nullptr));
        for (const Text& text : m_texts)
            values.push_back(Pointer(text.name, text.value.Get()));
    }
    else if (parameter.type == VT_SAFEARRAY && isPlain)
    {
        values.push_back(Pointer("null array", nullptr));
        for (const Array& array : m_arrays)
            values.push_back(Pointer("array: " + array.name, array.value));
    }
    else if (parameter.type == VT_UNKNOWN && isPlain)
    {
        values.push_back(Pointer("null object", nullptr));
        for (const Item& item : m_items)
            values.push_back(Pointer(item.name, item.value));
    }
    else if (parameter.type == VT_VARIANT && parameter.pointers == 1)
    {
        values.push_back(Pointer("null variant", nullptr));
        for (const VARIANT& variant : m_variants)
            values.push_back(Pointer("variant " + std::to_string(variant.vt), &variant));
    }
    else if (parameter.type == VT_RECORD)
        values = Records(parameter);
    else if (parameter.type == VT_DATE && isPlain)
        for (const DATE time : m_times)
            values.push_back(Time(time));
    else if ((parameter.type == VT_I4 || parameter.type == VT_UI4 || parameter.type == VT_BOOL) &&
             isPlain)
        for (const LONG number : kNumbers)
            values.push_back(Whole("number " + std::to_string(number), number));
    return values;
}

// A record of more than eight bytes goes by value as a pointer to a copy, as the platform's calling
// convention has it.
std::vector<HostileValue> HostileArguments::Records(const ParameterType& parameter)
{
    std::vector<HostileValue> values;
    if (parameter.recordName == "_tagRecurringInfo" && parameter.pointers == 1)
    {
        values.push_back(Pointer("null record", nullptr));
        for (const auto& record : m_records)
            values.push_back(Pointer("record " + std::to_string(values.size()), record.get()));
    }
    else if (parameter.recordName == "_tagNAddress" && parameter.pointers == 0)
        for (const _tagNAddress& address : m_addresses)
            values.push_back(Pointer("address", &address));
    else if (parameter.recordName == "GUID" && parameter.pointers == 0)
        for (const GUID& guid : m_guids)
            values.push_back(Pointer("class " + std::to_string(values.size()), &guid));
    return values;
}

void HostileArguments::ClearOutput(const ParameterType& parameter, std::size_t position)
{
    BYTE* const bytes = m_outputs.at(position).bytes.data();
    if (parameter.type == VT_BSTR)
        SysFreeString(*reinterpret_cast<BSTR*>(bytes));
    else if (parameter.type == VT_SAFEARRAY)
        SafeArrayDestroy(*reinterpret_cast<SAFEARRAY**>(bytes));
    else if (parameter.type == VT_VARIANT)
        VariantClear(reinterpret_cast<VARIANT*>(bytes));
    else if (parameter.type == VT_UNKNOWN)
    {
        if (IUnknown* const object = *reinterpret_cast<IUnknown**>(bytes))
            object->Release();
    }
    else if (parameter.recordName == "_tagNAddress")
        for (std::size_t i = 0; i < sizeof(_tagNAddress) / sizeof(BSTR); ++i)
            SysFreeString(reinterpret_cast<BSTR*>(bytes)[i]);
    std::memset(bytes, 0, m_outputs.at(position).bytes.size());
}
