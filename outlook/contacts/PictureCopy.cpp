#include "outlook/contacts/PictureCopy.h"

#include "outlook/store/StreamReads.h"

#include <algorithm>
#include <array>

UniqueFile OpenPictureFile(const std::wstring& path, DWORD sharing)
{
    UniqueFile file(CreateFileW(path.c_str(),
                                GENERIC_READ,
                                sharing,
                                nullptr,
                                OPEN_EXISTING,
                                FILE_ATTRIBUTE_NORMAL,
                                nullptr));
    if (file && GetFileType(file.Get()) != FILE_TYPE_DISK)
        file.Reset();
    return file;
}

ULONG CopyPicture(IStream& from, IStream& to)
{
    std::array<BYTE, 0x4000> piece;
    ULONG total = 0;
    for (unsigned reads = 0; total < kLongestPictureBytes && reads < kMostStreamReads; ++reads)
    {
        ULONG read = 0;
        if (FAILED(from.Read(piece.data(), static_cast<ULONG>(piece.size()), &read)) || read == 0)
            break;
        read = std::min(read, static_cast<ULONG>(piece.size()));
        ULONG written = 0;
        const HRESULT result = to.Write(piece.data(), read, &written);
        written = std::min(written, read);
        total += written;
        // More would not stand behind what is missing.
        if (FAILED(result) || written < read)
            break;
    }
    return total;
}
