#include "platform/CodePages.h"

#include <iconv.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace
{
constexpr unsigned kWestern = 1252;
constexpr unsigned kUtf8 = 65001;

struct NameRow
{
    unsigned codePage;
    const char* name;
};

// Where iconv's name is not "CP" and the number.
constexpr NameRow kNames[] = {
    {1361, "JOHAB"},
    {10000, "MACINTOSH"},
    {20866, "KOI8-R"},
    {21866, "KOI8-U"},
    {28591, "ISO-8859-1"},
    {28592, "ISO-8859-2"},
    {28595, "ISO-8859-5"},
    {28597, "ISO-8859-7"},
    {28599, "ISO-8859-9"},
    {28605, "ISO-8859-15"},
    {51932, "EUC-JP"},
    {51949, "EUC-KR"},
    {54936, "GB18030"},
    {65001, "UTF-8"},
};

std::string NameOf(unsigned codePage)
{
    const auto row = std::ranges::find(kNames, codePage, &NameRow::codePage);
    return row != std::end(kNames) ? row->name : "CP" + std::to_string(codePage);
}

// One conversion descriptor to UTF-16, kept open for the next text in the same code page.
class Converter
{
  public:
    Converter() = default;
    ~Converter() { Close(); }
    Converter(const Converter&) = delete;
    Converter& operator=(const Converter&) = delete;

    void Select(unsigned codePage)
    {
        if (m_handle != kClosed && m_codePage == codePage)
        {
            iconv(m_handle, nullptr, nullptr, nullptr, nullptr); // back to the initial state
            return;
        }
        Close();
        m_handle = iconv_open("UTF-16LE", NameOf(codePage).c_str());
        if (m_handle == kClosed)
            m_handle = iconv_open("UTF-16LE", NameOf(kWestern).c_str());
        m_codePage = codePage;
    }

    void Append(std::string_view bytes, std::wstring& text) const
    {
        const std::size_t start = text.size();
        auto* in = const_cast<char*>(bytes.data()); // iconv's interface; it only reads
        std::size_t left = bytes.size();
        while (left > 0)
        {
            std::array<char, 1024> buffer;
            char* out = buffer.data();
            std::size_t room = buffer.size();
            const std::size_t failed = iconv(m_handle, &in, &left, &out, &room);
            AppendUnits(buffer.data(), out, text);
            // Stuck at a byte, not out of room: a pair of surrogates takes four.
            if (failed == static_cast<std::size_t>(-1) && left > 0 && room >= 4)
            {
                text += Replacement(static_cast<std::uint8_t>(*in));
                ++in;
                --left;
            }
        }
        // What a converter holds back until it knows whether an accent follows.
        std::array<char, 16> buffer;
        char* out = buffer.data();
        std::size_t room = buffer.size();
        iconv(m_handle, nullptr, nullptr, &out, &room);
        AppendUnits(buffer.data(), out, text);
        if (!bytes.empty() && text.size() == start) // some sequences pass as if they were nothing
            text += L'\xFFFD';
    }

  private:
    static inline const iconv_t kClosed = reinterpret_cast<iconv_t>(-1);

    static void AppendUnits(const char* begin, const char* end, std::wstring& text)
    {
        for (const char* unit = begin; unit < end; unit += 2)
            text += static_cast<wchar_t>(static_cast<std::uint8_t>(unit[0]) |
                                         (static_cast<std::uint8_t>(unit[1]) << 8));
    }

    void Close()
    {
        if (m_handle != kClosed)
            iconv_close(m_handle);
        m_handle = kClosed;
    }

    // The system keeps the unassigned control bytes of its Western code page as they are.
    wchar_t Replacement(std::uint8_t byte) const
    {
        return m_codePage == kWestern ? static_cast<wchar_t>(byte) : L'\xFFFD';
    }

    iconv_t m_handle = kClosed;
    unsigned m_codePage = 0;
};

// One conversion descriptor from UTF-16, kept open for the next text in the same code page.
class Encoder
{
  public:
    Encoder() = default;
    ~Encoder() { Close(); }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    void Select(unsigned codePage)
    {
        if (m_handle != kClosed && m_codePage == codePage)
            return;
        Close();
        m_handle = iconv_open(NameOf(codePage).c_str(), "UTF-16LE");
        if (m_handle == kClosed)
            m_handle = iconv_open(NameOf(kWestern).c_str(), "UTF-16LE");
        m_codePage = codePage;
    }

    // Character by character, so that what one lacks touches no other.
    void Append(std::wstring_view text, std::string& bytes) const
    {
        while (!text.empty())
        {
            const std::size_t units = IsPair(text) ? 2 : 1;
            if (!AppendCharacter(text.substr(0, units), bytes))
                for (const wchar_t unit : text.substr(0, units))
                    AppendReplacement(unit, bytes);
            text.remove_prefix(units);
        }
    }

  private:
    static inline const iconv_t kClosed = reinterpret_cast<iconv_t>(-1);

    static bool IsPair(std::wstring_view text)
    {
        return text.size() > 1 && (text[0] & 0xFC00) == 0xD800 && (text[1] & 0xFC00) == 0xDC00;
    }

    bool AppendCharacter(std::wstring_view units, std::string& bytes) const
    {
        std::array<char, 4> input;
        for (std::size_t i = 0; i < units.size(); ++i)
        {
            input[2 * i] = static_cast<char>(units[i] & 0xFF);
            input[2 * i + 1] = static_cast<char>(units[i] >> 8 & 0xFF);
        }
        std::array<char, 16> output;
        char* in = input.data();
        std::size_t left = 2 * units.size();
        char* out = output.data();
        std::size_t room = output.size();
        iconv(m_handle, nullptr, nullptr, nullptr, nullptr); // back to the initial state
        if (iconv(m_handle, &in, &left, &out, &room) == static_cast<std::size_t>(-1))
            return false;
        iconv(m_handle, nullptr, nullptr, &out, &room); // what waits for an accent
        bytes.append(output.data(), out);
        return true;
    }

    void AppendReplacement(wchar_t unit, std::string& bytes) const
    {
        if (m_codePage == kUtf8)
            bytes += "\xEF\xBF\xBD"; // half a pair
        else if (m_codePage == kWestern && unit >= 0x80 && unit < 0xA0)
            bytes += static_cast<char>(unit); // as they are read
        else
            bytes += '?';
    }

    void Close()
    {
        if (m_handle != kClosed)
            iconv_close(m_handle);
        m_handle = kClosed;
    }

    iconv_t m_handle = kClosed;
    unsigned m_codePage = 0;
};
} // namespace

void AppendFromCodePage(unsigned codePage, std::string_view bytes, std::wstring& text)
{
    thread_local Converter converter;
    converter.Select(codePage);
    converter.Append(bytes, text);
}

void AppendToCodePage(unsigned codePage, std::wstring_view text, std::string& bytes)
{
    thread_local Encoder encoder;
    encoder.Select(codePage);
    encoder.Append(text, bytes);
}
