// What a hostile store makes of the outputs of its calls. Each function takes outputs as a
// well-meaning store gives them and changes them where that answer is about such outputs; it frees
// what nobody can reach any more, so that the books still tell who holds what. Throws
// std::bad_alloc.
#pragma once

#include "tests/recordingstore/library/Library.h"

constexpr bool IsHostileAnswer(StoreFault fault)
{
    return fault > StoreFault::FailsWithWork;
}

// The tags that the values are delivered for: one more where there are to be more.
void SpoilWanted(StoreFault answer, std::vector<ULONG>& tags);
// The values of those tags; further blocks come from the allocator.
void SpoilValues(StoreFault answer,
                 const std::vector<ULONG>& tags,
                 const Allocator& allocate,
                 SPropValue* values);
// A buffer of values with its count.
void SpoilArray(StoreFault answer, ULONG& count, SPropValue*& values);
// The IDs of named properties.
void SpoilNames(StoreFault answer, std::vector<ULONG>& tags);
// A buffer with an entry ID.
void SpoilEntryId(StoreFault answer, ULONG& size, ENTRYID*& entryId);
// The problems of a call that writes: one with a value that was not given.
void SpoilProblems(StoreFault answer, SPropProblemArray** problems);
// A number beside the result.
void SpoilNumber(StoreFault answer, ULONG* number);

// How a stream behaves. Others than hostile answers about streams are StoreFault::None.
StoreFault MannerOf(StoreFault answer);

// Counts an output that is not what it was.
void CountSpoiled();
