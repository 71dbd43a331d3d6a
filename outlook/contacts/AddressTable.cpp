#include "outlook/contacts/AddressTable.h"

#include <array>

using Microsoft::WRL::ComPtr;

ComPtr<INEntityItem> CAddressTable::CreateItem()
{
    return NewItem(CLSID_NContactItem);
}

ULONG CAddressTable::SavePicture(const wchar_t* path, IStream* stream)
{
    if (!path || !stream)
        return 0;
    ComPtr<IStream> file;
    if (FAILED(SHCreateStreamOnFileW(path, STGM_READ, file.GetAddressOf())) || !file)
        return 0;
    std::array<BYTE, 0x4000> buffer;
    ULONG total = 0;
    for (;;)
    {
        ULONG read = 0;
        if (FAILED(file->Read(buffer.data(), static_cast<ULONG>(buffer.size()), &read)) ||
            read == 0)
            return total;
        ULONG written = 0;
        const HRESULT result = stream->Write(buffer.data(), read, &written);
        total += written;
        // More would not stand behind what is missing.
        if (FAILED(result) || written < read)
            return total;
    }
}
