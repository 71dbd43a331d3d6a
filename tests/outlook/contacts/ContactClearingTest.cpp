#include "outlook/contacts/ContactClearing.h"

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

const std::string kNames = std::string("IMessage(ann).GetIDsFromNames([") + kAddressSetText;

// The calls of a message with that many attachments, written down by hand.
Lines Clearing(const Lines& deletions)
{
    Lines calls = {
        "IMessage(ann).DeleteProps([3A51001E 3A50001E 3A4C001E 3A59001F 3A5A001F 3A5B001F 3A5C001F "
        "3A5D001F 3A5E001F 3A27001F 3A26001F 3A2A001F 3A28001F 3A29001F 3A2B001F 3A5F001F 3A60001F "
        "3A61001F 3A62001F 3A63001F 3A64001F 3A08001F 3A1B001F 3A2E001F 3A24001F 3A1C001F 3A02001F "
        "3A1E001F 3A57001F 3A09001F 3A2F001F 3A25001F 3A1F001F 3A420040 3A410040 3001001F 3A06001F "
        "3A44001F 3A11001F 3A45001F 3A4F001F 3A16001F 3A18001F 3A17001F 3A19001F 10090102 3A21001F "
        "3A23001F 3A1D001F 3A4B001F 3A2D001F 3A2C001F 3A1A001F])",
        kNames + " 8082 8083 8092 8093 80A2 80A3 801A 801B 801C 8084 8094 80A4 8045 8046 8047 8048 "
                 "8049 804A 8080 8090 80A0 8062 802B], 00000000)",
        "IMessage(ann).DeleteProps([8082001F 8083001F 8092001F 8093001F 80A2001F 80A3001F 801A001F "
        "801B001F 801C001F 8084001F 8094001F 80A4001F 8045001F 8046001F 8047001F 8048001F 8049001F "
        "804A001F 8080001F 8090001F 80A0001F 8062001F 802B001F])",
        kNames + " 80DE 80DF], 00000000)",
        "IMessage(ann).DeleteProps([80DE0040 80DF0040])",
        std::string("IMessage(ann).GetIDsFromNames([") + kPublicSetText +
            " \"Keywords\"], 00000000)",
        "IMessage(ann).DeleteProps([80E2101F])",
        "IMessage(ann).QueryInterface(IMessage)",
        "IMessage(ann).GetAttachmentTable(00000008)",
        "HrQueryAllRows@24(IMAPITable(ann attachments table), [0E210003], null, null, 0)"};
    calls.insert(calls.end(), deletions.begin(), deletions.end());
    return calls;
}

const Lines kSaving = {kNames + " 8015], 00000000)",
                       "IMessage(ann).SetProps({8015000B 0})",
                       "IMessage(ann).SaveChanges(00000002)"};

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
