// What every object of the server needs of its process: the count of live objects and locks, and
// the type information of the server's own type library.
#pragma once

#include "platform/WindowsHeaders.h"

#include <vector>

struct IRegistrar;

class CServerModule
{
  public:
    CServerModule(const CServerModule&) = delete;
    CServerModule& operator=(const CServerModule&) = delete;
    // Ends the global interface table and the cached type information, and makes the module before
    // this one the current one again.
    virtual ~CServerModule();

    // One more live object or server lock. Returns the new count. Any thread.
    virtual LONG Lock() noexcept;
    // One fewer. Returns the new count.
    virtual LONG Unlock() noexcept;
    virtual LONG GetLockCount() noexcept;

    // The system's global interface table, made on first use. The caller releases *table.
    virtual HRESULT GetGITPtr(IGlobalInterfaceTable** table) noexcept;

    // Adds the substitutions that every registration script of this server uses.
    virtual HRESULT AddCommonRGSReplacements(IRegistrar* registrar) noexcept = 0;

    // The description of an interface of the type library that the running executable carries as
    // resource 1. The library is loaded once, on demand. *info stays the module's, without a
    // reference for the caller, until the module ends.
    // Returns: S_OK; the failure of loading the library or of finding the interface.
    HRESULT GetTypeInfo(REFIID iid, ITypeInfo** info) noexcept;

    // Whether the module could not be set up; the process then refuses to serve.
    bool InitFailed() const noexcept { return m_initFailed; }

    // The process's module: the one made last that still lives; null before any.
    static CServerModule* Current() noexcept;

  protected:
    CServerModule() noexcept;

    // Frees what needs the apartment. For derived classes that leave it in their destructor; the
    // module answers GetTypeInfo and GetGITPtr anew afterwards.
    void ReleaseCaches() noexcept;

    volatile LONG m_nLockCnt = 0;
    bool m_initFailed = false;

  private:
    HRESULT LoadTypeInfo(REFIID iid, ITypeInfo** info);

    struct CachedTypeInfo
    {
        IID iid;
        Microsoft::WRL::ComPtr<ITypeInfo> info;
    };

    CServerModule* m_previous;
    CRITICAL_SECTION m_section;
    bool m_hasSection = false;
    Microsoft::WRL::ComPtr<ITypeLib> m_library;
    std::vector<CachedTypeInfo> m_typeInfos;
    Microsoft::WRL::ComPtr<IGlobalInterfaceTable> m_git;
};

// Keeps the server alive as long as it lives itself.
class ServerLock
{
  public:
    ServerLock() noexcept : m_module(CServerModule::Current())
    {
        if (m_module)
            m_module->Lock();
    }
    ~ServerLock()
    {
        if (m_module)
            m_module->Unlock();
    }
    ServerLock(const ServerLock&) = delete;
    ServerLock& operator=(const ServerLock&) = delete;

  private:
    CServerModule* m_module;
};
