// Recurrence blobs that mail clients wrote, where they lie beside the project. The expected records
// were worked out from the bytes by the published format ([MS-OXOCAL]), and agree with what the
// other readers that come with the samples say of the fields.
#include "outlook/calendar/RecurrencePattern.h"

#include "outlook/calendar/RecurrenceSupport.h"
#include "support/SharedData.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

namespace
{
struct Sample
{
    std::size_t exceptions;
    std::string record;
};

const std::map<std::string, Sample> kSamples = {
    // "every Monday and Thursday": mask 0x12, never ends.
    {"item_aspose-net_Meeting_with_Recurring_Occurrences.bin",
     {0, "kind 2\nweekly.interval 1\nweekly.days -M--T--\n"}},
    // Mondays, once.
    {"item_hiraoka-msg_A_weekly_1.bin",
     {0, "kind 2\nweekly.interval 1\nweekly.days -M-----\nend.kind 1\nend.times 1\n"}},
    // Overrides 0x0282: the meeting type and 0x0080 are passed over, 0x0200 is not known.
    {"mfcmapi_arp1.bin",
     {1,
      "kind 2\nweekly.interval 2\nweekly.days ----T--\nend.kind 2\nend.date 2011-06-30 00:00\n"
      "deleted0 2011-02-17 00:00\ndeleted1 2011-03-03 00:00\ndeleted2 2011-03-17 00:00\n"
      "deleted3 2011-03-31 00:00\nmodified0 2011-02-17 00:00\n"
      "modified0.start 2011-02-17 14:30\nmodified0.end 2011-02-17 15:30\n"
      "modified0.original 2011-02-17 14:30\nmodified0.subject Subject\n"
      "modified0.location Place\n"}},
    // No instances in the first blob; another one's rest lies behind it.
    {"mfcmapi_arp2.bin",
     {0,
      "kind 2\nweekly.interval 2\nweekly.days -M-----\nend.kind 2\nend.date 2010-11-01 00:00\n"}},
    {"mfcmapi_arp3.bin",
     {5,
      "kind 2\nweekly.interval 2\nweekly.days ----T--\nend.kind 2\nend.date 2010-08-05 00:00\n"
      "deleted0 2010-04-01 00:00\ndeleted1 2010-04-15 00:00\ndeleted2 2010-04-29 00:00\n"
      "deleted3 2010-05-13 00:00\ndeleted4 2010-05-27 00:00\ndeleted5 2010-06-10 00:00\n"
      "deleted6 2010-06-24 00:00\ndeleted7 2010-07-08 00:00\ndeleted8 2010-07-22 00:00\n"
      "deleted9 2010-08-05 00:00\n"
      "modified0 2010-04-01 00:00\nmodified0.start 2010-04-01 15:00\n"
      "modified0.end 2010-04-01 16:00\nmodified0.original 2010-04-01 15:00\n"
      "modified0.subject Bi-weekly Team Meeting (YADKIN for this meeting)\n"
      "modified0.location Yadkin\n"
      "modified1 2010-04-15 00:00\nmodified1.start 2010-04-15 15:00\n"
      "modified1.end 2010-04-15 16:00\nmodified1.original 2010-04-15 15:00\n"
      "modified1.subject (Use to meet with Chris/Matt/Rick)   -    Bi-weekly Team Meeting\n"
      "modified1.location Conf Room CLT 1/2381 (24) AV Cape Fear\n"
      "modified2 2010-05-26 00:00\nmodified2.start 2010-05-26 15:00\n"
      "modified2.end 2010-05-26 16:00\nmodified2.original 2010-05-27 15:00\n"
      "modified2.subject Subject\n"
      "modified3 2010-06-10 00:00\nmodified3.start 2010-06-10 15:00\n"
      "modified3.end 2010-06-10 16:00\nmodified3.original 2010-06-10 15:00\n"
      "modified3.subject Subject\nmodified3.location Place\n"
      "modified4 2010-08-05 00:00\nmodified4.start 2010-08-05 15:00\n"
      "modified4.end 2010-08-05 16:00\nmodified4.original 2010-08-05 15:00\n"
      "modified4.subject Subject\nmodified4.location Place\n"}},
    // The first half of the format alone, up to its end date: the exception is missing.
    {"mfcmapi_rp1.bin",
     {0,
      "kind 2\nweekly.interval 2\nweekly.days ----T--\nend.kind 2\nend.date 2011-06-30 00:00\n"
      "deleted0 2011-02-17 00:00\ndeleted1 2011-03-03 00:00\ndeleted2 2011-03-17 00:00\n"
      "deleted3 2011-03-31 00:00\nmodified0 2011-02-17 00:00\n"}},
};
} // namespace

TEST(RecurrenceSamplesTest, ReadsWhatMailClientsWrote)
{
    const auto paths = SharedSamples("recurrence", ".bin");
    std::size_t known = 0;
    for (const auto& path : paths)
    {
        const auto sample = kSamples.find(path.filename().string());
        if (sample == kSamples.end())
            continue;
        ++known;
        _tagRecurringInfo record;
        const RecurrenceRead read = DecodeRecurrencePattern(
            BytesOf(ReadSample(path)), {L"Subject", L"Place"}, 1252, record);
        EXPECT_EQ(read.status, CodecStatus::Ok) << path;
        EXPECT_EQ(read.exceptions, sample->second.exceptions) << path;
        EXPECT_EQ(TextOf(record), sample->second.record) << path;
    }
    EXPECT_EQ(known, paths.empty() ? 0u : 6u);
}

TEST(RecurrenceSamplesTest, StaysWithinEveryPrefixOfThem)
{
    for (const auto& path : SharedSamples("recurrence", ".bin"))
    {
        const std::vector<std::byte> whole = BytesOf(ReadSample(path));
        _tagRecurringInfo record;
        const RecurrenceRead full = DecodeRecurrencePattern(whole, {}, 1252, record);
        std::size_t exceptions = 0;
        bool isWhole = false;
        for (std::size_t size = 0; size <= whole.size(); ++size)
        {
            const std::vector<std::byte> prefix(whole.begin(),
                                                whole.begin() + static_cast<std::ptrdiff_t>(size));
            const RecurrenceRead read = DecodeRecurrencePattern(prefix, {}, 1252, record);
            EXPECT_LE(read.offset, size);
            EXPECT_TRUE(!isWhole || read.status == CodecStatus::Ok) << path << " " << size;
            EXPECT_GE(read.exceptions, exceptions) << path << " " << size;
            EXPECT_LE(read.exceptions, full.exceptions);
            isWhole = read.status == CodecStatus::Ok;
            exceptions = read.exceptions;
        }
    }
}
