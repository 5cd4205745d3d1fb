#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

#include "add_in_designer.h"
#include "common/automation_object.h"
#include "outlook/object_model/com_addins.h"

namespace beacon::standin {

enum class ConnectMode : long { AfterStartup = 0, Startup = 1, External = 2, CommandLine = 3 };
enum class RemoveMode : long { HostShutdown = 0, UserClosed = 1 };

/// One add-in that is registered with Outlook.
class Addin {
public:
    Addin(AddinLoader& loader, std::wstring progId, std::wstring friendlyName, DWORD loadBehavior);

    const std::wstring& ProgId() const { return progId_; }

    const std::wstring& FriendlyName() const { return friendlyName_; }

    /// Empty when the ProgID is not registered.
    const std::wstring& ClassId() const { return classId_; }

    bool LoadsAtStartup() const { return (loadBehavior_ & 3) == 3; }

    bool IsConnected() const { return object_ != nullptr; }

    const std::shared_ptr<ComAddIn>& Instance() const { return instance_; }

    /// The DLL while it is loaded, else null.
    HMODULE Module() const;

private:
    friend class AddinLoader;

    std::wstring progId_;
    std::wstring friendlyName_;
    std::wstring classId_;
    std::wstring dllPath_;
    DWORD loadBehavior_;
    std::shared_ptr<ComAddIn> instance_;
    com::ComPtr<IDTExtensibility2> object_;
};

/// Loads add-ins from HKEY_LOCAL_MACHINE\Software\Microsoft\Office\Outlook\Addins and calls them as Outlook does. What
/// fails is said in the journal and leaves that add-in out.
class AddinLoader {
public:
    /// `only`: these ProgIDs alone; empty: all.
    void ReadRegistry(const std::vector<std::wstring>& only);

    const std::vector<std::unique_ptr<Addin>>& Addins() const { return addins_; }

    /// Without regard to case; null when there is none.
    Addin* Find(const std::wstring& progId) const;

    /// Who is handed to OnConnection.
    void SetApplication(std::shared_ptr<AutomationObject> application) { application_ = std::move(application); }

    bool Connect(Addin& addin, ConnectMode mode);
    void Disconnect(Addin& addin, RemoveMode mode);
    void StartupComplete();
    void BeginShutdown();

private:
    /// Calls a member of every connected add-in.
    void Tell(const wchar_t* what, HRESULT (STDMETHODCALLTYPE IDTExtensibility2::*member)(SAFEARRAY**));

    std::vector<std::unique_ptr<Addin>> addins_;
    std::shared_ptr<AutomationObject> application_;
};

}  // namespace beacon::standin
