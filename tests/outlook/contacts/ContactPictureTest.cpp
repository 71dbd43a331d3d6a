#include "outlook/contacts/ContactPicture.h"

#include "outlook/contacts/ContactCalls.h"
#include "outlook/contacts/ContactTableFixture.h"
#include "outlook/contacts/JournalLines.h"
#include "outlook/contacts/PictureCopy.h"
#include "support/BriefPipe.h"
#include "support/DebugOutputCapture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::StartsWith;
using Lines = std::vector<std::string>;

namespace
{
constexpr ULONG kData = 0x37010102;
constexpr ULONG kFileName = 0x3704001F;
constexpr ULONG kExtension = 0x3703001F;
constexpr ULONG kIsPhoto = 0x7FFF000B;

// Bytes that differ from their neighbours.
std::vector<BYTE> Bytes(std::size_t count)
{
    std::vector<BYTE> bytes(count);
    for (std::size_t i = 0; i < count; ++i)
        bytes[i] = static_cast<BYTE>(i % 251);
    return bytes;
}

std::vector<BYTE> ContentOf(const std::wstring& path)
{
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    return std::vector<BYTE>(std::istreambuf_iterator<char>(file), {});
}

// The user's own.
std::wstring JournalPath()
{
    wchar_t folder[MAX_PATH] = {};
    SHGetFolderPathW(nullptr, CSIDL_LOCAL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder);
    return std::wstring(folder) + L"\\PimStoreBridge\\pictures.txt";
}

StoreProps Photo(std::vector<BYTE> bytes,
                 const wchar_t* name = L"ContactPicture.jpg",
                 const wchar_t* extension = L".jpg")
{
    return StoreProps()
        .Text(kFileName, name)
        .Text(kExtension, extension)
        .Number(kIsPhoto, 1)
        .Bytes(kData, std::move(bytes));
}

class ContactPictureTest : public ContactTableTest
{
  protected:
    // The path that a contact with these attachments gets.
    std::wstring PictureOf(const std::vector<StoreProps>& attachments)
    {
        CloseTable();
        store.Reset();
        store.AddUsualFolders();
        Fill(store);
        AddContact("ann", "contacts");
        for (const StoreProps& attachment : attachments)
            store.AddAttachment("ann", attachment);
        LoadTable();
        return TextIn(Read("ann").Get(), &INContactItem::get_Picture);
    }
    // The calls that have to do with attachments' contents.
    Lines PictureCalls() const
    {
        Lines lines;
        for (const std::string& line : store.Calls())
            if (line.find("ann#") != std::string::npos ||
                line.find("OpenAttach") != std::string::npos)
                lines.push_back(line);
        return lines;
    }
    // The rest of the path behind the temporary folder; "outside" where it lies elsewhere.
    std::wstring NameIn(const std::wstring& path) const
    {
        return path.starts_with(temporary.Folder()) ? path.substr(temporary.Folder().size())
                                                    : L"outside";
    }
};

// An attachment to fill.
class CreatePictureTest : public ContactTableTest
{
  protected:
    CreatePictureTest()
    {
        AddContact("ann", "contacts");
        Open();
        message = OpenMessage("ann");
        ULONG number = 0;
        message->CreateAttach(nullptr, 0, &number, attachment.GetAddressOf());
        store.ClearRecord();
    }
    ~CreatePictureTest() override
    {
        attachment.Reset();
        message.Reset();
    }
    std::wstring FileOf(std::size_t size)
    {
        const std::wstring path = files.File(L"picture.bin");
        const std::vector<BYTE> bytes = Bytes(size);
        std::ofstream(std::filesystem::path(path), std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(size));
        return path;
    }
    static std::string Setting(const std::string& bytes)
    {
        return MarkingPictureCall("ann#0", bytes);
    }

    ScratchDirectory files;
    ComPtr<IMessage> message;
    ComPtr<IAttach> attachment;
};
} // namespace

// --- Reading -----------------------------------------------------------------------------------

TEST_F(ContactPictureTest, IsCopiedIntoATemporaryFile)
{
    const std::vector<BYTE> bytes = Bytes(16384 + 5);
    const std::wstring path = PictureOf({Photo(bytes)});
    EXPECT_EQ(bytes, ContentOf(path));
    EXPECT_TRUE(NameIn(path).starts_with(L"Con")) << NameIn(path).size();
    EXPECT_TRUE(path.ends_with(L".tmp.jpg"));
    // The empty file that reserves the name stays beside it.
    EXPECT_EQ(0u, std::filesystem::file_size(path.substr(0, path.size() - 4)));
    EXPECT_EQ(2u, temporary.CountFiles());
    // Both will be removed some day.
    EXPECT_THAT(JournalLines(JournalPath()), IsSupersetOf({path.substr(0, path.size() - 4), path}));
    EXPECT_THAT(PictureCalls(),
                ElementsAre("IMessage(ann).OpenAttach(0, IAttachment, 00000010)",
                            "IAttach(ann#0).OpenProperty(37010102, IStream, 0, 00000000)",
                            "IStream(ann#0 37010102 stream).Read(16384)",
                            "IStream(ann#0 37010102 stream).Read(16384)",
                            "IStream(ann#0 37010102 stream).Read(16384)"));
}

TEST_F(ContactPictureTest, OnlyTheFirstOfTwoIsRead)
{
    const std::wstring path = PictureOf({Photo(Bytes(3)), Photo(Bytes(4))});
    EXPECT_EQ(Bytes(3), ContentOf(path));
    EXPECT_THAT(store.Calls(), Contains("IMessage(ann).OpenAttach(0, IAttachment, 00000010)"));
    EXPECT_THAT(store.Calls(), Not(Contains(StartsWith("IMessage(ann).OpenAttach(1,"))));
}

TEST_F(ContactPictureTest, AnAttachmentWithoutTheMarkIsPassedOver)
{
    StoreProps unmarked = Photo(Bytes(3));
    unmarked.Number(kIsPhoto, 0);
    const std::wstring path = PictureOf({unmarked, Photo(Bytes(4))});
    EXPECT_EQ(Bytes(4), ContentOf(path));
    EXPECT_THAT(store.Calls(), Not(Contains(StartsWith("IMessage(ann).OpenAttach(0,"))));
    EXPECT_EQ(L"(null)", PictureOf({unmarked}));
}

TEST_F(ContactPictureTest, AnAttachmentThatLacksAValueIsPassedOver)
{
    const StoreProps noName =
        StoreProps().Text(kExtension, L".jpg").Number(kIsPhoto, 1).Bytes(kData, {1});
    const StoreProps noExtension =
        StoreProps().Text(kFileName, L"a").Number(kIsPhoto, 1).Bytes(kData, {1});
    const StoreProps noMark =
        StoreProps().Text(kFileName, L"a").Text(kExtension, L".jpg").Bytes(kData, {1});
    EXPECT_EQ(L"(null)", PictureOf({noName, noExtension, noMark}));
    EXPECT_EQ(0u, temporary.CountFiles());
}

TEST_F(ContactPictureTest, AnEmptyExtensionBecomesThatOfAPhoto)
{
    EXPECT_TRUE(PictureOf({Photo(Bytes(3), L"Pic", L"")}).ends_with(L".tmp.jpg"));
    EXPECT_TRUE(PictureOf({Photo(Bytes(3), L"Pic", L".png")}).ends_with(L".tmp.png"));
    EXPECT_TRUE(PictureOf({Photo(Bytes(3), L"Pic", L"png")}).ends_with(L".tmppng"));
}

TEST_F(ContactPictureTest, NothingLeavesTheTemporaryFolder)
{
    const wchar_t* const names[] = {L"..\\evil", L"/", L"C:\\", L"a*b", L"a\x01"};
    for (const wchar_t* const name : names)
    {
        const std::wstring path = PictureOf({Photo(Bytes(3), name, L"\\..\\..\\evil.exe")});
        EXPECT_TRUE(NameIn(path).starts_with(L"pic"));
        EXPECT_TRUE(path.ends_with(L".tmp.jpg"));
        EXPECT_EQ(std::wstring::npos, NameIn(path).find_first_of(L"\\/"));
        EXPECT_EQ(Bytes(3), ContentOf(path));
    }
}

TEST_F(ContactPictureTest, ACopyThatBreaksOffIsHandedOn)
{
    AddContact("ann", "contacts");
    store.AddAttachment("ann", Photo(Bytes(16384 * 3)));
    LoadTable();
    // A read that gives less than it was asked for is no end.
    store.FailNext("IStream(ann#0 37010102 stream).Read", StoreFault::FewerValues);
    const std::wstring whole = TextIn(Read("ann").Get(), &INContactItem::get_Picture);
    EXPECT_EQ(Bytes(16384 * 3), ContentOf(whole));
    store.FailNext("IStream(ann#0 37010102 stream).Read", StoreFault::CallFailed);
    const std::wstring none = TextIn(Read("ann").Get(), &INContactItem::get_Picture);
    EXPECT_TRUE(std::filesystem::exists(none));
    EXPECT_THAT(ContentOf(none), IsEmpty());
}

// The first of three pieces is read, the second fails.
TEST_F(ContactPictureTest, WhatWasReadBeforeAFailureIsHandedOn)
{
    AddContact("ann", "contacts");
    store.AddAttachment("ann", Photo(Bytes(16384 * 3)));
    LoadTable();
    Read("ann");
    std::vector<unsigned> reads;
    for (const RecordedStoreCall& call : store.Record())
        if (call.text.starts_with("IStream(ann#0 37010102 stream).Read"))
            reads.push_back(call.number);
    ASSERT_EQ(4u, reads.size()); // the last one finds the end
    store.ClearRecord();
    store.Fail(reads[1], StoreFault::CallFailed);
    const std::wstring path = TextIn(Read("ann").Get(), &INContactItem::get_Picture);
    EXPECT_EQ(Bytes(16384), ContentOf(path));
}

TEST_F(ContactPictureTest, AnAttachmentThatCannotBeOpenedMakesNoFile)
{
    AddContact("ann", "contacts");
    store.AddAttachment("ann", Photo(Bytes(3)));
    LoadTable();
    for (const char* const call : {"IMessage(ann).OpenAttach", "IAttach(ann#0).OpenProperty"})
        for (const StoreFault fault : {StoreFault::CallFailed, StoreFault::NullOutput})
        {
            store.FailNext(call, fault);
            EXPECT_EQ(L"(null)", TextIn(Read("ann").Get(), &INContactItem::get_Picture)) << call;
        }
    EXPECT_EQ(0u, temporary.CountFiles());
}

TEST_F(ContactPictureTest, WithoutATemporaryFolderThereIsNoPicture)
{
    AddContact("ann", "contacts");
    store.AddAttachment("ann", Photo(Bytes(3)));
    LoadTable();
    temporary.Set(temporary.Folder() + L"gone\\");
    EXPECT_EQ(L"(null)", TextIn(Read("ann").Get(), &INContactItem::get_Picture));
    // Longer than a path may be.
    temporary.Set(L"C:\\" + std::wstring(300, L'x'));
    EXPECT_EQ(L"(null)", TextIn(Read("ann").Get(), &INContactItem::get_Picture));
    temporary.Set(temporary.Folder());
    EXPECT_NE(L"(null)", TextIn(Read("ann").Get(), &INContactItem::get_Picture));
}

TEST_F(ContactPictureTest, TheCopyStopsAtItsLimit)
{
    const std::wstring path = PictureOf({Photo(std::vector<BYTE>(kLongestPictureBytes + 1))});
    EXPECT_EQ(64u * 1024 * 1024, std::filesystem::file_size(path));
}

// One byte at a time, or as many as are asked for, for ever. The attachment stays what it was.
TEST_F(ContactPictureTest, AStreamWithoutAnEndIsGivenUpAndWhatCameIsHandedOn)
{
    AddContact("ann", "contacts");
    store.AddAttachment("ann", Photo(Bytes(3)));
    const Lines before = store.PropsOf("ann#0");
    LoadTable();
    const auto reads = [this] {
        return std::ranges::count(PictureCalls(), "IStream(ann#0 37010102 stream).Read(16384)");
    };
    store.FailNext("IAttach(ann#0).OpenProperty", StoreFault::TricklingStream);
    const std::wstring trickled = TextIn(Read("ann").Get(), &INContactItem::get_Picture);
    EXPECT_EQ(65'536, reads());
    EXPECT_TRUE(std::vector<BYTE>(65'536, 'x') == ContentOf(trickled));

    store.ClearRecord();
    store.FailNext("IAttach(ann#0).OpenProperty", StoreFault::EndlessStream);
    const std::wstring endless = TextIn(Read("ann").Get(), &INContactItem::get_Picture);
    EXPECT_EQ(4096, reads()); // 64 MiB in pieces of 16 KiB
    EXPECT_EQ(64u * 1024 * 1024, std::filesystem::file_size(endless));

    const std::wstring whole = TextIn(Read("ann").Get(), &INContactItem::get_Picture);
    EXPECT_EQ(Bytes(3), ContentOf(whole));
    EXPECT_EQ(before, store.PropsOf("ann#0"));
}

// --- Writing -----------------------------------------------------------------------------------

TEST_F(CreatePictureTest, FillsMarksAndSavesTheAttachment)
{
    const std::wstring path = FileOf(8192 * 2 + 5);
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    CreatePicture(path, attachment.Get());
    EXPECT_THAT(store.Calls(),
                ElementsAre("IAttach(ann#0).OpenProperty(37010102, IStream, 0, 00000003)",
                            "IStream(ann#0 37010102 stream).Write(8192)",
                            "IStream(ann#0 37010102 stream).Write(8192)",
                            "IStream(ann#0 37010102 stream).Write(5)",
                            "IStream(ann#0 37010102 stream).Commit(00000001)",
                            Setting("16389"),
                            "IAttach(ann#0).SaveChanges(00000004)"));
    EXPECT_THAT(capture.TakeLogMessages(), ElementsAre("CMAPIAddrBook::Create Picture"));
}

TEST_F(CreatePictureTest, AnEmptyFileGivesAnEmptyPicture)
{
    CreatePicture(FileOf(0), attachment.Get());
    EXPECT_THAT(store.Calls(),
                ElementsAre("IAttach(ann#0).OpenProperty(37010102, IStream, 0, 00000003)",
                            "IStream(ann#0 37010102 stream).Commit(00000001)",
                            Setting("0"),
                            "IAttach(ann#0).SaveChanges(00000004)"));
}

TEST_F(CreatePictureTest, AFileThatCannotBeOpenedLeavesTheAttachmentAlone)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    const std::wstring path = FileOf(3);
    CreatePicture(files.File(L"none"), attachment.Get());
    {
        // Another program writes to it.
        const UniqueFile other(CreateFileW(path.c_str(),
                                           GENERIC_WRITE,
                                           FILE_SHARE_READ,
                                           nullptr,
                                           OPEN_EXISTING,
                                           FILE_ATTRIBUTE_NORMAL,
                                           nullptr));
        CreatePicture(path, attachment.Get());
    }
    CreatePicture(files.Path().wstring(), attachment.Get());
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("CMAPIAddrBook::Create Picture",
                            "CMAPIAddrBook::Create Picture",
                            "CMAPIAddrBook::Create Picture"));
}

// A device gives bytes for ever, or none.
TEST_F(CreatePictureTest, ADeviceIsNoPicture)
{
    CreatePicture(L"NUL", attachment.Get());
    CreatePicture(L"\\\\.\\NUL", attachment.Get());
    EXPECT_THAT(store.Calls(), IsEmpty());
}

// Its other end may never write.
TEST_F(CreatePictureTest, APipeIsNoPicture)
{
    BriefPipe pipe;
    ASSERT_TRUE(pipe);
    CreatePicture(pipe.Path(), attachment.Get());
    pipe.Join();
    EXPECT_THAT(store.Calls(), IsEmpty());
}

TEST_F(CreatePictureTest, TheCopyStopsAtItsLimit)
{
    const std::wstring path = files.File(L"long.bin");
    {
        const UniqueFile file(CreateFileW(path.c_str(),
                                          GENERIC_WRITE,
                                          0,
                                          nullptr,
                                          CREATE_ALWAYS,
                                          FILE_ATTRIBUTE_NORMAL,
                                          nullptr));
        const LARGE_INTEGER size = {.QuadPart = 64 * 1024 * 1024 + 1};
        ASSERT_TRUE(SetFilePointerEx(file.Get(), size, nullptr, FILE_BEGIN));
        ASSERT_TRUE(SetEndOfFile(file.Get()));
    }
    CreatePicture(path, attachment.Get());
    const Lines calls = store.Calls();
    // 64 MiB in pieces of 8192 bytes.
    EXPECT_EQ(8192, std::ranges::count(calls, "IStream(ann#0 37010102 stream).Write(8192)"));
    ASSERT_EQ(8192u + 4, calls.size());
    EXPECT_EQ(Setting("67108864"), calls[8192 + 2]);
}

TEST_F(CreatePictureTest, WithoutAPathOrAnAttachmentNothingHappens)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    CreatePicture(L"", attachment.Get());
    CreatePicture(FileOf(3), nullptr);
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_THAT(capture.TakeLogMessages(), IsEmpty());
}

TEST_F(CreatePictureTest, ReadersOfTheFileAreShutOutAndTheFileStays)
{
    const std::wstring path = FileOf(3);
    {
        const UniqueFile reader(CreateFileW(path.c_str(),
                                            GENERIC_READ,
                                            FILE_SHARE_READ | FILE_SHARE_WRITE,
                                            nullptr,
                                            OPEN_EXISTING,
                                            FILE_ATTRIBUTE_NORMAL,
                                            nullptr));
        CreatePicture(path, attachment.Get());
        EXPECT_THAT(store.Calls(), IsEmpty());
    }
    CreatePicture(path, attachment.Get());
    EXPECT_THAT(store.Calls(), Contains(Setting("3")));
    EXPECT_EQ(Bytes(3), ContentOf(path));
}

TEST_F(CreatePictureTest, WithoutDataThereIsNothingToMark)
{
    for (const StoreFault fault : {StoreFault::CallFailed, StoreFault::NullOutput})
    {
        store.ClearRecord();
        store.FailNext("IAttach(ann#0).OpenProperty", fault);
        CreatePicture(FileOf(3), attachment.Get());
        EXPECT_EQ(1u, store.Calls().size());
    }
}

TEST_F(CreatePictureTest, AWriteThatFallsShortEndsTheCopy)
{
    for (const StoreFault fault : {StoreFault::FewerValues, StoreFault::CallFailed})
    {
        store.ClearRecord();
        store.FailNext("IStream(ann#0 37010102 stream).Write", fault);
        CreatePicture(FileOf(8192 * 3), attachment.Get());
        // The bytes that were read count, not those that were written.
        EXPECT_THAT(store.Calls(),
                    ElementsAre("IAttach(ann#0).OpenProperty(37010102, IStream, 0, 00000003)",
                                "IStream(ann#0 37010102 stream).Write(8192)",
                                "IStream(ann#0 37010102 stream).Commit(00000001)",
                                Setting("8192"),
                                "IAttach(ann#0).SaveChanges(00000004)"));
    }
}
