#include "BenchStore.h"

#include "Results.h"
#include "StoreMeasure.h"

#include "automation/ClassObjects.h"
#include "localstore/StoreLoad.h"
#include "localstore/StorePath.h"
#include "localstore/StoreSchema.h"
#include "outlook/store/MAPIProxcy.h"
#include "outlook/store/TagArray.h"
#include "service/PathHelpers.h"
#include "support/ScopedRegistryValue.h"
#include "support/TestModule.h"

#include "PimStoreBridge.h"

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <stdexcept>
#include <utility>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr ULONG kReadFlags = 2;

std::string FolderName(ULONG size, ULONG part)
{
    return "Folder of " + std::to_string(size) + ", part " + std::to_string(part);
}

std::wstring ProgramDirectory()
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path().wstring() + L'\\';
}

void LoadFile(const std::wstring& path)
{
    JsonFile file;
    DWORD reason = 0;
    if (!file.Open(path, reason))
        throw std::runtime_error("the store's contents cannot be read");
    Database database = OpenStore(StorePath());
    // A run that was killed may have left contents under this name.
    LoadStore(database, file, LoadMode::Replace);
}
} // namespace

int RunOverStore(const char* name, const std::function<void(const ScratchDirectory&)>& measure)
{
    if (FAILED(CoInitialize(nullptr)))
        return 2;
    int status = 0;
    try
    {
        TestModule module;
        ClassObjects classObjects;
        Require(classObjects.Register(GetObjectMap(), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE),
                "class objects");
        const ScratchDirectory folder;
        ScopedRegistryValue place(HKEY_CURRENT_USER, kSettingsKey, kStoreValue);
        place.Set(folder.File(L"store.db"));
        measure(folder);
    }
    catch (const std::exception& failure)
    {
        std::fprintf(stderr, "%s: %s\n", name, failure.what());
        status = 1;
    }
    CoUninitialize();
    return status;
}

void FillStore(const ScratchDirectory& scratch,
               const std::vector<ULONG>& sizes,
               ULONG parts,
               const std::function<std::string(ULONG)>& properties)
{
    const Times filling = TimesOf([&] {
        const std::wstring path = scratch.File(L"store.json");
        {
            std::ofstream text(std::filesystem::path(path), std::ios::binary);
            text << R"({"format": "PimStoreBridge store", "version": 1, "root": {"folders": [)";
            const char* folderSeparator = "";
            for (const ULONG size : sizes)
                for (ULONG part = 0; part < parts; ++part)
                {
                    text << std::exchange(folderSeparator, ",") << "\n{\"name\": \""
                         << FolderName(size, part) << "\", \"messages\": [";
                    for (ULONG i = 0; i < size / parts; ++i)
                        text << (i ? "," : "") << R"({"properties": [)"
                             << properties(part * (size / parts) + i) << "]}\n";
                    text << "]}";
                }
            text << "]}}";
        }
        LoadFile(path);
    });
    const ULONG all = std::accumulate(sizes.begin(), sizes.end(), ULONG{0});
    PrintRow("filling the store, each message", filling.elapsed * 1000.0 / all, "us");
}

BenchStore::BenchStore()
{
    auto proxy = std::make_unique<CMAPIProxcy>();
    constexpr ULONG kNoCoInit = 8;
    MAPIINIT_0 init = {0, kNoCoInit};
    if (!proxy->Load(ProgramDirectory() + L"PimLocalStore.dll", &init))
        throw std::runtime_error("PimLocalStore.dll does not load");
    helper = std::make_unique<CMAPIHelper>(std::move(proxy));
    CNProxcy& calls = helper->Proxy();
    constexpr ULONG kLogon = MAPI_NEW_SESSION | MAPI_EXTENDED | MAPI_USE_DEFAULT;
    Require(calls.MAPILogonEx(0, nullptr, nullptr, kLogon, m_session.GetAddressOf()), "logon");
    ComPtr<IMAPITable> stores;
    Require(m_session->GetMsgStoresTable(0, stores.GetAddressOf()), "stores");
    constexpr ULONG kId[] = {PR_ENTRYID};
    const MapiRowSet rows = ReadRows(*stores.Get(), kId, calls);
    const SBinary& id = rows->aRow[0].lpProps[0].Value.bin;
    constexpr ULONG kWrite = 4; // MDB_WRITE
    Require(
        m_session->OpenMsgStore(
            0, id.cb, reinterpret_cast<ENTRYID*>(id.lpb), nullptr, kWrite, m_store.GetAddressOf()),
        "store");
    ULONG type = 0;
    ComPtr<IUnknown> root;
    Require(m_store->OpenEntry(0, nullptr, nullptr, MAPI_BEST_ACCESS, &type, root.GetAddressOf()),
            "root");
    m_root = static_cast<IMAPIFolder*>(root.Get());
}

BenchStore::~BenchStore()
{
    helper->Live().DetachAll();
    m_root.Reset();
    m_store.Reset();
    m_session.Reset();
}

std::vector<ComPtr<IMAPIFolder>> BenchStore::Folders(ULONG size, ULONG parts)
{
    std::vector<ComPtr<IMAPIFolder>> folders(parts);
    for (ULONG part = 0; part < parts; ++part)
    {
        std::string name = FolderName(size, part);
        Require(m_root->CreateFolder(FOLDER_GENERIC,
                                     reinterpret_cast<LPTSTR>(name.data()),
                                     nullptr,
                                     nullptr,
                                     OPEN_IF_EXISTS,
                                     folders[part].GetAddressOf()),
                "folder");
    }
    return folders;
}

MapiRowSet ReadRows(IMAPITable& table, std::span<const ULONG> columns, CNProxcy& proxy)
{
    TagArray wanted(columns);
    Require(table.SetColumns(wanted.Get(), 0), "columns");
    ULONG count = 0;
    Require(table.GetRowCount(0, &count), "count");
    if (count == 0)
        return AdoptMapiRowSet(nullptr, proxy);
    SRowSet* delivered = nullptr;
    Require(table.QueryRows(static_cast<LONG>(count), 0, &delivered), "rows");
    return AdoptMapiRowSet(delivered, proxy);
}

ComPtr<IUnknown> OpenToRead(IMAPIFolder& folder, const SBinary& entryID)
{
    ULONG type = 0;
    ComPtr<IUnknown> object;
    Require(folder.OpenEntry(entryID.cb,
                             reinterpret_cast<ENTRYID*>(entryID.lpb),
                             nullptr,
                             kReadFlags,
                             &type,
                             object.GetAddressOf()),
            "message");
    return object;
}

void ReadAndFree(IMAPIProp& object, std::span<const ULONG> tags, CNProxcy& proxy)
{
    TagArray wanted(tags);
    ULONG count = 0;
    SPropValue* values = nullptr;
    Require(object.GetProps(wanted.Get(), MAPI_UNICODE, &count, &values), "values");
    proxy.FreeBuffer(values);
}

void CreateItems(REFCLSID classID, ULONG count)
{
    for (ULONG i = 0; i < count; ++i)
    {
        ComPtr<INEntityItem> item;
        Require(CoCreateInstance(classID,
                                 nullptr,
                                 CLSCTX_ALL,
                                 IID_INEntityItem,
                                 reinterpret_cast<void**>(item.GetAddressOf())),
                "item");
    }
}
