// Takes typed values off the front of a fuzzer's input; zero once it is used up.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <type_traits>

class FuzzInput
{
  public:
    FuzzInput(const std::uint8_t* data, std::size_t size) : m_rest(data, size) {}

    template <typename Value> Value Take()
    {
        static_assert(std::is_trivially_copyable_v<Value>);
        Value value{};
        const std::size_t count = std::min(sizeof(value), m_rest.size());
        if (count > 0)
            std::memcpy(&value, m_rest.data(), count);
        m_rest = m_rest.subspan(count);
        return value;
    }
    // At most that many bytes.
    std::string TakeText(std::size_t count)
    {
        const auto taken = m_rest.first(std::min(count, m_rest.size()));
        m_rest = m_rest.subspan(taken.size());
        return {taken.begin(), taken.end()};
    }
    std::string TakeRest() { return TakeText(m_rest.size()); }

  private:
    std::span<const std::uint8_t> m_rest;
};
