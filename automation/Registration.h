// Writes the server into the registry and takes it out: the scripts among the resources of the
// executable, and its type library. Nothing is rolled back on failure.
#pragma once

#include "automation/ObjectMap.h"

#include <memory>
#include <string>

class CServerModule;

// The script of the application itself; those of the classes stand in the object map.
inline constexpr WORD kApplicationScript = 101;

// The two kinds of change to the registry. HRESULTs are the system's.
class IRegistration
{
  public:
    virtual ~IRegistration() = default;
    // Applies the REGISTRY resource of that number, for registration (add) or removal.
    virtual HRESULT ApplyScript(WORD script, bool add) = 0;
    virtual HRESULT ApplyTypeLibrary(bool add) = 0;
};

// The real registry, for a server at that path. The module names further substitutions; it must
// outlive the object.
class CRegistration : public IRegistration
{
  public:
    CRegistration(CServerModule& module, std::wstring serverPath);

    HRESULT ApplyScript(WORD script, bool add) override;
    HRESULT ApplyTypeLibrary(bool add) override;

  private:
    CServerModule& m_module;
    std::wstring m_serverPath;
};

// Registers the application, then every class of the map, then the type library.
// Returns: the last step's HRESULT; a failing step ends the registration.
HRESULT RegisterServer(IRegistration& registration, std::span<const ObjectMapEntry> map);

// Takes out every class of the map, then the type library, then the application. Returns likewise.
HRESULT UnregisterServer(IRegistration& registration, std::span<const ObjectMapEntry> map);

// The text that stands for the server's path in a script: in double quotes, since the path may hold
// blanks, with each apostrophe doubled, since scripts put texts between apostrophes.
std::wstring ScriptTextOfPath(const std::wstring& path);
