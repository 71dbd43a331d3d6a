// Writes the server into the registry and takes it out: the scripts among the resources of the
// executable, and its type library. Nothing is rolled back on failure.
#pragma once

#include "automation/RegistrationScripts.h"

#include <functional>
#include <span>
#include <string>

struct IRegistrar;

// The two kinds of change to the registry. HRESULTs are the system's.
class IRegistration
{
  public:
    virtual ~IRegistration() = default;
    // Applies the REGISTRY resource of that number, for registration (add) or removal.
    virtual HRESULT ApplyScript(WORD script, bool add) = 0;
    virtual HRESULT ApplyTypeLibrary(bool add) = 0;
};

// Whose classes a registration stands among.
enum class RegistrationScope
{
    Machine, // HKEY_CLASSES_ROOT as the process sees it
    User,    // the classes of the current user, which need no rights of an administrator
};

// The real registry, for a server at that path. The calling thread must be in an apartment.
class CRegistration : public IRegistration
{
  public:
    // Adds the substitutions of a script beside the server's path.
    using AddReplacements = std::function<HRESULT(IRegistrar* registrar)>;

    CRegistration(RegistrationScope scope,
                  std::wstring serverPath,
                  AddReplacements addReplacements);

    HRESULT ApplyScript(WORD script, bool add) override;
    HRESULT ApplyTypeLibrary(bool add) override;

  private:
    const RegistrationScope m_scope;
    std::wstring m_serverPath;
    AddReplacements m_addReplacements;
};

// Registers the application, then every class by its script, then the type library.
// Returns: the last step's HRESULT; a failing step ends the registration.
HRESULT RegisterServer(IRegistration& registration, std::span<const WORD> classScripts);

// Takes out every class, then the type library, then the application. Returns likewise.
HRESULT UnregisterServer(IRegistration& registration, std::span<const WORD> classScripts);

// The text that stands for the server's path in a script: in double quotes, since the path may hold
// blanks, with each apostrophe doubled, since scripts put texts between apostrophes.
std::wstring ScriptTextOfPath(const std::wstring& path);
