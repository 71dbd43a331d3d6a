#include "outlook/contacts/ContactClearing.h"

#include "outlook/contacts/ContactCalls.h"
#include "outlook/contacts/ContactTableFixture.h"

#include <gmock/gmock.h>

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using Lines = std::vector<std::string>;

namespace
{
class ContactClearingTest : public ContactTableTest
{
  protected:
    void Clear()
    {
        if (!folder)
            Open();
        const ComPtr<IMessage> message = OpenMessage("ann");
        store.ClearRecord();
        if (!failing.empty())
            store.FailNext(failing, fault);
        ClearContact(*message.Get(), Proxy());
    }

    std::string failing;
    StoreFault fault = StoreFault::CallFailed;
};

// The calls for a message whose attachments are deleted by these.
Lines Clearing(const Lines& deletions)
{
    Lines calls = ClearingCalls("ann");
    calls.insert(calls.end(), deletions.begin(), deletions.end());
    return calls;
}

const Lines kSaving = SavingWithoutPictureCalls("ann");

Lines And(Lines first, const Lines& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}
} // namespace

TEST_F(ContactClearingTest, DeletesInThisOrder)
{
    AddContact("ann", "contacts");
    store.AddAttachment("ann");
    store.AddAttachment("ann");
    Clear();
    EXPECT_THAT(store.Calls(),
                ElementsAreArray(And(Clearing({"IMessage(ann).DeleteAttach(0, 0, null, 00000000)",
                                               "IMessage(ann).DeleteAttach(1, 0, null, 00000000)"}),
                                     kSaving)));
    EXPECT_THAT(store.ChildrenOf("ann"), IsEmpty());
}

TEST_F(ContactClearingTest, WithoutAttachmentsTheStateIsSavedToo)
{
    AddContact("ann", "contacts");
    Clear();
    EXPECT_THAT(store.Calls(), ElementsAreArray(And(Clearing({}), kSaving)));
    EXPECT_THAT(store.PropsOf("ann"), Contains("8015000B 0"));
}

TEST_F(ContactClearingTest, WhatIsListedGoesAndTheRestStays)
{
    StoreProps props;
    props.Text(0x3A4F001F, L"nick").Text(0x3A45001F, L"Dr.").Text(0x3A51001F, L"http://a");
    props.Text(0x3A05001F, L"Jr.").Text(PR_BODY_W, L"note").Text(0x0037001F, L"subject");
    props.Text(0x8083001F, L"a@b").Time(0x80DE0040, 1).Texts(0x80E2101F, {L"Friends"});
    props.Text(0x8005001F, L"file as").Number(0x80060003, 5).Bytes(0x10090102, {1});
    props.Text(0x8010001F, L"another's");
    // The office, and numbers of kinds that no contact here has.
    for (const ULONG id : {0x3A19, 0x3A02, 0x3A1A, 0x3A23, 0x3A2C, 0x3A2D, 0x3A4B})
        props.Text(PROP_TAG(PT_UNICODE, id), L"lost");
    AddContact("ann", "contacts", props);
    Clear();
    EXPECT_THAT(store.PropsOf("ann"),
                testing::UnorderedElementsAre(StartsWith("001A001F \"IPM.Contact\""),
                                              "3A05001F \"Jr.\"",
                                              "1000001F \"note\"",
                                              "0037001F \"subject\"",
                                              "8005001F \"file as\"",
                                              "80060003 5",
                                              "8010001F \"another's\"",
                                              "8015000B 0"));
}

TEST_F(ContactClearingTest, UnknownNamesStandForNothing)
{
    store.Reset();
    store.AddUsualFolders();
    AddContact("ann", "contacts", StoreProps().Text(0x3A4F001F, L"nick"));
    Clear();
    EXPECT_THAT(store.Calls(), Contains("IMessage(ann).DeleteProps([00000040 00000040])"));
    EXPECT_THAT(store.Calls(), Contains("IMessage(ann).DeleteProps([0000101F])"));
    EXPECT_THAT(store.Calls(), Contains("IMessage(ann).SetProps({0000000B 0})"));
    EXPECT_EQ("IMessage(ann).SaveChanges(00000002)", store.Calls().back());
    EXPECT_THAT(store.PropsOf("ann"), ElementsAre("001A001F \"IPM.Contact\""));
}

TEST_F(ContactClearingTest, OnlyTheLastDeletionDecidesOnTheSave)
{
    AddContact("ann", "contacts");
    store.AddAttachment("ann");
    store.AddAttachment("ann");
    const std::string save = "IMessage(ann).SaveChanges(00000002)";
    failing = "IMessage(ann).DeleteAttach(1";
    Clear();
    EXPECT_THAT(store.Calls(), Not(Contains(save)));
    failing = "IMessage(ann).DeleteAttach(0";
    Clear();
    EXPECT_EQ(save, store.Calls().back());
    EXPECT_THAT(store.ChildrenOf("ann"), ElementsAre("ann#0"));
}

TEST_F(ContactClearingTest, WithoutTheListOfAttachmentsNothingIsSaved)
{
    AddContact("ann", "contacts");
    for (const char* const call : {"IMessage(ann).QueryInterface(IMessage)",
                                   "IMessage(ann).GetAttachmentTable",
                                   "HrQueryAllRows@24"})
        for (const StoreFault way : {StoreFault::CallFailed, StoreFault::NullOutput})
        {
            failing = call;
            fault = way;
            Clear();
            EXPECT_THAT(store.Calls(), Not(Contains(StartsWith("IMessage(ann).SaveChanges"))))
                << call;
        }
}

TEST_F(ContactClearingTest, AFailedLookupIsPassedOver)
{
    AddContact("ann", "contacts");
    failing = "IMessage(ann).GetIDsFromNames([{00062004-0000-0000-C000-000000000046} 8082";
    Clear();
    EXPECT_EQ(
        3u, static_cast<unsigned>(std::ranges::count_if(store.Calls(), [](const std::string& line) {
            return line.starts_with("IMessage(ann).DeleteProps");
        })));
    failing = "IMessage(ann).GetIDsFromNames([{00020329";
    Clear();
    EXPECT_THAT(store.Calls(), Not(Contains("IMessage(ann).DeleteProps([80E2101F])")));
    failing = "IMessage(ann).GetIDsFromNames([{00062004-0000-0000-C000-000000000046} 8015";
    Clear();
    EXPECT_EQ("IMessage(ann).SaveChanges(00000002)", store.Calls().back());
}
