#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "add_in_designer.h"
#include "common/automation_object.h"

namespace beacon::standin {

enum class ConnectMode : long { AfterStartup = 0, Startup = 1, External = 2, CommandLine = 3 };
enum class RemoveMode : long { HostShutdown = 0, UserClosed = 1 };

/// An add-in that is registered with Outlook.
class Addin {
public:
    Addin(std::wstring progId, DWORD loadBehavior);

    const std::wstring& ProgId() const { return progId_; }

    bool LoadsAtStartup() const { return (loadBehavior_ & 3) == 3; }

    bool IsConnected() const { return object_ != nullptr; }

    /// The DLL if it is loaded, else null.
    HMODULE Module() const;

private:
    friend class AddinLoader;

    std::wstring progId_;
    std::wstring dllPath_;
    DWORD loadBehavior_;
    const std::shared_ptr<AutomationObject> instance_;  // what OnConnection gets as the COMAddIn
    com::ComPtr<IDTExtensibility2> object_;
};

/// Loads add-ins from HKEY_LOCAL_MACHINE\Software\Microsoft\Office\Outlook\Addins and calls them as Outlook does.
/// Failures are written to the journal.
class AddinLoader {
public:
    /// Adds the add-ins that are not known yet.
    void ReadRegistry();

    const std::vector<std::unique_ptr<Addin>>& Addins() const { return addins_; }

    /// Case-insensitive; null if there is none.
    Addin* Find(const std::wstring& progId) const;

    /// The object that OnConnection gets.
    void SetApplication(std::shared_ptr<AutomationObject> application) { application_ = std::move(application); }

    bool Connect(Addin& addin, ConnectMode mode);
    void Disconnect(Addin& addin, RemoveMode mode);
    void StartupComplete();
    void BeginShutdown();

private:
    /// Calls this member of every connected add-in.
    void Tell(const wchar_t* what, HRESULT (STDMETHODCALLTYPE IDTExtensibility2::*member)(SAFEARRAY**));

    std::vector<std::unique_ptr<Addin>> addins_;
    std::shared_ptr<AutomationObject> application_;
};

}  // namespace beacon::standin
