#include "tests/localstore/StoppingVfs.h"

#include "platform/WindowsHeaders.h"

#include <sqlite3.h>

#include <cstdio>

namespace
{

sqlite3_vfs* g_base = nullptr;
sqlite3_vfs g_vfs{};
StopBefore g_step = StopBefore::Nothing;
int g_skip = 0;

// The base layer's file lies behind this record.
struct StoppingFile
{
    sqlite3_file head;
    bool isLog;
    bool isDatabase;
};

sqlite3_file* Base(sqlite3_file* file)
{
    return reinterpret_cast<sqlite3_file*>(reinterpret_cast<StoppingFile*>(file) + 1);
}

void Pass(StopBefore step)
{
    if (g_step != step || g_skip-- > 0)
        return;
    std::puts("stop");
    std::fflush(stdout);
    Sleep(INFINITE);
}

int Close(sqlite3_file* file)
{
    return Base(file)->pMethods->xClose(Base(file));
}

int Read(sqlite3_file* file, void* buffer, int size, sqlite3_int64 offset)
{
    return Base(file)->pMethods->xRead(Base(file), buffer, size, offset);
}

int Write(sqlite3_file* file, const void* buffer, int size, sqlite3_int64 offset)
{
    const auto* own = reinterpret_cast<StoppingFile*>(file);
    if (own->isLog)
        Pass(StopBefore::LogWrite);
    if (own->isDatabase)
        Pass(StopBefore::DatabaseWrite);
    return Base(file)->pMethods->xWrite(Base(file), buffer, size, offset);
}

int Truncate(sqlite3_file* file, sqlite3_int64 size)
{
    return Base(file)->pMethods->xTruncate(Base(file), size);
}

int Sync(sqlite3_file* file, int flags)
{
    if (reinterpret_cast<StoppingFile*>(file)->isLog)
        Pass(StopBefore::LogFlush);
    return Base(file)->pMethods->xSync(Base(file), flags);
}

int FileSize(sqlite3_file* file, sqlite3_int64* size)
{
    return Base(file)->pMethods->xFileSize(Base(file), size);
}

int Lock(sqlite3_file* file, int level)
{
    return Base(file)->pMethods->xLock(Base(file), level);
}

int Unlock(sqlite3_file* file, int level)
{
    return Base(file)->pMethods->xUnlock(Base(file), level);
}

int CheckReservedLock(sqlite3_file* file, int* locked)
{
    return Base(file)->pMethods->xCheckReservedLock(Base(file), locked);
}

int FileControl(sqlite3_file* file, int operation, void* argument)
{
    return Base(file)->pMethods->xFileControl(Base(file), operation, argument);
}

int SectorSize(sqlite3_file* file)
{
    return Base(file)->pMethods->xSectorSize(Base(file));
}

int DeviceCharacteristics(sqlite3_file* file)
{
    return Base(file)->pMethods->xDeviceCharacteristics(Base(file));
}

int ShmMap(sqlite3_file* file, int page, int size, int extend, void volatile** address)
{
    return Base(file)->pMethods->xShmMap(Base(file), page, size, extend, address);
}

int ShmLock(sqlite3_file* file, int offset, int count, int flags)
{
    return Base(file)->pMethods->xShmLock(Base(file), offset, count, flags);
}

void ShmBarrier(sqlite3_file* file)
{
    Base(file)->pMethods->xShmBarrier(Base(file));
}

int ShmUnmap(sqlite3_file* file, int deleteIt)
{
    return Base(file)->pMethods->xShmUnmap(Base(file), deleteIt);
}

// Version 2: no memory-mapped reading, so every access of the log and the file comes by here.
constexpr sqlite3_io_methods kMethods = {2,
                                         Close,
                                         Read,
                                         Write,
                                         Truncate,
                                         Sync,
                                         FileSize,
                                         Lock,
                                         Unlock,
                                         CheckReservedLock,
                                         FileControl,
                                         SectorSize,
                                         DeviceCharacteristics,
                                         ShmMap,
                                         ShmLock,
                                         ShmBarrier,
                                         ShmUnmap,
                                         nullptr,
                                         nullptr};

int Open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags)
{
    auto* own = reinterpret_cast<StoppingFile*>(file);
    own->isLog = (flags & SQLITE_OPEN_WAL) != 0;
    own->isDatabase = (flags & SQLITE_OPEN_MAIN_DB) != 0;
    const int result = g_base->xOpen(g_base, name, Base(file), flags, outFlags);
    // Without methods the file is not closed again.
    own->head.pMethods = Base(file)->pMethods ? &kMethods : nullptr;
    return result;
}

} // namespace

void InstallStoppingVfs()
{
    g_base = sqlite3_vfs_find(nullptr);
    g_vfs = *g_base;
    g_vfs.szOsFile = static_cast<int>(sizeof(StoppingFile)) + g_base->szOsFile;
    g_vfs.zName = "stopping";
    g_vfs.pNext = nullptr;
    g_vfs.xOpen = Open;
    sqlite3_vfs_register(&g_vfs, 1);
}

void ArmStop(StopBefore step, int skip)
{
    g_step = step;
    g_skip = skip;
}

void DisarmStop()
{
    g_step = StopBefore::Nothing;
}
