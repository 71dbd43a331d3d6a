// Reads a JSON text as a stream, so that its size does not matter: the listener decides for each
// value whether it wants to hold it whole or to go into it. Portable.
//
// Hostile input ends with JsonProblem: broken UTF-8, nesting beyond kDeepestJson, a key that stands
// twice in one object, more than 64 keys in one, numbers that no type holds.
#pragma once

#include "localstore/JsonNode.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

// Values nested more deeply than this are refused: folders take two levels each.
inline constexpr size_t kDeepestJson = 256;

enum class JsonStep
{
    Hold, // build the value and hand it to Take
    Enter // the value must be an object or an array, whose values come one by one
};

// What the reader tells. Paths are as in JsonProblem.
class JsonListener
{
  public:
    virtual ~JsonListener() = default;

    // Before each value: what is its key or its number in the array, and whether it begins as an
    // object, as an array, or neither.
    enum class Kind
    {
        Object,
        Array,
        Plain
    };
    // Returns how to go on with the value.
    virtual JsonStep Begin(const std::string& path,
                           std::string_view key,
                           Kind kind,
                           size_t line) = 0;
    // A value that was held.
    virtual void Take(const std::string& path, std::string_view key, JsonNode&& node) = 0;
    // The end of a value that was entered.
    virtual void End() = 0;
};

// Where the text comes from.
class JsonSource
{
  public:
    virtual ~JsonSource() = default;
    // Puts the next bytes into the room and tells how many; none at the end. False where they
    // cannot be read.
    virtual bool Read(std::span<char> room, size_t& count) = 0;
};

// Reads the whole text.
void ReadJson(JsonSource& source, JsonListener& listener);
