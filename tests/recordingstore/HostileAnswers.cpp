#include "tests/recordingstore/HostileAnswers.h"

#include <string_view>

namespace
{
// What a call gives.
enum Output : unsigned
{
    kValues = 1,
    kRows = 2,
    kAllRows = 4, // those of HrQueryAllRows
    kOneValue = 8,
    kNames = 16,
    kEntryId = 32,
    kEntry = 64,
    kOpenedStream = 128,
    kReadBytes = 256,
    kNumber = 512,
};

struct CallRow
{
    std::string_view method;
    unsigned outputs;
};

constexpr CallRow kCalls[] = {
    {".GetProps(", kValues},
    {".QueryRows(", kRows},
    {"HrQueryAllRows", kAllRows},
    {"HrGetOneProp(", kOneValue},
    {".GetIDsFromNames(", kNames},
    {".GetReceiveFolder(", kEntryId},
    {".QueryIdentity(", kEntryId},
    {".GetPAB(", kEntryId},
    {".OpenEntry(", kEntry},
    {".OpenProperty(", kOpenedStream},
    {"WrapCompressedRTFStream(", kOpenedStream},
    {".Read(", kReadBytes},
    {".Write(", kNumber},
    {".GetRowCount(", kNumber},
    {".CreateAttach(", kNumber},
    {".SetProps(", kNumber},
    {".DeleteProps(", kNumber},
};

struct AnswerRow
{
    StoreFault answer;
    unsigned outputs;
};

constexpr unsigned kEachValue = kValues | kRows | kAllRows | kOneValue;

// clang-format off
constexpr AnswerRow kAnswers[] = {
    {StoreFault::NullOutput,      kEachValue | kNames | kEntryId | kEntry | kOpenedStream},
    {StoreFault::NullArrays,      kValues | kRows | kAllRows | kEntryId},
    {StoreFault::ZeroCounts,      kValues | kRows | kAllRows | kNames | kEntryId},
    {StoreFault::LongerArrays,    kValues | kRows | kNames},
    {StoreFault::HugeArrays,      kEntryId},
    {StoreFault::ShortRows,       kValues | kRows | kAllRows | kNames},
    {StoreFault::Reversed,        kValues | kRows},
    {StoreFault::AllErrors,       kEachValue | kNames},
    {StoreFault::WrongTypes,      kEachValue | kNames},
    {StoreFault::OtherTypes,      kEachValue},
    {StoreFault::NullPointers,    kEachValue},
    {StoreFault::NullElements,    kEachValue},
    {StoreFault::EmptyValues,     kEachValue},
    {StoreFault::HugeValues,      kEachValue},
    {StoreFault::OddValues,       kEachValue},
    {StoreFault::FixedNames,      kNames},
    {StoreFault::OneName,         kNames},
    {StoreFault::ListedNames,     kNames},
    {StoreFault::OtherObject,     kEntry},
    {StoreFault::WildNumbers,     kReadBytes | kNumber},
    {StoreFault::EndlessStream,   kOpenedStream},
    {StoreFault::TricklingStream, kOpenedStream},
    {StoreFault::BreakingStream,  kOpenedStream},
    {StoreFault::EmptyStream,     kOpenedStream},
};
// clang-format on

unsigned OutputsOf(const std::string& line)
{
    for (const CallRow& row : kCalls)
        if (line.find(row.method) != std::string::npos)
            return row.outputs;
    return 0;
}
} // namespace

std::vector<StoreFault> HostileAnswersFor(const std::string& line)
{
    std::vector<StoreFault> answers;
    const unsigned outputs = OutputsOf(line);
    for (const AnswerRow& row : kAnswers)
        if (row.outputs & outputs)
            answers.push_back(row.answer);
    return answers;
}
