#include "localstore/PropertyJson.h"

#include "localstore/KnownProperties.h"
#include "platform/HexDigit.h"
#include "service/TextConversions.h"

#include <array>
#include <bit>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <optional>

namespace
{

constexpr char kHexDigits[] = "0123456789ABCDEF";
constexpr char kBase64Digits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Longer values are written in base64: hex is for eyes.
constexpr size_t kLongestHexBytes = 64;

constexpr std::uint64_t kTicksPerSecond = 10'000'000;
constexpr std::uint64_t kTicksPerDay = kTicksPerSecond * 86'400;
// From here on a year has five digits: 10000-01-01, in days since 1601-01-01.
constexpr std::uint64_t kDaysToYear10000 = 3'067'671;

std::string Hex(std::uint64_t value, int digits)
{
    std::string text = "0x";
    for (int i = digits - 1; i >= 0; --i)
        text += kHexDigits[(value >> (4 * i)) & 0xF];
    return text;
}

// Hexadecimal digits behind 0x; nothing where it is no such text or too long.
std::optional<std::uint64_t> ParseHex(std::string_view text, size_t mostDigits)
{
    if (text.size() < 3 || text.size() > mostDigits + 2 || text[0] != '0' || text[1] != 'x')
        return std::nullopt;
    std::uint64_t value = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data() + 2, end, value, 16);
    if (result.ec != std::errc() || result.ptr != end)
        return std::nullopt;
    return value;
}

std::string Base64Text(std::span<const std::byte> bytes)
{
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3)
    {
        const size_t count = std::min<size_t>(3, bytes.size() - i);
        std::uint32_t group = 0;
        for (size_t k = 0; k < 3; ++k)
            group = group << 8 | (k < count ? std::to_integer<std::uint32_t>(bytes[i + k]) : 0);
        for (size_t k = 0; k < 4; ++k)
            text += k <= count ? kBase64Digits[(group >> (18 - 6 * k)) & 0x3F] : '=';
    }
    return text;
}

constexpr auto kBase64Values = [] {
    std::array<std::int16_t, 256> values{};
    values.fill(-1);
    for (int i = 0; i < 64; ++i)
        values[static_cast<unsigned char>(kBase64Digits[i])] = static_cast<std::int16_t>(i);
    return values;
}();

Bytes ReadBase64(const JsonPlace& place)
{
    std::string_view text = place.Text();
    if (text.size() % 4 != 0)
        place.Fail("base64 comes in groups of four characters, filled up with =");
    size_t padding = 0;
    while (padding < 2 && !text.empty() && text.back() == '=')
    {
        text.remove_suffix(1);
        ++padding;
    }
    Bytes bytes;
    bytes.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t group = 0;
    size_t digits = 0;
    for (const char digit : text)
    {
        const int value = kBase64Values[static_cast<unsigned char>(digit)];
        if (value < 0)
            place.Fail("this is no base64");
        group = group << 6 | static_cast<std::uint32_t>(value);
        if (++digits % 4 == 0)
        {
            for (const int shift : {16, 8, 0})
                bytes.push_back(static_cast<std::byte>(group >> shift));
            group = 0;
        }
    }
    // The digits of a last group that is not full; its unused bits have to be clear, so that every
    // value has one spelling.
    const size_t rest = digits % 4;
    if (rest == 2 || rest == 3)
    {
        group <<= 6 * (4 - rest);
        for (size_t k = 0; k + 1 < rest; ++k)
            bytes.push_back(static_cast<std::byte>(group >> (16 - 8 * k)));
        if (group & (rest == 2 ? 0xFFFFu : 0xFFu))
            place.Fail("this base64 has bits behind its end");
    }
    return bytes;
}

// The one value of an object with one of those keys.
std::pair<std::string_view, JsonPlace> OneOf(const JsonPlace& place,
                                             std::initializer_list<std::string_view> keys)
{
    place.ExpectKeys(keys);
    if (place.Object().size() != 1)
    {
        std::string text = "an object with one of these keys is needed here:";
        for (const std::string_view key : keys)
            text += " " + std::string(key);
        place.Fail(text);
    }
    const std::string_view key = place.Object().front().first;
    return {key, place.At(key)};
}

Bytes ReadBytes(const JsonPlace& place)
{
    const auto [key, value] = OneOf(place, {"hex", "base64"});
    return key == "hex" ? ReadHex(value) : ReadBase64(value);
}

bool IsObject(const JsonPlace& place)
{
    return std::holds_alternative<JsonNode::Object>(place.Node().value);
}

bool HasUnpairedSurrogate(const std::wstring& text)
{
    for (size_t i = 0; i < text.size(); ++i)
    {
        const auto unit = static_cast<std::uint16_t>(text[i]);
        if (unit < 0xD800 || unit > 0xDFFF)
            continue;
        const bool isPair = unit < 0xDC00 && i + 1 < text.size() &&
                            (static_cast<std::uint16_t>(text[i + 1]) & 0xFC00) == 0xDC00;
        if (!isPair)
            return true;
        ++i;
    }
    return false;
}

// An object with hex or base64.
std::string BytesText(std::span<const std::byte> bytes)
{
    if (bytes.size() <= kLongestHexBytes)
        return "{\"hex\": \"" + HexText(bytes) + "\"}";
    return "{\"base64\": \"" + Base64Text(bytes) + "\"}";
}

std::string AnsiText(const Bytes& bytes)
{
    for (const std::byte one : bytes)
    {
        if (std::to_integer<unsigned>(one) >= 0x80)
            return BytesText(bytes);
    }
    return QuotedText({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

Bytes ReadAnsi(const JsonPlace& place)
{
    if (IsObject(place))
        return ReadBytes(place);
    const std::string& text = place.Text();
    for (const char unit : text)
    {
        if (static_cast<unsigned char>(unit) >= 0x80)
            place.Fail("a PT_STRING8 text beyond ASCII depends on a code page: give its bytes, as "
                       "{\"hex\": \"...\"}");
    }
    const auto bytes = std::as_bytes(std::span(text));
    return Bytes(bytes.begin(), bytes.end());
}

std::string GuidText(const Bytes& bytes)
{
    GUID guid{};
    std::memcpy(&guid, bytes.data(), std::min(bytes.size(), sizeof guid));
    char text[40] = {};
    std::snprintf(text,
                  sizeof text,
                  "{%08lX-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}",
                  static_cast<unsigned long>(guid.Data1),
                  guid.Data2,
                  guid.Data3,
                  guid.Data4[0],
                  guid.Data4[1],
                  guid.Data4[2],
                  guid.Data4[3],
                  guid.Data4[4],
                  guid.Data4[5],
                  guid.Data4[6],
                  guid.Data4[7]);
    return text;
}

GUID ReadGuid(const JsonPlace& place)
{
    GUID guid{};
    const std::wstring text = WideFromUtf8(place.Text());
    if (text.size() != 38 || FAILED(CLSIDFromString(text.c_str(), &guid)))
        place.Fail("a GUID as {00062004-0000-0000-C000-000000000046} is needed here");
    return guid;
}

Bytes BytesOfGuid(const GUID& guid)
{
    const auto bytes = std::as_bytes(std::span(&guid, 1));
    return Bytes(bytes.begin(), bytes.end());
}

// A number that comes back bit by bit; what no JSON number is, in its bits.
std::string RealText(double value, std::uint64_t bits, int hexDigits)
{
    if (!std::isfinite(value))
        return "{\"bits\": \"" + Hex(bits, hexDigits) + "\"}";
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    std::string text(buffer, result.ptr);
    // Without a point it would be read as a whole number, and -0 as 0.
    if (text.find_first_of(".e") == std::string::npos)
        text += ".0";
    return text;
}

std::uint64_t ReadBits(const JsonPlace& place, size_t digits)
{
    const JsonPlace bits = OneOf(place, {"bits"}).second;
    const auto value = ParseHex(bits.Text(), digits);
    if (!value)
        bits.Fail("0x and up to " + std::to_string(digits) + " hexadecimal digits are needed here");
    return *value;
}

double ReadReal(const JsonPlace& place)
{
    if (const auto* real = std::get_if<double>(&place.Node().value))
        return *real;
    if (const auto* whole = std::get_if<std::int64_t>(&place.Node().value))
        return static_cast<double>(*whole);
    if (const auto* large = std::get_if<std::uint64_t>(&place.Node().value))
        return static_cast<double>(*large);
    place.Fail("a number is needed here");
}

std::uint64_t ReadFloatBits(const JsonPlace& place)
{
    if (IsObject(place))
        return ReadBits(place, 8);
    const double value = ReadReal(place);
    if (std::fabs(value) > std::numeric_limits<float>::max())
        place.Fail("the number is too large for PT_R4");
    return std::bit_cast<std::uint32_t>(static_cast<float>(value));
}

std::uint64_t ReadDoubleBits(const JsonPlace& place)
{
    return IsObject(place) ? ReadBits(place, 16) : std::bit_cast<std::uint64_t>(ReadReal(place));
}

std::uint64_t ReadBoolean(const JsonPlace& place)
{
    if (const auto* value = std::get_if<bool>(&place.Node().value))
        return *value ? 1 : 0;
    if (std::holds_alternative<std::int64_t>(place.Node().value))
        return static_cast<std::uint64_t>(place.Integer(INT16_MIN, UINT16_MAX));
    place.Fail("true or false is needed here");
}

std::string FixedText(std::uint16_t type, std::uint64_t bits)
{
    switch (type)
    {
    case PT_BOOLEAN:
        if (bits <= 1)
            return bits ? "true" : "false";
        return std::to_string(static_cast<std::int64_t>(bits));
    case PT_R4: {
        const auto half = static_cast<std::uint32_t>(bits);
        return RealText(std::bit_cast<float>(half), half, 8);
    }
    case PT_DOUBLE:
    case PT_APPTIME:
        return RealText(std::bit_cast<double>(bits), bits, 16);
    case PT_SYSTIME:
        return TimeText(bits);
    default:
        return std::to_string(static_cast<std::int64_t>(bits));
    }
}

std::uint64_t ReadFixed(std::uint16_t type, const JsonPlace& place)
{
    switch (type)
    {
    case PT_BOOLEAN:
        return ReadBoolean(place);
    case PT_R4:
        return ReadFloatBits(place);
    case PT_DOUBLE:
    case PT_APPTIME:
        return ReadDoubleBits(place);
    case PT_SYSTIME:
        return ReadTime(place);
    case PT_I2:
        return static_cast<std::uint64_t>(
            std::int64_t{static_cast<std::int16_t>(place.Integer(INT16_MIN, UINT16_MAX))});
    case PT_LONG:
        return static_cast<std::uint64_t>(
            std::int64_t{static_cast<std::int32_t>(place.Integer(INT32_MIN, UINT32_MAX))});
    default: // PT_I8 and PT_CURRENCY
        return static_cast<std::uint64_t>(place.Integer(INT64_MIN, INT64_MAX));
    }
}

std::string ListText(size_t count, auto&& item)
{
    std::string text = "[";
    for (size_t i = 0; i < count; ++i)
        text += (i ? ", " : "") + item(i);
    return text + "]";
}

std::string BytesItemText(std::uint16_t type, const Bytes& bytes)
{
    if (type == PT_STRING8)
        return AnsiText(bytes);
    return type == PT_CLSID ? "\"" + GuidText(bytes) + "\"" : BytesText(bytes);
}

Bytes ReadBytesItem(std::uint16_t type, const JsonPlace& place)
{
    if (type == PT_STRING8)
        return ReadAnsi(place);
    return type == PT_CLSID ? BytesOfGuid(ReadGuid(place)) : ReadBytes(place);
}

std::string ValueText(const PropertyValue& value)
{
    const auto type = static_cast<std::uint16_t>(value.type & ~MV_FLAG);
    if (const auto* bits = std::get_if<std::uint64_t>(&value.data))
        return FixedText(type, *bits);
    if (const auto* text = std::get_if<std::wstring>(&value.data))
        return TextValueText(*text);
    if (const auto* bytes = std::get_if<Bytes>(&value.data))
        return BytesItemText(type, *bytes);
    if (const auto* list = std::get_if<std::vector<std::uint64_t>>(&value.data))
        return ListText(list->size(), [&](size_t i) { return FixedText(type, (*list)[i]); });
    if (const auto* texts = std::get_if<std::vector<std::wstring>>(&value.data))
        return ListText(texts->size(), [&](size_t i) { return TextValueText((*texts)[i]); });
    const auto& items = std::get<std::vector<Bytes>>(value.data);
    return ListText(items.size(), [&](size_t i) { return BytesItemText(type, items[i]); });
}

template <typename Item, typename Read>
std::vector<Item> ReadList(const JsonPlace& place, Read&& read)
{
    std::vector<Item> items;
    items.reserve(place.Array().size());
    for (size_t i = 0; i < place.Array().size(); ++i)
        items.push_back(read(place.At(i)));
    return items;
}

PropertyValue ReadValue(std::uint16_t storedType, const JsonPlace& place)
{
    const auto type = static_cast<std::uint16_t>(storedType & ~MV_FLAG);
    const bool isList = (storedType & MV_FLAG) != 0;
    PropertyValue value{storedType, {}};
    switch (type)
    {
    case PT_UNICODE:
        if (isList)
            value.data = ReadList<std::wstring>(place, ReadTextValue);
        else
            value.data = ReadTextValue(place);
        break;
    case PT_STRING8:
    case PT_BINARY:
    case PT_CLSID: {
        const auto read = [type](const JsonPlace& item) { return ReadBytesItem(type, item); };
        if (isList)
            value.data = ReadList<Bytes>(place, read);
        else
            value.data = read(place);
        break;
    }
    default: {
        const auto read = [type](const JsonPlace& item) { return ReadFixed(type, item); };
        if (isList)
            value.data = ReadList<std::uint64_t>(place, read);
        else
            value.data = read(place);
        break;
    }
    }
    return value;
}

JsonPlace Required(const JsonPlace& place, std::string_view key)
{
    if (!place.Find(key))
        place.Fail("the key \"" + std::string(key) + "\" is missing");
    return place.At(key);
}

ULONG ReadTag(const JsonPlace& place)
{
    const std::string& text = place.Text();
    const std::optional<std::uint64_t> number = ParseHex(text, 8);
    const std::optional<ULONG> tag =
        number ? std::optional(static_cast<ULONG>(*number)) : TagOfName(text);
    if (!tag)
        place.Fail("there is no property tag \"" + text +
                   "\": give a known name, or the number as 0x3001001F");
    if (PROP_ID(*tag) == 0 || PROP_ID(*tag) >= kFirstNamedProperty)
        place.Fail("the property IDs of tags go from 0x0001 to 0x7FFF; from 0x8000 on they stand "
                   "for names: give the set, and the id or name");
    if (NameOfType(static_cast<std::uint16_t>(PROP_TYPE(*tag))).empty())
        place.Fail("values of the type " + Hex(PROP_TYPE(*tag), 4) + " cannot be stored");
    return *tag;
}

std::uint16_t ReadType(const JsonPlace& place)
{
    const std::string& text = place.Text();
    const std::optional<std::uint64_t> number = ParseHex(text, 4);
    const std::optional<std::uint16_t> type =
        number ? std::optional(static_cast<std::uint16_t>(*number)) : TypeOfName(text);
    if (!type || NameOfType(*type).empty())
        place.Fail("there is no property type \"" + text + "\" that can be stored");
    return *type;
}

PropertyName ReadName(const JsonPlace& place)
{
    PropertyName name{};
    const JsonPlace set = place.At("set");
    const std::optional<GUID> known = SetOfName(set.Text());
    name.set = known ? *known : ReadGuid(set);
    if ((place.Find("id") != nullptr) == (place.Find("name") != nullptr))
        place.Fail("a named property has either an id or a name");
    if (place.Find("name"))
    {
        name.name = ReadTextValue(place.At("name"));
        return name;
    }
    const JsonPlace id = place.At("id");
    if (const auto* text = std::get_if<std::string>(&id.Node().value))
    {
        const auto number = ParseHex(*text, 8);
        if (!number)
            id.Fail("a number, or one as 0x8083, is needed here");
        name.name = static_cast<LONG>(*number);
    }
    else
        name.name = static_cast<LONG>(id.Integer(INT32_MIN, UINT32_MAX));
    return name;
}

std::string TypeText(std::uint16_t type)
{
    const std::string_view name = NameOfType(type);
    return name.empty() ? Hex(type, 4) : std::string(name);
}

} // namespace

std::string QuotedText(std::string_view utf8)
{
    std::string text = "\"";
    text.reserve(utf8.size() + 2);
    for (const char unit : utf8)
    {
        const auto code = static_cast<unsigned char>(unit);
        if (unit == '"' || unit == '\\')
            (text += '\\') += unit;
        else if (unit == '\n')
            text += "\\n";
        else if (unit == '\r')
            text += "\\r";
        else if (unit == '\t')
            text += "\\t";
        else if (code < 0x20 || code == 0x7F)
            (text += "\\u00") += {kHexDigits[code >> 4], kHexDigits[code & 0xF]};
        else
            text += unit;
    }
    return text + '"';
}

std::string TextValueText(const std::wstring& text)
{
    if (HasUnpairedSurrogate(text))
        return "{\"utf16\": \"" + HexText(std::as_bytes(std::span(text))) + "\"}";
    return QuotedText(Utf8FromWide(text));
}

std::wstring ReadTextValue(const JsonPlace& place)
{
    if (!IsObject(place))
        return WideFromUtf8(place.Text());
    const JsonPlace units = OneOf(place, {"utf16"}).second;
    const Bytes bytes = ReadHex(units);
    if (bytes.size() % sizeof(wchar_t) != 0)
        units.Fail("UTF-16 comes in units of two bytes");
    std::wstring text(bytes.size() / sizeof(wchar_t), L'\0');
    if (!bytes.empty())
        std::memcpy(text.data(), bytes.data(), bytes.size());
    return text;
}

std::string HexText(std::span<const std::byte> bytes)
{
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const std::byte one : bytes)
    {
        text += kHexDigits[std::to_integer<unsigned>(one) >> 4];
        text += kHexDigits[std::to_integer<unsigned>(one) & 0xF];
    }
    return text;
}

std::string TimeText(std::uint64_t ticks)
{
    using namespace std::chrono;
    const std::uint64_t dayCount = ticks / kTicksPerDay;
    if (dayCount >= kDaysToYear10000)
        return std::to_string(ticks);
    const year_month_day date =
        sys_days(year(1601) / January / 1) + days(static_cast<int>(dayCount));
    const std::uint64_t second = ticks % kTicksPerDay / kTicksPerSecond;
    char text[48] = {};
    int length = std::snprintf(text,
                               sizeof text,
                               "\"%04d-%02u-%02uT%02u:%02u:%02u",
                               static_cast<int>(date.year()),
                               static_cast<unsigned>(date.month()),
                               static_cast<unsigned>(date.day()),
                               static_cast<unsigned>(second / 3600),
                               static_cast<unsigned>(second / 60 % 60),
                               static_cast<unsigned>(second % 60));
    if (const auto fraction = static_cast<unsigned>(ticks % kTicksPerSecond))
    {
        length += std::snprintf(
            text + length, sizeof text - static_cast<size_t>(length), ".%07u", fraction);
        while (text[length - 1] == '0')
            --length;
    }
    return std::string(text, static_cast<size_t>(length)) + "Z\"";
}

Bytes ReadHex(const JsonPlace& place)
{
    const std::string& text = place.Text();
    Bytes bytes;
    bytes.reserve(text.size() / 2);
    for (size_t i = 0; i + 1 < text.size(); i += 2)
    {
        const int high = HexDigit(text[i]);
        const int low = HexDigit(text[i + 1]);
        if (high < 0 || low < 0)
            place.Fail("this is no hexadecimal text");
        bytes.push_back(static_cast<std::byte>(high << 4 | low));
    }
    if (text.size() % 2 != 0)
        place.Fail("hexadecimal text has two digits for each byte");
    return bytes;
}

std::uint64_t ReadTime(const JsonPlace& place)
{
    using namespace std::chrono;
    if (const auto* ticks = std::get_if<std::uint64_t>(&place.Node().value))
        return *ticks;
    if (std::holds_alternative<std::int64_t>(place.Node().value))
        return static_cast<std::uint64_t>(place.Integer(0, INT64_MAX));
    constexpr char kWanted[] = "a UTC time as 2024-05-01T10:00:00Z is needed here";
    if (!std::holds_alternative<std::string>(place.Node().value))
        place.Fail(kWanted);
    const std::string& text = place.Text();
    constexpr std::string_view kForm = "dddd-dd-ddTdd:dd:dd";
    const auto isDigit = [](char unit) { return unit >= '0' && unit <= '9'; };
    bool good = text.size() > kForm.size() && text.size() <= kForm.size() + 9 && text.back() == 'Z';
    for (size_t i = 0; good && i < kForm.size(); ++i)
        good = kForm[i] == 'd' ? isDigit(text[i]) : text[i] == kForm[i];
    // Behind the seconds: nothing, or a point and one to seven digits.
    const size_t fractionUnits = good ? text.size() - kForm.size() - 1 : 0;
    good = good && fractionUnits != 1 && (fractionUnits == 0 || text[kForm.size()] == '.');
    std::uint64_t fraction = 0;
    for (size_t i = 0; good && fractionUnits != 0 && i < 7; ++i)
    {
        const char unit = i + 1 < fractionUnits ? text[kForm.size() + 1 + i] : '0';
        good = isDigit(unit);
        fraction = fraction * 10 + static_cast<unsigned>(unit - '0');
    }
    const auto number = [&](size_t start, size_t count) {
        int value = 0;
        for (size_t i = 0; i < count; ++i)
            value = value * 10 + (text[start + i] - '0');
        return value;
    };
    if (!good)
        place.Fail(kWanted);
    const year_month_day date = year(number(0, 4)) / month(static_cast<unsigned>(number(5, 2))) /
                                day(static_cast<unsigned>(number(8, 2)));
    const int hour = number(11, 2);
    const int minute = number(14, 2);
    const int second = number(17, 2);
    if (!date.ok() || date.year() < year(1601) || hour > 23 || minute > 59 || second > 59)
        place.Fail("there is no such day or time of day from 1601 on");
    const auto dayCount = (sys_days(date) - sys_days(year(1601) / January / 1)).count();
    return static_cast<std::uint64_t>(dayCount) * kTicksPerDay +
           static_cast<std::uint64_t>(hour * 3600 + minute * 60 + second) * kTicksPerSecond +
           fraction;
}

std::string PropertyText(const PropertyKey& key, const PropertyValue& value)
{
    std::string text = "{";
    if (const auto* id = std::get_if<std::uint16_t>(&key))
    {
        const ULONG tag = PROP_TAG(value.type, *id);
        const std::string_view name = NameOfTag(tag);
        text += "\"tag\": \"" + (name.empty() ? Hex(tag, 8) : std::string(name)) + "\"";
    }
    else
    {
        const auto& name = std::get<PropertyName>(key);
        const std::string_view set = NameOfSet(name.set);
        text += "\"set\": \"" + (set.empty() ? GuidText(BytesOfGuid(name.set)) : std::string(set)) +
                "\", ";
        if (const LONG* number = std::get_if<LONG>(&name.name))
        {
            const auto bits = static_cast<std::uint32_t>(*number);
            text += "\"id\": \"" + Hex(bits, bits > 0xFFFF ? 8 : 4) + "\"";
        }
        else
            text += "\"name\": " + TextValueText(std::get<std::wstring>(name.name));
        text += ", \"type\": \"" + TypeText(value.type) + "\"";
    }
    return text + ", \"value\": " + ValueText(value) + "}";
}

KeyedProperty ReadPropertyJson(const JsonPlace& place)
{
    if (place.Find("set"))
    {
        place.ExpectKeys({"set", "id", "name", "type", "value"});
        PropertyName name = ReadName(place);
        const std::uint16_t type = ReadType(Required(place, "type"));
        return {std::move(name), ReadValue(type, Required(place, "value"))};
    }
    place.ExpectKeys({"tag", "value"});
    const ULONG tag = ReadTag(Required(place, "tag"));
    return {static_cast<std::uint16_t>(PROP_ID(tag)),
            ReadValue(static_cast<std::uint16_t>(PROP_TYPE(tag)), Required(place, "value"))};
}
