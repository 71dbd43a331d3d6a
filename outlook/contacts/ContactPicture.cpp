#include "outlook/contacts/ContactPicture.h"

#include "outlook/contacts/PictureCopy.h"
#include "outlook/contacts/PictureFile.h"
#include "outlook/contacts/PictureJournal.h"
#include "outlook/store/PropertyArray.h"
#include "outlook/store/StoreObjects.h"
#include "platform/UniqueHandle.h"
#include "service/Log.h"

#include <array>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr ULONG kDataTag = 0x37010102; // PR_ATTACH_DATA_BIN
constexpr std::size_t kWritePieceBytes = 8192;
constexpr DWORD kNoSharing = 0;

// Where a picture goes.
struct NewFile
{
    std::wstring reserved; // the empty file that the system made, so that nobody takes the name
    std::wstring path;
};

// Empty where the system gives no name, and where the name would lead out of the folder.
NewFile ReserveFile(const wchar_t* fileName, const wchar_t* extension)
{
    wchar_t folder[MAX_PATH] = {};
    const DWORD length = GetTempPathW(MAX_PATH, folder);
    wchar_t reserved[MAX_PATH] = {};
    if (length == 0 || length >= MAX_PATH ||
        GetTempFileNameW(folder, PicturePrefix(fileName).c_str(), 0, reserved) == 0)
        return {};
    NewFile file = {reserved, reserved + PictureExtension(extension)};
    RememberPictureFiles({file.reserved, file.path});
    // A net below the rules of prefix and extension, which let no such name through.
    if (!IsFileOfFolder(folder, file.path))
        file.path.clear();
    return file;
}

// Copies until a read gives nothing or fails, or a write falls short. Returns the bytes that were
// read.
LONG CopyFromFile(HANDLE file, IStream& data)
{
    std::array<BYTE, kWritePieceBytes> piece;
    std::uint32_t total = 0;
    while (total < kLongestPictureBytes)
    {
        DWORD read = 0;
        if (!ReadFile(file, piece.data(), static_cast<DWORD>(piece.size()), &read, nullptr) ||
            read == 0)
            break;
        total += read;
        ULONG written = 0;
        if (FAILED(data.Write(piece.data(), read, &written)) || written < read)
            break;
    }
    return static_cast<LONG>(total);
}

// What marks an attachment as a contact's picture.
// Kept as it is: named as a JPEG whatever its format. Pinned by
// CreatePictureTest.FillsMarksAndSavesTheAttachment.
PropertyArray PictureProperties(LONG bytes)
{
    constexpr wchar_t kName[] = L"ContactPicture.jpg";
    constexpr FILETIME kNoTime = {0, 0x0CB34557}; // the year 4501
    PropertyArray values;
    values.AddText(0x3703001F, L".jpg"); // PR_ATTACH_EXTENSION
    values.AddText(0x3704001F, L"");     // PR_ATTACH_FILENAME
    values.AddText(0x3707001F, kName);   // PR_ATTACH_LONG_FILENAME
    values.AddLong(0x37050003, 1);       // PR_ATTACH_METHOD: by value
    values.AddLong(0x0E200003, bytes);   // PR_ATTACH_SIZE
    values.AddText(0x3001001F, kName);   // PR_DISPLAY_NAME
    values.AddLong(0x370B0003, -1);      // PR_RENDERING_POSITION: not in the text
    values.AddLong(0x7FFD0003, 0);       // PR_ATTACHMENT_FLAGS
    values.AddBool(0x7FFE000B, false);   // PR_ATTACHMENT_HIDDEN
    values.AddLong(0x7FFA0003, 0);       // PR_ATTACHMENT_LINKID
    values.AddBool(0x7FFF000B, true);    // PR_ATTACHMENT_CONTACTPHOTO
    values.AddTime(0x7FFC0040, kNoTime); // PR_EXCEPTION_STARTTIME
    values.AddTime(0x7FFB0040, kNoTime); // PR_EXCEPTION_ENDTIME
    values.AddBinary(0x37020102, {});    // PR_ATTACH_ENCODING
    values.AddLong(0x37140003, 0);       // PR_ATTACH_FLAGS
    return values;
}
} // namespace

std::wstring SavePictureFile(IMessage& message,
                             ULONG attachmentNumber,
                             const wchar_t* fileName,
                             const wchar_t* extension)
{
    ComPtr<IAttach> attachment;
    if (FAILED(message.OpenAttach(
            attachmentNumber, &IID_IAttachment, MAPI_BEST_ACCESS, attachment.GetAddressOf())) ||
        !attachment)
        return {};
    const ComPtr<IStream> data = OpenStream(*attachment.Get(), kDataTag, 0);
    if (!data)
        return {};
    const NewFile target = ReserveFile(fileName, extension);
    ComPtr<IStream> file;
    if (target.path.empty() ||
        FAILED(SHCreateStreamOnFileW(
            target.path.c_str(), STGM_CREATE | STGM_WRITE, file.GetAddressOf())) ||
        !file)
        return {};
    CopyPicture(*data.Get(), *file.Get());
    file->Commit(STGC_DEFAULT);
    return target.path;
}

void CreatePicture(const std::wstring& path, IAttach* attachment)
{
    if (path.empty() || !attachment)
        return;
    LogPrintf(L"CMAPIAddrBook::Create Picture");
    UniqueFile file = OpenPictureFile(path, kNoSharing);
    if (!file)
        return;
    ComPtr<IStream> data = OpenStream(*attachment, kDataTag, MAPI_CREATE | MAPI_MODIFY);
    if (!data)
        return;
    const LONG bytes = CopyFromFile(file.Get(), *data.Get());
    file.Reset();
    data->Commit(STGC_OVERWRITE);
    data.Reset();
    PropertyArray values = PictureProperties(bytes);
    attachment->SetProps(values.Count(), values.Get(), nullptr);
    attachment->SaveChanges(FORCE_SAVE);
}
