// The child process of the tests that kill a writer of messages.
#pragma once

#include <cstdint>
#include <string>

// Saves messages in the contact folder of the store of that path for ever, through the store's own
// objects. Each has a subject, a class, a body, a named property and an attachment, made from its
// number. When a SaveChanges returned, the line "saved NUMBER ENTRYID" goes to standard output.
//   step, skip   where the process stops: see StoppingVfs.h; step is its number there
//   armAfter     so many messages are saved before the stop is armed, and it is armed inside
//                SaveChanges alone
//   checkpoint   pages in the log that make a checkpoint due
int RunMessageWriter(
    const std::wstring& path, int first, int step, int skip, int armAfter, int checkpoint);

// What the message of a number holds.
std::wstring SubjectOfWritten(int number);
std::wstring BodyOfWritten(int number);
std::string AttachmentOfWritten(int number);
inline constexpr std::uint16_t kNamedNumberOfWritten = 0x8062;
