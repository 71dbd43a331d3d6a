#include "outlook/contacts/AddressTable.h"

#include "outlook/contacts/PictureCopy.h"
#include "service/ItemAccess.h"

using Microsoft::WRL::ComPtr;

ComPtr<INEntityItem> CAddressTable::CreateItem()
{
    return NewItem(CLSID_NContactItem);
}

bool CAddressTable::IsWritable(INEntityItem& item)
{
    return QueryItem<INContactItem>(&item) != nullptr;
}

ULONG CAddressTable::SavePicture(const wchar_t* path, IStream* stream)
{
    if (!path || !stream)
        return 0;
    // Open as long as the copy takes, so that the path leads to no other thing meanwhile.
    const UniqueFile onDisk = OpenPictureFile(path, FILE_SHARE_READ | FILE_SHARE_WRITE);
    ComPtr<IStream> file;
    if (!onDisk || FAILED(SHCreateStreamOnFileW(path, STGM_READ, file.GetAddressOf())) || !file)
        return 0;
    return CopyPicture(*file.Get(), *stream);
}
